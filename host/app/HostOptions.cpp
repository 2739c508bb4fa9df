#include "HostOptions.h"

#include "BatchOptions.h"
#include "host/effect/AudioFile.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace host {

namespace {

constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 4.0;

bool readScale(const std::string& word, double& scale)
{
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, scale);
    return result.ec == std::errc() && result.ptr == end && scale >= kSmallestScale &&
           scale <= kLargestScale;
}

std::string takeBundle(HostOptions& options, const std::string& value)
{
    options.bundle = value;
    return "";
}

std::string takeSnapshot(HostOptions& options, const std::string& value)
{
    options.snapshot = value;
    return "";
}

std::string takeScale(HostOptions& options, const std::string& value)
{
    if (readScale(value, options.scale)) {
        return "";
    }
    return "The scale must be a number from 0.5 to 4, not " + quotedPath(value) + ".";
}

struct OptionRow {
    std::string_view name;
    // Keeps the value; the sentence that says why it cannot, or "".
    std::string (*take)(HostOptions& options, const std::string& value);
};

constexpr OptionRow kOptions[] = {
    {"--bundle", takeBundle},
    {"--scale", takeScale},
    {"--snapshot", takeSnapshot},
};

const OptionRow* findOption(std::string_view name)
{
    const auto* const row =
        std::find_if(std::begin(kOptions), std::end(kOptions),
                     [name](const OptionRow& each) { return each.name == name; });
    return row == std::end(kOptions) ? nullptr : row;
}

std::string takeRecording(HostOptions& options, const std::string& word)
{
    if (options.recording) {
        return "Only one recording can be opened, not " + quotedPath(word) + " as well.";
    }
    options.recording = word;
    return "";
}

class Parser {
public:
    explicit Parser(const std::vector<std::string>& words) : m_words(words) {}

    std::string next(HostOptions& options)
    {
        const std::string& word = m_words[m_next++];
        if (m_optionsEnded || word.empty() || word[0] != '-') {
            return takeRecording(options, word);
        }
        if (word == "--") {
            m_optionsEnded = true;
            return "";
        }
        if (word == "--help" || word == "-h") {
            options.help = true;
            return "";
        }
        const OptionRow* const row = findOption(word);
        if (row == nullptr) {
            return "There is no option " + quotedPath(word) + "; --help lists them.";
        }
        if (atEnd() || m_words[m_next].empty()) {
            return "The option " + word + " needs a value.";
        }
        return row->take(options, m_words[m_next++]);
    }

    bool atEnd() const { return m_next == m_words.size(); }

private:
    const std::vector<std::string>& m_words;
    std::size_t m_next = 0;
    bool m_optionsEnded = false;
};

} // namespace

ParsedOptions parseOptions(const std::vector<std::string>& words)
{
    ParsedOptions parsed;
    Parser parser(words);
    while (parsed.problem.empty() && !parser.atEnd()) {
        parsed.problem = parser.next(parsed.options);
    }
    return parsed;
}

std::string usage()
{
    return std::string(
               "Usage: tarvel-host [OPTION]... [--] [RECORDING]\n"
               "Opens the effect's editor beside a recording.\n"
               "\n"
               "  --bundle PATH    open the editor in this bundle, not the one beside the program\n"
               "  --scale N        draw N pixels a point, 0.5 to 4\n"
               "  --snapshot FILE  write the window to FILE (PNG), print its path and end\n"
               "  --help           show this text and end\n"
               "\n") +
           batchUsage();
}

} // namespace host
