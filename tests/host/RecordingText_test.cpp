#include "host/app/RecordingText.h"

#include <gtest/gtest.h>

using namespace host;

TEST(RecordingText, ClockTimeHasHoursWhenThereAreAny)
{
    struct Row {
        double seconds;
        const char* expected;
    };
    const Row rows[] = {
        {0, "0:00.000"},           {6.2, "0:06.200"},           {59.9994, "0:59.999"},
        {59.9996, "1:00.000"},     {3599.999, "59:59.999"},     {3600, "1:00:00.000"},
        {3723.004, "1:02:03.004"}, {360000.5, "100:00:00.500"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(clockText(row.seconds), row.expected);
    }
}

TEST(RecordingText, DescribesARecordingInOneLine)
{
    Recording recording;
    recording.format = "FLAC (Free Lossless Audio Codec)";
    recording.encoding = "Signed 16 bit PCM";
    recording.bitDepth = 16;
    recording.sampleRate = 48000;
    recording.channels = 2;
    recording.samples.resize(2 * 297600);
    EXPECT_EQ(describeRecording(recording), "48 kHz  ·  Stereo  ·  16 bit  ·  0:06.200  ·  FLAC");
    recording.channels = 1;
    recording.sampleRate = 44100;
    recording.samples.resize(441);
    EXPECT_EQ(describeRecording(recording), "44.1 kHz  ·  Mono  ·  16 bit  ·  0:00.010  ·  FLAC");
    recording.channels = 6;
    recording.bitDepth = 0;
    recording.encoding = "Vorbis";
    recording.format = "OGG (OGG Container format)";
    recording.samples.resize(6 * 44100);
    EXPECT_EQ(describeRecording(recording),
              "44.1 kHz  ·  6 channels  ·  Vorbis  ·  0:01.000  ·  OGG");
}

TEST(RecordingText, NameIsTheLastPartOfThePathAndAlwaysText)
{
    Recording recording;
    recording.path = "/audio/take 1.wav";
    EXPECT_EQ(displayName(recording), "take 1.wav");
    recording.path = "take\xE9.wav";
    EXPECT_EQ(displayName(recording), "take\\xe9.wav");
}
