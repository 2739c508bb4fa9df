#include "host/app/RecentFiles.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class RecentFilesTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string list = folder.path("data/tarvel/recent-files");
};

TEST_F(RecentFilesTest, NewestIsFirstAndNoneTwice)
{
    RecentFiles files(list);
    files.add("/a.wav");
    files.add("/b.wav");
    files.add("/a.wav");
    EXPECT_THAT(files.paths(), ElementsAre("/a.wav", "/b.wav"));
}

TEST_F(RecentFilesTest, OutlivesTheProgramWithNamesOfAnyBytes)
{
    const std::string odd = "/m\xFF\n\xC3\xA4.wav";
    RecentFiles(list).add("/first.wav");
    RecentFiles(list).add(odd);
    EXPECT_THAT(RecentFiles(list).paths(), ElementsAre(odd, "/first.wav"));
    EXPECT_THAT(folder.names("data/tarvel"), ElementsAre("recent-files"));
}

TEST_F(RecentFilesTest, KeepsTheTenNewest)
{
    RecentFiles files(list);
    for (int i = 0; i < 12; ++i) {
        files.add("/" + std::to_string(i));
    }
    EXPECT_EQ(files.paths().size(), 10u);
    EXPECT_EQ(files.paths().front(), "/11");
    EXPECT_EQ(RecentFiles(list).paths(), files.paths());
}

TEST_F(RecentFilesTest, ForgetsOneOrAll)
{
    RecentFiles files(list);
    files.add("/a");
    files.add("/b");
    files.remove("/a");
    files.remove("/never");
    EXPECT_THAT(RecentFiles(list).paths(), ElementsAre("/b"));
    files.clear();
    EXPECT_THAT(RecentFiles(list).paths(), IsEmpty());
}

TEST_F(RecentFilesTest, TellsItsObserverOfEveryChange)
{
    RecentFiles files(list);
    int calls = 0;
    files.setObserver([&calls] { ++calls; });
    files.add("/a");
    files.remove("/none");
    files.remove("/a");
    files.clear();
    EXPECT_EQ(calls, 3);
}

TEST_F(RecentFilesTest, FileThatIsNoListGivesAnEmptyOne)
{
    EXPECT_THAT(RecentFiles(list).paths(), IsEmpty());
    EXPECT_THAT(RecentFiles(folder.write("list", "not a list\n")).paths(), IsEmpty());
    EXPECT_THAT(RecentFiles("").paths(), IsEmpty());
    RecentFiles nowhere("/proc/none/list");
    nowhere.add("/a");
    EXPECT_THAT(nowhere.paths(), ElementsAre("/a"));
}

TEST_F(RecentFilesTest, LiesInTheUsersDataFolder)
{
    const std::string before = std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME") : "";
    const std::string home = std::getenv("HOME");
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(RecentFiles::defaultPath(), "/data/VANTA/Tarvel/recent-files");
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(RecentFiles::defaultPath(), home + "/.local/share/VANTA/Tarvel/recent-files");
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(RecentFiles::defaultPath(), home + "/.local/share/VANTA/Tarvel/recent-files");
    before.empty() ? unsetenv("XDG_DATA_HOME") : setenv("XDG_DATA_HOME", before.c_str(), 1);
}

} // namespace
