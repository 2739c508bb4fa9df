#include "XeFileSystem.h"

#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <filesystem>

namespace {

using Text = _XeString<wchar_t>;
using XeFileSystem::getSysAppFolder;
using XeFileSystem::getSysFolder;

constexpr auto kInvalidArgument = static_cast<XeResult>(0x80000003);
constexpr int kServed[] = {1, 2, 5, 7, 11, 12, 13, 14, 15, 16, 17, 18, 19};
constexpr int kNotServed[] = {3, 4, 6, 8, 9, 10, 0, -1, 20, 255, 1 << 30};

Text folderOf(int number)
{
    Text folder;
    EXPECT_EQ(getSysFolder(folder, static_cast<ESysFolder>(number)), 0);
    return folder;
}

TEST(SysFolder, OtherNumbersAreRefusedAndLeaveTheOutputAlone)
{
    for (const int number : kNotServed) {
        SCOPED_TRACE(number);
        Text out = L"before";
        const auto folder = static_cast<ESysFolder>(number);
        EXPECT_EQ(getSysFolder(out, folder), kInvalidArgument);
        EXPECT_EQ(getSysAppFolder(out, folder, L"App", true, true, 1, 2, nullptr),
                  kInvalidArgument);
        EXPECT_EQ(getSysAppFolder(out, folder, nullptr, true, true, 1, 2, nullptr),
                  kInvalidArgument);
        EXPECT_EQ(out, L"before");
    }
}

TEST(SysFolder, EndsInOneSeparatorButForThreeOfThem)
{
    for (const int number : kServed) {
        SCOPED_TRACE(number);
        const Text folder = folderOf(number);
        EXPECT_TRUE(folder.starts_with(L"/"));
        EXPECT_EQ(folder.ends_with(L"/"), number != 14 && number != 16 && number != 17);
        EXPECT_FALSE(folder.ends_with(L"//"));
    }
}

TEST(SysFolder, SavedStateAndPreferencesLieInTheUsersLibrary)
{
    EXPECT_EQ(folderOf(14), folderOf(11) + L"Saved Application State");
    EXPECT_EQ(folderOf(16), folderOf(11) + L"Preferences");
}

TEST(SysFolder, HomeIsThatOfThePasswordDatabase)
{
    const passwd* const entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(folderOf(17), xenon::path::fromNative(entry->pw_dir));
}

TEST(SysFolder, IsHiddenByDefault)
{
    for (int number = -1; number < 21; ++number) {
        EXPECT_TRUE(XeFileSystem::isSysFolderHiddenByDefault(static_cast<ESysFolder>(number)));
    }
}

Text appFolderOf(int number, const wchar_t* appName, bool version)
{
    Text folder;
    EXPECT_EQ(getSysAppFolder(folder, static_cast<ESysFolder>(number), appName, false, version, 2,
                              1, nullptr),
              0);
    return folder;
}

TEST(SysAppFolder, WithoutANameIsTheFolderItself)
{
    for (const int number : kServed) {
        EXPECT_EQ(appFolderOf(number, nullptr, true), folderOf(number));
    }
}

TEST(SysAppFolder, TheVendorComesInBetweenForSupportAndCaches)
{
    for (const int number : {1, 2, 15}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(appFolderOf(number, L"App", false), folderOf(number) + L"VANTA/App/");
        EXPECT_EQ(appFolderOf(number, L"App", true), folderOf(number) + L"VANTA/App/2.1/");
    }
    for (const int number : {5, 7, 11, 12, 13, 18, 19}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(appFolderOf(number, L"App", false), folderOf(number) + L"App/");
        EXPECT_EQ(appFolderOf(number, L"App", true), folderOf(number) + L"App/2.1/");
    }
    EXPECT_EQ(appFolderOf(17, L"App", true), folderOf(17) + L"/App/2.1/");
}

TEST(SysAppFolder, SavedStateAndPreferencesHaveNeitherVendorNorVersion)
{
    for (const bool version : {false, true}) {
        EXPECT_EQ(appFolderOf(14, L"App", version),
                  folderOf(11) + L"Saved Application State/App.savedState");
        EXPECT_EQ(appFolderOf(14, L"org.example.app", version),
                  folderOf(11) + L"Saved Application State/org.example.app.savedState");
        EXPECT_EQ(appFolderOf(16, L"App", version), folderOf(11) + L"Preferences/App");
    }
}

TEST(SysAppFolder, VersionsArePlainNumbers)
{
    Text folder;
    for (const auto& [major, minor, text] :
         {std::tuple(0, 0, L"0.0/"), std::tuple(10, 20, L"10.20/"), std::tuple(-1, 2, L"-1.2/")}) {
        EXPECT_EQ(getSysAppFolder(folder, kSysFolderUserDocuments, L"App", false, true, major,
                                  minor, nullptr),
                  0);
        EXPECT_EQ(folder, folderOf(5) + L"App/" + text);
    }
}

TEST(SysAppFolder, TheResultMayReplaceTheName)
{
    Text name = L"App";
    EXPECT_EQ(getSysAppFolder(name, kSysFolderUserCaches, name.c_str(), false, true, 2, 1, nullptr),
              0);
    EXPECT_EQ(name, folderOf(15) + L"VANTA/App/2.1/");
}

} // namespace
