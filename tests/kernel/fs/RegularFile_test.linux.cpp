#include "fs/RegularFile.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace {

/// Another program that has a lease on a file, as servers of shares have, and gives it back when
/// somebody wants the file.
class Leaseholder {
public:
    explicit Leaseholder(const std::string& path)
    {
        int ready[2] = {};
        if (pipe(ready) != 0) {
            return;
        }
        m_process = fork();
        if (m_process == 0) {
            hold(path, ready[1]);
        }
        close(ready[1]);
        char byte = 0;
        m_holds = read(ready[0], &byte, 1) == 1;
        close(ready[0]);
    }
    ~Leaseholder() { gaveBack(); }
    Leaseholder(const Leaseholder&) = delete;
    Leaseholder& operator=(const Leaseholder&) = delete;

    explicit operator bool() const { return m_holds; }

    /// Waits for its end; true when it was asked for the file.
    bool gaveBack()
    {
        int status = -1;
        const bool ended = m_process > 0 && waitpid(m_process, &status, 0) == m_process;
        m_process = -1;
        return ended && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    [[noreturn]] static void hold(const std::string& path, int ready)
    {
        constexpr unsigned kLimitSeconds = 20;

        sigset_t asked;
        sigemptyset(&asked);
        sigaddset(&asked, SIGIO);
        sigprocmask(SIG_BLOCK, &asked, nullptr);
        const Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC));
        if (fcntl(file.get(), F_SETLEASE, F_WRLCK) != 0) {
            _exit(1);
        }
        alarm(kLimitSeconds);
        int signal = 0;
        const bool told = write(ready, "r", 1) == 1 && sigwait(&asked, &signal) == 0;
        fcntl(file.get(), F_SETLEASE, F_UNLCK);
        _exit(told ? 0 : 2);
    }

    pid_t m_process = -1;
    bool m_holds = false;
};

TEST(LeasedFile, IsWaitedForUntilItIsFree)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("file", "bytes");
    for (const int flags : {O_RDONLY, O_WRONLY}) {
        Leaseholder other(path);
        if (!other) {
            GTEST_SKIP() << "the file system of the temporary folder has no leases";
        }
        EXPECT_TRUE(openRegularFile(path.c_str(), flags));
        EXPECT_TRUE(other.gaveBack());
    }
}

} // namespace
