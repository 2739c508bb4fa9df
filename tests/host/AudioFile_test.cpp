#include "host/effect/AudioFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace host;
namespace fs = std::filesystem;

namespace {

class AudioFileTest : public testing::Test {
protected:
    AudioFileTest()
    {
        std::string pattern = (fs::temp_directory_path() / "audio-file-XXXXXX").string();
        m_folder = mkdtemp(pattern.data());
    }
    ~AudioFileTest() override { fs::remove_all(m_folder); }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    /// Writes `samples`, all of them multiples of 1/128, so that every sample type holds them.
    std::string writeSound(const std::string& name, int format, int rate, int channels,
                           const std::vector<float>& samples) const
    {
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = channels;
        info.format = format;
        SNDFILE* const file = sf_open(path(name).c_str(), SFM_WRITE, &info);
        EXPECT_NE(file, nullptr) << sf_strerror(nullptr);
        // As integers, which the decoder turns into the same floats again.
        sf_command(file, SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
        std::vector<int> words(samples.size());
        std::transform(samples.begin(), samples.end(), words.begin(),
                       [](float sample) { return static_cast<int>(sample * 0x1p31F); });
        const auto count = static_cast<sf_count_t>(words.size());
        EXPECT_EQ(sf_write_int(file, words.data(), count), count);
        EXPECT_EQ(sf_close(file), 0);
        return path(name);
    }

    /// What is wrong with a file, after the quoted path and a blank.
    static std::string problemWith(const std::string& path)
    {
        const ReadResult result = readAudioFile(path);
        EXPECT_EQ(result.recording, nullptr);
        const std::string lead = quotedPath(path) + " ";
        EXPECT_THAT(result.problem, testing::StartsWith(lead));
        return result.problem.substr(std::min(lead.size(), result.problem.size()));
    }

private:
    fs::path m_folder;
};

std::vector<float> staircase(int channels, int frames)
{
    std::vector<float> samples;
    for (int i = 0; i < channels * frames; ++i) {
        samples.push_back(static_cast<float>(i % 200 - 100) / 128);
    }
    return samples;
}

} // namespace

TEST_F(AudioFileTest, ReadsEveryFormatChannelCountAndRate)
{
    struct Row {
        const char* name;
        int format;
        int rate;
        int channels;
        unsigned bits;
    };
    // clang-format off
    const Row rows[] = {
        { "mono.wav",     SF_FORMAT_WAV | SF_FORMAT_PCM_16,   44100, 1, 16 },
        { "stereo.wav",   SF_FORMAT_WAV | SF_FORMAT_PCM_24,   48000, 2, 24 },
        { "six.wav",      SF_FORMAT_WAV | SF_FORMAT_PCM_32,   88200, 6, 32 },
        { "float.wav",    SF_FORMAT_WAV | SF_FORMAT_FLOAT,    96000, 2, 32 },
        { "double.wav",   SF_FORMAT_WAV | SF_FORMAT_DOUBLE,  192000, 1, 64 },
        { "byte.wav",     SF_FORMAT_WAV | SF_FORMAT_PCM_U8,    8000, 1,  8 },
        { "mono.flac",    SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 176400, 1, 16 },
        { "stereo.flac",  SF_FORMAT_FLAC | SF_FORMAT_PCM_24,  96000, 2, 24 },
        { "six.flac",     SF_FORMAT_FLAC | SF_FORMAT_PCM_16,  44100, 6, 16 },
        { "mono.aiff",    SF_FORMAT_AIFF | SF_FORMAT_PCM_16,  44100, 1, 16 },
        { "stereo.aiff",  SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 192000, 2, 24 },
        { "six.aiff",     SF_FORMAT_AIFF | SF_FORMAT_FLOAT,   48000, 6, 32 },
        { "big.w64",      SF_FORMAT_W64 | SF_FORMAT_PCM_16,   48000, 2, 16 },
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto samples = staircase(row.channels, 1000);
        const ReadResult result =
            readAudioFile(writeSound(row.name, row.format, row.rate, row.channels, samples));
        ASSERT_NE(result.recording, nullptr) << result.problem;
        EXPECT_EQ(result.problem, "");
        EXPECT_EQ(result.warning, "");
        EXPECT_EQ(result.recording->path, path(row.name));
        EXPECT_EQ(result.recording->sampleRate, static_cast<unsigned>(row.rate));
        EXPECT_EQ(result.recording->channels, static_cast<unsigned>(row.channels));
        EXPECT_EQ(result.recording->bitDepth, row.bits);
        EXPECT_EQ(result.recording->fileFormat & SF_FORMAT_TYPEMASK,
                  row.format & SF_FORMAT_TYPEMASK);
        EXPECT_EQ(result.recording->fileFormat & SF_FORMAT_SUBMASK, row.format & SF_FORMAT_SUBMASK);
        EXPECT_EQ(result.recording->frames(), 1000U);
        EXPECT_EQ(result.recording->samples, samples);
    }
}

TEST_F(AudioFileTest, TellsFormatAndLengthForPeople)
{
    const ReadResult result = readAudioFile(
        writeSound("a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, staircase(2, 22050)));
    ASSERT_NE(result.recording, nullptr);
    EXPECT_EQ(result.recording->format, "WAV (Microsoft)");
    EXPECT_EQ(result.recording->encoding, "Signed 16 bit PCM");
    EXPECT_DOUBLE_EQ(result.recording->seconds(), 0.5);
}

TEST_F(AudioFileTest, ReadsMoreThanOneBlock)
{
    const auto samples = staircase(2, 150000);
    const ReadResult result =
        readAudioFile(writeSound("long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 2, samples));
    ASSERT_NE(result.recording, nullptr);
    EXPECT_EQ(result.recording->samples, samples);
}

TEST_F(AudioFileTest, CodedFormatHasNoBitDepth)
{
    const ReadResult result = readAudioFile(writeSound(
        "a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 48000, 2, std::vector<float>(2 * 4800, 0.25F)));
    ASSERT_NE(result.recording, nullptr) << result.problem;
    EXPECT_EQ(result.recording->bitDepth, 0U);
    EXPECT_EQ(result.recording->frames(), 4800U);
}

TEST_F(AudioFileTest, NameMayBeAnyBytes)
{
    for (const char* const name :
         {"with blank.wav", "caf\xC3\xA9.wav", "latin-\xE9.wav", "new\nline.wav"}) {
        SCOPED_TRACE(quotedPath(name));
        const auto file =
            writeSound(name, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, staircase(1, 10));
        EXPECT_NE(readAudioFile(file).recording, nullptr);
    }
}

// ---- problems, one sentence each

TEST_F(AudioFileTest, MissingFile)
{
    EXPECT_EQ(problemWith(path("gone.wav")), "does not exist.");
    EXPECT_EQ(problemWith(""), "does not exist.");
}

TEST_F(AudioFileTest, EmptyFile) { EXPECT_EQ(problemWith(write("empty.wav", "")), "is empty."); }

TEST_F(AudioFileTest, Folder)
{
    fs::create_directory(path("folder.wav"));
    EXPECT_EQ(problemWith(path("folder.wav")), "is a folder, not an audio file.");
}

TEST_F(AudioFileTest, PipeIsRefusedWithoutWaitingForItsWriter)
{
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(problemWith(path("pipe")), "is a device or a pipe, not an audio file.");
    EXPECT_EQ(problemWith("/dev/null"), "is a device or a pipe, not an audio file.");
}

TEST_F(AudioFileTest, FileThatMayNotBeRead)
{
    const auto file = write("locked.wav", "RIFF");
    fs::permissions(file, fs::perms::none);
    // The superuser may read everything; another user may not.
    const bool superuser = geteuid() == 0;
    if (superuser) {
        fs::permissions(fs::path(file).parent_path(), fs::perms::all);
        ASSERT_EQ(seteuid(65534), 0);
    }
    EXPECT_EQ(problemWith(file), "cannot be read: Permission denied.");
    if (superuser) {
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST_F(AudioFileTest, FileOfAnotherKind)
{
    constexpr const char* kNotAudio = "is not an audio file that can be read here.";
    EXPECT_EQ(problemWith(write("notes.wav", "Dear diary,\n")), kNotAudio);
    EXPECT_EQ(problemWith(write("short.wav", "R")), kNotAudio);
    EXPECT_EQ(problemWith(write("picture.png", "\x89PNG\r\n\x1A\n")), kNotAudio);
    EXPECT_EQ(problemWith(write("zeros.flac", std::string(5000, '\0'))), kNotAudio);
}

TEST_F(AudioFileTest, FileWithoutASample)
{
    const auto file = writeSound("none.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, {});
    EXPECT_EQ(problemWith(file), "holds no sound.");
}

TEST_F(AudioFileTest, FileThatEndsEarlyIsReadAsFarAsItGoes)
{
    const auto samples = staircase(1, 10000);
    const auto file = writeSound("cut.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, samples);
    fs::resize_file(file, fs::file_size(file) - 10000);
    const ReadResult result = readAudioFile(file);
    ASSERT_NE(result.recording, nullptr) << result.problem;
    EXPECT_EQ(result.recording->samples,
              std::vector<float>(samples.begin(), samples.begin() + 5000));
}

TEST_F(AudioFileTest, ShortfallThatTheDecoderKnowsIsTold)
{
    const auto file =
        writeSound("cut.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 1, staircase(1, 100000));
    fs::resize_file(file, fs::file_size(file) / 2);
    const ReadResult result = readAudioFile(file);
    ASSERT_NE(result.recording, nullptr) << result.problem;
    EXPECT_EQ(result.problem, "");
    const auto frames = result.recording->frames();
    EXPECT_GT(frames, 0U);
    EXPECT_LT(frames, 100000U);
    EXPECT_EQ(result.warning, quotedPath(file) + " is damaged: only the first " +
                                  std::to_string(frames) + " of 100000 frames could be read.");
}

TEST_F(AudioFileTest, WavAndAiffThatWereCutAreTold)
{
    for (const int format : {+SF_FORMAT_WAV, +SF_FORMAT_AIFF, SF_FORMAT_WAV | SF_ENDIAN_BIG}) {
        SCOPED_TRACE(format);
        const auto file =
            writeSound("cut", format | SF_FORMAT_PCM_16, 44100, 1, staircase(1, 1000));
        EXPECT_EQ(readAudioFile(file).warning, "");
        fs::resize_file(file, fs::file_size(file) - 500);
        const ReadResult result = readAudioFile(file);
        ASSERT_NE(result.recording, nullptr) << result.problem;
        EXPECT_EQ(result.recording->frames(), 750U);
        EXPECT_EQ(result.warning,
                  quotedPath(file) + " is damaged: its last 500 bytes are missing.");
    }
}

// A recorder that writes into a pipe puts the largest number; some count the whole file.
TEST_F(AudioFileTest, LengthThatAHeaderCannotKnowIsNoDamage)
{
    const auto file =
        writeSound("a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, staircase(1, 1000));
    const auto size = static_cast<char32_t>(fs::file_size(file));
    for (const char32_t promised : {char32_t{0xFFFFFFFF}, char32_t{0x7FFFFFFF}, size}) {
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(4);
        for (int shift = 0; shift < 32; shift += 8) {
            stream.put(static_cast<char>(promised >> shift));
        }
        stream.close();
        EXPECT_EQ(readAudioFile(file).warning, "") << static_cast<unsigned>(promised);
    }
}

// ---- paths for people

TEST(QuotedPath, WritesPrintableTextAsItIsAndOtherBytesInHex)
{
    struct Row {
        const char* path;
        const char* expected;
    };
    const Row rows[] = {
        {"", "\"\""},
        {"/a b.wav", "\"/a b.wav\""},
        {"caf\xC3\xA9", "\"caf\xC3\xA9\""},
        {"\xF0\x9F\x8E\xB5", "\"\xF0\x9F\x8E\xB5\""},
        {"a\nb\x7F", "\"a\\x0ab\\x7f\""},
        {"\xE9t\xE9", "\"\\xe9t\\xe9\""},
        {"\xC3", "\"\\xc3\""},                            // cut short
        {"\xC0\x80", "\"\\xc0\\x80\""},                   // overlong
        {"\xE0\x80\x80", "\"\\xe0\\x80\\x80\""},          // overlong
        {"\xED\xA0\x80", "\"\\xed\\xa0\\x80\""},          // surrogate
        {"\xF4\x90\x80\x80", "\"\\xf4\\x90\\x80\\x80\""}, // past the last character
        {"\xC2\x85", "\"\\xc2\\x85\""},                   // next line, a control
    };
    for (const Row& row : rows) {
        EXPECT_EQ(quotedPath(row.path), row.expected);
    }
}
