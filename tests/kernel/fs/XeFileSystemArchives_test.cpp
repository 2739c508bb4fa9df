#include "XeFileSystem.h"

#include "HardPaths.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "WidePath.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

constexpr auto kZipFailed = static_cast<XeResult>(0x8004E014);
constexpr auto kUnzipFailed = static_cast<XeResult>(0x8004E015);

XeResult zip(const fs::path& folder, const fs::path& archive, bool junkPaths = false)
{
    return XeFileSystem::zipFolder(wide(folder).c_str(), wide(archive).c_str(), junkPaths);
}

XeResult unzip(const fs::path& archive, const fs::path& folder, bool junkPaths = false)
{
    return XeFileSystem::unzipArchive(wide(archive).c_str(), wide(folder).c_str(), junkPaths);
}

TEST(IsArchive, LooksAtTheFirstFourBytes)
{
    using namespace std::string_literals;

    const TemporaryFolder folder;
    const std::pair<std::string, bool> kRows[] = {
        {"PK\3\4"s, true},   {"PK\3\4and more"s, true},
        {"PK\5\4"s, true},   {"PK\5\4\0\0"s, true},
        {"PK\5\6"s, false},  {"PK\5\6\0\0\0\0"s, false},
        {"PK\7\x8"s, false}, {"PK\1\2"s, false},
        {"\4\3KP"s, false},  {"pk\3\4"s, false},
        {"PK\3"s, false},    {"PK"s, false},
        {""s, false},        {" PK\3\4"s, false},
        {"PK\4\3"s, false},  {"PK\3\4"s + std::string(100000, 'x'), true},
    };
    for (const auto& [bytes, expected] : kRows) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 10)));
        EXPECT_EQ(XeFileSystem::isArchive(wide(folder.write("file", bytes))), expected);
    }
    fs::create_symlink("file", folder / "link");
    EXPECT_TRUE(XeFileSystem::isArchive(wide(folder / "link")));
}

TEST(IsArchive, OnlyAFileIsOne)
{
    const HardPaths paths;
    for (const auto& [name, path] : paths.leadingNowhere()) {
        EXPECT_FALSE(XeFileSystem::isArchive(path)) << name;
    }
    EXPECT_FALSE(XeFileSystem::isArchive(paths.wide("")));
    EXPECT_FALSE(XeFileSystem::isArchive(paths.wide("pipe"))); // and does not wait for a writer
    EXPECT_TRUE(XeFileSystem::isArchive(paths.wide("file")));
    EXPECT_TRUE(XeFileSystem::isArchive(paths.wide(HardPaths::kNotUtf8)));
    asOrdinaryUser([&] {
        for (const auto& [name, path] : paths.withoutRights()) {
            EXPECT_FALSE(XeFileSystem::isArchive(path)) << name;
        }
    });
}

TEST(IsArchive, AFileThatCannotBeReadIsNone)
{
    const HardPaths paths;
    fs::permissions(paths.folder() / "file", fs::perms(0));
    asOrdinaryUser([&] { EXPECT_FALSE(XeFileSystem::isArchive(paths.wide("file"))); });
}

/// Bytes of all files below a folder by their path, and of folders nothing.
using Tree = std::map<std::string, std::string>;

Tree treeOf(const fs::path& root)
{
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string name = entry.path().lexically_relative(root);
        tree[name] =
            entry.is_regular_file() ? TemporaryFolder::contents(entry.path()) : std::string("/");
    }
    return tree;
}

class Archives : public testing::Test {
protected:
    Archives()
    {
        fs::create_directory(m_folder / "in");
        fs::create_directory(m_folder / "out");
    }

    fs::path in() const { return m_folder / "in"; }
    fs::path out() const { return m_folder / "out"; }
    fs::path archive() const { return m_folder / "archive.zip"; }
    void add(const std::string& name, const std::string& bytes) const
    {
        fs::create_directories((in() / name).parent_path());
        m_folder.write("in/" + name, bytes);
    }

    const TemporaryFolder m_folder;
};

TEST_F(Archives, TakeAFolderThereAndBack)
{
    add("take.wav", std::string(100000, '\xAB'));
    add("empty", "");
    add("deep/er/and deeper/file", "x");
    add(".hidden", "h");
    for (const char* name :
         {"with space", "it's \"quoted\"", "-r", "--help", "@", "caf\xC3\xA9", "cafe\xCC\x81",
          "not utf-8 \xE9\xFE", "\xF0\x9F\x8E\xB5", "a[1]*?", "back\\slash", "$HOME", "#U00e9"}) {
        add(name, name);
        add(std::string("folder ") + name + "/" + name, name);
    }
    fs::create_directory(in() / "empty folder");
    ASSERT_EQ(zip(in(), archive()), 0);
    EXPECT_TRUE(XeFileSystem::isArchive(wide(archive())));
    ASSERT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), treeOf(in()));
}

TEST_F(Archives, StoreWithoutCompression)
{
    add("zeros", std::string(50000, '\0'));
    ASSERT_EQ(zip(in(), archive()), 0);
    EXPECT_GT(fs::file_size(archive()), 50000u);
}

TEST_F(Archives, WithJunkedPathsHaveNoFolders)
{
    add("a/one", "1");
    add("b/c/two", "2");
    ASSERT_EQ(zip(in(), archive(), true), 0);
    ASSERT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"one", "1"}, {"two", "2"}}));
}

TEST_F(Archives, CanBeTakenOutWithoutTheirFolders)
{
    add("a/one", "1");
    add("b/c/two", "2");
    ASSERT_EQ(zip(in(), archive()), 0);
    ASSERT_EQ(unzip(archive(), out(), true), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"one", "1"}, {"two", "2"}}));
}

void setModified(const fs::path& path, std::time_t seconds)
{
    const timespec times[] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST_F(Archives, AreUpdatedInPlace)
{
    add("old", "1");
    add("kept", "kept");
    setModified(in() / "old", 1600000000);
    setModified(in() / "kept", 1600000000);
    ASSERT_EQ(zip(in(), archive()), 0);
    add("old", "2");
    fs::remove(in() / "kept");
    add("new", "new");
    ASSERT_EQ(zip(in(), archive()), 0);
    ASSERT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"old", "2"}, {"kept", "kept"}, {"new", "new"}}));
}

TEST_F(Archives, WithNothingNewerFail)
{
    add("file", "1");
    ASSERT_EQ(zip(in(), archive()), 0);
    const std::string before = TemporaryFolder::contents(archive());
    EXPECT_EQ(zip(in(), archive()), kZipFailed);
    EXPECT_EQ(TemporaryFolder::contents(archive()), before);
}

TEST_F(Archives, OfNothingAreNotMade)
{
    EXPECT_EQ(zip(in(), archive()), kZipFailed);
    EXPECT_FALSE(fs::exists(archive()));
}

TEST_F(Archives, KeepWhatIsThere)
{
    add("file", "from the archive");
    add("other", "other");
    ASSERT_EQ(zip(in(), archive()), 0);
    m_folder.write("out/file", "mine");
    setModified(out() / "file", 1000000000); // older, too
    EXPECT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"file", "mine"}, {"other", "other"}}));
}

TEST_F(Archives, WithoutAnExtensionGetOne)
{
    add("file", "x");
    ASSERT_EQ(zip(in(), m_folder / "archive"), 0);
    EXPECT_EQ(m_folder.names(), (std::vector<std::string>{"archive.zip", "in", "out"}));
}

// What zip and unzip are known to lose; where they learn better, the header has to be told.
TEST_F(Archives, LoseSomeNames)
{
    add("-", "contents");
    add("control \x01", "x");
    add("last byte \xFF", "y");
    ASSERT_EQ(zip(in(), archive()), 0);
    ASSERT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"-", ""}, {"control ", "x"}, {"last byte ", "y"}}));
}

// The tools run in the other folder.
TEST_F(Archives, RelativePathsStartInTheWorkingFolder)
{
    add("file", "x");
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.path());
    EXPECT_EQ(zip("in", "-archive.zip"), 0);
    EXPECT_EQ(unzip("-archive.zip", "out"), 0);
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(m_folder / "-archive.zip"));
    EXPECT_EQ(treeOf(out()), (Tree{{"file", "x"}}));
}

TEST_F(Archives, OfAnyNameAreTheFileOfThatName)
{
    add("file", "right");
    for (const char* name : {"with space.zip", "caf\xC3\xA9 \xE9.zip", "it's \"$HOME\".zip",
                             "-.zip", "a[12].zip", "take*.zip", "what?.zip", "back\\slash.zip",
                             "back\\[1]\\.zip", "[[]].zip", "folder[1]/a*.zip"}) {
        SCOPED_TRACE(name);
        const fs::path path = m_folder / "archives" / name;
        fs::create_directories(path.parent_path());
        ASSERT_EQ(zip(in(), path), 0);
        EXPECT_TRUE(fs::exists(path));
        fs::remove_all(out());
        fs::create_directory(out());
        EXPECT_EQ(unzip(path, out()), 0);
        EXPECT_EQ(treeOf(out()), (Tree{{"file", "right"}}));
    }
}

// unzip takes a path for a pattern, and a file that it fits would come first.
TEST_F(Archives, AreNotMistakenForWhatTheirNameFits)
{
    add("file", "wrong");
    for (const char* name : {"a1.zip", "takes.zip", "whats.zip"}) {
        ASSERT_EQ(zip(in(), m_folder / name), 0);
    }
    fs::remove(in() / "file");
    add("file", "right");
    for (const char* name : {"a[1].zip", "take*.zip", "what?.zip"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(zip(in(), m_folder / name), 0);
        fs::remove(out() / "file");
        EXPECT_EQ(unzip(m_folder / name, out()), 0);
        EXPECT_EQ(treeOf(out()), (Tree{{"file", "right"}}));
        fs::remove(m_folder / name);
        EXPECT_EQ(unzip(m_folder / name, out()), kUnzipFailed);
    }
}

TEST_F(Archives, InTheirOwnFolderLeaveThemselvesOut)
{
    add("file", "x");
    ASSERT_EQ(zip(in(), in() / "archive.zip"), 0);
    ASSERT_EQ(unzip(in() / "archive.zip", out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"file", "x"}}));
}

TEST_F(Archives, TakeLinksForWhatTheyLeadToAndLeavePipesOut)
{
    add("file", "x");
    add("folder/inner", "y");
    fs::create_symlink("file", in() / "link");
    fs::create_symlink("folder", in() / "folder link");
    ASSERT_EQ(mkfifo((in() / "pipe").c_str(), 0600), 0);
    ASSERT_EQ(zip(in(), archive()), 0);
    ASSERT_EQ(unzip(archive(), out()), 0);
    EXPECT_EQ(treeOf(out()), (Tree{{"file", "x"},
                                   {"folder", "/"},
                                   {"folder/inner", "y"},
                                   {"folder link", "/"},
                                   {"folder link/inner", "y"},
                                   {"link", "x"}}));
    EXPECT_FALSE(fs::is_symlink(out() / "link"));
}

TEST_F(Archives, OfPathsThatLeadNowhereFail)
{
    const HardPaths paths;
    add("file", "x");
    ASSERT_EQ(zip(in(), archive()), 0);
    const fs::path before = fs::current_path();
    fs::current_path(in()); // which the empty path must not stand for
    for (const auto& [name, path] : paths.leadingNowhere()) {
        SCOPED_TRACE(name);
        const wchar_t* const text = path.c_str();
        const Text good = wide(m_folder / "good.zip");
        EXPECT_EQ(XeFileSystem::zipFolder(text, good.c_str(), false), kZipFailed);
        EXPECT_EQ(XeFileSystem::unzipArchive(text, wide(out()).c_str(), false), kUnzipFailed);
        EXPECT_EQ(XeFileSystem::unzipArchive(wide(archive()).c_str(), text, false), kUnzipFailed);
    }
    const Text from = wide(in());
    EXPECT_EQ(XeFileSystem::zipFolder(nullptr, wide(archive()).c_str(), false), kZipFailed);
    EXPECT_EQ(XeFileSystem::zipFolder(from.c_str(), nullptr, false), kZipFailed);
    EXPECT_EQ(XeFileSystem::zipFolder(from.c_str(), L"", false), kZipFailed);
    EXPECT_EQ(XeFileSystem::zipFolder(from.c_str(), L"/a\xD800", false), kZipFailed);
    EXPECT_EQ(XeFileSystem::unzipArchive(nullptr, wide(out()).c_str(), false), kUnzipFailed);
    EXPECT_EQ(XeFileSystem::unzipArchive(wide(archive()).c_str(), nullptr, false), kUnzipFailed);
    fs::current_path(before);
    EXPECT_FALSE(fs::exists(m_folder / "good.zip"));
    EXPECT_TRUE(treeOf(out()).empty());
    EXPECT_EQ(treeOf(in()), (Tree{{"file", "x"}}));
}

TEST_F(Archives, WhatIsInTheWayFails)
{
    add("file", "x");
    ASSERT_EQ(zip(in(), archive()), 0);
    ASSERT_EQ(mkfifo(m_folder.path("pipe.zip").c_str(), 0600), 0);
    fs::create_directory(m_folder / "folder.zip");
    EXPECT_EQ(zip(in(), m_folder / "folder.zip"), kZipFailed);
    EXPECT_EQ(zip(in() / "file", m_folder / "new.zip"), kZipFailed); // a file is no folder
    EXPECT_EQ(zip(in(), m_folder / "absent/new.zip"), kZipFailed);
    EXPECT_EQ(unzip(m_folder / "folder.zip", out()), kUnzipFailed);
    EXPECT_EQ(unzip(archive(), in() / "file"), kUnzipFailed);
    EXPECT_EQ(unzip(archive(), m_folder / "absent"), kUnzipFailed);
    EXPECT_TRUE(treeOf(out()).empty());
}

TEST_F(Archives, WithoutRightsFail)
{
    add("file", "x");
    ASSERT_EQ(zip(in(), archive()), 0);
    const std::string before = TemporaryFolder::contents(archive());
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(out(), fs::perms(0555));
    fs::permissions(m_folder.path(), fs::perms(0555));
    asOrdinaryUser([&] {
        EXPECT_EQ(zip(in(), m_folder / "new.zip"), kZipFailed);
        EXPECT_EQ(unzip(archive(), out()), kUnzipFailed);
    });
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(out(), fs::perms(0755));
    EXPECT_EQ(TemporaryFolder::contents(archive()), before);
    EXPECT_EQ(m_folder.names(), (std::vector<std::string>{"archive.zip", "in", "out"}));
    EXPECT_TRUE(treeOf(out()).empty());
}

TEST_F(Archives, DamagedOrOtherFilesFail)
{
    add("file", std::string(1000, 'x'));
    ASSERT_EQ(zip(in(), archive()), 0);
    const std::string whole = TemporaryFolder::contents(archive());
    std::string changed = whole;
    changed[500] = 'y'; // within the stored bytes
    for (const std::string& bytes :
         {std::string(), std::string("no archive"), whole.substr(0, 500), changed}) {
        SCOPED_TRACE(bytes.size());
        EXPECT_EQ(unzip(m_folder.write("bad.zip", bytes), out()), kUnzipFailed);
    }
}

TEST_F(Archives, LeaveNoDescriptorOpen)
{
    add("file", "x");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(zip(in(), archive()), 0);
    EXPECT_EQ(unzip(archive(), out()), 0);
    EXPECT_TRUE(XeFileSystem::isArchive(wide(archive())));
    EXPECT_EQ(unzip(m_folder / "absent", out()), kUnzipFailed);
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
