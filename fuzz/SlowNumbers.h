#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

/// Readers written a second time, plainly, for the classic locale: '.' and ',' are the punctuation
/// and only ASCII white space is white.
namespace slow {

inline bool isSpace(wchar_t c)
{
    return std::wstring(L" \t\n\v\f\r").find(c) != std::wstring::npos && c != 0;
}

inline bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

struct Integer {
    std::uint64_t value; ///< modulo 2^64
    std::size_t end;     ///< index where reading ended
};

/// What xenon::util::atoi reads.
inline Integer readInteger(const std::wstring& text)
{
    std::size_t at = 0;
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    std::uint64_t sign = 1;
    if (at < text.size() && (text[at] == L'+' || text[at] == L'-')) {
        sign = text[at] == L'-' ? ~std::uint64_t{0} : 1; // -1
        ++at;
    }
    std::wstring digits;
    while (at < text.size() && (isDigit(text[at]) || text[at] == L',')) {
        digits += text[at++];
    }
    std::erase(digits, L',');
    std::uint64_t value = 0;
    std::uint64_t place = sign;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, place *= 10) {
        value += place * static_cast<std::uint64_t>(*digit - L'0');
    }
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return {value, at};
}

} // namespace slow
