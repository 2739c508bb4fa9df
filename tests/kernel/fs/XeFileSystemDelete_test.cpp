#include "XeFileSystem.h"

#include "FileTree.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "ResultCodes.h"
#include "WatchRecorder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class DeleteTest : public testing::Test {
protected:
    XeResult deleteFile(const std::string& name) const
    {
        return XeFileSystem::deleteFile(m_tree.wide(name));
    }
    XeResult deleteFolder(const std::string& name, bool onlyIfEmpty = false) const
    {
        return XeFileSystem::deleteFolder(m_tree.wide(name).c_str(), onlyIfEmpty);
    }
    XeResult deleteEmpty(const std::string& name, bool includeSelf) const
    {
        return XeFileSystem::deleteEmptyFolders(m_tree.wide(name).c_str(), includeSelf);
    }

    const FileTree m_tree;
};

class DeleteFile : public DeleteTest {};

TEST_F(DeleteFile, DeletesOneFile)
{
    m_tree.write("a", "x");
    m_tree.write("b", "x");
    EXPECT_EQ(deleteFile("a"), kOk);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"b"});
    EXPECT_EQ(deleteFile("a"), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteFile(m_tree.wide("b").c_str()), kOk);
}

TEST_F(DeleteFile, DeletesALinkAndNotWhatItLeadsTo)
{
    m_tree.write("a", "x");
    m_tree.makeFolder("folder");
    m_tree.makeLink("link", "a");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makeLink("loop", "loop");
    m_tree.makeLink("to folder", "folder");
    for (const char* name : {"link", "dangling", "loop", "to folder"}) {
        EXPECT_EQ(deleteFile(name), kOk) << name;
    }
    EXPECT_EQ(m_tree.names(), (std::vector<std::string>{"a", "folder"}));
}

TEST_F(DeleteFile, DeletesAPipeWithoutOpeningIt)
{
    m_tree.makePipe("pipe");
    EXPECT_EQ(deleteFile("pipe"), kOk);
    EXPECT_TRUE(m_tree.names().empty());
}

TEST_F(DeleteFile, LeavesFoldersAlone)
{
    m_tree.makeFolder("folder");
    m_tree.makeLink("link", "folder");
    const auto before = m_tree.items();
    for (const char* name : {"folder", "folder/", "link/", "link/.", "", "file/below"}) {
        EXPECT_EQ(deleteFile(name), kGeneral) << name;
    }
    EXPECT_EQ(XeFileSystem::deleteFile(static_cast<wchar_t const*>(nullptr)), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteFile(L""), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteFile(m_tree.wide("folder") + L'\xD800'), kGeneral);
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(DeleteFile, NeedsTheRightsOfTheFolder)
{
    m_tree.write("a", "x");
    fs::permissions(m_tree.path(), fs::perms(0555));
    asOrdinaryUser([&] { EXPECT_EQ(deleteFile("a"), kGeneral); });
    EXPECT_TRUE(fs::exists(m_tree / "a"));
}

TEST_F(DeleteFile, AsksTheRemote)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->addFile(L"/remote/delete/a", "x");
    const RemoteMount mount(L"/remote/delete", remote);
    EXPECT_EQ(XeFileSystem::deleteFile(L"/remote/delete/missing"), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteFile(L"/remote/delete/a"), kOk);
    EXPECT_FALSE(remote->holds(L"/remote/delete/a"));
    for (const XeResult result : {-7, kVolumeGone}) {
        remote->failures["deleteFile"] = result;
        EXPECT_EQ(XeFileSystem::deleteFile(L"/remote/delete/a"), result);
    }
}

class DeleteFolder : public DeleteTest {};

TEST_F(DeleteFolder, DeletesAllThatIsBelow)
{
    m_tree.makeFolder("a/b/c");
    m_tree.write("a/file", "x");
    m_tree.write("a/b/\xE9\xFF", "x");
    m_tree.makePipe("a/b/pipe");
    m_tree.makeLink("a/b/c/up", m_tree.path());
    m_tree.write("kept", "x");
    EXPECT_EQ(deleteFolder("a"), kOk);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"kept"});
}

TEST_F(DeleteFolder, WhatIsNoFolderIsSuccessAndStays)
{
    m_tree.write("file", "x");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makePipe("pipe");
    const auto before = m_tree.items();
    for (const bool onlyIfEmpty : {false, true}) {
        for (const char* name : {"missing", "file", "dangling", "pipe", "file/below"}) {
            EXPECT_EQ(deleteFolder(name, onlyIfEmpty), kOk) << name;
        }
        EXPECT_EQ(XeFileSystem::deleteFolder(nullptr, onlyIfEmpty), kOk);
        EXPECT_EQ(XeFileSystem::deleteFolder(L"", onlyIfEmpty), kOk);
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(DeleteFolder, OnlyIfEmptyLeavesAFolderWithEntriesAlone)
{
    m_tree.makeFolder("full");
    m_tree.write("full/.hidden", "x");
    m_tree.makeFolder("empty");
    EXPECT_EQ(deleteFolder("full", true), kOk);
    EXPECT_EQ(deleteFolder("empty", true), kOk);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"full"});
    EXPECT_EQ(m_tree.names("full"), std::vector<std::string>{".hidden"});
}

TEST_F(DeleteFolder, OfALinkOnlyTheLinkGoes)
{
    m_tree.makeFolder("target");
    m_tree.write("target/file", "x");
    m_tree.makeFolder("empty");
    for (const char* ending : {"", "/", "//", "/.", "/./"}) {
        SCOPED_TRACE(ending);
        m_tree.makeLink("link", "target");
        EXPECT_EQ(deleteFolder("link" + std::string(ending), true), kOk);
        EXPECT_TRUE(fs::is_symlink(m_tree / "link"));
        EXPECT_EQ(deleteFolder("link" + std::string(ending)), kOk);
        m_tree.makeLink("link", "empty");
        EXPECT_EQ(deleteFolder("link" + std::string(ending), true), kOk);
        EXPECT_EQ(m_tree.names(), (std::vector<std::string>{"empty", "target"}));
        EXPECT_TRUE(fs::exists(m_tree / "target/file"));
    }
}

TEST_F(DeleteFolder, EndingsMakeNoDifferenceToAFolder)
{
    for (const char* name : {"a/", "a//", "a/.", "a/./"}) {
        m_tree.makeFolder("a/b");
        EXPECT_EQ(deleteFolder(name), kOk) << name;
        EXPECT_TRUE(m_tree.names().empty());
    }
}

TEST_F(DeleteFolder, EndsTheWatchOnIt)
{
    m_tree.makeFolder("watched/sub");
    WatchRecorder recorder;
    std::shared_ptr<void> handle;
    ASSERT_EQ(XeFileSystem::addWatchFolder(m_tree.wide("watched"), recorder.observer(), handle),
              kOk);
    EXPECT_EQ(deleteFolder("missing"), kOk);
    EXPECT_EQ(recorder.ends(), 0);
    EXPECT_EQ(deleteFolder("watched/"), kOk);
    EXPECT_EQ(recorder.ends(), 1);
    EXPECT_EQ(recorder.changes(), 0) << "stopped before anything was deleted";
    EXPECT_FALSE(XeFileSystem::isWatchingFolder(handle));
}

TEST_F(DeleteFolder, EndsTheWatchAlsoOnAFolderThatStays)
{
    m_tree.makeFolder("full");
    m_tree.write("full/file", "x");
    WatchRecorder recorder;
    std::shared_ptr<void> handle;
    ASSERT_EQ(XeFileSystem::addWatchFolder(m_tree.wide("full"), recorder.observer(), handle), kOk);
    EXPECT_EQ(deleteFolder("full", true), kOk);
    EXPECT_EQ(recorder.ends(), 1);
    EXPECT_FALSE(XeFileSystem::isWatchingFolder(handle));
    EXPECT_EQ(m_tree.names("full"), std::vector<std::string>{"file"});
}

TEST_F(DeleteFolder, ReportsWhatIsStillThere)
{
    m_tree.makeFolder("a");
    m_tree.makeFolder("full");
    m_tree.write("full/file", "x");
    for (const char* name : {"a", "full", "."}) {
        fs::permissions(m_tree / name, fs::perms(0555));
    }
    const auto before = m_tree.items();
    asOrdinaryUser([&] {
        EXPECT_EQ(deleteFolder("a"), kGeneral);
        EXPECT_EQ(deleteFolder("a", true), kGeneral);
        EXPECT_EQ(deleteFolder("full"), kGeneral);
        EXPECT_EQ(deleteFolder("full", true), kOk);
    });
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(DeleteFolder, DeletesTwentyThousandEntries)
{
    m_tree.makeFolder("a");
    const std::string first = m_tree.write("a/first", "");
    for (int i = 1; i < 20000; ++i) { // links, which are made faster than files
        fs::create_hard_link(first, m_tree / ("a/" + std::to_string(i)));
    }
    EXPECT_EQ(deleteFolder("a"), kOk);
    EXPECT_TRUE(m_tree.names().empty());
}

TEST_F(DeleteFolder, DeletesThreeHundredLevelsAndClosesItsDescriptors)
{
    std::string deepest = "a";
    for (int i = 0; i < 300; ++i) {
        deepest += "/d";
    }
    m_tree.makeFolder(deepest);
    m_tree.write(deepest + "/file", "f");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(deleteFolder("a"), kOk);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(m_tree.names().empty());
}

class RemoteDeleteFolder : public testing::Test {
protected:
    RemoteDeleteFolder()
    {
        m_remote->addFolder(m_root);
        m_remote->addFolder(m_root + L"/full");
        m_remote->addFile(m_root + L"/full/file", "x");
        m_remote->addFolder(m_root + L"/empty");
    }
    XeResult remove(const wchar_t* name, bool onlyIfEmpty = false) const
    {
        return XeFileSystem::deleteFolder((m_root + name).c_str(), onlyIfEmpty);
    }

    const Text m_root = L"/remote/folders";
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteDeleteFolder, AsksTheRemote)
{
    EXPECT_EQ(remove(L"/missing"), kOk);
    EXPECT_EQ(remove(L"/full/file"), kOk);
    EXPECT_EQ(remove(L"/full", true), kOk);
    EXPECT_TRUE(m_remote->holds(m_root + L"/full/file"));
    EXPECT_EQ(remove(L"/empty", true), kOk);
    EXPECT_EQ(remove(L"/full"), kOk);
    EXPECT_EQ(m_remote->items.size(), 1u);
}

TEST_F(RemoteDeleteFolder, HandsItsFailuresOn)
{
    m_remote->failures["deleteFolder"] = -7;
    EXPECT_EQ(remove(L"/full"), -7);
    m_remote->failures = {{"isFolderEmpty", kVolumeGone}};
    EXPECT_EQ(remove(L"/full"), kVolumeGone);
    EXPECT_TRUE(m_remote->holds(m_root + L"/full/file"));
}

TEST_F(RemoteDeleteFolder, AFolderThatIsStillThereIsAFailure)
{
    class Stubborn : public MemoryFileSystem {
    public:
        XeResult deleteFolder(const Path&) override { return kOk; }
    };
    const auto stubborn = std::make_shared<Stubborn>();
    stubborn->addFolder(L"/remote/stubborn/a");
    const RemoteMount mount(L"/remote/stubborn", stubborn);
    EXPECT_EQ(XeFileSystem::deleteFolder(L"/remote/stubborn/a", false), kGeneral);
}

class DeleteEmptyFolders : public DeleteTest {};

TEST_F(DeleteEmptyFolders, AChainOfEmptyFoldersGoesAsAWhole)
{
    m_tree.makeFolder("a/b/c/d");
    m_tree.makeFolder("a/e");
    m_tree.makeFolder("a/full/empty");
    m_tree.write("a/full/file", "x");
    m_tree.makeFolder("beside");
    EXPECT_EQ(deleteEmpty("a", true), kOk);
    EXPECT_EQ(m_tree.names(), (std::vector<std::string>{"a", "beside"}));
    EXPECT_EQ(m_tree.names("a"), std::vector<std::string>{"full"});
    EXPECT_EQ(m_tree.names("a/full"), std::vector<std::string>{"file"});
}

TEST_F(DeleteEmptyFolders, TheFolderItselfGoesOnlyWhenAskedFor)
{
    m_tree.makeFolder("a/b/c");
    EXPECT_EQ(deleteEmpty("a", false), kOk);
    EXPECT_TRUE(fs::is_empty(m_tree / "a"));
    EXPECT_EQ(deleteEmpty("a", true), kOk);
    EXPECT_TRUE(m_tree.names().empty());
}

TEST_F(DeleteEmptyFolders, HiddenFoldersGoAndHiddenFilesKeepTheirs)
{
    m_tree.makeFolder("a/.hidden");
    m_tree.makeFolder("a/kept");
    m_tree.write("a/kept/.file", "");
    EXPECT_EQ(deleteEmpty("a", true), kOk);
    EXPECT_EQ(m_tree.names("a"), std::vector<std::string>{"kept"});
}

TEST_F(DeleteEmptyFolders, LinksStayAndKeepTheirFolder)
{
    m_tree.makeFolder("outside/empty");
    m_tree.makeFolder("a/b");
    m_tree.makeLink("a/b/link", m_tree / "outside");
    const auto before = m_tree.items();
    EXPECT_EQ(deleteEmpty("a", true), kOk);
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(DeleteEmptyFolders, NothingToDoIsSuccess)
{
    m_tree.write("file", "x");
    const auto before = m_tree.items();
    for (const bool includeSelf : {false, true}) {
        EXPECT_EQ(deleteEmpty("missing", includeSelf), kOk);
        EXPECT_EQ(deleteEmpty("file", includeSelf), kOk);
        EXPECT_EQ(XeFileSystem::deleteEmptyFolders(nullptr, includeSelf), kOk);
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(DeleteEmptyFolders, OneThatCannotBeDeletedIsToldAndTheOthersGo)
{
    fs::permissions(m_tree.path(), fs::perms(0777));
    m_tree.makeFolder("a/closed/stuck");
    fs::permissions(m_tree / "a/closed", fs::perms(0555));
    m_tree.makeFolder("a/z/empty");
    for (const char* name : {"a", "a/z", "a/z/empty"}) {
        fs::permissions(m_tree / name, fs::perms(0777));
    }
    asOrdinaryUser([&] { EXPECT_EQ(deleteEmpty("a", false), kGeneral); });
    EXPECT_EQ(m_tree.names("a"), std::vector<std::string>{"closed"});
    EXPECT_EQ(m_tree.names("a/closed"), std::vector<std::string>{"stuck"});
}

TEST_F(DeleteEmptyFolders, EndsTheWatchesOnThem)
{
    m_tree.makeFolder("a/empty");
    m_tree.makeFolder("a/full");
    m_tree.write("a/full/file", "x");
    WatchRecorder empty;
    WatchRecorder full;
    std::shared_ptr<void> handles[2];
    XeFileSystem::addWatchFolder(m_tree.wide("a/empty"), empty.observer(), handles[0]);
    XeFileSystem::addWatchFolder(m_tree.wide("a/full"), full.observer(), handles[1]);
    EXPECT_EQ(deleteEmpty("a", true), kOk);
    EXPECT_EQ(empty.ends(), 1);
    EXPECT_EQ(full.ends(), 0);
    XeFileSystem::removeWatchFolder(handles[1]);
}

} // namespace
