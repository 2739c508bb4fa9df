#include "host/app/Batch.h"

#include "SoundFiles.h"
#include "TemporaryFolder.h"
#include "host/app/LengthArgument.h"
#include "host/effect/AudioFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

namespace {

constexpr int kRate = 1000; // so that a millisecond is a frame

const Words kLeast = {"--batch", "--output-dir", "out", "a.wav"};

Words withLeast(Words words)
{
    words.insert(words.end(), kLeast.begin(), kLeast.end());
    return words;
}

BatchOptions parsed(const Words& words)
{
    const ParsedBatchOptions result = parseBatchOptions(words);
    EXPECT_EQ(result.problem, "");
    return result.options;
}

TrimSettings settingsOf(const Words& words, unsigned rate = kRate)
{
    return settingsFor(parsed(withLeast(words)), rate);
}

/// Silence, loud sound from frame 100 to 400, silence to 1000.
SoundContents<int> soundWithEdges(int format)
{
    SoundContents<int> sound{format, kRate, 1, std::vector<int>(1000)};
    std::fill(sound.samples.begin() + 100, sound.samples.begin() + 400, 1 << 30);
    return sound;
}

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

class BatchTest : public testing::Test {
protected:
    BatchTest() { std::filesystem::create_directory(path("out")); }

    std::string path(const std::string& name) const { return m_folder.path(name); }

    BatchStatus run(Words words)
    {
        words.insert(words.begin(),
                     {"--output-dir", path("out"), "--fade-in", "0", "--fade-out", "0"});
        m_out.str("");
        m_err.str("");
        return runBatch(parsed(words), m_out, m_err);
    }

    std::string out() const { return m_out.str(); }
    std::string err() const { return m_err.str(); }

    TemporaryFolder m_folder;

private:
    std::ostringstream m_out;
    std::ostringstream m_err;
};

} // namespace

// ---- the command line

TEST(BatchOptions, BatchIsAskedForBeforeTheFiles)
{
    EXPECT_TRUE(asksForBatch({"--batch"}));
    EXPECT_TRUE(asksForBatch({"a.wav", "--batch"}));
    EXPECT_FALSE(asksForBatch({"--", "--batch"}));
    EXPECT_FALSE(asksForBatch({}));
}

TEST(BatchOptions, OnlyFolderAndFilesAreNeeded)
{
    const BatchOptions options = parsed(kLeast);
    EXPECT_EQ(options.outputFolder, "out");
    EXPECT_THAT(options.files, ElementsAre("a.wav"));
    EXPECT_FALSE(options.dryRun);
    EXPECT_FALSE(options.help);
    EXPECT_EQ(settingsFor(options, kRate), TrimSettings());
    EXPECT_EQ(parsed({"--batch", "--dry-run", "a.wav"}).outputFolder, "");
    EXPECT_TRUE(parsed({"--batch", "--help"}).help);
}

TEST(BatchOptions, FilesAreAnyWordsAfterTwoDashes)
{
    EXPECT_THAT(parsed({"--output-dir", "-o", "a", "--", "--help", "-b", "--", "\xff"}).files,
                ElementsAre("a", "--help", "-b", "--", "\xff"));
}

TEST(BatchOptions, FunctionHasANumberAndAName)
{
    struct Row {
        const char* value;
        FunctionMode function;
    };
    const Row rows[] = {
        {"0", FunctionMode::TrimStartAndEnd},
        {"3", FunctionMode::FadesOnly},
        {"Trim Start and End", FunctionMode::TrimStartAndEnd},
        {"remove-silence", FunctionMode::RemoveSilence},
        {"CROP", FunctionMode::Crop},
        {"fades_only", FunctionMode::FadesOnly},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(settingsOf({"--function", row.value}).function, row.function) << row.value;
    }
}

TEST(BatchOptions, ThresholdsAreInDecibels)
{
    struct Row {
        const char* value;
        float level;
    };
    const Row rows[] = {{"-24", -24},    {"-24.5 dB", -24.5F}, {"-6dB", -6},    {"0", 0},
                        {"-60", -60.0F}, {"-inf", -60},        {"-Inf dB", -60}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(settingsOf({"--attack", row.value}).attackThresholdDb, row.level);
        EXPECT_EQ(settingsOf({"--release", row.value}).releaseThresholdDb, row.level);
    }
}

TEST(BatchOptions, FadesHaveALengthAndPerhapsACurve)
{
    struct Row {
        const char* value;
        double ms;
        FadeCurve curve;
    };
    const Row rows[] = {
        {"20 ms", 20, FadeCurve::Linear},
        {"20 ms:linear", 20, FadeCurve::Linear},
        {"20 ms:equal-power", 20, FadeCurve::EqualPower},
        {"300:logarithmic", 300, FadeCurve::Logarithmic},
        {"1.5:exponential", 1500, FadeCurve::Exponential},
        {"0:01.5", 1500, FadeCurve::Linear},
        {"0:01.5:s-curve", 1500, FadeCurve::SCurve},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.value);
        const TrimSettings in = settingsOf({"--fade-in", row.value});
        EXPECT_EQ(in.fadeInLengthMs, row.ms);
        EXPECT_EQ(in.fadeInCurve, row.curve);
        EXPECT_EQ(in.fadeOutLengthMs, TrimSettings().fadeOutLengthMs);
        const TrimSettings out = settingsOf({"--fade-out", row.value});
        EXPECT_EQ(out.fadeOutLengthMs, row.ms);
        EXPECT_EQ(out.fadeOutCurve, row.curve);
        EXPECT_EQ(out.fadeInLengthMs, TrimSettings().fadeInLengthMs);
    }
}

TEST(BatchOptions, LengthsAreReadInTheFormatWhereverItStands)
{
    const Words words = {"--crop-start", "00:00:01:12", "--crop-length",
                         "2 s",          "--format",    "smpte-25"};
    const TrimSettings settings = settingsOf(words);
    EXPECT_EQ(settings.cropStartMs, 1480);
    EXPECT_EQ(settings.cropLengthMs, 2000);
    EXPECT_EQ(settingsOf({"--min-silence", "441"}, 44100).minSilenceMs, 10);
    // A start is a position, whose measures count from one.
    EXPECT_EQ(settingsOf({"--format", "measures", "--crop-start", "2:1"}).cropStartMs, 2000);
    EXPECT_EQ(settingsOf({"--format", "measures", "--crop-length", "2:1"}).cropLengthMs, 4500);
}

// A day at 192 kHz has more frames than a float has values.
TEST(BatchOptions, EveryFrameOfALongRecordingCanBeNamed)
{
    EXPECT_EQ(settingsOf({"--crop-start", "16588799999"}, 192000).cropStartMs * 192, 16588799999.0);
}

TEST(BatchOptions, WrongUseIsToldInOneSentence)
{
    struct Row {
        Words words;
        const char* expected;
    };
    // clang-format off
    const Row rows[] = {
        { {"--batch"}, "A batch needs the option --output-dir, the folder for its results." },
        { {"--batch", "--output-dir", "out"}, "A batch needs files to process." },
        { {"--batch", "--dry-run"}, "A batch needs files to process." },
        { {"--output-dir"}, "The option --output-dir needs a value." },
        { withLeast({"--loud"}), "There is no option \"--loud\" for a batch; --help lists them." },
        { withLeast({"--scale", "2"}), "There is no option \"--scale\" for a batch; --help lists them." },
        { withLeast({"--function", "4"}), "There is no function \"4\"; there are 0 Trim Start and End, 1 Remove Silence, 2 Crop, 3 Fades Only." },
        { withLeast({"--attack", "1"}), "The attack threshold must be from -60 to 0 dB or -inf, not \"1\"." },
        { withLeast({"--attack", "-60.1"}), "The attack threshold must be from -60 to 0 dB or -inf, not \"-60.1\"." },
        { withLeast({"--release", "nan"}), "The release threshold must be from -60 to 0 dB or -inf, not \"nan\"." },
        { withLeast({"--release", ""}), "The release threshold must be from -60 to 0 dB or -inf, not \"\"." },
        { withLeast({"--release", "inf"}), "The release threshold must be from -60 to 0 dB or -inf, not \"inf\"." },
        { withLeast({"--fade-in", "5 ms:steep"}), "There is no fade curve \"steep\"; there are linear, equal-power, logarithmic, exponential, s-curve." },
        { withLeast({"--fade-in", "long"}), "The fade-in \"long\" is no length that can be read." },
        { withLeast({"--fade-out", "5 ms:"}), "The fade-out \"5 ms:\" is no length that can be read." },
        { withLeast({"--min-silence", "-5"}), "The minimum silence \"-5\" is no length that can be read." },
        { withLeast({"--crop-start", "1:2", "--format", "seconds"}), "The crop start \"1:2\" is no length that can be read in that format." },
        { withLeast({"--crop-length", ""}), "The crop length \"\" is no length that can be read." },
        { withLeast({"--format", "smpte"}), "There is no format \"smpte\"; --help lists them." },
    };
    // clang-format on
    for (const Row& row : rows) {
        EXPECT_EQ(parseBatchOptions(row.words).problem, row.expected);
    }
}

TEST(BatchOptions, UsageNamesEveryOptionAndFormat)
{
    for (const char* const option :
         {"--batch", "--output-dir", "--dry-run", "--function", "--attack", "--release",
          "--fade-in", "--fade-out", "--min-silence", "--crop-start", "--crop-length", "--format",
          "--help", "FILE...", "Remove Silence", "s-curve"}) {
        EXPECT_THAT(batchUsage(), HasSubstr(option));
    }
    for (const LengthFormat& format : lengthFormats()) {
        EXPECT_THAT(batchUsage(), HasSubstr(std::string(format.name)));
    }
}

// ---- files

TEST_F(BatchTest, ResultHasTheNameOfItsFile)
{
    const std::string file = writeSound(path("a.wav"), soundWithEdges(kWav16));
    EXPECT_EQ(run({file}), kBatchDone);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(), "[1/1] \"" + file + "\": 00:00:00.300 of 00:00:01.000 kept\n");
    const auto written = readSound<int>(path("out/a.wav"));
    EXPECT_EQ(written.format, kWav16);
    EXPECT_EQ(written.samples, std::vector<int>(300, 1 << 30));
}

TEST_F(BatchTest, LengthsArePrintedInTheFormat)
{
    const std::string file = writeSound(path("a.wav"), soundWithEdges(kWav16));
    EXPECT_EQ(run({"--format", "samples", file}), kBatchDone);
    EXPECT_EQ(out(), "[1/1] \"" + file + "\": 300 of 1000 kept\n");
}

TEST_F(BatchTest, DryRunPrintsTheKeptPartsAndWritesNothing)
{
    auto sound = soundWithEdges(kWav16);
    std::fill(sound.samples.begin() + 700, sound.samples.begin() + 800, 1 << 30);
    const std::string file = writeSound(path("a.wav"), sound);
    EXPECT_EQ(run({"--dry-run", "--function", "1", "--min-silence", "200 ms", "--fade-in", "10 ms",
                   "--fade-out", "20 ms", file}),
              kBatchDone);
    EXPECT_EQ(out(), "[1/1] \"" + file +
                         "\": 00:00:00.500 of 00:00:01.000 would be kept\n"
                         "    from 00:00:00.000 to 00:00:00.400, fade-in 00:00:00.010, fade-out "
                         "00:00:00.020\n"
                         "    from 00:00:00.700 to 00:00:00.800, fade-in 00:00:00.010, fade-out "
                         "00:00:00.020\n");
    EXPECT_THAT(m_folder.names("out"), IsEmpty());
}

TEST_F(BatchTest, KindOfFileIsKeptAndOthersBecomeWav)
{
    struct Row {
        const char* name;
        int format;
        const char* result;
        int written;
    };
    // clang-format off
    const Row rows[] = {
        { "a.wav",   kWav16,                             "a.wav",   kWav16 },
        { "a.flac",  SF_FORMAT_FLAC | SF_FORMAT_PCM_24,  "a.flac",  SF_FORMAT_FLAC | SF_FORMAT_PCM_24 },
        { "a.aif",   SF_FORMAT_AIFF | SF_FORMAT_PCM_16,  "a.aif",   SF_FORMAT_AIFF | SF_FORMAT_PCM_16 },
        { "b.wav",   SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, "b.wav",   SF_FORMAT_WAV | SF_FORMAT_PCM_24 },
        { "lie.mp3", kWav16,                             "lie.mp3", kWav16 },
        { "c.w.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS,   "c.w.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT },
        { "au",      SF_FORMAT_AU | SF_FORMAT_PCM_16,    "au.wav",  kWav16 },
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto sound = soundWithEdges(row.format);
        sound.rate = 8000;
        EXPECT_EQ(run({"--function", "3", writeSound(path(row.name), sound)}), kBatchDone) << err();
        EXPECT_EQ(readSound<int>(path(std::string("out/") + row.result)).format, row.written);
    }
}

TEST_F(BatchTest, BadFilesAreToldAndTheOthersDone)
{
    const std::string good = writeSound(path("z.wav"), soundWithEdges(kWav16));
    const std::string text = m_folder.write("text.wav", "These are words.");
    const std::string empty = m_folder.write("empty.wav", "");
    const std::string silent =
        writeSound<int>(path("silent.wav"), {kWav16, kRate, 1, std::vector<int>(100)});
    EXPECT_EQ(run({text, empty, silent, path("gone.wav"), path("out"), good}), kBatchFailed);
    EXPECT_EQ(err(), "tarvel-host: \"" + text +
                         "\" is not an audio file that can be read here.\n"
                         "tarvel-host: \"" +
                         empty + "\" is empty.\ntarvel-host: \"" + silent +
                         "\" has nothing that these settings keep.\ntarvel-host: \"" +
                         path("gone.wav") + "\" does not exist.\ntarvel-host: \"" + path("out") +
                         "\" is a folder, not an audio file.\n");
    EXPECT_EQ(out(), "[6/6] \"" + good + "\": 00:00:00.300 of 00:00:01.000 kept\n");
    EXPECT_THAT(m_folder.names("out"), ElementsAre("z.wav"));
}

TEST_F(BatchTest, DryRunFailsWhereTheRunWould)
{
    const std::string silent =
        writeSound<int>(path("a.wav"), {kWav16, kRate, 1, std::vector<int>(100)});
    EXPECT_EQ(run({"--dry-run", silent}), kBatchFailed);
    EXPECT_EQ(err(), "tarvel-host: \"" + silent + "\" has nothing that these settings keep.\n");
}

TEST_F(BatchTest, TwoFilesOfOneNameDoNotBecomeOne)
{
    std::filesystem::create_directory(path("other"));
    const std::string first = writeSound(path("a.wav"), soundWithEdges(kWav16));
    auto longer = soundWithEdges(kWav16);
    longer.samples.assign(500, 1 << 30);
    const std::string second = writeSound(path("other/a.wav"), longer);
    const std::string problem =
        "tarvel-host: \"" + second + "\" has the same name as a file before it, \"a.wav\".\n";
    EXPECT_EQ(run({"--dry-run", first, second}), kBatchFailed);
    EXPECT_EQ(err(), problem);
    EXPECT_EQ(run({first, second}), kBatchFailed);
    EXPECT_EQ(err(), problem);
    EXPECT_EQ(readSound<int>(path("out/a.wav")).samples.size(), 300U);
}

// The name is free as long as nothing could be written under it.
TEST_F(BatchTest, NameOfABadFileStaysFree)
{
    std::filesystem::create_directory(path("other"));
    const std::string bad = m_folder.write("a.wav", "words");
    const std::string good = writeSound(path("other/a.wav"), soundWithEdges(kWav16));
    EXPECT_EQ(run({bad, good}), kBatchFailed);
    EXPECT_THAT(m_folder.names("out"), ElementsAre("a.wav"));
}

TEST_F(BatchTest, WhatIsInTheFolderIsNotReplaced)
{
    const std::string file = writeSound(path("a.wav"), soundWithEdges(kWav16));
    m_folder.write("out/a.wav", "mine");
    EXPECT_EQ(run({file}), kBatchFailed);
    EXPECT_EQ(err(), "tarvel-host: \"" + path("out/a.wav") + "\" exists already.\n");
    EXPECT_EQ(TemporaryFolder::contents(path("out/a.wav")), "mine");
}

TEST_F(BatchTest, FolderOfTheFilesThemselvesIsNoHarm)
{
    const std::string file = writeSound(path("a.wav"), soundWithEdges(kWav16));
    const std::string before = TemporaryFolder::contents(file);
    EXPECT_EQ(run({"--output-dir", m_folder.path(), file}), kBatchFailed);
    EXPECT_EQ(err(), "tarvel-host: \"" + file +
                         "\" is the recording itself, which is never overwritten.\n");
    EXPECT_EQ(TemporaryFolder::contents(file), before);
}

TEST_F(BatchTest, MissingFolderIsWrongUse)
{
    const std::string file = writeSound(path("a.wav"), soundWithEdges(kWav16));
    for (const std::string& folder : {path("gone"), file}) {
        EXPECT_EQ(run({"--output-dir", folder, file}), kBatchWrongUse);
        EXPECT_EQ(err(), "tarvel-host: The output folder \"" + folder +
                             "\" is no folder that is there.\n");
        EXPECT_EQ(out(), "");
    }
}

// One length is another number of frames in files of another rate.
TEST_F(BatchTest, LengthsFollowTheRateOfEachFile)
{
    auto fast = soundWithEdges(kWav16);
    fast.rate = 2000;
    const std::string slowFile = writeSound(path("slow.wav"), soundWithEdges(kWav16));
    const std::string fastFile = writeSound(path("fast.wav"), fast);
    EXPECT_EQ(run({"--function", "crop", "--crop-start", "50 ms", "--crop-length", "0:00.1",
                   slowFile, fastFile}),
              kBatchDone);
    EXPECT_EQ(readSound<int>(path("out/slow.wav")).samples.size(), 100U);
    EXPECT_EQ(readSound<int>(path("out/fast.wav")).samples.size(), 200U);
    EXPECT_EQ(readSound<int>(path("out/fast.wav")).samples,
              std::vector<int>(fast.samples.begin() + 100, fast.samples.begin() + 300));
}
