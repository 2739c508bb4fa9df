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
    // id                        name                 unit       min               max             initial                        strings
    { kFunctionParameter,         "Function",          kIndexed,  0,                kLastMode,      code(kInitial.function),       true },
    { kAttackThresholdParameter,  "Attack Threshold",  kDecibels, kMinusInfinityDb, 0,              kInitial.attackThresholdDb,    false },
    { kReleaseThresholdParameter, "Release Threshold", kDecibels, kMinusInfinityDb, 0,              kInitial.releaseThresholdDb,   false },
    { kFadeInCurveParameter,      "Fade-In Curve",     kIndexed,  0,                kLastCurve,     code(kInitial.fadeInCurve),    false },
    { kFadeInLengthParameter,     "Fade-In Length",    kMs,       0,                kLongestFadeMs, kInitial.fadeInLengthMs,       false },
    { kFadeOutCurveParameter,     "Fade-Out Curve",    kIndexed,  0,                kLastCurve,     code(kInitial.fadeOutCurve),   false },
    { kFadeOutLengthParameter,    "Fade-Out Length",   kMs,       0,                kLongestFadeMs, kInitial.fadeOutLengthMs,      false },
    { kMinSilenceParameter,       "Minimum Silence",   kMs,       0,                kLongestFadeMs, kInitial.minSilenceMs,         false },
    { kCropStartParameter,        "Crop Start",        kMs,       0,                kOneDayMs,      kInitial.cropStartMs,          false },
    { kCropLengthParameter,       "Crop Length",       kMs,       0,                kOneDayMs,      kInitial.cropLengthMs,         false },
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
