#include "host/effect/PeakTable.h"

#include <gtest/gtest.h>

#include <limits>

using namespace host;

namespace {

constexpr std::uint64_t kBlock = PeakTable::kBlockFrames;

/// Two and a half blocks of stereo, left counting up and right counting down.
Recording ramp()
{
    Recording recording;
    recording.sampleRate = 48000;
    recording.channels = 2;
    for (std::uint64_t frame = 0; frame < 2 * kBlock + kBlock / 2; ++frame) {
        recording.samples.push_back(static_cast<float>(frame) / 1000);
        recording.samples.push_back(-static_cast<float>(frame) / 500);
    }
    return recording;
}

} // namespace

TEST(PeakTable, TellsExtremesOfEachChannelAndTheLoudest)
{
    const PeakTable peaks(ramp());
    ASSERT_EQ(peaks.blocks(), 3U);
    EXPECT_EQ(peaks.block(1, 0), (PeakRange{0.064F, 0.127F}));
    EXPECT_EQ(peaks.block(1, 1), (PeakRange{-0.254F, -0.128F}));
    EXPECT_EQ(peaks.loudest(1), 0.254F);
}

TEST(PeakTable, LastBlockMayBeShorter)
{
    const PeakTable peaks(ramp());
    EXPECT_EQ(peaks.block(2, 0), (PeakRange{0.128F, 0.159F}));
    EXPECT_EQ(peaks.loudest(2), 0.318F);
}

TEST(PeakTable, RangeCoversEveryBlockItTouches)
{
    const PeakTable peaks(ramp());
    EXPECT_EQ(peaks.range(0, 0, 1), (PeakRange{0.0F, 0.063F}));
    EXPECT_EQ(peaks.range(0, kBlock - 1, kBlock + 1), (PeakRange{0.0F, 0.127F}));
    EXPECT_EQ(peaks.range(0, kBlock, 2 * kBlock), (PeakRange{0.064F, 0.127F}));
    EXPECT_EQ(peaks.range(1, kBlock, 1000000), (PeakRange{-0.318F, -0.128F}));
}

TEST(PeakTable, RangeOutsideOfTheRecordingIsSilent)
{
    const PeakTable peaks(ramp());
    EXPECT_EQ(peaks.range(0, 5, 5), PeakRange{});
    EXPECT_EQ(peaks.range(0, 3 * kBlock, 4 * kBlock), PeakRange{});
    EXPECT_EQ(PeakTable(Recording{}).range(0, 0, 100), PeakRange{});
}

TEST(PeakTable, NumbersThatAreNoneAreLeftOut)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Recording recording;
    recording.channels = 1;
    recording.samples = {nan, 0.25F, nan, 0.5F, nan};
    const PeakTable peaks(recording);
    EXPECT_EQ(peaks.block(0, 0), (PeakRange{0.25F, 0.5F}));
    recording.samples = {nan};
    EXPECT_EQ(PeakTable(recording).loudest(0), 0.0F);
}
