#include "host/app/PendingFile.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Naming = PendingFile::Naming;

namespace {

/// Every test runs without a name and with a hidden one.
class PendingFileTest : public testing::TestWithParam<Naming> {
protected:
    std::string path(const std::string& name) const { return m_folder.path(name); }

    TemporaryFolder m_folder;
};

INSTANTIATE_TEST_SUITE_P(Namings, PendingFileTest,
                         testing::Values(Naming::NamelessWherePossible, Naming::Hidden),
                         [](const auto& info) {
                             return info.param == Naming::Hidden ? "Hidden" : "Nameless";
                         });

bool write(PendingFile& file, const std::string& text)
{
    return file.write(text.data(), text.size());
}

} // namespace

TEST_P(PendingFileTest, AppearsWholeUnderItsName)
{
    PendingFile file(path("a"), GetParam());
    EXPECT_TRUE(write(file, "one "));
    EXPECT_TRUE(write(file, "two"));
    EXPECT_FALSE(std::filesystem::exists(path("a")));
    EXPECT_TRUE(file.finish(false));
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "one two");
    EXPECT_THAT(m_folder.names(), ElementsAre("a"));
    EXPECT_EQ(file.error(), 0);
}

TEST_P(PendingFileTest, LeavesNothingWhenItIsNotFinished)
{
    {
        PendingFile file(path("a"), GetParam());
        EXPECT_TRUE(write(file, "text"));
    }
    EXPECT_THAT(m_folder.names(), IsEmpty());
}

TEST_P(PendingFileTest, IsReadAndWrittenAnywhere)
{
    PendingFile file(path("a"), GetParam());
    EXPECT_TRUE(write(file, "0123456789"));
    EXPECT_EQ(file.seek(-7, SEEK_END), 3);
    EXPECT_TRUE(write(file, "xy"));
    EXPECT_EQ(file.seek(0, SEEK_CUR), 5);
    char bytes[20] = {};
    EXPECT_EQ(file.seek(2, SEEK_SET), 2);
    EXPECT_EQ(file.read(bytes, 4), 4U);
    EXPECT_STREQ(bytes, "2xy5");
    EXPECT_EQ(file.read(bytes, sizeof bytes), 4U);
    EXPECT_EQ(file.size(), 10);
    EXPECT_TRUE(file.finish(false));
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "012xy56789");
}

TEST_P(PendingFileTest, TakenNameIsReplacedOnlyWhenAsked)
{
    m_folder.write("a", "old");
    {
        PendingFile file(path("a"), GetParam());
        EXPECT_TRUE(write(file, "new"));
        EXPECT_FALSE(file.finish(false));
        EXPECT_EQ(file.error(), EEXIST);
    }
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "old");
    EXPECT_THAT(m_folder.names(), ElementsAre("a"));

    PendingFile file(path("a"), GetParam());
    EXPECT_TRUE(write(file, "new"));
    EXPECT_TRUE(file.finish(true));
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "new");
    EXPECT_THAT(m_folder.names(), ElementsAre("a"));
}

TEST_P(PendingFileTest, LinkIsReplacedAndNotFollowed)
{
    m_folder.write("target", "old");
    ASSERT_EQ(symlink("target", path("a").c_str()), 0);
    PendingFile file(path("a"), GetParam());
    EXPECT_TRUE(write(file, "new"));
    EXPECT_TRUE(file.finish(true));
    EXPECT_EQ(TemporaryFolder::contents(path("target")), "old");
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "new");
}

TEST_P(PendingFileTest, FolderIsNotReplaced)
{
    std::filesystem::create_directory(path("a"));
    {
        PendingFile file(path("a"), GetParam());
        EXPECT_FALSE(file.finish(true));
        EXPECT_EQ(file.error(), EISDIR);
    }
    EXPECT_THAT(m_folder.names(), ElementsAre("a"));
}

TEST_P(PendingFileTest, FirstFailureIsKept)
{
    PendingFile file(path("gone/a"), GetParam());
    EXPECT_EQ(file.error(), ENOENT);
    EXPECT_FALSE(write(file, "text"));
    EXPECT_EQ(file.seek(0, SEEK_SET), -1);
    EXPECT_EQ(file.size(), -1);
    EXPECT_FALSE(file.finish(true));
    EXPECT_EQ(file.error(), ENOENT);
}

TEST_P(PendingFileTest, TwoOfOneNameDoNotMeet)
{
    PendingFile one(path("a"), GetParam());
    PendingFile other(path("a"), GetParam());
    EXPECT_TRUE(write(one, "one"));
    EXPECT_TRUE(write(other, "other"));
    EXPECT_TRUE(one.finish(false));
    EXPECT_TRUE(other.finish(true));
    EXPECT_EQ(TemporaryFolder::contents(path("a")), "other");
}

TEST_P(PendingFileTest, HiddenNameIsInTheFolderOfTheFile)
{
    PendingFile file(path("a"), Naming::Hidden);
    EXPECT_THAT(m_folder.names(), ElementsAre(StartsWith(".tarvel-")));
}
