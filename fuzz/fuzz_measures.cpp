// Measures and beats: accepted where a slow reader accepts them, with its measure and beat; what is
// written as measure:beat.quarter comes back.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XePosFmt.h"
#include "XeUtil.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cmath>
#include <string>

namespace {

bool slowMeasures(const std::wstring& text, unsigned& measure, double& beat)
{
    const slow::Integer number = slow::readInteger(text);
    measure = static_cast<unsigned>(number.value);
    beat = 0;
    if (number.end >= text.size()) {
        return true;
    }
    if (text[number.end] != L':') {
        return false;
    }
    const _XeString<wchar_t> rest = text.substr(number.end + 1);
    if (rest.empty()) {
        return true;
    }
    try {
        const auto end = xenon::util::atof(rest.begin(), rest.end(), beat);
        if (end == rest.end() && std::isfinite(beat)) {
            beat = std::trunc(beat) + (beat - std::trunc(beat)) * 2.5;
        }
    } catch (const boost::bad_lexical_cast&) {
        return false;
    }
    return true;
}

void checkWrittenAgain(const _measureval& measures)
{
    const auto beat = static_cast<unsigned>(measures.beat);
    const auto quarter = static_cast<unsigned>((measures.beat - beat) * 4);
    _XeString<wchar_t> text;
    XeSprintf(text, L"%u:%u.%u", measures.measure, beat, quarter);
    _measureval again;
    require(AsciiToMeasures(text, &again));
    require(again.measure == measures.measure);
    require(std::fabs(again.beat - (beat + quarter / 4.0)) < 1e-9);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const _XeString<wchar_t> text = textOf(bytesOf(data, size));
    unsigned measure = 0;
    double beat = 0;
    const bool valid = slowMeasures(text, measure, beat);
    _measureval measures{.measure = 1, .beat = 1};
    require(AsciiToMeasures(text, &measures) == valid);
    if (!valid) {
        return 0;
    }
    require(measures.measure == measure);
    require(measures.beat == beat || (std::isnan(beat) && std::isnan(measures.beat)));
    if (measures.beat >= 0 && measures.beat < 1000) {
        checkWrittenAgain(measures);
    }
    return 0;
}
