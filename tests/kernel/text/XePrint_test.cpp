#include "XePrint.h"

#include "LocaleGuard.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

_XeString<wchar_t> pretty(_XeString<wchar_t> text)
{
    const int length = PrettyNumber(text);
    EXPECT_EQ(length, static_cast<int>(text.size()));
    return text;
}

struct TextRow {
    const wchar_t* input;
    const wchar_t* output;
};

TEST(PrettyNumber, GroupsTheWholePartInThrees)
{
    constexpr TextRow kRows[] = {
        {L"", L"0"},
        {L" \t ", L"0"},
        {L"1", L"1"},
        {L"999", L"999"},
        {L"999 ", L"999"}, // blanks at the end go even where nothing is grouped
        {L"1000", L"1,000"},
        {L"1000 \t", L"1,000"},
        {L"123456", L"123,456"},
        {L"1234567", L"1,234,567"},
        {L"-123", L"-123"}, // the sign is no digit
        {L"-1234", L"-1,234"},
        {L"-123456", L"-123,456"},
        {L"-1234567.891", L"-1,234,567.891"},
        {L"1234.5678", L"1,234.5678"},
        {L"123.4567", L"123.4567"},
        {L"1000000000000000000000", L"1,000,000,000,000,000,000,000"},
    };
    for (const TextRow& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.input));
        EXPECT_EQ(pretty(row.input), row.output);
    }
}

TEST(PrettyNumber, KeepsBlanksAndZerosInFrontWithoutCountingThem)
{
    constexpr TextRow kRows[] = {
        {L"0001234", L"0001,234"},
        {L"0000123", L"0000123"},
        {L"  1234", L"  1,234"},
        {L"\t 00", L"\t 00"},
        {L"0", L"0"},
        {L"000.1234", L"000.1234"},
        {L"  -1234", L"  -1,234"},
        {L".1234", L".1234"},
        {L"-000123", L"-000,123"},
    };
    for (const TextRow& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.input));
        EXPECT_EQ(pretty(row.input), row.output);
    }
}

TEST(PrettyNumber, TakesThePunctuationOfTheGlobalLocale)
{
    const GlobalPunctuation german(L',', L'.');
    EXPECT_EQ(pretty(L"-1234567,891"), L"-1.234.567,891");
    EXPECT_EQ(pretty(L"1234.56"), L"1.234..56"); // '.' is a character like any other here
}

TEST(PrettyNumber, AgreesWithCountingFromTheRight)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        std::wstring digits = std::to_wstring(random() % 9 + 1);
        const std::size_t length = random() % 30;
        while (digits.size() <= length) {
            digits += static_cast<wchar_t>(L'0' + random() % 10);
        }
        const std::wstring fraction = random() % 2 == 0 ? L"" : L".12345";
        std::wstring expected;
        for (std::size_t at = 0; at < digits.size(); ++at) {
            if (at != 0 && (digits.size() - at) % 3 == 0) {
                expected += L',';
            }
            expected += digits[at];
        }
        ASSERT_EQ(pretty(digits + fraction), expected + fraction);
    }
}

_XeString<wchar_t> fixedText(double value, _XeString<wchar_t> pattern, bool grouped = false)
{
    _XeString<wchar_t> text = L"old";
    const _XeString<wchar_t> before = pattern;
    EXPECT_EQ(FormatFloatPretty(text, value, pattern, grouped), 0);
    EXPECT_EQ(pattern, before);
    return text;
}

TEST(FormatFloatPretty, RoundsToTheDecimalsOfThePattern)
{
    EXPECT_EQ(fixedText(1234.567, L"0.00", true), L"1,234.57");
    EXPECT_EQ(fixedText(1234.567, L"0.00"), L"1234.57");
    EXPECT_EQ(fixedText(1234.567, L"0"), L"1235");
    EXPECT_EQ(fixedText(1234.567, L""), L"1235");
    EXPECT_EQ(fixedText(1234.567, L"#,##0.0###"), L"1234.5670");
    EXPECT_EQ(fixedText(1.5, L"0.0.0"), L"1.500"); // all that follows the first point counts
    EXPECT_EQ(fixedText(0.0, L"0.000"), L"0.000");
    EXPECT_EQ(fixedText(3.05, L"0.000"), L"3.050");
    EXPECT_EQ(fixedText(0.123456789, L"0.000000000"), L"0.123456789");
}

TEST(FormatFloatPretty, MoreThanNineDecimalsAreNine)
{
    EXPECT_EQ(fixedText(0.5, L"0.000000000000"), L"0.500000000");
}

TEST(FormatFloatPretty, CarriesNoSign)
{
    EXPECT_EQ(fixedText(-2.5, L"0.00"), L"2.50");
    EXPECT_EQ(fixedText(-2.5, L"0"), L"3");
}

TEST(FormatFloatPretty, RoundsATieUpAtEveryNumberOfDecimals)
{
    constexpr double kTies[] = {0.5,      0.05,      0.005,      0.0005,      0.00005,
                                0.000005, 0.0000005, 0.00000005, 0.000000005, 0.0000000005};
    for (std::size_t decimals = 0; decimals < std::size(kTies); ++decimals) {
        SCOPED_TRACE(decimals);
        const std::wstring zero = decimals == 0 ? L"0" : L"0." + std::wstring(decimals, L'0');
        std::wstring one = zero;
        one.back() = L'1';
        EXPECT_EQ(fixedText(kTies[decimals], zero), one);
        EXPECT_EQ(fixedText(kTies[decimals] * 0.999999, zero), zero);
    }
    EXPECT_EQ(fixedText(0.995, L"0.00"), L"1.00"); // the carry reaches the whole part
    EXPECT_EQ(fixedText(999.995, L"0.00", true), L"1,000.00");
    EXPECT_EQ(fixedText(1.005, L"0.00"), L"1.01");
}

// Half a unit comes from a single-precision table: 0.1f and 0.001f lie above the tenth and the
// thousandth, so that values a little below a tie round up with them.
TEST(FormatFloatPretty, SinglePrecisionHalfUnitIsPartOfTheRounding)
{
    EXPECT_EQ(fixedText(0.0499999995, L"0.0"), L"0.1");
    EXPECT_EQ(fixedText(0.0499999990, L"0.0"), L"0.0");
    EXPECT_EQ(fixedText(0.00049999999, L"0.000"), L"0.001");
    EXPECT_EQ(fixedText(0.00049999990, L"0.000"), L"0.000");
}

// Away from ties nothing but the plain formula decides.
TEST(FormatFloatPretty, AgreesWithThePlainFormulaAwayFromTies)
{
    constexpr float kUnits[] = {1.0f,  1e-1f, 1e-2f, 1e-3f, 1e-4f,
                                1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f};
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> values(0.0, 2000000.0);
    int compared = 0;
    for (int round = 0; round < 20000; ++round) {
        const int decimals = round % 10;
        const double value = values(random) / std::pow(10.0, random() % 7);
        const double scale = std::pow(10.0, decimals);
        const double tie = value * scale - std::trunc(value * scale) - 0.5;
        if (std::fabs(tie) < 1e-6) {
            continue;
        }
        const double x = value + 0.5 * static_cast<double>(kUnits[decimals]);
        const auto whole = static_cast<long long>(x);
        const auto fraction = static_cast<long long>(scale * (x - static_cast<double>(whole)));
        std::wstring digits = std::to_wstring(fraction);
        digits.insert(0,
                      static_cast<std::size_t>(decimals) -
                          std::min<std::size_t>(digits.size(), static_cast<std::size_t>(decimals)),
                      L'0');
        const std::wstring expected =
            std::to_wstring(whole) + (decimals == 0 ? L"" : L"." + digits);
        const std::wstring pattern = L"0." + std::wstring(static_cast<std::size_t>(decimals), L'0');
        ASSERT_EQ(fixedText(value, pattern), expected) << testing::PrintToString(value);
        ++compared;
    }
    EXPECT_GT(compared, 19000);
}

TEST(FormatFloatPretty, LargeAndStrangeValuesHaveASensibleText)
{
    EXPECT_EQ(fixedText(2147483648.0, L"0.00", true), L"2,147,483,648.00");
    EXPECT_EQ(fixedText(-1e15, L"0.0", true), L"1,000,000,000,000,000.0");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::max(), L"0").size(), 309u);
    EXPECT_EQ(fixedText(HUGE_VAL, L"0.00", true), L"inf");
    EXPECT_EQ(fixedText(-HUGE_VAL, L"0.00"), L"inf");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::quiet_NaN(), L"0.00"), L"nan");
}

TEST(FormatFloatPretty, TakesThePunctuationOfTheGlobalLocale)
{
    const GlobalPunctuation german(L',', L'.');
    EXPECT_EQ(fixedText(1234.567, L"0.00", true), L"1.234,57"); // the pattern keeps its '.'
    EXPECT_EQ(fixedText(1234.567, L"0,00", true), L"1.235");
}

TEST(FormatFloatPretty, PatternMayBeTheResult)
{
    _XeString<wchar_t> text = L"0.00";
    FormatFloatPretty(text, 1.25, text, false);
    EXPECT_EQ(text, L"1.25");
}

_XeString<wchar_t> platformText(double value, const wchar_t* pattern)
{
    _XeString<wchar_t> text;
    XeFormatterPlatform::stringFromDouble(text, value, pattern);
    return text;
}

TEST(StringFromDouble, GroupsAndAddsTheSign)
{
    EXPECT_EQ(platformText(-1234.567, L"0.00"), L"-1,234.57");
    EXPECT_EQ(platformText(1234.567, L"0.00"), L"1,234.57");
    EXPECT_EQ(platformText(-HUGE_VAL, L"0.00"), L"-inf");
    EXPECT_EQ(platformText(7.5, nullptr), L"8");
}

TEST(StringFromDouble, ANegativeValueThatRoundsToZeroKeepsItsSign)
{
    EXPECT_EQ(platformText(-0.001, L"0.00"), L"-0.00");
    EXPECT_EQ(platformText(-0.0, L"0.00"), L"0.00"); // which is not below zero
}

struct RatioRow {
    int magnify;
    double ratio;
    const wchar_t* text;
};

TEST(ZoomRatio, StepsAlternateBetweenTwoAndThreeTimesPowersOfTwo)
{
    constexpr RatioRow kRows[] = {
        {0, 1.0, L"1:1"},
        {1, 2.0, L"1:2"},
        {2, 3.0, L"1:3"},
        {3, 4.0, L"1:4"},
        {4, 6.0, L"1:6"},
        {5, 8.0, L"1:8"},
        {6, 12.0, L"1:12"},
        {97, 0x1p49, L"1:562949953421312"},
        {98, 3 * 0x1p48, L"1:844424930131968"},
        {99, 0x1p50, L"1:1125899906842624"},
        {2147483647, 0x1p50, L"1:1125899906842624"},
        {-1, 1.0 / 2, L"2:1"},
        {-2, 1.0 / 3, L"3:1"},
        {-3, 1.0 / 4, L"4:1"},
        {-4, 1.0 / 6, L"6:1"},
        {-5, 1.0 / 8, L"8:1"},
        {-6, 1.0 / 12, L"12:1"},
        {-7, 1.0 / 16, L"16:1"},
        {-8, 0.041666666666666664, L"24:1"},
        {-9, 0.041666666666666664, L"24:1"},
        {-30, 0.041666666666666664, L"24:1"},
        {-2147483647 - 1, 0.041666666666666664, L"24:1"},
    };
    for (const RatioRow& row : kRows) {
        SCOPED_TRACE(row.magnify);
        EXPECT_EQ(ZoomRatioUtils::ZoomRatioFromHMagnify(row.magnify), row.ratio);
        _XeString<wchar_t> text;
        ZoomRatioUtils::ZoomRatioTextFromHMagnify(row.magnify, text);
        EXPECT_EQ(text, row.text);
    }
}

struct DensityRow {
    double ratio;
    const wchar_t* text;
    long long a;
    long long b;
};

TEST(ZoomRatio, TextAndDensityNameWholeSamplesAndPixels)
{
    constexpr DensityRow kRows[] = {
        {1.0, L"1:1", 1, 1},
        {1.49, L"1:1", 1, 1},
        {1.5, L"1:2", 2, 1},
        {2.5, L"1:3", 3, 1},
        {0.999, L"1:1", 1, 1},
        {0.4, L"3:1", 1, 3}, // 2.5 and its small excess round up
        {1.0 / 3, L"3:1", 1, 3},
        {1e-6, L"1000000:1", 1, 1000000},
        {1e-300, L"2147483647:1", 1, 2147483647},
        {1e300, L"1:9223372036854775807", 9223372036854775807, 1},
    };
    for (const DensityRow& row : kRows) {
        SCOPED_TRACE(row.ratio);
        _XeString<wchar_t> text;
        ZoomRatioUtils::ZoomRatioTextFromZoomRatio(row.ratio, text);
        EXPECT_EQ(text, row.text);
        long long a = 0;
        long long b = 0;
        ZoomRatioUtils::PixelDensityFromZoomRatio(row.ratio, &a, &b);
        EXPECT_EQ(a, row.a);
        EXPECT_EQ(b, row.b);
    }
}

TEST(ZoomRatio, DensitySkipsNullPointers)
{
    long long number = 0;
    ZoomRatioUtils::PixelDensityFromZoomRatio(0.5, nullptr, &number);
    EXPECT_EQ(number, 2);
    ZoomRatioUtils::PixelDensityFromZoomRatio(3.0, &number, nullptr);
    EXPECT_EQ(number, 3);
    ZoomRatioUtils::PixelDensityFromZoomRatio(3.0, nullptr, nullptr);
}

} // namespace
