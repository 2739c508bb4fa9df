#include "WatchFolder.h"

#include "WatchRecorder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <iterator>
#include <latch>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr auto kAlreadyStarted = static_cast<XeResult>(0x8004E002);
constexpr auto kNotInitialised = static_cast<XeResult>(0x8004E009);
constexpr auto kNotWatchable = static_cast<XeResult>(0x8004E011);

class FolderWatch : public WatchTest {};

TEST_F(FolderWatch, AFileWrittenIntoTheFolderIsOneNotificationWithOneEmptyEntry)
{
    RunningWatch running(m_folder);
    EXPECT_EQ(running.initResult, 0);
    EXPECT_EQ(running.startResult, 0);
    Fence fence(m_temporary / "fence");
    createFile(m_folder / "a");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(running.recorder.changes(), 1);
    EXPECT_EQ(running.recorder.malformed(), 0);
    EXPECT_EQ(running.recorder.ends(), 0);
    EXPECT_EQ(running.recorder.watch(), running.watch.get());
}

TEST_F(FolderWatch, ChangesBetweenPreparingAndStartingAreTold)
{
    const auto watch = std::make_shared<WatchFolder>();
    WatchRecorder recorder;
    std::shared_ptr<void> handle;
    ASSERT_EQ(watch->initWatch(wide(m_folder), kLongCycleMs), 0);
    createFile(m_folder / "a");
    watch->addObserver(recorder.observer(), handle);
    EXPECT_EQ(watch->startWatch(), 0);
    EXPECT_TRUE(recorder.waitForChanges(1));
    watch->stopWatch(true);
}

// What is done to a folder, and the notifications that a watch of it gives. Where that takes
// several calls of the system, a busy machine may let each be told by itself.
struct Row {
    const char* what;
    void (*prepare)(const fs::path& folder);
    void (*act)(const fs::path& folder);
    int notifications;
    int mostWhenBusy = notifications;
};

void nothing(const fs::path&) {}
void child(const fs::path& folder) { createFile(folder / "child"); }
void subFolder(const fs::path& folder) { fs::create_directory(folder / "sub"); }
fs::path beside(const fs::path& folder) { return folder.parent_path() / "beside"; }

void touch(const fs::path& path) { utimensat(AT_FDCWD, path.c_str(), nullptr, 0); }

void append(const fs::path& file) { std::ofstream(file, std::ios::app) << "more"; }

// clang-format off
const Row kRows[] = {
    {"create, write, close", nothing, child, 1},
    {"overwrite a child", child, [](const fs::path& f) { std::ofstream(f / "child") << "new"; }, 0},
    {"append to a child", child, [](const fs::path& f) { append(f / "child"); }, 0},
    {"truncate a child", child, [](const fs::path& f) { fs::resize_file(f / "child", 0); }, 0},
    {"chmod a child", child, [](const fs::path& f) { chmod((f / "child").c_str(), 0600); }, 0},
    {"touch a child", child,
     [](const fs::path& f) { touch(f / "child"); }, 0},
    {"mkdir", nothing, subFolder, 1},
    {"rmdir", subFolder, [](const fs::path& f) { fs::remove(f / "sub"); }, 1},
    {"unlink", child, [](const fs::path& f) { fs::remove(f / "child"); }, 1},
    {"link", child, [](const fs::path& f) { fs::create_hard_link(f / "child", f / "link"); }, 1},
    {"symlink", nothing, [](const fs::path& f) { fs::create_symlink("nowhere", f / "link"); }, 1},
    {"create in a sub-folder", subFolder, [](const fs::path& f) { createFile(f / "sub" / "a"); }, 0},
    {"rename inside", child, [](const fs::path& f) { fs::rename(f / "child", f / "other"); }, 1},
    {"move in", [](const fs::path& f) { createFile(beside(f)); },
     [](const fs::path& f) { fs::rename(beside(f), f / "child"); }, 1},
    {"move out", child, [](const fs::path& f) { fs::rename(f / "child", beside(f)); }, 1},
    {"save through a temporary file", child,
     [](const fs::path& f) { createFile(f / "tmp"); fs::rename(f / "tmp", f / "child"); }, 1, 2},
    {"chmod the folder", nothing, [](const fs::path& f) { chmod(f.c_str(), 0700); }, 1},
    {"touch the folder", nothing,
     [](const fs::path& f) { touch(f); }, 1},
    {"rename the folder", nothing, [](const fs::path& f) { fs::rename(f, beside(f)); }, 1},
    {"rename an ancestor", nothing,
     [](const fs::path& f) { fs::rename(f.parent_path(), f.parent_path() += "-moved"); }, 0},
    {"remove the folder", nothing, [](const fs::path& f) { fs::remove(f); }, 1},
    {"remove the folder with its contents", child, [](const fs::path& f) { fs::remove_all(f); }, 1, 2},
    {"rename another folder over it", [](const fs::path& f) { fs::create_directory(beside(f)); },
     [](const fs::path& f) { fs::rename(beside(f), f); }, 1},
};
// clang-format on

TEST_F(FolderWatch, EachIsolatedChangeIsOneNotificationOrNone)
{
    Fence fence(m_temporary / "fence");
    int number = 0;
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.what);
        const fs::path folder = makeFolder("row" + std::to_string(++number) + "/watched");
        row.prepare(folder);
        RunningWatch running(folder);
        row.act(folder);
        EXPECT_TRUE(running.recorder.waitForChanges(row.notifications));
        EXPECT_TRUE(fence.pass());
        EXPECT_GE(running.recorder.changes(), row.notifications);
        EXPECT_LE(running.recorder.changes(), row.mostWhenBusy);
        EXPECT_EQ(running.recorder.ends(), 0);
    }
}

// Time-outs look for what events do not tell; whoever comes first, the other adds nothing.
TEST_F(FolderWatch, ALostFolderIsToldOnceByItsEventOrByATimeOut)
{
    const char* const losses[] = {"rename the folder", "remove the folder",
                                  "rename another folder over it"};
    int number = 0;
    for (const Row& row : kRows) {
        if (std::find(std::begin(losses), std::end(losses), std::string(row.what)) ==
            std::end(losses)) {
            continue;
        }
        SCOPED_TRACE(row.what);
        const fs::path folder = makeFolder("row" + std::to_string(++number) + "/watched");
        Fence fence(m_temporary / ("fence" + std::to_string(number)));
        row.prepare(folder);
        RunningWatch running(folder, 1);
        row.act(folder);
        EXPECT_TRUE(running.recorder.waitForChanges(1));
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(fence.pass()); // several cycles long
        }
        EXPECT_EQ(running.recorder.changes(), 1);
    }
    EXPECT_EQ(number, 3);
}

TEST_F(FolderWatch, FollowsARenamedFolder)
{
    RunningWatch running(m_folder);
    EXPECT_TRUE(running.watch->followsPath());
    fs::rename(m_folder, m_temporary / "moved");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_FALSE(running.watch->followsPath());
    createFile(m_temporary / "moved" / "a");
    EXPECT_TRUE(running.recorder.waitForChanges(2));
    fs::remove_all(m_temporary / "moved");
    EXPECT_TRUE(running.recorder.waitForChanges(3));
}

// Nobody gets an event when an ancestor goes elsewhere; the next time-out finds it out.
TEST_F(FolderWatch, ARenamedAncestorIsNoticedAtATimeOut)
{
    const fs::path folder = makeFolder("outer/watched");
    RunningWatch running(folder, 5);
    fs::rename(m_temporary / "outer", m_temporary / "moved");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    Fence fence(m_temporary / "fence");
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(running.recorder.changes(), 1);
}

TEST_F(FolderWatch, OneFolderThroughTwoPathsIsTwoWatches)
{
    fs::create_directory_symlink(m_folder, m_temporary / "link");
    RunningWatch direct(m_folder);
    {
        RunningWatch linked(m_temporary / "link");
        createFile(m_folder / "a");
        EXPECT_TRUE(direct.recorder.waitForChanges(1));
        EXPECT_TRUE(linked.recorder.waitForChanges(1));
    }
    createFile(m_folder / "b");
    EXPECT_TRUE(direct.recorder.waitForChanges(2));
}

// Changes that come while the observer runs make exactly one further notification.
TEST_F(FolderWatch, ChangesDuringAnObserverAreOneNotification)
{
    Fence fence(m_temporary / "fence");
    const auto watch = std::make_shared<WatchFolder>();
    std::latch entered(1);
    std::latch leave(1);
    std::atomic<int> calls = 0;
    std::shared_ptr<void> handle;
    ASSERT_EQ(watch->initWatch(wide(m_folder), kLongCycleMs), 0);
    watch->addObserver(
        [&](auto, auto changes) {
            if (changes != nullptr && ++calls == 1) {
                entered.count_down();
                leave.wait();
            }
        },
        handle);
    watch->startWatch();
    createFile(m_folder / "a");
    entered.wait();
    for (const char* const name : {"b", "c", "d"}) {
        createFile(m_folder / name);
        EXPECT_TRUE(fence.pass());
    }
    leave.count_down();
    EXPECT_TRUE(waitUntil([&] { return calls == 2; }));
    EXPECT_TRUE(fence.pass());
    EXPECT_EQ(calls, 2);
    watch->stopWatch(true);
}

TEST_F(FolderWatch, ABurstEndsWithANotificationAfterItsLastChange)
{
    RunningWatch running(m_folder);
    std::atomic<bool> last = false;
    std::atomic<int> afterLast = 0;
    std::shared_ptr<void> handle;
    running.watch->addObserver([&](auto, auto) { afterLast += last; }, handle);
    for (int i = 0; i < 1000; ++i) {
        last = i == 999;
        createFile(m_folder / std::to_string(i));
    }
    EXPECT_TRUE(waitUntil([&] { return afterLast > 0; }));
    running.watch->stopWatch(true);
}

// Stopping ------------------------------------------------------------------------------------

TEST_F(FolderWatch, StoppingWithWaitTellsTheEndOnceAndNothingAfterwards)
{
    Fence fence(m_temporary / "fence");
    RunningWatch running(m_folder);
    std::atomic<bool> done = false;
    auto busy = std::async(std::launch::async, [&] {
        for (int i = 0; !done; ++i) {
            createFile(m_folder / std::to_string(i % 50));
            fs::remove(m_folder / std::to_string(i % 50));
        }
    });
    EXPECT_TRUE(running.recorder.waitForChanges(3));
    EXPECT_EQ(running.watch->stopWatch(true), 0);
    EXPECT_EQ(running.recorder.ends(), 1);
    EXPECT_TRUE(running.watch->hasEnded());
    const int changes = running.recorder.changes();
    EXPECT_TRUE(fence.pass());
    done = true;
    busy.get();
    EXPECT_EQ(running.recorder.changes(), changes);
    EXPECT_EQ(running.watch->stopWatch(true), 0);
    EXPECT_EQ(running.watch->stopWatch(false), 0);
    EXPECT_EQ(running.recorder.ends(), 1);
}

// The worker does not sleep its cycle out.
TEST_F(FolderWatch, StoppingDoesNotWaitForTheCycle)
{
    RunningWatch running(m_folder);
    const auto start = std::chrono::steady_clock::now();
    running.watch->stopWatch(true);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(FolderWatch, StoppingWithoutWaitTellsTheEndSoon)
{
    RunningWatch running(m_folder);
    EXPECT_EQ(running.watch->stopWatch(false), 0);
    EXPECT_TRUE(running.recorder.waitForEnd());
    running.watch->stopWatch(true);
    EXPECT_EQ(running.recorder.ends(), 1);
}

TEST_F(FolderWatch, TheEndIsToldOnceWhenTheFolderIsGone)
{
    RunningWatch running(m_folder);
    fs::remove(m_folder);
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    running.watch->stopWatch(true);
    EXPECT_EQ(running.recorder.ends(), 1);
}

TEST_F(FolderWatch, StoppingWithWaitInsideAnObserverDoesNotWait)
{
    const auto watch = std::make_shared<WatchFolder>();
    WatchRecorder recorder;
    std::shared_ptr<void> handle, stopper;
    std::promise<XeResult> stopped;
    ASSERT_EQ(watch->initWatch(wide(m_folder), kLongCycleMs), 0);
    watch->addObserver(recorder.observer(), handle);
    watch->addObserver(
        [&](auto self, auto changes) {
            EXPECT_TRUE(WatchFolder::onWorker());
            if (changes != nullptr) {
                stopped.set_value(self->stopWatch(true));
            }
        },
        stopper);
    watch->startWatch();
    EXPECT_FALSE(WatchFolder::onWorker());
    createFile(m_folder / "a");
    EXPECT_EQ(stopped.get_future().get(), 0);
    EXPECT_TRUE(recorder.waitForEnd());
    watch->stopWatch(true);
    EXPECT_EQ(recorder.changes(), 1);
    EXPECT_EQ(recorder.ends(), 1);
}

TEST_F(FolderWatch, ManyThreadsMayStopOneWatch)
{
    RunningWatch running(m_folder);
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            running.watch->stopWatch(true);
            return running.recorder.ends();
        }));
    }
    for (auto& thread : threads) {
        EXPECT_EQ(thread.get(), 1) << "each returns after the end";
    }
}

TEST_F(FolderWatch, StoppingWhatWasNotStartedClosesIt)
{
    const auto watch = std::make_shared<WatchFolder>();
    ASSERT_EQ(watch->initWatch(wide(m_folder), 0), 0);
    EXPECT_EQ(watch->stopWatch(false), 0);
    EXPECT_EQ(watch->initWatch(wide(m_folder), 0), kAlreadyStarted);
    EXPECT_EQ(watch->stopWatch(true), 0);
    EXPECT_EQ(watch->startWatch(), kNotInitialised);
}

// Lifetime ------------------------------------------------------------------------------------

TEST_F(FolderWatch, AWatchDroppedAtOnceAfterStartingRuns)
{
    for (int i = 0; i < 50; ++i) {
        WatchRecorder recorder;
        std::weak_ptr<WatchFolder> weak;
        {
            const auto watch = std::make_shared<WatchFolder>();
            std::shared_ptr<void> handle;
            weak = watch;
            ASSERT_EQ(watch->initWatch(wide(m_folder), kLongCycleMs), 0);
            watch->addObserver(recorder.observer(), handle);
            ASSERT_EQ(watch->startWatch(), 0);
        }
        createFile(m_folder / std::to_string(i));
        EXPECT_TRUE(recorder.waitForChanges(1));
        ASSERT_NE(weak.lock(), nullptr);
        weak.lock()->stopWatch(false);
        EXPECT_TRUE(recorder.waitForEnd());
        EXPECT_TRUE(waitUntil([&] { return weak.expired(); }));
    }
}

TEST_F(FolderWatch, TheLastReferenceMayBeDroppedByTheWorker)
{
    for (int i = 0; i < 50; ++i) {
        auto watch = std::make_shared<WatchFolder>();
        const std::weak_ptr<WatchFolder> weak = watch;
        std::shared_ptr<void> handle;
        ASSERT_EQ(watch->initWatch(wide(m_folder), kLongCycleMs), 0);
        watch->addObserver([](auto, auto) {}, handle);
        watch->startWatch();
        watch->stopWatch(false);
        watch.reset();
        EXPECT_TRUE(waitUntil([&] { return weak.expired(); }));
    }
}

TEST_F(FolderWatch, StartingWithoutAnOwnerThrows)
{
    WatchFolder watch;
    ASSERT_EQ(watch.initWatch(wide(m_folder), 0), 0);
    EXPECT_THROW(watch.startWatch(), std::bad_weak_ptr);
}

// Observers -----------------------------------------------------------------------------------

TEST_F(FolderWatch, ObserversMayAddAndRemoveInsideACallback)
{
    RunningWatch running(m_folder);
    WatchRecorder added;
    std::shared_ptr<void> once, addedHandle;
    std::atomic<int> calls = 0;
    running.watch->addObserver(
        [&](auto self, auto changes) {
            ++calls;
            if (changes != nullptr) {
                EXPECT_EQ(self->removeObserver(once), 0);
                EXPECT_EQ(self->addObserver(added.observer(), addedHandle), 0);
            }
        },
        once);
    createFile(m_folder / "a");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
    createFile(m_folder / "b");
    EXPECT_TRUE(added.waitForChanges(1));
    running.watch->stopWatch(true);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(added.ends(), 1);
}

TEST_F(FolderWatch, RemovingNeedsAHandleOfThisWatch)
{
    RunningWatch running(m_folder);
    RunningWatch other(m_folder);
    std::shared_ptr<void> null;
    EXPECT_EQ(running.watch->removeObserver(null), static_cast<XeResult>(0x80000008));
    EXPECT_EQ(running.watch->removeObserver(other.handle), static_cast<XeResult>(0x80000008));
    EXPECT_EQ(running.watch->addObserver(nullptr, null), static_cast<XeResult>(0x80000008));
    EXPECT_EQ(null, nullptr);
    EXPECT_EQ(running.watch->removeObserver(running.handle), 0);
    EXPECT_EQ(running.handle, nullptr);
}

TEST_F(FolderWatch, IsNotWatchingUnlessItRunsAndHasObservers)
{
    const auto watch = std::make_shared<WatchFolder>();
    WatchRecorder recorder;
    std::shared_ptr<void> handle;
    EXPECT_TRUE(watch->notWatching());
    watch->initWatch(wide(m_folder), kLongCycleMs);
    watch->addObserver(recorder.observer(), handle);
    EXPECT_TRUE(watch->notWatching());
    watch->startWatch();
    EXPECT_FALSE(watch->notWatching());
    watch->removeObserver(handle);
    EXPECT_TRUE(watch->notWatching());
    watch->addObserver(recorder.observer(), handle);
    EXPECT_FALSE(watch->notWatching());
    watch->stopWatch(false);
    EXPECT_TRUE(watch->notWatching());
    watch->stopWatch(true);
    EXPECT_TRUE(watch->notWatching());
}

// Result codes --------------------------------------------------------------------------------

TEST_F(FolderWatch, IsPreparedAndStartedOnce)
{
    RunningWatch running(m_folder);
    EXPECT_EQ(running.watch->initWatch(wide(m_folder), 0), kAlreadyStarted);
    EXPECT_EQ(running.watch->startWatch(), kAlreadyStarted);
    running.watch->stopWatch(true);
    EXPECT_EQ(running.watch->startWatch(), kNotInitialised);
    EXPECT_EQ(std::make_shared<WatchFolder>()->startWatch(), kNotInitialised);
}

TEST_F(FolderWatch, OnlyFoldersAreWatched)
{
    createFile(m_folder / "file");
    const auto watch = std::make_shared<WatchFolder>();
    const _XeString<wchar_t> unencodable = wide(m_folder) + L"/\xD800";
    EXPECT_EQ(watch->initWatch(wide(m_folder / "file"), 7), kNotWatchable);
    EXPECT_EQ(watch->initWatch(wide(m_folder / "absent"), 7), kNotWatchable);
    EXPECT_EQ(watch->initWatch(unencodable, 7), kNotWatchable);
    EXPECT_EQ(watch->initWatch(L"", 7), kNotWatchable);
    EXPECT_EQ(watch->startWatch(), kNotInitialised);
    _XeString<wchar_t> path = L"before";
    int cycle = -1;
    EXPECT_EQ(watch->getWatch(path, cycle), 0);
    EXPECT_EQ(path, L"");
    EXPECT_EQ(cycle, 2000);
    EXPECT_EQ(watch->initWatch(wide(m_folder), 7), 0) << "a failed one can be prepared again";
}

TEST_F(FolderWatch, AFolderWithoutReadRightIsNotWatched)
{
    fs::permissions(m_temporary.path(), fs::perms(0755));
    fs::permissions(m_folder, fs::perms(0311));
    const bool root = geteuid() == 0;
    ASSERT_EQ(root ? seteuid(65534) : 0, 0);
    const auto watch = std::make_shared<WatchFolder>();
    EXPECT_EQ(watch->initWatch(wide(m_folder), 0), kNotWatchable);
    ASSERT_EQ(root ? seteuid(0) : 0, 0);
}

TEST_F(FolderWatch, TheCycleIsKeptUnlessNegative)
{
    const auto watch = std::make_shared<WatchFolder>();
    _XeString<wchar_t> path;
    int cycle = 0;
    EXPECT_EQ(watch->initWatch(wide(m_folder), 0), 0);
    watch->getWatch(path, cycle);
    EXPECT_EQ(path, wide(m_folder));
    EXPECT_EQ(cycle, 2000) << "0 keeps the default";
    EXPECT_EQ(watch->setCycle(-1), kNotWatchable);
    watch->getWatch(path, cycle);
    EXPECT_EQ(cycle, 2000);
    EXPECT_EQ(watch->setCycle(0), 0);
    watch->getWatch(path, cycle);
    EXPECT_EQ(cycle, 0);
    watch->stopWatch(false);
    watch->getWatch(path, cycle);
    EXPECT_EQ(cycle, 1);
    EXPECT_EQ(RunningWatch(m_folder, 123).watch->getWatch(path, cycle), 0);
}

TEST_F(FolderWatch, ACycleOfZeroStillTellsChanges)
{
    RunningWatch running(m_folder);
    running.watch->setCycle(0);
    createFile(m_folder / "a");
    EXPECT_TRUE(running.recorder.waitForChanges(1));
}

TEST_F(FolderWatch, TellsTheMountPointOfItsVolume)
{
    const auto watch = std::make_shared<WatchFolder>();
    _XeString<wchar_t> mountPoint = L"before";
    EXPECT_EQ(watch->getMountPoint(mountPoint), kNotInitialised);
    EXPECT_EQ(mountPoint, L"before");
    ASSERT_EQ(watch->initWatch(L"/", 0), 0);
    EXPECT_EQ(watch->getMountPoint(mountPoint), 0);
    EXPECT_EQ(mountPoint, L"/");
}

} // namespace
