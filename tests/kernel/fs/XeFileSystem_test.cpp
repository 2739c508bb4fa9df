#include "XeFileSystem.h"

#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "XePath.h"
#include "core/XeNativePath.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class Presence : public testing::Test {
protected:
    static Text wide(const fs::path& path) { return xenon::path::fromNative(path.native()); }

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

class CreateFolder : public Presence {
protected:
    static XeResult create(const Text& path) { return XeFileSystem::createFolder(path.c_str()); }
    static XeResult create(const fs::path& path) { return create(wide(path)); }

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
    file("file");
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
    fs::permissions(m_folder.path(), fs::perms(0755));
    asOrdinaryUser([&] { EXPECT_EQ(create(m_folder / "a/b"), kFailed); });
    EXPECT_FALSE(fs::exists(m_folder / "a"));
}

} // namespace
