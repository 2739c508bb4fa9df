#include "XeFileSystem.h"

#include "FileTree.h"
#include "ForEachFailingCall.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "SmallVolume.linux.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <string>

namespace {

namespace fs = std::filesystem;

using Items = std::map<std::string, std::string>;

/// One run: a tree of its own, on which one call of the system fails.
class FaultyRun : public FileTree {
public:
    explicit FaultyRun(Fault& fault) : m_fault(fault)
    {
        write("a", std::string(100000, 'a'));
        write("old", "an old file");
        makeFolder("folder/sub/deep");
        makeFolder("folder/empty");
        write("folder/one", std::string(5000, '1'));
        write("folder/sub/two", std::string(5000, '2'));
        write("folder/sub/deep/three", "");
        makeFolder("linked");
        write("linked/file", "f");
        makeLink("folder/link", "../linked");
        makeLink("folder/up", "..");
        makeFolder("chain/b/c");
        makeFolder("chain/kept");
        write("chain/kept/file", "x");
        before = items();
    }

    /// What the call tells, with the fault in it. It leaves no descriptor open.
    template <typename Function, typename... Arguments>
    XeResult call(Function function, Arguments... arguments)
    {
        XeResult result = -1;
        const std::size_t descriptors = openDescriptors();
        m_fault.during([&] { result = function(arguments...); });
        EXPECT_EQ(openDescriptors(), descriptors);
        EXPECT_TRUE(result == 0 || m_fault.happened()) << result;
        return result;
    }

    std::wstring at(const std::string& name) const { return wide(name); }
    bool has(const std::string& name) const { return fs::exists(fs::symlink_status(*this / name)); }

    /// All is as it was but for some items, and what is below them.
    void expectUnchangedBut(const std::string& name, const std::string& other = "") const
    {
        const auto without = [&](Items all) {
            std::erase_if(all, [&](const auto& item) {
                return isAt(item.first, name) || isAt(item.first, other);
            });
            return all;
        };
        EXPECT_EQ(without(items()), without(before));
    }

    Items before;

private:
    static bool isAt(const std::string& item, const std::string& name)
    {
        return !name.empty() && (item == name || item.starts_with(name + '/'));
    }

    Fault& m_fault;
};

FailingCallPlan plan(FailingCallMode mode, int error)
{
    return {.functions = 0,
            .nth = 0,
            .error = error,
            .mode = mode,
            .onwards = false,
            .meanwhile = nullptr};
}

/// Each call fails once, with every error that makes a difference: one that nobody expects, that of
/// an item that is gone when its turn comes, a signal, and for copies those that say "not so".
template <typename Body>
void forEachFault(Body body)
{
    constexpr unsigned kTold = kFailStat | kFailWait; // tests make exceptions for these
    constexpr unsigned kBytes = kFailRead | kFailWrite | kFailCopy;
    const auto run = [&](unsigned group, FailingCallMode mode, int error) {
        SCOPED_TRACE("group " + std::to_string(group));
        if (!testing::Test::HasFailure()) {
            forEachFailingCall(group, plan(mode, error), [&](Fault& fault) { body(fault, group); });
        }
    };
    for (const int error : {EIO, ENOENT, EINTR}) {
        run(kFailStat, kFailWithError, error);
        run(kFailWait, kFailWithError, error);
        run(kFailAll & ~kTold, kFailWithError, error);
    }
    for (const int error : {ENOSPC, EXDEV, EINVAL, ENOSYS}) {
        run(kBytes, kFailWithError, error);
    }
    run(kBytes, kFailShort, 0);
    run(kFailReadFolder, kFailUntyped, 0);
#ifndef FAILING_CALLS_WITHOUT_MEMORY
    run(kFailMemory, kFailWithError, ENOMEM);
#endif
}

TEST(FailingChanges, CopyFileLeavesAWholeCopyOrNone)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result =
            run.call(XeFileSystem::copyFile, run.at("a").c_str(), run.at("new").c_str(), false);
        run.expectUnchangedBut("new");
        EXPECT_EQ(run.has("new"), result == 0);
        EXPECT_TRUE(result != 0 || run.items()["new"] == run.before["a"]);
    });
}

TEST(FailingChanges, CopyFileOntoAnotherLeavesTheOldTheNewOrNone)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result =
            run.call(XeFileSystem::copyFile, run.at("a").c_str(), run.at("old").c_str(), false);
        run.expectUnchangedBut("old");
        const Items after = run.items();
        if (result == 0) {
            EXPECT_EQ(after.at("old"), run.before["a"]);
        } else if (run.has("old")) {
            EXPECT_EQ(after.at("old"), run.before["old"]);
        }
    });
}

TEST(FailingChanges, CopyFileFromARemoteLeavesAWholeCopyOrNone)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->addFile(L"/remote/failing/take", std::string(100000, 'r'));
    const RemoteMount mount(L"/remote/failing", remote);
    forEachFault([&](Fault& fault, unsigned group) {
        FaultyRun run(fault);
        // The remote is made of memory itself, and does not fail for want of it.
        if (group == kFailMemory) {
            return;
        }
        const XeResult result =
            run.call(XeFileSystem::copyFile, L"/remote/failing/take", run.at("new").c_str(), false);
        run.expectUnchangedBut("new");
        EXPECT_EQ(remote->openHandles(), 0u);
        EXPECT_EQ(run.has("new"), result == 0);
        EXPECT_TRUE(result != 0 || FileTree::contents(run.path("new")).size() == 100000);
    });
}

TEST(FailingChanges, CopyFolderLeavesWholeFilesAndTellsWhatItLeavesOut)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result = run.call(XeFileSystem::copyFolder, run.at("folder").c_str(),
                                         run.at("new").c_str(), kCopyMerge);
        run.expectUnchangedBut("new");
        Items source = FileTree::itemsOf(run / "folder");
        source.erase("up");
        source["link"] = run.before["linked"];
        source["link/file"] = run.before["linked/file"];
        const Items copy = run.has("new") ? FileTree::itemsOf(run / "new") : Items();
        for (const auto& [name, item] : copy) {
            EXPECT_EQ(item, source[name]) << name;
        }
        EXPECT_TRUE(result != 0 || copy == source);
    });
}

TEST(FailingChanges, RenameFileDoesAllOrNothing)
{
    for (const bool failIfExists : {false, true}) {
        forEachFault([&](Fault& fault, unsigned) {
            FaultyRun run(fault);
            const XeResult result = run.call(XeFileSystem::renameFile, run.at("folder").c_str(),
                                             run.at("new").c_str(), failIfExists);
            run.expectUnchangedBut("folder", "new");
            EXPECT_NE(run.has("folder"), run.has("new"));
            EXPECT_EQ(run.has("new"), result == 0);
        });
    }
}

// A name that cannot be looked at is not replaced.
TEST(FailingChanges, RenameFileNeverReplacesWhatItWasToldNotTo)
{
    const auto calls = forEachFailingCall(kFailAll, plan(kFailWithError, EIO), [](Fault& fault) {
        FaultyRun run(fault);
        XeResult result = 0;
        const std::wstring from = run.at("a");
        const std::wstring to = run.at("old");
        fault.during([&] { result = XeFileSystem::renameFile(from.c_str(), to.c_str(), true); });
        EXPECT_LT(result, 0);
        EXPECT_EQ(run.items(), run.before);
    });
    EXPECT_GT(calls, 0u);
}

TEST(FailingChanges, MoveFileLosesNothing)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result =
            run.call(XeFileSystem::moveFile, run.at("a").c_str(), run.at("new").c_str());
        run.expectUnchangedBut("a", "new");
        EXPECT_NE(run.has("a"), run.has("new"));
        EXPECT_EQ(run.has("new"), result == 0);
    });
}

TEST(FailingChanges, MoveFileAcrossVolumesLosesNothing)
{
    const FileTree tree;
    const SmallVolume volume(tree / "volume", "size=1m");
    if (!volume) {
        GTEST_SKIP() << "cannot mount a volume: " << volume.reason();
    }
    forEachFault([&](Fault& fault, unsigned) {
        FaultyRun run(fault);
        std::error_code error;
        fs::remove(volume / "new", error);
        const XeResult result =
            run.call(XeFileSystem::moveFile, run.at("a").c_str(), tree.wide("volume/new").c_str());
        run.expectUnchangedBut("a");
        const bool arrived = fs::exists(volume / "new");
        EXPECT_TRUE(run.has("a") || arrived);
        EXPECT_EQ(!run.has("a") && arrived, result == 0);
        EXPECT_TRUE(!arrived || FileTree::contents(volume / "new") == std::string(100000, 'a'));
    });
}

TEST(FailingChanges, LinkFileDoesAllOrNothing)
{
    for (const bool symbolic : {false, true}) {
        forEachFault([&](Fault& fault, unsigned) {
            FaultyRun run(fault);
            const XeResult result = run.call(XeFileSystem::linkFile, run.at("a").c_str(),
                                             run.at("new").c_str(), symbolic);
            run.expectUnchangedBut("new");
            EXPECT_EQ(run.has("new"), result == 0);
        });
    }
}

TEST(FailingChanges, CreateFolderMakesAllLevelsOrNone)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result = run.call(XeFileSystem::createFolder, run.at("new/b/c").c_str());
        run.expectUnchangedBut("new");
        EXPECT_EQ(run.has("new/b/c"), result == 0);
        EXPECT_EQ(run.has("new"), result == 0);
    });
}

TEST(FailingChanges, DeleteFileDoesAllOrNothing)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const std::wstring path = run.at("a");
        const XeResult result = run.call(
            [](wchar_t const* file) { return XeFileSystem::deleteFile(file); }, path.c_str());
        run.expectUnchangedBut("a");
        EXPECT_EQ(run.has("a"), result != 0);
    });
}

TEST(FailingChanges, DeleteFolderTellsWhatIsStillThere)
{
    for (const char* name : {"folder", "chain/b/c", "linked"}) {
        for (const bool onlyIfEmpty : {false, true}) {
            forEachFault([&](Fault& fault, unsigned group) {
                FaultyRun run(fault);
                const bool empty = fs::is_empty(run / name);
                const XeResult result =
                    run.call(XeFileSystem::deleteFolder, run.at(name).c_str(), onlyIfEmpty);
                run.expectUnchangedBut(name);
                if (onlyIfEmpty && !empty) {
                    EXPECT_EQ(run.items(), run.before);
                } else if (run.has(name) && result == 0) {
                    // A folder that could not be looked at counts as none, or as not empty.
                    EXPECT_TRUE(group == kFailStat || onlyIfEmpty || group == kFailMemory);
                    EXPECT_EQ(run.items(), run.before);
                } else {
                    EXPECT_EQ(run.has(name), result != 0);
                }
            });
        }
    }
}

TEST(FailingChanges, DeleteEmptyFoldersTouchesNothingElse)
{
    forEachFault([](Fault& fault, unsigned) {
        FaultyRun run(fault);
        const XeResult result =
            run.call(XeFileSystem::deleteEmptyFolders, run.at("chain").c_str(), true);
        run.expectUnchangedBut("chain/b");
        EXPECT_TRUE(result == 0 || run.has("chain/b") || fault.happened());
    });
}

TEST(FailingChanges, ZipFolderLeavesItsSourceAlone)
{
    forEachFault([](Fault& fault, unsigned group) {
        FaultyRun run(fault);
        const XeResult result = run.call(XeFileSystem::zipFolder, run.at("linked").c_str(),
                                         run.at("new.zip").c_str(), false);
        while (waitpid(-1, nullptr, 0) > 0) { // where nobody has, the tool may still be at work
        }
        run.expectUnchangedBut("new.zip");
        EXPECT_TRUE(group == kFailWait || run.has("new.zip") == (result == 0));
    });
}

} // namespace
