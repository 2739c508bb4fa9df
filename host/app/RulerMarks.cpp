#include "RulerMarks.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

/// 1, 2 or 5 times a power of ten.
double decimalStep(double smallest)
{
    const double power = std::pow(10, std::floor(std::log10(smallest)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= smallest) {
            return factor * power;
        }
    }
    return 10 * power;
}

/// In seconds, at least one.
double clockStep(double smallest)
{
    for (const double unit : {1.0, 60.0}) {
        for (const double factor : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0}) {
            if (factor * unit >= smallest) {
                return factor * unit;
            }
        }
    }
    return 3600 * decimalStep(std::max(1.0, smallest / 3600));
}

double musicalStep(double smallest, double beat, unsigned beatsPerMeasure)
{
    double step = beat;
    if (step < smallest) {
        step *= beatsPerMeasure;
    }
    while (step < smallest) {
        step *= 2;
    }
    return step;
}

bool isMusical(std::uint32_t format)
{
    return format == zqposfmt_measures || format == zqposfmt_measures_2;
}

/// Points of a frame grid: few that divide a second, or whole seconds.
double frameStep(double smallest, double grid, double sampleRate)
{
    const auto perSecond = static_cast<unsigned>(std::lround(sampleRate / grid));
    for (unsigned points = 1; points < perSecond; ++points) {
        if (points * grid >= smallest && perSecond % points == 0) {
            return points * grid;
        }
    }
    return clockStep(smallest / sampleRate) * grid * perSecond;
}

} // namespace

double rulerStep(double smallest, const PositionStyle& style)
{
    const double grid = gridFrames(style);
    if (isMusical(style.format)) {
        return musicalStep(smallest, style.sampleRate * 60 / style.tempo, style.beatsPerMeasure);
    }
    if (grid == 1) {
        return decimalStep(std::max(smallest, 1.0));
    }
    constexpr double kCoarsestDecimal = 0.01; // seconds: coarser grids count frames
    if (grid >= style.sampleRate * kCoarsestDecimal) {
        return frameStep(smallest, grid, style.sampleRate);
    }
    const double seconds = smallest / style.sampleRate;
    return (seconds > 0.5 ? clockStep(seconds) : decimalStep(std::max(seconds, 0.001))) *
           style.sampleRate;
}

std::vector<std::uint64_t> rulerMarks(std::uint64_t frames, double smallest,
                                      const PositionStyle& style)
{
    const double step = rulerStep(smallest, style);
    std::vector<std::uint64_t> marks;
    const auto count = static_cast<std::uint64_t>(std::ceil(static_cast<double>(frames) / step));
    for (std::uint64_t i = 0; i < count; ++i) {
        // Rounded up, so that a mark reads as the frame that begins there.
        marks.push_back(
            static_cast<std::uint64_t>(std::ceil(static_cast<double>(i) * step - 0.001)));
    }
    return marks;
}

} // namespace host
