#include "XeFileSystem.h"

#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "XeNetStream.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;
using testing::ElementsAre;
using xenon::network::XeNetOStream;
using xenon::network::XeNetStream;

std::shared_ptr<std::istream> openInput(const fs::path& path)
{
    return XeFileSystem::openIStream(wide(path));
}

std::shared_ptr<std::ostream> openOutput(const fs::path& path)
{
    return XeFileSystem::openOStream(wide(path));
}

std::string allOf(std::istream& stream) { return {std::istreambuf_iterator<char>(stream), {}}; }

/// The descriptor under which the process has a file open; -1 when it has not.
int descriptorOf(const fs::path& path)
{
    struct stat wanted {};
    stat(path.c_str(), &wanted);
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        struct stat status {};
        if (fstat(descriptor, &status) == 0 && status.st_dev == wanted.st_dev &&
            status.st_ino == wanted.st_ino) {
            return descriptor;
        }
    }
    return -1;
}

class LocalStreams : public testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directory(m_folder / "folder");
        mkfifo(m_folder.path("pipe").c_str(), 0666);
        fs::create_symlink(m_folder / "pipe", m_folder / "link to pipe");
        fs::create_symlink(m_folder / "loop", m_folder / "loop");
        makeSocket();
    }

    void makeSocket() const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        m_folder.path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        close(descriptor);
    }

    const TemporaryFolder m_folder;
};

TEST_F(LocalStreams, InputGivesTheBytesOfTheFile)
{
    const std::string bytes("\r\n\x1A\0\xFF", 5);
    for (const char* name : {"take.wav", "\xC3\xA9t\xC3\xA9", "bad\xE9name", " "}) {
        SCOPED_TRACE(name);
        const auto stream = openInput(m_folder.write(name, bytes));
        ASSERT_TRUE(stream->good());
        EXPECT_EQ(allOf(*stream), bytes);
    }
}

TEST_F(LocalStreams, InputSeeksAndReadsMoreThanOneBuffer)
{
    std::string bytes(300000, 'a');
    bytes[200000] = 'b';
    const auto stream = openInput(m_folder.write("long", bytes));
    EXPECT_EQ(allOf(*stream), bytes);
    stream->clear();
    stream->seekg(200000);
    EXPECT_EQ(stream->get(), 'b');
    stream->seekg(0, std::ios::end);
    EXPECT_EQ(stream->tellg(), 300000);
}

TEST_F(LocalStreams, OutputStartsFromAnEmptyFile)
{
    m_folder.write("old", "something that was there before");
    const std::string bytes("\n\0\xFF", 3);
    for (const char* name : {"old", "new", "bad\xE9name"}) {
        SCOPED_TRACE(name);
        auto stream = openOutput(m_folder / name);
        ASSERT_TRUE(stream->good());
        EXPECT_EQ(TemporaryFolder::contents(m_folder.path(name)), "");
        *stream << bytes << std::flush;
        EXPECT_EQ(TemporaryFolder::contents(m_folder.path(name)), bytes);
        *stream << "rest";
        stream.reset();
        EXPECT_EQ(TemporaryFolder::contents(m_folder.path(name)), bytes + "rest");
    }
}

TEST_F(LocalStreams, NewFileGetsTheUsualRights)
{
    const mode_t mask = umask(027);
    openOutput(m_folder / "new");
    umask(mask);
    EXPECT_EQ(fs::status(m_folder / "new").permissions(), fs::perms(0640));
}

TEST_F(LocalStreams, LinksToFilesAreFollowed)
{
    fs::create_symlink(m_folder / "file", m_folder / "link");
    *openOutput(m_folder / "link") << "through a dangling link";
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("file")), "through a dangling link");
    EXPECT_EQ(allOf(*openInput(m_folder / "link")), "through a dangling link");
}

// None of them waits for anything either.
TEST_F(LocalStreams, WhatIsNoRegularFileGivesAFailedStream)
{
    for (const fs::path& path :
         {m_folder / "folder", m_folder / "folder/", m_folder / "pipe", m_folder / "link to pipe",
          m_folder / "socket", m_folder / "loop", m_folder / "missing/file", fs::path("/dev/null"),
          fs::path(), m_folder / std::string(256, 'n')}) {
        SCOPED_TRACE(path);
        const auto input = openInput(path);
        ASSERT_NE(input, nullptr);
        EXPECT_TRUE(input->fail());
        const auto output = openOutput(path);
        ASSERT_NE(output, nullptr);
        EXPECT_TRUE(output->fail());
    }
    EXPECT_TRUE(openInput(m_folder / "missing")->fail());
    EXPECT_FALSE(fs::exists(m_folder / "missing"));
}

TEST_F(LocalStreams, NameThatNoFileCanHaveGivesAFailedStream)
{
    const Text path = wide(m_folder / "x") + L'\xD800';
    EXPECT_TRUE(XeFileSystem::openIStream(path)->fail());
    EXPECT_TRUE(XeFileSystem::openOStream(path)->fail());
}

TEST_F(LocalStreams, FailWithoutRights)
{
    fs::permissions(m_folder.write("private", "x"), fs::perms(0));
    fs::permissions(m_folder.write("readable", "x"), fs::perms(0444));
    fs::permissions(m_folder.path(), fs::perms(0555));
    asOrdinaryUser([&] {
        EXPECT_TRUE(openInput(m_folder / "private")->fail());
        EXPECT_TRUE(openInput(m_folder / "readable")->good());
        EXPECT_TRUE(openOutput(m_folder / "readable")->fail());
        EXPECT_TRUE(openOutput(m_folder / "new")->fail());
    });
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("readable")), "x");
}

TEST_F(LocalStreams, AreStandardFileStreams)
{
    EXPECT_NE(dynamic_cast<std::ifstream*>(openInput(m_folder.write("file", "x")).get()), nullptr);
    const auto output = openOutput(m_folder / "file");
    auto* const file = dynamic_cast<std::ofstream*>(output.get());
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->is_open());
    file->close();
    EXPECT_TRUE(file->good());
}

TEST_F(LocalStreams, DescriptorsAreNotInheritedAndGoWithTheStream)
{
    const fs::path path = m_folder.write("file", "x");
    const std::size_t before = openDescriptors();
    {
        const auto input = openInput(path);
        EXPECT_NE(fcntl(descriptorOf(path), F_GETFD) & FD_CLOEXEC, 0);
    }
    {
        const auto output = openOutput(path);
        EXPECT_NE(fcntl(descriptorOf(path), F_GETFD) & FD_CLOEXEC, 0);
    }
    for (const char* name : {"pipe", "folder", "socket", "missing/x"}) {
        openInput(m_folder / name);
        openOutput(m_folder / name);
    }
    EXPECT_EQ(openDescriptors(), before);
}

class RemoteStreams : public testing::Test {
protected:
    const Text m_path = L"/remote/volume/take.wav";
    std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    RemoteMount m_mount{L"/remote/volume", m_remote};
};

TEST_F(RemoteStreams, InputComesFromTheFileSystemOfTheMountPoint)
{
    m_remote->addFile(m_path, "bytes");
    {
        const auto stream = XeFileSystem::openIStream(m_path);
        EXPECT_NE(dynamic_cast<XeNetStream<char>*>(stream.get()), nullptr);
        EXPECT_EQ(allOf(*stream), "bytes");
    }
    EXPECT_THAT(m_remote->calls, ElementsAre("getFileSize", "openRead", "read", "closeRead"));
    EXPECT_EQ(m_remote->openHandles(), 0u);
}

TEST_F(RemoteStreams, OutputGoesToTheFileSystemOfTheMountPoint)
{
    m_remote->addFolder(L"/remote/volume");
    {
        const auto stream = XeFileSystem::openOStream(m_path);
        EXPECT_NE(dynamic_cast<XeNetOStream<char>*>(stream.get()), nullptr);
        *stream << "bytes";
    }
    EXPECT_EQ(m_remote->bytesOf(m_path), "bytes");
    EXPECT_THAT(m_remote->calls, ElementsAre("openWrite", "write", "closeWrite"));
}

TEST_F(RemoteStreams, MissingRemoteFileIsAtItsEndAtOnce)
{
    const auto stream = XeFileSystem::openIStream(m_path);
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(stream->good());
    EXPECT_EQ(stream->get(), std::char_traits<char>::eof());
    EXPECT_LT(dynamic_cast<XeNetStream<char>&>(*stream).close(), 0);
}

// A file of that path on the local disk would be something else.
TEST_F(RemoteStreams, LocalFileBelowTheMountPointIsNotLookedAt)
{
    const TemporaryFolder folder;
    const fs::path path = folder.write("take.wav", "local");
    const RemoteMount mount(wide(folder.path()), m_remote);
    EXPECT_EQ(allOf(*openInput(path)), "");
    EXPECT_FALSE(*openOutput(path) << "remote" << std::flush);
    EXPECT_EQ(TemporaryFolder::contents(path), "local");
}

TEST(ContextsOfOtherKinds, LeaveStreamsLocal)
{
    const TemporaryFolder folder;
    const fs::path path = folder.write("take.wav", "local");
    XeFileSystem::addMountPointContext(wide(folder.path()), std::make_shared<int>(1), 5, false);
    EXPECT_EQ(allOf(*openInput(path)), "local");
    XeFileSystem::removeMountPointContext(wide(folder.path()));
}

} // namespace
