#include "XePosFmt.h"

#include "XeSafeCRT.h"
#include "text/ClampedConversion.h"
#include "text/PosFmtTable.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr long long kSecondsPerDay = 86400;
constexpr long long kFilmFramesPerDay = 2073600; // at 24 frames a second
constexpr long long kDropFramesPerDay = 2589408; // of 29.97 drop-frame code
constexpr double kRoundUp = 0.999;               // truncation then rounds all but a hair up

unsigned _secondsOf(const XESMPTEVAL& label)
{
    return label.minutes * 60 + label.hours * 3600 + label.seconds;
}

/// Drop-frame code skips the first numbers of every minute but each tenth.
bool _minuteDrops(unsigned minutes) { return minutes % 10 != 0; }

/// Numbers skipped in the minutes of an hour, `pairs` pairs a minute.
unsigned _droppedInMinutes(unsigned minutes, unsigned pairs)
{
    return (minutes - minutes / 10) * pairs * 2;
}

/// Splits a frame count into the fields of a label.
XESMPTEVAL _fieldsOf(long long count, unsigned fps)
{
    const long long framesPerHour = fps * 3600LL;
    const long long framesPerMinute = fps * 60LL;
    const long long inHour = count % framesPerHour;
    const long long inMinute = inHour % framesPerMinute;
    XESMPTEVAL label;
    label.hours = static_cast<unsigned>(count / framesPerHour);
    label.minutes = static_cast<unsigned>(inHour / framesPerMinute);
    label.seconds = static_cast<unsigned>(inMinute / fps);
    label.frames = static_cast<unsigned>(inMinute % fps);
    return label;
}

} // namespace

long long typeToRollFrame(_zqposfmt_format type, unsigned fps)
{
    switch (formatTraits(type).day) {
    case Day::Video:
        return fps * kSecondsPerDay;
    case Day::Film:
        return fps * kFilmFramesPerDay / 24;
    case Day::Drop:
        break;
    }
    return fps * kDropFramesPerDay / 30;
}

unsigned calcDroppedFrames(unsigned frames, unsigned fps)
{
    const unsigned pairs = fps / 30;
    if (pairs == 0) {
        return 0;
    }
    const std::uint64_t framesPerHour = fps * std::uint64_t{3600};
    const auto hours = static_cast<unsigned>(frames / framesPerHour);
    const auto minutes = static_cast<unsigned>(frames % framesPerHour / (fps * std::uint64_t{60}));
    return pairs * hours * 108 + _droppedInMinutes(minutes, pairs);
}

unsigned XePosFmt::dropFrameToNonDropFrame(unsigned frames, unsigned fps)
{
    unsigned count = frames;
    unsigned dropped = 0;
    // Each round can only find more dropped numbers. Fewer mean that the count has wrapped, and
    // the search would go round for ever.
    for (unsigned next = calcDroppedFrames(count, fps); next > dropped;
         next = calcDroppedFrames(count, fps)) {
        count = count - dropped + next;
        dropped = next;
    }
    return count;
}

XESMPTEVAL XePosFmt::framesToSmpte(long long frames, bool noRollover, bool field) const
{
    if (frames < 1) {
        return {};
    }
    const unsigned fps = std::max(wholeFrameRate(frameRate()), 1u);
    const bool drop = isSmpteDrop();
    if (!noRollover) {
        frames %= typeToRollFrame(eFormat, fps);
    }
    if (drop) {
        frames = dropFrameToNonDropFrame(static_cast<unsigned>(frames), fps);
        if (!noRollover) {
            frames %= fps * kSecondsPerDay;
        }
    }
    XESMPTEVAL label = _fieldsOf(frames, fps);
    label.field = field && bFieldMarker;
    if (drop && _minuteDrops(label.minutes) && label.seconds == 0) {
        label.frames = std::max(label.frames, 2u);
    }
    if (countsFields(*this, fps)) {
        label.field = (label.frames & 1) != 0;
        label.frames >>= 1;
    }
    return label;
}

long long XePosFmt::framesFromSMPTE(const XESMPTEVAL& label) const
{
    const unsigned fps = wholeFrameRate(frameRate());
    const unsigned seconds = _secondsOf(label);
    if (!isSmpteDrop()) {
        return seconds * fps + label.frames;
    }
    const unsigned pairs = fps / 30;
    unsigned frames = label.frames;
    if (label.seconds == 0 && _minuteDrops(label.minutes)) {
        frames = std::max(frames, 2 * pairs);
    }
    const unsigned dropped = pairs * 108 * label.hours + _droppedInMinutes(label.minutes, pairs);
    return frames - dropped + seconds * fps;
}

long long XePosFmt::smpteToPosition(unsigned sampleRate, const XESMPTEVAL& label) const
{
    const double frames = static_cast<double>(framesFromSMPTE(label)) + (label.field ? 0.5 : 0.0);
    return truncatedTo<long long>(sampleRate * frames / frameRate() + kRoundUp);
}

long long XePosFmt::hmsfToPosition(unsigned sampleRate, double fps, const XESMPTEVAL& time) const
{
    const double frames = time.frames + _secondsOf(time) * fps;
    const double rounding = eFormat == zqposfmt_time_ms ? 0.5 : kRoundUp;
    return truncatedTo<long long>(sampleRate * frames / fps + rounding);
}

bool XePosFmt::positionToMeasures(long long position, unsigned sampleRate, _measureval* measures)
{
    constexpr double kEarly = 0.00005;

    const double exact = static_cast<double>(position) * measures->tempo /
                             measures->beatsPerMeasure / 60.0 / sampleRate +
                         kEarly;
    const double whole = std::trunc(exact);
    measures->measure = static_cast<std::uint32_t>(truncatedTo<long long>(whole));
    measures->beat = (exact - whole) * measures->beatsPerMeasure;
    return true;
}

long long XePosFmt::positionFromMeasures(unsigned sampleRate, const _measureval* measures)
{
    const double beats =
        static_cast<double>(measures->beatsPerMeasure) * measures->measure + measures->beat;
    return truncatedTo<long long>(sampleRate * (beats / measures->tempo * 60.0) + 0.5);
}

long long XePosFmt::rolloverValue() const
{
    constexpr double kUnitsPerSecond = 10000000.0; // of 100 ns

    const double rate = frameRate();
    const unsigned fps = std::max(wholeFrameRate(rate), 1u);
    const auto frames = static_cast<double>(typeToRollFrame(eFormat, fps));
    return truncatedTo<long long>(std::floor(frames * kUnitsPerSecond / rate + 0.00001));
}
