#include "fs/ChildProcess.linux.h"

#include "ChangedEnvironment.h"
#include "InChild.h"
#include "OpenDescriptors.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <signal.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Runs a shell's command in a folder; what it printed into the file "out" there.
class ChildProcess : public testing::Test {
protected:
    int run(const std::string& command) const
    {
        return runChildProcess({"/bin/sh", "-c", command}, m_folder.path());
    }
    std::string outputOf(const std::string& command) const
    {
        EXPECT_EQ(run("{ " + command + "; } >out 2>&1"), 0);
        return TemporaryFolder::contents(m_folder.path("out"));
    }

    const TemporaryFolder m_folder;
};

TEST_F(ChildProcess, GivesTheExitStatus)
{
    for (const int status : {0, 1, 12, 127, 255}) {
        EXPECT_EQ(run("exit " + std::to_string(status)), status);
    }
}

TEST_F(ChildProcess, ThatDoesNotStartHasNone)
{
    m_folder.write("not executable", "x");
    EXPECT_EQ(runChildProcess({"/no such program"}, ""), -1);
    EXPECT_EQ(runChildProcess({m_folder.path("not executable")}, ""), -1);
    EXPECT_EQ(runChildProcess({m_folder.path()}, ""), -1);
    EXPECT_EQ(runChildProcess({""}, ""), -1);
    EXPECT_EQ(runChildProcess({"true"}, ""), -1); // not searched for
    EXPECT_EQ(runChildProcess({"/bin/true"}, m_folder.path("absent")), -1);
    EXPECT_EQ(runChildProcess({"/bin/true"}, m_folder.path("not executable")), -1);
    EXPECT_EQ(runChildProcess({"/bin/true"}, ""), 0);
}

TEST_F(ChildProcess, ThatIsEndedByASignalHasNone)
{
    EXPECT_EQ(run("kill -TERM $$"), -1);
    EXPECT_EQ(run("kill -KILL $$"), -1);
}

TEST_F(ChildProcess, GetsItsArgumentsAsTheyAre)
{
    const std::vector<std::string> arguments = {
        "/bin/sh", "-c", R"(printf '%s|' "$@" >out)", "sh", "a b", "", "$HOME", "*", "'\"",
        "\xE9",    "-x"};
    EXPECT_EQ(runChildProcess(arguments, m_folder.path()), 0);
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("out")), "a b||$HOME|*|'\"|\xE9|-x|");
}

TEST_F(ChildProcess, RunsInItsFolder)
{
    EXPECT_EQ(outputOf("pwd -P"), m_folder.path().native() + "\n");
    EXPECT_EQ(runChildProcess({"/bin/sh", "-c", "[ . -ef \"$0\" ]",
                               "/proc/" + std::to_string(getpid()) + "/cwd"},
                              ""),
              0);
}

TEST_F(ChildProcess, HasNobodyToAsk)
{
    EXPECT_EQ(outputOf("cat"), "");
    EXPECT_EQ(run("exec </dev/tty"), 2); // the shell's status when it cannot open a file
    EXPECT_EQ(outputOf("echo said; echo so >&2"), "said\nso\n");
    // Its own session: number, name, state, parent, group, session.
    EXPECT_EQ(run("test $(cut -d' ' -f6 /proc/$$/stat) = $$"), 0);
}

TEST_F(ChildProcess, HasTheEnvironmentButForTheOptionsOfZip)
{
    ChangedEnvironment environment;
    for (const char* name : {"ZIP", "ZIPOPT", "UNZIP", "UNZIPOPT"}) {
        environment.set(name, "-x");
    }
    environment.set("LC_ALL", "POSIX");
    environment.set("ZIPPER", "kept");
    environment.set("TARVEL_TEST", "a\nb");
    const std::string variables = '\n' + outputOf("env");
    EXPECT_THAT(variables, HasSubstr("\nLC_ALL=C.UTF-8\n"));
    EXPECT_THAT(variables, Not(HasSubstr("POSIX")));
    EXPECT_THAT(variables, HasSubstr("\nZIPPER=kept\n"));
    EXPECT_THAT(variables, HasSubstr("\nTARVEL_TEST=a\nb\n"));
    for (const char* dropped : {"\nZIP=", "\nZIPOPT=", "\nUNZIP=", "\nUNZIPOPT="}) {
        EXPECT_THAT(variables, Not(HasSubstr(dropped)));
    }
}

TEST_F(ChildProcess, StartsWithDefaultSignals)
{
    inChild([&] {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, nullptr);
        signal(SIGPIPE, SIG_IGN);
        signal(SIGINT, SIG_IGN);
        const std::string status = outputOf("cat /proc/self/status");
        EXPECT_THAT(status, HasSubstr("SigBlk:\t0000000000000000"));
        EXPECT_THAT(status, ContainsRegex("SigIgn:\t[0-9a-f]{8}80000000\n")); // 1 to 31
        EXPECT_EQ(run("kill -TERM $$; sleep 100"), -1);
    });
}

void doNothing(int) {}

TEST_F(ChildProcess, IsWaitedForThroughInterruptions)
{
    inChild([&] {
        struct sigaction action {};
        action.sa_handler = doNothing; // without SA_RESTART
        sigaction(SIGUSR1, &action, nullptr);
        const std::string parent = std::to_string(getpid());
        EXPECT_EQ(run("for i in 1 2 3; do kill -USR1 " + parent + "; sleep 0.05; done; exit 7"), 7);
    });
}

// The system throws the status away then.
TEST_F(ChildProcess, OfAProcessThatIgnoresItsChildrenHasNoStatus)
{
    inChild([&] {
        signal(SIGCHLD, SIG_IGN);
        EXPECT_EQ(run("exit 0"), -1);
    });
}

TEST_F(ChildProcess, InheritsNoDescriptor)
{
    constexpr int kNumber = 123;
    ASSERT_EQ(dup2(STDERR_FILENO, kNumber), kNumber); // not close-on-exec
    const std::size_t before = openDescriptors();
    EXPECT_EQ(run("test -e /proc/$$/fd/2"), 0);
    EXPECT_EQ(run("test -e /proc/$$/fd/123"), 1);
    EXPECT_EQ(openDescriptors(), before);
    close(kNumber);
}

TEST_F(ChildProcess, StartsAlsoWithClosedStandardStreams)
{
    inChild([&] {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        const bool right = run("exit 3") == 3 && run("cat && echo x && echo y >&2") == 0;
        _exit(right ? 0 : 1);
    });
}

} // namespace
