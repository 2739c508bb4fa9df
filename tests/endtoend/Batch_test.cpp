// The program as a script calls it: many files, some of them bad, no display, and killed midway.

#include "RunningProgram.h"
#include "SoundFiles.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

namespace {

constexpr auto kTimeLimit = std::chrono::seconds(60);
constexpr int kCannotStart = 126;

// The level that counts as sound below, and the fades.
const Words kSettings = {"--attack",  "-40 dB", "--release",  "-40 dB",
                         "--fade-in", "2 ms",   "--fade-out", "3 ms:linear"};

/// What a program is started with.
struct Start {
    Words words;
    bool asNobody = false;                  // when the tests run as root
    std::optional<rlim_t> largestFile = {}; // a write beyond ends the program by SIGXFSZ
};

class BatchProgramTest : public testing::Test {
protected:
    BatchProgramTest() { makeFolder("out"); }

    std::string path(const std::string& name) const { return m_folder.path(name); }

    void makeFolder(const std::string& name) const
    {
        std::filesystem::create_directory(path(name));
    }

    void start(const Start& start)
    {
        std::vector<std::string> words = {TARVEL_HOST, "--batch", "--output-dir", path("out")};
        words.insert(words.end(), start.words.begin(), start.words.end());
        std::vector<char*> arguments;
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        m_folder.write("stdout", "");
        m_folder.write("stderr", "");
        const pid_t process = fork();
        if (process == 0) {
            become(start);
            // Nothing of a desktop: no display, no home.
            const char* const environment[] = {"LSAN_OPTIONS=print_suppressions=0", nullptr};
            execve(TARVEL_HOST, arguments.data(), const_cast<char**>(environment));
            _exit(kCannotStart);
        }
        m_program.take(process);
    }

    /// Waits for the end; the raw status, or -1 when it did not come in time.
    int status() { return m_program.status(kTimeLimit); }

    int exitCodeOf(const Start& what)
    {
        start(what);
        const int ended = status();
        return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    }

    std::string output() const { return TemporaryFolder::contents(path("stdout")); }
    std::string errors() const { return TemporaryFolder::contents(path("stderr")); }

    TemporaryFolder m_folder;
    RunningProgram m_program; // ends before its folder goes

private:
    // In the child.
    void become(const Start& start) const
    {
        const auto redirect = [](const std::string& file, int flags, int descriptor) {
            dup2(open(file.c_str(), flags), descriptor);
        };
        redirect("/dev/null", O_RDONLY, 0);
        redirect(path("stdout"), O_WRONLY | O_TRUNC, 1);
        redirect(path("stderr"), O_WRONLY | O_TRUNC, 2);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        if (start.largestFile) {
            const rlimit limit{*start.largestFile, *start.largestFile};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        const passwd* const nobody = getpwnam("nobody");
        if (start.asNobody && getuid() == 0 && nobody != nullptr) {
            if (setgroups(0, nullptr) != 0 || setgid(nobody->pw_gid) != 0 ||
                setuid(nobody->pw_uid) != 0) {
                _exit(kCannotStart);
            }
        }
    }
};

struct Kind {
    const char* extension;
    int format;
    int bits;
    int rate;
    int channels;
};

const Kind kKinds[] = {
    {".wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16, 8000, 1},
    {".flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 24, 48000, 2},
    {".aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 24, 44100, 3},
    {".wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 32, 96000, 2},
    {".flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16, 11025, 1},
    {".wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 8, 22050, 1},
};

/// A tone with quiet edges whose lengths depend on `number`.
SoundContents<int> makeSound(const Kind& kind, int number, int frames = 1000)
{
    SoundContents<int> sound{kind.format, kind.rate, kind.channels, {}};
    const double unit = std::ldexp(1.0, 32 - kind.bits);
    for (int frame = 0; frame < frames; ++frame) {
        const bool isLoud = frame >= 50 + number && frame < frames - 2 * number - 1;
        for (int channel = 0; channel < kind.channels; ++channel) {
            const double sample = std::sin(frame * (channel + 2) * 0.1) * (isLoud ? 0.7 : 0.004);
            sound.samples.push_back(static_cast<int>(std::round(sample * 0x1p31 / unit) * unit));
        }
    }
    return sound;
}

/// What kSettings make of a sound, sample by sample.
std::vector<int> slowResult(const SoundContents<int>& sound, int bits)
{
    const auto channels = static_cast<std::size_t>(sound.channels);
    const std::size_t frames = sound.samples.size() / channels;
    const auto isLoud = [&](std::size_t frame) {
        bool loud = false;
        for (std::size_t channel = 0; channel < channels; ++channel) {
            loud = loud || std::fabs(sound.samples[frame * channels + channel] / 0x1p31) >= 0.01F;
        }
        return loud;
    };
    std::size_t first = 0;
    while (!isLoud(first)) {
        ++first;
    }
    std::size_t end = frames;
    while (!isLoud(end - 1)) {
        --end;
    }
    const double fadeIn = std::round(sound.rate * 0.002);
    const double fadeOut = std::round(sound.rate * 0.003);
    const double unit = std::ldexp(1.0, 32 - bits);
    std::vector<int> out;
    for (std::size_t frame = first; frame < end; ++frame) {
        const double gain = std::min({1.0, static_cast<double>(frame - first) / fadeIn,
                                      static_cast<double>(end - 1 - frame) / fadeOut});
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const double sample = sound.samples[frame * channels + channel] * gain;
            out.push_back(static_cast<int>(std::nearbyint(sample / unit) * unit));
        }
    }
    return out;
}

void truncate(const std::string& file)
{
    std::filesystem::resize_file(file, std::filesystem::file_size(file) * 2 / 3);
}

/// Frames that can be read of a file.
sf_count_t framesLeft(const std::string& path)
{
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    std::vector<int> samples(static_cast<std::size_t>(info.frames * info.channels));
    const sf_count_t frames = sf_readf_int(file, samples.data(), info.frames);
    sf_close(file);
    return frames;
}

Words with(Words words, const Words& more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

bool hasNamelessFiles(const std::string& folder)
{
    const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR, 0600);
    if (descriptor >= 0) {
        close(descriptor);
    }
    return descriptor >= 0;
}

} // namespace

TEST_F(BatchProgramTest, TwoHundredFilesSomeOfThemBad)
{
    makeFolder("in");
    Words files;
    std::map<std::string, std::vector<int>> expected; // by name
    std::string expectedErrors;
    const auto failsWith = [&](const std::string& quoted, const std::string& rest) {
        expectedErrors += "tarvel-host: \"" + quoted + "\" " + rest + "\n";
    };
    for (int number = 0; number < 200; ++number) {
        const Kind& kind = kKinds[number % std::size(kKinds)];
        std::string name = "take " + std::to_string(number) + kind.extension;
        if (number == 120) {
            name = "take \xff\xe9\n" + std::string(kind.extension);
        }
        const std::string file = path("in/" + name);
        const SoundContents<int> sound = makeSound(kind, number % 100);
        files.push_back(file);
        writeSound(file, sound);
        switch (number) {
        case 12: // WAV with 2044 bytes
            truncate(file);
            failsWith(file, "is damaged: its last 682 bytes are missing.");
            continue;
        case 19: // FLAC, of which some blocks are left
            writeSound(file, makeSound(kind, number, 30000));
            truncate(file);
            failsWith(file, "is damaged: only the first " + std::to_string(framesLeft(file)) +
                                " of 30000 frames could be read.");
            continue;
        case 63:
            m_folder.write("in/" + name, "");
            failsWith(file, "is empty.");
            continue;
        case 99:
            m_folder.write("in/" + name, "These are words and no sound at all.\n");
            failsWith(file, "is not an audio file that can be read here.");
            continue;
        case 150:
            makeFolder("out/" + name);
            failsWith(path("out/" + name), "exists already.");
            continue;
        default:
            expected[name] = slowResult(sound, kind.bits);
        }
    }
    EXPECT_EQ(exitCodeOf({with(kSettings, files)}), 1);
    EXPECT_EQ(errors(), expectedErrors);
    EXPECT_THAT(output(), HasSubstr("in/take \\xff\\xe9\\x0a"));
    const std::string lines = output();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'),
              static_cast<std::ptrdiff_t>(expected.size()));
    EXPECT_EQ(expected.size(), 195U);
    EXPECT_EQ(m_folder.names("out").size(), expected.size() + 1); // and the folder
    for (const auto& [name, samples] : expected) {
        SCOPED_TRACE(name);
        const auto source = readSound<int>(path("in/" + name));
        const auto written = readSound<int>(path("out/" + name));
        EXPECT_EQ(written.format, source.format);
        EXPECT_EQ(written.rate, source.rate);
        EXPECT_EQ(written.channels, source.channels);
        ASSERT_EQ(written.samples, samples);
    }
}

TEST_F(BatchProgramTest, FolderThatMayNotBeWrittenIsToldForEveryFile)
{
    const std::string file = writeSound(path("a.wav"), makeSound(kKinds[0], 1));
    chmod(m_folder.path().c_str(), 0755);
    chmod(path("out").c_str(), 0555);
    const int code = exitCodeOf({with(kSettings, {file, file}), true});
    if (code == kCannotStart) {
        GTEST_SKIP() << "an ordinary user may not start the program here";
    }
    EXPECT_EQ(code, 1);
    const std::string line =
        "tarvel-host: \"" + path("out/a.wav") + "\" cannot be written: Permission denied.\n";
    EXPECT_EQ(errors(), line + line);
    EXPECT_EQ(output(), "");
    EXPECT_THAT(m_folder.names("out"), IsEmpty());
}

TEST_F(BatchProgramTest, FileThatMayNotBeReadIsTold)
{
    const std::string file = writeSound(path("a.wav"), makeSound(kKinds[0], 1));
    chmod(m_folder.path().c_str(), 0755);
    chmod(file.c_str(), 0);
    const int code = exitCodeOf({with(kSettings, {file}), true});
    if (code == kCannotStart) {
        GTEST_SKIP() << "an ordinary user may not start the program here";
    }
    EXPECT_EQ(code, 1);
    EXPECT_EQ(errors(), "tarvel-host: \"" + file + "\" cannot be read: Permission denied.\n");
}

TEST_F(BatchProgramTest, WrongOptionTouchesNothing)
{
    const std::string file = writeSound(path("a.wav"), makeSound(kKinds[0], 1));
    EXPECT_EQ(exitCodeOf({{"--crop-start", "soon", file}}), 2);
    EXPECT_EQ(errors(), "tarvel-host: The crop start \"soon\" is no length that can be read.\n");
    EXPECT_EQ(output(), "");
    EXPECT_THAT(m_folder.names("out"), IsEmpty());
}

TEST_F(BatchProgramTest, DryRunWritesNothing)
{
    const std::string file = writeSound(path("a.wav"), makeSound(kKinds[0], 1));
    EXPECT_EQ(exitCodeOf({with(kSettings, {"--dry-run", "--format", "samples", file})}), 0);
    EXPECT_EQ(output(), "[1/1] \"" + file +
                            "\": 946 of 1000 would be kept\n"
                            "    from 51 to 997, fade-in 16, fade-out 24\n");
    EXPECT_THAT(m_folder.names("out"), IsEmpty());
}

// ---- killed midway

namespace {

constexpr int kManyFrames = 150000;

class KilledBatchTest : public BatchProgramTest {
protected:
    /// Makes files and their results.
    void SetUp() override
    {
        if (!hasNamelessFiles(m_folder.path())) {
            GTEST_SKIP() << "this file system gives temporary files a name";
        }
        makeFolder("in");
        for (int number = 0; number < 12; ++number) {
            const Kind& kind = kKinds[number % 4];
            const std::string name = std::to_string(number) + kind.extension;
            m_files.push_back(writeSound(path("in/" + name), makeSound(kind, number, kManyFrames)));
        }
        ASSERT_EQ(exitCodeOf({with(kSettings, m_files)}), 0) << errors();
        for (const std::string& name : m_folder.names("out")) {
            m_whole[name] = TemporaryFolder::contents(path("out/" + name));
        }
        clear();
    }

    void clear() const
    {
        std::filesystem::remove_all(path("out"));
        makeFolder("out");
    }

    /// Every file that is there is whole.
    void expectNoDamage() const
    {
        for (const std::string& name : m_folder.names("out")) {
            ASSERT_TRUE(m_whole.contains(name)) << name;
            EXPECT_TRUE(TemporaryFolder::contents(path("out/" + name)) == m_whole.at(name)) << name;
        }
    }

    Words m_files;
    std::map<std::string, std::string> m_whole;
};

} // namespace

TEST_F(KilledBatchTest, LeavesOnlyWholeFilesWheneverItIsKilled)
{
    int killed = 0;
    for (std::ptrdiff_t lines = 0; lines < 10; ++lines) {
        SCOPED_TRACE(lines);
        clear();
        start({with(kSettings, m_files)});
        const auto limit = std::chrono::steady_clock::now() + kTimeLimit;
        for (std::string seen; std::count(seen.begin(), seen.end(), '\n') < lines;
             seen = output()) {
            ASSERT_LT(std::chrono::steady_clock::now(), limit);
        }
        // Somewhere in the next file, at another place every time.
        std::this_thread::sleep_for(std::chrono::microseconds(lines * 700));
        kill(m_program.process(), SIGKILL);
        killed += WIFSIGNALED(status()) ? 1 : 0;
        expectNoDamage();
        EXPECT_GE(m_folder.names("out").size(), static_cast<std::size_t>(lines));
    }
    EXPECT_GT(killed, 0); // so that this tested something
}

// The system ends the program at an exact byte of what it writes.
TEST_F(KilledBatchTest, LeavesOnlyWholeFilesAtWhateverByteItEnds)
{
    for (const rlim_t bytes : {1U, 44U, 4096U, 65536U, 131072U, 250000U, 290000U}) {
        SCOPED_TRACE(bytes);
        clear();
        Start limited{with(kSettings, m_files)};
        limited.largestFile = bytes;
        start(limited);
        const int ended = status();
        EXPECT_TRUE(WIFSIGNALED(ended) && WTERMSIG(ended) == SIGXFSZ);
        EXPECT_THAT(m_folder.names("out"), IsEmpty()); // it was the first file
    }
}

// ---- what the user is told

namespace {

/// Every word that looks like an option.
std::set<std::string> optionsIn(const std::string& text)
{
    static const std::regex s_option("--[a-z][a-z-]*");
    return {std::sregex_token_iterator(text.begin(), text.end(), s_option), {}};
}

std::string printedBy(const std::string& command)
{
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        text += static_cast<char>(c);
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

} // namespace

TEST_F(BatchProgramTest, HelpNeedsNoDisplay)
{
    EXPECT_EQ(exitCodeOf({{"--help"}}), 0);
    EXPECT_THAT(output(), HasSubstr("tarvel-host --batch --output-dir DIR"));
    EXPECT_EQ(errors(), "");
}

TEST(ManualPage, ListsTheOptionsOfTheHelp)
{
    std::string page = TemporaryFolder::contents(MANUAL_PAGE);
    page = std::regex_replace(page, std::regex("\\\\-"), "-");
    const std::string help = printedBy(std::string(TARVEL_HOST) + " --help");
    EXPECT_THAT(optionsIn(help), testing::SizeIs(testing::Gt(10U)));
    EXPECT_EQ(optionsIn(page), optionsIn(help));
    static const std::regex s_format("\n  ([a-z]+[a-z0-9.-]*) +[0-9:+.;]+\n");
    int formats = 0;
    std::string rest = help;
    for (std::smatch match; std::regex_search(rest, match, s_format); ++formats) {
        EXPECT_THAT(page, HasSubstr(match.str(1)));
        rest = rest.substr(static_cast<std::size_t>(match.position(0)) + 1);
    }
    EXPECT_GE(formats, 14);
}

TEST(ManualPage, IsFormattedWithoutAWarning)
{
    if (std::system("command -v groff > /dev/null") != 0) {
        GTEST_SKIP() << "groff is missing";
    }
    const std::string command = "groff -ww -man -Tutf8 -P-bcou " MANUAL_PAGE;
    EXPECT_EQ(printedBy(command + " 2>&1 >/dev/null"), "");
    EXPECT_THAT(printedBy(command), HasSubstr("--output-dir"));
}
