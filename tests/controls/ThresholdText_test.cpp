#include "ThresholdText.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

using xenon::threshold::parse;
using xenon::threshold::render;
using xenon::threshold::Unit;

std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

TEST(ThresholdText, ReadsWhatPeopleType)
{
    const struct {
        Unit unit;
        const wchar_t* text;
        double value;
    } rows[] = {
        {Unit::Decibel, L"-12", -12},
        {Unit::Decibel, L"-12 dB", -12},
        {Unit::Decibel, L"-12dB", -12},
        {Unit::Decibel, L" -12.5 DB ", -12.5},
        {Unit::Decibel, L"-12,5", -12.5},
        {Unit::Decibel, L"- 6", -6},
        {Unit::Decibel, L"\u22126 dBFS", -6},
        {Unit::Decibel, L"+3", 3},
        {Unit::Decibel, L"0", 0},
        {Unit::Decibel, L".5", 0.5},
        {Unit::Decibel, L"5.", 5},
        {Unit::Decibel, L"50 %", -6.020599913279624},
        {Unit::Decibel, L"50%", -6.020599913279624},
        {Unit::Decibel, L"100 %", 0},
        {Unit::Percent, L"50", 50},
        {Unit::Percent, L"50 %", 50},
        {Unit::Percent, L"50%", 50},
        {Unit::Percent, L"0,1", 0.1},
        {Unit::Percent, L"101 %", 101},
        {Unit::Percent, L"-6 dB", 50.11872336272722},
        {Unit::Percent, L"0 dB", 100},
        {Unit::Percent, L"-inf", 0},
        {Unit::Percent, L"-Inf. dB", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(narrow(row.text));
        const auto value = parse(row.text, row.unit);
        ASSERT_TRUE(value);
        EXPECT_NEAR(*value, row.value, 1e-12);
    }
}

TEST(ThresholdText, MinusInfinityHasManyNames)
{
    for (const wchar_t* const text : {L"-inf", L"-Inf.", L"-INF", L"-infinity", L"-\u221e",
                                      L"\u2212\u221e", L"-inf dB", L"0 %"}) {
        SCOPED_TRACE(narrow(text));
        EXPECT_EQ(parse(text, Unit::Decibel), -HUGE_VAL);
    }
}

TEST(ThresholdText, RefusesWhatIsNoThreshold)
{
    for (const wchar_t* const text :
         {L"",      L" ",     L"abc",  L"-",        L"+",     L".",     L"%",    L"dB",
          L"- dB",  L"1e400", L"1e5",  L"inf",      L"+inf",  L"nan",   L"0x10", L"1,234.5",
          L"1.2.3", L"--1",   L"12 x", L"12 dB dB", L"5 % %", L"\u0663"}) {
        SCOPED_TRACE(narrow(text));
        EXPECT_FALSE(parse(text, Unit::Decibel));
        EXPECT_FALSE(parse(text, Unit::Percent));
    }
}

// 10,000 digits are a number like any other, and one that limits can be held against.
TEST(ThresholdText, HugeNumbersStayFinite)
{
    const std::wstring digits(10000, L'9');
    for (const std::wstring& text :
         {digits, L"-" + digits, digits + L" dB", digits + L" %", L"0." + digits}) {
        for (const Unit unit : {Unit::Decibel, Unit::Percent}) {
            const auto value = parse(text, unit);
            ASSERT_TRUE(value);
            EXPECT_FALSE(std::isnan(*value));
            EXPECT_LT(*value, HUGE_VAL);
        }
    }
    EXPECT_FALSE(parse(std::wstring(10000, L'x'), Unit::Decibel));
}

TEST(ThresholdText, ShowsTwoDecimalsAndTheUnit)
{
    EXPECT_EQ(render(-12, Unit::Decibel), "-12.00 dB");
    EXPECT_EQ(render(-59.9, Unit::Decibel), "-59.90 dB");
    EXPECT_EQ(render(50, Unit::Percent), "50.00 %");
    EXPECT_EQ(render(0, Unit::Percent), "0.00 %");
    EXPECT_EQ(render(-0.001, Unit::Decibel), "0.00 dB");
    EXPECT_EQ(render(-0.0, Unit::Decibel), "0.00 dB");
}

// Nothing that was typed turns into minus zero, which would show a sign.
TEST(ThresholdText, ZeroHasNoSign) { EXPECT_FALSE(std::signbit(*parse(L"-0", Unit::Decibel))); }

TEST(ThresholdText, ConvertsBetweenTheUnits)
{
    EXPECT_DOUBLE_EQ(xenon::threshold::decibelsFromPercent(100), 0);
    EXPECT_DOUBLE_EQ(xenon::threshold::decibelsFromPercent(10), -20);
    EXPECT_EQ(xenon::threshold::decibelsFromPercent(0), -HUGE_VAL);
    EXPECT_EQ(xenon::threshold::decibelsFromPercent(-5), -HUGE_VAL);
    EXPECT_DOUBLE_EQ(xenon::threshold::percentFromDecibels(-20), 10);
    EXPECT_TRUE(std::isfinite(xenon::threshold::percentFromDecibels(1e6)));
}

} // namespace
