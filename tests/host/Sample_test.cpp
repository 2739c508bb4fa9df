#include "host/effect/AudioFile.h"
#include "host/effect/TrimEngine.h"

#include <gtest/gtest.h>

using namespace host;

// The recording that the host opens by itself shows what each function is for.
TEST(SampleRecording, HasPhrasesWithSilenceAround)
{
    const ReadResult sample = readAudioFile(SAMPLE_RECORDING);
    ASSERT_NE(sample.recording, nullptr) << sample.problem;
    EXPECT_EQ(sample.recording->sampleRate, 48000U);
    EXPECT_EQ(sample.recording->channels, 2U);
    EXPECT_EQ(sample.recording->bitDepth, 16U);
    EXPECT_NEAR(sample.recording->seconds(), 6.2, 0.01);

    const TrimEngine engine(sample.recording);
    const TrimPlan trimmed = engine.plan({});
    ASSERT_EQ(trimmed.regions.size(), 1U);
    EXPECT_NEAR(static_cast<double>(trimmed.regions[0].first) / 48000, 0.9, 0.02);
    EXPECT_NEAR(static_cast<double>(trimmed.regions[0].end) / 48000, 5.25, 0.1);

    const TrimPlan phrases = engine.plan({.function = FunctionMode::RemoveSilence});
    EXPECT_EQ(phrases.regions.size(), 3U);
}
