#pragma once

#include "XePosFmt.h"

#include <cstddef>
#include <cstdint>
#include <optional>

/// Turns whole sample counts into the text of a position format and back. [any]
///
///     LengthText text;
///     text.setSampleRate(44100);
///     text.setType(zqposfmt_time_ms);
///     text.render(44100);     // "00:00:01.000"
///     text.parse(L"1.5");     // 66150
///
/// A format has a grid: its frames, milliseconds, ticks, film frames. parse() gives the sample of a
/// grid point: frames, whole seconds and film rounded up, points of the other grids the nearest
/// sample, as XePosFmt places them. render() shows a point for a sample:
///
///     the nearest            clock time with milliseconds, seconds, frames with decimals; also
///                            where the grid is finer than the samples
///     the last not after it  time code, whole seconds, measures, film
///
/// So 220 samples at 44100 Hz, what is left of 5 ms, show as "00:00:00.005". What was rendered is
/// parsed to a count that shows the same text, and to the same count when a grid point lies on it.
///
/// Negative counts render as the positive count with a "-" in front. Hours do not wrap at 24: a
/// length of 25 hours is 25 hours. A count beyond what a format can show renders as the largest
/// text of the format (4.5 years of time code at 30 frames a second).
///
/// Musical formats: a beat is what the tempo counts, whatever the denominator of the time
/// signature. Film runs at 24 frames a second. Percent needs a percent base; without one it is
/// shown in samples, as are counts and every unknown type.
class LengthText {
public:
    /// Samples, 44100 Hz, 75 frames a second where a type has no rate of its own, 120 beats a
    /// minute, 4/4, four ticks a beat.
    LengthText();

    /// Changes the type as XePosFmt::setType() does: a type with a frame rate of its own brings it.
    void setType(_zqposfmt_format type);
    _zqposfmt_format type() const { return m_format.eFormat; }

    /// Samples per second of the conversions. Hz, any fraction. A rate that is not positive or not
    /// finite is ignored, here and below.
    void setSampleRate(double rate);

    /// Samples per second that increment() counts with; setSampleRate() does not change it. Hz,
    /// rounded to a whole number.
    void setFormatSampleRate(double rate);

    /// Frames per second of the types without a rate of their own; the others ignore it.
    void setFrameRate(double rate);

    /// Beats per minute.
    void setTempo(double tempo);

    /// Numerator in the upper 16 bits, denominator in the lower 16 bits. A numerator of 0 is
    /// ignored.
    void setTimeSignature(std::uint32_t signature);

    /// Parts of a beat. 0 is ignored.
    void setTicksPerBeat(std::uint32_t ticks);

    /// Samples that are 100 %. 0, as from the start: unknown.
    void setPercentBase(std::int64_t samples);

    /// Measures and beats of a position count from one, those of a duration from zero. A duration
    /// from the start.
    void setIsLength(bool isLength) { m_isLength = isLength; }

    /// XePosFmt::getIncrement(), but never below 1: one natural step of the type, in samples.
    std::int64_t increment() const;

    /// The text of a sample count in the long form of the type.
    _XeString<wchar_t> render(std::int64_t samples) const;

    /// The sample count of a text, or nothing for a text that does not belong to the type.
    ///
    ///     clock time      "1:02:03.5", "62.5", decimal comma or point
    ///     time code       "1:02:03:04", "1.2.3;4", "1-2-3-4", "304" (pairs from the right)
    ///     measures        "5", "5:2", "5:2.1", from the left: measure, beat, tick
    ///     film            "12+3", "195" (frames)
    ///     plain numbers   "1.5", "1,5"; whole numbers may be grouped, "1,234,567"; "50 %"
    ///
    /// White space around the text and one sign in front are allowed, missing fields are zero.
    /// Fields may be larger than a clock shows and carry upwards. "*" after time code is the second
    /// field of the frame, half a frame later. A number too large gives the last count that the
    /// format has.
    std::optional<std::int64_t> parse(const _XeString<wchar_t>& text) const;

    /// What a step leads to: the count, and which characters of its text were stepped.
    struct Step {
        std::int64_t samples;
        std::size_t start;
        std::size_t length;
    };

    /// Steps one part of the shown value up or down: the hours, minutes, seconds or frames, the
    /// measure, beat or tick, the feet or frames whose digits hold the caret.
    ///
    /// A type with a plain number, and a selection that reaches beyond one part, step by
    /// increment() instead, rounded to the grid. A count of 0 or more does not go below 0.
    ///
    /// @param samples    The count to start from.
    /// @param text       What is shown, the rendering of `samples` or a text that parses to it.
    /// @param start      First selected character of `text`, or the caret.
    /// @param length     Characters selected, 0 for a caret.
    /// @param direction  +1 or -1, or more steps at once.
    Step step(std::int64_t samples, const _XeString<wchar_t>& text, std::size_t start,
              std::size_t length, int direction) const;

private:
    struct Traits;
    struct Fields;

    const Traits& _traits() const;
    unsigned _wholeFrameRate() const;
    bool _countsFields() const;
    unsigned _beatsPerMeasure() const;

    // Grid points are doubles: whole numbers from 0 to _lastPoint(), with a fraction when typed
    // finer than the grid.
    double _pointsPerSecond() const;
    double _lastPoint() const;
    std::int64_t _positionOf(double point) const;
    bool _showsNearest() const;
    double _pointOf(std::int64_t samples) const;

    _XeString<wchar_t> _renderPoint(double point) const;
    _XeString<wchar_t> _renderMeasures(double point) const;
    double _pointFrom(const Fields& fields) const;
    double _labelPoint(const Fields& fields) const;
    static XESMPTEVAL _label(double seconds, double frames);

    double _partWeight(std::size_t partFromRight) const;
    double _stepLabel(double point, double delta) const;
    double _stepPart(double point, std::size_t partFromRight, int direction) const;
    double _stepNaturally(double point, int direction) const;
    std::int64_t _step(std::int64_t samples, std::optional<std::size_t> partFromRight,
                       int direction) const;

    XePosFmt m_format;
    double m_sampleRate = 44100;
    bool m_isLength = true;
};
