#include "XeFileSystem.h"

#include "HardPaths.h"
#include "MemoryFileSystem.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "XeNativePath.h"
#include "XePath.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class Presence : public testing::Test {
protected:
    fs::path file(const std::string& name) const
    {
        std::ofstream(m_folder / name) << "x";
        return m_folder / name;
    }

    static void expectFile(const fs::path& path) { expect(wide(path), true, false); }
    static void expectFolder(const fs::path& path) { expect(wide(path), false, true); }
    static void expectNothing(const Text& path) { expect(path, false, false); }
    static void expectNothing(const fs::path& path) { expectNothing(wide(path)); }

    const TemporaryFolder m_folder;

private:
    static void expect(const Text& path, bool isFile, bool isFolder)
    {
        EXPECT_EQ(XeFileSystem::isFilePresent(path), isFile);
        EXPECT_EQ(XeFileSystem::isFilePresent(path.c_str()), isFile);
        EXPECT_EQ(XeFileSystem::isFolderPresent(path), isFolder);
        EXPECT_EQ(XeFileSystem::isFolderPresent(path.c_str()), isFolder);
        EXPECT_EQ(XeFileSystem::isFolder(path), isFolder);
        EXPECT_EQ(XeFileSystem::isFolder(path.c_str()), isFolder);
        EXPECT_EQ(xenon::file::exists(path), isFile);
        EXPECT_EQ(xenon::file::exists(path.c_str()), isFile);
        EXPECT_EQ(xenon::directory::exists(path), isFolder);
        EXPECT_EQ(xenon::directory::exists(path.c_str()), isFolder);
    }
};

TEST_F(Presence, TellsFilesFromFolders)
{
    expectFile(file("take.wav"));
    expectFolder(m_folder.path());
    expectNothing(m_folder / "absent");
}

TEST_F(Presence, EmptyAndNullPathsNameNothing)
{
    expectNothing(Text());
    constexpr const wchar_t* kNull = nullptr;
    EXPECT_FALSE(XeFileSystem::isFilePresent(kNull));
    EXPECT_FALSE(XeFileSystem::isFolderPresent(kNull));
    EXPECT_FALSE(XeFileSystem::isFolder(kNull));
    EXPECT_FALSE(xenon::file::exists(kNull));
    EXPECT_FALSE(xenon::directory::exists(kNull));
}

TEST_F(Presence, FollowsLinks)
{
    fs::create_symlink(file("target"), m_folder / "fileLink");
    fs::create_symlink(m_folder.path(), m_folder / "folderLink");
    expectFile(m_folder / "fileLink");
    expectFolder(m_folder / "folderLink");
}

TEST_F(Presence, DanglingAndCircularLinksNameNothing)
{
    fs::create_symlink(m_folder / "nowhere", m_folder / "dangling");
    fs::create_symlink(m_folder / "loop", m_folder / "loop");
    expectNothing(m_folder / "dangling");
    expectNothing(m_folder / "loop");
}

TEST_F(Presence, PipesAreNeitherFileNorFolderAndAreNotOpened)
{
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    expectNothing(m_folder / "pipe");
}

TEST_F(Presence, PathsThatCannotBeLookedUpNameNothing)
{
    expectNothing(file("file") / "below");
    expectNothing(m_folder / std::string(300, 'x'));
    expectNothing(Text(wide(m_folder / "a") + L'\xD800'));
}

TEST_F(Presence, NamesAreTakenAsTheirBytes)
{
    expectFile(file("caf\xC3\xA9"));
    expectFile(file("not utf-8 \xE9\xFF"));
    expectNothing(m_folder / "cafe\xCC\x81");
}

constexpr auto kFailure = static_cast<XeResult>(0x80000008);

/// What all the functions say of a path that leads to no item.
void expectNoItem(const wchar_t* path)
{
    using namespace XeFileSystem;

    EXPECT_FALSE(isFilePresent(path));
    EXPECT_FALSE(isFolderPresent(path));
    EXPECT_FALSE(isFolder(path));
    EXPECT_FALSE(isFolderEmpty(path));
    EXPECT_FALSE(isHidden(path));
    EXPECT_FALSE(isFileReadonly(path));
    EXPECT_FALSE(isFolderReadonly(path));
    EXPECT_FALSE(isFileLocked(path));
    EXPECT_FALSE(isFolderLocked(path));
    EXPECT_FALSE(setFileReadonly(path, false));
    EXPECT_FALSE(setFileReadonly(path, true));
    EXPECT_EQ(touchLastModified(path), kFailure);

    tFileTime time{7, 8};
    EXPECT_EQ(getLastModified(path, time), kFailure);
    EXPECT_EQ(time, (tFileTime{7, 8}));
    EXPECT_EQ(getModifiedTime(path), -1);
    EXPECT_EQ(getCreationTime(path), -1);

    long long size = 9;
    EXPECT_EQ(getFileSize(path, size), kFailure);
    EXPECT_EQ(size, 9);
    EXPECT_EQ(getFileSize(path), -1);

    tFileAtrribute attribute{.size = 9, .created = {}, .modified = {}, .link = true};
    EXPECT_EQ(getFileAttribute(path, attribute), kFailure);
    EXPECT_EQ(attribute.size, 9);
    EXPECT_TRUE(attribute.link);
}

void expectNoItem(const Text& path)
{
    expectNoItem(path.c_str());
    EXPECT_FALSE(XeFileSystem::setLockFile(path, true));
    EXPECT_FALSE(XeFileSystem::setLockFile(path, false));
    Text name = L"before";
    EXPECT_FALSE(XeFileSystem::getStrictFileName(path, name));
    EXPECT_EQ(name, L"before");
}

TEST(ItemFunctions, TellNothingOfPathsThatLeadNowhere)
{
    const HardPaths paths;
    for (const auto& [name, path] : paths.leadingNowhere()) {
        SCOPED_TRACE(name);
        expectNoItem(path);
    }
    expectNoItem(nullptr);
}

TEST(ItemFunctions, TellNothingOfWhatTheUserCannotReach)
{
    const HardPaths paths;
    asOrdinaryUser([&] {
        for (const auto& [name, path] : paths.withoutRights()) {
            SCOPED_TRACE(name);
            expectNoItem(path);
        }
    });
}

// Each would block for ever if it opened the pipe.
TEST(ItemFunctions, TakeAPipeAsAnItemThatIsNoFile)
{
    using namespace XeFileSystem;

    const HardPaths paths;
    const Text pipe = paths.wide("pipe");
    EXPECT_FALSE(isFilePresent(pipe));
    EXPECT_FALSE(isFolderPresent(pipe));
    EXPECT_FALSE(isFolderEmpty(pipe));
    EXPECT_EQ(getFileSize(pipe.c_str()), -1);
    EXPECT_FALSE(isFileLocked(pipe));
    EXPECT_FALSE(setLockFile(pipe, true));
    EXPECT_FALSE(isFileReadonly(pipe));
    EXPECT_TRUE(setFileReadonly(pipe.c_str(), true));
    EXPECT_TRUE(isFileReadonly(pipe));
    EXPECT_EQ(touchLastModified(pipe.c_str()), 0);
    EXPECT_GT(getModifiedTime(pipe.c_str()), 0);
    EXPECT_GT(getCreationTime(pipe.c_str()), 0);
    tFileAtrribute attribute;
    EXPECT_EQ(getFileAttribute(pipe.c_str(), attribute), 0);
    EXPECT_FALSE(attribute.folder);
    EXPECT_EQ(attribute.size, 0);
    EXPECT_TRUE(attribute.readonly);
    Text name;
    EXPECT_TRUE(getStrictFileName(pipe, name));
    EXPECT_EQ(name, L"pipe");
}

TEST(ItemFunctions, WorkOnNamesThatAreNotUtf8)
{
    using namespace XeFileSystem;

    const HardPaths paths;
    const Text file = paths.wide(HardPaths::kNotUtf8);
    EXPECT_TRUE(isFilePresent(file));
    EXPECT_EQ(getFileSize(file.c_str()), 6);
    EXPECT_TRUE(setFileReadonly(file.c_str(), true));
    EXPECT_TRUE(isFileReadonly(file));
    EXPECT_EQ(touchLastModified(file.c_str()), 0);
    EXPECT_GT(getModifiedTime(file.c_str()), 0);
    tFileAtrribute attribute;
    EXPECT_EQ(getFileAttribute(file.c_str(), attribute), 0);
    EXPECT_EQ(attribute.size, 6);
    Text name;
    EXPECT_TRUE(getStrictFileName(file, name));
    EXPECT_EQ(name, Text(L"not utf-8 ") + L'\xDCE9' + L'\xDCFF');
}

class Items : public testing::Test {
protected:
    Text item(const std::string& name) const { return wide(m_folder / name); }
    Text file(const std::string& name, const std::string& bytes = "x") const
    {
        return xenon::path::fromNative(m_folder.write(name, bytes));
    }
    mode_t modeOf(const std::string& name) const
    {
        struct stat status {};
        EXPECT_EQ(stat(m_folder.path(name).c_str(), &status), 0);
        return status.st_mode & 07777;
    }
    void setMode(const std::string& name, mode_t mode) const
    {
        EXPECT_EQ(chmod(m_folder.path(name).c_str(), mode), 0);
    }
    void makeReachable() const { setMode("", 0755); }

    const TemporaryFolder m_folder;
};

TEST_F(Items, AFolderIsEmptyWhenNothingIsInIt)
{
    fs::create_directory(m_folder / "folder");
    fs::create_directory_symlink("folder", m_folder / "link");
    EXPECT_TRUE(XeFileSystem::isFolderEmpty(item("folder")));
    EXPECT_TRUE(XeFileSystem::isFolderEmpty(item("folder").c_str()));
    EXPECT_TRUE(XeFileSystem::isFolderEmpty(item("folder/")));
    EXPECT_TRUE(XeFileSystem::isFolderEmpty(item("link")));
    file("folder/.hidden");
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(item("folder")));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(item("link")));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(file("empty file", "")));
}

TEST_F(Items, AFolderThatCannotBeReadIsNotEmpty)
{
    makeReachable();
    fs::create_directory(m_folder / "folder");
    setMode("folder", 0111);
    asOrdinaryUser([&] { EXPECT_FALSE(XeFileSystem::isFolderEmpty(item("folder"))); });
}

TEST(Hidden, IsAnItemWhoseNameBeginsWithADot)
{
    for (const wchar_t* path :
         {L".profile", L"/a/.b", L"/a/.b/", L"/a/.b//", L"..x", L"/...", L".x"}) {
        EXPECT_TRUE(XeFileSystem::isHidden(path)) << Text(path).size();
        EXPECT_TRUE(XeFileSystem::isHidden(Text(path)));
    }
    for (const wchar_t* path :
         {L"", L"/", L".", L"..", L"./", L"/a/..", L"/.a/b", L"a.b", L"/a."}) {
        EXPECT_FALSE(XeFileSystem::isHidden(path)) << Text(path).size();
        EXPECT_FALSE(XeFileSystem::isHidden(Text(path)));
    }
    constexpr const wchar_t* kNull = nullptr;
    EXPECT_FALSE(XeFileSystem::isHidden(kNull));
}

// The owner's bit counts, not what this process may do.
TEST_F(Items, AFileIsReadonlyWhenItsOwnerMayNotWriteIt)
{
    const Text path = file("file");
    constexpr std::pair<mode_t, bool> kRows[] = {{0600, false}, {0644, false}, {0200, false},
                                                 {0444, true},  {0466, true},  {0577, true},
                                                 {0000, true},  {0022, true}};
    for (const auto& [mode, readonly] : kRows) {
        SCOPED_TRACE(mode);
        setMode("file", mode);
        EXPECT_EQ(XeFileSystem::isFileReadonly(path), readonly);
        EXPECT_EQ(XeFileSystem::isFileReadonly(path.c_str()), readonly);
    }
    fs::create_symlink("file", m_folder / "link");
    EXPECT_TRUE(XeFileSystem::isFileReadonly(item("link")));
    setMode("file", 0600);
    EXPECT_FALSE(XeFileSystem::isFileReadonly(item("link")));
}

TEST_F(Items, AFileOfSomebodyElseIsNotReadonlyForThat)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes root to make a file that is somebody else's";
    }
    makeReachable();
    const Text path = file("file");
    setMode("file", 0644);
    asOrdinaryUser([&] { EXPECT_FALSE(XeFileSystem::isFileReadonly(path)); });
}

TEST_F(Items, AFolderIsReadonlyAlsoWhenThisProcessMayNotWriteIt)
{
    makeReachable();
    fs::create_directory(m_folder / "folder");
    const auto expectReadonly = [&](bool readonly) {
        EXPECT_EQ(XeFileSystem::isFolderReadonly(item("folder")), readonly);
        EXPECT_EQ(XeFileSystem::isFolderReadonly(item("folder").c_str()), readonly);
        EXPECT_EQ(XeFileSystem::isFileReadonly(item("folder")), readonly);
    };
    setMode("folder", 0755);
    expectReadonly(false);
    setMode("folder", 0555);
    expectReadonly(true);
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes root to make a folder that is somebody else's";
    }
    setMode("folder", 0755);
    asOrdinaryUser([&] { expectReadonly(true); });
    setMode("folder", 0777);
    asOrdinaryUser([&] { expectReadonly(false); });
    setMode("folder", 0577);
    asOrdinaryUser([&] { expectReadonly(true); });
}

// Their types have the bit that tells folders.
TEST_F(Items, SocketsAreReadonlyAsFoldersAre)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes root to make a socket that is somebody else's";
    }
    makeReachable();
    ASSERT_EQ(mknod(m_folder.path("socket").c_str(), S_IFSOCK, 0), 0);
    ASSERT_EQ(mkfifo(m_folder.path("pipe").c_str(), 0), 0);
    const auto expectReadonly = [&](const std::string& name, bool readonly) {
        tFileAtrribute attribute;
        EXPECT_EQ(XeFileSystem::isFileReadonly(item(name)), readonly) << name;
        EXPECT_EQ(XeFileSystem::getFileAttribute(item(name).c_str(), attribute), 0);
        EXPECT_EQ(attribute.readonly, readonly) << name;
    };
    for (const mode_t mode : {0755, 0722}) {
        setMode("socket", mode);
        setMode("pipe", mode);
        expectReadonly("socket", false);
        asOrdinaryUser([&] {
            expectReadonly("socket", mode == 0755);
            expectReadonly("pipe", false);
        });
    }
}

TEST_F(Items, SettingReadonlyChangesTheOwnersRightToWriteOnly)
{
    file("item");
    for (const char* name : {"item", "folder"}) {
        SCOPED_TRACE(name);
        fs::create_directory(m_folder / "folder");
        for (const mode_t others : {0000, 0577, 07577, 0444, 01055}) {
            SCOPED_TRACE(others);
            setMode(name, others);
            EXPECT_TRUE(XeFileSystem::setFileReadonly(item(name).c_str(), false));
            EXPECT_EQ(modeOf(name), others | 0200);
            EXPECT_TRUE(XeFileSystem::setFileReadonly(item(name).c_str(), false));
            EXPECT_EQ(modeOf(name), others | 0200);
            EXPECT_TRUE(XeFileSystem::setFileReadonly(item(name).c_str(), true));
            EXPECT_EQ(modeOf(name), others);
        }
        setMode(name, 0700);
    }
}

TEST_F(Items, SettingReadonlyOfSomebodyElsesFileFails)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes root to make a file that is somebody else's";
    }
    makeReachable();
    const Text path = file("file");
    setMode("file", 0666);
    asOrdinaryUser([&] { EXPECT_FALSE(XeFileSystem::setFileReadonly(path.c_str(), true)); });
    EXPECT_EQ(modeOf("file"), 0666u);
}

void setTimes(const std::string& path, timespec accessed, timespec modified)
{
    const timespec times[] = {accessed, modified};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST_F(Items, TheLastModificationIsTold)
{
    const Text path = file("file");
    fs::create_symlink("file", m_folder / "link");
    constexpr std::pair<long, long> kRows[] = {
        {0, 0}, {1, 999999999}, {1700000000, 123456789}, {-1, 500000000}, {-100000, 0}};
    for (const auto& [seconds, nanoseconds] : kRows) {
        SCOPED_TRACE(seconds);
        setTimes(m_folder.path("file"), {5, 0}, {seconds, nanoseconds});
        for (const Text& each : {path, item("link")}) {
            tFileTime time;
            EXPECT_EQ(XeFileSystem::getLastModified(each.c_str(), time), 0);
            EXPECT_EQ(time.seconds, seconds);
            EXPECT_EQ(time.nanoseconds, nanoseconds);
            EXPECT_EQ(XeFileSystem::getModifiedTime(each.c_str()), seconds);
        }
    }
}

/// By the clock that file times may have, too; that of time(2) lags behind it.
std::time_t now() { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); }

TEST_F(Items, TouchingSetsTheLastModificationToNowAndNoOtherTime)
{
    for (const char* name : {"file", "folder"}) {
        SCOPED_TRACE(name);
        file("file", "contents");
        fs::create_directory(m_folder / "folder");
        setTimes(m_folder.path(name), {1000, 1}, {2000, 2});
        const std::time_t before = now() - 1; // the clock of file times may lag a little
        EXPECT_EQ(XeFileSystem::touchLastModified(item(name).c_str()), 0);
        struct stat status {};
        ASSERT_EQ(stat(m_folder.path(name).c_str(), &status), 0);
        EXPECT_GE(status.st_mtime, before);
        EXPECT_LE(status.st_mtime, now());
        EXPECT_EQ(status.st_atime, 1000);
    }
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("file")), "contents");
}

TEST_F(Items, TouchingTakesTheRightToWrite)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes root to make a file that is somebody else's";
    }
    makeReachable();
    const Text path = file("file");
    setMode("file", 0644);
    setTimes(m_folder.path("file"), {1000, 0}, {2000, 0});
    asOrdinaryUser([&] {
        EXPECT_EQ(XeFileSystem::touchLastModified(path.c_str()), kFailure);
        EXPECT_EQ(XeFileSystem::getModifiedTime(path.c_str()), 2000);
    });
    setMode("file", 0646);
    asOrdinaryUser([&] {
        EXPECT_EQ(XeFileSystem::touchLastModified(path.c_str()), 0);
        EXPECT_GT(XeFileSystem::getModifiedTime(path.c_str()), 1700000000);
    });
}

TEST_F(Items, SizesAreThoseOfRegularFiles)
{
    fs::create_symlink("file", m_folder / "link");
    for (const long long bytes : {0LL, 1LL, 70000LL, 0x100000001LL}) {
        file("file", "");
        fs::resize_file(m_folder / "file", static_cast<std::uintmax_t>(bytes));
        for (const char* name : {"file", "link"}) {
            long long size = -7;
            EXPECT_EQ(XeFileSystem::getFileSize(item(name).c_str(), size), 0);
            EXPECT_EQ(size, bytes);
            EXPECT_EQ(XeFileSystem::getFileSize(item(name).c_str()), bytes);
        }
    }
    long long size = -7;
    EXPECT_EQ(XeFileSystem::getFileSize(wide(m_folder.path()).c_str(), size), kFailure);
    EXPECT_EQ(size, -7);
}

TEST_F(Items, AttributesAreThoseOfWhatALinkLeadsTo)
{
    file(".file", "12345");
    setMode(".file", 0400);
    setTimes(m_folder.path(".file"), {5, 0}, {1700000000, 77});
    fs::create_symlink(".file", m_folder / "link");
    tFileAtrribute attribute;
    ASSERT_EQ(XeFileSystem::getFileAttribute(item(".file").c_str(), attribute), 0);
    EXPECT_EQ(attribute.size, 5);
    EXPECT_EQ(attribute.modified, (tFileTime{1700000000, 77}));
    EXPECT_EQ(attribute.created.seconds, XeFileSystem::getCreationTime(item(".file").c_str()));
    EXPECT_FALSE(attribute.folder);
    EXPECT_FALSE(attribute.link);
    EXPECT_TRUE(attribute.hidden);
    EXPECT_TRUE(attribute.readonly);
    EXPECT_FALSE(attribute.locked);

    ASSERT_EQ(XeFileSystem::getFileAttribute(item("link").c_str(), attribute), 0);
    EXPECT_EQ(attribute.size, 5);
    EXPECT_EQ(attribute.modified, (tFileTime{1700000000, 77}));
    EXPECT_TRUE(attribute.link);
    EXPECT_FALSE(attribute.hidden);
    EXPECT_TRUE(attribute.readonly);
}

TEST_F(Items, AFolderHasNoSize)
{
    fs::create_directory(m_folder / "folder");
    tFileAtrribute attribute{.size = 7, .created = {}, .modified = {}};
    ASSERT_EQ(XeFileSystem::getFileAttribute(item("folder").c_str(), attribute), 0);
    EXPECT_EQ(attribute.size, 0);
    EXPECT_TRUE(attribute.folder);
    EXPECT_FALSE(attribute.readonly);
}

Text strictNameOf(const Text& path)
{
    Text name = L"none";
    EXPECT_TRUE(XeFileSystem::getStrictFileName(path, name));
    return name;
}

TEST_F(Items, TheStrictNameIsThatOfTheEntry)
{
    fs::create_directory(m_folder / "Folder");
    fs::create_symlink("Folder", m_folder / "link");
    file("caf\xC3\xA9");
    file("cafe\xCC\x81");
    EXPECT_EQ(strictNameOf(item("Folder")), L"Folder");
    EXPECT_EQ(strictNameOf(item("Folder//")), L"Folder");
    EXPECT_EQ(strictNameOf(item("Folder/.")), L"Folder");
    EXPECT_EQ(strictNameOf(item("Folder/../Folder")), L"Folder");
    EXPECT_EQ(strictNameOf(item("link")), L"link");
    EXPECT_EQ(strictNameOf(item("caf\xC3\xA9")), L"caf\u00E9"); // two names, not one in two forms
    EXPECT_EQ(strictNameOf(item("cafe\xCC\x81")), L"cafe\u0301");
    EXPECT_EQ(strictNameOf(item("Folder/..")), wide(m_folder.path().filename()));
    EXPECT_EQ(strictNameOf(L"/"), L"/");
}

TEST_F(Items, TheStrictNameMayReplaceThePath)
{
    Text path = file("take.wav");
    EXPECT_TRUE(XeFileSystem::getStrictFileName(path, path));
    EXPECT_EQ(path, L"take.wav");
}

TEST_F(Items, TheStrictNameOfARelativePathIsFoundInTheWorkingFolder)
{
    file("take.wav");
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.path());
    EXPECT_EQ(strictNameOf(L"take.wav"), L"take.wav");
    EXPECT_EQ(strictNameOf(L"./take.wav"), L"take.wav");
    EXPECT_EQ(strictNameOf(L"."), wide(m_folder.path().filename()));
    fs::current_path(before);
}

// A folder that may be passed tells no names, but the item is there.
TEST_F(Items, WhereTheFolderCannotBeReadTheNameIsAsAsked)
{
    makeReachable();
    fs::create_directory(m_folder / "folder");
    const Text path = file("folder/take.wav");
    setMode("folder", 0111);
    asOrdinaryUser([&] { EXPECT_EQ(strictNameOf(path), L"take.wav"); });
    setMode("folder", 0700);
}

/// A remote volume whose mount point is a local folder that holds other things.
class RemoteItems : public testing::Test {
protected:
    RemoteItems()
    {
        m_remote->addFolder(m_root);
        m_remote->addFolder(m_root + L"/empty");
        m_remote->addFolder(m_root + L"/full");
        m_remote->addFile(m_root + L"/full/take.wav", "12345");
        m_folder.write("local.wav", "local");
    }

    const TemporaryFolder m_folder;
    const Text m_root = xenon::path::fromNative(m_folder.path().native());
    std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteItems, PresenceIsWhatTheRemoteTells)
{
    EXPECT_TRUE(XeFileSystem::isFilePresent(m_root + L"/full/take.wav"));
    EXPECT_FALSE(XeFileSystem::isFolderPresent(m_root + L"/full/take.wav"));
    for (const wchar_t* name : {L"", L"/", L"/empty", L"/empty/", L"/full"}) {
        EXPECT_TRUE(XeFileSystem::isFolderPresent(m_root + name));
        EXPECT_TRUE(XeFileSystem::isFolder(m_root + name));
        EXPECT_FALSE(XeFileSystem::isFilePresent(m_root + name));
    }
    for (const wchar_t* name : {L"/local.wav", L"/absent"}) {
        EXPECT_FALSE(XeFileSystem::isFilePresent(m_root + name));
        EXPECT_FALSE(XeFileSystem::isFolderPresent(m_root + name));
    }
}

TEST_F(RemoteItems, FoldersAreEmptyWhenTheRemoteSaysSo)
{
    EXPECT_TRUE(XeFileSystem::isFolderEmpty(m_root + L"/empty"));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(m_root + L"/full"));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(m_root + L"/full/take.wav"));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(m_root + L"/absent"));
}

TEST_F(RemoteItems, SizesComeFromTheRemote)
{
    long long size = -7;
    EXPECT_EQ(XeFileSystem::getFileSize((m_root + L"/full/take.wav").c_str(), size), 0);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(XeFileSystem::getFileSize((m_root + L"/full/take.wav").c_str()), 5);
    EXPECT_EQ(XeFileSystem::getFileSize((m_root + L"/local.wav").c_str()), -1);
}

TEST_F(RemoteItems, FailuresOfTheRemoteReachTheCaller)
{
    constexpr auto kGone = static_cast<XeResult>(0x8004E195);
    for (const char* operation : {"getFileSize", "isFolderEmpty"}) {
        m_remote->failures[operation] = kGone;
    }
    long long size = -7;
    EXPECT_EQ(XeFileSystem::getFileSize((m_root + L"/full/take.wav").c_str(), size), kGone);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(XeFileSystem::getFileSize((m_root + L"/full/take.wav").c_str()), -1);
    EXPECT_FALSE(XeFileSystem::isFilePresent(m_root + L"/full/take.wav"));
    EXPECT_FALSE(XeFileSystem::isFolderPresent(m_root + L"/empty"));
    EXPECT_FALSE(XeFileSystem::isFolderEmpty(m_root + L"/empty"));
}

TEST_F(RemoteItems, TheStrictNameIsTheOneThatTheRemoteAccepts)
{
    Text name;
    EXPECT_TRUE(XeFileSystem::getStrictFileName(m_root + L"/full/a:b.wav", name));
    EXPECT_EQ(name, L"a_b.wav");
    EXPECT_TRUE(XeFileSystem::getStrictFileName(m_root + L"/new:folder/", name));
    EXPECT_EQ(name, L"new_folder");
    EXPECT_EQ(m_remote->calls, std::vector<std::string>(2, "strictFileName"));
}

TEST_F(RemoteItems, WithoutAnAnswerThereIsNoStrictName)
{
    Text name = L"before";
    for (const XeResult failure : {kFailure, static_cast<XeResult>(0x8004E195)}) {
        m_remote->failures["strictFileName"] = failure;
        EXPECT_FALSE(XeFileSystem::getStrictFileName(m_root + L"/local.wav", name));
    }
    EXPECT_EQ(name, L"before");
}

// What is not the remote's to answer is answered by the folder on which it is mounted.
TEST_F(RemoteItems, OtherFunctionsLookAtTheLocalFolder)
{
    const Text local = m_root + L"/local.wav";
    EXPECT_GT(XeFileSystem::getModifiedTime(local.c_str()), 0);
    EXPECT_TRUE(XeFileSystem::setFileReadonly(local.c_str(), true));
    EXPECT_TRUE(XeFileSystem::isFileReadonly(local));
    EXPECT_EQ(XeFileSystem::touchLastModified(local.c_str()), 0);
    EXPECT_EQ(XeFileSystem::touchLastModified((m_root + L"/full").c_str()), kFailure);
    EXPECT_TRUE(m_remote->calls.empty());
}

} // namespace
