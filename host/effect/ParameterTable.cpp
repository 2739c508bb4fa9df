#include "ParameterTable.h"

#include "TrimSettings.h"

#include <cstddef>
#include <iterator>

namespace host {

namespace {

constexpr TrimSettings kInitial;
constexpr AudioUnitParameterValue kLongestFadeMs = 60.0F * 1000;
constexpr AudioUnitParameterValue kOneDayMs = 24.0F * 60 * 60 * 1000;
constexpr AudioUnitParameterValue kLastMode = kFunctionModeCount - 1;
constexpr AudioUnitParameterValue kLastCurve = kFadeCurveCount - 1;

constexpr AudioUnitParameterValue code(FunctionMode mode)
{
    return static_cast<AudioUnitParameterValue>(mode);
}

constexpr AudioUnitParameterValue code(FadeCurve curve)
{
    return static_cast<AudioUnitParameterValue>(curve);
}

// Short names for the columns of the table.
constexpr auto kIndexed = kAudioUnitParameterUnit_Indexed;
constexpr auto kDecibels = kAudioUnitParameterUnit_Decibels;
constexpr auto kMs = kAudioUnitParameterUnit_Milliseconds;

// clang-format off
constexpr ParameterTraits kParameters[] = {
    // name              id                          unit       min               max             initial                        strings
    { "Function",          kFunctionParameter,         kIndexed,  0,                kLastMode,      code(kInitial.function),       true },
    { "Attack Threshold",  kAttackThresholdParameter,  kDecibels, kMinusInfinityDb, 0,              kInitial.attackThresholdDb,    false },
    { "Release Threshold", kReleaseThresholdParameter, kDecibels, kMinusInfinityDb, 0,              kInitial.releaseThresholdDb,   false },
    { "Fade-In Curve",     kFadeInCurveParameter,      kIndexed,  0,                kLastCurve,     code(kInitial.fadeInCurve),    false },
    { "Fade-In Length",    kFadeInLengthParameter,     kMs,       0,                kLongestFadeMs, kInitial.fadeInLengthMs,       false },
    { "Fade-Out Curve",    kFadeOutCurveParameter,     kIndexed,  0,                kLastCurve,     code(kInitial.fadeOutCurve),   false },
    { "Fade-Out Length",   kFadeOutLengthParameter,    kMs,       0,                kLongestFadeMs, kInitial.fadeOutLengthMs,      false },
    { "Minimum Silence",   kMinSilenceParameter,       kMs,       0,                kLongestFadeMs, kInitial.minSilenceMs,         false },
    { "Crop Start",        kCropStartParameter,        kMs,       0,                kOneDayMs,      kInitial.cropStartMs,          false },
    { "Crop Length",       kCropLengthParameter,       kMs,       0,                kOneDayMs,      kInitial.cropLengthMs,         false },
};
// clang-format on

constexpr const char* kFunctionModeNames[] = {"Trim Start and End", "Remove Silence", "Crop",
                                              "Fades Only"};

constexpr bool rowsAreInOrder()
{
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        if (kParameters[i].id != i) {
            return false;
        }
    }
    return true;
}

static_assert(std::size(kParameters) == kParameterCount && rowsAreInOrder());
static_assert(std::size(kFunctionModeNames) == kFunctionModeCount);

} // namespace

const ParameterTraits* findParameter(AudioUnitParameterID id)
{
    return id < kParameterCount ? &kParameters[id] : nullptr;
}

const char* functionModeName(unsigned mode) { return kFunctionModeNames[mode]; }

} // namespace host
