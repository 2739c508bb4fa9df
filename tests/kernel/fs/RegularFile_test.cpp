#include "fs/RegularFile.h"

#include "FileTree.h"
#include "OpenDescriptors.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace {

class RegularFile : public testing::Test {
protected:
    Descriptor open(const std::string& name, int flags = O_RDONLY) const
    {
        return openRegularFile(m_tree.path(name).c_str(), flags, 0640);
    }

    const FileTree m_tree;
};

TEST_F(RegularFile, IsOpenedAlsoThroughALink)
{
    m_tree.write("file", "bytes");
    m_tree.makeLink("link", "file");
    for (const char* name : {"file", "link"}) {
        const Descriptor file = open(name);
        ASSERT_TRUE(file);
        char bytes[8] = {};
        EXPECT_EQ(read(file.get(), bytes, sizeof bytes), 5);
        EXPECT_STREQ(bytes, "bytes");
    }
}

TEST_F(RegularFile, IsMadeWhereNothingIs)
{
    EXPECT_FALSE(open("new"));
    const mode_t before = umask(0);
    EXPECT_TRUE(open("new", O_WRONLY | O_CREAT));
    umask(before);
    EXPECT_EQ(std::filesystem::status(m_tree / "new").permissions(), std::filesystem::perms(0640));
}

TEST_F(RegularFile, IsWaitedForOnceItIsOpen)
{
    m_tree.write("file", "bytes");
    const Descriptor file = open("file", O_RDWR);
    EXPECT_EQ(fcntl(file.get(), F_GETFL) & (O_NONBLOCK | O_ACCMODE), O_RDWR);
    EXPECT_NE(fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
}

// A pipe without another end would be waited for; one with both ends does open.
TEST_F(RegularFile, NothingElseIsOneNorWaitedFor)
{
    m_tree.makePipe("pipe");
    m_tree.makePipe("open pipe");
    m_tree.makeFolder("folder");
    m_tree.makeLink("dangling", "nowhere");
    const Descriptor end(::open(m_tree.path("open pipe").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_TRUE(end);
    const std::size_t before = openDescriptors();
    for (const char* name : {"pipe", "open pipe", "folder", "dangling", "missing", ""}) {
        for (const int flags : {O_RDONLY, O_WRONLY, O_RDWR}) {
            EXPECT_FALSE(open(name, flags)) << name << ' ' << flags;
        }
    }
    EXPECT_FALSE(openRegularFile("/dev/null", O_RDONLY));
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
