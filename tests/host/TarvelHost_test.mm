// The program itself, started as a user starts it.

#import "GuiTest.h"

#include "RunningProgram.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr auto kTimeLimit = std::chrono::seconds(30);

class TarvelHostTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return m_folder.path(name); }

    /// Starts the program with its output in files: a pipe would stay open in daemons it starts.
    void start(std::vector<std::string> words)
    {
        setenv("LSAN_OPTIONS", "print_suppressions=0", 0); // no words of a sanitizer's in `err`
        setenv("XDG_DATA_HOME", path("data").c_str(), 1);  // leaves the user's own lists alone
        words.insert(words.begin(), TARVEL_HOST);
        std::vector<char*> arguments;
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, 1, path("out").c_str(), O_WRONLY | O_CREAT, 0600);
        posix_spawn_file_actions_addopen(&files, 2, path("err").c_str(), O_WRONLY | O_CREAT, 0600);
        pid_t process = 0;
        ASSERT_EQ(posix_spawn(&process, TARVEL_HOST, &files, nullptr, arguments.data(), environ),
                  0);
        m_program.take(process);
        posix_spawn_file_actions_destroy(&files);
    }

    /// Waits for the end; the raw status, or -1 when it did not come in time.
    int status() { return m_program.status(kTimeLimit); }

    int exitCodeOf(std::vector<std::string> words)
    {
        start(std::move(words));
        const int ended = status();
        return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    }

    std::string output() const { return TemporaryFolder::contents(path("out")); }
    std::string errors() const { return TemporaryFolder::contents(path("err")); }

    /// The window that holds a recording, as xdotool knows it; empty when none comes in time.
    /// xdotool reads the old form of a title, which holds what the locale has: the first word is
    /// ASCII and always there.
    std::string waitForWindowOf(const std::string& recording) const
    {
        return answerTo("timeout 20 xdotool search --sync --onlyvisible --name '^" + recording +
                        " '");
    }

    /// What a command prints; empty when it fails.
    std::string answerTo(const std::string& command) const
    {
        const bool isDone = std::system((command + " > " + path("answer")).c_str()) == 0;
        return isDone ? TemporaryFolder::contents(path("answer")) : "";
    }

    void startWithSample()
    {
        start({"--bundle", TEST_VIEW_BUNDLE, SAMPLE_RECORDING});
        ASSERT_NE(waitForWindowOf("sample.flac"), "") << errors();
    }

    /// A window is on the screen a little before it has the keyboard.
    void expectEndByKey(const std::string& key)
    {
        const std::string window = waitForWindowOf("sample.flac");
        ASSERT_TRUE(
            gui_test::pumpUntil([&] { return answerTo("xdotool getwindowfocus") == window; }, 20));
        ASSERT_EQ(std::system(("xdotool key " + key).c_str()), 0);
        const int ended = status();
        EXPECT_TRUE(WIFEXITED(ended));
        EXPECT_EQ(WEXITSTATUS(ended), 0);
    }

private:
    TemporaryFolder m_folder;

protected:
    RunningProgram m_program; // ends before its folder goes
};

const std::vector<std::string> kTestView = {"--bundle", TEST_VIEW_BUNDLE};

std::vector<std::string> withTestView(std::vector<std::string> words)
{
    words.insert(words.begin(), kTestView.begin(), kTestView.end());
    return words;
}

} // namespace

TEST_F(TarvelHostTest, BadFileIsOneSentenceBeforeAnyWindow)
{
    EXPECT_EQ(exitCodeOf({path("gone.wav")}), 1);
    EXPECT_EQ(errors(), "tarvel-host: \"" + path("gone.wav") + "\" does not exist.\n");
    EXPECT_EQ(output(), "");
}

TEST_F(TarvelHostTest, WrongUseHasAStatusOfItsOwn)
{
    EXPECT_EQ(exitCodeOf({"--loud"}), 2);
    EXPECT_EQ(errors(), "tarvel-host: There is no option \"--loud\"; --help lists them.\n");
}

TEST_F(TarvelHostTest, HelpNeedsNoDisplay)
{
    EXPECT_EQ(exitCodeOf({"--help"}), 0);
    EXPECT_THAT(output(), StartsWith("Usage: tarvel-host"));
    EXPECT_EQ(errors(), "");
}

TEST_F(TarvelHostTest, SnapshotEndsWithThePathOfThePicture)
{
    REQUIRE_DISPLAY();
    const std::string picture = path("window.png");
    EXPECT_EQ(exitCodeOf(withTestView({"--snapshot", picture, SAMPLE_RECORDING})), 0) << errors();
    EXPECT_EQ(output(), picture + "\n");
    EXPECT_THAT(TemporaryFolder::contents(picture), StartsWith("\x89PNG"));
}

TEST_F(TarvelHostTest, ScaleMultipliesThePixels)
{
    REQUIRE_DISPLAY();
    const auto size = [this](const char* scale) {
        const std::string picture = path(std::string(scale) + ".png");
        EXPECT_EQ(exitCodeOf(withTestView({"--scale", scale, "--snapshot", picture})), 0);
        NSBitmapImageRep* const image = [NSBitmapImageRep
            imageRepWithData:[NSData
                                 dataWithContentsOfFile:[NSString
                                                            stringWithUTF8String:picture.c_str()]]];
        return std::pair([image pixelsWide], [image pixelsHigh]);
    };
    const auto once = size("1");
    const auto twice = size("2");
    EXPECT_GT(once.first, 0);
    EXPECT_EQ(twice.first, 2 * once.first);
    EXPECT_EQ(twice.second, 2 * once.second);
}

TEST_F(TarvelHostTest, SnapshotThatCannotBeWrittenFails)
{
    REQUIRE_DISPLAY();
    EXPECT_EQ(exitCodeOf(withTestView({"--snapshot", "/nowhere/a.png"})), 1);
    EXPECT_THAT(errors(), HasSubstr("tarvel-host: \"/nowhere/a.png\" cannot be written"));
}

// A word of the command line that the frameworks see is opened as a document, which ends in an
// alert that nobody answers.
TEST_F(TarvelHostTest, OpensARecordingAndQuitsByKey)
{
    REQUIRE_DISPLAY();
    startWithSample();
    expectEndByKey("super+q");
}

TEST_F(TarvelHostTest, EndsWhenItsWindowCloses)
{
    REQUIRE_DISPLAY();
    startWithSample();
    expectEndByKey("super+w");
}

// The view raises in every mouse-down.
TEST_F(TarvelHostTest, ExceptionInAnEditorIsReportedAndSurvived)
{
    REQUIRE_DISPLAY();
    start({"--bundle", ANGRY_VIEW_BUNDLE, SAMPLE_RECORDING});
    const std::string window = waitForWindowOf("sample.flac");
    ASSERT_NE(window, "") << errors();
    const std::string click = "xdotool mousemove --window " + window.substr(0, window.find('\n')) +
                              " 320 300 mousedown 1 sleep 0.1 mouseup 1";
    ASSERT_EQ(std::system(click.c_str()), 0);
    EXPECT_TRUE(gui_test::pumpUntil([this] {
        return errors().find("tarvel-host: TestException: do not touch") != std::string::npos;
    })) << errors();
    expectEndByKey("super+q");
}

TEST_F(TarvelHostTest, TerminationSignalEndsItAtOnce)
{
    REQUIRE_DISPLAY();
    startWithSample();
    kill(m_program.process(), SIGTERM);
    const int ended = status();
    EXPECT_TRUE(WIFSIGNALED(ended));
    EXPECT_EQ(WTERMSIG(ended), SIGTERM);
}

TEST_F(TarvelHostTest, MissingEditorStillShowsTheWindow)
{
    REQUIRE_DISPLAY();
    EXPECT_EQ(exitCodeOf({"--bundle", "/nowhere/Gone.bundle", "--snapshot", path("a.png")}), 0);
    EXPECT_TRUE(std::filesystem::exists(path("a.png")));
}
