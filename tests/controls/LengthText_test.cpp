#include "LengthText.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

LengthText makeText(unsigned type, double sampleRate = 44100)
{
    LengthText text;
    text.setSampleRate(sampleRate);
    text.setFormatSampleRate(sampleRate);
    text.setType(static_cast<_zqposfmt_format>(type));
    return text;
}

std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

std::string rendered(const LengthText& text, std::int64_t samples)
{
    return narrow(text.render(samples));
}

// Every format shows what an engineer would write for the same length.
TEST(LengthText, RendersEveryFormat)
{
    // One hour, one minute, one second and a half at 44100.
    constexpr std::int64_t kSamples = 44100LL * 3661 + 22050;
    const struct {
        unsigned type;
        const char* text;
    } rows[] = {
        {0, "161472150"},          {1, "01:01:01.500"}, {2, "3661.500"},       {3, "01:01:01.37"},
        {4, "274612.500"},         {5, "1830:3.0"},     {6, "01:00:57:25"},    {7, "01:01:01:15"},
        {8, "01:01:01;15"},        {9, "01:01:01:12"},  {10, "01:01:01:12"},   {11, "161472150"},
        {12, "161472150"},         {13, "1830:3.0"},    {14, "161472150.000"}, {15, "5492+4"},
        {16, "2196+36"},           {17, "01:01:01:37"}, {18, "01:00:57:20"},   {19, "01:01:01"},
        {20, "161472150"},         {21, "01:01:01:15"}, {22, "01:01:01;15"},   {23, "161472150"},
        {0xFFFFFFFF, "161472150"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(rendered(makeText(row.type), kSamples), row.text);
    }
}

TEST(LengthText, RendersZeroInEveryFormat)
{
    const char* const texts[] = {
        "0",           "00:00:00.000", "0.000",       "00:00:00.00", "0.000",       "0:0.0",
        "00:00:00:00", "00:00:00:00",  "00:00:00;00", "00:00:00:00", "00:00:00:00", "0",
        "0",           "0:0.0",        "0.000",       "0+0",         "0+0",         "00:00:00:00",
        "00:00:00:00", "00:00:00",     "0",           "00:00:00:00", "00:00:00;00",
    };
    for (unsigned type = 0; type < std::size(texts); ++type) {
        SCOPED_TRACE(type);
        EXPECT_EQ(rendered(makeText(type), 0), texts[type]);
    }
}

constexpr double kRates[] = {8000, 44100, 44056, 48000, 96000, 192000, 48000 / 1.001};

std::vector<std::int64_t> countsOfAllSizes()
{
    std::vector<std::int64_t> counts = {0,   1,   2,    22,   23,   43,   44,   45,
                                        220, 441, 1471, 1472, 1601, 1602, 44099};
    for (int shift = 16; shift <= 40; ++shift) {
        for (const std::int64_t offset : {-1, 0, 1, 777}) {
            counts.push_back((std::int64_t{1} << shift) + offset);
        }
    }
    return counts;
}

void expectSameTextBack(const LengthText& text, std::int64_t samples)
{
    const _XeString<wchar_t> shown = text.render(samples);
    const auto parsed = text.parse(shown);
    ASSERT_TRUE(parsed);
    ASSERT_EQ(narrow(text.render(*parsed)), narrow(shown));
    ASSERT_EQ(text.parse(text.render(*parsed)), parsed);
}

TEST(LengthText, TextsAreParsedToACountThatShowsTheSameText)
{
    for (const double rate : kRates) {
        for (unsigned type = 0; type < 23; ++type) {
            const LengthText text = makeText(type, rate);
            for (const std::int64_t samples : countsOfAllSizes()) {
                SCOPED_TRACE(testing::Message()
                             << "type " << type << " rate " << rate << " samples " << samples);
                expectSameTextBack(text, samples);
            }
        }
    }
}

bool isDecimal(unsigned type)
{
    return type == zqposfmt_time_ms || type == zqposfmt_seconds || type == zqposfmt_frames;
}

// A label stands for the time from its first sample on.
TEST(LengthText, LabelsAreParsedToTheFirstSampleShownSo)
{
    for (const double rate : kRates) {
        for (unsigned type = 0; type < 23; ++type) {
            const LengthText text = makeText(type, rate);
            for (const std::int64_t samples : countsOfAllSizes()) {
                if (isDecimal(type)) {
                    continue;
                }
                const _XeString<wchar_t> shown = text.render(samples);
                SCOPED_TRACE(testing::Message() << "type " << type << " rate " << rate
                                                << " samples " << samples << " " << narrow(shown));
                const auto parsed = text.parse(shown);
                ASSERT_TRUE(parsed);
                ASSERT_LE(*parsed, samples);
                if (*parsed > 0) {
                    ASSERT_NE(text.render(*parsed - 1), shown);
                }
            }
        }
    }
}

// Milliseconds, and frames with three decimals, are rounded like any number.
TEST(LengthText, DecimalsAreParsedToWithinHalfADigit)
{
    const struct {
        unsigned type;
        double digitsPerSecond;
    } rows[] = {{zqposfmt_time_ms, 1000}, {zqposfmt_seconds, 1000}, {zqposfmt_frames, 75000}};
    for (const double rate : kRates) {
        for (const auto& row : rows) {
            const LengthText text = makeText(row.type, rate);
            const double halfDigit = 0.5 * rate / row.digitsPerSecond;
            for (const std::int64_t samples : countsOfAllSizes()) {
                SCOPED_TRACE(testing::Message()
                             << "type " << row.type << " rate " << rate << " samples " << samples);
                const auto parsed = text.parse(text.render(samples));
                ASSERT_TRUE(parsed);
                // Half a digit from the count to the text, half a sample from there back.
                ASSERT_LE(std::abs(static_cast<double>(*parsed - samples)), halfDigit + 0.5001);
            }
        }
    }
}

// The effect keeps milliseconds and the editor cuts them to whole samples.
TEST(LengthText, WholeMillisecondsCutToSamplesShowAsThemselves)
{
    for (const double rate : {44100.0, 48000.0, 88200.0, 96000.0, 192000.0}) {
        const LengthText clock = makeText(zqposfmt_time_ms, rate);
        const LengthText seconds = makeText(zqposfmt_seconds, rate);
        for (int ms = 0; ms < 1000; ++ms) {
            SCOPED_TRACE(testing::Message() << ms << " ms at " << rate);
            char number[16];
            std::snprintf(number, sizeof number, "0.%03d", ms);
            const auto samples = static_cast<std::int64_t>(ms * rate / 1000);
            ASSERT_EQ(rendered(seconds, samples), number);
            ASSERT_EQ(rendered(clock, samples), "00:00:0" + std::string(number));
        }
    }
}

// A count that lies on a frame, a millisecond, a tick comes back exactly.
TEST(LengthText, CountsOnTheGridComeBackExactly)
{
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        const auto second = static_cast<std::int64_t>(rate);
        for (const unsigned type : {0U, 1U, 2U, 3U, 5U, 7U, 9U, 10U, 14U, 15U, 16U, 17U}) {
            const LengthText text = makeText(type, rate);
            for (const std::int64_t samples : {second, 2 * second, 60 * second, 3661 * second}) {
                SCOPED_TRACE(testing::Message() << type << " at " << rate << ": " << samples);
                EXPECT_EQ(text.parse(text.render(samples)), samples);
            }
        }
    }
}

// The grid points are those of the format objects everyone else uses.
TEST(LengthText, PlacesLabelsWherePosFmtDoes)
{
    for (const unsigned type : {3U, 6U, 7U, 8U, 9U, 10U, 17U, 18U}) {
        const LengthText text = makeText(type, 48000);
        XePosFmt format(zqposfmt_samples);
        format.setType(static_cast<_zqposfmt_format>(type));
        for (const wchar_t* const label :
             {L"00:00:00:01", L"00:01:00:02", L"01:02:03:04", L"10:00:00:00", L"23:59:59:23"}) {
            SCOPED_TRACE(testing::Message() << type << " " << narrow(label));
            const XESMPTEVAL value = type == 3 || type == 17 ? format.hmsfFromString(label)
                                                             : format.smpteFromString(label);
            EXPECT_EQ(text.parse(_XeString<wchar_t>(label)), format.smpteToPosition(48000, value));
        }
    }
    const LengthText clock = makeText(zqposfmt_time_ms, 44100);
    const XePosFmt format(zqposfmt_time_ms);
    for (const wchar_t* const time : {L"0.001", L"0.005", L"1:02:03.456", L"59.999"}) {
        EXPECT_EQ(clock.parse(_XeString<wchar_t>(time)),
                  format.hmsfToPosition(44100, 1000, format.hmsfFromString(time)));
    }
}

TEST(LengthText, MillisecondsOfThe44100Grid)
{
    const LengthText text = makeText(zqposfmt_time_ms);
    EXPECT_EQ(rendered(text, 22), "00:00:00.000");
    EXPECT_EQ(rendered(text, 23), "00:00:00.001");
    EXPECT_EQ(rendered(text, 66), "00:00:00.001");
    EXPECT_EQ(rendered(text, 67), "00:00:00.002");
    EXPECT_EQ(rendered(text, 220), "00:00:00.005");
    EXPECT_EQ(rendered(text, -220), "-00:00:00.005");
    EXPECT_EQ(text.parse(L"0.005"), 221); // 220.5 lies between two samples
}

// No picture is lost at the start of a minute, only two numbers.
TEST(LengthText, DropFrameSkipsTheFirstTwoLabelsOfAMinute)
{
    const LengthText text = makeText(zqposfmt_smpte_29_97_drop, 48000);
    const auto minute = text.parse(L"1:00;02");
    ASSERT_TRUE(minute);
    EXPECT_EQ(rendered(text, *minute), "00:01:00;02");
    EXPECT_EQ(rendered(text, *minute - 1), "00:00:59;29");
    EXPECT_EQ(text.parse(L"1:00;00"), minute);
}

TEST(LengthText, WholeRangeOfSamplesIsExact)
{
    const LengthText text = makeText(zqposfmt_samples);
    for (const std::int64_t samples : {kLowest, kLowest + 1, std::int64_t{-1}, std::int64_t{0},
                                       (std::int64_t{1} << 53) + 1, kHighest - 1, kHighest}) {
        SCOPED_TRACE(samples);
        EXPECT_EQ(rendered(text, samples), std::to_string(samples));
        EXPECT_EQ(text.parse(text.render(samples)), samples);
    }
}

// A text larger than any count means the largest, which the limits of a field then cut further.
TEST(LengthText, NumbersTooLargeGiveTheLastCount)
{
    const std::wstring digits(10000, L'9');
    EXPECT_EQ(makeText(0).parse(digits), kHighest);
    EXPECT_EQ(makeText(0).parse(L"-" + digits), kLowest);
    EXPECT_EQ(makeText(0).parse(L"9223372036854775808"), kHighest);
    EXPECT_EQ(makeText(0).parse(L"-9223372036854775809"), kLowest);
    for (unsigned type = 1; type < 23; ++type) {
        SCOPED_TRACE(type);
        const LengthText text = makeText(type);
        const auto last = text.parse(digits + L":0");
        const auto plain = text.parse(digits);
        const auto& parsed = last ? last : plain;
        ASSERT_TRUE(parsed);
        EXPECT_GT(*parsed, std::int64_t{1} << 40);
        EXPECT_EQ(text.render(*parsed), text.render(kHighest));
    }
}

// The lowest count has no positive counterpart. Grids are too coarse to tell.
TEST(LengthText, LowestCountShowsAsTheHighestNegated)
{
    for (const unsigned type : {1U, 2U, 3U, 4U, 5U, 8U, 14U, 15U, 19U, 22U}) {
        SCOPED_TRACE(type);
        const LengthText text = makeText(type);
        EXPECT_EQ(text.render(kLowest), L"-" + text.render(kHighest));
    }
}

TEST(LengthText, NegativeCountsMirrorPositiveOnes)
{
    for (unsigned type = 0; type < 23; ++type) {
        SCOPED_TRACE(type);
        const LengthText text = makeText(type);
        EXPECT_EQ(text.render(-1234567), L"-" + text.render(1234567));
        EXPECT_EQ(text.parse(text.render(-1234567)), -*text.parse(text.render(1234567)));
    }
}

TEST(LengthText, ReadsWhatPeopleType)
{
    const struct {
        unsigned type;
        const wchar_t* text;
        std::int64_t samples;
    } rows[] = {
        {0, L" 44100 ", 44100},
        {0, L"+5", 5},
        {0, L"-5", -5},
        {0, L"1,234,567", 1234567},
        {0, L"1.234.567", 1234567},
        {0, L"1 234", 1234},
        {1, L"5", 220500},
        {1, L"1.5", 66150},
        {1, L"1,5", 66150},
        {1, L".5", 22050},
        {1, L"2:05.25", 5523525},
        {1, L"1:00:00", 158760000},
        {1, L"90", 3969000},
        {1, L"0:90", 3969000},
        {1, L"25:00:00", 3969000000},
        {1, L"1.0000000000000000000000000000001", 44100},
        {2, L"10", 441000},
        {2, L"0,001", 44},
        {3, L"1:74", 87612},
        {4, L"75", 44100},
        {4, L"1.5", 882},
        {5, L"1", 88200},
        {5, L"1:1", 110250},
        {5, L"1:1.2", 121275},
        {5, L"0:0.5", 27563},
        {5, L"1;1;2", 121275},
        {7, L"01:02:03:04", 164184300 + 5880},
        {7, L"01.02.03.04", 164184300 + 5880},
        {7, L"01-02-03-04", 164184300 + 5880},
        {7, L"1020304", 164184300 + 5880},
        {7, L"100", 44100},
        {7, L"3:04", 132300 + 5880},
        {7, L"45", 44100 + 22050},
        {7, L"25:00:00:00", 3969000000},
        {7, L"1::", 60 * 44100},
        {7, L"1:00*", 44100 + 735},
        {9, L"1:00", 44100},
        {15, L"1+0", 29400},
        {15, L"16", 29400},
        {15, L"+3", 5513},
        {16, L"1+0", 73500},
        {17, L"1:00", 44100},
        {19, L"1:00", 60 * 44100},
        {21, L"1:00", 44100},
        {21, L"0:01*", 2205},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.type << " " << narrow(row.text));
        EXPECT_EQ(makeText(row.type).parse(_XeString<wchar_t>(row.text)), row.samples);
    }
}

TEST(LengthText, RefusesWhatIsNoCount)
{
    const wchar_t* const texts[] = {L"",    L" ",   L"-",    L"abc",   L"1e400",     L"nan",
                                    L"inf", L"12x", L"x12",  L"--1",   L"1:2:3:4:5", L":",
                                    L".",   L"*",   L"1 dB", L"\u0663"};
    for (unsigned type = 0; type < 23; ++type) {
        for (const wchar_t* const text : texts) {
            SCOPED_TRACE(testing::Message() << type << " " << narrow(text));
            EXPECT_FALSE(makeText(type).parse(_XeString<wchar_t>(text)));
        }
    }
    const struct {
        unsigned type;
        const wchar_t* text;
    } rows[] = {
        {0, L"1.5"},     {0, L"12,34"},     {0, L"1,234.567"}, {0, L"1:00"}, {1, L"1.5:20"},
        {1, L"1:2:3:4"}, {1, L"1.2.3"},     {1, L"1;2"},       {2, L"1:00"}, {2, L"1,234.5"},
        {7, L"1+2"},     {7, L"123456789"}, {15, L"1+2+3"},    {15, L"1:2"}, {5, L"1:1.1.1"},
        {0, L"50 %"},    {1, L"1*"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.type << " " << narrow(row.text));
        EXPECT_FALSE(makeText(row.type).parse(_XeString<wchar_t>(row.text)));
    }
}

// The first bar of a song is bar one; a length of one bar is one.
TEST(LengthText, MeasuresOfPositionsCountFromOne)
{
    LengthText text = makeText(zqposfmt_measures);
    text.setIsLength(false);
    EXPECT_EQ(rendered(text, 0), "1:1.0");
    EXPECT_EQ(rendered(text, 88200 + 22050), "2:2.0");
    EXPECT_EQ(text.parse(L"2:2.0"), 88200 + 22050);
    EXPECT_EQ(text.parse(L"3"), 176400);
    EXPECT_EQ(text.parse(L"0:1"), 0);
}

TEST(LengthText, MeasuresFollowTempoSignatureAndTicks)
{
    LengthText text = makeText(zqposfmt_measures);
    text.setTempo(60);
    text.setTimeSignature(3 << 16 | 8);
    text.setTicksPerBeat(480);
    EXPECT_EQ(rendered(text, 44100 * 4 + 22050), "1:1.240");
    EXPECT_EQ(text.parse(L"1:1.240"), 44100 * 4 + 22050);
    EXPECT_EQ(text.increment(), 44100);
}

TEST(LengthText, PercentNeedsABase)
{
    LengthText text = makeText(zqposfmt_percent);
    EXPECT_EQ(rendered(text, 500), "500");
    text.setPercentBase(1000);
    EXPECT_EQ(rendered(text, 500), "50");
    EXPECT_EQ(text.parse(L"50 %"), 500);
    EXPECT_EQ(text.parse(L"12.5"), 125);
    EXPECT_EQ(text.increment(), 10);
}

// The frame rate of a video format is part of its name.
TEST(LengthText, FixedRatesIgnoreTheFrameRate)
{
    for (const unsigned type : {1U, 6U, 7U, 8U, 9U, 10U, 17U, 18U, 19U}) {
        SCOPED_TRACE(type);
        LengthText text = makeText(type);
        const auto before = text.render(1234567);
        text.setFrameRate(60);
        EXPECT_EQ(text.render(1234567), before);
    }
}

TEST(LengthText, FreeRatesFollowTheFrameRate)
{
    LengthText text = makeText(zqposfmt_time_frames);
    text.setFrameRate(120);
    EXPECT_EQ(rendered(text, 44100 + 22050), "00:00:01.060");
    text.setType(zqposfmt_frames);
    EXPECT_EQ(rendered(text, 44100), "120.000");
}

TEST(LengthText, UnusableContextIsIgnored)
{
    for (const unsigned type : {3U, 4U, 5U, 21U}) {
        LengthText text = makeText(type);
        const auto before = text.render(1234567);
        for (const double bad : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()}) {
            SCOPED_TRACE(testing::Message() << type << " " << bad);
            text.setSampleRate(bad);
            text.setFormatSampleRate(bad);
            text.setFrameRate(bad);
            text.setTempo(bad);
            text.setTimeSignature(4);
            text.setTicksPerBeat(0);
            EXPECT_EQ(text.render(1234567), before);
            EXPECT_GE(text.increment(), 1);
        }
    }
}

TEST(LengthText, IncrementIsThatOfTheFormat)
{
    const struct {
        unsigned type;
        std::int64_t increment;
    } rows[] = {{0, 1},    {1, 4410}, {2, 4410}, {3, 588},  {4, 588},   {5, 22050},
                {6, 1472}, {7, 1470}, {8, 1472}, {9, 1764}, {10, 1838}, {11, 1},
                {13, 1},   {15, 1},   {16, 1},   {17, 588}, {18, 1},    {19, 1},
                {20, 1},   {21, 1},   {22, 1},   {99, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(makeText(row.type).increment(), row.increment);
    }
}

// A caret steps the number it stands in, and the same number stays selected.
TEST(LengthText, StepsThePartUnderTheCaret)
{
    const struct {
        unsigned type;
        const wchar_t* text;
        std::size_t caret;
        int direction;
        const char* stepped;
        std::size_t start;
        std::size_t length;
    } rows[] = {
        {1, L"01:02:03.004", 0, 1, "02:02:03.004", 0, 2},
        {1, L"01:02:03.004", 2, -1, "00:02:03.004", 0, 2},
        {1, L"01:02:03.004", 3, 1, "01:03:03.004", 3, 2},
        {1, L"01:59:03.004", 4, 1, "02:00:03.004", 3, 2},
        {1, L"01:02:03.004", 7, -1, "01:02:02.004", 6, 2},
        {1, L"01:02:03.004", 12, 1, "01:02:03.005", 9, 3},
        {7, L"01:02:03:29", 11, 1, "01:02:04:00", 9, 2},
        {7, L"01:02:03:04", 6, 1, "01:02:04:04", 6, 2},
        {8, L"00:00:59;29", 11, 1, "00:01:00;02", 9, 2},
        {8, L"00:01:00;02", 11, -1, "00:00:59;29", 9, 2},
        {8, L"00:00:10;05", 4, 1, "00:01:10;05", 3, 2},
        {8, L"00:00:10;05", 1, 1, "01:00:10;05", 0, 2},
        {8, L"00:00:00;00", 4, 1, "00:01:00;02", 3, 2},
        {5, L"3:2.1", 1, 1, "4:2.1", 0, 1},
        {5, L"3:3.1", 3, 1, "4:0.1", 2, 1},
        {5, L"3:2.3", 5, 1, "3:3.0", 4, 1},
        {15, L"12+15", 2, 1, "13+15", 0, 2},
        {15, L"12+15", 5, 1, "13+0", 3, 1},
        {19, L"00:59:00", 4, 1, "01:00:00", 3, 2},
        {21, L"00:00:01:29", 11, 1, "00:00:02:00", 9, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << row.type << " " << narrow(row.text) << " at " << row.caret);
        const LengthText text = makeText(row.type, 48000);
        const _XeString<wchar_t> shown(row.text);
        const auto samples = text.parse(shown);
        ASSERT_TRUE(samples);
        ASSERT_EQ(text.render(*samples), shown);
        const LengthText::Step step = text.step(*samples, shown, row.caret, 0, row.direction);
        EXPECT_EQ(rendered(text, step.samples), row.stepped);
        EXPECT_EQ(step.start, row.start);
        EXPECT_EQ(step.length, row.length);
    }
}

// With everything selected, and for plain numbers, a step is the natural one of the format.
TEST(LengthText, StepsByTheIncrementOtherwise)
{
    const struct {
        unsigned type;
        std::int64_t from;
        std::int64_t to;
    } rows[] = {{0, 1000, 1001},    {1, 48000, 52800},  {2, 48000, 52800}, {3, 48000, 48640},
                {4, 48000, 48640},  {5, 96000, 120000}, {7, 48000, 49600}, {9, 48000, 49920},
                {15, 48000, 50000}, {19, 48000, 96000}, {99, 7, 8}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const LengthText text = makeText(row.type, 48000);
        const auto shown = text.render(row.from);
        const LengthText::Step up = text.step(row.from, shown, 0, shown.size(), 1);
        EXPECT_EQ(up.samples, row.to);
        EXPECT_EQ(up.start, 0U);
        EXPECT_EQ(up.length, text.render(row.to).size());
        EXPECT_EQ(text.step(row.to, text.render(row.to), 0, up.length, -1).samples, row.from);
    }
}

// Rates that do not divide evenly must not make the label run away from the steps.
TEST(LengthText, StepsStayOnTheGrid)
{
    const LengthText text = makeText(zqposfmt_smpte_29_97);
    std::int64_t samples = 0;
    for (int i = 0; i < 1000; ++i) {
        const auto shown = text.render(samples);
        samples = text.step(samples, shown, 0, shown.size(), 1).samples;
    }
    EXPECT_EQ(rendered(text, samples), "00:00:33:10");
    for (int i = 0; i < 1000; ++i) {
        const auto shown = text.render(samples);
        samples = text.step(samples, shown, 0, shown.size(), -1).samples;
    }
    EXPECT_EQ(samples, 0);
}

// A step starts from the point that is shown, though its sample may lie after the count.
TEST(LengthText, StepsOfDecimalsMoveByOnePointFromTheOneShown)
{
    const LengthText text = makeText(zqposfmt_time_ms);
    const struct {
        std::int64_t from;
        int direction;
        std::int64_t to;
        const char* shown;
    } rows[] = {{220, 1, 265, "00:00:00.006"},
                {220, -1, 176, "00:00:00.004"},
                {221, 1, 265, "00:00:00.006"},
                {221, -1, 176, "00:00:00.004"},
                {-220, 1, -176, "-00:00:00.004"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from << " by " << row.direction);
        const auto shown = text.render(row.from);
        const LengthText::Step step = text.step(row.from, shown, shown.size(), 0, row.direction);
        EXPECT_EQ(step.samples, row.to);
        EXPECT_EQ(rendered(text, step.samples), row.shown);
    }
}

TEST(LengthText, StepsStopAtZeroAndAtTheEndsOfTheRange)
{
    for (unsigned type = 0; type < 23; ++type) {
        SCOPED_TRACE(type);
        const LengthText text = makeText(type);
        EXPECT_EQ(text.step(0, text.render(0), 0, 0, -1).samples, 0);
        const auto& last = text.render(kHighest);
        EXPECT_LE(text.step(kHighest, last, 0, 0, -1).samples, kHighest);
        EXPECT_GT(text.step(kHighest, last, 0, 0, 1).samples, 0);
        EXPECT_LT(text.step(kLowest, text.render(kLowest), 1, 0, -1).samples, 0);
    }
}

TEST(LengthText, NegativeCountsStepTowardsZero)
{
    const LengthText text = makeText(zqposfmt_time_ms);
    EXPECT_EQ(text.step(-44100, text.render(-44100), 8, 0, 1).samples, 0);
    EXPECT_EQ(text.step(-44100, text.render(-44100), 8, 0, -1).samples, -88200);
    EXPECT_EQ(makeText(0).step(-5, L"-5", 0, 0, 1).samples, -4);
}

} // namespace
