#pragma once

#include <cstdint>

/// The arithmetic between what the effect keeps (dB, milliseconds) and what the editor shows
/// (dB or percent of full scale, samples). Pure functions. [any]
namespace tarvel {

/// Ends of the threshold range in dB. The lower end stands for minus infinity.
constexpr float kMinThresholdDb = -60.0F;
constexpr float kMaxThresholdDb = 0.0F;

/// Ends of the threshold range in percent of full scale.
constexpr float kMinThresholdPercent = 0.0F;
constexpr float kMaxThresholdPercent = 100.0F;

/// Shortest minimum silence, ms.
constexpr double kMinSilenceMs = 100.0;

/// Gives the number that a threshold field shows in dB.
///     shownDb(-60) -> -infinity    shownDb(-59.9) -> -59.9    shownDb(0) -> 0
/// Only exactly -60 means minus infinity; lower values are shown as they are.
double shownDb(float thresholdDb);

/// Gives the number that a threshold field shows in percent, computed in double precision.
///     shownPercent(-60) -> 0    shownPercent(-20) -> 10    shownPercent(0) -> 100
/// -60 dB and everything below is 0.
double shownPercent(float thresholdDb);

/// Gives the threshold in dB of a typed percentage.
///     thresholdFromPercent(0) -> -60    thresholdFromPercent(10) -> -20
/// @param percent  Percent of full scale. 0 to 100, not checked: above 100 gives positive dB, a
///                 tiny one less than -60 dB. The division by 100 is in single precision.
double thresholdFromPercent(float percent);

/// Gives the samples in a length, truncated toward zero, computed in double precision.
///     samplesFromMs(1, 44100) -> 44    samplesFromMs(1000, 44100) -> 44100
/// @param sampleRate  Hz.
/// Results beyond the 64-bit range end at its limits; a length that is no number gives 0.
std::int64_t samplesFromMs(float lengthMs, double sampleRate);

/// Gives the length of a number of samples in ms, computed in double precision and then rounded to
/// the single precision of a parameter.
///     msFromSamples(44100, 44100) -> 1000
/// @param sampleRate  Hz, greater than 0, not checked.
float msFromSamples(std::int64_t samples, double sampleRate);

/// Gives the longest length that can be entered, in samples: the length of the material, or one
/// hour where that is not known.
/// @param inputLength  Samples; 0 = unknown.
/// @param sampleRate   Hz, not negative; used only when `inputLength` is 0.
std::uint64_t longestLength(std::uint64_t inputLength, double sampleRate);

/// Gives the shortest minimum silence that can be entered (kMinSilenceMs) in whole samples.
///     shortestSilence(44100) -> 4410
std::int64_t shortestSilence(double sampleRate);

} // namespace tarvel
