#include "XeFileSystemManager.h"

#include "IFileSystem.h"
#include "WatchRecorder.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <atomic>
#include <future>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

constexpr auto kFailure = static_cast<XeResult>(0x80000008);
constexpr auto kNotWatchable = static_cast<XeResult>(0x8004E011);

class Manager : public WatchTest {
protected:
    XeResult add(const Text& path, WatchRecorder& recorder, std::shared_ptr<void>& handle)
    {
        return m_manager->addWatchFolder(path, recorder.observer(), handle);
    }

    WatchRecorder m_a, m_b; // outlive the manager, which tells them of the end
    std::shared_ptr<void> m_handleA, m_handleB;
    std::shared_ptr<XeFileSystemManager> m_manager = std::make_shared<XeFileSystemManager>();
};

TEST_F(Manager, WatchesAFolder)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleA));
    createFile(m_folder / "a");
    EXPECT_TRUE(m_a.waitForChanges(1));
    EXPECT_EQ(m_a.malformed(), 0);
}

TEST_F(Manager, TheCycleOfItsWatchesIsTwoSeconds)
{
    std::promise<int> cycle;
    EXPECT_EQ(m_manager->addWatchFolder(
                  wide(m_folder),
                  [&](auto watch, auto changes) {
                      Text path;
                      int ms = 0;
                      if (changes != nullptr) {
                          watch->getWatch(path, ms);
                          cycle.set_value(ms);
                      }
                  },
                  m_handleA),
              0);
    createFile(m_folder / "a");
    EXPECT_EQ(cycle.get_future().get(), 2000);
}

TEST_F(Manager, AFileIsNotWatchedAndLeavesNothing)
{
    createFile(m_temporary / "file");
    EXPECT_EQ(add(wide(m_temporary / "file"), m_a, m_handleA), kNotWatchable);
    EXPECT_EQ(m_handleA, nullptr);
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
    fs::remove(m_temporary / "file");
    makeFolder("file");
    EXPECT_EQ(add(wide(m_temporary / "file"), m_a, m_handleA), 0);
    EXPECT_EQ(m_a.ends(), 0);
}

TEST_F(Manager, WithoutACallbackNothingIsWatched)
{
    EXPECT_EQ(m_manager->addWatchFolder(wide(m_folder), nullptr, m_handleA), kFailure);
    EXPECT_EQ(m_handleA, nullptr);
}

TEST_F(Manager, ASecondObserverOfAPathSharesItsWatch)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_EQ(add(wide(m_folder) + L"//", m_b, m_handleB), 0);
    createFile(m_folder / "a");
    EXPECT_TRUE(m_a.waitForChanges(1));
    EXPECT_TRUE(m_b.waitForChanges(1));
    EXPECT_EQ(m_a.watch(), m_b.watch());
}

TEST_F(Manager, TheWatchEndsWithItsLastObserver)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_EQ(add(wide(m_folder), m_b, m_handleB), 0);
    std::shared_ptr<void> copy = m_handleA;
    EXPECT_EQ(m_manager->removeWatchFolder(m_handleA), 0);
    EXPECT_EQ(m_handleA, nullptr);
    EXPECT_FALSE(m_manager->isWatchingFolder(copy));
    EXPECT_EQ(m_manager->removeWatchFolder(copy), kFailure);
    EXPECT_EQ(m_manager->removeWatchFolder(copy), kFailure);
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleB));
    createFile(m_folder / "a");
    EXPECT_TRUE(m_b.waitForChanges(1));
    EXPECT_EQ(m_manager->removeWatchFolder(m_handleB), 0);
    EXPECT_EQ(m_a.changes(), 0);
    EXPECT_EQ(m_a.ends() + m_b.ends(), 0) << "who is removed is told nothing more";
}

TEST_F(Manager, StoppingAPathTellsItsObserversAndANewOneStartsAnew)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_EQ(m_manager->stopWatchingFolder(wide(m_folder) + L"/"), 0);
    EXPECT_EQ(m_a.ends(), 1);
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
    EXPECT_EQ(m_manager->stopWatchingFolder(wide(m_folder)), 0);
    EXPECT_EQ(add(wide(m_folder), m_b, m_handleB), 0);
    createFile(m_folder / "a");
    EXPECT_TRUE(m_b.waitForChanges(1));
    EXPECT_EQ(m_a.changes(), 0);
    EXPECT_EQ(m_manager->removeWatchFolder(m_handleA), 0);
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleB));
}

TEST_F(Manager, AFolderMadeAgainIsWatchedAnew)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    fs::rename(m_folder, m_temporary / "elsewhere");
    EXPECT_TRUE(m_a.waitForChanges(1));
    makeFolder("watched");
    EXPECT_EQ(add(wide(m_folder), m_b, m_handleB), 0);
    EXPECT_TRUE(m_a.waitForEnd());
    createFile(m_folder / "a");
    EXPECT_TRUE(m_b.waitForChanges(1));
    EXPECT_NE(m_a.watch(), m_b.watch());
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleB));
}

TEST_F(Manager, UpdatingDropsWatchesWhoseFolderIsGone)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_EQ(add(wide(makeFolder("kept")), m_b, m_handleB), 0);
    m_manager->updateWatch();
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleA));
    fs::remove(m_folder);
    EXPECT_TRUE(m_a.waitForChanges(1));
    m_manager->updateWatch();
    EXPECT_TRUE(m_a.waitForEnd());
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleB));
}

TEST_F(Manager, StoppingAMountPointStopsTheWatchesOnIt)
{
    EXPECT_EQ(add(L"/", m_a, m_handleA), 0);
    EXPECT_EQ(m_manager->stopWatchingMountPoint(wide(m_folder)), 0);
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleA));
    EXPECT_EQ(m_manager->stopWatchingMountPoint(L"/"), 0);
    EXPECT_EQ(m_a.ends(), 1);
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
}

TEST_F(Manager, AnObserverMayRemoveItselfAndWatchAnotherFolder)
{
    const fs::path other = makeFolder("other");
    std::promise<void> done;
    EXPECT_EQ(m_manager->addWatchFolder(
                  wide(m_folder),
                  [&](auto, auto) {
                      EXPECT_EQ(m_manager->removeWatchFolder(m_handleA), 0);
                      EXPECT_EQ(add(wide(other), m_b, m_handleB), 0);
                      done.set_value();
                  },
                  m_handleA),
              0);
    createFile(m_folder / "a");
    EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    createFile(other / "b");
    EXPECT_TRUE(m_b.waitForChanges(1));
}

TEST_F(Manager, TwoObserversMayStopEachOthersWatches)
{
    const fs::path folders[] = {makeFolder("one"), makeFolder("two")};
    std::shared_ptr<void> handles[2];
    std::atomic<int> inside = 0;
    std::atomic<int> stopped = 0;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(m_manager->addWatchFolder(
                      wide(folders[i]),
                      [&, i](auto, auto changes) {
                          if (changes != nullptr) {
                              ++inside;
                              EXPECT_TRUE(waitUntil([&] { return inside == 2; }));
                              m_manager->stopWatchingFolder(wide(folders[1 - i]));
                              ++stopped;
                          }
                      },
                      handles[i]),
                  0);
    }
    createFile(folders[0] / "a");
    createFile(folders[1] / "a");
    EXPECT_TRUE(waitUntil([&] { return stopped == 2; }));
    m_manager.reset();
}

TEST_F(Manager, DestructionTellsTheEndAndWaits)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    m_manager.reset();
    EXPECT_EQ(m_a.ends(), 1);
}

TEST_F(Manager, AHandleOutlivesTheManager)
{
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    m_manager = std::make_shared<XeFileSystemManager>();
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
}

// An observer that comes right after must not hang on to the watch of the old folder.
TEST_F(Manager, AFolderReplacedAMomentAgoIsWatchedAnew)
{
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
        fs::remove_all(m_folder);
        makeFolder("watched");
        const int changes = m_b.changes();
        EXPECT_EQ(add(wide(m_folder), m_b, m_handleB), 0);
        createFile(m_folder / "a");
        EXPECT_TRUE(m_b.waitForChanges(changes + 1));
        EXPECT_EQ(m_manager->removeWatchFolder(m_handleA), 0);
        EXPECT_EQ(m_manager->removeWatchFolder(m_handleB), 0);
    }
}

// Mount points --------------------------------------------------------------------------------

class Contexts : public Manager {
protected:
    XeResult enter(const Text& mountPoint, int kind)
    {
        return m_manager->addMountPointContext(mountPoint, std::make_shared<int>(kind), kind,
                                               false);
    }

    int kindOf(const Text& path)
    {
        std::shared_ptr<void> context;
        int kind = -1;
        const XeResult result = m_manager->getMountPointContext(path, context, kind);
        EXPECT_EQ(result, kind == -1 ? kFailure : 0);
        EXPECT_EQ(context == nullptr, kind == -1);
        return kind;
    }
};

TEST_F(Contexts, APathBelongsToTheInnermostMountPointOnWholeNames)
{
    EXPECT_EQ(enter(L"/mnt/a", 6), 0);
    EXPECT_EQ(enter(L"/mnt/a/b/c/", 7), 0);
    EXPECT_EQ(enter(L"/mnt/ab", 8), 0);
    const std::pair<const wchar_t*, int> rows[] = {
        {L"/mnt/a", 6},      {L"/mnt/a/", 6},
        {L"/mnt/a//", 6},    {L"/mnt/a/b", 6},
        {L"/mnt/a/b/c", 7},  {L"/mnt/a/b/c/d/e.wav", 7},
        {L"/mnt/a/b/cd", 6}, {L"/mnt/ab/x", 8},
        {L"/mnt/abc", -1},   {L"/mnt", -1},
        {L"/", -1},          {L"", -1},
        {L"mnt/a/x", -1},    {L"/mnt/a//b//c//d", 6},
        {L"/MNT/A", -1},     {L"/mnt/a/b/../x", 6},
    };
    for (const auto& [path, kind] : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(path)));
        EXPECT_EQ(kindOf(path), kind);
    }
    EXPECT_EQ(enter(L"/", 9), 0);
    EXPECT_EQ(kindOf(L"/elsewhere/x"), 9);
    EXPECT_EQ(kindOf(L"/"), 9);
    EXPECT_EQ(kindOf(L"relative"), -1);
}

TEST_F(Contexts, EnteringAgainReplacesAndRemovingRemoves)
{
    EXPECT_EQ(enter(L"/mnt/a", 6), 0);
    EXPECT_EQ(enter(L"/mnt/a/", 7), 0);
    EXPECT_EQ(kindOf(L"/mnt/a/x"), 7);
    EXPECT_EQ(m_manager->removeMountPointContext(L"/mnt/a//"), 0);
    EXPECT_EQ(kindOf(L"/mnt/a/x"), -1);
    EXPECT_EQ(m_manager->removeMountPointContext(L"/mnt/a"), kFailure);
}

TEST_F(Contexts, TheContextIsTheSameObject)
{
    const std::shared_ptr<xenon::network::IFileSystem> none;
    const std::shared_ptr<void> entered = std::make_shared<int>(5);
    EXPECT_EQ(m_manager->addMountPointContext(L"/mnt/a", entered, 6, false), 0);
    std::shared_ptr<void> context;
    int kind = 0;
    EXPECT_EQ(m_manager->getMountPointContext(L"/mnt/a/x", context, kind), 0);
    EXPECT_EQ(context, entered);
    EXPECT_EQ(kind, kRemoteVolumeContext);
}

TEST_F(Contexts, EnteringOneStopsTheWatchesThereWhenAsked)
{
    EXPECT_EQ(add(L"/", m_a, m_handleA), 0);
    EXPECT_EQ(m_manager->addMountPointContext(L"/", nullptr, 6, false), 0);
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleA));
    EXPECT_EQ(m_manager->addMountPointContext(L"/", nullptr, 6, true), 0);
    EXPECT_FALSE(m_manager->isWatchingFolder(m_handleA));
}

// The end -------------------------------------------------------------------------------------

TEST_F(Manager, AfterTheTerminateFlagRunningWatchesGoOnAndNoNewOnesStart)
{
    std::vector<bool> told;
    std::shared_ptr<void> observer;
    m_manager->terminateObservers().RegisterObserver(
        [&](auto manager, bool terminate) {
            EXPECT_EQ(manager, m_manager);
            told.push_back(terminate);
        },
        observer);
    EXPECT_EQ(add(wide(m_folder), m_a, m_handleA), 0);
    EXPECT_FALSE(m_manager->getTerminate());
    m_manager->setTerminate();
    m_manager->setTerminate();
    EXPECT_TRUE(m_manager->getTerminate());
    EXPECT_THAT(told, testing::ElementsAre(true));
    EXPECT_EQ(add(wide(m_folder), m_b, m_handleB), kFailure);
    EXPECT_EQ(m_handleB, nullptr);
    createFile(m_folder / "a");
    EXPECT_TRUE(m_a.waitForChanges(1));
    fs::rename(m_folder, m_temporary / "elsewhere");
    EXPECT_TRUE(m_a.waitForChanges(2));
    m_manager->updateWatch();
    EXPECT_TRUE(m_manager->isWatchingFolder(m_handleA)) << "updating does nothing any more";
    EXPECT_EQ(m_manager->removeWatchFolder(m_handleA), 0);
}

/// The one manager of the process, each time in a new process.
class ManagerDeathTest : public Manager {
protected:
    ManagerDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void expect(bool condition, int status)
    {
        if (!condition) {
            _exit(status);
        }
    }
};

#define EXPECT_CLEAN_EXIT(statement) EXPECT_EXIT(statement, testing::ExitedWithCode(0), "")

void watchAndExit(const fs::path& folder, int watches)
{
    alarm(20); // a hang ends with a signal
    static WatchRecorder recorder;
    for (int i = 0; i < watches; ++i) {
        const fs::path each = folder / std::to_string(i);
        fs::create_directory(each);
        static std::shared_ptr<void> handle;
        if (XeFileSystem::addWatchFolder(wide(each), recorder.observer(), handle) != 0) {
            _exit(1);
        }
        createFile(each / "a");
    }
    std::exit(0);
}

TEST_F(ManagerDeathTest, TheProcessExitsWithWatchesRunning)
{
    EXPECT_CLEAN_EXIT(watchAndExit(m_folder, 20));
}

TEST_F(ManagerDeathTest, TheProcessExitsWithWatchesThatNoManagerKnows)
{
    const auto run = [this] {
        alarm(20);
        const auto watch = std::make_shared<WatchFolder>();
        std::shared_ptr<void> handle;
        watch->initWatch(wide(m_folder), 1);
        watch->addObserver([](auto, auto) {}, handle);
        watch->startWatch();
        createFile(m_folder / "a");
        std::exit(0);
    };
    EXPECT_CLEAN_EXIT(run());
}

TEST_F(ManagerDeathTest, AnObserverMayEndTheProcess)
{
    const auto run = [this] {
        alarm(20);
        std::shared_ptr<void> handle;
        XeFileSystem::addWatchFolder(
            wide(m_folder),
            [](auto, auto changes) {
                if (changes != nullptr) {
                    std::exit(0);
                }
            },
            handle);
        createFile(m_folder / "a");
        pause();
    };
    EXPECT_CLEAN_EXIT(run());
}

TEST_F(ManagerDeathTest, ObserversThatAskForTheManagerAtTheEndGetNone)
{
    const auto run = [this] {
        alarm(20);
        std::shared_ptr<void> handle;
        static std::atomic<bool> told = false;
        std::atexit([] { _exit(told ? 0 : 5); }); // runs after the manager's end
        XeFileSystem::addWatchFolder(
            wide(m_folder),
            [](auto, auto changes) {
                told = changes == nullptr && XeFileSystem::getManagerInstance() == nullptr &&
                       XeFileSystem::getTerminateFlag();
            },
            handle);
        std::exit(0);
    };
    EXPECT_CLEAN_EXIT(run());
}

TEST_F(ManagerDeathTest, TheFreeFunctionsActOnOneManager)
{
    const auto run = [this] {
        namespace x = XeFileSystem;
        const auto manager = x::getManagerInstance();
        expect(manager != nullptr && x::getManagerInstance() == manager, 1);
        expect(!x::getTerminateFlag(), 2);
        expect(x::addWatchFolder(wide(m_folder), m_a.observer(), m_handleA) == 0, 3);
        expect(x::isWatchingFolder(m_handleA) && manager->isWatchingFolder(m_handleA), 4);
        expect(x::stopWatchingFolder(wide(m_folder)) == 0 && m_a.ends() == 1, 5);
        expect(x::removeWatchFolder(m_handleA) == 0, 6);
        expect(x::stopWatchingMountPoint(L"/") == 0, 7);
        std::shared_ptr<void> context;
        int kind = 0;
        expect(x::addMountPointContext(L"/m", std::make_shared<int>(1), 6, false) == 0, 8);
        expect(x::getMountPointContext(L"/m/x", context, kind) == 0 && kind == 6, 9);
        expect(x::removeMountPointContext(L"/m") == 0, 10);
        std::exit(0);
    };
    EXPECT_CLEAN_EXIT(run());
}

TEST_F(ManagerDeathTest, AfterTheTerminateFlagThereIsNoManager)
{
    const auto run = [this] {
        namespace x = XeFileSystem;
        const auto manager = x::getManagerInstance();
        x::setTerminateFlag();
        std::shared_ptr<void> context;
        int kind = 0;
        expect(x::getManagerInstance() == nullptr, 1);
        expect(x::getTerminateFlag() && manager->getTerminate(), 2);
        expect(x::addWatchFolder(wide(m_folder), m_a.observer(), m_handleA) == kFailure, 3);
        expect(x::removeWatchFolder(m_handleA) == kFailure, 4);
        expect(!x::isWatchingFolder(m_handleA), 5);
        expect(x::stopWatchingFolder(wide(m_folder)) == kFailure, 6);
        expect(x::stopWatchingMountPoint(L"/") == kFailure, 7);
        expect(x::addMountPointContext(L"/m", nullptr, 6, false) == kFailure, 8);
        expect(x::getMountPointContext(L"/m", context, kind) == kFailure, 9);
        expect(x::removeMountPointContext(L"/m") == kFailure, 10);
        x::setTerminateFlag();
        std::exit(0);
    };
    EXPECT_CLEAN_EXIT(run());
}

} // namespace
