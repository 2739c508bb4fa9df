#include "XePosFmt.h"

#include "XeResult.h"
#include "XeSafeCRT.h"
#include "XeUtil.h"
#include "text/PosFmtTable.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>

namespace {

[[noreturn]] void _throwBadText() { throw int{kXeUnexpected}; }

/// Prints values with the type's format; empty when the format takes other values.
template <class... Values>
_XeString<wchar_t> _print(const XePosFmt& format, unsigned flags, FormatValues kind,
                          Values... values)
{
    _XeString<wchar_t> text;
    if (formatTraits(format.eFormat).text.values == kind) {
        XeSprintf(text, formatText(format, flags), values...);
    }
    return text;
}

/// Reads all of a text as one whole number.
template <class Integer, class Iterator>
Integer _readWhole(Iterator begin, Iterator end)
{
    Integer value{};
    if (xenon::util::atoi(begin, end, value) != end) {
        _throwBadText();
    }
    return value;
}

} // namespace

_XeString<wchar_t> XePosFmt::prepareString(const _XeString<wchar_t>& text, int& sign)
{
    const bool negative = text.starts_with(L'-');
    sign = negative ? -1 : 1;
    return text.substr(negative || text.starts_with(L'+') ? 1 : 0);
}

_XeString<wchar_t> XePosFmt::smpteToString(const XESMPTEVAL& label, unsigned flags) const
{
    _XeString<wchar_t> text = hmsfToString(label, flags);
    if (label.field && !text.empty()) {
        text += L'*';
    }
    return text;
}

XESMPTEVAL XePosFmt::smpteFromString(const _XeString<wchar_t>& text) const
{
    const unsigned fps = wholeFrameRate(frameRate());
    XESMPTEVAL label;
    if (!AsciiToSMPTE(text, &label, fps, countsFields(*this, fps))) {
        _throwBadText();
    }
    return label;
}

_XeString<wchar_t> XePosFmt::hmsfToString(const XESMPTEVAL& time, unsigned flags) const
{
    return _print(*this, flags, FormatValues::Fields, time.hours, time.minutes, time.seconds,
                  time.frames);
}

_XeString<wchar_t> XePosFmt::hmsfToStringCompact(const XESMPTEVAL& time, unsigned /*flags*/) const
{
    _XeString<wchar_t> text;
    if (time.hours != 0) {
        XeSprintf(text, L"%u:%02u:%02u", time.hours, time.minutes, time.seconds);
    } else {
        XeSprintf(text, L"%u:%02u", time.minutes, time.seconds);
    }
    return text;
}

XESMPTEVAL XePosFmt::hmsfFromString(const _XeString<wchar_t>& text) const
{
    XESMPTEVAL time;
    bool read = false;
    switch (eFormat) {
    case zqposfmt_time_ms:
    case zqposfmt_time:
        read = AsciiToTime(text, &time);
        break;
    case zqposfmt_time_frames:
        read = AsciiToSMPTE(text, &time, 0, false);
        break;
    case zqposfmt_frames_75:
        read = AsciiToSMPTE(text, &time, 75, false);
        break;
    default:
        break;
    }
    if (!read) {
        _throwBadText();
    }
    return time;
}

_XeString<wchar_t> XePosFmt::samplesToString(long long samples, unsigned flags) const
{
    return _print(*this, flags, FormatValues::Whole, samples);
}

_XeString<wchar_t> XePosFmt::microSecondToString(long long microSeconds, unsigned flags) const
{
    return _print(*this, flags, FormatValues::Whole, microSeconds);
}

long long XePosFmt::samplesFromString(const _XeString<wchar_t>& text)
{
    return _readWhole<long long>(text.begin(), text.end());
}

long long XePosFmt::microSecondsFromString(const _XeString<wchar_t>& text)
{
    return _readWhole<long long>(text.begin(), text.end());
}

_XeString<wchar_t> XePosFmt::metricToString(double value, unsigned flags) const
{
    return _print(*this, flags, FormatValues::Decimal, value);
}

double XePosFmt::metricFromString(const _XeString<wchar_t>& text)
{
    double value = 0;
    bool whole = false;
    try {
        whole = xenon::util::atof(text.begin(), text.end(), value) == text.end();
    } catch (const boost::bad_lexical_cast&) {
        // No number at all: reported like text after a number.
    }
    if (!whole) {
        _throwBadText();
    }
    return value;
}

_XeString<wchar_t> XePosFmt::feetAndFramesToString(faf_val length, unsigned flags) const
{
    return _print(*this, flags, FormatValues::FeetAndFrames, length.feet, length.frames);
}

faf_val XePosFmt::feetAndFramesFromString(const _XeString<wchar_t>& text)
{
    faf_val length;
    if (text.empty() || text.front() == L'+') {
        return length;
    }
    for (auto piece = text.begin();; ++piece) {
        const auto end = std::find(piece, text.end(), L'+');
        length.feet = length.frames;
        length.frames = _readWhole<unsigned>(piece, end);
        if (end == text.end()) {
            return length;
        }
        piece = end;
    }
}
