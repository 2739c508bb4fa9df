#include <AudioToolbox/AudioUnitUtilities.h>

#include "CallProbe.h"
#include "Dispatch.h"
#include "EventListener.h"
#include "Notify.h"
#include "Registry.h"

#include <AudioUnitCompat/InProcessUnit.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace audiounit_compat;

namespace {

// Whole microseconds, so that 0.05F is 50 ms and not some nanoseconds more. Beyond thirty years
// nobody can tell the difference.
UInt64 _nanoseconds(Float32 seconds)
{
    constexpr double kLongest = 1e9;
    return static_cast<UInt64>(std::llround(std::min<double>(seconds, kLongest) * 1e6)) * 1000;
}

bool _isDuration(Float32 seconds) { return std::isfinite(seconds) && seconds >= 0; }

Call _callWithEvent(const char* function, AUEventListenerRef listener, const void* object,
                    const AudioUnitEvent* event)
{
    Call call{.function = function, .listener = listener, .object = object};
    if (event != nullptr) {
        const EventKey key = keyOf(*event);
        call.unit = key.unit;
        call.eventType = key.type;
        call.id = key.id;
        call.scope = key.scope;
        call.element = key.element;
    }
    return call;
}

Call _callWithParameter(const char* function, AUParameterListenerRef listener, const void* object,
                        const AudioUnitParameter* parameter)
{
    Call call{.function = function, .listener = listener, .object = object};
    if (parameter != nullptr) {
        call.unit = parameter->mAudioUnit;
        call.id = parameter->mParameterID;
        call.scope = parameter->mScope;
        call.element = parameter->mElement;
    }
    return call;
}

AudioUnitEvent _valueChange(const AudioUnitParameter& parameter)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_ParameterValueChange;
    event.mArgument.mParameter = parameter;
    return event;
}

OSStatus _createListener(AUEventListenerProc proc, void* userData, CFRunLoopRef runLoop,
                         CFStringRef mode, AUListenerBase::Timing timing,
                         AUEventListenerRef* outListener)
{
    const auto listener = std::make_shared<AUListenerBase>(proc, userData, timing);
    const OSStatus result = listener->start(runLoop, mode);
    if (result == noErr) {
        Registry::shared().addListener(listener);
        *outListener = listener.get();
    }
    return result;
}

// The value is the one the unit has at this moment, not at delivery.
OSStatus _notifyValueChange(const Sender& sender, const AudioUnitParameter& parameter)
{
    AudioUnit const unit = parameter.mAudioUnit;
    if (parameter.mParameterID == kAUParameterListener_AnyParameter) {
        notifyAnyParameter(sender, unit);
        return noErr;
    }
    AudioUnitParameterValue value = 0;
    const OSStatus result =
        unit->getParameter(parameter.mParameterID, parameter.mScope, parameter.mElement, &value);
    if (result == noErr) {
        notifyEvent(sender, _valueChange(parameter), value);
    }
    return result;
}

OSStatus _notify(const Sender& sender, const AudioUnitEvent* event)
{
    if (event == nullptr || event->mEventType > kAudioUnitEvent_PropertyChange ||
        !Registry::Reader()->isLive(keyOf(*event).unit)) {
        return kAudio_ParamError;
    }
    if (event->mEventType == kAudioUnitEvent_ParameterValueChange) {
        return _notifyValueChange(sender, event->mArgument.mParameter);
    }
    notifyEvent(sender, *event, 0);
    return noErr;
}

} // namespace

OSStatus AUEventListenerCreate(AUEventListenerProc inProc, void* inUserData, CFRunLoopRef inRunLoop,
                               CFStringRef inRunLoopMode, Float32 inNotificationInterval,
                               Float32 inValueChangeGranularity, AUEventListenerRef* outListener)
{
    const OSStatus result = probeCall({.function = "AUEventListenerCreate",
                                       .object = inUserData,
                                       .interval = inNotificationInterval,
                                       .granularity = inValueChangeGranularity});
    if (result != noErr) {
        return result;
    }
    if (inProc == nullptr || outListener == nullptr || !_isDuration(inNotificationInterval) ||
        !_isDuration(inValueChangeGranularity)) {
        return kAudio_ParamError;
    }
    return _createListener(
        inProc, inUserData, inRunLoop, inRunLoopMode,
        {_nanoseconds(inNotificationInterval), _nanoseconds(inValueChangeGranularity)},
        outListener);
}

OSStatus AUEventListenerAddEventType(AUEventListenerRef inListener, void* inObject,
                                     const AudioUnitEvent* inEvent)
{
    const OSStatus result =
        probeCall(_callWithEvent("AUEventListenerAddEventType", inListener, inObject, inEvent));
    if (result != noErr) {
        return result;
    }
    return inEvent == nullptr ? OSStatus{kAudio_ParamError}
                              : Registry::shared().addRegistration(inListener, inObject, *inEvent);
}

OSStatus AUEventListenerRemoveEventType(AUEventListenerRef inListener, void* inObject,
                                        const AudioUnitEvent* inEvent)
{
    const OSStatus result =
        probeCall(_callWithEvent("AUEventListenerRemoveEventType", inListener, inObject, inEvent));
    if (result != noErr) {
        return result;
    }
    return inEvent == nullptr
               ? OSStatus{kAudio_ParamError}
               : Registry::shared().removeRegistration(inListener, inObject, *inEvent);
}

OSStatus AUEventListenerNotify(AUEventListenerRef inSendingListener, void* inSendingObject,
                               const AudioUnitEvent* inEvent)
{
    const OSStatus result = probeCall(
        _callWithEvent("AUEventListenerNotify", inSendingListener, inSendingObject, inEvent));
    return result != noErr ? result : _notify({inSendingListener, inSendingObject}, inEvent);
}

OSStatus AUParameterSet(AUParameterListenerRef inSendingListener, void* inSendingObject,
                        const AudioUnitParameter* inParameter, AudioUnitParameterValue inValue,
                        UInt32 inBufferOffsetInFrames)
{
    Call call =
        _callWithParameter("AUParameterSet", inSendingListener, inSendingObject, inParameter);
    call.value = inValue;
    OSStatus result = probeCall(call);
    if (result != noErr) {
        return result;
    }
    if (inParameter == nullptr) {
        return kAudio_ParamError;
    }
    result = setParameter(*inParameter, inValue, inBufferOffsetInFrames);
    if (result == noErr) {
        notifyEvent({inSendingListener, inSendingObject}, _valueChange(*inParameter), inValue);
    }
    return result;
}

OSStatus AUParameterListenerNotify(AUParameterListenerRef inSendingListener, void* inSendingObject,
                                   const AudioUnitParameter* inParameter)
{
    const OSStatus result = probeCall(_callWithParameter(
        "AUParameterListenerNotify", inSendingListener, inSendingObject, inParameter));
    if (result != noErr) {
        return result;
    }
    if (inParameter == nullptr) {
        return kAudio_ParamError;
    }
    const AudioUnitEvent event = _valueChange(*inParameter);
    return _notify({inSendingListener, inSendingObject}, &event);
}

OSStatus AUListenerDispose(AUParameterListenerRef inListener)
{
    const OSStatus result = probeCall({.function = "AUListenerDispose", .listener = inListener});
    if (result != noErr) {
        return result;
    }
    std::shared_ptr<AUListenerBase> listener = Registry::shared().removeListener(inListener);
    if (listener == nullptr) {
        return kAudio_ParamError;
    }
    listener->dispose();
    return noErr;
}
