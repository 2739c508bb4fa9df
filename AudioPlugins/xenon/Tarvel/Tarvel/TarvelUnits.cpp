#include "TarvelUnits.h"

#include <cmath>
#include <limits>

namespace tarvel {

namespace {

/// Truncates toward zero; a value outside `Integer` becomes its nearest limit, NaN becomes 0.
template <typename Integer>
Integer _truncated(double value)
{
    using Limits = std::numeric_limits<Integer>;
    // 2^63 or 2^64, the first double above the range: max() itself is no double.
    const double above = std::ldexp(1.0, Limits::digits);
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= above) {
        return Limits::max();
    }
    return value > static_cast<double>(Limits::min()) ? static_cast<Integer>(value) : Limits::min();
}

} // namespace

double shownDb(float thresholdDb)
{
    return thresholdDb == kMinThresholdDb ? -std::numeric_limits<double>::infinity() : thresholdDb;
}

double shownPercent(float thresholdDb)
{
    return thresholdDb <= kMinThresholdDb ? 0.0 : std::pow(10.0, thresholdDb / 20.0) * 100.0;
}

double thresholdFromPercent(float percent)
{
    const float fullScale = percent / 100.0F;
    return fullScale == 0.0F ? kMinThresholdDb : 20.0 * std::log10(double{fullScale});
}

std::int64_t samplesFromMs(float lengthMs, double sampleRate)
{
    return _truncated<std::int64_t>(lengthMs * sampleRate / 1000.0);
}

float msFromSamples(std::int64_t samples, double sampleRate)
{
    return static_cast<float>(static_cast<double>(samples) * 1000.0 / sampleRate);
}

std::uint64_t longestLength(std::uint64_t inputLength, double sampleRate)
{
    return inputLength != 0 ? inputLength : _truncated<std::uint64_t>(sampleRate * 3600.0);
}

std::int64_t shortestSilence(double sampleRate)
{
    return _truncated<std::int64_t>(sampleRate * kMinSilenceMs / 1000.0);
}

} // namespace tarvel
