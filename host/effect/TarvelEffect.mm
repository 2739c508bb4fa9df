#import "TarvelEffect.h"

#import "ParameterTable.h"
#import "PropertyValue.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace host;

namespace {

constexpr unsigned scopeBit(AudioUnitScope scope) { return 1U << scope; }

constexpr unsigned kGlobalOnly = scopeBit(kAudioUnitScope_Global);
constexpr unsigned kBothSides =
    kGlobalOnly | scopeBit(kAudioUnitScope_Input) | scopeBit(kAudioUnitScope_Output);

/// What the element of a property's address stands for.
enum class Element { Zero, Parameter };

// 32-bit float in one buffer per channel, in the machine's byte order.
constexpr UInt32 kLinearPcm = 0x6C70636D; // 'lpcm'
constexpr UInt32 kFloatPackedNonInterleaved = 1U << 0 | 1U << 3 | 1U << 5;

bool isRate(Float64 hz) { return std::isfinite(hz) && hz > 0; }

/// Whether formats differ in nothing but rate and channels.
bool isSameLayout(const AudioStreamBasicDescription& a, const AudioStreamBasicDescription& b)
{
    return a.mFormatID == b.mFormatID && a.mFormatFlags == b.mFormatFlags &&
           a.mBytesPerPacket == b.mBytesPerPacket && a.mFramesPerPacket == b.mFramesPerPacket &&
           a.mBytesPerFrame == b.mBytesPerFrame && a.mBitsPerChannel == b.mBitsPerChannel;
}

/// Nearest code of a list of `count` codes.
template <typename Code>
Code codeOf(AudioUnitParameterValue value, unsigned count)
{
    const float last = static_cast<float>(count - 1);
    return static_cast<Code>(static_cast<unsigned>(std::clamp(value, 0.0F, last)));
}

} // namespace

struct TarvelEffect::PropertyRow {
    AudioUnitPropertyID id;
    unsigned scopes;
    Element element;
    UInt32 size; // bytes; the view info grows with the number of classes
    OSStatus (TarvelEffect::*get)(AudioUnitElement element, void* outData);
    OSStatus (TarvelEffect::*set)(const void* data); // null: read only
};

// clang-format off
const TarvelEffect::PropertyRow TarvelEffect::kProperties[] = {
    // property                                  scopes       element             bytes                                get, set
    { kAudioUnitProperty_ClassInfo,              kGlobalOnly, Element::Zero,      sizeof(CFTypeRef),                   &TarvelEffect::getClassInfo, &TarvelEffect::setClassInfo },
    { kAudioUnitProperty_SampleRate,             kBothSides,  Element::Zero,      sizeof(Float64),                     &TarvelEffect::getScalar<&TarvelEffect::m_sampleRate>, &TarvelEffect::writeSampleRate },
    { kAudioUnitProperty_ParameterList,          kGlobalOnly, Element::Zero,      kParameterCount * sizeof(UInt32),    &TarvelEffect::getParameterList, nullptr },
    { kAudioUnitProperty_ParameterInfo,          kGlobalOnly, Element::Parameter, sizeof(AudioUnitParameterInfo),      &TarvelEffect::getParameterInfo, nullptr },
    { kAudioUnitProperty_StreamFormat,           kBothSides,  Element::Zero,      sizeof(AudioStreamBasicDescription), &TarvelEffect::getStreamFormat, &TarvelEffect::setStreamFormat },
    { kAudioUnitProperty_ParameterValueStrings,  kGlobalOnly, Element::Parameter, sizeof(CFArrayRef),                  &TarvelEffect::getValueStrings, nullptr },
    { kAudioUnitProperty_HostCallbacks,          kGlobalOnly, Element::Zero,      sizeof(HostCallbackInfo),            &TarvelEffect::getHostCallbacks, &TarvelEffect::setHostCallbacks },
    { kAudioUnitProperty_CocoaUI,                kGlobalOnly, Element::Zero,      sizeof(AudioUnitCocoaViewInfo),      &TarvelEffect::getViewInfo, nullptr },
    { kAudioUnitProperty_PresentPreset,          kGlobalOnly, Element::Zero,      sizeof(AUPreset),                    &TarvelEffect::getPresentPreset, &TarvelEffect::setPresentPreset },
    { kInputLengthProperty,                      kGlobalOnly, Element::Zero,      sizeof(UInt64),                      &TarvelEffect::getScalar<&TarvelEffect::m_inputLength>, nullptr },
    { kTimeFormatProperty,                       kGlobalOnly, Element::Zero,      sizeof(UInt32),                      &TarvelEffect::getScalar<&TarvelEffect::m_timeFormat>, &TarvelEffect::setScalar<&TarvelEffect::m_timeFormat, kTimeFormatProperty> },
    { kAutoPreflightProperty,                    kGlobalOnly, Element::Zero,      sizeof(UInt32),                      &TarvelEffect::getScalar<&TarvelEffect::m_autoPreflight>, &TarvelEffect::setScalar<&TarvelEffect::m_autoPreflight, kAutoPreflightProperty> },
    { kPreflightDirtyProperty,                   kGlobalOnly, Element::Zero,      sizeof(UInt32),                      &TarvelEffect::getScalar<&TarvelEffect::m_preflightDirty>, &TarvelEffect::setScalar<&TarvelEffect::m_preflightDirty, kPreflightDirtyProperty> },
};
// clang-format on

TarvelEffect::TarvelEffect()
{
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        m_parameters[i] = findParameter(i)->initial;
    }
}

// ---- what the owner sets

void TarvelEffect::setRecording(std::shared_ptr<const Recording> recording)
{
    m_recording = std::move(recording);
    if (m_recording) {
        adoptFormat(m_recording->sampleRate, m_recording->channels);
    }
    setInputLength(m_recording ? m_recording->frames() : 0);
}

TrimSettings TarvelEffect::settings() const
{
    const auto& value = m_parameters;
    return {
        .function = codeOf<FunctionMode>(value[kFunctionParameter], kFunctionModeCount),
        .attackThresholdDb = value[kAttackThresholdParameter],
        .releaseThresholdDb = value[kReleaseThresholdParameter],
        .fadeInCurve = codeOf<FadeCurve>(value[kFadeInCurveParameter], kFadeCurveCount),
        .fadeInLengthMs = value[kFadeInLengthParameter],
        .fadeOutCurve = codeOf<FadeCurve>(value[kFadeOutCurveParameter], kFadeCurveCount),
        .fadeOutLengthMs = value[kFadeOutLengthParameter],
        .minSilenceMs = value[kMinSilenceParameter],
        .cropStartMs = value[kCropStartParameter],
        .cropLengthMs = value[kCropLengthParameter],
    };
}

void TarvelEffect::setSampleRate(Float64 hz)
{
    m_sampleRate = hz;
    announceFormat();
}

void TarvelEffect::setInputLength(UInt64 samples)
{
    m_inputLength = samples;
    announce(kInputLengthProperty);
}

void TarvelEffect::setViewBundle(const std::string& path, std::vector<std::string> classNames)
{
    m_bundlePath = path;
    m_viewClasses = std::move(classNames);
}

// ---- client calls

OSStatus TarvelEffect::getPropertyInfo(AudioUnitPropertyID property, AudioUnitScope scope,
                                       AudioUnitElement element, UInt32* outSize,
                                       Boolean* outWritable)
{
    const PropertyRow* row = nullptr;
    if (const OSStatus status = locate(property, scope, element, row); status != noErr) {
        return status;
    }
    *outSize = row->size;
    if (property == kAudioUnitProperty_CocoaUI) {
        *outSize += static_cast<UInt32>((m_viewClasses.size() - 1) * sizeof(CFStringRef));
    }
    *outWritable = row->set != nullptr;
    return noErr;
}

OSStatus TarvelEffect::getProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                                   AudioUnitElement element, void* outData)
{
    const PropertyRow* row = nullptr;
    if (const OSStatus status = locate(property, scope, element, row); status != noErr) {
        return status;
    }
    return (this->*row->get)(element, outData);
}

OSStatus TarvelEffect::setProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                                   AudioUnitElement element, const void* data, UInt32)
{
    const PropertyRow* row = nullptr;
    if (const OSStatus status = locate(property, scope, element, row); status != noErr) {
        return status;
    }
    return data == nullptr ? removeValue(*row) : (this->*row->set)(data);
}

OSStatus TarvelEffect::getParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                    AudioUnitElement element, AudioUnitParameterValue* outValue)
{
    if (scope != kAudioUnitScope_Global) {
        return kAudioUnitErr_InvalidScope;
    }
    if (element != 0) {
        return kAudioUnitErr_InvalidElement;
    }
    if (parameter >= kParameterCount) {
        return kAudioUnitErr_InvalidParameter;
    }
    *outValue = m_parameters[parameter];
    return noErr;
}

OSStatus TarvelEffect::setParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                    AudioUnitElement element, AudioUnitParameterValue value, UInt32)
{
    AudioUnitParameterValue previous;
    const OSStatus status = getParameter(parameter, scope, element, &previous);
    if (status != noErr) {
        return status;
    }
    m_parameters[parameter] = value;
    return noErr;
}

// ---- addresses and announcements

OSStatus TarvelEffect::locate(AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, const PropertyRow*& outRow) const
{
    const auto* const row =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [property](const PropertyRow& candidate) { return candidate.id == property; });
    if (row == std::end(kProperties)) {
        return kAudioUnitErr_InvalidProperty;
    }
    if (scope > kAudioUnitScope_LayerItem || (row->scopes & scopeBit(scope)) == 0) {
        return kAudioUnitErr_InvalidScope;
    }
    if (row->element == Element::Zero && element != 0) {
        return kAudioUnitErr_InvalidElement;
    }
    if (row->element == Element::Parameter && findParameter(element) == nullptr) {
        return kAudioUnitErr_InvalidParameter;
    }
    outRow = row;
    return isOffered(property, element) ? static_cast<OSStatus>(noErr)
                                        : kAudioUnitErr_InvalidProperty;
}

bool TarvelEffect::isOffered(AudioUnitPropertyID property, AudioUnitElement element) const
{
    if (property == kAudioUnitProperty_ParameterValueStrings) {
        return m_valueStringsOffered && findParameter(element)->hasValueStrings;
    }
    return property != kAudioUnitProperty_CocoaUI || !m_viewClasses.empty();
}

OSStatus TarvelEffect::removeValue(const PropertyRow& row)
{
    if (row.id != kAudioUnitProperty_HostCallbacks) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    storeCallbacks({});
    return noErr;
}

void TarvelEffect::announce(AudioUnitPropertyID property)
{
    propertyChanged(property, kAudioUnitScope_Global, 0);
}

void TarvelEffect::announceFormat()
{
    propertyChanged(kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output, 0);
}

// ---- numbers

template <auto Field>
OSStatus TarvelEffect::getScalar(AudioUnitElement, void* outData)
{
    put(outData, (this->*Field).load());
    return noErr;
}

template <auto Field, AudioUnitPropertyID Property>
OSStatus TarvelEffect::setScalar(const void* data)
{
    auto& field = this->*Field;
    field = valueAt<decltype(field.load())>(data);
    announce(Property);
    return noErr;
}

OSStatus TarvelEffect::writeSampleRate(const void* data)
{
    const auto hz = valueAt<Float64>(data);
    if (!isRate(hz)) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    setSampleRate(hz);
    return noErr;
}

// ---- stream format

AudioStreamBasicDescription TarvelEffect::format() const
{
    AudioStreamBasicDescription format{};
    format.mSampleRate = m_sampleRate;
    format.mFormatID = kLinearPcm;
    format.mFormatFlags = kFloatPackedNonInterleaved;
    format.mBytesPerPacket = sizeof(Float32);
    format.mFramesPerPacket = 1;
    format.mBytesPerFrame = sizeof(Float32);
    format.mChannelsPerFrame = m_channels;
    format.mBitsPerChannel = 8 * sizeof(Float32);
    return format;
}

void TarvelEffect::adoptFormat(Float64 sampleRate, UInt32 channels)
{
    const bool differs = sampleRate != m_sampleRate || channels != m_channels;
    m_sampleRate = sampleRate;
    m_channels = channels;
    if (differs) {
        announceFormat();
    }
}

OSStatus TarvelEffect::getStreamFormat(AudioUnitElement, void* outData)
{
    put(outData, format());
    return noErr;
}

OSStatus TarvelEffect::setStreamFormat(const void* data)
{
    const auto wanted = valueAt<AudioStreamBasicDescription>(data);
    if (!isSameLayout(wanted, format()) || !isRate(wanted.mSampleRate) ||
        wanted.mChannelsPerFrame == 0) {
        return kAudioUnitErr_FormatNotSupported;
    }
    adoptFormat(wanted.mSampleRate, wanted.mChannelsPerFrame);
    return noErr;
}

// ---- host callbacks

OSStatus TarvelEffect::getHostCallbacks(AudioUnitElement, void* outData)
{
    put(outData, m_callbacks);
    return noErr;
}

OSStatus TarvelEffect::setHostCallbacks(const void* data)
{
    storeCallbacks(valueAt<HostCallbackInfo>(data));
    return noErr;
}

void TarvelEffect::storeCallbacks(const HostCallbackInfo& callbacks)
{
    // Pointers only, so there is no padding to compare.
    if (std::memcmp(&callbacks, &m_callbacks, sizeof callbacks) != 0) {
        m_callbacks = callbacks;
        announce(kAudioUnitProperty_HostCallbacks);
    }
}

// ---- parameters told to clients

OSStatus TarvelEffect::getParameterList(AudioUnitElement, void* outData)
{
    std::array<AudioUnitParameterID, kParameterCount> ids;
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        ids[i] = i;
    }
    put(outData, ids);
    return noErr;
}

OSStatus TarvelEffect::getParameterInfo(AudioUnitElement element, void* outData)
{
    const ParameterTraits& traits = *findParameter(element);
    AudioUnitParameterInfo info{};
    info.cfNameString = (CFStringRef)m_ledger.handOut((CFTypeRef)newString(traits.name));
    info.unit = traits.unit;
    info.minValue = traits.minimum;
    info.maxValue = traits.maximum;
    info.defaultValue = traits.initial;
    info.flags = kAudioUnitParameterFlag_IsReadable | kAudioUnitParameterFlag_IsWritable |
                 kAudioUnitParameterFlag_HasCFNameString | kAudioUnitParameterFlag_CFNameRelease;
    if (traits.hasValueStrings) {
        info.flags |= kAudioUnitParameterFlag_ValuesHaveStrings;
    }
    put(outData, info);
    return noErr;
}

OSStatus TarvelEffect::getValueStrings(AudioUnitElement, void* outData)
{
    NSMutableArray* const names = [[NSMutableArray alloc] initWithCapacity:kFunctionModeCount];
    for (unsigned mode = 0; mode < kFunctionModeCount; ++mode) {
        [names addObject:[NSString stringWithUTF8String:functionModeName(mode)]];
    }
    put(outData, m_ledger.handOut((CFTypeRef)names));
    return noErr;
}

// ---- view

OSStatus TarvelEffect::getViewInfo(AudioUnitElement, void* outData)
{
    NSString* const path =
        [[NSFileManager defaultManager] stringWithFileSystemRepresentation:m_bundlePath.data()
                                                                    length:m_bundlePath.size()];
    if (path == nil) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    auto* const members = static_cast<CFTypeRef*>(outData);
    members[0] = m_ledger.handOut((CFTypeRef)[[NSURL alloc] initFileURLWithPath:path]);
    std::transform(
        m_viewClasses.begin(), m_viewClasses.end(), members + 1,
        [this](const std::string& name) { return m_ledger.handOut((CFTypeRef)newString(name)); });
    return noErr;
}
