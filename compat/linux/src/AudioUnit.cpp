#include "CallProbe.h"
#include "Dispatch.h"
#include "Notify.h"
#include "Registry.h"

#include <AudioUnit/AudioUnit.h>
#include <AudioUnitCompat/InProcessUnit.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

using namespace audiounit_compat;

ComponentInstanceRecord::ComponentInstanceRecord() { Registry::shared().addUnit(this); }

ComponentInstanceRecord::~ComponentInstanceRecord() { Registry::shared().removeUnit(this); }

void ComponentInstanceRecord::propertyChanged(AudioUnitPropertyID property, AudioUnitScope scope,
                                              AudioUnitElement element)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_PropertyChange;
    event.mArgument.mProperty = {this, property, scope, element};
    Registry::shared().callPropertyListeners(event.mArgument.mProperty);
    notifyEvent({}, event, 0);
}

namespace {

bool _isLive(AudioUnit unit) { return Registry::Reader()->isLive(unit); }

// Reads into a buffer of the value's own size and hands on as much as the client has room for.
OSStatus _getFirstBytes(const AudioUnitProperty& property, UInt32 valueSize, void* outData,
                        UInt32 room)
{
    std::vector<unsigned char> value(valueSize);
    const OSStatus result = property.mAudioUnit->getProperty(property.mPropertyID, property.mScope,
                                                             property.mElement, value.data());
    if (result == noErr) {
        std::memcpy(outData, value.data(), room);
    }
    return result;
}

OSStatus _getProperty(const AudioUnitProperty& property, void* outData, UInt32* ioDataSize)
{
    if (ioDataSize == nullptr || !_isLive(property.mAudioUnit) ||
        (outData != nullptr && *ioDataSize == 0)) {
        return kAudio_ParamError;
    }
    UInt32 valueSize = 0;
    Boolean writable = 0;
    OSStatus result = property.mAudioUnit->getPropertyInfo(
        property.mPropertyID, property.mScope, property.mElement, &valueSize, &writable);
    if (result != noErr) {
        return result;
    }
    if (outData == nullptr) {
        *ioDataSize = valueSize;
        return noErr;
    }
    if (*ioDataSize < valueSize) {
        result = _getFirstBytes(property, valueSize, outData, *ioDataSize);
    } else {
        result = property.mAudioUnit->getProperty(property.mPropertyID, property.mScope,
                                                  property.mElement, outData);
        *ioDataSize = valueSize;
    }
    if (result != noErr) {
        *ioDataSize = 0;
    }
    return result;
}

OSStatus _setHostCallbacks(const AudioUnitProperty& property, const void* data, UInt32 size)
{
    HostCallbackInfo callbacks{};
    std::memcpy(&callbacks, data, std::min<std::size_t>(size, sizeof callbacks));
    return property.mAudioUnit->setProperty(property.mPropertyID, property.mScope,
                                            property.mElement, &callbacks, sizeof callbacks);
}

OSStatus _setProperty(const AudioUnitProperty& property, const void* data, UInt32 size)
{
    if ((data == nullptr) != (size == 0) || !_isLive(property.mAudioUnit)) {
        return kAudio_ParamError;
    }
    UInt32 valueSize = 0;
    Boolean writable = 0;
    const OSStatus result = property.mAudioUnit->getPropertyInfo(
        property.mPropertyID, property.mScope, property.mElement, &valueSize, &writable);
    if (result != noErr) {
        return result;
    }
    if (!writable) {
        return kAudioUnitErr_PropertyNotWritable;
    }
    if (data != nullptr && property.mPropertyID == kAudioUnitProperty_HostCallbacks) {
        return _setHostCallbacks(property, data, size);
    }
    if (data != nullptr && size != valueSize) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    return property.mAudioUnit->setProperty(property.mPropertyID, property.mScope,
                                            property.mElement, data, size);
}

} // namespace

OSStatus AudioUnitGetPropertyInfo(AudioUnit unit, AudioUnitPropertyID property,
                                  AudioUnitScope scope, AudioUnitElement element,
                                  UInt32* outDataSize, Boolean* outWritable)
{
    OSStatus result = probeCall({.function = "AudioUnitGetPropertyInfo",
                                 .unit = unit,
                                 .id = property,
                                 .scope = scope,
                                 .element = element});
    if (result != noErr) {
        return result;
    }
    if (!_isLive(unit)) {
        return kAudio_ParamError;
    }
    UInt32 size = 0;
    Boolean writable = 0;
    result = unit->getPropertyInfo(property, scope, element, &size, &writable);
    if (result == noErr && outDataSize != nullptr) {
        *outDataSize = size;
    }
    if (result == noErr && outWritable != nullptr) {
        *outWritable = writable;
    }
    return result;
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, void* outData, UInt32* ioDataSize)
{
    const OSStatus result = probeCall({.function = "AudioUnitGetProperty",
                                       .unit = unit,
                                       .id = property,
                                       .scope = scope,
                                       .element = element,
                                       .size = ioDataSize != nullptr ? *ioDataSize : 0});
    return result != noErr ? result
                           : _getProperty({unit, property, scope, element}, outData, ioDataSize);
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, const void* data, UInt32 size)
{
    const OSStatus result = probeCall({.function = "AudioUnitSetProperty",
                                       .unit = unit,
                                       .id = property,
                                       .scope = scope,
                                       .element = element,
                                       .size = size});
    return result != noErr ? result : _setProperty({unit, property, scope, element}, data, size);
}

OSStatus AudioUnitGetParameter(AudioUnit unit, AudioUnitParameterID parameter, AudioUnitScope scope,
                               AudioUnitElement element, AudioUnitParameterValue* outValue)
{
    const OSStatus result = probeCall({.function = "AudioUnitGetParameter",
                                       .unit = unit,
                                       .id = parameter,
                                       .scope = scope,
                                       .element = element});
    if (result != noErr) {
        return result;
    }
    if (outValue == nullptr || !_isLive(unit)) {
        return kAudio_ParamError;
    }
    return unit->getParameter(parameter, scope, element, outValue);
}

OSStatus AudioUnitSetParameter(AudioUnit unit, AudioUnitParameterID parameter, AudioUnitScope scope,
                               AudioUnitElement element, AudioUnitParameterValue value,
                               UInt32 bufferOffsetInFrames)
{
    const OSStatus result = probeCall({.function = "AudioUnitSetParameter",
                                       .unit = unit,
                                       .id = parameter,
                                       .scope = scope,
                                       .element = element,
                                       .value = value});
    return result != noErr
               ? result
               : setParameter({unit, parameter, scope, element}, value, bufferOffsetInFrames);
}

OSStatus AudioUnitAddPropertyListener(AudioUnit unit, AudioUnitPropertyID property,
                                      AudioUnitPropertyListenerProc proc, void* userData)
{
    const OSStatus result = probeCall({.function = "AudioUnitAddPropertyListener",
                                       .unit = unit,
                                       .id = property,
                                       .object = userData});
    if (result != noErr) {
        return result;
    }
    if (proc == nullptr) {
        return kAudio_ParamError;
    }
    return Registry::shared().addPropertyListener({unit, property, proc, userData});
}

OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit unit, AudioUnitPropertyID property,
                                                     AudioUnitPropertyListenerProc proc,
                                                     void* userData)
{
    const OSStatus result = probeCall({.function = "AudioUnitRemovePropertyListenerWithUserData",
                                       .unit = unit,
                                       .id = property,
                                       .object = userData});
    if (result != noErr) {
        return result;
    }
    if (!_isLive(unit)) {
        return kAudio_ParamError;
    }
    Registry::shared().removePropertyListener({unit, property, proc, userData});
    return noErr;
}

namespace audiounit_compat {

OSStatus setParameter(const AudioUnitParameter& parameter, AudioUnitParameterValue value,
                      UInt32 bufferOffsetInFrames)
{
    if (!_isLive(parameter.mAudioUnit)) {
        return kAudio_ParamError;
    }
    if (!std::isfinite(value)) {
        return kAudioUnitErr_InvalidParameterValue;
    }
    return parameter.mAudioUnit->setParameter(parameter.mParameterID, parameter.mScope,
                                              parameter.mElement, value, bufferOffsetInFrames);
}

} // namespace audiounit_compat
