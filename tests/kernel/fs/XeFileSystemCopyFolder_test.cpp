#include "XeFileSystem.h"

#include "FileTree.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "ResultCodes.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

constexpr ECopyOption kMerge = ECopyOption(0);
constexpr ECopyOption kFailIfExists = ECopyOption(1);

class CopyFolder : public testing::Test {
protected:
    static XeResult copy(const Text& from, const Text& to, ECopyOption option = kMerge)
    {
        return XeFileSystem::copyFolder(from.c_str(), to.c_str(), option);
    }
    XeResult copy(const std::string& from, const std::string& to, ECopyOption option = kMerge) const
    {
        return copy(m_tree.wide(from), m_tree.wide(to), option);
    }
    void refuses(XeResult code, const std::string& from, const std::string& to,
                 ECopyOption option = kMerge) const
    {
        SCOPED_TRACE(from + " to " + to);
        const auto before = m_tree.items();
        EXPECT_EQ(copy(from, to, option), code);
        EXPECT_EQ(m_tree.items(), before);
    }
    auto items(const std::string& folder) const { return FileTree::itemsOf(m_tree / folder); }

    /// A folder "a" with something of every kind that is copied as it stands.
    void makeSource() const
    {
        m_tree.makeFolder("a/sub/deep");
        m_tree.makeFolder("a/empty");
        m_tree.write("a/one", "1");
        m_tree.write("a/.hidden", "h");
        m_tree.write("a/sub/two", "22");
        m_tree.write("a/sub/deep/\xE9\xFF", "333");
        fs::permissions(m_tree / "a/one", fs::perms(0600));
        fs::permissions(m_tree / "a/sub", fs::perms(0700));
    }

    const FileTree m_tree;
};

TEST_F(CopyFolder, CopiesAllThatIsBelow)
{
    makeSource();
    EXPECT_EQ(copy("a", "b"), kOk);
    EXPECT_EQ(items("b"), items("a"));
    EXPECT_EQ(copy("a/", "c/", kFailIfExists), kOk);
    EXPECT_EQ(items("c"), items("a"));
    EXPECT_EQ(copy("a/empty", "d"), kOk);
    EXPECT_TRUE(fs::is_empty(m_tree / "d"));
}

TEST_F(CopyFolder, AMissingSourceIsToldFirst)
{
    m_tree.makeFolder("there");
    m_tree.write("file", "x");
    for (const char* from : {"missing", "file", "file/below"}) {
        refuses(kSourceMissing, from, "b");
        refuses(kSourceMissing, from, "there", kFailIfExists);
    }
    const Text none;
    EXPECT_EQ(XeFileSystem::copyFolder(nullptr, nullptr, kMerge), kSourceMissing);
    EXPECT_EQ(copy(none, m_tree.wide("b")), kSourceMissing);
    EXPECT_EQ(copy(m_tree.wide("there") + L'\xD800', m_tree.wide("b")), kSourceMissing);
}

TEST_F(CopyFolder, FailIfExistsCopiesNothingOntoAFolderThatIsThere)
{
    makeSource();
    m_tree.makeFolder("b");
    refuses(kGeneral, "a", "b", kFailIfExists);
}

TEST_F(CopyFolder, EveryOtherOptionMergesAndOverwrites)
{
    makeSource();
    m_tree.makeFolder("b/sub");
    m_tree.write("b/one", "a longer old one");
    m_tree.write("b/sub/kept", "k");
    for (const int option : {0, 2, -1}) {
        EXPECT_EQ(copy("a", "b", ECopyOption(option)), kOk);
        auto expected = items("a");
        expected["sub/kept"] = items("b")["sub/kept"];
        expected["sub"] = items("b")["sub"];
        EXPECT_EQ(items("b"), expected);
    }
}

// Only one level is made.
TEST_F(CopyFolder, ADestinationThatCannotBeMadeIsAGeneralFailure)
{
    makeSource();
    m_tree.write("file", "x");
    m_tree.makeLink("dangling", "nowhere");
    for (const char* to : {"no/folder", "file", "file/below", "dangling"}) {
        refuses(kGeneral, "a", to);
        refuses(kGeneral, "a", to, kFailIfExists);
    }
    refuses(kGeneral, "a", std::string(300, 'n'));
    EXPECT_EQ(copy(m_tree.wide("a"), m_tree.wide("b") + L'\xD800'), kGeneral);
}

TEST_F(CopyFolder, StopsAtTheFirstFailureAndKeepsWhatWasCopied)
{
    for (int i = 0; i < 30; ++i) {
        m_tree.makeFolder("a");
        m_tree.write("a/file" + std::to_string(i), "x");
    }
    m_tree.makePipe("a/pipe");
    EXPECT_EQ(copy("a", "b"), kOperationFailed);
    // Those that the system lists before the pipe.
    std::size_t before = 0;
    for (fs::directory_iterator entry(m_tree / "a"); entry->path().filename() != "pipe"; ++entry) {
        EXPECT_TRUE(fs::exists(m_tree / "b" / entry->path().filename()));
        ++before;
    }
    EXPECT_EQ(m_tree.names("b").size(), before);
}

TEST_F(CopyFolder, AFailureBelowIsThatOfTheWhole)
{
    m_tree.makeFolder("a/sub/deep");
    m_tree.makeLink("a/sub/deep/dangling", "nowhere");
    EXPECT_EQ(copy("a", "b"), kOperationFailed);
}

TEST_F(CopyFolder, AFolderInTheWayOfAFileIsAFailureAndTheOtherWayRound)
{
    m_tree.makeFolder("a");
    m_tree.makeFolder("b/item");
    m_tree.write("a/item", "x");
    refuses(kOperationFailed, "a", "b");
    refuses(kGeneral, "b", "a");
}

TEST_F(CopyFolder, SpecialFilesAreFailuresAndNotOpened)
{
    m_tree.makeFolder("a");
    m_tree.makePipe("pipe");
    m_tree.makeLink("a/link", "../pipe");
    EXPECT_EQ(copy("a", "b"), kOperationFailed);
    EXPECT_TRUE(fs::is_empty(m_tree / "b"));
}

TEST_F(CopyFolder, FollowsLinksToFilesAndFolders)
{
    m_tree.makeFolder("outside/sub");
    m_tree.write("outside/sub/file", "f");
    m_tree.makeFolder("a");
    m_tree.makeLink("a/file", "../outside/sub/file");
    m_tree.makeLink("a/folder", "../outside");
    m_tree.makeLink("link", "a");
    EXPECT_EQ(copy("link", "b"), kOk);
    EXPECT_EQ(m_tree.names("b"), (std::vector<std::string>{"file", "folder"}));
    EXPECT_EQ(FileTree::contents(m_tree.path("b/file")), "f");
    EXPECT_EQ(FileTree::contents(m_tree.path("b/folder/sub/file")), "f");
    for (const auto& [name, item] : items("b")) {
        EXPECT_FALSE(item.starts_with("link")) << name;
    }
}

TEST_F(CopyFolder, LinksToAFolderAboveAreLeftOut)
{
    m_tree.makeFolder("above/a/sub");
    m_tree.write("above/a/file", "f");
    m_tree.makeLink("above/a/self", ".");
    m_tree.makeLink("above/a/sub/parent", "..");
    m_tree.makeLink("above/a/sub/root", "/");
    m_tree.makeLink("above/a/sub/higher", m_tree / "above");
    EXPECT_EQ(copy("above/a", "b"), kOk);
    EXPECT_EQ(items("b"), (std::map<std::string, std::string>{
                              {"file", items("above/a").at("file")},
                              {"sub", items("above/a").at("sub")},
                          }));
}

// Two folders that link to each other, and one that links to the folder that holds it, seen from
// where a link led to.
TEST_F(CopyFolder, RoundsOfLinksEnd)
{
    m_tree.makeFolder("a");
    m_tree.makeFolder("other/inner");
    m_tree.makeLink("a/other", "../other");
    m_tree.makeLink("other/a", "../a");
    m_tree.makeLink("a/inner", "../other/inner");
    m_tree.makeLink("other/inner/up", "..");
    m_tree.write("other/inner/file", "f");
    EXPECT_EQ(copy("a", "b"), kOk);
    EXPECT_TRUE(fs::exists(m_tree / "b/other/inner/file"));
    EXPECT_TRUE(fs::exists(m_tree / "b/inner/file"));
    EXPECT_FALSE(fs::exists(m_tree / "b/other/a"));
    EXPECT_FALSE(fs::exists(m_tree / "b/inner/up"));
    EXPECT_FALSE(fs::exists(m_tree / "b/other/inner/up"));
}

TEST_F(CopyFolder, IsNotCopiedIntoItself)
{
    makeSource();
    m_tree.makeLink("link", "a/sub");
    m_tree.makeFolder("ab");
    for (const char* to : {"a", "a/", "a/.", "a/new", "a/sub", "a/sub/new", "link/new", "link",
                           "a/sub/../new", "./a/new"}) {
        refuses(kGeneral, "a", to);
    }
    refuses(kGeneral, "link", "a/sub/new");
    EXPECT_EQ(copy("a", "ab/a"), kOk); // a longer name is another folder
    EXPECT_EQ(items("ab/a"), items("a"));
}

TEST_F(CopyFolder, RelativePathsAreCompared)
{
    makeSource();
    const auto before = m_tree.items();
    const fs::path folder = fs::current_path();
    fs::current_path(m_tree / "a");
    EXPECT_EQ(copy(m_tree.wide("a"), L"new"), kGeneral);
    EXPECT_EQ(copy(L".", L"sub/new"), kGeneral);
    EXPECT_EQ(copy(L"sub", L"../b"), kOk);
    fs::current_path(folder);
    EXPECT_EQ(items("b"), items("a/sub"));
    fs::remove_all(m_tree / "b");
    EXPECT_EQ(m_tree.items(), before);
}

// A folder may be merged into the one that holds it.
TEST_F(CopyFolder, IsCopiedIntoAFolderAbove)
{
    makeSource();
    EXPECT_EQ(copy("a/sub", "a"), kOk);
    EXPECT_EQ(FileTree::contents(m_tree.path("a/two")), "22");
    EXPECT_TRUE(fs::exists(m_tree / "a/deep/\xE9\xFF"));
}

TEST_F(CopyFolder, ALinkToTheFolderThatHoldsTheDestinationIsAFailure)
{
    m_tree.makeFolder("a");
    m_tree.makeFolder("outside/copies");
    m_tree.makeLink("a/link", "../outside");
    EXPECT_EQ(copy("a", "outside/copies/b"), kGeneral);
    EXPECT_TRUE(fs::is_empty(m_tree / "outside/copies/b"));
}

TEST_F(CopyFolder, ALinkInTheDestinationThatLeadsIntoTheSourceIsAFailure)
{
    m_tree.makeFolder("a/sub/deep");
    m_tree.write("a/sub/file", "f");
    m_tree.makeFolder("b");
    m_tree.makeLink("b/sub", "../a/sub/deep");
    const auto before = items("a");
    EXPECT_EQ(copy("a", "b"), kGeneral);
    EXPECT_EQ(items("a"), before);
}

TEST_F(CopyFolder, FilesLinkedFromTheDestinationAreNotLost)
{
    m_tree.makeFolder("a");
    m_tree.write("a/file", "f");
    m_tree.makeFolder("b");
    m_tree.makeLink("b/file", "../a/file");
    refuses(kGeneral, "a", "b");
}

TEST_F(CopyFolder, APrivateFolderStaysPrivateAndAReadOnlyOneCanBeFilled)
{
    fs::permissions(m_tree.path(), fs::perms(0777));
    m_tree.makeFolder("a/private");
    m_tree.makeFolder("a/fixed");
    m_tree.write("a/fixed/file", "f");
    fs::permissions(m_tree / "a/private", fs::perms(0755));
    fs::permissions(m_tree / "a/fixed", fs::perms(0555));
    asOrdinaryUser([&] { EXPECT_EQ(copy("a", "b"), kOk); });
    EXPECT_EQ(fs::status(m_tree / "b/fixed").permissions(), fs::perms(0755));
    EXPECT_TRUE(fs::exists(m_tree / "b/fixed/file"));
    fs::permissions(m_tree / "a/private", fs::perms(0700));
    EXPECT_EQ(copy("a", "c"), kOk);
    EXPECT_EQ(fs::status(m_tree / "c/private").permissions(), fs::perms(0700));
}

TEST_F(CopyFolder, AFolderThatCannotBeReadIsAFailure)
{
    fs::permissions(m_tree.path(), fs::perms(0777));
    fs::permissions(m_tree.makeFolder("closed"), fs::perms(0311));
    m_tree.makeFolder("b");
    fs::permissions(m_tree / "b", fs::perms(0777));
    const auto before = m_tree.items();
    asOrdinaryUser([&] {
        EXPECT_EQ(copy("closed", "b"), kOperationFailed);
        EXPECT_EQ(copy("closed", "new"), kOperationFailed);
    });
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(CopyFolder, CopiesTwentyThousandEntries)
{
    m_tree.makeFolder("a");
    const std::string first = m_tree.write("a/first", "");
    for (int i = 1; i < 20000; ++i) { // links, which are made faster than files
        fs::create_hard_link(first, m_tree / ("a/" + std::to_string(i)));
    }
    EXPECT_EQ(copy("a", "b"), kOk);
    EXPECT_EQ(m_tree.names("b"), m_tree.names("a"));
}

// No folder is held open while those below are copied.
TEST_F(CopyFolder, CopiesThreeHundredLevelsWithFewDescriptors)
{
    std::string deepest = "a";
    for (int i = 0; i < 300; ++i) {
        deepest += "/d";
    }
    m_tree.makeFolder(deepest);
    m_tree.write(deepest + "/file", "f");
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{openDescriptors() + 4, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    EXPECT_EQ(copy("a", "b"), kOk);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(FileTree::contents(m_tree.path('b' + deepest.substr(1) + "/file")), "f");
}

// The deepest folders have no path that the system takes (PATH_MAX).
TEST_F(CopyFolder, EndsWhereFoldersAreTooDeepForAPath)
{
    m_tree.makeFolder("a");
    const fs::path before = fs::current_path();
    fs::current_path(m_tree / "a");
    for (int i = 0; i < 2200; ++i) {
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
    const std::size_t descriptors = openDescriptors();
    EXPECT_LT(copy("a", "b"), 0);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(fs::exists(m_tree / "b/d/d/d/d/d/d/d/d"));
    EXPECT_EQ(XeFileSystem::deleteFolder(m_tree.wide("a").c_str(), false), kOk);
    EXPECT_EQ(XeFileSystem::deleteFolder(m_tree.wide("b").c_str(), false), kOk);
}

TEST_F(CopyFolder, ClosesItsDescriptors)
{
    makeSource();
    m_tree.makePipe("a/sub/pipe");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(copy("a", "b"), kOperationFailed);
    EXPECT_EQ(openDescriptors(), before);
}

// Remote ---------------------------------------------------------------------------------------

class RemoteCopyFolder : public CopyFolder {
protected:
    RemoteCopyFolder()
    {
        m_remote->addFolder(m_root);
        m_remote->addFolder(m_root + L"/a");
        m_remote->addFolder(m_root + L"/a/sub");
        m_remote->addFile(m_root + L"/a/one", "1");
        m_remote->addFile(m_root + L"/a/sub/two", "22");
    }

    const Text m_root = L"/remote/tree";
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteCopyFolder, CopiesEachWay)
{
    EXPECT_EQ(copy(m_root + L"/a", m_tree.wide("local")), kOk);
    EXPECT_EQ(m_tree.items().size(), 4u);
    EXPECT_EQ(FileTree::contents(m_tree.path("local/one")), "1");
    EXPECT_EQ(FileTree::contents(m_tree.path("local/sub/two")), "22");
    EXPECT_EQ(copy(m_tree.wide("local"), m_root + L"/back"), kOk);
    EXPECT_EQ(m_remote->bytesOf(m_root + L"/back/one"), "1");
    EXPECT_EQ(m_remote->bytesOf(m_root + L"/back/sub/two"), "22");
    EXPECT_EQ(copy(m_root + L"/a", m_root + L"/third", kFailIfExists), kOk);
    EXPECT_EQ(m_remote->bytesOf(m_root + L"/third/sub/two"), "22");
}

TEST_F(RemoteCopyFolder, KeepsTheOrderOfItsTests)
{
    m_tree.makeFolder("local");
    EXPECT_EQ(copy(m_root + L"/missing", m_tree.wide("b")), kSourceMissing);
    EXPECT_EQ(copy(m_tree.wide("local"), m_root + L"/a", kFailIfExists), kGeneral);
    EXPECT_EQ(copy(m_tree.wide("local"), m_root + L"/no/folder"), kGeneral);
    EXPECT_EQ(copy(m_tree.wide("local"), m_root + L"/a"), kOk);
}

TEST_F(RemoteCopyFolder, IsNotCopiedIntoItself)
{
    const auto before = m_remote->items;
    for (const wchar_t* to : {L"/a", L"/a/", L"/a/new", L"/a/sub/../new"}) {
        EXPECT_EQ(copy(m_root + L"/a", m_root + to), kGeneral);
    }
    EXPECT_EQ(m_remote->items, before);
    const RemoteMount inside(m_tree.wide("a/mounted"), m_remote);
    m_tree.makeFolder("a");
    EXPECT_EQ(copy(m_tree.wide("a"), m_tree.wide("a/mounted/new")), kGeneral);
}

// A remote cannot make the kernel write elsewhere.
TEST_F(RemoteCopyFolder, NamesThatLeadOutOfTheFolderAreFailures)
{
    for (const wchar_t* name : {L"..", L".", L"", L"../out", L"/out", L"x/y", L"\xD800"}) {
        class Hostile : public MemoryFileSystem {
        public:
            XeResult list(const Path&, std::vector<Entry>& entries) override
            {
                entries.emplace_back(listed, false);
                return kOk;
            }
            Path listed;
        };
        const auto hostile = std::make_shared<Hostile>();
        hostile->listed = name;
        hostile->addFolder(L"/remote/hostile");
        hostile->addFile(Text(L"/remote/hostile/") + name, "x");
        const RemoteMount mount(L"/remote/hostile", hostile);
        EXPECT_EQ(copy(L"/remote/hostile", m_tree.wide("b")), kOperationFailed);
        EXPECT_EQ(m_tree.items().size(), 1u);
    }
}

TEST_F(RemoteCopyFolder, StopsWhereTheRemoteFails)
{
    for (const char* operation : {"list", "openRead", "read", "closeRead"}) {
        SCOPED_TRACE(operation);
        m_remote->failures = {{operation, kGeneral}};
        EXPECT_EQ(copy(m_root + L"/a", m_tree.wide("b")), kOperationFailed);
        EXPECT_EQ(m_remote->openHandles(), 0u);
        for (const auto& [name, item] : m_tree.items()) {
            EXPECT_TRUE(item.starts_with("folder")) << name;
        }
    }
}

} // namespace
