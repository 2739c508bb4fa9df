#include "fs/DiskService.linux.h"

#include "OpenDescriptors.h"
#include "ProgramBeside.linux.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

/// A program that tells by a line of output that it is ready. It is ended with this object.
class Server {
public:
    explicit Server(std::vector<std::string> arguments)
    {
        int output[2] = {};
        EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
        m_process = fork();
        if (m_process == 0) {
            std::vector<char*> pointers;
            for (std::string& argument : arguments) {
                pointers.push_back(argument.data());
            }
            pointers.push_back(nullptr);
            prctl(PR_SET_PDEATHSIG, SIGTERM); // a crashed test leaves none behind
            dup2(output[1], STDOUT_FILENO);
            dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
            execvp(pointers[0], pointers.data());
            _exit(127);
        }
        close(output[1]);
        constexpr int kLimitMs = 30'000;
        char character = 0;
        pollfd line = {output[0], POLLIN, 0};
        while (character != '\n' && poll(&line, 1, kLimitMs) == 1 &&
               read(output[0], &character, 1) == 1) {
        }
        m_ready = character == '\n';
        close(output[0]);
    }
    ~Server()
    {
        kill(m_process, SIGTERM);
        waitpid(m_process, nullptr, 0);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    explicit operator bool() const { return m_ready; }

private:
    pid_t m_process = -1;
    bool m_ready = false;
};

/// Points this process at another system bus while it lives.
class SystemBus {
public:
    explicit SystemBus(const std::string& address)
    {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    }
    ~SystemBus() { unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;
};

/// A private system bus with a disk service that notes what is asked of it.
class DiskServiceTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (std::system("/usr/bin/python3 -c 'import dbusmock, gi' 2>/dev/null") != 0) {
            GTEST_SKIP() << "python3-dbusmock is not installed";
        }
        m_bus = std::make_unique<Server>(
            std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                     "--print-address=1", "--address=" + m_address});
        ASSERT_TRUE(*m_bus) << "no dbus-daemon";
        m_service = std::make_unique<Server>(std::vector<std::string>{
            "/usr/bin/python3", besideThisProgram("udisks_mock.py"), m_folder.path("log")});
        ASSERT_TRUE(*m_service) << "the service did not start";
    }

    /// Method and arguments of each call, in order.
    std::vector<std::string> calls() const
    {
        const std::string log = TemporaryFolder::contents(m_folder.path("log"));
        const std::regex call(R"((Unmount|Eject) \{.*\})");
        std::vector<std::string> calls;
        for (std::sregex_iterator at(log.begin(), log.end(), call), end; at != end; ++at) {
            calls.push_back(at->str());
        }
        return calls;
    }

    const TemporaryFolder m_folder;
    const std::string m_address = "unix:path=" + m_folder.path("bus");
    const SystemBus m_systemBus{m_address};
    std::unique_ptr<Server> m_bus;
    std::unique_ptr<Server> m_service;
};

constexpr char kUnmount[] = R"(Unmount {"auth.no_user_interaction": True})";
constexpr char kEject[] = R"(Eject {"auth.no_user_interaction": True})";

TEST_F(DiskServiceTest, UnmountsAndThenEjectsTheMedium)
{
    EXPECT_TRUE(diskService::eject("/mnt/card 2"));
    EXPECT_EQ(calls(), (std::vector<std::string>{kUnmount, kEject}));
}

TEST_F(DiskServiceTest, OnlyUnmountsWhereTheDriveDoesNotEject)
{
    EXPECT_TRUE(diskService::eject("/mnt/disk"));
    EXPECT_TRUE(diskService::eject("/mnt/image")); // has no drive
    EXPECT_EQ(calls(), (std::vector<std::string>{kUnmount, kUnmount}));
}

TEST_F(DiskServiceTest, DoesNotEjectWhatCannotBeUnmounted)
{
    EXPECT_FALSE(diskService::eject("/mnt/busy"));
    EXPECT_EQ(calls(), std::vector<std::string>{kUnmount});
}

TEST_F(DiskServiceTest, TouchesNothingForAnotherPath)
{
    for (const char* path : {"/mnt/a card/folder", "/mnt", "/", "", "/mnt/a card/"}) {
        EXPECT_FALSE(diskService::eject(path)) << path;
    }
    EXPECT_EQ(calls(), std::vector<std::string>());
}

TEST_F(DiskServiceTest, EndsWithTheServiceOrTheBusGone)
{
    m_service.reset();
    EXPECT_FALSE(diskService::eject("/mnt/disk"));
    m_bus.reset();
    EXPECT_FALSE(diskService::eject("/mnt/disk"));
}

// GLib opens some descriptors of its own at the first call, and its thread lets go of the last
// parts of a connection.
TEST_F(DiskServiceTest, LeavesNoConnectionOpen)
{
    constexpr int kTimes = 10;
    EXPECT_TRUE(diskService::eject("/mnt/disk"));
    const std::size_t before = openDescriptors();
    for (int i = 0; i < kTimes; ++i) {
        EXPECT_TRUE(diskService::eject("/mnt/disk"));
    }
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (openDescriptors() > before && std::chrono::steady_clock::now() < limit) {
        std::this_thread::yield();
    }
    EXPECT_LE(openDescriptors(), before);
}

TEST(DiskService, WithoutASystemBusFails)
{
    const SystemBus none("unix:path=/no such bus");
    EXPECT_FALSE(diskService::eject("/mnt/disk"));
}

} // namespace
