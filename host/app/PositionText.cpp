#include "PositionText.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace host {

namespace {

constexpr double kFilmRate = 24;
constexpr double kFreeFrameRate = 75;
constexpr unsigned kTicksPerBeat = 4;
constexpr double kLastPoint = 4e9; // labels count in 32 bits

enum class Kind { Samples, Clock, WholeClock, Seconds, Label, FrameNumber, Measures, Film };

struct FormatRow {
    _zqposfmt_format format;
    Kind kind;
};

// What is not here is written in samples.
constexpr FormatRow kFormats[] = {
    {zqposfmt_time_ms, Kind::Clock},         {zqposfmt_seconds, Kind::Seconds},
    {zqposfmt_time_frames, Kind::Label},     {zqposfmt_frames, Kind::FrameNumber},
    {zqposfmt_measures, Kind::Measures},     {zqposfmt_smpte_29_97, Kind::Label},
    {zqposfmt_smpte_30, Kind::Label},        {zqposfmt_smpte_29_97_drop, Kind::Label},
    {zqposfmt_smpte_25, Kind::Label},        {zqposfmt_smpte_24, Kind::Label},
    {zqposfmt_measures_2, Kind::Measures},   {zqposfmt_feet_frames_35mm, Kind::Film},
    {zqposfmt_feet_frames_16mm, Kind::Film}, {zqposfmt_frames_75, Kind::Label},
    {zqposfmt_smpte_23_976, Kind::Label},    {zqposfmt_time, Kind::WholeClock},
};

Kind kindOf(std::uint32_t format)
{
    const auto* const row =
        std::find_if(std::begin(kFormats), std::end(kFormats),
                     [format](const FormatRow& each) { return each.format == format; });
    return row == std::end(kFormats) ? Kind::Samples : row->kind;
}

XePosFmt formatOf(const PositionStyle& style)
{
    const bool isKnown = kindOf(style.format) != Kind::Samples;
    XePosFmt format(isKnown ? static_cast<_zqposfmt_format>(style.format) : zqposfmt_samples);
    format.dwSampleRate = static_cast<std::uint32_t>(std::lround(style.sampleRate));
    format.dTempo = style.tempo;
    if (format.typeToFrameRate() <= 0) {
        format.dFrameRate = kFreeFrameRate;
    }
    return format;
}

double pointsPerSecond(Kind kind, const XePosFmt& format, const PositionStyle& style)
{
    switch (kind) {
    case Kind::Clock:
    case Kind::Seconds:
        return 1000;
    case Kind::WholeClock:
        return 1;
    case Kind::Label:
        return format.frameRate();
    case Kind::FrameNumber:
        return format.frameRate() * 1000;
    case Kind::Measures:
        return style.tempo / 60 * kTicksPerBeat;
    case Kind::Film:
        return kFilmRate;
    case Kind::Samples:
        break;
    }
    return style.sampleRate;
}

/// Frames begin on the first sample that is not before them, finer points on the nearest.
double frameOf(double point, double framesPerPoint, Kind kind)
{
    const bool roundsUp = kind == Kind::Label || kind == Kind::WholeClock || kind == Kind::Film;
    return std::floor(point * framesPerPoint + (roundsUp ? 0.999 : 0.5));
}

double lastPointUpTo(std::uint64_t frame, double framesPerPoint, Kind kind)
{
    const auto wanted = static_cast<double>(frame);
    if (framesPerPoint < 1) {
        return std::round(wanted / framesPerPoint);
    }
    double point = std::floor(wanted / framesPerPoint);
    if (frameOf(point + 1, framesPerPoint, kind) <= wanted) {
        ++point;
    }
    return std::min(point, kLastPoint);
}

XESMPTEVAL measuresOf(std::uint64_t ticks, const PositionStyle& style)
{
    const std::uint64_t beats = ticks / kTicksPerBeat;
    const unsigned first = style.isLength ? 0 : 1;
    XESMPTEVAL label;
    label.hours = static_cast<std::uint32_t>(beats / style.beatsPerMeasure) + first;
    label.minutes = static_cast<std::uint32_t>(beats % style.beatsPerMeasure) + first;
    label.seconds = static_cast<std::uint32_t>(ticks % kTicksPerBeat);
    return label;
}

_XeString<wchar_t> pointText(double point, Kind kind, const XePosFmt& format,
                             const PositionStyle& style)
{
    const auto count = static_cast<long long>(point);
    const long long foot = style.format == zqposfmt_feet_frames_16mm ? 40 : 16;
    switch (kind) {
    case Kind::Clock:
        return format.hmsfToString(format.framesToSmpte(count, true, false), 0);
    case Kind::WholeClock:
        return format.hmsfToString(format.framesToSmpte(count * 1000, true, false), 0);
    case Kind::Label:
        return format.smpteToString(format.framesToSmpte(count, true, false), 0);
    case Kind::Seconds:
    case Kind::FrameNumber:
        return format.metricToString(point / 1000, 0);
    case Kind::Measures:
        return format.smpteToString(measuresOf(static_cast<std::uint64_t>(point), style), 0);
    case Kind::Film:
        return format.feetAndFramesToString({count / foot, count % foot}, 0);
    case Kind::Samples:
        break;
    }
    return format.samplesToString(count, 0);
}

} // namespace

double gridFrames(const PositionStyle& style)
{
    return style.sampleRate / pointsPerSecond(kindOf(style.format), formatOf(style), style);
}

std::string positionText(std::uint64_t frame, const PositionStyle& style)
{
    const Kind kind = kindOf(style.format);
    const XePosFmt format = formatOf(style);
    const double point = kind == Kind::Samples ? static_cast<double>(frame)
                                               : lastPointUpTo(frame, gridFrames(style), kind);
    const _XeString<wchar_t> text = pointText(point, kind, format, style);
    return {text.begin(), text.end()}; // ASCII
}

} // namespace host
