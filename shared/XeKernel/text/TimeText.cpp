#include "XePosFmt.h"

#include "XeSafeCRT.h"
#include "XeUtil.h"
#include "text/NumericStyle.h"

#include <boost/container/small_vector.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>
#include <utility>

namespace {

using _Text = boost::container::small_vector<wchar_t, 64>;

std::wstring_view _trimmed(std::wstring_view text, const NumericStyle& style)
{
    while (!text.empty() && style.isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && style.isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Spreads a run of digits, read as frames, over the fields in pairs. False for more than four
/// pairs.
bool _splitPairs(std::size_t digits, XESMPTEVAL& label)
{
    constexpr std::size_t kMostDigits = 8;

    const std::uint32_t number = label.frames;
    label.hours = number / 1000000;
    label.minutes = number / 10000 % 100;
    label.seconds = number / 100 % 100;
    label.frames = number % 100;
    return digits <= kMostDigits;
}

/// Reads the fields of a label from the right, so that missing ones in front are 0. What is not a
/// digit separates. False for more than four fields.
bool _readFields(std::wstring_view typed, XESMPTEVAL& label)
{
    constexpr int kMostSeparators = 3;

    int separators = 0;
    for (const wchar_t c : typed) {
        if (!not_isdigit(c)) {
            label.frames = label.frames * 10 + digitValue(c);
            continue;
        }
        if (++separators > kMostSeparators) {
            return false;
        }
        label.hours = label.minutes;
        label.minutes = label.seconds;
        label.seconds = label.frames;
        label.frames = 0;
    }
    return separators != 0 || _splitPairs(typed.size(), label);
}

/// Carries frames into seconds and turns the second-field mark into what the rate makes of it.
void _carryFrames(XESMPTEVAL& label, unsigned fps, bool halfStep, bool marked)
{
    const unsigned rate = halfStep ? fps / 2 : fps;
    if (rate == 0) {
        return;
    }
    label.seconds += label.frames / rate;
    label.frames %= rate;
    if (halfStep) {
        label.frames = label.frames * 2 + (marked ? 1 : 0);
    } else {
        label.field = marked;
    }
}

void _carrySeconds(XESMPTEVAL& label)
{
    label.minutes += label.seconds / 60;
    label.seconds %= 60;
    label.hours += label.minutes / 60;
    label.minutes %= 60;
    label.hours %= 24;
}

/// True when the separators of a clock time are in order: at most two ':', then at most one
/// decimal point.
bool _isClockShaped(std::wstring_view text, wchar_t decimalPoint)
{
    int colons = 0;
    bool point = false;
    for (const wchar_t c : text) {
        if (c == L':' && (point || ++colons > 2)) {
            return false;
        }
        if (c == decimalPoint && std::exchange(point, true)) {
            return false;
        }
    }
    return true;
}

/// The whole part of a number in 32 bits. What does not fit wraps; infinity and NaN become 0.
std::uint32_t _wrappedTo32(double value)
{
    constexpr double kRange = 0x1p32;

    const double rest = std::fmod(std::trunc(value), kRange);
    if (std::isnan(rest)) {
        return 0;
    }
    return static_cast<std::uint32_t>(rest < 0 ? rest + kRange : rest);
}

} // namespace

bool is_separator(wchar_t c) { return c == L'.' || c == L':' || c == L';'; }

bool not_isdigit(wchar_t c)
{
    const std::uint32_t code = codeOf(c);
    return code > 255 || std::isdigit(static_cast<int>(code)) == 0;
}

bool AsciiToSMPTE(const _XeString<wchar_t>& text, XESMPTEVAL* out, unsigned fps, bool halfStep)
{
    *out = {};
    std::wstring_view typed = _trimmed(text, currentNumericStyle());
    const bool marked = typed.ends_with(L'*');
    typed.remove_suffix(marked ? 1 : 0);
    XESMPTEVAL label;
    if (!_readFields(typed, label)) {
        return false;
    }
    _carryFrames(label, fps, halfStep, marked);
    _carrySeconds(label);
    *out = label;
    return true;
}

bool AsciiToTime(const _XeString<wchar_t>& text, XESMPTEVAL* out)
{
    constexpr int kRounds = 3; // hours, minutes, seconds

    *out = {};
    _Text buffer(text.c_str(), text.c_str() + std::char_traits<wchar_t>::length(text.c_str()) + 1);
    if (!_isClockShaped({buffer.data(), buffer.size() - 1}, currentNumericStyle().decimalPoint())) {
        return false;
    }
    wchar_t* field = buffer.data();
    for (int round = 0; round < kRounds; ++round) {
        double value = 0;
        const wchar_t stop = xenon::util::myatof(field, &value);
        out->hours = out->minutes;
        out->minutes = out->seconds;
        out->seconds = _wrappedTo32(value);
        out->frames = _wrappedTo32((value - std::trunc(value)) * 1000.0);
        if (stop != L':') {
            return stop == 0;
        }
        field += std::wstring_view(field).find(L':') + 1;
    }
    return false;
}

bool AsciiToMeasures(const _XeString<wchar_t>& text, _measureval* out)
{
    constexpr double kQuarterBeats = 0.25 * 10;

    out->measure = 0;
    out->beat = 0.0;
    auto at = xenon::util::atoi(text.begin(), text.end(), out->measure);
    if (at == text.end()) {
        return true;
    }
    if (*at++ != L':') {
        return false;
    }
    if (at == text.end()) {
        return true;
    }
    try {
        at = xenon::util::atof(at, text.end(), out->beat);
    } catch (const boost::bad_lexical_cast&) {
        return false;
    }
    if (at == text.end()) {
        double whole = 0;
        const double decimals = std::modf(out->beat, &whole);
        out->beat = whole + decimals * kQuarterBeats;
    }
    return true;
}
