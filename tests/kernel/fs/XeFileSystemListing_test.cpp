#include "XeFileSystem.h"

#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "XeNativePath.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;
using Paths = std::vector<Text>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

constexpr auto kFailed = static_cast<XeResult>(0x80000008);

class Listings : public testing::Test {
protected:
    using Listing = std::function<XeResult(wchar_t const*, Paths&)>;

    /// What a listing gives for the folder or one in it, as names below it.
    std::vector<std::string> listed(const Listing& list, const std::string& below = "",
                                    XeResult expected = 0)
    {
        Paths out = {L"from before"};
        const fs::path folder = below.empty() ? m_folder.path() : m_folder / below;
        EXPECT_EQ(list(wide(folder).c_str(), out), expected);
        std::vector<std::string> names;
        for (const Text& path : out) {
            const std::string bytes = xenon::path::toNative(path).value();
            EXPECT_TRUE(bytes.starts_with(folder.native() + '/')) << bytes;
            names.push_back(bytes.substr(folder.native().size() + 1));
        }
        return names;
    }

    static Listing files(const wchar_t* pattern = L"", bool recursive = false, bool hidden = false)
    {
        return [=](wchar_t const* path, Paths& out) {
            return XeFileSystem::getFilesInFolder(path, pattern, recursive, out, hidden);
        };
    }
    static Listing filesAndFolders(const wchar_t* pattern = L"")
    {
        return [=](wchar_t const* path, Paths& out) {
            return XeFileSystem::getFilesAndFoldersInFolder(path, pattern, out);
        };
    }
    static Listing subFolders(bool recursive)
    {
        return [=](wchar_t const* path, Paths& out) {
            return XeFileSystem::getSubFolders(path, recursive, out);
        };
    }
    static XeResult attributedFiles(wchar_t const* path, Paths& out)
    {
        std::vector<std::pair<Text, tFileAtrribute>> files = {{L"from before", {}}};
        const XeResult result = XeFileSystem::getBrowsableFilesWithAttribute(path, files);
        out.clear();
        for (const auto& [file, attribute] : files) {
            out.push_back(file);
        }
        return result;
    }

    static std::map<std::string, Listing> allListings()
    {
        return {{"browsable folders", XeFileSystem::getBrowsableSubFolders},
                {"browsable folders, native", XeFileSystem::getBrowsableSubFoldersNative},
                {"browsable files", XeFileSystem::getBrowsableFilesInFolder},
                {"browsable files with attributes", attributedFiles},
                {"files", files()},
                {"files, recursive", files(L"*", true, true)},
                {"files and folders", filesAndFolders()},
                {"folders", subFolders(false)},
                {"folders, recursive", subFolders(true)}};
    }

    void makeFolder(const std::string& name) const { fs::create_directories(m_folder / name); }
    void makeLink(const std::string& name, const std::string& target) const
    {
        fs::create_symlink(target, m_folder / name);
    }

    /// One of each kind of entry.
    void makeOneOfEach() const
    {
        m_folder.write("file", "x");
        m_folder.write("library.tarvellib", "x");
        m_folder.write(".hidden file", "x");
        makeFolder("folder");
        makeFolder(".hidden folder");
        makeLink("link to file", "file");
        makeLink("link to folder", "folder");
        makeLink("link to pipe", "pipe");
        makeLink("dangling link", "missing");
        makeLink("loop", "loop");
        makeLink(".hidden link", "folder");
        mkfifo(m_folder.path("pipe").c_str(), 0666);
    }

    const TemporaryFolder m_folder;
};

// Browsing ------------------------------------------------------------------------------------

TEST_F(Listings, BrowserShowsFoldersLibrariesAndLinksThatLeadSomewhere)
{
    makeOneOfEach();
    for (const Listing& list : {Listing(XeFileSystem::getBrowsableSubFolders),
                                Listing(XeFileSystem::getBrowsableSubFoldersNative)}) {
        EXPECT_THAT(listed(list),
                    UnorderedElementsAre("folder", "library.tarvellib", "link to file",
                                         "link to folder", "link to pipe"));
    }
}

TEST_F(Listings, BrowserShowsRegularFiles)
{
    makeOneOfEach();
    for (const Listing& list :
         {Listing(XeFileSystem::getBrowsableFilesInFolder), Listing(attributedFiles)}) {
        EXPECT_THAT(listed(list), UnorderedElementsAre("file", "library.tarvellib"));
    }
}

TEST_F(Listings, OnlyARegularFileOfExactlyThatExtensionIsALibrary)
{
    for (const char* name : {"a.tarvellib", "b.TARVELLIB", "c.tarvellib2", "tarvellib",
                             "d.tarvellib.bak", ".tarvellib", "e.f.tarvellib"}) {
        m_folder.write(name, "x");
    }
    makeFolder("folder.tarvellib");
    makeLink("link.tarvellib", "a.tarvellib");
    EXPECT_THAT(
        listed(XeFileSystem::getBrowsableSubFolders),
        UnorderedElementsAre("a.tarvellib", "e.f.tarvellib", "folder.tarvellib", "link.tarvellib"));
}

TEST_F(Listings, CameraFoldersAreShown)
{
    makeFolder("AVCHD");
    makeFolder("PRIVATE");
    EXPECT_THAT(listed(XeFileSystem::getBrowsableSubFolders),
                UnorderedElementsAre("AVCHD", "PRIVATE"));
}

TEST_F(Listings, BrowserFollowsTheLinksInTheFoldersPath)
{
    makeFolder("folder/below");
    m_folder.write("folder/file", "x");
    makeLink("link", "folder");
    Paths out;
    EXPECT_EQ(XeFileSystem::getBrowsableSubFolders(wide(m_folder / "link").c_str(), out), 0);
    EXPECT_THAT(out, ElementsAre(wide(m_folder / "folder/below")));
    EXPECT_EQ(XeFileSystem::getBrowsableFilesInFolder(wide(m_folder / "link/").c_str(), out), 0);
    EXPECT_THAT(out, ElementsAre(wide(m_folder / "folder/file")));
    EXPECT_EQ(
        XeFileSystem::getBrowsableFilesInFolder(wide(m_folder / "link/../folder").c_str(), out), 0);
    EXPECT_THAT(out, ElementsAre(wide(m_folder / "folder/file")));
}

// A link's own rights are everyone's; what counts is where it leads.
TEST_F(Listings, BrowserShowsNothingThatCannotBeRead)
{
    fs::permissions(m_folder.path(), fs::perms(0755));
    for (const char* name : {"readable", "unreadable"}) {
        makeFolder(std::string(name) + " folder");
        makeLink(std::string(name) + " link", std::string(name) + " folder");
        m_folder.write(std::string(name) + " file", "x");
        m_folder.write(std::string(name) + ".tarvellib", "x");
    }
    for (const char* name : {"unreadable folder", "unreadable file", "unreadable.tarvellib"}) {
        fs::permissions(m_folder / name, fs::perms(0311));
    }
    asOrdinaryUser([&] {
        EXPECT_THAT(listed(XeFileSystem::getBrowsableSubFolders),
                    UnorderedElementsAre("readable folder", "readable link", "readable.tarvellib"));
        EXPECT_THAT(listed(XeFileSystem::getBrowsableFilesInFolder),
                    UnorderedElementsAre("readable file", "readable.tarvellib"));
    });
}

TEST_F(Listings, AttributesAreThoseOfEachFile)
{
    m_folder.write("one", "12345");
    fs::permissions(m_folder.write("two", ""), fs::perms(0400));
    std::vector<std::pair<Text, tFileAtrribute>> out;
    EXPECT_EQ(XeFileSystem::getBrowsableFilesWithAttribute(wide(m_folder.path()).c_str(), out), 0);
    ASSERT_EQ(out.size(), 2u);
    for (const auto& [path, attribute] : out) {
        const bool one = path == wide(m_folder / "one");
        EXPECT_EQ(attribute.size, one ? 5 : 0);
        EXPECT_EQ(attribute.readonly, !one);
        EXPECT_FALSE(attribute.folder || attribute.link || attribute.hidden);
        EXPECT_GT(attribute.modified.seconds, 1700000000);
    }
}

// By name -------------------------------------------------------------------------------------

TEST_F(Listings, FilesAreRegularFilesAndLinksToSuch)
{
    makeOneOfEach();
    EXPECT_THAT(listed(files()), UnorderedElementsAre("file", "library.tarvellib", "link to file"));
    EXPECT_THAT(listed(files(nullptr, false, true)),
                UnorderedElementsAre("file", "library.tarvellib", "link to file", ".hidden file"));
}

TEST_F(Listings, FilesAndFoldersAreThoseAndLinksToSuch)
{
    makeOneOfEach();
    EXPECT_THAT(listed(filesAndFolders()),
                UnorderedElementsAre("file", "library.tarvellib", "link to file", "folder",
                                     "link to folder"));
}

TEST_F(Listings, PatternsTellWhichNamesAreListed)
{
    for (const char* name : {"a.wav", "b.WAV", "ab.wav", "a.wave", "[a].wav", "a*b", "\xC3\xA9.wav",
                             "\xE9.wav", "a\\.wav"}) {
        m_folder.write(name, "x");
    }
    makeFolder("x.wav");
    const std::vector<std::string> allWav = {"a.wav",        "ab.wav",   "[a].wav",
                                             "\xC3\xA9.wav", "\xE9.wav", "a\\.wav"};
    EXPECT_THAT(listed(files(L"*.wav")), UnorderedElementsAreArray(allWav));
    EXPECT_THAT(listed(files(L"?.wav")), UnorderedElementsAre("a.wav", "\xC3\xA9.wav", "\xE9.wav"));
    EXPECT_THAT(listed(files(L"[a].wav")), ElementsAre("[a].wav"));
    EXPECT_THAT(listed(files(L"a\\.wav")), ElementsAre("a\\.wav"));
    EXPECT_THAT(listed(files(L"\xE9.wav")), ElementsAre("\xC3\xA9.wav"));
    EXPECT_THAT(listed(files(L"missing*")), IsEmpty());
    EXPECT_THAT(listed(filesAndFolders(L"?.wav")),
                UnorderedElementsAre("a.wav", "\xC3\xA9.wav", "\xE9.wav", "x.wav"));
}

TEST_F(Listings, RecursionEntersFoldersButNoLinks)
{
    makeFolder("one/two");
    makeFolder(".hidden/below");
    m_folder.write("top.wav", "x");
    m_folder.write("one/two/deep.wav", "x");
    m_folder.write("one/two/deep.txt", "x");
    m_folder.write("one/.quiet.wav", "x");
    m_folder.write(".hidden/below/unseen.wav", "x");
    makeLink("one/up", "..");
    makeLink("elsewhere", "one");
    EXPECT_THAT(listed(files(L"*.wav", true)), UnorderedElementsAre("top.wav", "one/two/deep.wav"));
    EXPECT_THAT(listed(files(L"*.wav", true, true)),
                UnorderedElementsAre("top.wav", "one/two/deep.wav", "one/.quiet.wav",
                                     ".hidden/below/unseen.wav"));
    EXPECT_THAT(listed(files(L"*.wav", false)), ElementsAre("top.wav"));
    EXPECT_THAT(listed(files(L"deep*", true), "elsewhere"),
                UnorderedElementsAre("two/deep.wav", "two/deep.txt"));
}

// Sub-folders ---------------------------------------------------------------------------------

TEST_F(Listings, SubFoldersAreAllFoldersButLinks)
{
    makeOneOfEach();
    makeFolder("folder/below");
    EXPECT_THAT(listed(subFolders(false)), UnorderedElementsAre("folder", ".hidden folder"));
    EXPECT_THAT(listed(subFolders(true)),
                UnorderedElementsAre("folder", "folder/below", ".hidden folder"));
}

TEST_F(Listings, SubFoldersComeBehindThoseThatTheyHold)
{
    for (const char* name : {"a/b/c", "a/b/d", "a/e", "f/g", ".h/i/j"}) {
        makeFolder(name);
    }
    const std::vector<std::string> folders = listed(subFolders(true));
    EXPECT_EQ(folders.size(), 10u);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        for (std::size_t j = i + 1; j < folders.size(); ++j) {
            EXPECT_FALSE(folders[j].starts_with(folders[i] + '/'))
                << folders[i] << " before " << folders[j];
        }
    }
}

// All of them ---------------------------------------------------------------------------------

TEST_F(Listings, WhatIsNoFolderFailsAndEmptiesTheList)
{
    m_folder.write("file", "x");
    makeLink("loop", "loop");
    makeLink("dangling", "nowhere");
    mkfifo(m_folder.path("pipe").c_str(), 0666);
    const Text base = wide(m_folder.path()) + L'/';
    for (const auto& [name, list] : allListings()) {
        SCOPED_TRACE(name);
        for (const Text& below :
             {Text(L"missing"), Text(L"file"), Text(L"file/below"), Text(L"loop"),
              Text(L"dangling"), Text(L"pipe"), Text(256, L'n'), Text(L"\xD800")}) {
            const Text path = base + below;
            Paths out = {L"from before"};
            EXPECT_EQ(list(path.c_str(), out), kFailed);
            EXPECT_THAT(out, IsEmpty());
        }
        for (const wchar_t* path : {static_cast<const wchar_t*>(nullptr), L""}) {
            Paths out = {L"from before"};
            EXPECT_EQ(list(path, out), kFailed);
            EXPECT_THAT(out, IsEmpty());
        }
    }
}

TEST_F(Listings, EmptyFolderHasNothingToList)
{
    for (const auto& [name, list] : allListings()) {
        SCOPED_TRACE(name);
        EXPECT_THAT(listed(list), IsEmpty());
    }
}

TEST_F(Listings, NamesAreListedWhateverTheirBytes)
{
    const std::vector<std::string> names = {
        "\xC3\xA9", "e\xCC\x81", "bad\xE9", "\xFF\xFE",     "\n",
        " ",        "...",       "-rf",     "\xED\xA0\x80", std::string(255, 'n')};
    std::vector<std::string> shown = names; // "..." hides
    std::erase(shown, "...");
    for (const std::string& name : names) {
        m_folder.write(name, "x");
    }
    EXPECT_THAT(listed(XeFileSystem::getBrowsableFilesInFolder), UnorderedElementsAreArray(shown));
    EXPECT_THAT(listed(attributedFiles), UnorderedElementsAreArray(shown));
    EXPECT_THAT(listed(files()), UnorderedElementsAreArray(shown));
    EXPECT_THAT(listed(files(L"*", true, true)), UnorderedElementsAreArray(names));
    for (const std::string& name : names) {
        fs::remove(m_folder / name);
        makeFolder(name);
    }
    EXPECT_THAT(listed(XeFileSystem::getBrowsableSubFolders), UnorderedElementsAreArray(shown));
    EXPECT_THAT(listed(subFolders(true)), UnorderedElementsAreArray(names));
    EXPECT_THAT(listed(filesAndFolders()), UnorderedElementsAreArray(shown));
}

TEST_F(Listings, FoldersTextIsInFrontAsItWasGiven)
{
    makeFolder("folder/below");
    m_folder.write("folder/file", "x");
    makeLink("link", "folder");
    const Text base = wide(m_folder.path());
    Paths out;
    for (const wchar_t* text : {L"/link/", L"//folder/", L"/folder/../folder/"}) {
        XeFileSystem::getSubFolders((base + text).c_str(), true, out);
        EXPECT_THAT(out, ElementsAre(base + text + L"below"));
        XeFileSystem::getFilesInFolder((base + text).c_str(), L"", true, out, true);
        EXPECT_THAT(out, ElementsAre(base + text + L"file"));
        XeFileSystem::getFilesAndFoldersInFolder((base + text).c_str(), L"", out);
        EXPECT_THAT(out, UnorderedElementsAre(base + text + L"file", base + text + L"below"));
    }
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.path());
    XeFileSystem::getSubFolders(L"folder", false, out);
    EXPECT_THAT(out, ElementsAre(L"folder/below"));
    XeFileSystem::getBrowsableSubFolders(L"folder", out);
    EXPECT_THAT(out, ElementsAre(base + L"/folder/below"));
    fs::current_path(before);
}

TEST_F(Listings, RootsEntriesHaveOneSeparator)
{
    Paths out;
    EXPECT_EQ(XeFileSystem::getSubFolders(L"/", false, out), 0);
    EXPECT_THAT(out, testing::Contains(L"/tmp"));
    EXPECT_EQ(XeFileSystem::getBrowsableSubFolders(L"/", out), 0);
    EXPECT_THAT(out, testing::Contains(L"/tmp"));
}

TEST_F(Listings, ListMayReplaceTheTextOfItsOwnPath)
{
    makeFolder("one/two");
    Paths out;
    XeFileSystem::getSubFolders(wide(m_folder.path()).c_str(), false, out);
    EXPECT_EQ(XeFileSystem::getSubFolders(out[0].c_str(), true, out), 0);
    EXPECT_THAT(out, ElementsAre(wide(m_folder / "one/two")));
}

TEST_F(Listings, FolderWithoutReadRightFails)
{
    makeFolder("locked/below");
    m_folder.write("locked/file", "x");
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(m_folder / "locked", fs::perms(0311));
    asOrdinaryUser([&] {
        for (const auto& [name, list] : allListings()) {
            SCOPED_TRACE(name);
            EXPECT_THAT(listed(list, "locked", kFailed), IsEmpty());
        }
    });
}

// Names can be read and items cannot be looked up, so links are not known to lead anywhere.
TEST_F(Listings, FolderThatMayNotBeEnteredTellsWhatItsOwnEntriesTell)
{
    makeFolder("closed/below");
    m_folder.write("closed/file", "x");
    makeLink("closed/link", "file");
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(m_folder / "closed", fs::perms(0444));
    asOrdinaryUser([&] {
        EXPECT_THAT(listed(subFolders(false), "closed"), ElementsAre("below"));
        EXPECT_THAT(listed(files(), "closed", kFailed), ElementsAre("file"));
        EXPECT_THAT(listed(XeFileSystem::getBrowsableFilesInFolder, "closed"), IsEmpty());
    });
}

TEST_F(Listings, UnreadableFolderBelowIsPassedOver)
{
    for (const char* name : {"a", "locked/unseen", "z"}) {
        makeFolder(name);
    }
    for (const char* name : {"a/1", "locked/2", "z/3"}) {
        m_folder.write(name, "x");
    }
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::permissions(m_folder / "locked", fs::perms(0311));
    asOrdinaryUser([&] {
        EXPECT_THAT(listed(files(L"", true), "", kFailed), UnorderedElementsAre("a/1", "z/3"));
        EXPECT_THAT(listed(subFolders(true), "", kFailed),
                    UnorderedElementsAre("a", "locked", "z"));
    });
}

TEST_F(Listings, ManyEntries)
{
    constexpr int kMany = 20000;
    constexpr int kFolders = 100;
    m_folder.write("file", "");
    for (int i = 1; i < kMany - kFolders; ++i) { // links are the fastest to make
        fs::create_hard_link(m_folder / "file", m_folder / ("file " + std::to_string(i)));
    }
    for (int i = 0; i < kFolders; ++i) {
        makeFolder("folder " + std::to_string(i));
    }
    std::vector<std::string> files;
    std::vector<std::string> folders;
    for (const std::string& name : m_folder.names()) {
        (name.starts_with("file") ? files : folders).push_back(name);
    }
    const auto sorted = [&](const Listing& list) {
        std::vector<std::string> names = listed(list);
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_TRUE(sorted(XeFileSystem::getBrowsableFilesInFolder) == files);
    EXPECT_TRUE(sorted(XeFileSystem::getBrowsableSubFolders) == folders);
    EXPECT_TRUE(sorted(attributedFiles) == files);
    EXPECT_TRUE(sorted(this->files()) == files);
    EXPECT_TRUE(sorted(this->files(L"f*e*", true, true)) == files);
    EXPECT_TRUE(sorted(subFolders(true)) == folders);
    EXPECT_EQ(listed(filesAndFolders()).size(), std::size_t(kMany));
}

TEST_F(Listings, DeepTree)
{
    constexpr std::size_t kLevels = 300;
    std::string path = "d";
    for (std::size_t i = 1; i < kLevels; ++i) {
        path += "/d";
    }
    makeFolder(path);
    m_folder.write(path + "/file", "x");
    const std::size_t before = openDescriptors();
    const std::vector<std::string> folders = listed(subFolders(true));
    ASSERT_EQ(folders.size(), kLevels);
    EXPECT_EQ(folders.front(), path);
    EXPECT_EQ(folders.back(), "d");
    EXPECT_THAT(listed(files(L"", true)), ElementsAre(path + "/file"));
    EXPECT_EQ(openDescriptors(), before);
}

// A path of more than 4096 bytes is one that nobody could use.
TEST_F(Listings, WhatLiesTooDeepForAPathIsPassedOver)
{
    const int start = open(m_folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int at = dup(start);
    const std::string name(250, 'n');
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(mkdirat(at, name.c_str(), 0777), 0);
        const int next = openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(at);
        at = next;
    }
    close(at);
    close(start);
    const std::vector<std::string> folders = listed(subFolders(true), "", kFailed);
    EXPECT_THAT(folders.size(), testing::AllOf(testing::Ge(16u), testing::Lt(20u)));
}

// Remote --------------------------------------------------------------------------------------

class RemoteListings : public testing::Test {
protected:
    const Text m_path = L"/remote/volume";
    std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    RemoteMount m_mount{m_path, m_remote};
};

TEST_F(RemoteListings, BrowsableFoldersAreTheRemotesButHiddenOnes)
{
    m_remote->addFolder(m_path);
    m_remote->addFolder(m_path + L"/one");
    m_remote->addFolder(m_path + L"/two");
    m_remote->addFolder(m_path + L"/two/below");
    m_remote->addFolder(m_path + L"/.hidden");
    m_remote->addFile(m_path + L"/file", "x");
    for (const Text& path : {m_path, Text(m_path + L'/')}) {
        Paths out = {L"from before"};
        EXPECT_EQ(XeFileSystem::getBrowsableSubFolders(path.c_str(), out), 0);
        EXPECT_THAT(out, UnorderedElementsAre(L"/remote/volume/one", L"/remote/volume/two"));
    }
    EXPECT_THAT(m_remote->calls, ElementsAre("list", "list"));
}

TEST_F(RemoteListings, RemotesFailureReachesTheCaller)
{
    for (const XeResult failure : {XeResult{-7}, static_cast<XeResult>(0x8004E195)}) {
        m_remote->failures["list"] = failure;
        Paths out = {L"from before"};
        EXPECT_EQ(XeFileSystem::getBrowsableSubFolders(m_path.c_str(), out), failure);
        EXPECT_THAT(out, IsEmpty());
    }
}

TEST_F(RemoteListings, EntriesGivenBeforeAFailureStay)
{
    struct BrokenOff : MemoryFileSystem {
        XeResult list(const Path&, std::vector<Entry>& entries) override
        {
            entries = {{L"one", true}};
            return -7;
        }
    };
    const RemoteMount mount(L"/broken", std::make_shared<BrokenOff>());
    Paths out;
    EXPECT_EQ(XeFileSystem::getBrowsableSubFolders(L"/broken", out), -7);
    EXPECT_THAT(out, ElementsAre(L"/broken/one"));
}

TEST_F(RemoteListings, AllOtherListingsLookAtTheLocalFolder)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "local");
    folder.write("file", "x");
    const Text path = wide(folder.path());
    const RemoteMount mount(path, m_remote);
    Paths out;
    EXPECT_EQ(XeFileSystem::getBrowsableSubFoldersNative(path.c_str(), out), 0);
    EXPECT_THAT(out, ElementsAre(path + L"/local"));
    EXPECT_EQ(XeFileSystem::getBrowsableFilesInFolder(path.c_str(), out), 0);
    EXPECT_THAT(out, ElementsAre(path + L"/file"));
    EXPECT_EQ(XeFileSystem::getSubFolders(path.c_str(), true, out), 0);
    EXPECT_THAT(out, ElementsAre(path + L"/local"));
    EXPECT_THAT(m_remote->calls, IsEmpty());
}

} // namespace
