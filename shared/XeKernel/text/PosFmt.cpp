#include "XePosFmt.h"

#include "XeSafeCRT.h"
#include "text/ClampedConversion.h"
#include "text/PosFmtTable.h"

#include <boost/math/special_functions/round.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

using enum Day;
using enum FormatValues;
using enum Step;
using enum TimeCode;

constexpr double kNtscFilm = 24000.0 / 1001.0;
constexpr double kNtscVideo = 30000.0 / 1001.0;

constexpr const wchar_t* kHms = L"%02u:%02u:%02u";

// Short form, long form, long form at 100 frames a second and more.
// clang-format off
constexpr FormatText kWhole       { Whole,         L"%lld",      L"%lld",      L"%lld" };
constexpr FormatText kDecimal     { Decimal,       L"%.0f",      L"%.3f",      L"%.3f" };
constexpr FormatText kBeats       { Fields,        L"%u:%u",     L"%u:%u.%u",  L"%u:%u.%u" };
constexpr FormatText kFeet        { FeetAndFrames, L"%lld+%lld", L"%lld+%lld", L"%lld+%lld" };
constexpr FormatText kClock       { Fields, kHms, kHms, kHms };
constexpr FormatText kClockMs     { Fields, kHms, L"%02u:%02u:%02u.%03u", L"%02u:%02u:%02u.%03u" };
constexpr FormatText kClockFrames { Fields, kHms, L"%02u:%02u:%02u.%02u", L"%02u:%02u:%02u.%03u" };
constexpr FormatText kLabel       { Fields, kHms, L"%02u:%02u:%02u:%02u", L"%02u:%02u:%02u:%03u" };
constexpr FormatText kDropLabel   { Fields, kHms, L"%02u:%02u:%02u;%02u", L"%02u:%02u:%02u;%03u" };
// clang-format on

// Clock time without fraction has a rate but no part of a second to show, so it is not HMSF. 23.976
// steps by single samples, unlike the other video rates. The length of a drop-frame day serves
// every type that is not video.
// clang-format off
constexpr FormatTraits kFormats[] = {
    // type                          rate (1/s)  text          time code  step     day    HMSF
    { zqposfmt_samples,              kNoRate,    kWhole,       None,      One,     Drop,  false },
    { zqposfmt_time_ms,              1000.0,     kClockMs,     None,      Tenth,   Drop,  true  },
    { zqposfmt_seconds,              kNoRate,    kDecimal,     None,      Tenth,   Drop,  false },
    { zqposfmt_time_frames,          75.0,       kClockFrames, None,      Frame,   Drop,  true  },
    { zqposfmt_frames,               kNoRate,    kDecimal,     None,      Frame,   Drop,  false },
    { zqposfmt_measures,             kNoRate,    kBeats,       None,      Beat,    Drop,  false },
    { zqposfmt_smpte_29_97,          kNtscVideo, kLabel,       NonDrop,   Frame,   Video, true  },
    { zqposfmt_smpte_30,             30.0,       kLabel,       NonDrop,   Frame,   Video, true  },
    { zqposfmt_smpte_29_97_drop,     kNtscVideo, kDropLabel,   DropFrame, Frame,   Drop,  true  },
    { zqposfmt_smpte_25,             25.0,       kLabel,       NonDrop,   Frame,   Video, true  },
    { zqposfmt_smpte_24,             24.0,       kLabel,       NonDrop,   Frame,   Film,  true  },
    { zqposfmt_count,                kNoRate,    kWhole,       None,      One,     Drop,  false },
    { zqposfmt_count_2,              kNoRate,    kWhole,       None,      One,     Drop,  false },
    { zqposfmt_measures_2,           kNoRate,    kBeats,       None,      One,     Drop,  false },
    { zqposfmt_decimal,              kNoRate,    kDecimal,     None,      One,     Drop,  false },
    { zqposfmt_feet_frames_35mm,     kNoRate,    kFeet,        None,      One,     Drop,  false },
    { zqposfmt_feet_frames_16mm,     kNoRate,    kFeet,        None,      One,     Drop,  false },
    { zqposfmt_frames_75,            75.0,       kLabel,       None,      Frame,   Drop,  true  },
    { zqposfmt_smpte_23_976,         kNtscFilm,  kLabel,       NonDrop,   One,     Film,  true  },
    { zqposfmt_time,                 1000.0,     kClock,       None,      One,     Drop,  false },
    { zqposfmt_percent,              kNoRate,    kWhole,       None,      Percent, Drop,  false },
    { zqposfmt_smpte_half_step,      kNoRate,    kLabel,       NonDrop,   One,     Video, true  },
    { zqposfmt_smpte_half_step_drop, kNoRate,    kDropLabel,   DropFrame, One,     Drop,  true  },
};
// clang-format on

constexpr std::size_t kFormatCount = 23;

constexpr bool _rowsAreInOrder()
{
    std::uint32_t value = 0;
    return std::ranges::all_of(kFormats,
                               [&](const FormatTraits& row) { return row.type == value++; });
}

static_assert(std::size(kFormats) == kFormatCount && _rowsAreInOrder());
static_assert(kNtscVideo == 29.97002997002997 && kNtscFilm == 23.976023976023978);

/// A video rate with its multiples and fractions.
struct _RateFamily {
    double rates[6];
    _zqposfmt_format type;
    _zqposfmt_format dropType;
};

// In the order of comparison; the first family with a rate that is close enough decides.
// clang-format off
constexpr _RateFamily kRateFamilies[] = {
    { { 29.97002997002997, 14.985014985014985, 7.492507492507492,
        59.94005994005994, 119.88011988011988, 239.76023976023976 },
      zqposfmt_smpte_29_97, zqposfmt_smpte_29_97_drop },
    { { 23.976023976023978, 11.988011988011989, 5.994005994005994,
        47.952047952047955, 95.90409590409591, 191.80819180819182 },
      zqposfmt_smpte_23_976, zqposfmt_smpte_23_976 },
    { { 24.0, 12.0, 6.0, 48.0, 96.0, 192.0 }, zqposfmt_smpte_24, zqposfmt_smpte_24 },
    { { 25.0, 12.5, 6.25, 50.0, 100.0, 200.0 }, zqposfmt_smpte_25, zqposfmt_smpte_25 },
    { { 30.0, 15.0, 7.5, 60.0, 120.0, 240.0 }, zqposfmt_smpte_30, zqposfmt_smpte_30 },
};
// clang-format on

/// Whole rates match exactly: 7 frames a second are no 7.5, and 75 is the compact disc's rate.
_zqposfmt_format _typeOfWholeRate(double rate)
{
    if (rate == 75.0) {
        return zqposfmt_frames_75;
    }
    for (const _RateFamily& family : kRateFamilies) {
        if (std::ranges::find(family.rates, rate) != std::end(family.rates)) {
            return family.type;
        }
    }
    return zqposfmt_time_frames;
}

_zqposfmt_format _typeOfFractionalRate(double rate, bool drop)
{
    constexpr double kTolerance = 0.005;

    const auto isClose = [rate](double known) { return std::fabs(rate - known) < kTolerance; };
    for (const _RateFamily& family : kRateFamilies) {
        if (std::ranges::any_of(family.rates, isClose)) {
            return drop ? family.dropType : family.type;
        }
    }
    return zqposfmt_time_ms;
}

/// Samples per step before rounding; infinite where a rate or tempo is unset.
double _step(const XePosFmt& format)
{
    switch (formatTraits(format.eFormat).step) {
    case Tenth:
        return format.dwSampleRate / 10.0;
    case Frame:
        return format.dwSampleRate / format.dFrameRate;
    case Beat:
        return format.dwSampleRate * 60.0 / format.dTempo;
    case Percent:
        return static_cast<double>(format.ccPercentBase) / 100.0;
    case One:
        break;
    }
    return 1.0;
}

} // namespace

const FormatTraits& formatTraits(_zqposfmt_format type)
{
    static constexpr FormatTraits kPlainInteger = kFormats[zqposfmt_samples];

    return type < kFormatCount ? kFormats[type] : kPlainInteger;
}

unsigned wholeFrameRate(double rate) { return truncatedTo<unsigned>(boost::math::round(rate)); }

const wchar_t* formatText(const XePosFmt& format, unsigned flags)
{
    const FormatText& text = formatTraits(format.eFormat).text;
    if ((flags & XePosFmt::kShortForm) != 0) {
        return text.shortForm;
    }
    return format.frameRate() < 100.0 ? text.longForm : text.longFormFrom100;
}

void XePosFmt::setType(_zqposfmt_format type)
{
    if (type == eFormat) {
        return;
    }
    if (const double rate = formatTraits(type).rate; rate != kNoRate) {
        dFrameRate = rate;
    }
    eFormat = type;
}

void XePosFmt::changeTypeToHalfStep()
{
    const TimeCode timeCode = formatTraits(eFormat).timeCode;
    if (timeCode != None) {
        eFormat = timeCode == DropFrame ? zqposfmt_smpte_half_step_drop : zqposfmt_smpte_half_step;
    }
}

bool XePosFmt::isHMSF() const { return formatTraits(eFormat).hmsf; }

bool XePosFmt::isSmpteDrop() const { return formatTraits(eFormat).timeCode == DropFrame; }

double XePosFmt::frameRate() const
{
    return std::fabs(dFrameRate) >= std::numeric_limits<double>::epsilon() ? dFrameRate
                                                                           : typeToFrameRate();
}

double XePosFmt::typeToFrameRate() const
{
    return eFormat == zqposfmt_time_frames ? dFrameRate : formatTraits(eFormat).rate;
}

_zqposfmt_format XePosFmt::posFmtTypeByFramerate(double rate, bool drop)
{
    const bool whole = std::isfinite(rate) && std::trunc(rate) == rate;
    return whole ? _typeOfWholeRate(rate) : _typeOfFractionalRate(rate, drop);
}

_XeString<wchar_t> XePosFmt::typeToFormatShort() const { return formatText(*this, kShortForm); }

_XeString<wchar_t> XePosFmt::typeToFormatLong() const { return formatText(*this, 0); }

_XeString<wchar_t> XePosFmt::typeToFormat(unsigned flags) const { return formatText(*this, flags); }

long long XePosFmt::getIncrement() const { return truncatedTo<long long>(std::ceil(_step(*this))); }

void XePosFmt::persist(XePropertyMap& map) const
{
    map.insert({L"eFormat", static_cast<int>(eFormat)});
    map.insert({L"dwSampleRate", dwSampleRate});
    map.insert({L"dFrameRate", dFrameRate});
    map.insert({L"dTempo", dTempo});
    map.insert({L"ntOffset", ntOffset});
    map.insert({L"ccPercentBase", ccPercentBase});
    map.insert({L"dwTimeSignature", dwTimeSignature});
    map.insert({L"cTicksPerBeat", cTicksPerBeat});
}

void XePosFmt::restore(XePropertyMap& map)
{
    dwSampleRate = map[L"dwSampleRate"].GetValue<unsigned int>();
    dFrameRate = map[L"dFrameRate"].GetValue<double>();
    setType(static_cast<_zqposfmt_format>(map[L"eFormat"].GetValue<int>()));
    dTempo = map[L"dTempo"].GetValue<double>();
    ntOffset = map[L"ntOffset"].GetValue<long long>();
    ccPercentBase = map[L"ccPercentBase"].GetValue<long long>();
    dwTimeSignature = map[L"dwTimeSignature"].GetValue<unsigned int>();
    cTicksPerBeat = map[L"cTicksPerBeat"].GetValue<unsigned int>();
}
