#include "host/app/PositionText.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

struct Row {
    std::uint32_t format;
    double rate;
    std::uint64_t frame;
    const char* text;
};

const Row kRows[] = {
    {zqposfmt_samples, 48000, 0, "0"},
    {zqposfmt_samples, 48000, 172800000000, "172800000000"},
    {zqposfmt_time_ms, 44100, 66150, "00:00:01.500"},
    {zqposfmt_time_ms, 44100, 66149, "00:00:01.499"},
    {zqposfmt_time_ms, 48000, 48, "00:00:00.001"},
    {zqposfmt_time_ms, 48000, 4320000000, "25:00:00.000"},
    {zqposfmt_seconds, 48000, 72000, "1.500"},
    {zqposfmt_time, 48000, 95999, "00:00:01"},
    {zqposfmt_time, 48000, 96000, "00:00:02"},
    {zqposfmt_smpte_25, 48000, 48000, "00:00:01:00"},
    {zqposfmt_smpte_25, 48000, 49920, "00:00:01:01"},
    {zqposfmt_smpte_25, 48000, 49919, "00:00:01:00"},
    {zqposfmt_smpte_29_97_drop, 48000, 2882881, "00:01:00;02"},
    {zqposfmt_frames_75, 44100, 588, "00:00:00:01"},
    {zqposfmt_feet_frames_35mm, 48000, 480000, "15+0"},
    {zqposfmt_feet_frames_16mm, 48000, 480000, "6+0"},
    {zqposfmt_measures, 48000, 0, "1:1.0"},
    {zqposfmt_measures, 48000, 96000 + 24000 + 6000, "2:2.1"},
    {zqposfmt_percent, 48000, 77, "77"},
    {4711, 48000, 77, "77"},
};

TEST(PositionText, WritesEveryFormat)
{
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::to_string(row.format) + " at " + std::to_string(row.frame));
        EXPECT_EQ(positionText(row.frame, {.format = row.format, .sampleRate = row.rate}),
                  row.text);
    }
}

TEST(PositionText, MeasuresFollowTempoAndSignature)
{
    PositionStyle style{.format = zqposfmt_measures, .sampleRate = 48000};
    style.tempo = 60;
    style.beatsPerMeasure = 3;
    EXPECT_EQ(positionText(3 * 48000, style), "2:1.0");
    style.isLength = true;
    EXPECT_EQ(positionText(3 * 48000, style), "1:0.0");
    EXPECT_EQ(positionText(0, style), "0:0.0");
}

TEST(PositionText, GridIsThatOfTheFormat)
{
    EXPECT_EQ(gridFrames({.format = zqposfmt_samples, .sampleRate = 48000}), 1);
    EXPECT_EQ(gridFrames({.format = zqposfmt_time_ms, .sampleRate = 48000}), 48);
    EXPECT_EQ(gridFrames({.format = zqposfmt_smpte_24, .sampleRate = 48000}), 2000);
    EXPECT_EQ(gridFrames({.format = zqposfmt_measures, .sampleRate = 48000}), 6000);
    EXPECT_EQ(gridFrames({.format = zqposfmt_feet_frames_35mm, .sampleRate = 48000}), 2000);
}

} // namespace
