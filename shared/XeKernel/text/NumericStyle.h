#pragma once

#include <array>
#include <cstdint>
#include <locale>
#include <string_view>
#include <type_traits>

/// How a locale writes numbers, copied out of its facets: asking a facet costs more than reading a
/// whole number.
class NumericStyle {
public:
    explicit NumericStyle(const std::locale& locale);

    /// True while the style says what `locale` says.
    bool isOf(const std::locale& locale) const { return m_locale == locale; }

    wchar_t decimalPoint() const { return m_decimalPoint; }
    wchar_t thousandsSeparator() const { return m_thousandsSeparator; }

    /// White space as the locale classes it.
    bool isSpace(wchar_t c) const
    {
        const auto code = static_cast<std::uint32_t>(c);
        return code < m_asciiSpace.size() ? m_asciiSpace[code]
                                          : m_letters->is(std::ctype_base::space, c);
    }

private:
    std::locale m_locale; // keeps m_letters alive
    const std::ctype<wchar_t>* m_letters;
    wchar_t m_decimalPoint;
    wchar_t m_thousandsSeparator;
    std::array<bool, 128> m_asciiSpace;
};

/// The style of the global locale as it is now. One copy per thread, made anew when the global
/// locale has changed since this thread's last call; the reference is good until the next call.
const NumericStyle& currentNumericStyle();

/// The value of a decimal digit, 10 or more for any other character.
inline std::uint32_t digitValue(wchar_t c)
{
    return static_cast<std::uint32_t>(c) - static_cast<std::uint32_t>(L'0');
}

/// xenon::util::atoi over plain pointers, with the style already looked up.
template <class Integer>
const wchar_t* readInteger(const NumericStyle& style, const wchar_t* begin, const wchar_t* end,
                           Integer& out)
{
    using Unsigned = std::make_unsigned_t<Integer>; // wraps where the signed type must not
    const wchar_t* at = begin;
    while (at != end && style.isSpace(*at)) {
        ++at;
    }
    const bool negative = at != end && *at == L'-';
    if (at != end && (negative || *at == L'+')) {
        ++at;
    }
    Unsigned value = 0;
    for (; at != end; ++at) {
        if (const std::uint32_t digit = digitValue(*at); digit < 10) {
            value = value * 10 + digit;
        } else if (*at != style.thousandsSeparator()) {
            break;
        }
    }
    out = static_cast<Integer>(negative ? Unsigned{0} - value : value);
    while (at != end && style.isSpace(*at)) {
        ++at;
    }
    return at;
}
