#pragma once

#include "XePropertyMap.h"
#include "XeString.h"

#include <cstdint>

/// How a position or a length in an audio timeline is shown and typed. The values are stored with
/// documents and effects. A value from 23 on is allowed and behaves as a plain integer without a
/// frame rate.
enum _zqposfmt_format : std::uint32_t {
    zqposfmt_samples = 0,               ///< samples: 441000
    zqposfmt_time_ms = 1,               ///< clock time with milliseconds: 00:00:10.000
    zqposfmt_seconds = 2,               ///< seconds: 10.000
    zqposfmt_time_frames = 3,           ///< clock time and frames at a free rate: 00:00:10.00
    zqposfmt_frames = 4,                ///< frames at a free rate: 750.000
    zqposfmt_measures = 5,              ///< measures, beats and quarter beats: 6:1.0
    zqposfmt_smpte_29_97 = 6,           ///< SMPTE 29.97 non-drop: 00:00:09:29
    zqposfmt_smpte_30 = 7,              ///< SMPTE 30
    zqposfmt_smpte_29_97_drop = 8,      ///< SMPTE 29.97 drop frame: 00:00:09;29
    zqposfmt_smpte_25 = 9,              ///< SMPTE 25
    zqposfmt_smpte_24 = 10,             ///< SMPTE 24
    zqposfmt_count = 11,                ///< integer, written like samples, with step 1
    zqposfmt_count_2 = 12,              ///< integer, a second one for the caller to tell apart
    zqposfmt_measures_2 = 13,           ///< measures and beats with step 1
    zqposfmt_decimal = 14,              ///< decimal number with step 1
    zqposfmt_feet_frames_35mm = 15,     ///< feet and frames, 16 frames a foot: 15+0
    zqposfmt_feet_frames_16mm = 16,     ///< feet and frames, 40 frames a foot: 6+0
    zqposfmt_frames_75 = 17,            ///< minutes, seconds and frames at 75 a second
    zqposfmt_smpte_23_976 = 18,         ///< SMPTE 23.976
    zqposfmt_time = 19,                 ///< clock time without fraction: 00:00:10
    zqposfmt_percent = 20,              ///< percentage of ccPercentBase: 50
    zqposfmt_smpte_half_step = 21,      ///< non-drop time code counted in fields
    zqposfmt_smpte_half_step_drop = 22, ///< drop-frame time code counted in fields
};

/// A time-code label or clock time.
struct XESMPTEVAL {
    std::uint32_t reserved = 0; ///< always 0
    std::uint32_t hours = 0;
    std::uint32_t minutes = 0;
    std::uint32_t seconds = 0;
    std::uint32_t frames = 0; ///< frames, or milliseconds of a clock time
    bool field = false;       ///< the position lies in the second field (half) of the frame

    friend bool operator==(const XESMPTEVAL&, const XESMPTEVAL&) = default;
};

/// A position in measures and beats, with the musical context that gives it a length.
struct _measureval {
    std::uint16_t reserved = 0; ///< not read
    std::uint16_t beatsPerMeasure = 0;
    std::uint32_t measure = 0;
    double tempo = 0; ///< beats per minute
    double beat = 0;  ///< within the measure, with a fraction
};

/// A length of film. Frames a foot depend on the gauge, see zqposfmt_feet_frames_35mm.
struct faf_val {
    long long feet = 0;
    long long frames = 0;

    friend bool operator==(const faf_val&, const faf_val&) = default;
};

/// Describes how positions are shown, and converts between sample positions, time-code labels and
/// text.
///
///     XePosFmt format(zqposfmt_samples);
///     format.setType(zqposfmt_smpte_29_97_drop);
///     format.smpteToString(format.framesToSmpte(1800, false, false), 0);  // "00:01:00;02"
///     format.framesFromSMPTE(format.smpteFromString(L"1:00;02"));         // 1800
///
/// A plain value: fields may be set directly, copies are complete, nothing is locked. [any]
///
/// The frame rate of a conversion is frameRate(), rounded half away from zero to whole frames a
/// second where labels are counted. A rate that is not positive counts as 0 frames a second, one
/// beyond 32 bits as the largest number. A rate that is infinite, or stored as NaN where the type
/// has no rate of its own, makes the conversion throw boost::math::rounding_error.
///
/// Sums and products of labels are in 32 bits and wrap. Doubles that become integers are clamped
/// to the integer's range, NaN becomes 0.
class XePosFmt {
public:
    /// Bit of the `flags` of every function that makes text: the short form, without the part
    /// below a second (or below a whole number, or below a beat).
    static constexpr unsigned kShortForm = 2;

    std::uint32_t dwReserved = 0;      ///< copied with the rest, never stored
    _zqposfmt_format eFormat;          ///< the type; setType() also sets the frame rate
    std::uint32_t dwSampleRate = 0;    ///< samples per second
    double dFrameRate = 0;             ///< frames per second; 0 means the rate of the type
    double dTempo = 0;                 ///< beats per minute
    long long ntOffset = 0;            ///< a position offset for the caller's use, in samples
    long long ccPercentBase = 0;       ///< samples that count as 100 % for zqposfmt_percent
    bool bFieldMarker = false;         ///< whether framesToSmpte() may set XESMPTEVAL::field
    std::uint32_t dwTimeSignature = 0; ///< numerator << 16 | denominator: 4/4 is 0x00040004
    std::uint32_t cTicksPerBeat = 0;   ///< ticks per beat

    /// A format of the type, everything else zero: also the frame rate, so that the type's own
    /// rate applies.
    explicit XePosFmt(_zqposfmt_format type) : eFormat(type) {}

    /// Copies every field.
    void assign(const XePosFmt& other) { *this = other; }

    /// Changes the type. A type with a frame rate of its own (75 for zqposfmt_time_frames)
    /// overwrites dFrameRate; the others, and the type that is set already, leave it alone.
    void setType(_zqposfmt_format type);

    /// Makes SMPTE types count fields: 29.97, 30, 25, 24 and 23.976 become
    /// zqposfmt_smpte_half_step, 29.97 drop becomes zqposfmt_smpte_half_step_drop. Other types and
    /// the frame rate stay; set dFrameRate first, the new types have no rate of their own.
    void changeTypeToHalfStep();

    /// True for the types shown as hours, minutes, seconds and a part of a second. Clock time
    /// without fraction is not one of them.
    bool isHMSF() const;

    /// True for the two drop-frame types.
    bool isSmpteDrop() const;

    /// Frames per second: dFrameRate unless it is 0 (its magnitude is below the double epsilon, or
    /// it is NaN), then typeToFrameRate().
    double frameRate() const;

    /// The type's own rate, dFrameRate for zqposfmt_time_frames, -1 for types without a rate.
    double typeToFrameRate() const;

    /// The time-code type for a video rate and its multiples and fractions: 48 gives
    /// zqposfmt_smpte_24.
    ///
    /// A whole rate must match exactly, a fractional one to less than 0.005. An unknown whole rate
    /// gives zqposfmt_time_frames, an unknown fractional one zqposfmt_time_ms.
    ///
    /// @param drop  Whether 29.97 and its family give the drop-frame type.
    static _zqposfmt_format posFmtTypeByFramerate(double rate, bool drop);
    static _zqposfmt_format typeFromFramerate(double rate, bool drop)
    {
        return posFmtTypeByFramerate(rate, drop);
    }

    /// The printf formats of the type. The long form gives frames three digits when frameRate() is
    /// 100 or more.
    _XeString<wchar_t> typeToFormatShort() const;
    _XeString<wchar_t> typeToFormatLong() const;
    _XeString<wchar_t> typeToFormat(unsigned flags) const;

    /// The natural step of the type in samples, rounded up: a tenth of a second for clock time
    /// with milliseconds and seconds, a frame at dFrameRate for types that count frames, a beat at
    /// dTempo for measures, a percent of ccPercentBase; 1 for all others.
    ///
    /// A rate or tempo of 0 gives the largest number, or 0 when the sample rate is 0 too.
    long long getIncrement() const;

    /// Takes the sign off a typed text: "-1:00" -> "1:00" with `sign` -1, "+5" -> "5" with +1. One
    /// character at most.
    static _XeString<wchar_t> prepareString(const _XeString<wchar_t>& text, int& sign);

    /// The label of a frame count since 0:00:00:00.
    ///
    /// Below 1 the label is zero. Unless `noRollover`, the count first wraps at typeToRollFrame()
    /// and a drop-frame label at 24 hours. Drop-frame counts are taken in 32 bits. In minutes that
    /// are not a multiple of ten the labels ;00 and ;01 of drop-frame types become ;02, also at
    /// rates below 30, where nothing is dropped and three frames then share that label.
    ///
    /// The half-step types count fields when the rounded rate is 31 or more: the label shows half
    /// the count, and XESMPTEVAL::field its lowest bit.
    ///
    /// @param field  What XESMPTEVAL::field becomes otherwise, if bFieldMarker allows it.
    /// @throws boost::math::rounding_error, see the class.
    XESMPTEVAL framesToSmpte(long long frames, bool noRollover, bool field) const;

    /// The frame count of a label; XESMPTEVAL::field is ignored, so the count of a half-step label
    /// is only right as smpteFromString() delivers it. Drop-frame labels that do not exist mean
    /// the first that does. Minutes, seconds and frames may be larger than a clock shows.
    ///
    /// @return  A 32-bit count.
    /// @throws boost::math::rounding_error, see the class.
    long long framesFromSMPTE(const XESMPTEVAL& label) const;

    /// The count that drop-frame labels show for a frame count: 1800 -> 1802 at 30.
    /// @param fps  Whole frames a second; below 30 nothing is dropped.
    static unsigned dropFrameToNonDropFrame(unsigned frames, unsigned fps);

    /// The label in the type's format: "01:02:03:04", and "*" after it for the second field. Empty
    /// for types whose format takes other values than whole hours, minutes, seconds and frames (or
    /// measures, beats and quarter beats).
    _XeString<wchar_t> smpteToString(const XESMPTEVAL& label, unsigned flags) const;

    /// Reads a label as AsciiToSMPTE does, at the rounded rate.
    /// @throws int kXeUnexpected for a text that is no label.
    /// @throws boost::math::rounding_error, see the class.
    XESMPTEVAL smpteFromString(const _XeString<wchar_t>& text) const;

    /// smpteToString without the field marker.
    _XeString<wchar_t> hmsfToString(const XESMPTEVAL& time, unsigned flags) const;

    /// Hours, minutes and seconds as short as they go, whatever the type: "1:02:03", "2:03",
    /// "0:03". `flags` is not used.
    _XeString<wchar_t> hmsfToStringCompact(const XESMPTEVAL& time, unsigned flags) const;

    /// Reads a clock time: AsciiToTime for the two clock-time types, AsciiToSMPTE for those that
    /// count frames (zqposfmt_frames_75 carries frames from 75 on, zqposfmt_time_frames not at
    /// all).
    /// @throws int kXeUnexpected for a text that is no time, and for every other type.
    XESMPTEVAL hmsfFromString(const _XeString<wchar_t>& text) const;

    /// A whole number in the type's format: samples, counts, percent. Empty for types whose format
    /// takes other values.
    _XeString<wchar_t> samplesToString(long long samples, unsigned flags) const;
    _XeString<wchar_t> microSecondToString(long long microSeconds, unsigned flags) const;

    /// Read a whole number as xenon::util::atoi does.
    /// @throws int kXeUnexpected when that stops before the end of the text.
    static long long samplesFromString(const _XeString<wchar_t>& text);
    static long long microSecondsFromString(const _XeString<wchar_t>& text);

    /// A decimal number in the type's format: seconds, frames. Empty for types whose format takes
    /// other values.
    _XeString<wchar_t> metricToString(double value, unsigned flags) const;

    /// Reads a decimal number as xenon::util::atof does.
    /// @throws int kXeUnexpected for what is no number, or followed by anything.
    static double metricFromString(const _XeString<wchar_t>& text);

    /// "feet+frames". Empty for types whose format takes other values.
    _XeString<wchar_t> feetAndFramesToString(faf_val length, unsigned flags) const;

    /// Reads "feet+frames" or plain frames: "12+3", "3". Of more than two numbers the last two
    /// count. A text that begins with "+" is zero, as is the empty text. Each number is read as
    /// 32 bits without sign.
    /// @throws int kXeUnexpected when a piece is no number.
    static faf_val feetAndFramesFromString(const _XeString<wchar_t>& text);

    /// The sample position of a label, rounded up (a position less than a thousandth of a sample
    /// above a whole number stays on it). The second field is half a frame later.
    /// @throws boost::math::rounding_error, see the class.
    long long smpteToPosition(unsigned sampleRate, const XESMPTEVAL& label) const;

    /// The sample position of a clock time whose frames are 1/fps seconds each: to the nearest
    /// sample for zqposfmt_time_ms, rounded up as by smpteToPosition() for all other types.
    long long hmsfToPosition(unsigned sampleRate, double fps, const XESMPTEVAL& time) const;

    /// Fills measure and beat, both from 0, of a sample position. Tempo and beats per measure are
    /// read from `measures`. Positions up to 0.00005 of a measure early count as on the measure.
    /// @return  Always true.
    static bool positionToMeasures(long long position, unsigned sampleRate, _measureval* measures);

    /// The sample position of measure and beat, to the nearest sample.
    static long long positionFromMeasures(unsigned sampleRate, const _measureval* measures);

    /// The length after which labels of the type start again, in units of 100 ns, rounded down;
    /// see typeToRollFrame().
    /// @throws boost::math::rounding_error, see the class.
    long long rolloverValue() const;

    /// Inserts type, rates, tempo, offset, percent base, time signature and ticks into a map under
    /// the names of the fields. Entries that are in the map already keep their values.
    void persist(XePropertyMap& map) const;

    /// Reads back what persist() inserts; an entry that is missing or of another type gives 0 (and
    /// a missing one is added to the map, empty). The type is applied with setType() after the
    /// frame rate, so that a change of type also sets the type's rate.
    void restore(XePropertyMap& map);
};

/// Frames after which labels of a type start again: 24 hours, at `fps` whole frames a second. The
/// length of 24 hours of drop-frame code is also used for the types that are not video, so clock
/// time with milliseconds rolls over at 86313600 ms.
long long typeToRollFrame(_zqposfmt_format type, unsigned fps);

/// Counts the frame numbers that drop-frame time code has skipped before a label.
///
/// Two numbers (four at 60 frames per second) are skipped at the start of every minute that is not
/// a multiple of ten. No picture is lost, only numbers.
///
/// @param frames  Label position in frames since 00:00:00;00, counted without skipping.
/// @param fps     Nominal whole rate, 30 for 29.97 or 60 for 59.94.
/// @return        Numbers skipped before the label; 0 for every rate below 30.
///
/// Any thread. Rule: drop-frame compensation of SMPTE ST 12-1.
unsigned calcDroppedFrames(unsigned frames, unsigned fps);

/// True for '.', ':' and ';'.
bool is_separator(wchar_t c);

/// True for everything but the decimal digits of the C library's character table (codes 0 to 255).
bool not_isdigit(wchar_t c);

/// Reads a time-code label, forgivingly. [any]
///
///     "01:02:03:04", "01.02.03;04", "1-2-3-4"  ->  1 h 2 min 3 s 4 frames
///     "3:04", "304"                            ->  3 s 4 frames
///     "10:00:00:45" at 30                      ->  10 h 1 s 15 frames
///     "1:00*"                                  ->  1 s, second field
///
/// Anything but a digit separates, missing fields in front are 0, digits without any separator are
/// read in pairs from the right. White space around the text is ignored. Numbers too large carry
/// into the next field; hours wrap at 24.
///
/// @param out       Cleared first, then filled. Not null.
/// @param fps       Whole frames a second for the carry; 0 keeps the frames as they are, without
///                  carry and without field marker.
/// @param halfStep  `fps` counts fields: frames are read as fps / 2 a second and become fields, to
///                  which a "*" adds one. A rate of 1 has no half and counts as 0.
/// @return          False for more than four fields, nothing else.
bool AsciiToSMPTE(const _XeString<wchar_t>& text, XESMPTEVAL* out, unsigned fps, bool halfStep);

/// Reads a clock time, with milliseconds in the frames field. [any]
///
///     "5" -> 5 s;  "2:05.25" -> 2 min 5 s 250 ms;  "1:02:03" -> 1 h 2 min 3 s;  "90" -> 90 s
///
/// Each field is read as xenon::util::myatof does, so thousands separators, blanks and a '%' at
/// the end are allowed. Nothing is carried, and a number that does not fit 32 bits wraps, a
/// negative one too. The text ends at its first zero character.
///
/// @param out  Cleared first, then filled, in part when the result is false. Not null.
/// @return     False for a third ':', a second decimal point, a ':' after a decimal point, and any
///             other character that is not part of a number.
bool AsciiToTime(const _XeString<wchar_t>& text, XESMPTEVAL* out);

/// Reads measure and beat, "3:2.1", and leaves the rest of `out` alone. [any]
///
/// The measure is read as xenon::util::atoi does, the beat as xenon::util::atof does. When the
/// beat reaches to the end of the text, its decimals count quarter beats: "3:2.1" is beat 2.25.
/// When something follows, the beat is what was read.
///
/// @param out  Not null.
/// @return     False when neither the end nor ':' follows the measure, or no number the ':'.
bool AsciiToMeasures(const _XeString<wchar_t>& text, _measureval* out);
