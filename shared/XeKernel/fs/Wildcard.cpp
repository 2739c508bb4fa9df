#include "fs/Wildcard.h"

#include "XeSafeCRT.h"

#include <cstddef>

// Where the text after a star does not match, the star takes one character more. Only the last star
// ever has to: had an earlier one taken more, the text after it would match again no earlier.
bool matchesWildcard(std::wstring_view name, std::wstring_view pattern)
{
    constexpr wchar_t kAnyText = L'*';
    constexpr wchar_t kAnyCharacter = L'?';
    constexpr std::size_t kNone = std::wstring_view::npos;

    std::size_t at = 0; // in the pattern
    std::size_t afterStar = kNone;
    std::size_t starEnd = 0; // of what the star stands for, in the name
    for (std::size_t i = 0; i < name.size();) {
        const wchar_t wanted = at < pattern.size() ? pattern[at] : L'\0';
        if (at < pattern.size() && wanted == kAnyText) {
            afterStar = ++at;
            starEnd = i;
        } else if (at < pattern.size() && (wanted == kAnyCharacter || wanted == name[i])) {
            ++at;
            ++i;
        } else if (afterStar != kNone) {
            at = afterStar;
            i = ++starEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(kAnyText, at) == kNone;
}
