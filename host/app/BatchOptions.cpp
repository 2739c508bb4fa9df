#include "BatchOptions.h"

#include "LengthArgument.h"
#include "host/effect/AudioFile.h"
#include "host/effect/ParameterTable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string_view>

namespace host {

namespace {

// Any rate does where only the form of a text counts.
constexpr unsigned kSomeRate = 48000;

// In the order of FadeCurve.
constexpr std::string_view kCurveNames[] = {"linear", "equal-power", "logarithmic", "exponential",
                                            "s-curve"};
static_assert(std::size(kCurveNames) == kFadeCurveCount);

/// A length option: where its text goes, and what it is.
struct LengthRow {
    std::optional<std::string> BatchOptions::*text;
    double TrimSettings::*ms;
    const char* name; // for people
    LengthKind kind;
};

// clang-format off
constexpr LengthRow kLengths[] = {
    { &BatchOptions::fadeIn,     &TrimSettings::fadeInLengthMs,  "fade-in",         LengthKind::Duration },
    { &BatchOptions::fadeOut,    &TrimSettings::fadeOutLengthMs, "fade-out",        LengthKind::Duration },
    { &BatchOptions::minSilence, &TrimSettings::minSilenceMs,    "minimum silence", LengthKind::Duration },
    { &BatchOptions::cropStart,  &TrimSettings::cropStartMs,     "crop start",      LengthKind::Position },
    { &BatchOptions::cropLength, &TrimSettings::cropLengthMs,    "crop length",     LengthKind::Duration },
};
// clang-format on

template <typename Names>
std::string joined(const Names& names)
{
    std::string text;
    for (const auto& name : names) {
        text += (text.empty() ? "" : ", ") + std::string(name);
    }
    return text;
}

// ---- one value

/// Small letters and digits only: "Trim Start and End" is "trim-start-and-end".
std::string simplified(std::string_view name)
{
    std::string text;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') {
            text += static_cast<char>(c - 'A' + 'a');
        } else if (c != ' ' && c != '-' && c != '_') {
            text += c;
        }
    }
    return text;
}

std::string takeFunction(BatchOptions& options, const std::string& value)
{
    std::string names;
    for (unsigned mode = 0; mode < kFunctionModeCount; ++mode) {
        const std::string name = functionModeName(mode);
        if (value == std::to_string(mode) || simplified(value) == simplified(name)) {
            options.settings.function = static_cast<FunctionMode>(mode);
            return "";
        }
        names += (mode == 0 ? "" : ", ") + std::to_string(mode) + " " + name;
    }
    return "There is no function " + quotedPath(value) + "; there are " + names + ".";
}

std::optional<float> readThreshold(std::string_view text)
{
    for (const std::string_view unit : {"dB", " "}) {
        while (text.ends_with(unit)) {
            text.remove_suffix(unit.size());
        }
    }
    if (simplified(text) == "inf" && text.starts_with('-')) {
        return kMinusInfinityDb;
    }
    float level = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, level);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber && level >= kMinusInfinityDb && level <= 0 ? std::optional(level)
                                                               : std::nullopt;
}

std::string takeThreshold(float& level, const char* name, const std::string& value)
{
    const std::optional<float> read = readThreshold(value);
    level = read.value_or(level);
    return read ? ""
                : std::string("The ") + name + " threshold must be from -60 to 0 dB or -inf, not " +
                      quotedPath(value) + ".";
}

/// LENGTH or LENGTH:CURVE. A length may have colons too, but no curve begins with a digit.
std::string takeFade(std::optional<std::string>& length, FadeCurve& curve, const std::string& value)
{
    const std::size_t colon = value.rfind(':');
    const bool hasCurve = colon != std::string::npos && colon + 1 < value.size() &&
                          (value[colon + 1] < '0' || value[colon + 1] > '9');
    length = value.substr(0, hasCurve ? colon : value.size());
    if (!hasCurve) {
        return "";
    }
    const std::string name = value.substr(colon + 1);
    const auto* const row = std::find(std::begin(kCurveNames), std::end(kCurveNames), name);
    if (row == std::end(kCurveNames)) {
        return "There is no fade curve " + quotedPath(name) + "; there are " + joined(kCurveNames) +
               ".";
    }
    curve = static_cast<FadeCurve>(row - std::begin(kCurveNames));
    return "";
}

std::string takeFormat(BatchOptions& options, const std::string& value)
{
    const LengthFormat* const format = findLengthFormat(value);
    if (format == nullptr) {
        return "There is no format " + quotedPath(value) + "; --help lists them.";
    }
    options.format = format->type;
    return "";
}

// ---- all of them

/// Takes the value of an option; the sentence that says why not, or "".
using Take = std::string (*)(BatchOptions& options, const std::string& value);

struct OptionRow {
    std::string_view name;
    Take take;
};

// clang-format off
constexpr OptionRow kOptions[] = {
    { "--output-dir",  [](BatchOptions& o, const std::string& value) { o.outputFolder = value; return std::string(); } },
    { "--function",    takeFunction },
    { "--attack",      [](BatchOptions& o, const std::string& value) { return takeThreshold(o.settings.attackThresholdDb, "attack", value); } },
    { "--release",     [](BatchOptions& o, const std::string& value) { return takeThreshold(o.settings.releaseThresholdDb, "release", value); } },
    { "--fade-in",     [](BatchOptions& o, const std::string& value) { return takeFade(o.fadeIn, o.settings.fadeInCurve, value); } },
    { "--fade-out",    [](BatchOptions& o, const std::string& value) { return takeFade(o.fadeOut, o.settings.fadeOutCurve, value); } },
    { "--min-silence", [](BatchOptions& o, const std::string& value) { o.minSilence = value; return std::string(); } },
    { "--crop-start",  [](BatchOptions& o, const std::string& value) { o.cropStart = value;  return std::string(); } },
    { "--crop-length", [](BatchOptions& o, const std::string& value) { o.cropLength = value; return std::string(); } },
    { "--format",      takeFormat },
};

// Options without a value.
constexpr struct { std::string_view name; bool BatchOptions::*flag; } kFlags[] = {
    { "--batch",   nullptr },
    { "--dry-run", &BatchOptions::dryRun },
    { "--help",    &BatchOptions::help },
    { "-h",        &BatchOptions::help },
};
// clang-format on

template <typename Rows>
const auto* findRow(const Rows& rows, std::string_view name)
{
    const auto* const row = std::find_if(std::begin(rows), std::end(rows),
                                         [name](const auto& each) { return each.name == name; });
    return row == std::end(rows) ? nullptr : row;
}

class Parser {
public:
    explicit Parser(const std::vector<std::string>& words) : m_words(words) {}

    std::string next(BatchOptions& options)
    {
        const std::string& word = m_words[m_next++];
        if (m_optionsEnded || word.empty() || word[0] != '-') {
            options.files.push_back(word);
            return "";
        }
        if (word == "--") {
            m_optionsEnded = true;
            return "";
        }
        if (const auto* const row = findRow(kFlags, word)) {
            if (row->flag != nullptr) {
                options.*row->flag = true;
            }
            return "";
        }
        const OptionRow* const row = findRow(kOptions, word);
        if (row == nullptr) {
            return "There is no option " + quotedPath(word) + " for a batch; --help lists them.";
        }
        return atEnd() ? "The option " + word + " needs a value."
                       : row->take(options, m_words[m_next++]);
    }

    bool atEnd() const { return m_next == m_words.size(); }

private:
    const std::vector<std::string>& m_words;
    std::size_t m_next = 0;
    bool m_optionsEnded = false;
};

/// What is wrong with the options together. Lengths are looked at here, since their format may come
/// after them.
std::string problemWith(const BatchOptions& options)
{
    for (const LengthRow& row : kLengths) {
        const auto& text = options.*row.text;
        if (text && !readLength(*text, options.format, row.kind, kSomeRate)) {
            return std::string("The ") + row.name + " " + quotedPath(*text) +
                   " is no length that can be read" + (options.format ? " in that format." : ".");
        }
    }
    if (options.outputFolder.empty() && !options.dryRun) {
        return "A batch needs the option --output-dir, the folder for its results.";
    }
    return options.files.empty() ? "A batch needs files to process." : "";
}

} // namespace

bool asksForBatch(const std::vector<std::string>& words)
{
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find(words.begin(), end, "--batch") != end;
}

ParsedBatchOptions parseBatchOptions(const std::vector<std::string>& words)
{
    ParsedBatchOptions parsed;
    Parser parser(words);
    while (parsed.problem.empty() && !parser.atEnd()) {
        parsed.problem = parser.next(parsed.options);
    }
    if (parsed.problem.empty() && !parsed.options.help) {
        parsed.problem = problemWith(parsed.options);
    }
    return parsed;
}

TrimSettings settingsFor(const BatchOptions& options, unsigned sampleRate)
{
    TrimSettings settings = options.settings;
    for (const LengthRow& row : kLengths) {
        if (const auto& text = options.*row.text) {
            const auto frames = readLength(*text, options.format, row.kind, sampleRate);
            settings.*row.ms = static_cast<double>(*frames) * 1000 / sampleRate;
        }
    }
    return settings;
}

std::string batchUsage()
{
    std::string text =
        "Usage: tarvel-host --batch --output-dir DIR [OPTION]... [--] FILE...\n"
        "Applies the effect to recordings without a window or a display.\n"
        "\n"
        "  --output-dir DIR      write each result into this folder, under the name of its file;\n"
        "                        nothing that is there already is replaced\n"
        "  --dry-run             write nothing, print what would be kept\n"
        "  --function NAME|N     what to do:";
    for (unsigned mode = 0; mode < kFunctionModeCount; ++mode) {
        text += (mode == 0 ? " " : ", ") + std::to_string(mode) + " " + functionModeName(mode);
    }
    text +=
        "\n"
        "  --attack DB           keep from where this level is reached, -60 to 0 or -inf (-48)\n"
        "  --release DB          keep up to where this level is left, -60 to 0 or -inf (-48)\n"
        "  --fade-in LENGTH[:CURVE]\n"
        "  --fade-out LENGTH[:CURVE]\n"
        "                        fade the new edges (5 ms and 50 ms, linear); CURVE is\n"
        "                        " +
        joined(kCurveNames) +
        "\n"
        "  --min-silence LENGTH  remove silences from this length on (500 ms)\n"
        "  --crop-start POSITION keep from here (0 s)\n"
        "  --crop-length LENGTH  keep so much (60 s)\n"
        "  --format FORMAT       how lengths without a unit are read, and all are printed\n"
        "  --help                show this text and end\n"
        "\n"
        "A length has a unit (\"1.5 s\", \"250 ms\", \"2 min\", \"48000 samples\") or is read in "
        "the\n"
        "format. Without a format, whole numbers are samples, decimal ones seconds, and 1:02.5 is\n"
        "a clock time. Formats, with 90.2 s at 48 kHz in each of them:\n"
        "\n";
    for (const LengthFormat& format : lengthFormats()) {
        text += "  " + std::string(format.name) + std::string(22 - format.name.size(), ' ') +
                format.example + "\n";
    }
    text +=
        "\n"
        "WAV, FLAC and AIFF stay what they are, other kinds of file become WAV. Rate, channels "
        "and\n"
        "bit depth are kept. A line is printed for every file; a file that fails is told on the\n"
        "error output and the others are still done. The exit status is 0 when all went well, 1\n"
        "when a file failed, 2 when the options are wrong.\n";
    return text;
}

} // namespace host
