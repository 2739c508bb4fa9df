#include "fs/UserFolders.linux.h"

#include "ChangedEnvironment.h"
#include "TemporaryFolder.h"
#include "fs/HomeFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;

std::optional<std::string> documentsIn(const std::string& text, const std::string& home = "/home/u")
{
    return userFolders::entryOf(text, "DOCUMENTS", home);
}

TEST(UserFoldersFile, NamesFoldersBelowHomeOrAnywhere)
{
    const std::pair<const char*, const char*> kRows[] = {
        {"XDG_DOCUMENTS_DIR=\"$HOME/Documents\"", "/home/u/Documents"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n", "/home/u/Documents"},
        {"XDG_DOCUMENTS_DIR=\"/data/docs\"", "/data/docs"},
        {"XDG_DOCUMENTS_DIR=\"/data/docs//\"", "/data/docs"},
        {"XDG_DOCUMENTS_DIR=\"/\"", "/"},
        {" \tXDG_DOCUMENTS_DIR \t= \"$HOME/My Papers\"  # mine", "/home/u/My Papers"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/a\\\"b\\\\c\\$d\\`e\"", "/home/u/a\"b\\c$d`e"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/\xE9\"", "/home/u/\xE9"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/one\"\nXDG_DOCUMENTS_DIR=\"$HOME/two\"\n", "/home/u/two"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/one\"\nXDG_DOCUMENTS_DIR=two\n", "/home/u/one"},
        {"# XDG_DOCUMENTS_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/b\"\n\nXDG_DOCUMENTS_DIR=\"/c\"", "/c"},
    };
    for (const auto& [text, folder] : kRows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(documentsIn(text), folder);
    }
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"", "/"), "/Documents");
}

TEST(UserFoldersFile, OtherLinesNameNone)
{
    for (const char* text :
         {"", "\n\n", "XDG_DOCUMENTS_DIR", "XDG_DOCUMENTS_DIR=", "XDG_DOCUMENTS_DIR=\"",
          "XDG_DOCUMENTS_DIR=\"\"", "XDG_DOCUMENTS_DIR=\"Documents\"",
          "XDG_DOCUMENTS_DIR=\"$HOMEDocuments\"", "XDG_DOCUMENTS_DIR=\"$HOME/open",
          "XDG_DOCUMENTS_DIR=\"$HOME/open\\\"", "XDG_DOCUMENTS_DIR=/data",
          "XDG_DOCUMENTS_DIR=\"~/Documents\"", "# XDG_DOCUMENTS_DIR=\"/a\"",
          "XDG_DOCUMENTS_DIRECTORY=\"/a\"", "XDG_DOCUMENTS=\"/a\"", "xdg_documents_dir=\"/a\"",
          "export XDG_DOCUMENTS_DIR=\"/a\""}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(documentsIn(text), std::nullopt);
    }
}

// So xdg-user-dirs writes a folder that the user does not want.
TEST(UserFoldersFile, HomeItselfMeansNone)
{
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"$HOME/\""), std::nullopt);
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"$HOME\""), std::nullopt);
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"/home/u\""), std::nullopt);
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"$HOME/\""), std::nullopt);
}

TEST(UserFoldersFile, WithoutAHomeOnlyAbsolutePathsCount)
{
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"", ""), std::nullopt);
    EXPECT_EQ(documentsIn("XDG_DOCUMENTS_DIR=\"/data\"", ""), "/data");
}

class UserFolders : public testing::Test {
protected:
    UserFolders()
    {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
            m_environment.set(name, std::nullopt);
        }
        m_environment.set("HOME", m_home.path().native());
    }

    const TemporaryFolder m_home;
    ChangedEnvironment m_environment;
};

TEST_F(UserFolders, ABaseFolderIsTheVariablesOrBelowHome)
{
    const std::string below = m_home.path(".local/share");
    EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", ".local/share"), below);
    for (const char* ignored : {"", "relative", "./relative", "~/data", "$HOME/data"}) {
        m_environment.set("XDG_DATA_HOME", ignored);
        EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", ".local/share"), below);
    }
    m_environment.set("XDG_DATA_HOME", "/data");
    EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", ".local/share"), "/data");
    m_environment.set("XDG_DATA_HOME", "/data//");
    EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", ".local/share"), "/data");
}

TEST_F(UserFolders, WithoutHomeInTheEnvironmentThePasswordDatabaseTells)
{
    for (const auto& home : {std::optional<std::string>(), std::optional<std::string>("relative"),
                             std::optional<std::string>("")}) {
        m_environment.set("HOME", home);
        EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", "x"), homeFolder() + "/x");
    }
    m_environment.set("HOME", "/");
    EXPECT_EQ(userFolders::baseFolder("XDG_DATA_HOME", "x"), "/x");
}

TEST_F(UserFolders, TheFileOfNamesIsReadAtEachCall)
{
    const std::string standard = m_home.path("Documents");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), standard);
    fs::create_directory(m_home / ".config");
    m_home.write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), m_home.path("Papers"));
    EXPECT_EQ(userFolders::namedFolder("VIDEOS", "Videos"), m_home.path("Videos"));
    m_home.write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), standard);

    fs::create_directory(m_home / "settings");
    m_home.write("settings/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/elsewhere\"\n");
    m_environment.set("XDG_CONFIG_HOME", m_home.path("settings"));
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), "/elsewhere");
    m_environment.set("XDG_CONFIG_HOME", "settings");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), standard);
}

TEST_F(UserFolders, ALongFileIsReadToItsEnd)
{
    fs::create_directory(m_home / ".config");
    m_home.write(".config/user-dirs.dirs",
                 std::string(9000, '#') + "\nXDG_DOCUMENTS_DIR=\"/last\"");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), "/last");
}

TEST_F(UserFolders, AFolderInPlaceOfTheFileIsNoFile)
{
    fs::create_directories(m_home / ".config/user-dirs.dirs");
    EXPECT_EQ(userFolders::namedFolder("DOCUMENTS", "Documents"), m_home.path("Documents"));
}

} // namespace
