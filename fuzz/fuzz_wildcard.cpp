// The wildcard matcher: agrees with the definition, computed the slow way, for any pattern and
// name.

#include "FuzzInput.h"
#include "fs/Wildcard.h"

#include <vector>

namespace {

using Text = _XeString<wchar_t>;

/// Row by row: which starts of the name the pattern so far stands for.
bool slowMatch(const Text& name, const Text& pattern)
{
    std::vector<bool> matched(name.size() + 1, false);
    matched[0] = true;
    for (const wchar_t wanted : pattern) {
        std::vector<bool> next(name.size() + 1, false);
        for (std::size_t i = 0; i <= name.size(); ++i) {
            const bool before = i > 0 && matched[i - 1];
            next[i] = wanted == L'*' ? matched[i] || (i > 0 && next[i - 1])
                                     : before && (wanted == L'?' || wanted == name[i - 1]);
        }
        matched = std::move(next);
    }
    return matched[name.size()];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kMostBytes = 1000; // the slow way takes their square

    const auto [name, pattern] = twoTextsOf(bytesOf(data, size < kMostBytes ? size : kMostBytes));
    require(matchesWildcard(name, pattern) == slowMatch(name, pattern));
    require(matchesWildcard(name, name) == slowMatch(name, name));
    require(matchesWildcard(name, L"*"));
    require(matchesWildcard(name, L"*" + pattern) >= matchesWildcard(name, pattern));
    return 0;
}
