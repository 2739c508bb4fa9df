#include "host/app/RulerMarks.h"

#include <gmock/gmock.h>

using namespace host;
using testing::ElementsAre;

namespace {

struct Row {
    std::uint32_t format;
    double smallest; // seconds
    double step;     // seconds
};

const Row kRows[] = {
    {zqposfmt_time_ms, 0.0001, 0.001}, {zqposfmt_time_ms, 0.003, 0.005},
    {zqposfmt_time_ms, 0.05, 0.05},    {zqposfmt_time_ms, 0.3, 0.5},
    {zqposfmt_time_ms, 0.6, 1},        {zqposfmt_time_ms, 3, 5},
    {zqposfmt_time_ms, 11, 15},        {zqposfmt_time_ms, 31, 60},
    {zqposfmt_time_ms, 700, 900},      {zqposfmt_time_ms, 2000, 3600},
    {zqposfmt_time_ms, 20000, 36000},  {zqposfmt_seconds, 0.6, 1},
    {zqposfmt_smpte_25, 0.01, 0.04},   {zqposfmt_smpte_25, 0.05, 0.2},
    {zqposfmt_smpte_25, 0.3, 1},       {zqposfmt_smpte_25, 3, 5},
    {zqposfmt_measures, 0.1, 0.5},     {zqposfmt_measures, 0.6, 2},
    {zqposfmt_measures, 5, 8},
};

TEST(RulerMarks, StepsAreTheSmallestRoundOnesWithRoom)
{
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::to_string(row.format) + " " + std::to_string(row.smallest));
        const PositionStyle style{.format = row.format, .sampleRate = 48000};
        EXPECT_NEAR(rulerStep(row.smallest * 48000, style), row.step * 48000, 1e-6);
    }
}

TEST(RulerMarks, SamplesCountInTens)
{
    const PositionStyle style{.format = zqposfmt_samples, .sampleRate = 44100};
    EXPECT_EQ(rulerStep(0.3, style), 1);
    EXPECT_EQ(rulerStep(3, style), 5);
    EXPECT_EQ(rulerStep(7000, style), 10000);
}

TEST(RulerMarks, MarksLieFromTheStartWithinTheRecording)
{
    const PositionStyle style{.format = zqposfmt_time_ms, .sampleRate = 1000};
    EXPECT_THAT(rulerMarks(3000, 900, style), ElementsAre(0, 1000, 2000));
    EXPECT_THAT(rulerMarks(3001, 900, style), ElementsAre(0, 1000, 2000, 3000));
}

TEST(RulerMarks, EachReadsAsThePointThatItIs)
{
    const PositionStyle style{.format = zqposfmt_smpte_29_97, .sampleRate = 44100};
    const auto marks = rulerMarks(44100 * 10, 40000, style);
    ASSERT_GE(marks.size(), 9u);
    EXPECT_EQ(positionText(marks[1], style), "00:00:01:00");
    EXPECT_EQ(positionText(marks[7], style), "00:00:07:00");
}

} // namespace
