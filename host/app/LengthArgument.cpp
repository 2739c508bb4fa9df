#include "LengthArgument.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace host {

namespace {

constexpr double kFilmRate = 24;
constexpr double kTempo = 120;
constexpr unsigned kBeatsPerMeasure = 4;
constexpr unsigned kTicksPerBeat = 4;   // digits after a beat count quarters of it
constexpr std::size_t kMostDigits = 15; // doubles hold every such number
constexpr std::size_t kMostDigitsOfField = 9;
constexpr std::uint64_t kSecondsOfDay = 86400;
// A position less than this before a sample falls on it, as in the kernel's time code.
constexpr double kRoundUp = 0.999;

constexpr std::string_view kDigits = "0123456789";

/// How a format turns texts into audio frames and back. Its grid are the steps that it can show.
struct Notation {
    std::string_view separators; // each of them between two digits
    std::size_t mostDigits;      // of a field
    // Both may throw what the kernel's readers throw.
    std::optional<double> (*read)(const XePosFmt&, const std::wstring&, LengthKind, unsigned rate);
    std::wstring (*show)(const XePosFmt&, std::uint64_t step, LengthKind);
    double (*stepsPerSecond)(const XePosFmt&, unsigned rate);
    double rounding;
};

// ---- samples and seconds

constexpr Notation kSamples = {
    "",
    kMostDigits,
    [](const XePosFmt&, const std::wstring& text, LengthKind, unsigned) -> std::optional<double> {
        return static_cast<double>(XePosFmt::samplesFromString(text));
    },
    [](const XePosFmt& format, std::uint64_t step, LengthKind) -> std::wstring {
        return format.samplesToString(static_cast<long long>(step), 0);
    },
    [](const XePosFmt&, unsigned rate) -> double { return rate; },
    0,
};

constexpr Notation kSeconds = {
    ".",
    kMostDigits,
    [](const XePosFmt&, const std::wstring& text, LengthKind, unsigned rate)
        -> std::optional<double> { return std::round(XePosFmt::metricFromString(text) * rate); },
    [](const XePosFmt& format, std::uint64_t step, LengthKind) -> std::wstring {
        return format.metricToString(static_cast<double>(step) / 1000, 0);
    },
    [](const XePosFmt&, unsigned) -> double { return 1000; },
    0.5,
};

// ---- hours, minutes, seconds and a part of them

/// The numbers of a text in order; digits without separator are read in pairs from the right.
std::vector<std::uint64_t> fieldsOf(const std::wstring& text, bool inPairs)
{
    std::vector<std::uint64_t> fields(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= L'0' && text[i] <= L'9';
        if (!isDigit || (inPairs && i > 0 && (text.size() - i) % 2 == 0)) {
            fields.push_back(0);
        }
        if (isDigit) {
            fields.back() = fields.back() * 10 + static_cast<std::uint64_t>(text[i] - L'0');
        }
    }
    return fields;
}

/// Whether seconds and larger fields stay within a day, where the kernel's labels start again.
bool isWithinDay(const std::vector<std::uint64_t>& fields, std::uint64_t moreSeconds)
{
    std::uint64_t seconds = 0;
    for (const std::uint64_t field : fields) {
        seconds = seconds * 60 + field;
    }
    return seconds + moreSeconds < kSecondsOfDay;
}

bool isLabelWithinDay(const XePosFmt& format, std::wstring text)
{
    text = text.substr(0, text.find(L'*'));
    const bool inPairs = text.find_first_not_of(L"0123456789") == text.npos;
    std::vector<std::uint64_t> fields = fieldsOf(text, inPairs);
    const auto secondsOfFrames =
        static_cast<std::uint64_t>(static_cast<double>(fields.back()) / format.frameRate());
    fields.pop_back();
    return isWithinDay(fields, secondsOfFrames);
}

template <typename Read>
std::optional<double> readLabel(const XePosFmt& format, const std::wstring& text, Read read)
{
    return isLabelWithinDay(format, text) ? std::optional(static_cast<double>(read()))
                                          : std::nullopt;
}

std::wstring showLabel(const XePosFmt& format, std::uint64_t step, LengthKind)
{
    return format.hmsfToString(format.framesToSmpte(static_cast<long long>(step), true, false), 0);
}

double frameRateOf(const XePosFmt& format, unsigned) { return format.frameRate(); }

constexpr Notation kClock = {
    ":.",
    kMostDigitsOfField,
    [](const XePosFmt& format, const std::wstring& text, LengthKind,
       unsigned rate) -> std::optional<double> {
        if (!isWithinDay(fieldsOf(text.substr(0, text.find(L'.')), false), 0)) {
            return std::nullopt;
        }
        // The kernel's milliseconds are whole, the typed ones need not be.
        const double seconds = XePosFmt::metricFromString(
            L"0" + (text.find(L'.') == text.npos ? L".0" : text.substr(text.find(L'.'))));
        XESMPTEVAL time = format.hmsfFromString(text);
        time.frames = 0;
        const auto whole = static_cast<double>(format.hmsfToPosition(rate, 1, time));
        return whole + std::round(seconds * rate);
    },
    showLabel,
    frameRateOf,
    0.5,
};

constexpr Notation kTimeCode = {
    ":;.",
    kMostDigitsOfField,
    [](const XePosFmt& format, const std::wstring& text, LengthKind,
       unsigned rate) -> std::optional<double> {
        return readLabel(format, text, [&] {
            return format.smpteToPosition(rate, format.smpteFromString(text));
        });
    },
    showLabel,
    frameRateOf,
    kRoundUp,
};

constexpr Notation kTimeAndFrames = {
    ":;.",
    kMostDigitsOfField,
    [](const XePosFmt& format, const std::wstring& text, LengthKind,
       unsigned rate) -> std::optional<double> {
        return readLabel(format, text, [&] {
            return format.hmsfToPosition(rate, format.frameRate(), format.hmsfFromString(text));
        });
    },
    showLabel,
    frameRateOf,
    kRoundUp,
};

// ---- music and film

constexpr Notation kMeasures = {
    ":.",
    kMostDigitsOfField,
    [](const XePosFmt&, const std::wstring& text, LengthKind kind,
       unsigned rate) -> std::optional<double> {
        _measureval measures;
        measures.beatsPerMeasure = kBeatsPerMeasure;
        measures.tempo = kTempo;
        // The kernel leaves alone what follows the beat.
        const bool hasMore = std::count(text.begin(), text.end(), L':') > 1 ||
                             std::count(text.begin(), text.end(), L'.') > 1;
        if (hasMore || !AsciiToMeasures(text, &measures)) {
            return std::nullopt;
        }
        if (kind == LengthKind::Position) {
            const bool hasBeat = text.find(L':') != text.npos;
            if (measures.measure < 1 || (hasBeat && measures.beat < 1)) {
                return std::nullopt;
            }
            measures.measure -= 1;
            measures.beat -= hasBeat ? 1 : 0;
        }
        return static_cast<double>(XePosFmt::positionFromMeasures(rate, &measures));
    },
    [](const XePosFmt& format, std::uint64_t step, LengthKind kind) -> std::wstring {
        const unsigned first = kind == LengthKind::Position ? 1 : 0;
        const std::uint64_t beats = step / kTicksPerBeat;
        XESMPTEVAL fields; // measure, beat and quarter of a beat, as this type writes them
        fields.hours = static_cast<std::uint32_t>(beats / kBeatsPerMeasure) + first;
        fields.minutes = static_cast<std::uint32_t>(beats % kBeatsPerMeasure) + first;
        fields.seconds = static_cast<std::uint32_t>(step % kTicksPerBeat);
        return format.smpteToString(fields, 0);
    },
    [](const XePosFmt&, unsigned) -> double { return kTempo / 60 * kTicksPerBeat; },
    0.5,
};

template <unsigned FramesPerFoot>
constexpr Notation kFilm = {
    "+",
    kMostDigitsOfField,
    [](const XePosFmt&, const std::wstring& text, LengthKind,
       unsigned rate) -> std::optional<double> {
        const faf_val film = XePosFmt::feetAndFramesFromString(text);
        const auto frames = static_cast<double>(film.feet * FramesPerFoot + film.frames);
        return std::floor(frames / kFilmRate * rate + kRoundUp);
    },
    [](const XePosFmt& format, std::uint64_t step, LengthKind) -> std::wstring {
        const auto frames = static_cast<long long>(step);
        return format.feetAndFramesToString({frames / FramesPerFoot, frames % FramesPerFoot}, 0);
    },
    [](const XePosFmt&, unsigned) -> double { return kFilmRate; },
    kRoundUp,
};

// ---- the tables

// clang-format off
constexpr LengthFormat kFormats[] = {
    { "samples",          zqposfmt_samples,          "4329600" },
    { "time",             zqposfmt_time_ms,          "00:01:30.200" },
    { "seconds",          zqposfmt_seconds,          "90.200" },
    { "time-frames",      zqposfmt_time_frames,      "00:01:30.15" },
    { "measures",         zqposfmt_measures,         "45:0.1" },
    { "smpte-23.976",     zqposfmt_smpte_23_976,     "00:01:30:02" },
    { "smpte-24",         zqposfmt_smpte_24,         "00:01:30:04" },
    { "smpte-25",         zqposfmt_smpte_25,         "00:01:30:05" },
    { "smpte-29.97",      zqposfmt_smpte_29_97,      "00:01:30:03" },
    { "smpte-29.97-drop", zqposfmt_smpte_29_97_drop, "00:01:30;05" },
    { "smpte-30",         zqposfmt_smpte_30,         "00:01:30:06" },
    { "feet-35mm",        zqposfmt_feet_frames_35mm, "135+4" },
    { "feet-16mm",        zqposfmt_feet_frames_16mm, "54+4" },
    { "cd",               zqposfmt_frames_75,        "00:01:30:15" },
};

constexpr const Notation* kNotations[] = { // in the same order
    &kSamples, &kClock, &kSeconds, &kTimeAndFrames, &kMeasures,
    &kTimeCode, &kTimeCode, &kTimeCode, &kTimeCode, &kTimeCode, &kTimeCode,
    &kFilm<16>, &kFilm<40>, &kTimeAndFrames,
};
static_assert(std::size(kNotations) == std::size(kFormats));

constexpr struct { std::string_view name; double seconds; } kUnits[] = {
    { "ms", 0.001 }, { "min", 60 }, { "sec", 1 }, { "s", 1 }, // longer endings first
};
constexpr std::string_view kSampleUnits[] = { "samples", "smp" };
// clang-format on

XePosFmt formatOf(_zqposfmt_format type)
{
    XePosFmt format(zqposfmt_samples);
    format.setType(type); // with its frame rate
    return format;
}

const Notation& notationOf(_zqposfmt_format type)
{
    const auto* const row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                         [type](const auto& each) { return each.type == type; });
    return row == std::end(kFormats) ? kSamples : *kNotations[row - std::begin(kFormats)];
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Takes a unit off the end, and the blanks before it.
bool takeUnit(std::string_view& text, std::string_view unit)
{
    if (!text.ends_with(unit)) {
        return false;
    }
    text = trimmed(text.substr(0, text.size() - unit.size()));
    return true;
}

/// Digits, and between them single separators of the notation.
bool isWellFormed(std::string_view text, const Notation& notation)
{
    std::size_t digits = 0;
    for (const char c : text) {
        if (kDigits.find(c) != kDigits.npos) {
            ++digits;
        } else if (digits > 0 && notation.separators.find(c) != notation.separators.npos) {
            digits = 0;
        } else {
            return false;
        }
        if (digits > notation.mostDigits) {
            return false;
        }
    }
    return digits > 0;
}

/// Format of a text that comes without one.
_zqposfmt_format guessedFormat(std::string_view text)
{
    if (text.find(':') != text.npos) {
        return zqposfmt_time_ms;
    }
    return text.find('.') != text.npos ? zqposfmt_seconds : zqposfmt_samples;
}

std::optional<std::uint64_t> readIn(_zqposfmt_format type, std::string_view text, LengthKind kind,
                                    unsigned sampleRate)
{
    const Notation& notation = notationOf(type);
    const bool isTimeCode = &notation == &kTimeCode;
    const bool isSecondField = isTimeCode && text.ends_with('*');
    if (!isWellFormed(text.substr(0, text.size() - (isSecondField ? 1 : 0)), notation)) {
        return std::nullopt;
    }
    const std::wstring wide(text.begin(), text.end());
    try {
        const auto frames = notation.read(formatOf(type), wide, kind, sampleRate);
        return frames ? std::optional(static_cast<std::uint64_t>(*frames)) : std::nullopt;
    } catch (int) { // the kernel's readers, for a text that is none of theirs
        return std::nullopt;
    }
}

/// Audio frames before a step of the grid.
std::uint64_t framesBefore(double step, double stepsPerSecond, unsigned rate, double rounding)
{
    return static_cast<std::uint64_t>(rate * step / stepsPerSecond + rounding);
}

} // namespace

std::span<const LengthFormat> lengthFormats() { return kFormats; }

const LengthFormat* findLengthFormat(std::string_view name)
{
    const auto* const row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                         [name](const auto& each) { return each.name == name; });
    return row == std::end(kFormats) ? nullptr : row;
}

std::optional<std::uint64_t> readLength(const std::string& text,
                                        std::optional<_zqposfmt_format> format, LengthKind kind,
                                        unsigned sampleRate)
{
    std::string_view rest = trimmed(text);
    for (const auto& unit : kSampleUnits) {
        if (takeUnit(rest, unit)) {
            return readIn(zqposfmt_samples, rest, kind, sampleRate);
        }
    }
    for (const auto& unit : kUnits) {
        if (takeUnit(rest, unit.name)) {
            if (!isWellFormed(rest, kSeconds) || std::count(rest.begin(), rest.end(), '.') > 1) {
                return std::nullopt;
            }
            const double number =
                XePosFmt::metricFromString(std::wstring(rest.begin(), rest.end()));
            return static_cast<std::uint64_t>(std::llround(number * unit.seconds * sampleRate));
        }
    }
    return readIn(format.value_or(guessedFormat(rest)), rest, kind, sampleRate);
}

std::string lengthText(std::uint64_t frames, _zqposfmt_format type, LengthKind kind,
                       unsigned sampleRate)
{
    const XePosFmt format = formatOf(type);
    const Notation& notation = notationOf(type);
    const double perSecond = notation.stepsPerSecond(format, sampleRate);
    const auto before = [&](double step) {
        return framesBefore(step, perSecond, sampleRate, notation.rounding);
    };
    double step = std::floor(static_cast<double>(frames) * (perSecond / sampleRate));
    while (before(step + 1) <= frames) {
        ++step;
    }
    while (step > 0 && before(step) > frames) {
        --step;
    }
    const std::wstring text = notation.show(format, static_cast<std::uint64_t>(step), kind);
    return {text.begin(), text.end()}; // digits and separators only
}

} // namespace host
