#include "XeFileSystem.h"

#include "ChangedEnvironment.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;
using XeFileSystem::getSysAppFolder;
using XeFileSystem::getSysFolder;

/// A home folder of its own, named by the environment.
class LinuxFolders : public testing::Test {
protected:
    LinuxFolders()
    {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
            m_environment.set(name, std::nullopt);
        }
        m_environment.set("HOME", m_home.path().native());
    }

    static std::string folder(int number)
    {
        Text found;
        EXPECT_EQ(getSysFolder(found, static_cast<ESysFolder>(number)), 0);
        return xenon::path::toNative(found).value();
    }

    XeResult makeCache(const wchar_t* appName, Text& out) const
    {
        return getSysAppFolder(out, kSysFolderUserCaches, appName, true, true, 2, 1, nullptr);
    }

    const TemporaryFolder m_home;
    ChangedEnvironment m_environment;
};

TEST_F(LinuxFolders, FollowTheDesktopsConventions)
{
    const std::string home = m_home.path("");
    EXPECT_EQ(folder(1), home + ".local/share/");
    EXPECT_EQ(folder(2), "/usr/local/share/");
    EXPECT_EQ(folder(5), home + "Documents/");
    EXPECT_EQ(folder(7), home + ".local/share/applications/");
    EXPECT_EQ(folder(11), home + ".local/share/");
    EXPECT_EQ(folder(12), "/usr/local/share/");
    EXPECT_EQ(folder(13), "/usr/share/");
    EXPECT_EQ(folder(14), home + ".local/share/Saved Application State");
    EXPECT_EQ(folder(15), home + ".cache/");
    EXPECT_EQ(folder(16), home + ".local/share/Preferences");
    EXPECT_EQ(folder(18), home + "Videos/");
    EXPECT_EQ(folder(19), home + "Pictures/");
}

TEST_F(LinuxFolders, FollowTheEnvironmentAtEachCall)
{
    m_environment.set("XDG_DATA_HOME", "/data");
    m_environment.set("XDG_CACHE_HOME", "/caches/");
    EXPECT_EQ(folder(1), "/data/");
    EXPECT_EQ(folder(7), "/data/applications/");
    EXPECT_EQ(folder(11), "/data/");
    EXPECT_EQ(folder(14), "/data/Saved Application State");
    EXPECT_EQ(folder(16), "/data/Preferences");
    EXPECT_EQ(folder(15), "/caches/");
    m_environment.set("XDG_DATA_HOME", "/");
    EXPECT_EQ(folder(1), "/");
    EXPECT_EQ(folder(14), "/Saved Application State");
    m_environment.set("XDG_DATA_HOME", "data");
    m_environment.set("XDG_CACHE_HOME", "");
    EXPECT_EQ(folder(1), m_home.path(".local/share/"));
    EXPECT_EQ(folder(15), m_home.path(".cache/"));
}

TEST_F(LinuxFolders, FollowTheUsersOwnNames)
{
    fs::create_directory(m_home / ".config");
    m_home.write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                           "XDG_VIDEOS_DIR=\"/films\"\n"
                                           "XDG_PICTURES_DIR=\"$HOME/Bilder \xE9\"\n");
    EXPECT_EQ(folder(5), m_home.path("Dokumente/"));
    EXPECT_EQ(folder(18), "/films/");
    EXPECT_EQ(folder(19), m_home.path("Bilder \xE9/"));
}

TEST_F(LinuxFolders, HomeIsNotThatOfTheEnvironment)
{
    const std::string home = folder(17);
    EXPECT_NE(home, m_home.path().native());
    m_environment.set("HOME", "/elsewhere");
    EXPECT_EQ(folder(17), home);
}

TEST_F(LinuxFolders, AnAppsFolderIsCreatedWithAllLevels)
{
    Text out;
    EXPECT_EQ(makeCache(L"App", out), 0);
    EXPECT_EQ(xenon::path::toNative(out).value(), m_home.path(".cache/VANTA/App/2.1/"));
    EXPECT_TRUE(fs::is_directory(m_home / ".cache/VANTA/App/2.1"));
    EXPECT_EQ(makeCache(L"App", out), 0);
}

TEST_F(LinuxFolders, NothingIsCreatedWithoutTheWishOrTheName)
{
    Text out;
    EXPECT_EQ(makeCache(nullptr, out), 0);
    for (const ESysFolder each : {kSysFolderUserSavedState, kSysFolderUserPreferences}) {
        EXPECT_EQ(getSysAppFolder(out, each, L"App", true, true, 2, 1, nullptr), 0);
    }
    EXPECT_EQ(getSysAppFolder(out, kSysFolderUserCaches, L"App", false, true, 2, 1, nullptr), 0);
    EXPECT_TRUE(m_home.names().empty());
}

TEST_F(LinuxFolders, AFolderThatCannotBeCreatedIsTold)
{
    constexpr auto kFailed = static_cast<XeResult>(0x8004E014);
    Text out;
    for (const Text& name : {Text(300, L'x'), Text(1, L'\xD800'), Text(L"file/below")}) {
        fs::create_directories(m_home / ".cache/VANTA");
        m_home.write(".cache/VANTA/file", "x");
        EXPECT_EQ(makeCache(name.c_str(), out), kFailed);
        EXPECT_EQ(out, xenon::path::fromNative(m_home.path(".cache/VANTA/")) + name + L"/2.1/");
    }
    EXPECT_EQ(m_home.names(".cache/VANTA"), std::vector<std::string>{"file"});
    fs::permissions(m_home.path(), fs::perms(0755));
    fs::permissions(m_home / ".cache", fs::perms(0555));
    fs::permissions(m_home / ".cache/VANTA", fs::perms(0555));
    asOrdinaryUser([&] { EXPECT_EQ(makeCache(L"App", out), kFailed); });
    fs::permissions(m_home / ".cache", fs::perms(0755));
    fs::permissions(m_home / ".cache/VANTA", fs::perms(0755));
}

} // namespace
