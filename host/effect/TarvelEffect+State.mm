#import "EffectState.h"
#import "PropertyValue.h"
#import "TarvelEffect.h"

#import <Foundation/Foundation.h>

using namespace host;

namespace {

// The platform's keys, then the effect's own.
NSString* const kVersionKey = @"version";
NSString* const kTypeKey = @"type";
NSString* const kSubtypeKey = @"subtype";
NSString* const kManufacturerKey = @"manufacturer";
NSString* const kNameKey = @"name";
NSString* const kDataKey = @"data";
NSString* const kTimeFormatKey = @"time-format";
NSString* const kAutoPreflightKey = @"auto-preflight";
constexpr UInt32 kStateVersion = 0;

NSNumber* numberIn(NSDictionary* state, NSString* key)
{
    id const value = [state objectForKey:key];
    return [value isKindOfClass:[NSNumber class]] ? value : nil;
}

bool isNumber(NSDictionary* state, NSString* key, UInt32 expected)
{
    NSNumber* const number = numberIn(state, key);
    return number != nil && [number unsignedIntValue] == expected;
}

/// The effect type is not looked at: the same effect may be built as several.
bool isOurs(NSDictionary* state)
{
    return [state isKindOfClass:[NSDictionary class]] &&
           isNumber(state, kVersionKey, kStateVersion) &&
           isNumber(state, kSubtypeKey, kEffectSubtype) &&
           isNumber(state, kManufacturerKey, kEffectManufacturer);
}

bool readParameters(NSDictionary* state, std::vector<SavedParameter>& outParameters)
{
    NSData* const data = [state objectForKey:kDataKey];
    if (![data isKindOfClass:[NSData class]]) {
        return false;
    }
    const auto* const bytes = static_cast<const std::uint8_t*>([data bytes]);
    return decodeParameters({bytes, [data length]}, outParameters);
}

} // namespace

OSStatus TarvelEffect::getPresentPreset(AudioUnitElement, void* outData)
{
    AUPreset preset{};
    preset.presetNumber = m_presetNumber;
    preset.presetName = (CFStringRef)m_ledger.handOut((CFTypeRef)newString(m_presetName));
    put(outData, preset);
    return noErr;
}

OSStatus TarvelEffect::setPresentPreset(const void* data)
{
    const auto preset = valueAt<AUPreset>(data);
    // There are no factory presets; a user's preset has a negative number and a name.
    if (preset.presetNumber >= 0 || !readText((id)preset.presetName, m_presetName)) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    m_presetNumber = preset.presetNumber;
    announce(kAudioUnitProperty_PresentPreset);
    return noErr;
}

OSStatus TarvelEffect::getClassInfo(AudioUnitElement, void* outData)
{
    std::vector<SavedParameter> parameters;
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        parameters.push_back({i, m_parameters[i]});
    }
    const std::vector<std::uint8_t> bytes = encodeParameters(parameters);
    NSDictionary* const state = [[NSMutableDictionary alloc]
        initWithObjectsAndKeys:@(kStateVersion), kVersionKey, @(kEffectType), kTypeKey,
                               @(kEffectSubtype), kSubtypeKey, @(kEffectManufacturer),
                               kManufacturerKey,
                               [NSString stringWithUTF8String:m_presetName.c_str()], kNameKey,
                               [NSData dataWithBytes:bytes.data() length:bytes.size()], kDataKey,
                               @(m_timeFormat.load()), kTimeFormatKey, @(m_autoPreflight.load()),
                               kAutoPreflightKey, nil];
    put(outData, m_ledger.handOut((CFTypeRef)state));
    return noErr;
}

OSStatus TarvelEffect::setClassInfo(const void* data)
{
    NSDictionary* const state = (NSDictionary*)valueAt<CFTypeRef>(data);
    std::vector<SavedParameter> parameters;
    if (!isOurs(state) || !readParameters(state, parameters)) {
        return kAudioUnitErr_InvalidPropertyValue;
    }
    for (const SavedParameter& parameter : parameters) {
        if (parameter.id < kParameterCount) {
            m_parameters[parameter.id] = parameter.value;
        }
    }
    if (NSNumber* const format = numberIn(state, kTimeFormatKey)) {
        m_timeFormat = [format unsignedIntValue];
        announce(kTimeFormatProperty);
    }
    if (NSNumber* const preflight = numberIn(state, kAutoPreflightKey)) {
        m_autoPreflight = [preflight unsignedIntValue];
        announce(kAutoPreflightProperty);
    }
    restorePresetName([state objectForKey:kNameKey]);
    return noErr;
}

void TarvelEffect::restorePresetName(CFTypeRef name)
{
    m_presetNumber = -1;
    readText((id)name, m_presetName);
    announce(kAudioUnitProperty_PresentPreset);
}
