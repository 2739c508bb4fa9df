#include "LocaleGuard.h"
#include "TimeRecords.h"
#include "XePosFmt.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

/// A record whose every field must be overwritten.
constexpr XESMPTEVAL kGarbage{9, 9, 9, 9, 9, true};

struct LabelRow {
    const wchar_t* text;
    unsigned fps;
    XESMPTEVAL label;
};

void expectLabels(std::initializer_list<LabelRow> rows, bool halfStep = false)
{
    for (const LabelRow& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        XESMPTEVAL read = kGarbage;
        EXPECT_TRUE(AsciiToSMPTE(row.text, &read, row.fps, halfStep));
        EXPECT_EQ(read, row.label);
    }
}

TEST(Characters, ThreeCharactersSeparate)
{
    for (wchar_t c = 0; c < 300; ++c) {
        EXPECT_EQ(is_separator(c), c == L'.' || c == L':' || c == L';') << int(c);
    }
}

TEST(Characters, OnlyDecimalDigitsOfTheFirst256CodesAreDigits)
{
    for (wchar_t c = 0; c < 300; ++c) {
        EXPECT_EQ(not_isdigit(c), c < L'0' || c > L'9') << int(c);
    }
    EXPECT_TRUE(not_isdigit(L'0' + 256)); // the code is not cut to a byte
    EXPECT_TRUE(not_isdigit(L'\u0663'));
    EXPECT_TRUE(not_isdigit(static_cast<wchar_t>(-208)));
    EXPECT_TRUE(not_isdigit(std::numeric_limits<wchar_t>::max()));
}

TEST(AsciiToSMPTE, AnythingButADigitSeparates)
{
    expectLabels({
        {L"01:02:03:04", 30, {0, 1, 2, 3, 4}},
        {L"01.02.03.04", 30, {0, 1, 2, 3, 4}},
        {L"01;02;03;04", 30, {0, 1, 2, 3, 4}},
        {L"01-02-03-04", 30, {0, 1, 2, 3, 4}},
        {L"01:02:03;04", 30, {0, 1, 2, 3, 4}},
        {L"1 2x3\u00E94", 30, {0, 1, 2, 3, 4}},
        {L"1h2m3", 30, {0, 0, 1, 2, 3}},
    });
}

TEST(AsciiToSMPTE, MissingFieldsInFrontAreZero)
{
    expectLabels({
        {L"", 30, {0, 0, 0, 0, 0}},
        {L"4", 30, {0, 0, 0, 0, 4}},
        {L"3:4", 30, {0, 0, 0, 3, 4}},
        {L"2:3:4", 30, {0, 0, 2, 3, 4}},
        {L":", 30, {0, 0, 0, 0, 0}},
        {L"1::", 30, {0, 0, 1, 0, 0}},
        {L"1:::", 30, {0, 1, 0, 0, 0}},
        {L"-3:4", 30, {0, 0, 0, 3, 4}}, // the minus sign is one more separator
    });
}

TEST(AsciiToSMPTE, DigitsAloneAreReadInPairsFromTheRight)
{
    expectLabels({
        {L"1", 30, {0, 0, 0, 0, 1}},
        {L"12", 30, {0, 0, 0, 0, 12}},
        {L"100", 30, {0, 0, 0, 1, 0}},
        {L"1234", 60, {0, 0, 0, 12, 34}},
        {L"12345", 60, {0, 0, 1, 23, 45}},
        {L"123456", 60, {0, 0, 12, 34, 56}},
        {L"1234567", 90, {0, 1, 23, 45, 67}},
        {L"12345678", 90, {0, 12, 34, 56, 78}},
        {L"12345678", 30, {0, 12, 34, 58, 18}}, // then the frames carry
    });
    XESMPTEVAL read = kGarbage;
    EXPECT_FALSE(AsciiToSMPTE(L"123456789", &read, 30, false)); // five pairs
}

TEST(AsciiToSMPTE, MoreThanFourFieldsAreRefused)
{
    for (const wchar_t* text : {L"1:2:3:4:5", L"::::", L"1:2:3:4:", L"3 01:56:45:23"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        XESMPTEVAL read = kGarbage;
        EXPECT_FALSE(AsciiToSMPTE(text, &read, 30, false));
        EXPECT_EQ(read, XESMPTEVAL{}); // cleared all the same
    }
}

TEST(AsciiToSMPTE, WhiteSpaceAroundTheTextIsIgnored)
{
    expectLabels({{L" \t1:02 \n", 30, {0, 0, 0, 1, 2}},
                  {L"1:02 *", 30, {0, 0, 1, 2, 0, true}}}); // inside it separates
}

TEST(AsciiToSMPTE, NumbersTooLargeCarryAndHoursWrapAt24)
{
    expectLabels({
        {L"10:00:00:45", 30, {0, 10, 0, 1, 15}},
        {L"25:00:00:00", 30, {0, 1, 0, 0, 0}},
        {L"23:59:59:30", 30, {0, 0, 0, 0, 0}},
        {L"0:0:60:0", 30, {0, 0, 1, 0, 0}},
        {L"0:60:0:0", 30, {0, 1, 0, 0, 0}},
        {L"0:59:59:61", 30, {0, 1, 0, 1, 1}},
        {L"100:0:0:0", 25, {0, 4, 0, 0, 0}},
    });
}

TEST(AsciiToSMPTE, NumbersBeyond32BitsWrap)
{
    expectLabels({{L"0:0:0:4294967297", 30, {0, 0, 0, 0, 1}},
                  {L"0:0:4294967295:30", 30, {0, 0, 0, 0, 0}}}); // the carry wraps as well
}

TEST(AsciiToSMPTE, WithoutARateFramesStayAndTheMarkIsIgnored)
{
    expectLabels(
        {{L"0:0:61:4000", 0, {0, 0, 1, 1, 4000}}, {L"0:0:1:2*", 0, {0, 0, 0, 1, 2, false}}});
    expectLabels({{L"0:0:1:2*", 0, {0, 0, 0, 1, 2, false}}}, true);
}

TEST(AsciiToSMPTE, AStarMarksTheSecondField)
{
    expectLabels({
        {L"00:00:01:00*", 30, {0, 0, 0, 1, 0, true}},
        {L"*", 30, {0, 0, 0, 0, 0, true}},
        {L"100*", 30, {0, 0, 0, 1, 0, true}},
        {L"1**", 30, {0, 0, 0, 1, 0, true}}, // the other star separates
    });
}

TEST(AsciiToSMPTE, HalfStepCountsFields)
{
    expectLabels(
        {
            {L"00:00:00:10*", 60, {0, 0, 0, 0, 21}},
            {L"00:00:00:10", 60, {0, 0, 0, 0, 20}},
            {L"00:00:00:29*", 60, {0, 0, 0, 0, 59}},
            {L"00:00:00:30", 60, {0, 0, 0, 1, 0}}, // thirty frames are sixty fields
            {L"00:00:00:65*", 60, {0, 0, 0, 2, 11}},
        },
        true);
}

// Half of one field a second is nothing to divide by: like no rate.
TEST(AsciiToSMPTE, HalfStepAtARateOfOneCarriesNothing)
{
    expectLabels({{L"0:0:0:5*", 1, {0, 0, 0, 0, 5, false}}}, true);
}

TEST(AsciiToSMPTE, LongTextsAreRead)
{
    const std::wstring zeros(500, L'0');
    XESMPTEVAL read = kGarbage;
    EXPECT_TRUE(AsciiToSMPTE(zeros + L"1:" + zeros + L"2", &read, 30, false));
    EXPECT_EQ(read, label(0, 0, 1, 2));
}

struct TimeRow {
    const wchar_t* text;
    XESMPTEVAL time;
};

TEST(AsciiToTime, FieldsFillFromTheRight)
{
    constexpr TimeRow kRows[] = {
        {L"5", {0, 0, 0, 5, 0}},         {L"2:05.25", {0, 0, 2, 5, 250}},
        {L"1:02:03", {0, 1, 2, 3, 0}},   {L"1:02:03.5", {0, 1, 2, 3, 500}},
        {L"0.001", {0, 0, 0, 0, 1}},     {L"0.0009", {0, 0, 0, 0, 0}},
        {L"59.999", {0, 0, 0, 59, 999}}, {L".5", {0, 0, 0, 0, 500}},
        {L"90", {0, 0, 0, 90, 0}}, // nothing is carried
        {L"0:90:90", {0, 0, 90, 90, 0}}, {L"1,234", {0, 0, 0, 1234, 0}},
        {L" 1:02 ", {0, 0, 1, 2, 0}},    {L"7 %", {0, 0, 0, 7, 0}},
        {L"", {0, 0, 0, 0, 0}},          {L"1:", {0, 0, 1, 0, 0}},
        {L"1::", {0, 1, 0, 0, 0}},       {L"4294967297", {0, 0, 0, 1, 0}}, // wraps like every count
    };
    for (const TimeRow& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        XESMPTEVAL time = kGarbage;
        EXPECT_TRUE(AsciiToTime(row.text, &time));
        EXPECT_EQ(time, row.time);
    }
}

// A tenth has no exact double; without the small push away from zero 0.29 would be 289 ms.
TEST(AsciiToTime, EveryMillisecondIsReadExactly)
{
    _XeString<wchar_t> text;
    for (unsigned seconds = 0; seconds < 3600; seconds += seconds < 60 ? 1 : 59) {
        for (unsigned ms = 0; ms < 1000; ++ms) {
            text = std::to_wstring(seconds) + L"." + std::to_wstring(1000 + ms).substr(1);
            XESMPTEVAL time;
            ASSERT_TRUE(AsciiToTime(text, &time));
            ASSERT_EQ(time, label(0, 0, seconds, ms));
        }
    }
}

TEST(AsciiToTime, RefusesSeparatorsOutOfOrder)
{
    for (const wchar_t* text : {L"1.5:20", L"1:2:3:4", L":::", L"1.2.3", L"1:2.3.4", L"..", L"5x",
                                L"1:x", L"+5", L"1 2", L"1:2 :3", L"nan"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        XESMPTEVAL time;
        EXPECT_FALSE(AsciiToTime(text, &time));
    }
}

TEST(AsciiToTime, NegativeSecondsWrapWithoutUndefinedBehaviour)
{
    XESMPTEVAL time;
    EXPECT_TRUE(AsciiToTime(L"-5", &time));
    EXPECT_EQ(time.seconds, 4294967291u);
    EXPECT_TRUE(AsciiToTime(std::wstring(400, L'9'), &time)); // more than a double holds
    EXPECT_EQ(time.seconds, 0u);
    EXPECT_EQ(time.frames, 0u);
}

TEST(AsciiToTime, TakesTheDecimalPointOfTheGlobalLocale)
{
    const GlobalPunctuation german(L',', L'.');
    XESMPTEVAL time;
    EXPECT_TRUE(AsciiToTime(L"2:05,25", &time));
    EXPECT_EQ(time, label(0, 2, 5, 250));
    EXPECT_FALSE(AsciiToTime(L"1,5:20", &time));
    EXPECT_TRUE(AsciiToTime(L"1.5:20", &time)); // the thousands separator here
    EXPECT_EQ(time, label(0, 15, 20, 0));
}

struct MeasureRow {
    const wchar_t* text;
    unsigned measure;
    double beat;
};

TEST(AsciiToMeasures, DecimalsOfABeatCountQuarters)
{
    constexpr MeasureRow kRows[] = {
        {L"3", 3, 0.0},       {L"3:2", 3, 2.0},      {L"3:2.1", 3, 2.25},   {L"3:2.2", 3, 2.5},
        {L"3:2.3", 3, 2.75},  {L"3:2.4", 3, 3.0},    {L"", 0, 0.0},         {L"3:", 3, 0.0},
        {L" 12 :1", 12, 1.0}, {L"1,000:0", 1000, 0}, {L"3:0.05", 3, 0.125},
    };
    for (const MeasureRow& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        _measureval measures{.beatsPerMeasure = 4, .measure = 9, .tempo = 120, .beat = 9};
        EXPECT_TRUE(AsciiToMeasures(row.text, &measures));
        EXPECT_EQ(measures.measure, row.measure);
        EXPECT_DOUBLE_EQ(measures.beat, row.beat);
        EXPECT_EQ(measures.beatsPerMeasure, 4); // the context is left alone
        EXPECT_EQ(measures.tempo, 120);
    }
}

TEST(AsciiToMeasures, ABeatFollowedBySomethingIsKeptAsItWasRead)
{
    _measureval measures;
    EXPECT_TRUE(AsciiToMeasures(L"3:2.1 ", &measures));
    EXPECT_EQ(measures.beat, 2.1);
    EXPECT_TRUE(AsciiToMeasures(L"3:2.1:4", &measures));
    EXPECT_EQ(measures.beat, 2.1);
}

TEST(AsciiToMeasures, LetsNoExceptionOut)
{
    for (const wchar_t* text : {L"3.2", L"x", L"3:x", L"3: ", L"3:1.2.3", L"3:1e999", L"3;2"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        _measureval measures;
        EXPECT_NO_THROW(EXPECT_FALSE(AsciiToMeasures(text, &measures)));
    }
}

} // namespace
