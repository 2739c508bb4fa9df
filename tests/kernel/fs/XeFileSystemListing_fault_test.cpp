#include "XeFileSystem.h"

#include "ForEachFailingCall.h"
#include "OpenDescriptors.h"
#include "TemporaryFolder.h"
#include "WidePath.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;
using Paths = std::vector<Text>;

constexpr auto kFailed = static_cast<XeResult>(0x80000008);

/// Leaves the files in `g_attributed`, since to copy them takes memory, which may be what fails.
std::vector<std::pair<Text, tFileAtrribute>> g_attributed;

XeResult attributedFiles(wchar_t const* path, Paths&)
{
    return XeFileSystem::getBrowsableFilesWithAttribute(path, g_attributed);
}

struct Row {
    const char* name;
    std::function<XeResult(wchar_t const*, Paths&)> list;
    bool recursive;
    bool browses = false;
};

class ListingFaults : public testing::TestWithParam<Row> {
protected:
    void SetUp() override
    {
        fs::create_directories(m_folder / "a/b/c");
        fs::create_directory(m_folder / "d");
        for (const char* name : {"file", "a/file", "a/b/file", "a/b/c/file", "d/file"}) {
            m_folder.write(name, "x");
        }
        fs::create_symlink("file", m_folder / "link to file");
        fs::create_symlink("a", m_folder / "link to folder");
        g_attributed.clear();
        GetParam().list(path().c_str(), m_all);
        takeAttributed(m_all);
        ASSERT_FALSE(m_all.empty());
    }

    Text path() const { return wide(m_folder.path()); }

    static void takeAttributed(Paths& out)
    {
        for (const auto& [file, attribute] : std::exchange(g_attributed, {})) {
            out.push_back(file);
        }
    }

    /// Lists with one plan; the result.
    XeResult listWith(const FailingCallPlan& plan, Paths& out) const
    {
        const Text folder = path();
        armFailingCalls(&plan);
        const XeResult result = GetParam().list(folder.c_str(), out);
        disarmFailingCalls();
        takeAttributed(out);
        return result;
    }

    /// Lists with each call of a group failing in turn.
    /// @param check  Given the fault, the result and the entries found.
    unsigned long
    forEachFault(unsigned functions, const FailingCallPlan& plan,
                 const std::function<void(const Fault&, XeResult, const Paths&)>& check) const
    {
        return forEachFailingCall(functions, plan, [&](Fault& fault) {
            const std::size_t before = openDescriptors();
            const Text folder = path();
            Paths out;
            XeResult result = 0;
            fault.during([&] { result = GetParam().list(folder.c_str(), out); });
            takeAttributed(out);
            EXPECT_EQ(openDescriptors(), before);
            for (const Text& entry : out) {
                EXPECT_THAT(m_all, testing::Contains(entry));
            }
            check(fault, result, out);
        });
    }

    static testing::AssertionResult areSame(Paths one, Paths other)
    {
        std::sort(one.begin(), one.end());
        std::sort(other.begin(), other.end());
        return one == other ? testing::AssertionSuccess() : testing::AssertionFailure();
    }

    const TemporaryFolder m_folder;
    Paths m_all;
};

// What the other folders hold is listed all the same.
TEST_P(ListingFaults, FolderThatCannotBeOpenedOrReadIsAFailure)
{
    for (const unsigned functions : {kFailOpen, kFailAdopt, kFailReadFolder}) {
        for (const int error : {EIO, EACCES, EMFILE, ENOMEM, ENOTCONN}) {
            const unsigned long calls =
                forEachFault(functions, {.error = error},
                             [&](const Fault& fault, XeResult result, const Paths& out) {
                                 EXPECT_EQ(result, fault.happened() ? kFailed : 0);
                                 EXPECT_TRUE(fault.happened() || areSame(out, m_all));
                             });
            EXPECT_GE(calls, GetParam().recursive ? 5u : 1u);
        }
    }
}

TEST_P(ListingFaults, WhatWasFoundBeforeTheFailureStays)
{
    std::set<std::size_t> counts;
    for (unsigned long nth = 1; nth <= 8; ++nth) {
        const FailingCallPlan plan{kFailReadFolder, nth, EIO, kFailWithError, true, nullptr};
        Paths out;
        EXPECT_EQ(listWith(plan, out), kFailed);
        counts.insert(out.size());
    }
    EXPECT_TRUE(counts.contains(0));
    EXPECT_GT(counts.size(), 1u);
}

TEST_P(ListingFaults, InterruptedCallsAreMadeAgain)
{
    for (const unsigned functions : {kFailOpen, kFailReadFolder}) {
        forEachFault(functions, {.error = EINTR},
                     [&](const Fault&, XeResult result, const Paths& out) {
                         EXPECT_EQ(result, 0);
                         EXPECT_TRUE(areSame(out, m_all));
                     });
    }
}

// Some file systems do not keep the types of entries in the folder.
TEST_P(ListingFaults, EntriesWithoutATypeAreLookedUp)
{
    const FailingCallPlan plan{kFailReadFolder, 1, 0, kFailUntyped, true, nullptr};
    Paths out;
    EXPECT_EQ(listWith(plan, out), 0);
    EXPECT_TRUE(areSame(out, m_all));
}

// A folder that changes while it is read may tell of an entry twice.
TEST_P(ListingFaults, BrowserShowsARepeatedEntryOnce)
{
    const unsigned long calls =
        forEachFault(kFailReadFolder, {.mode = kFailRepeat},
                     [&](const Fault&, XeResult result, const Paths& out) {
                         EXPECT_EQ(result, 0);
                         EXPECT_TRUE(!GetParam().browses || areSame(out, m_all));
                     });
    EXPECT_GE(calls, m_all.size());
}

// An entry that is gone by the time it is looked at is left out, and that is no failure.
TEST_P(ListingFaults, EntryThatDisappearsIsLeftOut)
{
    for (const int error : {ENOENT, EIO}) {
        forEachFault(kFailStat | kFailAccess, {.error = error},
                     [&](const Fault& fault, XeResult result, const Paths& out) {
                         EXPECT_TRUE(result == 0 || result == kFailed);
                         EXPECT_TRUE(result == 0 || error == EIO);
                         EXPECT_GE(out.size() + (fault.happened() ? 1 : 0), m_all.size());
                     });
    }
}

TEST_P(ListingFaults, FolderThatDisappearsDuringTheWalkIsNoFailure)
{
    const FailingCallPlan plan{kFailOpen, 2, ENOENT, kFailWithError, true, nullptr};
    Paths out;
    EXPECT_EQ(listWith(plan, out), 0);
    EXPECT_EQ(out.size() < m_all.size(), GetParam().recursive);
    EXPECT_FALSE(out.empty());
}

TEST_P(ListingFaults, UnresolvedPathFails)
{
    forEachFault(kFailResolve, {.error = EIO},
                 [&](const Fault& fault, XeResult result, const Paths&) {
                     EXPECT_EQ(result, fault.happened() ? kFailed : 0);
                 });
}

#ifndef FAILING_CALLS_WITHOUT_MEMORY
TEST_P(ListingFaults, WantOfMemoryIsAFailure)
{
    const unsigned long calls = forEachFault(
        kFailMemory, {.error = ENOMEM}, [&](const Fault& fault, XeResult result, const Paths& out) {
            EXPECT_TRUE(fault.happened() || result == 0);
            EXPECT_TRUE(result == kFailed || areSame(out, m_all));
        });
    EXPECT_GT(calls, 5u);
}
#endif

// All that is told of a file comes from one look at it.
TEST(AttributedFiles, AreLookedAtOnceEach)
{
    const TemporaryFolder folder;
    for (const char* name : {"a", "b", "c", "d"}) {
        folder.write(name, "x");
    }
    const Text path = wide(folder.path());
    std::vector<std::pair<Text, tFileAtrribute>> out;
    const FailingCallPlan onlyCount{kFailStat, 0, 0, kFailWithError, false, nullptr};
    armFailingCalls(&onlyCount);
    EXPECT_EQ(XeFileSystem::getBrowsableFilesWithAttribute(path.c_str(), out), 0);
    EXPECT_EQ(disarmFailingCalls(), 4u);
    EXPECT_EQ(out.size(), 4u);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, ListingFaults, testing::Values(
    Row{"BrowsableFolders", XeFileSystem::getBrowsableSubFolders, false, true},
    Row{"BrowsableFiles", XeFileSystem::getBrowsableFilesInFolder, false, true},
    Row{"AttributedFiles", attributedFiles, false, true},
    Row{"Files", [](auto path, Paths& out) {
        return XeFileSystem::getFilesInFolder(path, L"*", false, out, false); }, false},
    Row{"FilesRecursively", [](auto path, Paths& out) {
        return XeFileSystem::getFilesInFolder(path, L"", true, out, true); }, true},
    Row{"FilesAndFolders", [](auto path, Paths& out) {
        return XeFileSystem::getFilesAndFoldersInFolder(path, L"", out); }, false},
    Row{"SubFolders", [](auto path, Paths& out) {
        return XeFileSystem::getSubFolders(path, false, out); }, false},
    Row{"SubFoldersRecursively", [](auto path, Paths& out) {
        return XeFileSystem::getSubFolders(path, true, out); }, true}),
    [](const auto& row) { return row.param.name; });
// clang-format on

} // namespace
