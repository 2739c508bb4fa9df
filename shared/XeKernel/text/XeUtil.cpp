#include "XeUtil.h"

#include "XePath.h"
#include "XeSafeCRT.h"
#include "text/DecimalText.h"
#include "text/NumericStyle.h"

#include <boost/container/small_vector.hpp>
#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace {

using _NumberText = boost::container::small_vector<wchar_t, 64>;

bool _isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }

bool _isExponentMark(wchar_t c) { return c == L'e' || c == L'E'; }

const wchar_t* _skipSpace(const NumericStyle& style, const wchar_t* at, const wchar_t* end)
{
    while (at != end && style.isSpace(*at)) {
        ++at;
    }
    return at;
}

/// Passes over white space and a sign, which may be missing. Returns where they end.
const wchar_t* _readSign(const NumericStyle& style, const wchar_t* at, const wchar_t* end,
                         bool& negative)
{
    at = _skipSpace(style, at, end);
    negative = at != end && *at == L'-';
    return at != end && (negative || *at == L'+') ? at + 1 : at;
}

template <class Integer>
const wchar_t* _readInteger(const wchar_t* begin, const wchar_t* end, Integer& out)
{
    using Unsigned = std::make_unsigned_t<Integer>; // wraps where the signed type must not
    const NumericStyle& style = currentNumericStyle();
    bool negative = false;
    const wchar_t* at = _readSign(style, begin, end, negative);
    Unsigned value = 0;
    for (; at != end; ++at) {
        if (const std::uint32_t digit = digitValue(*at); digit < 10) {
            value = value * 10 + digit;
        } else if (*at != style.thousandsSeparator()) {
            break;
        }
    }
    out = static_cast<Integer>(negative ? Unsigned{0} - value : value);
    return _skipSpace(style, at, end);
}

/// Copies the characters of one unsigned number, without thousands separators, to `number`.
/// Returns where they end.
const wchar_t* _collectNumber(const NumericStyle& style, const wchar_t* at, const wchar_t* end,
                              _NumberText& number)
{
    const bool word = at != end && _isLetter(*at);
    for (; at != end; ++at) {
        const bool signOfExponent =
            !number.empty() && _isExponentMark(number.back()) && (*at == L'+' || *at == L'-');
        if (word ? _isLetter(*at)
                 : digitValue(*at) < 10 || *at == style.decimalPoint() || _isExponentMark(*at) ||
                       signOfExponent) {
            number.push_back(*at);
        } else if (word || *at != style.thousandsSeparator()) {
            break;
        }
    }
    return at;
}

/// Digits with at most one decimal point whose value is one rounding away from two exact doubles:
/// an integer below 2^53 and a power of ten up to 10^15 (W. D. Clinger, "How to Read Floating
/// Point Numbers Accurately", 1990). Nothing for every other number.
std::optional<double> _exactQuotient(const NumericStyle& style, const _NumberText& number)
{
    static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    std::uint64_t digits = 0;
    std::size_t afterPoint = 0;
    bool point = false;
    for (const wchar_t c : number) {
        if (const std::uint32_t digit = digitValue(c); digit < 10) {
            digits = digits * 10 + digit;
            afterPoint += point;
        } else if (c != style.decimalPoint() || std::exchange(point, true)) {
            return std::nullopt;
        }
    }
    // Fifteen digits stay below 2^53; a lone decimal point is no number.
    const std::size_t count = number.size() - point;
    if (count == 0 || count >= std::size(kPowersOfTen)) {
        return std::nullopt;
    }
    return static_cast<double>(digits) / kPowersOfTen[afterPoint];
}

double _convertNumber(const NumericStyle& style, const _NumberText& number)
{
    if (const auto value = _exactQuotient(style, number)) {
        return *value;
    }
    return boost::lexical_cast<double>(number.data(), number.size());
}

const wchar_t* _readDecimal(const wchar_t* begin, const wchar_t* end, double& out)
{
    const NumericStyle& style = currentNumericStyle();
    out = 0;
    bool negative = false;
    const wchar_t* at = _readSign(style, begin, end, negative);
    _NumberText number;
    at = _collectNumber(style, at, end, number);
    const double value = _convertNumber(style, number);
    out = negative ? -value : value;
    return at;
}

} // namespace

namespace xenon::util {

template <class Iterator, class Integer>
Iterator atoi(Iterator begin, Iterator end, Integer& out)
{
    const wchar_t* const first = std::to_address(begin);
    return begin + (_readInteger(first, std::to_address(end), out) - first);
}

template <class Iterator>
Iterator atof(Iterator begin, Iterator end, double& out)
{
    const wchar_t* const first = std::to_address(begin);
    return begin + (_readDecimal(first, std::to_address(end), out) - first);
}

using ConstIterator = _XeString<wchar_t>::const_iterator;
using Iterator = _XeString<wchar_t>::iterator;

template ConstIterator atoi(ConstIterator, ConstIterator, unsigned int&);
template ConstIterator atoi(ConstIterator, ConstIterator, unsigned long long&);
template ConstIterator atoi(ConstIterator, ConstIterator, long long&);
template Iterator atoi(Iterator, Iterator, unsigned int&);
template Iterator atoi(Iterator, Iterator, unsigned long long&);
template Iterator atoi(Iterator, Iterator, long long&);
template ConstIterator atof(ConstIterator, ConstIterator, double&);
template Iterator atof(Iterator, Iterator, double&);

wchar_t myatof(wchar_t* text, double* out)
{
    *out = 0;
    if (text == nullptr) {
        return 0;
    }
    const std::wstring_view typed = withoutLead(text);
    if (typed.empty()) {
        return 0;
    }
    const std::wstring_view number = withoutTail(typed);
    const std::size_t lead = static_cast<std::size_t>(typed.data() - text);
    std::fill_n(text + lead + number.size(), typed.size() - number.size(), L'\0');
    return *readUpToOther(currentNumericStyle(), number, *out);
}

_XeString<wchar_t> doubleToString(double value, int precision, bool trim)
{
    _XeString<wchar_t> text;
    XeSprintf(text, L"%.*f", precision, value);
    if (trim && text.find_first_of(L".,") != text.npos) {
        text.erase(text.find_last_not_of(L'0') + 1);
        text.erase(text.find_last_not_of(L".,") + 1);
    }
    return text;
}

_XeString<wchar_t> doubleToString(double value, int a, int b)
{
    const auto [fewest, most] = std::minmax(a, b);
    const std::size_t kept = fewest > 0 ? static_cast<std::size_t>(fewest) + 1 : 0; // with the '.'

    _XeString<wchar_t> text;
    XeSprintf(text, L"%.*f", most, value);
    _XeString<wchar_t> fraction = path::GetExtension(text);
    while (fraction.size() > kept && (fraction.back() == L'0' || fraction.back() == L'.')) {
        fraction.pop_back();
    }
    return path::ReplaceExtension(text, fraction);
}

} // namespace xenon::util
