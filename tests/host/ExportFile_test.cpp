#include "host/app/ExportFile.h"

#include "SoundFiles.h"
#include "TemporaryFolder.h"
#include "host/effect/AudioFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <cmath>
#include <csignal>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <tuple>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kRate = 1000; // so that a millisecond is a frame
constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32;

class ExportFileTest : public testing::Test {
protected:
    const TrimEngine& open(const std::string& path)
    {
        const ReadResult read = readAudioFile(path);
        EXPECT_NE(read.recording, nullptr) << read.problem;
        m_engine = std::make_unique<TrimEngine>(read.recording);
        return *m_engine;
    }

    /// A mono file of 16 bits whose samples are all loud, opened.
    const TrimEngine& openLoud(const std::string& name, std::size_t frames)
    {
        return open(writeSound<int>(path(name), {SF_FORMAT_WAV | SF_FORMAT_PCM_16, kRate, 1,
                                                 std::vector<int>(frames, 1 << 30)}));
    }

    std::string path(const std::string& name) const { return m_folder.path(name); }

    TemporaryFolder m_folder;

private:
    std::unique_ptr<TrimEngine> m_engine;
};

TrimPlan everything(const TrimEngine& engine)
{
    TrimSettings settings;
    settings.function = FunctionMode::FadesOnly;
    settings.fadeInLengthMs = settings.fadeOutLengthMs = 0;
    return engine.plan(settings);
}

/// Two kept stretches, with linear fades of 10 and 20 frames.
TrimPlan twoRegions()
{
    return {{{.first = 100, .end = 300, .fadeIn = 10, .fadeOut = 20},
             {.first = 500, .end = 900, .fadeIn = 10, .fadeOut = 20}},
            FadeCurve::Linear,
            FadeCurve::Linear};
}

/// What twoRegions() makes of samples: the slow version.
std::vector<double> slowTwoRegions(const std::vector<double>& samples, std::size_t channels)
{
    std::vector<double> out;
    for (const auto& [first, end] : {std::pair(100U, 300U), std::pair(500U, 900U)}) {
        for (std::size_t frame = first; frame < end; ++frame) {
            const double gain = std::min({1.0, static_cast<double>(frame - first) / 10,
                                          static_cast<double>(end - 1 - frame) / 20});
            for (std::size_t channel = 0; channel < channels; ++channel) {
                out.push_back(samples[frame * channels + channel] * gain);
            }
        }
    }
    return out;
}

/// Random whole samples of so many bits, extremes among them, in the upper bits of ints.
std::vector<int> wholeSamples(std::size_t count, int bits)
{
    std::mt19937 random(static_cast<unsigned>(bits));
    std::vector<int> samples(count);
    for (int& sample : samples) {
        sample = static_cast<int>(random()) >> (32 - bits) << (32 - bits);
    }
    samples[count / 4] = std::numeric_limits<int>::min();
    samples[count / 4 + 1] = std::numeric_limits<int>::max() >> (32 - bits) << (32 - bits);
    return samples;
}

std::vector<double> asDoubles(const std::vector<int>& words)
{
    std::vector<double> samples;
    for (const int word : words) {
        samples.push_back(word / 0x1p31);
    }
    return samples;
}

int wav(int samples) { return SF_FORMAT_WAV | samples; }
int flac(int samples) { return SF_FORMAT_FLAC | samples; }
int aiff(int samples) { return SF_FORMAT_AIFF | samples; }

} // namespace

// ---- names and formats

TEST(ExportNames, TellTheContainer)
{
    EXPECT_EQ(containerForName("a.wav"), ExportContainer::Wav);
    EXPECT_EQ(containerForName("a.b/c.WAVE"), ExportContainer::Wav);
    EXPECT_EQ(containerForName("a.FlaC"), ExportContainer::Flac);
    EXPECT_EQ(containerForName("a.aif"), ExportContainer::Aiff);
    EXPECT_EQ(containerForName("a.aiff"), ExportContainer::Aiff);
    EXPECT_EQ(containerForName("a.aifc"), ExportContainer::Aiff);
    for (const char* const other : {"", "wav", "a.wav.mp3", "a.", "a.wavx"}) {
        EXPECT_EQ(containerForName(other), std::nullopt) << other;
    }
    EXPECT_STREQ(extensionOf(ExportContainer::Wav), ".wav");
    EXPECT_STREQ(extensionOf(ExportContainer::Flac), ".flac");
    EXPECT_STREQ(extensionOf(ExportContainer::Aiff), ".aiff");
}

TEST(ExportFormat, KeepsTheDepthWhereTheContainerCan)
{
    struct Row {
        int source;
        int wav;
        int flac;
        int aiff;
    };
    // clang-format off
    const Row rows[] = {
        { SF_FORMAT_PCM_U8,   SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_PCM_S8 },
        { SF_FORMAT_PCM_S8,   SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_PCM_S8 },
        { SF_FORMAT_PCM_16,   SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 },
        { SF_FORMAT_PCM_24,   SF_FORMAT_PCM_24, SF_FORMAT_PCM_24, SF_FORMAT_PCM_24 },
        { SF_FORMAT_PCM_32,   SF_FORMAT_PCM_32, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32 },
        { SF_FORMAT_FLOAT,    SF_FORMAT_FLOAT,  SF_FORMAT_PCM_24, SF_FORMAT_FLOAT },
        { SF_FORMAT_DOUBLE,   SF_FORMAT_DOUBLE, SF_FORMAT_PCM_24, SF_FORMAT_DOUBLE },
        { SF_FORMAT_ALAC_20,  SF_FORMAT_PCM_24, SF_FORMAT_PCM_24, SF_FORMAT_PCM_24 },
        { SF_FORMAT_ALAC_32,  SF_FORMAT_PCM_32, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32 },
        { SF_FORMAT_ULAW,     SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 },
        { SF_FORMAT_VORBIS,   SF_FORMAT_FLOAT,  SF_FORMAT_PCM_24, SF_FORMAT_FLOAT },
        { 0,                  SF_FORMAT_FLOAT,  SF_FORMAT_PCM_24, SF_FORMAT_FLOAT },
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.source);
        const int source = SF_FORMAT_WAV | SF_ENDIAN_BIG | row.source;
        EXPECT_EQ(exportFormat(ExportContainer::Wav, source, 1), wav(row.wav));
        EXPECT_EQ(exportFormat(ExportContainer::Flac, source, 1), flac(row.flac));
        EXPECT_EQ(exportFormat(ExportContainer::Aiff, source, 1), aiff(row.aiff));
    }
}

TEST(ExportFormat, LargeWavBecomesItsLargeForm)
{
    const std::uint64_t half = kFourGiB / 2;
    EXPECT_EQ(exportFormat(ExportContainer::Wav, SF_FORMAT_PCM_16, half - 10000),
              wav(SF_FORMAT_PCM_16));
    EXPECT_EQ(exportFormat(ExportContainer::Wav, SF_FORMAT_PCM_16, half),
              SF_FORMAT_RF64 | SF_FORMAT_PCM_16);
    EXPECT_EQ(exportFormat(ExportContainer::Flac, SF_FORMAT_PCM_16, half), flac(SF_FORMAT_PCM_16));
}

// ---- samples

TEST_F(ExportFileTest, WholeSamplesOutsideOfFadesStayBitForBit)
{
    struct Row {
        const char* name;
        int source;
        int bits;
        ExportContainer container;
        int written;
        int rate;
        int channels;
    };
    // clang-format off
    const Row rows[] = {
        { "8.wav",   wav(SF_FORMAT_PCM_U8),  8,  ExportContainer::Wav,  wav(SF_FORMAT_PCM_U8),  8000,   1 },
        { "16.wav",  wav(SF_FORMAT_PCM_16),  16, ExportContainer::Wav,  wav(SF_FORMAT_PCM_16),  44100,  2 },
        { "24.wav",  wav(SF_FORMAT_PCM_24),  24, ExportContainer::Wav,  wav(SF_FORMAT_PCM_24),  48000,  6 },
        { "32.wav",  wav(SF_FORMAT_PCM_32),  32, ExportContainer::Wav,  wav(SF_FORMAT_PCM_32),  96000,  2 },
        { "8.flac",  flac(SF_FORMAT_PCM_S8), 8,  ExportContainer::Flac, flac(SF_FORMAT_PCM_S8), 44100,  1 },
        { "16.flac", flac(SF_FORMAT_PCM_16), 16, ExportContainer::Flac, flac(SF_FORMAT_PCM_16), 176400, 8 },
        { "24.flac", flac(SF_FORMAT_PCM_24), 24, ExportContainer::Flac, flac(SF_FORMAT_PCM_24), 192000, 2 },
        { "8.aif",   aiff(SF_FORMAT_PCM_S8), 8,  ExportContainer::Aiff, aiff(SF_FORMAT_PCM_S8), 22050,  1 },
        { "16.aif",  aiff(SF_FORMAT_PCM_16), 16, ExportContainer::Aiff, aiff(SF_FORMAT_PCM_16), 44100,  3 },
        { "24.aif",  aiff(SF_FORMAT_PCM_24), 24, ExportContainer::Aiff, aiff(SF_FORMAT_PCM_24), 48000,  2 },
        { "32.aif",  aiff(SF_FORMAT_PCM_32), 32, ExportContainer::Aiff, aiff(SF_FORMAT_PCM_32), 48000,  12 },
        { "x.wav",   wav(SF_FORMAT_PCM_24),  24, ExportContainer::Flac, flac(SF_FORMAT_PCM_24), 88200,  2 },
        { "y.flac",  flac(SF_FORMAT_PCM_16), 16, ExportContainer::Aiff, aiff(SF_FORMAT_PCM_16), 48000,  2 },
        { "32.caf",  SF_FORMAT_CAF | SF_FORMAT_ALAC_32, 32, ExportContainer::Wav, wav(SF_FORMAT_PCM_32), 48000, 2 },
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto channels = static_cast<std::size_t>(row.channels);
        const std::string source =
            writeSound<int>(path(row.name), {row.source, row.rate, row.channels,
                                             wholeSamples(1000 * channels, row.bits)});
        const auto samples = readSound<int>(source).samples;
        const TrimEngine& engine = open(source);
        const std::string target = path(std::string("out-") + row.name);
        const ExportResult result = exportFile(engine, twoRegions(), {target, row.container});
        ASSERT_EQ(result.status, ExportStatus::Done) << result.problem;

        const auto written = readSound<int>(target);
        EXPECT_EQ(written.format, row.written);
        EXPECT_EQ(written.rate, row.rate);
        EXPECT_EQ(written.channels, row.channels);
        const auto expected = slowTwoRegions(asDoubles(samples), channels);
        ASSERT_EQ(written.samples.size(), expected.size());
        const double unit = std::ldexp(1.0, 32 - row.bits);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            // Rounded to nearest in fades; outside of them this is the sample itself.
            ASSERT_NEAR(written.samples[i], expected[i] * 0x1p31, unit / 2) << i;
        }
        EXPECT_EQ(written.samples[150 * channels], samples[250 * channels]);
    }
}

TEST_F(ExportFileTest, FloatingPointStaysWhatItIs)
{
    struct Row {
        const char* name;
        int source;
        ExportContainer container;
        bool isDouble;
    };
    const Row rows[] = {
        {"float.wav", wav(SF_FORMAT_FLOAT), ExportContainer::Wav, false},
        {"double.wav", wav(SF_FORMAT_DOUBLE), ExportContainer::Wav, true},
        {"float.aiff", aiff(SF_FORMAT_FLOAT), ExportContainer::Aiff, false},
        {"double.aiff", aiff(SF_FORMAT_DOUBLE), ExportContainer::Aiff, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::mt19937 random(7);
        std::vector<double> samples(2000);
        for (double& sample : samples) {
            sample = std::uniform_real_distribution<double>(-2, 2)(random); // beyond full scale too
            sample = row.isDouble ? sample : static_cast<float>(sample);
        }
        samples[400] = 1e-30;
        samples[401] = std::numeric_limits<double>::infinity();
        samples[402] = std::numeric_limits<double>::quiet_NaN();
        samples[403] = -0.0;
        const TrimEngine& engine =
            open(writeSound<double>(path(row.name), {row.source, 48000, 2, samples}));
        const std::string target = path(std::string("out-") + row.name);
        const ExportResult result = exportFile(engine, twoRegions(), {target, row.container});
        ASSERT_EQ(result.status, ExportStatus::Done) << result.problem;

        const auto written = readSound<double>(target);
        EXPECT_EQ(written.format, row.source);
        const auto expected = slowTwoRegions(samples, 2);
        ASSERT_EQ(written.samples.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const double value = row.isDouble ? expected[i] : static_cast<float>(expected[i]);
            if (std::isnan(value)) {
                ASSERT_TRUE(std::isnan(written.samples[i])) << i;
            } else {
                ASSERT_EQ(written.samples[i], value) << i;
            }
        }
    }
}

TEST_F(ExportFileTest, WholeSamplesOfAFloatingPointSourceAreRoundedAndClipped)
{
    const std::vector<double> samples = {0,   0.5,      -0.5,     1.0,        -1.0,
                                         1.5, -7.0,     0x1p-24F, 0x1.8p-23F, -0x1.8p-22F,
                                         NAN, INFINITY, -INFINITY};
    const TrimEngine& engine =
        open(writeSound<double>(path("a.wav"), {wav(SF_FORMAT_FLOAT), 48000, 1, samples}));
    const ExportResult result =
        exportFile(engine, everything(engine), {path("a.flac"), ExportContainer::Flac});
    ASSERT_EQ(result.status, ExportStatus::Done) << result.problem;
    const auto written = readSound<int>(path("a.flac"));
    EXPECT_EQ(written.format, flac(SF_FORMAT_PCM_24));
    std::vector<int> words;
    for (const int sample : written.samples) {
        words.push_back(sample / 256);
    }
    EXPECT_THAT(words, ElementsAre(0, 4194304, -4194304, 8388607, -8388608, 8388607, -8388608, 0, 2,
                                   -3, 0, 8388607, -8388608));
}

TEST_F(ExportFileTest, ResultsOfManyBlocksAreWhole)
{
    const auto samples = wholeSamples(300001, 16);
    const TrimEngine& engine =
        open(writeSound<int>(path("a.wav"), {wav(SF_FORMAT_PCM_16), 48000, 1, samples}));
    std::vector<std::uint64_t> told;
    const auto progress = [&told](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(total, 300001U);
        told.push_back(done);
        return true;
    };
    const ExportResult result =
        exportFile(engine, everything(engine), {path("b.wav"), ExportContainer::Wav}, progress);
    ASSERT_EQ(result.status, ExportStatus::Done) << result.problem;
    EXPECT_EQ(readSound<int>(path("b.wav")).samples, samples);
    EXPECT_GT(told.size(), 2U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.back(), 300001U);
}

TEST_F(ExportFileTest, SameResultGivesTheSameBytes)
{
    const TrimEngine& engine = open(writeSound<double>(
        path("a.wav"), {wav(SF_FORMAT_FLOAT), 48000, 1, std::vector<double>(100, 0.25)}));
    EXPECT_EQ(exportFile(engine, everything(engine), {path("b.wav")}).problem, "");
    // The peak chunk, if there were one, would hold the second of writing.
    EXPECT_EQ(TemporaryFolder::contents(path("b.wav")).find("PEAK"), std::string::npos);
}

// ---- what is there stays there

TEST_F(ExportFileTest, SourceIsNeverWrittenToUnderAnyName)
{
    const TrimEngine& engine = openLoud("a.wav", 100);
    ASSERT_EQ(symlink("a.wav", path("link.wav").c_str()), 0);
    ASSERT_EQ(link(path("a.wav").c_str(), path("hard.wav").c_str()), 0);
    const std::string before = TemporaryFolder::contents(path("a.wav"));
    for (const char* const name : {"a.wav", "link.wav", "hard.wav", "../", "./a.wav"}) {
        SCOPED_TRACE(name);
        const std::string target = path(name);
        const ExportResult result =
            exportFile(engine, everything(engine), {target, ExportContainer::Wav, true});
        if (std::string(name) == "../") {
            EXPECT_EQ(result.status, ExportStatus::Failed);
            continue;
        }
        EXPECT_EQ(result.status, ExportStatus::TargetIsSource);
        EXPECT_EQ(result.problem,
                  "\"" + target + "\" is the recording itself, which is never overwritten.");
    }
    EXPECT_EQ(TemporaryFolder::contents(path("a.wav")), before);
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav", "hard.wav", "link.wav"));
}

TEST_F(ExportFileTest, ExistingFileIsReplacedOnlyWhenAsked)
{
    const TrimEngine& engine = openLoud("a.wav", 100);
    m_folder.write("b.wav", "mine");
    ExportRequest request{path("b.wav"), ExportContainer::Wav};
    const ExportResult refused = exportFile(engine, everything(engine), request);
    EXPECT_EQ(refused.status, ExportStatus::TargetExists);
    EXPECT_EQ(refused.problem, "\"" + path("b.wav") + "\" exists already.");
    EXPECT_EQ(TemporaryFolder::contents(path("b.wav")), "mine");

    request.overwrite = true;
    EXPECT_EQ(exportFile(engine, everything(engine), request).problem, "");
    EXPECT_EQ(readSound<int>(path("b.wav")).samples.size(), 100U);
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav", "b.wav"));
}

// The name is taken between the check and the end.
TEST_F(ExportFileTest, FileThatAppearsMeanwhileIsNotReplaced)
{
    const TrimEngine& engine = openLoud("a.wav", 100);
    const auto takeName = [this](std::uint64_t, std::uint64_t) {
        m_folder.write("b.wav", "mine");
        return true;
    };
    const ExportResult result =
        exportFile(engine, everything(engine), {path("b.wav"), ExportContainer::Wav}, takeName);
    EXPECT_EQ(result.status, ExportStatus::TargetExists);
    EXPECT_EQ(TemporaryFolder::contents(path("b.wav")), "mine");
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav", "b.wav"));
}

TEST_F(ExportFileTest, NothingIsSeenBeforeTheFileIsWhole)
{
    const TrimEngine& engine = openLoud("a.wav", 200000);
    const auto look = [this](std::uint64_t, std::uint64_t) {
        EXPECT_FALSE(std::filesystem::exists(path("b.wav")));
        return true;
    };
    EXPECT_EQ(
        exportFile(engine, everything(engine), {path("b.wav"), ExportContainer::Wav}, look).problem,
        "");
    EXPECT_TRUE(std::filesystem::exists(path("b.wav")));
}

TEST_F(ExportFileTest, CancellingLeavesNothing)
{
    const TrimEngine& engine = openLoud("a.wav", 200000);
    m_folder.write("c.wav", "mine");
    for (const std::uint64_t until : {1U, 100000U, 200000U}) {
        for (const char* const name : {"b.wav", "c.wav"}) {
            const auto cancel = [until](std::uint64_t done, std::uint64_t) { return done < until; };
            const ExportResult result = exportFile(
                engine, everything(engine), {path(name), ExportContainer::Wav, true}, cancel);
            EXPECT_EQ(result.status, ExportStatus::Cancelled);
            EXPECT_EQ(result.problem,
                      "\"" + path(name) + "\" was not written, as you cancelled it.");
        }
    }
    EXPECT_EQ(TemporaryFolder::contents(path("c.wav")), "mine");
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav", "c.wav"));
}

TEST_F(ExportFileTest, FullDiskLeavesNothing)
{
    const TrimEngine& engine = openLoud("a.wav", 200000);
    for (const ExportContainer container : {ExportContainer::Wav, ExportContainer::Aiff}) {
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit small{100000, before.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        const ExportResult result =
            exportFile(engine, everything(engine), {path("b.wav"), container});
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        EXPECT_EQ(result.status, ExportStatus::Failed);
        EXPECT_EQ(result.problem, "\"" + path("b.wav") + "\" cannot be written: File too large.");
        EXPECT_THAT(m_folder.names(), ElementsAre("a.wav"));
    }
}

TEST_F(ExportFileTest, WhatCannotBeWrittenIsToldInOneSentence)
{
    const TrimEngine& engine = openLoud("a.wav", 100);
    std::filesystem::create_directory(path("folder.wav"));
    struct Row {
        std::string target;
        const char* rest;
    };
    const Row rows[] = {
        {path("gone/b.wav"), "cannot be written: No such file or directory."},
        {path("a.wav/b.wav"), "cannot be written: Not a directory."},
        {path("folder.wav"), "cannot be written: Is a directory."},
        {path(std::string(300, 'x')), "cannot be written: File name too long."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.target);
        const ExportResult result =
            exportFile(engine, everything(engine), {row.target, ExportContainer::Wav, true});
        EXPECT_EQ(result.status, ExportStatus::Failed);
        EXPECT_EQ(result.problem, quotedPath(row.target) + " " + row.rest);
    }
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav", "folder.wav"));
    EXPECT_THAT(m_folder.names("folder.wav"), IsEmpty());
}

TEST_F(ExportFileTest, ContainerThatDoesNotHoldTheChannelsIsToldBeforeWriting)
{
    const TrimEngine& engine = open(writeSound<int>(
        path("a.wav"), {wav(SF_FORMAT_PCM_16), 48000, 9, std::vector<int>(900, 1 << 30)}));
    const ExportResult result =
        exportFile(engine, everything(engine), {path("b.flac"), ExportContainer::Flac});
    EXPECT_EQ(result.status, ExportStatus::Failed);
    EXPECT_EQ(
        result.problem,
        "\"" + path("b.flac") +
            "\" cannot be written: FLAC does not hold 9 channels at 48000 Hz of this length.");
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav"));
}

TEST_F(ExportFileTest, EmptyResultIsNotWritten)
{
    const TrimEngine& engine = openLoud("a.wav", 100);
    const ExportResult result = exportFile(engine, {}, {path("b.wav"), ExportContainer::Wav});
    EXPECT_EQ(result.status, ExportStatus::NothingKept);
    EXPECT_EQ(result.problem, "\"" + path("a.wav") + "\" has nothing that these settings keep.");
    EXPECT_THAT(m_folder.names(), ElementsAre("a.wav"));
}

// Samples of 32 bits come from the source again, which may be another one by now.
TEST_F(ExportFileTest, SourceThatChangedMeanwhileIsFound)
{
    const auto sound = [](int level, int channels) {
        return SoundContents<int>{wav(SF_FORMAT_PCM_32), 48000, channels,
                                  std::vector<int>(900, level)};
    };
    const std::string source = writeSound(path("a.wav"), sound(1 << 30, 1));
    const TrimEngine& engine = open(source);
    const auto problem = [&] {
        return exportFile(engine, everything(engine), {path("b.wav"), ExportContainer::Wav})
            .problem;
    };
    const std::string expected = "\"" + source + "\" has changed since it was opened.";
    writeSound(source, sound(1 << 29, 1));
    EXPECT_EQ(problem(), expected);
    writeSound(source, sound(1 << 30, 3));
    EXPECT_EQ(problem(), expected);
    m_folder.write("a.wav", "text");
    EXPECT_EQ(problem(), expected);
    std::filesystem::remove(source);
    EXPECT_EQ(problem(), expected);
    writeSound(source, sound(1 << 30, 1));
    EXPECT_EQ(problem(), "");
}

TEST_F(ExportFileTest, NewFileHasTheRightsOfNewFiles)
{
    const mode_t before = umask(027);
    const TrimEngine& engine = openLoud("a.wav", 100);
    for (const bool overwrite : {false, true}) {
        EXPECT_EQ(
            exportFile(engine, everything(engine), {path("b.wav"), ExportContainer::Wav, overwrite})
                .problem,
            "");
        struct stat status {};
        stat(path("b.wav").c_str(), &status);
        EXPECT_EQ(status.st_mode & 0777U, 0640U);
    }
    umask(before);
}
