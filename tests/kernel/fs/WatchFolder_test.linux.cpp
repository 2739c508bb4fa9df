#include "WatchFolder.h"

#include "WatchRecorder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

// What depends on inotify, the process's threads and descriptors, and mounts.
namespace {

namespace fs = std::filesystem;

std::size_t countEntries(const char* folder)
{
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::size_t openDescriptors() { return countEntries("/proc/self/fd"); }
std::size_t threads() { return countEntries("/proc/self/task"); }

std::vector<pid_t> threadsNamed(const std::string& wanted)
{
    std::vector<pid_t> found;
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == wanted) {
            found.push_back(std::stoi(task.path().filename()));
        }
    }
    return found;
}

/// Stops a thread inside a signal handler while it lives.
class HeldThread {
public:
    explicit HeldThread(pid_t thread)
    {
        EXPECT_EQ(pipe2(s_entered, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(s_release, O_CLOEXEC), 0);
        struct sigaction action {};
        action.sa_handler = hold;
        sigaction(SIGUSR1, &action, &m_before);
        EXPECT_EQ(syscall(SYS_tgkill, getpid(), thread, SIGUSR1), 0);
        char byte;
        EXPECT_EQ(read(s_entered[0], &byte, 1), 1);
    }
    ~HeldThread()
    {
        EXPECT_EQ(write(s_release[1], "", 1), 1);
        char byte;
        EXPECT_EQ(read(s_entered[0], &byte, 1), 1);
        sigaction(SIGUSR1, &m_before, nullptr);
        for (const int descriptor : {s_entered[0], s_entered[1], s_release[0], s_release[1]}) {
            close(descriptor);
        }
    }

private:
    static void hold(int)
    {
        char byte = 0;
        [[maybe_unused]] ssize_t count = write(s_entered[1], &byte, 1);
        count = read(s_release[0], &byte, 1);
        count = write(s_entered[1], &byte, 1);
    }

    static inline int s_entered[2];
    static inline int s_release[2];
    struct sigaction m_before {};
};

class LinuxWatch : public WatchTest {};

TEST_F(LinuxWatch, OneReaderServesAllWatchesAndEndsWithTheLast)
{
    const std::size_t descriptors = openDescriptors();
    std::thread([] {}).join(); // a sanitizer adds a thread of its own with the first
    const std::size_t before = threads();
    {
        RunningWatch first(m_folder);
        RunningWatch second(makeFolder("second"));
        EXPECT_TRUE(waitUntil([] { return threadsNamed("XeWatchHub").size() == 1; }));
        EXPECT_TRUE(waitUntil([] { return threadsNamed("XeWatchFolder").size() == 2; }));
        EXPECT_EQ(openDescriptors(), descriptors + 4) << "inotify, its stop event, two queues";
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(waitUntil([=] { return threads() == before; }));
}

// Lost events concern every watch: nobody knows whose they were.
TEST_F(LinuxWatch, AnOverflowTellsEveryWatch)
{
    RunningWatch busy(m_folder);
    RunningWatch idle(makeFolder("idle"));
    EXPECT_TRUE(waitUntil([] { return threadsNamed("XeWatchHub").size() == 1; }));
    int limit = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
    ASSERT_GT(limit, 0);
    if (limit > 100000) {
        GTEST_SKIP() << "the queue of " << limit << " events is too long to overflow";
    }
    {
        const HeldThread held(threadsNamed("XeWatchHub").at(0));
        const std::string name = m_folder / "entry";
        for (int events = 0; events < limit + 100; events += 2) {
            close(open(name.c_str(), O_CREAT | O_CLOEXEC, 0600));
            unlink(name.c_str());
        }
        EXPECT_EQ(busy.recorder.changes(), 0);
    }
    EXPECT_TRUE(busy.recorder.waitForChanges(1));
    EXPECT_TRUE(idle.recorder.waitForChanges(1));
    const int before = busy.recorder.changes();
    createFile(m_folder / "after");
    EXPECT_TRUE(busy.recorder.waitForChanges(before + 1));
}

TEST_F(LinuxWatch, SignalsInterruptNothing)
{
    RunningWatch running(m_folder);
    EXPECT_TRUE(waitUntil([] { return threadsNamed("XeWatchFolder").size() == 1; }));
    for (const char* const name : {"XeWatchHub", "XeWatchFolder"}) {
        EXPECT_TRUE(waitUntil([=] { return threadsNamed(name).size() == 1; }));
        const HeldThread held(threadsNamed(name).at(0));
    }
    createFile(m_folder / "a");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_EQ(running.recorder.ends(), 0);
}

// The kernel keeps the event back until the descriptor closes; a time-out looks at the path.
TEST_F(LinuxWatch, ADeletionHiddenByAnOpenDescriptorIsToldOnce)
{
    const int open = ::open(m_folder.c_str(), O_PATH | O_CLOEXEC);
    ASSERT_GE(open, 0);
    RunningWatch running(m_folder, 5);
    Fence fence(m_temporary / "fence");
    fs::remove(m_folder);
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_TRUE(fence.pass());
    close(open);
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(running.recorder.changes(), 1);
}

TEST_F(LinuxWatch, AFileLinkedInWithoutANameBeforeIsOneNotification)
{
    const int file = open(m_folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file < 0) {
        GTEST_SKIP() << "this file system has no files without names";
    }
    RunningWatch running(m_folder);
    Fence fence(m_temporary / "fence");
    const std::string self = "/proc/self/fd/" + std::to_string(file);
    ASSERT_EQ(linkat(AT_FDCWD, self.c_str(), AT_FDCWD, (m_folder / "a").c_str(), AT_SYMLINK_FOLLOW),
              0);
    close(file);
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(running.recorder.changes(), 1);
}

TEST_F(LinuxWatch, ManyWatchesFromManyThreadsLeaveNothingBehind)
{
    const std::size_t descriptors = openDescriptors();
    std::thread([] {}).join(); // a sanitizer adds a thread of its own with the first
    const std::size_t before = threads();
    std::vector<std::future<void>> users;
    for (int user = 0; user < 8; ++user) {
        users.push_back(std::async(std::launch::async, [this, user] {
            const fs::path folder = makeFolder("user" + std::to_string(user));
            for (int i = 0; i < 25; ++i) {
                RunningWatch running(folder);
                ASSERT_EQ(running.startResult, 0);
                if (i % 5 == 0) {
                    createFile(folder / std::to_string(i));
                    EXPECT_TRUE(running.recorder.waitForChanges(1));
                }
                running.watch->stopWatch(i % 2 == 0);
                EXPECT_TRUE(running.recorder.waitForEnd());
                running.watch->stopWatch(true);
                EXPECT_EQ(running.recorder.ends(), 1);
            }
        }));
    }
    for (auto& user : users) {
        user.get();
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(waitUntil([=] { return threads() == before; }));
}

TEST_F(LinuxWatch, WithoutDescriptorsNothingIsWatchedAndNothingLeaks)
{
    const auto prepare = [this] {
        return std::make_shared<WatchFolder>()->initWatch(wide(m_folder), 0);
    };
    EXPECT_EQ(prepare(), 0);
    std::vector<int> taken;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit low = limit;
    low.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
    for (int file; (file = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
        taken.push_back(file);
    }
    // It takes three: inotify, its stop event, the queue. Nothing is checked before they are free
    // again: the checks themselves may want some.
    XeResult results[4];
    for (XeResult& result : results) {
        result = prepare();
        close(taken.back());
        taken.pop_back();
    }
    for (const int file : taken) {
        close(file);
    }
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(results[0], static_cast<XeResult>(0x8004E011));
    EXPECT_EQ(results[1], static_cast<XeResult>(0x8004E011));
    EXPECT_EQ(results[2], static_cast<XeResult>(0x8004E011));
    EXPECT_EQ(results[3], 0);
}

/// Gives the calling thread, and those it starts from here on, mounts of their own.
bool ownMounts()
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

#define REQUIRE_OWN_MOUNTS()                                                                       \
    if (!ownMounts())                                                                              \
    GTEST_SKIP() << "only root may mount"

/// A tmpfs at a folder.
class Mounted {
public:
    explicit Mounted(const fs::path& folder) : m_folder(folder)
    {
        EXPECT_EQ(mount("tarvel-test", folder.c_str(), "tmpfs", 0, "size=1m"), 0);
    }
    ~Mounted() { unmount(MNT_DETACH); }

    bool unmount(int flags) { return umount2(m_folder.c_str(), flags) == 0; }

private:
    fs::path m_folder;
};

// No descriptor is held that would keep the volume busy.
TEST_F(LinuxWatch, UnmountingIsPossibleAndToldOnce)
{
    REQUIRE_OWN_MOUNTS();
    for (const int flags : {0, static_cast<int>(MNT_DETACH)}) {
        SCOPED_TRACE(flags);
        Mounted volume(m_folder);
        RunningWatch running(m_folder, 5);
        Fence fence(m_temporary / ("fence" + std::to_string(flags)));
        _XeString<wchar_t> mountPoint;
        EXPECT_EQ(running.watch->getMountPoint(mountPoint), 0);
        EXPECT_EQ(mountPoint, wide(m_folder));
        EXPECT_TRUE(volume.unmount(flags));
        EXPECT_TRUE(running.recorder.waitForChanges(1));
        EXPECT_TRUE(fence.pass());
        EXPECT_EQ(running.recorder.changes(), 1);
    }
}

TEST_F(LinuxWatch, AMountOverTheFolderIsNoEvent)
{
    REQUIRE_OWN_MOUNTS();
    RunningWatch running(m_folder);
    Fence fence(m_temporary / "fence");
    Mounted volume(m_folder);
    createFile(m_folder / "on the volume");
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(running.recorder.changes(), 0);
}

TEST_F(LinuxWatch, TheMountPointIsLookedUpOnceAndKept)
{
    REQUIRE_OWN_MOUNTS();
    Mounted volume(m_folder);
    fs::create_directory(m_folder / "inner");
    const auto watch = std::make_shared<WatchFolder>();
    ASSERT_EQ(watch->initWatch(wide(m_folder / "inner"), 0), 0);
    _XeString<wchar_t> mountPoint;
    EXPECT_EQ(watch->getMountPoint(mountPoint), 0);
    EXPECT_EQ(mountPoint, wide(m_folder));
    EXPECT_TRUE(volume.unmount(0));
    mountPoint.clear();
    EXPECT_EQ(watch->getMountPoint(mountPoint), 0);
    EXPECT_EQ(mountPoint, wide(m_folder));
}

using LinuxWatchDeathTest = LinuxWatch;

TEST_F(LinuxWatchDeathTest, ARefusedThreadIsReported)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto startWithoutThreads = [this] {
        const auto watch = std::make_shared<WatchFolder>();
        fs::permissions(m_temporary.path(), fs::perms(0755));
        if (watch->initWatch(wide(m_folder), 0) != 0) {
            _exit(1);
        }
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NPROC, &none);
        if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) {
            _exit(2);
        }
        _exit(watch->startWatch() == static_cast<XeResult>(0x8004E00F) ? 0 : 3);
    };
    EXPECT_EXIT(startWithoutThreads(), testing::ExitedWithCode(0), "");
}

} // namespace
