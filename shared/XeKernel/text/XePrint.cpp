#include "XePrint.h"

#include "XeSafeCRT.h"
#include "text/ClampedConversion.h"
#include "text/NumericStyle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string_view>

namespace {

struct _Decimals {
    float unit; // 10^-d in single precision
    int scale;  // 10^d
};

constexpr _Decimals kDecimals[] = {
    {1e-0f, 1},      {1e-1f, 10},      {1e-2f, 100},      {1e-3f, 1000},      {1e-4f, 10000},
    {1e-5f, 100000}, {1e-6f, 1000000}, {1e-7f, 10000000}, {1e-8f, 100000000}, {1e-9f, 1000000000},
};

constexpr int kLongestWhole = std::numeric_limits<double>::max_exponent10 + 1; // digits

/// A unit below the true power of ten would round ties down. It may be off by half a unit in its
/// last place, so that much more is allowed. Units that are exact or above need nothing.
constexpr double _tieAllowance(const _Decimals& decimals)
{
    if (static_cast<double>(decimals.unit) >= 1.0 / decimals.scale) {
        return 0.0;
    }
    const float next = std::bit_cast<float>(std::bit_cast<std::uint32_t>(decimals.unit) + 1);
    return 0.5 * (static_cast<double>(next) - static_cast<double>(decimals.unit));
}

const _Decimals& _decimalsOf(std::wstring_view pattern)
{
    const std::size_t point = pattern.find(L'.');
    const std::size_t count = point == pattern.npos ? 0 : pattern.size() - point - 1;
    return kDecimals[std::min(count, std::size(kDecimals) - 1)];
}

/// Appends decimal point and fraction. The scale in front of the fraction (".05" is 105 at scale
/// 100) makes printf write its leading zeros; the point then takes the place of the 1.
void _appendFraction(_XeString<wchar_t>& text, double fraction, int scale)
{
    wchar_t digits[16];
    XeCRT::swprintf_s(digits, std::size(digits), L"%d", scale + truncatedTo<int>(fraction));
    digits[0] = currentNumericStyle().decimalPoint();
    text += digits;
}

/// 2 << 0, 3 << 0, 2 << 1, 3 << 1, 2 << 2 ... for 1, 2, 3, 4, 5 ... steps.
double _magnification(unsigned steps)
{
    constexpr unsigned kSteps = 98;
    if (steps > kSteps) {
        return 0x1p50;
    }
    return std::ldexp(steps % 2 == 1 ? 2.0 : 3.0, static_cast<int>((steps - 1) / 2));
}

/// Samples in one pixel of a ratio below 1. The small excess keeps reciprocals such as 1/(1/3)
/// from falling below the tie.
double _samplesPerPixel(double ratio) { return std::nearbyint(1.0 / ratio + 0.000000015); }

} // namespace

int PrettyNumber(_XeString<wchar_t>& text)
{
    constexpr std::size_t kGroup = 3;

    const NumericStyle& style = currentNumericStyle();
    text.erase(text.find_last_not_of(L"\t ") + 1);
    if (text.empty()) {
        text = L"0";
        return 1;
    }
    const std::size_t start = std::min(text.find_first_not_of(L"\t 0"), text.size());
    const std::size_t point = std::min(text.find(style.decimalPoint(), start), text.size());
    const std::size_t digits = point - start - (start < point && text[start] == L'-' ? 1 : 0);
    if (digits <= kGroup) {
        return static_cast<int>(text.size());
    }
    std::size_t separators = (digits - 1) / kGroup;
    const std::size_t length = text.size();
    text.resize(length + separators);
    std::copy_backward(text.begin() + point, text.begin() + length, text.end());
    for (std::size_t from = point; separators != 0; --separators) {
        wchar_t* const group = text.data() + from - kGroup;
        std::copy_backward(group, group + kGroup, group + kGroup + separators);
        group[separators - 1] = style.thousandsSeparator();
        from -= kGroup;
    }
    return static_cast<int>(text.size());
}

int FormatFloatPretty(_XeString<wchar_t>& out, double value, _XeString<wchar_t>& pattern,
                      bool pretty)
{
    const _Decimals& decimals = _decimalsOf(pattern);
    const double rounded =
        std::fabs(value) + 0.5 * static_cast<double>(decimals.unit) + _tieAllowance(decimals);
    const double whole = std::trunc(rounded);
    wchar_t digits[kLongestWhole + 1];
    XeCRT::swprintf_s(digits, std::size(digits), L"%.0f", whole);
    out = digits;
    if (pretty) {
        PrettyNumber(out);
    }
    if (decimals.scale > 1 && std::isfinite(value)) {
        _appendFraction(out, decimals.scale * (rounded - whole), decimals.scale);
    }
    return 0;
}

void XeFormatterPlatform::stringFromDouble(_XeString<wchar_t>& out, double value,
                                           const wchar_t* pattern)
{
    _XeString<wchar_t> decimals(pattern != nullptr ? pattern : L"");
    FormatFloatPretty(out, value, decimals, true);
    if (value < 0) {
        out.insert(0, 1, L'-');
    }
}

double ZoomRatioUtils::ZoomRatioFromHMagnify(int magnify)
{
    constexpr double kSmallest = 1.0 / 24.0;

    if (magnify == 0) {
        return 1.0;
    }
    if (magnify > 0) {
        return _magnification(static_cast<unsigned>(magnify));
    }
    return std::max(1.0 / _magnification(0u - static_cast<unsigned>(magnify)), kSmallest);
}

void ZoomRatioUtils::ZoomRatioTextFromHMagnify(int magnify, _XeString<wchar_t>& text)
{
    ZoomRatioTextFromZoomRatio(ZoomRatioFromHMagnify(magnify), text);
}

void ZoomRatioUtils::ZoomRatioTextFromZoomRatio(double ratio, _XeString<wchar_t>& text)
{
    if (ratio < 1.0) {
        XeSprintf(text, L"%d:%ld", truncatedTo<int>(_samplesPerPixel(ratio)), 1L);
    } else {
        XeSprintf(text, L"%d:%ld", 1, truncatedTo<long>(ratio + 0.5));
    }
}

void ZoomRatioUtils::PixelDensityFromZoomRatio(double ratio, long long* a, long long* b)
{
    const bool reduced = ratio < 1.0;
    if (a != nullptr) {
        *a = reduced ? 1 : truncatedTo<long long>(ratio + 0.5);
    }
    if (b != nullptr) {
        *b = reduced ? truncatedTo<std::int32_t>(_samplesPerPixel(ratio)) : 1;
    }
}
