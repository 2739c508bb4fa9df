#pragma once

#include <AudioUnit/AudioUnit.h>

/// Parameters and properties by which the effect is known to its clients. All parameters have
/// global scope and element 0.
namespace host {

// clang-format off
inline constexpr AudioUnitParameterID kFunctionParameter         = 0;  // FunctionMode
inline constexpr AudioUnitParameterID kAttackThresholdParameter  = 1;  // dB
inline constexpr AudioUnitParameterID kReleaseThresholdParameter = 2;  // dB
inline constexpr AudioUnitParameterID kFadeInCurveParameter      = 3;  // FadeCurve
inline constexpr AudioUnitParameterID kFadeInLengthParameter     = 4;  // ms
inline constexpr AudioUnitParameterID kFadeOutCurveParameter     = 5;  // FadeCurve
inline constexpr AudioUnitParameterID kFadeOutLengthParameter    = 6;  // ms
inline constexpr AudioUnitParameterID kMinSilenceParameter       = 7;  // ms
inline constexpr AudioUnitParameterID kCropStartParameter        = 8;  // ms
inline constexpr AudioUnitParameterID kCropLengthParameter       = 9;  // ms
inline constexpr UInt32               kParameterCount            = 10;

inline constexpr AudioUnitPropertyID kInputLengthProperty    = 3020;   // UInt64 samples, read only
inline constexpr AudioUnitPropertyID kTimeFormatProperty     = 9000;   // UInt32 display format
inline constexpr AudioUnitPropertyID kAutoPreflightProperty  = 64000;  // UInt32 flag
inline constexpr AudioUnitPropertyID kPreflightDirtyProperty = 64001;  // UInt32 flag

inline constexpr UInt32 kEffectType         = 0x61756678;  // 'aufx'
inline constexpr UInt32 kEffectSubtype      = 0x54726D31;  // 'Trm1'
inline constexpr UInt32 kEffectManufacturer = 0x566E7461;  // 'Vnta'
// clang-format on

} // namespace host
