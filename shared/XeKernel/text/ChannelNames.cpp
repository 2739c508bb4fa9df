#include "XeChannelNames.h"

#include <boost/lexical_cast/try_lexical_convert.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwctype>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Text = _XeString<wchar_t>;
using View = std::wstring_view;

constexpr wchar_t kBlank[] = L" ";
constexpr wchar_t kDigits[] = L"0123456789";
constexpr View kLeft = L"L";
constexpr View kStereoWords[] = {L"stereo", L"phones", L"spdif", L"s/pdif"};

/// A run of digits in a name.
struct Run {
    std::size_t begin;
    std::size_t end;
};

/// The two runs of digits in which a name numbers its channels.
struct NumberedPair {
    Run left;
    Run right;
};

std::vector<Text> _words(const Text& name)
{
    std::vector<Text> words;
    name.tokenize(words, kBlank);
    return words;
}

bool _namesAStereoPort(Text name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return std::any_of(std::begin(kStereoWords), std::end(kStereoWords),
                       [&name](View word) { return name.find(word) != Text::npos; });
}

std::vector<Run> _digitRuns(const Text& name)
{
    std::vector<Run> runs;
    for (std::size_t begin = name.find_first_of(kDigits); begin != Text::npos;) {
        const std::size_t end = std::min(name.find_first_not_of(kDigits, begin), name.size());
        runs.push_back({begin, end});
        begin = name.find_first_of(kDigits, end);
    }
    return runs;
}

void _splitSingleRun(std::vector<Run>& runs)
{
    if (runs.size() != 1 || (runs[0].end - runs[0].begin) % 2 != 0) {
        return;
    }
    const Run whole = runs[0];
    const std::size_t middle = (whole.begin + whole.end) / 2;
    runs = {{whole.begin, middle}, {middle, whole.end}};
}

std::optional<std::uint64_t> _number(const Text& name, Run run)
{
    std::uint64_t number = 0;
    const bool read = boost::conversion::try_lexical_convert(name.data() + run.begin,
                                                             run.end - run.begin, number);
    return read ? std::optional(number) : std::nullopt;
}

std::optional<NumberedPair> _numberedPair(const Text& name)
{
    std::vector<Run> runs = _digitRuns(name);
    _splitSingleRun(runs);
    if (runs.size() != 2) {
        return std::nullopt;
    }
    const auto left = _number(name, runs[0]);
    const auto right = _number(name, runs[1]);
    const bool consecutive = left && right && *right != 0 && *left == *right - 1;
    return consecutive ? std::optional(NumberedPair{runs[0], runs[1]}) : std::nullopt;
}

/// The name with one number of the pair in place of both. Its words end in a blank each, the last
/// one is not wanted here.
Text _withNumber(const Text& base, const NumberedPair& pair, Run number)
{
    Text name = base;
    name.replace(pair.left.begin, pair.right.end - pair.left.begin,
                 base.substr(number.begin, number.end - number.begin));
    name.pop_back();
    return name;
}

/// True when `word` could be read as the number of one of `count` channels.
bool _looksLikeChannel(Text word, unsigned count)
{
    const bool negative = word.starts_with(L'-');
    if (negative || word.starts_with(L'+')) {
        word.erase(0, 1);
    }
    unsigned number = 0;
    if (!boost::conversion::try_lexical_convert(word.data(), word.size(), number)) {
        return false;
    }
    number = negative ? 0u - number : number;
    return number != 0 && number < count + 2;
}

} // namespace

void XeChannelizeStereoName(const Text& name, Text& left, Text& right)
{
    std::vector<Text> words = _words(name);
    const bool hasLeft = std::erase(words, kLeft) != 0;
    const bool isStereo = hasLeft || _namesAStereoPort(name);
    Text base;
    for (const Text& word : words) {
        base += word;
        base += kBlank;
    }
    if (const auto pair = _numberedPair(base)) {
        left = _withNumber(base, *pair, pair->left);
        right = _withNumber(base, *pair, pair->right);
        return;
    }
    left = base + (isStereo ? L"L" : L"1");
    right = base + (isStereo ? L"R" : L"2");
}

void XeGenerateUniqueChannelNames(const Text& name, unsigned count, std::vector<Text>& names)
{
    Text base = name;
    base.trim(kBlank);
    names.resize(count);
    if (count == 2) {
        XeChannelizeStereoName(base, names[0], names[1]);
        return;
    }
    if (count == 1) {
        names[0] = base;
        return;
    }
    const std::vector<Text> words = _words(base);
    const bool needsDash = !words.empty() && _looksLikeChannel(words.back(), count);
    const wchar_t* const pattern = needsDash ? L"%ls - %d" : L"%ls %d";
    for (unsigned i = 1; i <= count; ++i) {
        XeSprintf(names[i - 1], pattern, base.c_str(), i);
    }
}
