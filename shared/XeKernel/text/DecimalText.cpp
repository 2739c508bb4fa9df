#include "text/DecimalText.h"

#include "XeSafeCRT.h"

namespace {

/// Adds the digits after a decimal point to `value`: 25 adds 0.25. Moves `at` to where they end.
double _readFraction(const wchar_t*& at, const wchar_t* end, double value)
{
    double unit = 10.0;
    for (; at != end && digitValue(*at) < 10; ++at) {
        value += digitValue(*at) / unit;
        unit *= 10.0;
    }
    return value;
}

} // namespace

std::wstring_view withoutLead(std::wstring_view text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::wstring_view withoutTail(std::wstring_view text)
{
    while (!text.empty() && (isBlank(text.back()) || text.back() == L'%')) {
        text.remove_suffix(1);
    }
    return text;
}

const wchar_t* readUpToOther(const NumericStyle& style, std::wstring_view text, double& out)
{
    constexpr double kAwayFromZero = 0.000000000005;

    const wchar_t* const end = text.data() + text.size();
    const std::size_t point = text.rfind(style.decimalPoint());
    const wchar_t* const wholeEnd = point == text.npos ? end : text.data() + point;

    const bool negative = text.starts_with(L'-');
    const wchar_t* at = text.data() + (negative ? 1 : 0);
    double value = 0;
    for (; at < wholeEnd; ++at) {
        if (const std::uint32_t digit = digitValue(*at); digit < 10) {
            value = value * 10 + digit;
        } else if (*at == style.thousandsSeparator()) {
            continue;
        } else if (isBlank(*at)) {
            break;
        } else {
            out = value;
            return at;
        }
    }
    if (at == wholeEnd && at != end) {
        value = _readFraction(++at, end, value);
    }
    out = negative ? -value - kAwayFromZero : value + kAwayFromZero;
    return at;
}
