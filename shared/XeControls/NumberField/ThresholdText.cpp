#include "ThresholdText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

namespace xenon::threshold {

namespace {

constexpr double kSilence = -std::numeric_limits<double>::infinity();

// Far beyond every limit, and far from overflow in either unit.
constexpr double kLargestRead = 1000000;

// A percentage far beyond every limit, and finite.
constexpr double kLargestDecibels = 200;

constexpr std::wstring_view kBlanks = L" \t\n\r\u00a0";
constexpr std::wstring_view kSilenceNames[] = {L"-inf", L"-inf.", L"-infinity", L"-\u221e"};

// clang-format off
constexpr struct UnitName {
    std::wstring_view name;
    Unit              unit;
} kUnitNames[] = {
    { L"dbfs", Unit::Decibel },
    { L"db",   Unit::Decibel },
    { L"%",    Unit::Percent },
};
// clang-format on

std::wstring_view _trimmed(std::wstring_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == text.npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::wstring _folded(std::wstring_view text)
{
    std::wstring folded(text);
    for (wchar_t& c : folded) {
        if (c >= L'A' && c <= L'Z') {
            c += L'a' - L'A';
        } else if (c == L'\u2212') {
            c = L'-';
        }
    }
    return folded;
}

bool _isSilence(std::wstring_view text)
{
    return std::find(std::begin(kSilenceNames), std::end(kSilenceNames), text) !=
           std::end(kSilenceNames);
}

// Takes the unit off the end of a text; `unit` stays where there is none.
std::wstring_view _takeUnit(std::wstring_view text, Unit& unit)
{
    for (const UnitName& row : kUnitNames) {
        if (text.ends_with(row.name)) {
            unit = row.unit;
            return _trimmed(text.substr(0, text.size() - row.name.size()));
        }
    }
    return text;
}

bool _isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Digits with at most one decimal point or comma among them, and at least one digit.
std::optional<double> _parseUnsigned(std::wstring_view text)
{
    double value = 0;
    double place = 1;
    bool isInDecimals = false;
    bool hasDigits = false;
    for (const wchar_t c : text) {
        if (_isDigit(c)) {
            hasDigits = true;
            place /= isInDecimals ? 10 : 1;
            value = isInDecimals ? value + place * (c - L'0') : value * 10 + (c - L'0');
            value = std::min(value, kLargestRead);
        } else if ((c == L'.' || c == L',') && !isInDecimals) {
            isInDecimals = true;
        } else {
            return std::nullopt;
        }
    }
    return hasDigits ? std::optional(value) : std::nullopt;
}

std::optional<double> _parseNumber(std::wstring_view text)
{
    const bool isNegative = text.starts_with(L'-');
    if (isNegative || text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    const std::optional<double> magnitude = _parseUnsigned(_trimmed(text));
    if (!magnitude || *magnitude == 0) {
        return magnitude;
    }
    return isNegative ? -*magnitude : *magnitude;
}

double _converted(double value, Unit from, Unit to)
{
    if (from == to) {
        return value;
    }
    return to == Unit::Decibel ? decibelsFromPercent(value) : percentFromDecibels(value);
}

} // namespace

double decibelsFromPercent(double percent)
{
    return percent > 0 ? 20 * std::log10(percent / 100) : kSilence;
}

double percentFromDecibels(double decibels)
{
    return 100 * std::pow(10, std::min(decibels, kLargestDecibels) / 20);
}

std::optional<double> parse(std::wstring_view text, Unit unit)
{
    const std::wstring folded = _folded(_trimmed(text));
    Unit typedUnit = unit;
    const std::wstring_view number = _takeUnit(folded, typedUnit);
    if (_isSilence(number)) {
        return unit == Unit::Decibel ? kSilence : 0;
    }
    const std::optional<double> value = _parseNumber(number);
    return value ? std::optional(_converted(*value, typedUnit, unit)) : std::nullopt;
}

std::string render(double value, Unit unit)
{
    constexpr double kLeastShown = 0.005;
    char text[64];
    std::snprintf(text, sizeof text, unit == Unit::Decibel ? "%.2f dB" : "%.2f %%",
                  std::abs(value) < kLeastShown ? 0.0 : value);
    return text;
}

} // namespace xenon::threshold
