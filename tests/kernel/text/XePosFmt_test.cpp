#include "XePosFmt.h"

#include "TimeRecords.h"
#include "XeResult.h"

#include <boost/math/policies/error_handling.hpp>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr long long kLargest = std::numeric_limits<long long>::max();

_zqposfmt_format type(unsigned value) { return static_cast<_zqposfmt_format>(value); }

XePosFmt formatAt(_zqposfmt_format type, double rate)
{
    XePosFmt format(type);
    format.dFrameRate = rate;
    return format;
}

XePosFmt dropFrame2997() { return XePosFmt(zqposfmt_smpte_29_97_drop); }

// What is true of each type, written out a second time.
struct TypeRow {
    unsigned value;
    double rate;
    bool hmsf;
    bool drop;
    const wchar_t* shortForm;
    const wchar_t* longForm;
    const wchar_t* longFormFrom100;
    long long increment;  // at 44100 Hz, 29.97 frames, 90 beats, 100 % = 12345
    long long rollFrames; // at 30 frames a second
    unsigned halfStep;
};

constexpr const wchar_t* kHms = L"%02u:%02u:%02u";
constexpr const wchar_t* kHmsf = L"%02u:%02u:%02u:%02u";
constexpr const wchar_t* kHmsf3 = L"%02u:%02u:%02u:%03u";
constexpr const wchar_t* kDrop = L"%02u:%02u:%02u;%02u";
constexpr const wchar_t* kDrop3 = L"%02u:%02u:%02u;%03u";
constexpr const wchar_t* kDot2 = L"%02u:%02u:%02u.%02u";
constexpr const wchar_t* kDot3 = L"%02u:%02u:%02u.%03u";
constexpr const wchar_t* kInt = L"%lld";
constexpr const wchar_t* kFeet = L"%lld+%lld";

// clang-format off
constexpr TypeRow kTypes[] = {
    {0,  -1.0,               false, false, kInt,     kInt,        kInt,        1,     2589408, 0},
    {1,  1000.0,             true,  false, kHms,     kDot3,       kDot3,       4410,  2589408, 1},
    {2,  -1.0,               false, false, L"%.0f",  L"%.3f",     L"%.3f",     4410,  2589408, 2},
    {3,  75.0,               true,  false, kHms,     kDot2,       kDot3,       1472,  2589408, 3},
    {4,  -1.0,               false, false, L"%.0f",  L"%.3f",     L"%.3f",     1472,  2589408, 4},
    {5,  -1.0,               false, false, L"%u:%u", L"%u:%u.%u", L"%u:%u.%u", 29400, 2589408, 5},
    {6,  29.97002997002997,  true,  false, kHms,     kHmsf,       kHmsf3,      1472,  2592000, 21},
    {7,  30.0,               true,  false, kHms,     kHmsf,       kHmsf3,      1472,  2592000, 21},
    {8,  29.97002997002997,  true,  true,  kHms,     kDrop,       kDrop3,      1472,  2589408, 22},
    {9,  25.0,               true,  false, kHms,     kHmsf,       kHmsf3,      1472,  2592000, 21},
    {10, 24.0,               true,  false, kHms,     kHmsf,       kHmsf3,      1472,  2592000, 21},
    {11, -1.0,               false, false, kInt,     kInt,        kInt,        1,     2589408, 11},
    {12, -1.0,               false, false, kInt,     kInt,        kInt,        1,     2589408, 12},
    {13, -1.0,               false, false, L"%u:%u", L"%u:%u.%u", L"%u:%u.%u", 1,     2589408, 13},
    {14, -1.0,               false, false, L"%.0f",  L"%.3f",     L"%.3f",     1,     2589408, 14},
    {15, -1.0,               false, false, kFeet,    kFeet,       kFeet,       1,     2589408, 15},
    {16, -1.0,               false, false, kFeet,    kFeet,       kFeet,       1,     2589408, 16},
    {17, 75.0,               true,  false, kHms,     kHmsf,       kHmsf3,      1472,  2589408, 17},
    {18, 23.976023976023978, true,  false, kHms,     kHmsf,       kHmsf3,      1,     2592000, 21},
    {19, 1000.0,             false, false, kHms,     kHms,        kHms,        1,     2589408, 19},
    {20, -1.0,               false, false, kInt,     kInt,        kInt,        124,   2589408, 20},
    {21, -1.0,               true,  false, kHms,     kHmsf,       kHmsf3,      1,     2592000, 21},
    {22, -1.0,               true,  true,  kHms,     kDrop,       kDrop3,      1,     2589408, 22},
    {23, -1.0,               false, false, kInt,     kInt,        kInt,        1,     2589408, 23},
    {0xFFFFFFFF, -1.0, false, false, kInt, kInt, kInt, 1, 2589408, 0xFFFFFFFF},
};
// clang-format on

class EveryType : public testing::TestWithParam<TypeRow> {};

INSTANTIATE_TEST_SUITE_P(XePosFmt, EveryType, testing::ValuesIn(kTypes), [](const auto& info) {
    return info.param.value == 0xFFFFFFFF ? "Largest" : std::to_string(info.param.value);
});

TEST_P(EveryType, HasItsRate)
{
    const XePosFmt fresh(type(GetParam().value));
    if (GetParam().value == 3) {
        EXPECT_EQ(fresh.typeToFrameRate(), 0.0); // the free rate is the stored one, not set yet
        EXPECT_EQ(fresh.frameRate(), 0.0);
        return;
    }
    EXPECT_EQ(fresh.typeToFrameRate(), GetParam().rate);
    EXPECT_EQ(fresh.frameRate(), GetParam().rate);
}

TEST_P(EveryType, StoresItsRateWhenItIsSet)
{
    XePosFmt format = formatAt(type(GetParam().value == 0 ? 11 : 0), 12.5);
    format.setType(type(GetParam().value));
    EXPECT_EQ(format.eFormat, type(GetParam().value));
    EXPECT_EQ(format.dFrameRate, GetParam().rate == -1.0 ? 12.5 : GetParam().rate);
}

TEST_P(EveryType, KeepsTheRateWhenItIsSetAgain)
{
    XePosFmt format = formatAt(type(GetParam().value), 12.5);
    format.setType(type(GetParam().value));
    EXPECT_EQ(format.dFrameRate, 12.5);
}

TEST_P(EveryType, KnowsWhetherItShowsHoursToFramesAndDropsFrames)
{
    EXPECT_EQ(XePosFmt(type(GetParam().value)).isHMSF(), GetParam().hmsf);
    EXPECT_EQ(XePosFmt(type(GetParam().value)).isSmpteDrop(), GetParam().drop);
}

TEST_P(EveryType, HasItsFormatStrings)
{
    XePosFmt format = formatAt(type(GetParam().value), 99.99);
    EXPECT_EQ(format.typeToFormatShort(), GetParam().shortForm);
    EXPECT_EQ(format.typeToFormatLong(), GetParam().longForm);
    EXPECT_EQ(format.typeToFormat(0), GetParam().longForm);
    EXPECT_EQ(format.typeToFormat(2), GetParam().shortForm);
    EXPECT_EQ(format.typeToFormat(0xFFFFFFFF), GetParam().shortForm);
    EXPECT_EQ(format.typeToFormat(0xFFFFFFFF - 2), GetParam().longForm);
    format.dFrameRate = 100.0;
    EXPECT_EQ(format.typeToFormatLong(), GetParam().longFormFrom100);
    EXPECT_EQ(format.typeToFormatShort(), GetParam().shortForm);
}

TEST_P(EveryType, HasItsIncrement)
{
    XePosFmt format = formatAt(type(GetParam().value), 29.97002997002997);
    format.dwSampleRate = 44100;
    format.dTempo = 90;
    format.ccPercentBase = 12345;
    EXPECT_EQ(format.getIncrement(), GetParam().increment);
}

TEST_P(EveryType, HasItsRollOverLength)
{
    EXPECT_EQ(typeToRollFrame(type(GetParam().value), 30), GetParam().rollFrames);
}

TEST_P(EveryType, BecomesAHalfStepTypeOrStays)
{
    XePosFmt format = formatAt(type(GetParam().value), 59.94);
    format.changeTypeToHalfStep();
    EXPECT_EQ(format.eFormat, type(GetParam().halfStep));
    EXPECT_EQ(format.dFrameRate, 59.94);
}

TEST(XePosFmt, StartsWithNothingButItsType)
{
    const XePosFmt format(zqposfmt_smpte_25);
    EXPECT_EQ(format.eFormat, zqposfmt_smpte_25);
    EXPECT_EQ(format.dwReserved, 0u);
    EXPECT_EQ(format.dwSampleRate, 0u);
    EXPECT_EQ(format.dFrameRate, 0.0); // frameRate() falls back to the type's own
    EXPECT_EQ(format.dTempo, 0.0);
    EXPECT_EQ(format.ntOffset, 0);
    EXPECT_EQ(format.ccPercentBase, 0);
    EXPECT_FALSE(format.bFieldMarker);
    EXPECT_EQ(format.dwTimeSignature, 0u);
    EXPECT_EQ(format.cTicksPerBeat, 0u);
}

XePosFmt filled()
{
    XePosFmt format = formatAt(zqposfmt_smpte_30, 12.5);
    format.dwReserved = 1;
    format.dwSampleRate = 96000;
    format.dTempo = 93.5;
    format.ntOffset = -5000000000;
    format.ccPercentBase = 7000000000;
    format.bFieldMarker = true;
    format.dwTimeSignature = 0x00030004;
    format.cTicksPerBeat = 960;
    return format;
}

void expectEveryFieldOf(const XePosFmt& copy, const XePosFmt& original)
{
    EXPECT_EQ(copy.dwReserved, original.dwReserved);
    EXPECT_EQ(copy.eFormat, original.eFormat);
    EXPECT_EQ(copy.dwSampleRate, original.dwSampleRate);
    EXPECT_EQ(copy.dFrameRate, original.dFrameRate);
    EXPECT_EQ(copy.dTempo, original.dTempo);
    EXPECT_EQ(copy.ntOffset, original.ntOffset);
    EXPECT_EQ(copy.ccPercentBase, original.ccPercentBase);
    EXPECT_EQ(copy.bFieldMarker, original.bFieldMarker);
    EXPECT_EQ(copy.dwTimeSignature, original.dwTimeSignature);
    EXPECT_EQ(copy.cTicksPerBeat, original.cTicksPerBeat);
}

TEST(XePosFmt, CopiesEveryField)
{
    const XePosFmt original = filled();
    XePosFmt assigned(zqposfmt_samples);
    assigned.assign(original);
    XePosFmt equal(zqposfmt_samples);
    equal = original;
    expectEveryFieldOf(XePosFmt(original), original);
    expectEveryFieldOf(assigned, original);
    expectEveryFieldOf(equal, original);
}

TEST(FrameRate, BelowTheDoubleEpsilonIsTheTypesOwn)
{
    EXPECT_EQ(formatAt(zqposfmt_smpte_25, 2.220446049250313e-16).frameRate(),
              2.220446049250313e-16);
    EXPECT_EQ(formatAt(zqposfmt_smpte_25, -2.220446049250313e-16).frameRate(),
              -2.220446049250313e-16);
    EXPECT_EQ(formatAt(zqposfmt_smpte_25, 2.2204460492503127e-16).frameRate(), 25.0);
    EXPECT_EQ(formatAt(zqposfmt_smpte_25, kNaN).frameRate(), 25.0);
    EXPECT_EQ(formatAt(zqposfmt_smpte_25, 60.0).frameRate(), 60.0);
}

struct RateRow {
    double rate;
    unsigned plain;
    unsigned drop;
};

TEST(TypeByFrameRate, WholeRatesMatchExactly)
{
    for (const double rate : {6, 12, 24, 48, 96, 192}) {
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(rate, false), 10) << rate;
    }
    for (const double rate : {15, 30, 60, 120, 240}) {
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(rate, true), 7) << rate; // drop asks in vain
    }
    for (const double rate : {25, 50, 100, 200}) {
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(rate, false), 9) << rate;
    }
    EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(75, false), 17);
}

TEST(TypeByFrameRate, UnknownWholeRatesAreFreeAndUnknownFractionsAreClockTime)
{
    for (const double rate : {44.0, 7.0, 5.0, 8.0, 0.0, -30.0, 31.0, 1000.0, 1e18}) {
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(rate, false), 3) << rate;
    }
    for (const double rate : {44.1, 0.5, -29.97, kNaN, kInfinity, -kInfinity}) {
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(rate, false), 1) << rate;
    }
}

TEST(TypeByFrameRate, FractionsMatchWithinFiveThousandths)
{
    constexpr RateRow kRows[] = {
        {29.97, 6, 8},
        {29.97002997002997, 6, 8},
        {14.985014985014985, 6, 8},
        {7.492507492507492, 6, 8},
        {59.94, 6, 8},
        {119.88011988011988, 6, 8},
        {239.76023976023976, 6, 8},
        {23.98, 18, 18}, // 0.004 off
        {23.976, 18, 18},
        {11.988, 18, 18},
        {5.994, 18, 18},
        {47.952, 18, 18},
        {95.904, 18, 18},
        {191.808, 18, 18},
        {24.004, 10, 10},
        {23.996, 10, 10},
        {12.5, 9, 9},
        {6.25, 9, 9},
        {24.9951, 9, 9},
        {7.4951, 6, 8}, // as close to 7.5 as to 7.4925: the first family wins
        {7.5, 7, 7},
        {59.997, 7, 7},
        {30.0049, 7, 7},
        {30.006, 1, 1},
        {29.9651, 6, 8},
        {29.965, 1, 1},
    };
    for (const RateRow& row : kRows) {
        SCOPED_TRACE(row.rate);
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(row.rate, false), row.plain);
        EXPECT_EQ(XePosFmt::posFmtTypeByFramerate(row.rate, true), row.drop);
        EXPECT_EQ(XePosFmt::typeFromFramerate(row.rate, true), row.drop);
    }
}

// 23.976 has a frame rate but steps by one sample; clock time without fraction rolls over and
// steps like the plain numbers.
TEST(Increment, Of23976IsOneSample)
{
    XePosFmt format(zqposfmt_samples);
    format.setType(zqposfmt_smpte_23_976);
    format.dwSampleRate = 48000;
    EXPECT_EQ(format.getIncrement(), 1);
}

TEST(Increment, IsRoundedUp)
{
    XePosFmt format(zqposfmt_time_ms);
    format.dwSampleRate = 11025;
    EXPECT_EQ(format.getIncrement(), 1103);
    format.setType(zqposfmt_smpte_25);
    EXPECT_EQ(format.getIncrement(), 441);
    format.setType(zqposfmt_percent);
    format.ccPercentBase = -150;
    EXPECT_EQ(format.getIncrement(), -1);
}

// The step divides by the stored rate, not by the one the type falls back to.
TEST(Increment, OfAnUnsetRateOrTempoIsTheLargestNumber)
{
    XePosFmt format(zqposfmt_smpte_25);
    format.dwSampleRate = 48000;
    EXPECT_EQ(format.getIncrement(), kLargest);
    format.eFormat = zqposfmt_measures;
    EXPECT_EQ(format.getIncrement(), kLargest);
    format.dTempo = -0.0;
    EXPECT_EQ(format.getIncrement(), std::numeric_limits<long long>::min());
    format.dwSampleRate = 0;
    EXPECT_EQ(format.getIncrement(), 0);
}

TEST(PrepareString, TakesOneSignOff)
{
    struct {
        const wchar_t* text;
        const wchar_t* rest;
        int sign;
    } const rows[] = {{L"-1:00", L"1:00", -1}, {L"+5", L"5", 1}, {L"5", L"5", 1},    {L"", L"", 1},
                      {L"--5", L"-5", -1},     {L"-", L"", -1},  {L" -5", L" -5", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        int sign = 0;
        EXPECT_EQ(XePosFmt::prepareString(row.text, sign), row.rest);
        EXPECT_EQ(sign, row.sign);
    }
}

TEST(RollOver, FilmAndDropFrameLengthsAreIntegerArithmetic)
{
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_24, 23), 23LL * 2073600 / 24);
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_23_976, 24), 2073600);
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_29_97_drop, 60), 5178816);
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_29_97_drop, 24), 2071526); // 2071526.4 cut
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_30, 4294967295u), 4294967295LL * 86400);
    EXPECT_EQ(typeToRollFrame(zqposfmt_smpte_30, 0), 0);
}

// The length of a drop-frame day serves the types that are no video too.
TEST(RollOver, OfClockTimeComesShortOf24Hours)
{
    const XePosFmt clock(zqposfmt_time_ms);
    EXPECT_EQ(clock.framesToSmpte(86313599, false, false), label(23, 58, 33, 599));
    EXPECT_EQ(clock.framesToSmpte(86313600, false, false), label(0, 0, 0, 0));
    EXPECT_EQ(clock.framesToSmpte(86313600, true, false), label(23, 58, 33, 600));
    const XePosFmt noFraction(zqposfmt_time);
    EXPECT_EQ(noFraction.framesToSmpte(86313601, false, false), label(0, 0, 0, 1));
    for (const auto kind : {zqposfmt_time_frames, zqposfmt_frames_75}) {
        const XePosFmt format = formatAt(kind, 75.0);
        EXPECT_EQ(format.framesToSmpte(6473519, false, false), label(23, 58, 33, 44));
        EXPECT_EQ(format.framesToSmpte(6473520, false, false), label(0, 0, 0, 0));
        EXPECT_EQ(format.framesToSmpte(6473520, true, false), label(23, 58, 33, 45));
    }
}

TEST(RollOver, ValueIsInUnitsOf100Nanoseconds)
{
    struct {
        unsigned value;
        double rate;
        long long units;
    } const rows[] = {
        {9, 0, 864000000000},
        {7, 0, 864000000000},
        {6, 0, 864864000000},
        {8, 0, 863999136000},
        {18, 0, 864863999999},
        {10, 0, 864000000000},
        {1, 0, 863136000000},
        {19, 0, 863136000000},
        {17, 0, 863136000000},
        {21, 59.94005994005994, 864864000000},
        {22, 59.94005994005994, 863999136000},
        {3, 0, 9223372036854775807}, // no rate: infinite, held at the largest number
        {0, 0, -863130000000},       // 86313 frames at the rate -1
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(formatAt(type(row.value), row.rate).rolloverValue(), row.units);
    }
}

// The rounding down forgives a hundred-thousandth of a unit. It shows at a rate beyond all sense
// only: a day has more units than a double has decimals left.
TEST(RollOver, ValueAHairShortOfAUnitIsThatUnit)
{
    const double units = 4294967295.0 * 86400 * 10000000;
    EXPECT_EQ(formatAt(zqposfmt_smpte_30, units / 0.999991).rolloverValue(), 1);
    EXPECT_EQ(formatAt(zqposfmt_smpte_30, units / 0.999989).rolloverValue(), 0);
}

TEST(RollOver, OfAWrappedCountShowsTheRest)
{
    const XePosFmt format = dropFrame2997();
    EXPECT_EQ(format.framesToSmpte(2589407, false, false), label(23, 59, 59, 29));
    EXPECT_EQ(format.framesToSmpte(2589408, false, false), label(0, 0, 0, 0));
    EXPECT_EQ(format.framesToSmpte(2589408 + 1800, false, false), label(0, 1, 0, 2));
    EXPECT_EQ(format.framesToSmpte(2589408, true, false), label(24, 0, 0, 0));
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).framesToSmpte(kLargest, false, false),
              XePosFmt(zqposfmt_smpte_25).framesToSmpte(kLargest % 2160000, false, false));
}

TEST(FramesToSmpte, ZeroAndNegativePositionsAreZero)
{
    for (const TypeRow& row : kTypes) {
        XePosFmt format = formatAt(type(row.value), kInfinity); // not even the rate is looked at
        format.bFieldMarker = true;
        EXPECT_EQ(format.framesToSmpte(0, false, true), XESMPTEVAL{});
        EXPECT_EQ(format.framesToSmpte(-1, false, true), XESMPTEVAL{});
        EXPECT_EQ(format.framesToSmpte(std::numeric_limits<long long>::min(), true, true),
                  XESMPTEVAL{});
    }
}

TEST(FramesToSmpte, FieldMarkerNeedsTheFormatsPermission)
{
    XePosFmt format(zqposfmt_smpte_25);
    EXPECT_FALSE(format.framesToSmpte(26, false, true).field);
    format.bFieldMarker = true;
    EXPECT_EQ(format.framesToSmpte(26, false, true), label(0, 0, 1, 1, true));
    EXPECT_EQ(format.framesToSmpte(26, false, false), label(0, 0, 1, 1, false));
}

TEST(FramesToSmpte, RateIsRoundedHalfAwayFromZero)
{
    EXPECT_EQ(formatAt(zqposfmt_smpte_30, 24.5).framesToSmpte(26, false, false), label(0, 0, 1, 1));
    EXPECT_EQ(formatAt(zqposfmt_smpte_30, 24.49).framesToSmpte(26, false, false),
              label(0, 0, 1, 2));
}

TEST(FramesToSmpte, ARateThatIsNotPositiveCountsOneFrameASecond)
{
    for (const double rate : {-1.0, -29.97, 0.3, -1e300}) {
        EXPECT_EQ(formatAt(zqposfmt_smpte_half_step, rate).framesToSmpte(61, false, false),
                  label(0, 1, 1, 0))
            << rate;
    }
    EXPECT_EQ(XePosFmt(zqposfmt_samples).framesToSmpte(3661, false, false), label(1, 1, 1, 0));
}

TEST(FramesToSmpte, AHugeRateIsNotUndefined)
{
    const XePosFmt format = formatAt(zqposfmt_smpte_30, 1e300);
    EXPECT_EQ(format.framesToSmpte(4294967296, false, false), label(0, 0, 1, 1));
}

TEST(FramesToSmpte, LargeCountsWithoutRollOverKeepTheirHours)
{
    const XePosFmt format(zqposfmt_smpte_25);
    EXPECT_EQ(format.framesToSmpte(25LL * 3600 * 100000 + 1, true, false), label(100000, 0, 0, 1));
    EXPECT_EQ(format.framesToSmpte(25LL * 3600 * 4294967298, true, false), label(2, 0, 0, 0));
}

TEST(Rates, AnInfiniteOrNaNRateRaisesTheRoundingError)
{
    for (const double rate : {kInfinity, -kInfinity}) {
        const XePosFmt format = formatAt(zqposfmt_smpte_30, rate);
        EXPECT_THROW(format.framesToSmpte(1, false, false), boost::math::rounding_error);
        EXPECT_THROW(format.framesFromSMPTE({}), boost::math::rounding_error);
        EXPECT_THROW(format.smpteFromString(L"1"), boost::math::rounding_error);
        EXPECT_THROW(format.smpteToPosition(48000, {}), boost::math::rounding_error);
        EXPECT_THROW(format.rolloverValue(), boost::math::rounding_error);
    }
    // A NaN counts as unset, so only the type without a rate of its own sees it.
    EXPECT_EQ(formatAt(zqposfmt_smpte_30, kNaN).framesFromSMPTE(label(0, 0, 1, 0)), 30);
    const XePosFmt free = formatAt(zqposfmt_time_frames, kNaN);
    EXPECT_THROW(free.framesToSmpte(1, false, false), boost::math::rounding_error);
    EXPECT_THROW(free.framesFromSMPTE({}), boost::math::rounding_error);
}

TEST(Rates, RoundingErrorNamesTheRoutine)
{
    try {
        formatAt(zqposfmt_smpte_30, kInfinity).framesFromSMPTE({});
        FAIL();
    } catch (const boost::math::rounding_error& error) {
        EXPECT_NE(std::string(error.what()).find("boost::math::round<double>(double)"),
                  std::string::npos)
            << error.what();
    }
}

TEST(DropFrame, CountsTheNumbersSkipped)
{
    struct {
        unsigned frames;
        unsigned fps;
        unsigned dropped;
    } const rows[] = {
        {0, 30, 0},
        {1799, 30, 0},
        {1800, 30, 2},
        {16199, 30, 16},
        {18000, 30, 18},
        {19799, 30, 18},
        {19800, 30, 20},
        {107999, 30, 108},
        {108000, 30, 108},
        {2591999, 30, 2592},
        {3600, 60, 4},
        {36000, 60, 36},
        {7200, 120, 8},
        {1800, 29, 0},
        {1440, 24, 0},
        {2880, 48, 2},
        {3540, 59, 2},
        {1800, 0, 0},
        {4294967295, 30, 4294966},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.frames << " at " << row.fps);
        EXPECT_EQ(calcDroppedFrames(row.frames, row.fps), row.dropped);
    }
}

TEST(DropFrame, CountAsLabelsShowIt)
{
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(1799, 30), 1799u);
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(1800, 30), 1802u);
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(17982, 30), 18000u);
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(2589407, 30), 2591999u);
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(3600, 60), 3604u);
    EXPECT_EQ(XePosFmt::dropFrameToNonDropFrame(5000, 24), 5000u);
}

// Near the end of the 32 bits the search would go round for ever.
TEST(DropFrame, CountThatWrapsEnds)
{
    for (unsigned back = 0; back < 5000000; back += 997) {
        const unsigned frames = std::numeric_limits<unsigned>::max() - back;
        const unsigned count = XePosFmt::dropFrameToNonDropFrame(frames, 30);
        ASSERT_LT(count - frames, 4400000u); // as unsigned, over the end
    }
}

// Labels ;00 and ;01 do not exist in a minute that is not a multiple of ten; they mean ;02.
TEST(DropFrame, MissingLabelMeansTheNextOneThatExists)
{
    const XePosFmt format = dropFrame2997();
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 0)), 1800);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 1)), 1800);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 2)), 1800);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 3)), 1801);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 10, 0, 0)), 17982);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 10, 0, 1)), 17983);
    EXPECT_EQ(format.framesFromSMPTE(label(1, 0, 0, 0)), 107892);
    const XePosFmt sixty = formatAt(zqposfmt_smpte_29_97_drop, 59.94005994005994);
    for (unsigned frame = 0; frame <= 4; ++frame) {
        EXPECT_EQ(sixty.framesFromSMPTE(label(0, 1, 0, frame)), 3600) << frame;
    }
    EXPECT_EQ(sixty.framesFromSMPTE(label(0, 1, 0, 5)), 3601);
}

TEST(DropFrame, AMinuteLaterShowsTheThirdLabel)
{
    EXPECT_EQ(dropFrame2997().framesToSmpte(1799, false, false), label(0, 0, 59, 29));
    EXPECT_EQ(dropFrame2997().framesToSmpte(1800, false, false), label(0, 1, 0, 2));
    EXPECT_EQ(dropFrame2997().framesToSmpte(17982, false, false), label(0, 10, 0, 0));
}

// Below 30 nothing is dropped, yet the labels ;00 and ;01 are still avoided: three frames in a row
// share the label ;02.
TEST(DropFrame, TypesBelow30DropNothingButStillAvoidTwoLabels)
{
    const XePosFmt format = formatAt(zqposfmt_smpte_29_97_drop, 15.0);
    EXPECT_EQ(format.framesToSmpte(899, false, false), label(0, 0, 59, 14));
    EXPECT_EQ(format.framesToSmpte(900, false, false), label(0, 1, 0, 2));
    EXPECT_EQ(format.framesToSmpte(901, false, false), label(0, 1, 0, 2));
    EXPECT_EQ(format.framesToSmpte(902, false, false), label(0, 1, 0, 2));
    EXPECT_EQ(format.framesToSmpte(903, false, false), label(0, 1, 0, 3));
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 0)), 900); // which reads as it is
    EXPECT_EQ(format.framesFromSMPTE(label(0, 1, 0, 2)), 902);
}

TEST(FramesFromSmpte, IgnoresTheFieldMarkerAndTheLeadingWord)
{
    XESMPTEVAL marked = label(0, 0, 1, 1, true);
    marked.reserved = 77;
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).framesFromSMPTE(marked), 26);
}

TEST(FramesFromSmpte, TakesFieldsBeyondTheClock)
{
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).framesFromSMPTE(label(0, 0, 90, 30)), 2280);
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).framesFromSMPTE(label(30, 61, 0, 0)), 2791500);
}

TEST(FramesFromSmpte, CountsIn32BitsAndWraps)
{
    const XePosFmt format(zqposfmt_smpte_30);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 0, 0, 4294967295)), 4294967295);
    EXPECT_EQ(format.framesFromSMPTE(label(0, 0, 1, 4294967295)), 29);
    EXPECT_EQ(format.framesFromSMPTE(label(4294967295, 0, 0, 0)), 4294967296 - 108000);
    EXPECT_EQ(dropFrame2997().framesFromSMPTE(label(4294967295, 0, 0, 0)), 4294967296 - 107892);
}

TEST(FramesFromSmpte, WithoutAPositiveRateOnlyFramesCount)
{
    EXPECT_EQ(XePosFmt(zqposfmt_samples).framesFromSMPTE(label(1, 1, 1, 7)), 7);
    EXPECT_EQ(formatAt(zqposfmt_smpte_29_97_drop, -29.97).framesFromSMPTE(label(1, 1, 1, 7)), 7);
}

XePosFmt halfStep60() { return formatAt(zqposfmt_smpte_half_step, 60.0); }

TEST(HalfStep, ShowsFramesAndTheFieldOfACountInFields)
{
    EXPECT_EQ(halfStep60().framesToSmpte(21, false, false), label(0, 0, 0, 10, true));
    EXPECT_EQ(halfStep60().framesToSmpte(20, false, true), label(0, 0, 0, 10, false));
    EXPECT_EQ(halfStep60().framesToSmpte(119, false, false), label(0, 0, 1, 29, true));
    const XePosFmt drop = formatAt(zqposfmt_smpte_half_step_drop, 59.94005994005994);
    EXPECT_EQ(drop.framesToSmpte(3600, false, false), label(0, 1, 0, 2, false));
    EXPECT_EQ(drop.framesToSmpte(3601, false, false), label(0, 1, 0, 2, true));
}

TEST(HalfStep, UpTo30CountsWholeFrames)
{
    const XePosFmt thirty = formatAt(zqposfmt_smpte_half_step, 30.49);
    EXPECT_EQ(thirty.framesToSmpte(21, false, false), label(0, 0, 0, 21));
    EXPECT_EQ(thirty.smpteFromString(L"21*"), label(0, 0, 0, 21, true));
    const XePosFmt above = formatAt(zqposfmt_smpte_half_step, 30.5);
    EXPECT_EQ(above.framesToSmpte(21, false, false), label(0, 0, 0, 10, true));
    EXPECT_EQ(above.smpteFromString(L"10*"), label(0, 0, 0, 21));
}

// The record of a label shows frames, the record of a typed text counts fields: only the latter
// goes back to the count.
TEST(HalfStep, RecordsGoBackThroughTextOnly)
{
    const XESMPTEVAL shown = halfStep60().framesToSmpte(21, false, false);
    EXPECT_EQ(halfStep60().framesFromSMPTE(shown), 10);
    const XESMPTEVAL typed = halfStep60().smpteFromString(halfStep60().smpteToString(shown, 0));
    EXPECT_EQ(typed, label(0, 0, 0, 21));
    EXPECT_EQ(halfStep60().framesFromSMPTE(typed), 21);
}

TEST(ToString, AppliesTheLongOrShortFormat)
{
    const XESMPTEVAL time = label(1, 2, 3, 4, true);
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).smpteToString(time, 0), L"01:02:03:04*");
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).smpteToString(time, 2), L"01:02:03*");
    EXPECT_EQ(dropFrame2997().smpteToString(label(1, 2, 3, 4), 0), L"01:02:03;04");
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).hmsfToString(time, 0), L"01:02:03.004"); // no marker
    EXPECT_EQ(XePosFmt(zqposfmt_time).hmsfToString(time, 0), L"01:02:03");
    EXPECT_EQ(XePosFmt(zqposfmt_time_frames).hmsfToString(time, 0), L"01:02:03.04");
    EXPECT_EQ(XePosFmt(zqposfmt_measures).hmsfToString(time, 0), L"1:2.3");
    EXPECT_EQ(XePosFmt(zqposfmt_measures).hmsfToString(time, 2), L"1:2");
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).hmsfToString(label(100, 0, 0, 100), 0), L"100:00:00:100");
    EXPECT_EQ(formatAt(zqposfmt_time_frames, 120).hmsfToString(time, 0), L"01:02:03.004");
}

TEST(ToString, NumbersAndFilmUseTheirFormats)
{
    EXPECT_EQ(XePosFmt(zqposfmt_samples).samplesToString(-441000, 0), L"-441000");
    EXPECT_EQ(XePosFmt(zqposfmt_samples).samplesToString(kLargest, 2), L"9223372036854775807");
    EXPECT_EQ(XePosFmt(zqposfmt_percent).samplesToString(50, 0), L"50");
    EXPECT_EQ(XePosFmt(type(99)).samplesToString(7, 0), L"7");
    EXPECT_EQ(XePosFmt(zqposfmt_count).microSecondToString(1000000, 0), L"1000000");
    EXPECT_EQ(XePosFmt(zqposfmt_seconds).metricToString(1.25, 0), L"1.250");
    EXPECT_EQ(XePosFmt(zqposfmt_seconds).metricToString(1.75, 2), L"2");
    EXPECT_EQ(XePosFmt(zqposfmt_feet_frames_35mm).feetAndFramesToString({12, 3}, 0), L"12+3");
    EXPECT_EQ(XePosFmt(zqposfmt_feet_frames_16mm).feetAndFramesToString({-1, 39}, 2), L"-1+39");
}

// A format takes the values of its own kind only: whatever printf would make of others.
TEST(ToString, IsEmptyForValuesOfAnotherKind)
{
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).samplesToString(5, 0), L"");
    EXPECT_EQ(XePosFmt(zqposfmt_seconds).microSecondToString(5, 0), L"");
    EXPECT_EQ(XePosFmt(zqposfmt_samples).metricToString(5, 0), L"");
    EXPECT_EQ(XePosFmt(zqposfmt_samples).feetAndFramesToString({1, 2}, 0), L"");
    EXPECT_EQ(XePosFmt(zqposfmt_seconds).smpteToString(label(1, 2, 3, 4, true), 0), L"");
    EXPECT_EQ(XePosFmt(zqposfmt_feet_frames_35mm).hmsfToString(label(1, 2, 3, 4), 0), L"");
}

TEST(ToString, CompactTimeLeavesLeadingZerosOut)
{
    const XePosFmt format(zqposfmt_samples); // the type does not matter
    EXPECT_EQ(format.hmsfToStringCompact(label(10, 2, 3, 4), 0), L"10:02:03");
    EXPECT_EQ(format.hmsfToStringCompact(label(1, 2, 3, 4), 2), L"1:02:03");
    EXPECT_EQ(format.hmsfToStringCompact(label(0, 2, 3, 4), 0), L"2:03");
    EXPECT_EQ(format.hmsfToStringCompact(label(0, 12, 3, 4), 0), L"12:03");
    EXPECT_EQ(format.hmsfToStringCompact(label(0, 0, 3, 4, true), 0), L"0:03");
}

/// What a parser threw: the code, or 0 for nothing.
template <class Parser>
int thrownBy(Parser parse)
{
    try {
        parse();
    } catch (int code) {
        return code;
    }
    return 0;
}

constexpr int kBadText = static_cast<int>(0x8000FFFF);

TEST(FromString, ThrowsTheUnexpectedCodeAsAnInt)
{
    const XePosFmt format(zqposfmt_smpte_25);
    EXPECT_EQ(thrownBy([&] { format.smpteFromString(L"1:2:3:4:5"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::samplesFromString(L"12x"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::microSecondsFromString(L"1.5"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::metricFromString(L"abc"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::metricFromString(L""); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::metricFromString(L"1.5 "); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::feetAndFramesFromString(L"1+x"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::feetAndFramesFromString(L"x+1"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt::feetAndFramesFromString(L"x+1+2"); }), kBadText);
    EXPECT_EQ(thrownBy([&] { XePosFmt(zqposfmt_time_ms).hmsfFromString(L"x"); }), kBadText);
    EXPECT_EQ(kXeUnexpected, kBadText);
}

TEST(FromString, NumbersAreReadWhole)
{
    EXPECT_EQ(XePosFmt::samplesFromString(L" -441,000 "), -441000);
    EXPECT_EQ(XePosFmt::samplesFromString(L""), 0);
    EXPECT_EQ(XePosFmt::microSecondsFromString(L"1000000"), 1000000);
    EXPECT_EQ(XePosFmt::metricFromString(L" 1.25"), 1.25);
    EXPECT_EQ(XePosFmt::metricFromString(L"-1e3"), -1000.0);
}

TEST(FromString, LabelsAreReadAtTheRoundedRate)
{
    EXPECT_EQ(dropFrame2997().smpteFromString(L"0:0:0:30"), label(0, 0, 1, 0));
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_23_976).smpteFromString(L"24"), label(0, 0, 1, 0));
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).smpteFromString(L"1:00*"), label(0, 0, 1, 0, true));
    EXPECT_EQ(XePosFmt(zqposfmt_samples).smpteFromString(L"99"), label(0, 0, 0, 99)); // no rate
}

TEST(FromString, ClockTimesDependOnTheType)
{
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).hmsfFromString(L"1:02.5"), label(0, 1, 2, 500));
    EXPECT_EQ(XePosFmt(zqposfmt_time).hmsfFromString(L"1:02.5"), label(0, 1, 2, 500));
    // The free rate is not known to the reader: frames are not carried.
    EXPECT_EQ(formatAt(zqposfmt_time_frames, 30).hmsfFromString(L"1:99"), label(0, 0, 1, 99));
    EXPECT_EQ(XePosFmt(zqposfmt_frames_75).hmsfFromString(L"1:99"), label(0, 0, 2, 24));
    EXPECT_EQ(XePosFmt(zqposfmt_frames_75).hmsfFromString(L"1:00*"), label(0, 0, 1, 0, true));
    for (const TypeRow& row : kTypes) {
        if (row.value == 1 || row.value == 3 || row.value == 17 || row.value == 19) {
            continue;
        }
        EXPECT_EQ(thrownBy([&] { XePosFmt(type(row.value)).hmsfFromString(L"1"); }), kBadText)
            << row.value;
    }
}

TEST(FromString, FeetAndFramesTakeTheLastTwoNumbers)
{
    struct {
        const wchar_t* text;
        faf_val length;
    } const rows[] = {
        {L"12+3", {12, 3}},
        {L"3", {0, 3}},
        {L"", {0, 0}},
        {L"+5", {0, 0}},
        {L"+x", {0, 0}},
        {L"5+", {5, 0}},
        {L"1+2+3", {2, 3}},
        {L" 1 + 2 ", {1, 2}},
        {L"1,000+2", {1000, 2}},
        {L"-1", {0, 4294967295}},
        {L"4294967297+1", {1, 1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(XePosFmt::feetAndFramesFromString(row.text), row.length);
    }
}

TEST(Position, OfALabelIsRoundedUp)
{
    const XePosFmt format = dropFrame2997();
    EXPECT_EQ(format.smpteToPosition(48000, label(0, 0, 0, 1)), 1602); // 1601.6
    EXPECT_EQ(format.smpteToPosition(48000, label(0, 0, 0, 5)), 8008); // exact
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_24).smpteToPosition(44100, label(0, 0, 1, 1)), 45938);
    // Less than a thousandth of a sample above stays.
    const XePosFmt fine = formatAt(zqposfmt_smpte_25, 1000000);
    EXPECT_EQ(fine.smpteToPosition(10, label(0, 0, 0, 100095)), 1); // 1.00095
    EXPECT_EQ(fine.smpteToPosition(10, label(0, 0, 0, 100105)), 2); // 1.00105
}

TEST(Position, OfTheSecondFieldIsHalfAFrameLater)
{
    EXPECT_EQ(XePosFmt(zqposfmt_smpte_25).smpteToPosition(48000, label(0, 0, 0, 1, true)), 2880);
}

TEST(Position, WithoutARateIsNotUndefined)
{
    EXPECT_EQ(formatAt(zqposfmt_time_frames, 0).smpteToPosition(48000, label(0, 0, 0, 1)),
              kLargest);
    EXPECT_EQ(formatAt(zqposfmt_time_frames, 0).smpteToPosition(48000, label(0, 0, 0, 0)), 0);
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).hmsfToPosition(48000, 0.0, label(0, 0, 0, 1)), kLargest);
}

TEST(Position, OfClockTimeIsTheNearestSampleAndOfOtherTypesTheNext)
{
    const XESMPTEVAL time = label(0, 0, 0, 1); // 44.1 samples
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).hmsfToPosition(44100, 1000.0, time), 44);
    EXPECT_EQ(XePosFmt(zqposfmt_time).hmsfToPosition(44100, 1000.0, time), 45);
    EXPECT_EQ(XePosFmt(zqposfmt_time_ms).hmsfToPosition(44100, 1000.0, label(0, 0, 0, 5)), 221);
    EXPECT_EQ(XePosFmt(zqposfmt_frames_75).hmsfToPosition(44100, 75.0, label(1, 2, 3, 4)),
              3723LL * 44100 + 4 * 588);
}

_measureval measuresAt(double tempo, std::uint16_t beats)
{
    return {.beatsPerMeasure = beats, .tempo = tempo};
}

TEST(Measures, SplitAPositionIntoMeasureAndBeat)
{
    _measureval measures = measuresAt(120, 4);
    EXPECT_TRUE(XePosFmt::positionToMeasures(48000 * 5, 48000, &measures)); // ten beats
    EXPECT_EQ(measures.measure, 2u);
    EXPECT_NEAR(measures.beat, 2.0002, 1e-9); // the small lead is part of the beat
    EXPECT_EQ(measures.tempo, 120);
    EXPECT_EQ(measures.beatsPerMeasure, 4);
}

TEST(Measures, APositionAHairEarlyIsOnTheMeasure)
{
    _measureval measures = measuresAt(120, 4);
    XePosFmt::positionToMeasures(96000 - 4, 48000, &measures); // 0.00004 of a measure
    EXPECT_EQ(measures.measure, 1u);
    XePosFmt::positionToMeasures(96000 - 6, 48000, &measures);
    EXPECT_EQ(measures.measure, 0u);
}

TEST(Measures, GoBackToTheNearestSample)
{
    _measureval measures = measuresAt(93.7, 3);
    measures.measure = 17;
    measures.beat = 1.25;
    const double exact = 44100 * ((3.0 * 17 + 1.25) / 93.7 * 60);
    EXPECT_EQ(XePosFmt::positionFromMeasures(44100, &measures), std::llround(exact));
}

TEST(Measures, WithoutAContextAreNotUndefined)
{
    _measureval measures;
    EXPECT_TRUE(XePosFmt::positionToMeasures(1, 0, &measures));
    EXPECT_EQ(XePosFmt::positionFromMeasures(48000, &measures), 0);
    measures.beat = 1;
    EXPECT_EQ(XePosFmt::positionFromMeasures(48000, &measures), kLargest);
    measures = measuresAt(120, 4);
    EXPECT_TRUE(XePosFmt::positionToMeasures(-3 * 96000, 48000, &measures));
    EXPECT_EQ(measures.measure, 4294967294u); // -2.99995 cut to -2, in 32 bits
    EXPECT_NEAR(measures.beat, -0.9999500 * 4, 1e-6);
}

TEST(Persistence, StoresEightNamedAndTypedFields)
{
    XePropertyMap map;
    filled().persist(map);
    EXPECT_EQ(map.size(), 8u);
    EXPECT_EQ(map[L"eFormat"].GetValue<int>(), 7);
    EXPECT_EQ(map[L"dwSampleRate"].GetValue<unsigned int>(), 96000u);
    EXPECT_EQ(map[L"dFrameRate"].GetValue<double>(), 12.5);
    EXPECT_EQ(map[L"dTempo"].GetValue<double>(), 93.5);
    EXPECT_EQ(map[L"ntOffset"].GetValue<long long>(), -5000000000);
    EXPECT_EQ(map[L"ccPercentBase"].GetValue<long long>(), 7000000000);
    EXPECT_EQ(map[L"dwTimeSignature"].GetValue<unsigned int>(), 0x00030004u);
    EXPECT_EQ(map[L"cTicksPerBeat"].GetValue<unsigned int>(), 960u);
}

TEST(Persistence, KeepsEntriesThatAreThere)
{
    XePropertyMap map;
    map.insert({L"dTempo", 60.0});
    filled().persist(map);
    EXPECT_EQ(map[L"dTempo"].GetValue<double>(), 60.0);
}

TEST(Persistence, RestoresWhatWasStored)
{
    XePropertyMap map;
    filled().persist(map);
    XePosFmt format(zqposfmt_smpte_30); // the same type: the stored rate stays
    format.dwReserved = 5;
    format.restore(map);
    XePosFmt expected = filled();
    expected.dwReserved = 5; // neither the word nor the flag is stored
    expected.bFieldMarker = false;
    expectEveryFieldOf(format, expected);
}

TEST(Persistence, AChangeOfTypeReplacesTheRestoredRate)
{
    XePropertyMap map;
    filled().persist(map);
    XePosFmt format(zqposfmt_samples);
    format.restore(map);
    EXPECT_EQ(format.eFormat, zqposfmt_smpte_30);
    EXPECT_EQ(format.dFrameRate, 30.0);
    map.clear();
    formatAt(zqposfmt_seconds, 12.5).persist(map);
    format.restore(map);
    EXPECT_EQ(format.dFrameRate, 12.5); // a type without a rate keeps it
}

TEST(Persistence, MissingAndMistypedEntriesAreZero)
{
    XePropertyMap map;
    map.insert({L"dTempo", 120}); // an int
    map.insert({L"eFormat", 8u}); // not an int
    XePosFmt format = filled();
    format.restore(map);
    XePosFmt expected(zqposfmt_samples);
    expected.dwReserved = 1;
    expected.bFieldMarker = true;
    expectEveryFieldOf(format, expected);
    EXPECT_EQ(map.size(), 8u); // the look-ups left empty entries
    EXPECT_EQ(map[L"ntOffset"].GetContent(), nullptr);
}

TEST(Persistence, KeepsTypesOutsideTheEnumeration)
{
    XePropertyMap map;
    XePosFmt(type(0xFFFFFFFE)).persist(map);
    EXPECT_EQ(map[L"eFormat"].GetValue<int>(), -2);
    XePosFmt format(zqposfmt_samples);
    format.restore(map);
    EXPECT_EQ(format.eFormat, type(0xFFFFFFFE));
}

} // namespace
