#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <locale>

/// A character's code, the same whether wchar_t has a sign or not.
inline std::uint32_t codeOf(wchar_t c) { return std::bit_cast<std::uint32_t>(c); }

/// The value of a decimal digit, 10 or more for any other character.
inline std::uint32_t digitValue(wchar_t c) { return codeOf(c) - codeOf(L'0'); }

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
        const std::uint32_t code = codeOf(c);
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
