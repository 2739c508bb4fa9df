#include "XeFileSystem.h"

#include "FileTree.h"
#include "MemoryFileSystem.h"
#include "OrdinaryUser.h"
#include "ResultCodes.h"
#include "WidePath.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class CreateFolder : public testing::Test {
protected:
    static XeResult create(const Text& path) { return XeFileSystem::createFolder(path.c_str()); }
    static XeResult create(const fs::path& path) { return create(wide(path)); }

    const TemporaryFolder m_folder;
    static constexpr auto kFailed = static_cast<XeResult>(0x8004E014);
};

TEST_F(CreateFolder, MakesAllMissingLevels)
{
    for (const char* name : {"one", "one/two", "a/b/c", "slash/", "d/e/", "x//y", "f/./g"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(create(m_folder / name), 0);
        EXPECT_TRUE(fs::is_directory(m_folder / name));
        EXPECT_EQ(create(m_folder / name), 0); // now it exists
    }
    fs::create_directory_symlink(m_folder / "one", m_folder / "link");
    EXPECT_EQ(create(m_folder / "link"), 0);
    EXPECT_EQ(create(m_folder / "link/inside"), 0);
    EXPECT_TRUE(fs::is_directory(m_folder / "one/inside"));
}

TEST_F(CreateFolder, RelativePathStartsInTheWorkingFolder)
{
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.path());
    EXPECT_EQ(create(fs::path("here/there")), 0);
    fs::current_path(before);
    EXPECT_TRUE(fs::is_directory(m_folder / "here/there"));
}

TEST_F(CreateFolder, FailureLeavesNoLevelBehind)
{
    m_folder.write("file", "x");
    fs::create_symlink(m_folder / "nowhere", m_folder / "dangling");
    for (const auto& path :
         {wide(m_folder / "file"), wide(m_folder / "file/below"), wide(m_folder / "dangling"),
          wide(m_folder / "dangling/below"), wide(m_folder / "new/levels" / std::string(256, 'n')),
          Text(wide(m_folder / "new/levels/") + L'\xD800'), Text()}) {
        EXPECT_EQ(create(path), kFailed);
    }
    EXPECT_EQ(XeFileSystem::createFolder(nullptr), kFailed);
    EXPECT_FALSE(fs::exists(m_folder / "new"));
    EXPECT_FALSE(fs::exists(m_folder / "nowhere"));
}

TEST_F(CreateFolder, FailsWithoutRights)
{
    fs::permissions(m_folder.path(), fs::perms(0555));
    asOrdinaryUser([&] { EXPECT_EQ(create(m_folder / "a/b"), kFailed); });
    fs::permissions(m_folder.path(), fs::perms(0755));
    EXPECT_FALSE(fs::exists(m_folder / "a"));
}

// Remote ---------------------------------------------------------------------------------------

class RemoteCreateFolder : public testing::Test {
protected:
    RemoteCreateFolder() { m_remote->addFolder(m_root); }
    XeResult create(const wchar_t* name) const
    {
        return XeFileSystem::createFolder((m_root + name).c_str());
    }

    const Text m_root = L"/remote/create";
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteCreateFolder, AsksTheRemoteOnce)
{
    EXPECT_EQ(create(L"/a"), kOk);
    EXPECT_EQ(create(L"/a"), kOk);
    EXPECT_TRUE(m_remote->holds(m_root + L"/a"));
    EXPECT_EQ(m_remote->calls, (std::vector<std::string>{"createFolder", "createFolder"}));
}

TEST_F(RemoteCreateFolder, MakesAllMissingLevels)
{
    EXPECT_EQ(create(L"/a/b/c"), kOk);
    EXPECT_EQ(create(L"/a/d//e/"), kOk);
    for (const wchar_t* name : {L"/a/b/c", L"/a/d"}) {
        EXPECT_TRUE(m_remote->holds(m_root + name));
    }
    m_remote->addFile(m_root + L"/file", "x");
    EXPECT_EQ(create(L"/file/below"), kGeneral);
}

// What the remote says of the folder itself is what the caller learns, not that a parent which is
// there was asked for.
TEST_F(RemoteCreateFolder, HandsFailuresOn)
{
    for (const XeResult failure : {-7, kVolumeGone}) {
        m_remote->calls.clear();
        m_remote->failures["createFolder"] = failure;
        EXPECT_EQ(create(L"/a"), failure);
        EXPECT_EQ(std::count(m_remote->calls.begin(), m_remote->calls.end(), "createFolder"), 1);
    }
    m_remote->calls.clear();
    EXPECT_EQ(create(L"/a/b/c"), kVolumeGone);
    EXPECT_EQ(m_remote->calls.size(), 1u);
}

// Renaming -------------------------------------------------------------------------------------

class RenameFile : public testing::Test {
protected:
    XeResult rename(const std::string& from, const std::string& to, bool failIfExists = false) const
    {
        return XeFileSystem::renameFile(m_tree.wide(from).c_str(), m_tree.wide(to).c_str(),
                                        failIfExists);
    }
    void refuses(XeResult code, const std::string& from, const std::string& to,
                 bool failIfExists = false) const
    {
        SCOPED_TRACE(from + " to " + to);
        const auto before = m_tree.items();
        EXPECT_EQ(rename(from, to, failIfExists), code);
        EXPECT_EQ(m_tree.items(), before);
    }

    const FileTree m_tree;
};

TEST_F(RenameFile, RenamesFilesFoldersAndLinksThemselves)
{
    m_tree.write("file", "x");
    m_tree.makeFolder("folder/sub");
    m_tree.makeLink("link", "nowhere");
    m_tree.makePipe("pipe");
    for (const char* name : {"file", "folder", "link", "pipe"}) {
        const auto before = m_tree.items().at(name);
        EXPECT_EQ(rename(name, name + std::string("2"), true), kOk);
        EXPECT_EQ(m_tree.items().at(name + std::string("2")), before);
    }
    EXPECT_EQ(m_tree.names(), (std::vector<std::string>{"file2", "folder2", "link2", "pipe2"}));
    EXPECT_EQ(rename("file2", "folder2/sub/moved"), kOk);
    EXPECT_EQ(FileTree::contents(m_tree.path("folder2/sub/moved")), "x");
}

TEST_F(RenameFile, ReplacesAFileOnlyWhenAllowed)
{
    m_tree.write("a", "new");
    m_tree.write("b", "old");
    refuses(kDestinationTaken, "a", "b", true);
    EXPECT_EQ(rename("a", "b"), kOk);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"b"});
    EXPECT_EQ(FileTree::contents(m_tree.path("b")), "new");
}

// A name that is taken is taken by anything, since a rename would replace it.
TEST_F(RenameFile, WhateverHasTheNameIsInTheWay)
{
    m_tree.write("a", "x");
    m_tree.makeFolder("folder");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makeLink("loop", "loop");
    m_tree.makePipe("pipe");
    for (const char* to : {"a", "folder", "dangling", "loop", "pipe"}) {
        refuses(kDestinationTaken, "a", to, true);
        refuses(kDestinationTaken, "missing", to, true);
    }
}

TEST_F(RenameFile, WhatTheSystemRefusesIsAGeneralFailure)
{
    m_tree.write("a", "x");
    m_tree.makeFolder("folder/full");
    refuses(kGeneral, "missing", "b");
    refuses(kGeneral, "missing", "b", true);
    refuses(kGeneral, "missing", "a");
    refuses(kGeneral, "a", "folder");
    refuses(kGeneral, "a", "no/folder");
    refuses(kGeneral, "a", "a/below");
    refuses(kGeneral, "folder", "a");
    refuses(kGeneral, "folder", "folder/full/inside");
    refuses(kGeneral, "folder/full", "folder");
    refuses(kGeneral, "a", std::string(300, 'n'), true);
    refuses(kGeneral, "a", "");
    const Text a = m_tree.wide("a");
    for (const bool failIfExists : {false, true}) {
        EXPECT_EQ(XeFileSystem::renameFile(a.c_str(), (a + L'\xD800').c_str(), failIfExists),
                  kGeneral);
        EXPECT_EQ(XeFileSystem::renameFile(nullptr, a.c_str(), false), kGeneral);
        EXPECT_EQ(XeFileSystem::renameFile(a.c_str(), nullptr, failIfExists), kGeneral);
    }
}

TEST_F(RenameFile, NeedsTheRightsOfBothFolders)
{
    fs::permissions(m_tree.path(), fs::perms(0777));
    m_tree.makeFolder("fixed");
    fs::permissions(m_tree.makeFolder("open"), fs::perms(0777));
    m_tree.write("fixed/a", "x");
    m_tree.write("open/b", "x");
    fs::permissions(m_tree / "fixed", fs::perms(0555));
    const auto before = m_tree.items();
    asOrdinaryUser([&] {
        EXPECT_EQ(rename("fixed/a", "open/a"), kGeneral);
        EXPECT_EQ(rename("open/b", "fixed/b"), kGeneral);
    });
    EXPECT_EQ(m_tree.items(), before);
}

class RemoteRename : public RenameFile {
protected:
    RemoteRename()
    {
        m_remote->addFolder(m_root);
        m_remote->addFile(m_root + L"/a", "a");
        m_remote->addFile(m_root + L"/b", "b");
        m_remote->addFolder(m_root + L"/folder");
    }
    XeResult rename(const Text& from, const Text& to, bool failIfExists = false) const
    {
        return XeFileSystem::renameFile(from.c_str(), to.c_str(), failIfExists);
    }

    const Text m_root = L"/remote/rename";
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteRename, AsksTheRemote)
{
    EXPECT_EQ(rename(m_root + L"/a", m_root + L"/folder/c", true), kOk);
    EXPECT_EQ(m_remote->bytesOf(m_root + L"/folder/c"), "a");
    EXPECT_EQ(rename(m_root + L"/missing", m_root + L"/c"), kGeneral);
    for (const XeResult failure : {-7, kVolumeGone}) {
        m_remote->failures["rename"] = failure;
        EXPECT_EQ(rename(m_root + L"/b", m_root + L"/c"), failure);
    }
}

TEST_F(RemoteRename, FailIfExistsAsksForFilesAndFolders)
{
    const auto before = m_remote->items;
    EXPECT_EQ(rename(m_root + L"/a", m_root + L"/b", true), kDestinationTaken);
    EXPECT_EQ(rename(m_root + L"/a", m_root + L"/folder", true), kDestinationTaken);
    EXPECT_EQ(m_remote->items, before);
}

TEST_F(RemoteRename, DoesNotLeaveTheVolume)
{
    m_tree.write("local", "x");
    const auto other = std::make_shared<MemoryFileSystem>();
    other->addFolder(L"/remote/rename2");
    const RemoteMount mount(L"/remote/rename2", other);
    EXPECT_EQ(rename(m_root + L"/a", m_tree.wide("new")), kGeneral);
    EXPECT_EQ(rename(m_tree.wide("local"), m_root + L"/new"), kGeneral);
    EXPECT_EQ(rename(m_root + L"/a", L"/remote/rename2/a"), kGeneral);
    EXPECT_EQ(rename(m_root + L"/a", m_tree.wide("local"), true), kDestinationTaken);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"local"});
    EXPECT_TRUE(m_remote->holds(m_root + L"/a"));
    EXPECT_EQ(m_remote->calls, std::vector<std::string>{});
}

// Moving ---------------------------------------------------------------------------------------

class MoveFile : public RemoteRename {
protected:
    static XeResult move(const Text& from, const Text& to)
    {
        return XeFileSystem::moveFile(from.c_str(), to.c_str());
    }
    XeResult move(const std::string& from, const std::string& to) const
    {
        return move(m_tree.wide(from), m_tree.wide(to));
    }
};

TEST_F(MoveFile, OnOneVolumeIsARename)
{
    m_tree.write("a", "x");
    m_tree.write("b", "old");
    m_tree.makeFolder("folder");
    const auto inode = [&](const char* name) {
        struct stat status {};
        EXPECT_EQ(stat(m_tree.path(name).c_str(), &status), 0);
        return status.st_ino;
    };
    const auto before = inode("a");
    EXPECT_EQ(move("a", "b"), kOk);
    EXPECT_EQ(inode("b"), before);
    EXPECT_EQ(move("b", "folder/b"), kOk);
    EXPECT_EQ(inode("folder/b"), before);
    EXPECT_EQ(move("folder/b", "folder/b"), kOk);
    EXPECT_EQ(FileTree::contents(m_tree.path("folder/b")), "x");
    EXPECT_EQ(move("folder", "renamed"), kOk);
    EXPECT_EQ(m_tree.names(), std::vector<std::string>{"renamed"});
}

TEST_F(MoveFile, FailuresAreThoseOfTheRename)
{
    m_tree.write("a", "x");
    const auto before = m_tree.items();
    EXPECT_EQ(move("missing", "a"), kGeneral);
    EXPECT_EQ(move("a", "no/folder"), kGeneral);
    EXPECT_EQ(XeFileSystem::moveFile(nullptr, nullptr), kGeneral);
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(MoveFile, WithinARemoteVolumeIsItsRename)
{
    EXPECT_EQ(move(m_root + L"/a", m_root + L"/c"), kOk);
    EXPECT_EQ(m_remote->calls, std::vector<std::string>{"rename"});
    m_remote->failures["rename"] = kVolumeGone;
    EXPECT_EQ(move(m_root + L"/c", m_root + L"/d"), kVolumeGone);
}

TEST_F(MoveFile, BetweenRemoteAndLocalCopiesAndDeletes)
{
    EXPECT_EQ(move(m_root + L"/a", m_tree.wide("local")), kOk);
    EXPECT_EQ(FileTree::contents(m_tree.path("local")), "a");
    EXPECT_FALSE(m_remote->holds(m_root + L"/a"));
    EXPECT_EQ(move(m_tree.wide("local"), m_root + L"/b"), kOk);
    EXPECT_EQ(m_remote->bytesOf(m_root + L"/b"), "a");
    EXPECT_FALSE(fs::exists(m_tree / "local"));
}

// The names that paths tell of their volumes decide before anything is tried.
TEST_F(MoveFile, BetweenVolumesOfDifferentNamesCopiesAndDeletes)
{
    const auto other = std::make_shared<MemoryFileSystem>();
    other->addFolder(L"/Volumes/other");
    const RemoteMount mount(L"/Volumes/other", other);
    EXPECT_EQ(move(m_root + L"/a", L"/Volumes/other/a"), kOk);
    EXPECT_EQ(other->bytesOf(L"/Volumes/other/a"), "a");
    EXPECT_FALSE(m_remote->holds(m_root + L"/a"));
}

TEST_F(MoveFile, AFailedCopyDeletesNothing)
{
    m_tree.write("local", "x");
    m_remote->failures["closeWrite"] = kGeneral;
    EXPECT_EQ(move(m_tree.wide("local"), m_root + L"/new"), kOperationFailed);
    EXPECT_TRUE(fs::exists(m_tree / "local"));
    EXPECT_FALSE(m_remote->holds(m_root + L"/new"));
}

TEST_F(MoveFile, TheFailureToDeleteTheSourceIsTold)
{
    m_remote->failures["deleteFile"] = -7;
    EXPECT_EQ(move(m_root + L"/a", m_tree.wide("local")), -7);
    EXPECT_TRUE(m_remote->holds(m_root + L"/a"));
    EXPECT_EQ(FileTree::contents(m_tree.path("local")), "a");
}

// Links ----------------------------------------------------------------------------------------

class LinkFile : public testing::Test {
protected:
    XeResult link(const std::string& target, const std::string& at, bool symbolic) const
    {
        return XeFileSystem::linkFile(m_tree.wide(target).c_str(), m_tree.wide(at).c_str(),
                                      symbolic);
    }

    const FileTree m_tree;
};

TEST_F(LinkFile, MakesEitherKind)
{
    m_tree.write("a", "x");
    EXPECT_EQ(link("a", "soft", true), kOk);
    EXPECT_EQ(link("a", "hard", false), kOk);
    EXPECT_EQ(fs::read_symlink(m_tree / "soft"), m_tree / "a");
    EXPECT_TRUE(fs::equivalent(m_tree / "hard", m_tree / "a"));
    EXPECT_EQ(fs::hard_link_count(m_tree / "a"), 2u);
}

TEST_F(LinkFile, ASymbolicLinkKeepsTheTextOfItsTarget)
{
    const Text at = m_tree.wide("link");
    EXPECT_EQ(XeFileSystem::linkFile(L"../no where/caf\xE9/", at.c_str(), true), kOk);
    EXPECT_EQ(fs::read_symlink(m_tree / "link").native(), "../no where/caf\xC3\xA9/");
}

TEST_F(LinkFile, ATakenNameIsLeftAsItIs)
{
    m_tree.write("a", "x");
    m_tree.write("file", "y");
    m_tree.makeFolder("folder");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makeLink("loop", "loop");
    const auto before = m_tree.items();
    for (const bool symbolic : {false, true}) {
        for (const char* at : {"a", "file", "folder", "dangling", "loop"}) {
            EXPECT_EQ(link("a", at, symbolic), kDestinationTaken) << at;
            EXPECT_EQ(link("missing", at, symbolic), kDestinationTaken) << at;
        }
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(LinkFile, EveryOtherFailureIsAFailedOperation)
{
    m_tree.write("a", "x");
    m_tree.makeFolder("folder");
    const auto before = m_tree.items();
    EXPECT_EQ(link("missing", "b", false), kOperationFailed);
    EXPECT_EQ(link("folder", "b", false), kOperationFailed);
    const Text a = m_tree.wide("a");
    const Text b = m_tree.wide("b");
    const Text bad = b + L'\xD800';
    for (const bool symbolic : {false, true}) {
        EXPECT_EQ(link("a", "no/folder", symbolic), kOperationFailed);
        EXPECT_EQ(link("a", "a/below", symbolic), kOperationFailed);
        EXPECT_EQ(link("a", std::string(300, 'n'), symbolic), kOperationFailed);
        EXPECT_EQ(XeFileSystem::linkFile(nullptr, b.c_str(), symbolic), kOperationFailed);
        EXPECT_EQ(XeFileSystem::linkFile(L"", b.c_str(), symbolic), kOperationFailed);
        EXPECT_EQ(XeFileSystem::linkFile(bad.c_str(), b.c_str(), symbolic), kOperationFailed);
        EXPECT_EQ(XeFileSystem::linkFile(a.c_str(), nullptr, symbolic), kOperationFailed);
        EXPECT_EQ(XeFileSystem::linkFile(a.c_str(), bad.c_str(), symbolic), kOperationFailed);
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(LinkFile, NeedsTheRightsOfTheFolder)
{
    m_tree.write("a", "x");
    fs::permissions(m_tree.path(), fs::perms(0555));
    asOrdinaryUser([&] {
        EXPECT_EQ(link("a", "b", true), kOperationFailed);
        EXPECT_EQ(link("a", "b", false), kOperationFailed);
    });
    EXPECT_FALSE(fs::exists(fs::symlink_status(m_tree / "b")));
}

} // namespace
