#include "PositionFormatsPage.h"

#include "XePosFmt.h"

#include <array>
#include <cmath>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Text = _XeString<wchar_t>;

constexpr unsigned kSampleRate = 48000;
constexpr double kFilmRate = 24.0; // feet and frames
constexpr std::array<long long, 4> kPositions = {0, 480000, 2880000, 178730000};

/// How a format's positions are shown and its texts read.
enum class Kind { Whole, Decimal, Clock, Frames, Measures, Film };

using enum Kind;

struct PageRow {
    _zqposfmt_format type;
    const char* name;
    Kind kind;
    double rate; // frames or units per second, 0 where the type has its own
    int framesPerFoot;
};

// clang-format off
constexpr PageRow kRows[] = {
    {zqposfmt_samples,              "samples",                           Whole,    kSampleRate, 0},
    {zqposfmt_time_ms,              "clock time with milliseconds",      Clock,    0,           0},
    {zqposfmt_seconds,              "seconds",                           Decimal,  1,           0},
    {zqposfmt_time_frames,          "clock time and frames (here 75)",   Frames,   75,          0},
    {zqposfmt_frames,               "frames (here 75)",                  Decimal,  75,          0},
    {zqposfmt_measures,             "measures, beats, quarter beats",    Measures, 0,           0},
    {zqposfmt_smpte_29_97,          "SMPTE 29.97 non-drop",              Frames,   0,           0},
    {zqposfmt_smpte_30,             "SMPTE 30",                          Frames,   0,           0},
    {zqposfmt_smpte_29_97_drop,     "SMPTE 29.97 drop frame",            Frames,   0,           0},
    {zqposfmt_smpte_25,             "SMPTE 25",                          Frames,   0,           0},
    {zqposfmt_smpte_24,             "SMPTE 24",                          Frames,   0,           0},
    {zqposfmt_count,                "integer count",                     Whole,    kSampleRate, 0},
    {zqposfmt_count_2,              "integer count (second)",            Whole,    kSampleRate, 0},
    {zqposfmt_measures_2,           "measures and beats (second)",       Measures, 0,           0},
    {zqposfmt_decimal,              "decimal number",                    Decimal,  kSampleRate, 0},
    {zqposfmt_feet_frames_35mm,     "feet and frames, 35 mm (16 a foot)",Film,     0,           16},
    {zqposfmt_feet_frames_16mm,     "feet and frames, 16 mm (40 a foot)",Film,     0,           40},
    {zqposfmt_frames_75,            "minutes, seconds and frames at 75", Frames,   0,           0},
    {zqposfmt_smpte_23_976,         "SMPTE 23.976",                      Frames,   0,           0},
    {zqposfmt_time,                 "clock time",                        Clock,    0,           0},
    {zqposfmt_percent,              "percent (here of 1 h 20 min)",      Whole,    1 / 48.,     0},
    {zqposfmt_smpte_half_step,      "SMPTE half-step (here 60 fields)",  Frames,   60,          0},
    {zqposfmt_smpte_half_step_drop, "SMPTE half-step drop (here 59.94)", Frames,   60 / 1.001,  0},
};
// clang-format on

static_assert(std::size(kRows) == zqposfmt_smpte_half_step_drop + 1);

XePosFmt formatOf(const PageRow& row)
{
    XePosFmt format(row.type);
    format.dwSampleRate = kSampleRate;
    format.dFrameRate = row.kind == Frames && row.rate != 0 ? row.rate : 0;
    if (format.dFrameRate == 0) {
        format.dFrameRate = std::max(format.typeToFrameRate(), 0.0);
    }
    if (row.type == zqposfmt_frames) {
        format.dFrameRate = row.rate;
    }
    format.dTempo = 120;
    format.ccPercentBase = kSampleRate * 4800LL;
    return format;
}

Text measuresText(const XePosFmt& format, long long position, unsigned flags)
{
    _measureval measures{.beatsPerMeasure = 4, .tempo = format.dTempo};
    XePosFmt::positionToMeasures(position, kSampleRate, &measures);
    const double whole = std::trunc(measures.beat);
    const XESMPTEVAL fields{.hours = measures.measure,
                            .minutes = static_cast<unsigned>(whole),
                            .seconds = static_cast<unsigned>((measures.beat - whole) * 4)};
    return format.hmsfToString(fields, flags);
}

Text textOf(const PageRow& row, long long position, unsigned flags)
{
    const XePosFmt format = formatOf(row);
    const double seconds = static_cast<double>(position) / kSampleRate;
    const auto units = [seconds](double rate) {
        return static_cast<long long>(std::floor(seconds * rate + 1e-6));
    };
    switch (row.kind) {
    case Whole:
        return format.samplesToString(units(row.rate), flags);
    case Decimal:
        return format.metricToString(seconds * row.rate, flags);
    case Clock:
        return format.hmsfToString(format.framesToSmpte(units(1000), false, false), flags);
    case Frames:
        return format.smpteToString(format.framesToSmpte(units(format.frameRate()), false, false),
                                    flags);
    case Measures:
        return measuresText(format, position, flags);
    case Film:
        break;
    }
    const long long frames = units(kFilmRate);
    return format.feetAndFramesToString({frames / row.framesPerFoot, frames % row.framesPerFoot},
                                        flags);
}

std::string narrow(const Text& text) { return {text.begin(), text.end()}; }

std::string code(const Text& text) { return "`" + narrow(text) + "`"; }

void writeShown(std::ostream& page)
{
    page << "## How they are shown\n\n"
            "Each cell has the long form and, where it differs, the short one.\n\n"
            "| value | format |";
    for (const long long position : kPositions) {
        page << ' ' << position << " samples |";
    }
    page << "\n|---|---|";
    for ([[maybe_unused]] const long long position : kPositions) {
        page << "---|";
    }
    page << '\n';
    for (const PageRow& row : kRows) {
        page << "| " << row.type << " | " << row.name << " |";
        for (const long long position : kPositions) {
            const Text longForm = textOf(row, position, 0);
            const Text shortForm = textOf(row, position, XePosFmt::kShortForm);
            page << ' ' << code(longForm);
            page << (shortForm == longForm ? "" : ", " + code(shortForm)) << " |";
        }
        page << '\n';
    }
}

void writeSteps(std::ostream& page)
{
    page << "\n## Frame rates, steps and roll-over\n\n"
            "The step is one unit as the arrows of a field move it, in samples. Labels start again "
            "after the roll-over.\n\n"
            "| value | format | frames per second | step | roll-over |\n|---|---|---|---|---|\n";
    for (const PageRow& row : kRows) {
        const XePosFmt format = formatOf(row);
        const double rate = format.frameRate();
        page << "| " << row.type << " | " << row.name << " | ";
        if (rate > 0) {
            const auto frames = typeToRollFrame(row.type, static_cast<unsigned>(std::lround(rate)));
            page << rate << " | " << format.getIncrement() << " | " << frames << " frames |\n";
        } else {
            page << "| " << format.getIncrement() << " | |\n";
        }
    }
}

/// What a format makes of a typed text, written in the format again.
std::string readingOf(const PageRow& row, const Text& typed)
{
    const XePosFmt format = formatOf(row);
    try {
        switch (row.kind) {
        case Whole:
            return code(format.samplesToString(XePosFmt::samplesFromString(typed), 0));
        case Decimal:
            return code(format.metricToString(XePosFmt::metricFromString(typed), 0));
        case Film:
            return code(format.feetAndFramesToString(XePosFmt::feetAndFramesFromString(typed), 0));
        case Clock:
            return code(format.hmsfToString(format.hmsfFromString(typed), 0));
        case Frames: {
            const bool clock = row.type == zqposfmt_time_frames || row.type == zqposfmt_frames_75;
            const XESMPTEVAL label =
                clock ? format.hmsfFromString(typed) : format.smpteFromString(typed);
            return code(format.smpteToString(
                format.framesToSmpte(format.framesFromSMPTE(label), false, false), 0));
        }
        case Measures:
            break;
        }
    } catch (int) {
        return "refused";
    }
    _measureval measures{.beatsPerMeasure = 4, .tempo = format.dTempo};
    if (!AsciiToMeasures(typed, &measures)) {
        return "refused";
    }
    std::ostringstream text;
    text << "measure " << measures.measure << ", beat " << measures.beat;
    return text.str();
}

struct TypedTexts {
    const char* title;
    const char* rule;
    std::vector<_zqposfmt_format> types;
    std::vector<const wchar_t*> texts;
};

const TypedTexts kTyped[] = {
    {"Samples, counts and percent",
     "A whole number with an optional sign. White space around it and thousands separators are "
     "ignored; anything else is refused. Types 0, 11, 12 and 20 read alike.",
     {zqposfmt_samples},
     {L"441000", L"-441,000", L" 5 ", L"", L"1.5", L"12 samples"}},
    {"Seconds, frames and decimal numbers",
     "A decimal number with an optional sign and exponent. Thousands separators are ignored. Types "
     "2, 4 and 14 read alike.",
     {zqposfmt_seconds},
     {L"1.5", L"-.25", L"1,234.5", L"1e3", L"", L"1.5 s", L"1.2.3"}},
    {"Clock time",
     "Hours, minutes and seconds from the right, the last with a fraction. Nothing is carried. "
     "Blanks and a percent sign at the end are ignored.",
     {zqposfmt_time_ms, zqposfmt_time},
     {L"5", L"90", L"2:05.25", L"1:02:03.5", L"1:2:3:4", L"1.5:20", L"1;02"}},
    {"Time code and frames",
     "Up to four fields from the right. Everything but a digit separates them; digits without any "
     "separator are read in pairs from the right. Frames carry into seconds and so on, hours wrap "
     "at 24. A drop-frame label that does not exist means the next one. A star marks the second "
     "field; in the half-step formats it adds one to the count. Clock time and frames (type 3) "
     "does not carry frames by itself; the table shows what they come to at 75 a second.",
     {zqposfmt_smpte_25, zqposfmt_smpte_29_97_drop, zqposfmt_time_frames, zqposfmt_frames_75,
      zqposfmt_smpte_half_step, zqposfmt_smpte_half_step_drop},
     {L"1:02:03:04", L"1.2.3.4", L"1020304", L"100", L"3-10", L"99", L"1:00;00", L"1:00:00", L"10*",
      L"25:00:00:00", L"", L"1:2:3:4:5"}},
    {"Measures and beats",
     "A measure, then after a colon a beat. The decimals of the beat count quarter beats. Types 5 "
     "and 13 read alike.",
     {zqposfmt_measures},
     {L"3", L"3:2", L"3:2.1", L"3:2.3", L"", L"3.2", L"3:x"}},
    {"Feet and frames",
     "Two whole numbers with a plus sign between, or frames alone. Types 15 and 16 read alike.",
     {zqposfmt_feet_frames_35mm},
     {L"12+3", L"3", L" 12 + 3 ", L"12+", L"+3", L"1+2+3", L"", L"12+x"}},
};

void writeTyped(std::ostream& page)
{
    page << "\n## What is accepted when typed\n";
    for (const TypedTexts& table : kTyped) {
        page << "\n### " << table.title << "\n\n" << table.rule << "\n\n| typed |";
        for (const _zqposfmt_format type : table.types) {
            page << ' ' << kRows[type].name << " |";
        }
        page << "\n|---|";
        for (std::size_t column = 0; column < table.types.size(); ++column) {
            page << "---|";
        }
        page << '\n';
        for (const wchar_t* const typed : table.texts) {
            page << "| " << (*typed == 0 ? "(nothing)" : code(typed)) << " |";
            for (const _zqposfmt_format type : table.types) {
                page << ' ' << readingOf(kRows[type], typed) << " |";
            }
            page << '\n';
        }
    }
}

} // namespace

std::string positionFormatsPage()
{
    std::ostringstream page;
    page << "# Position formats\n\n"
            "This page is written by the program it describes: build the target "
            "`position-formats-page` to\nwrite it anew. A test compares the two.\n\n"
            "Positions are sample counts at "
         << kSampleRate << " Hz, measures are at 120 beats a minute in 4/4, numbered from 0.\n\n";
    writeShown(page);
    writeSteps(page);
    writeTyped(page);
    return page.str();
}
