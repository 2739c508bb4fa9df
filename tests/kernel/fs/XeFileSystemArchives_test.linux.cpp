#include "XeFileSystem.h"

#include "InChild.h"
#include "ProgramBeside.linux.h"
#include "SmallVolume.linux.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "fs/ChildProcess.linux.h"
#include "fs/XeFileSystemArchivesPlatform.h"

#include <boost/crc.hpp>
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

constexpr auto kZipFailed = static_cast<XeResult>(0x8004E014);
constexpr auto kUnzipFailed = static_cast<XeResult>(0x8004E015);

XeResult zip(const fs::path& folder, const fs::path& archive)
{
    return XeFileSystem::zipFolder(wide(folder).c_str(), wide(archive).c_str(), false);
}

XeResult unzip(const fs::path& archive, const fs::path& folder)
{
    return XeFileSystem::unzipArchive(wide(archive).c_str(), wide(folder).c_str(), false);
}

class ArchivesOnLinux : public testing::Test {
protected:
    ArchivesOnLinux()
    {
        fs::create_directory(m_folder / "in");
        fs::create_directory(m_folder / "out");
        m_folder.write("in/file", std::string(100000, 'x'));
    }

    const TemporaryFolder m_folder;
};

TEST_F(ArchivesOnLinux, AFullVolumeFailsAndKeepsNoHalfArchive)
{
    const SmallVolume volume(m_folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    EXPECT_EQ(zip(m_folder / "in", volume / "archive.zip"), kZipFailed);
    EXPECT_TRUE(m_folder.names("volume").empty());
}

// Neither asks whether to go on.
TEST_F(ArchivesOnLinux, TakingOutIntoAFullVolumeFails)
{
    const SmallVolume volume(m_folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    ASSERT_EQ(zip(m_folder / "in", m_folder / "archive.zip"), 0);
    EXPECT_EQ(unzip(m_folder / "archive.zip", m_folder / "volume"), kUnzipFailed);
}

TEST_F(ArchivesOnLinux, AReadOnlyVolumeFails)
{
    const SmallVolume volume(m_folder / "volume", "size=1m");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    ASSERT_EQ(zip(m_folder / "in", m_folder / "archive.zip"), 0);
    ASSERT_TRUE(volume.makeReadOnly());
    EXPECT_EQ(zip(m_folder / "in", volume / "archive.zip"), kZipFailed);
    EXPECT_EQ(unzip(m_folder / "archive.zip", m_folder / "volume"), kUnzipFailed);
    EXPECT_TRUE(m_folder.names("volume").empty());
}

TEST_F(ArchivesOnLinux, AnEncryptedArchiveFailsAndNobodyIsAsked)
{
    ASSERT_EQ(runChildProcess(
                  {"/usr/bin/zip", "-q", "-r", "-P", "secret", m_folder.path("archive.zip"), "."},
                  m_folder.path("in")),
              0);
    EXPECT_EQ(unzip(m_folder / "archive.zip", m_folder / "out"), kUnzipFailed);
    EXPECT_TRUE(m_folder.names("out").empty());
}

void put(std::string& bytes, std::uint64_t number, int width)
{
    for (; width > 0; --width, number >>= 8) {
        bytes += static_cast<char>(number & 0xFF);
    }
}

/// An archive with one stored entry of a name that zip would not write.
std::string archiveWith(const std::string& name, const std::string& contents)
{
    boost::crc_32_type crc;
    crc.process_bytes(contents.data(), contents.size());
    std::string common;
    put(common, 10, 2); // version needed
    put(common, 0, 8);  // flags, method, time and date
    put(common, crc.checksum(), 4);
    put(common, contents.size(), 4);
    put(common, contents.size(), 4);
    put(common, name.size(), 2);
    put(common, 0, 2);
    const std::string entry = "PK\3\4" + common + name + contents;
    std::string directory = "PK\1\2";
    put(directory, 10, 2); // version made by
    directory += common;
    directory.append(14, '\0'); // comment, disk, attributes, offset
    directory += name;
    std::string bytes = entry + directory + "PK\5\6";
    put(bytes, 0, 4);
    put(bytes, 1, 2);
    put(bytes, 1, 2);
    put(bytes, directory.size(), 4);
    put(bytes, entry.size(), 4);
    put(bytes, 0, 2);
    return bytes;
}

TEST_F(ArchivesOnLinux, EntriesStayInsideTheFolder)
{
    const std::string ordinary = m_folder.write("good.zip", archiveWith("folder/file", "bytes"));
    ASSERT_EQ(unzip(ordinary, m_folder / "out"), 0);
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("out/folder/file")), "bytes");

    const std::string evil = m_folder.write("evil.zip", archiveWith("../../escaped", "bytes"));
    EXPECT_EQ(unzip(evil, m_folder / "out"), 0);
    EXPECT_EQ(m_folder.names("out"), (std::vector<std::string>{"escaped", "folder"}));
    EXPECT_FALSE(fs::exists(m_folder / "escaped"));
    EXPECT_FALSE(fs::exists(m_folder.path().parent_path() / "escaped"));
}

/// A program that writes down its folder and arguments, and ends as it is told.
std::string notingTool(const std::string& log, int status)
{
    return "#!/bin/sh\n{ pwd -P; printf '%s\\n' \"$@\"; } >'" + log + "'\nexit " +
           std::to_string(status) + "\n";
}

/// Has the tools write down how they are called, in place of what they do.
class NotingTools : public testing::Test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0) {
            GTEST_SKIP() << "takes root to put something in the place of the tools";
        }
        fs::create_directory(m_folder / "in");
    }

    /// For this process alone, which ends soon.
    void putInPlace(int status) const
    {
        const std::string tool = m_folder.write("tool", notingTool(m_log, status));
        fs::permissions(tool, fs::perms(0755));
        ASSERT_EQ(unshare(CLONE_NEWNS), 0);
        ASSERT_EQ(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
        for (const char* place : {"/usr/bin/zip", "/usr/bin/unzip"}) {
            ASSERT_EQ(mount(tool.c_str(), place, nullptr, MS_BIND, nullptr), 0) << place;
        }
    }

    /// Folder and arguments of the last call, a line each.
    std::string call() const { return TemporaryFolder::contents(m_log); }

    const TemporaryFolder m_folder;
    const std::string m_log = m_folder.path("call");
    const Text m_in = wide(m_folder / "in");
    const Text m_archive = wide(m_folder / "archive.zip");
};

TEST_F(NotingTools, AreCalledWithTheirOptionsInOrder)
{
    inChild([&] {
        putInPlace(0);
        const std::string in = m_folder.path("in") + '\n';
        const std::string archive = m_folder.path("archive.zip") + '\n';
        EXPECT_EQ(XeFileSystem::zipFolder(m_in.c_str(), m_archive.c_str(), false), 0);
        EXPECT_EQ(call(), in + "-q\n-r\n-u\n-0\n" + archive + ".\n");
        EXPECT_EQ(XeFileSystem::zipFolder(m_in.c_str(), m_archive.c_str(), true), 0);
        EXPECT_EQ(call(), in + "-q\n-r\n-u\n-0\n-j\n" + archive + ".\n");
        EXPECT_EQ(XeFileSystem::unzipArchive(m_archive.c_str(), m_in.c_str(), false), 0);
        EXPECT_EQ(call(), in + "-q\n-n\n-u\n" + archive);
        EXPECT_EQ(XeFileSystem::unzipArchive(m_archive.c_str(), m_in.c_str(), true), 0);
        EXPECT_EQ(call(), in + "-q\n-n\n-u\n-j\n" + archive);
    });
}

TEST_F(NotingTools, FailWithAnyStatusButZero)
{
    for (const int status : {1, 12, 255}) {
        inChild([&] {
            putInPlace(status);
            EXPECT_EQ(XeFileSystem::zipFolder(m_in.c_str(), m_archive.c_str(), false), kZipFailed);
            EXPECT_EQ(XeFileSystem::unzipArchive(m_archive.c_str(), m_in.c_str(), false),
                      kUnzipFailed);
        });
    }
}

/// A copy of the probe, beside which a tool for large archives can be put.
class LargeArchive : public testing::Test {
protected:
    LargeArchive()
    {
        fs::create_directories(m_folder / "bin");
        fs::create_directory(m_folder / "out");
        fs::copy_file(besideThisProgram("file_system_probe"), m_folder / "bin/probe");
    }

    void addTool(int status) const
    {
        fs::create_directories(m_folder / "bin/Contents/unzip64");
        m_folder.write("bin/Contents/unzip64/unzip", notingTool(m_folder.path("call"), status));
        fs::permissions(m_folder / "bin/Contents/unzip64/unzip", fs::perms(0755));
    }

    std::string archiveOf(std::uintmax_t bytes) const
    {
        const std::string path = m_folder.write("large.zip", "");
        fs::resize_file(path, bytes);
        return path;
    }

    /// unzipArchive as the copy does it.
    XeResult unzipThere(const std::string& archive) const
    {
        EXPECT_EQ(runChildProcess({m_folder.path("bin/probe"), "unzip", m_folder.path("answer"),
                                   archive, m_folder.path("out")},
                                  ""),
                  0);
        XeResult result = 1;
        std::ifstream(m_folder / "answer") >> result;
        return result;
    }

    std::string call() const { return TemporaryFolder::contents(m_folder.path("call")); }

    const TemporaryFolder m_folder;
};

TEST_F(LargeArchive, FromFourGibibytesOnIsForItsOwnTool)
{
    addTool(0);
    const std::string archive = archiveOf(0x100000000);
    EXPECT_EQ(unzipThere(archive), 0);
    EXPECT_EQ(call(), m_folder.path("out") + "\n-q\n-n\n-u\n" + archive + "\n");
    addTool(1);
    EXPECT_EQ(unzipThere(archive), kUnzipFailed);
}

TEST_F(LargeArchive, OneByteLessIsForTheSystems)
{
    addTool(0);
    EXPECT_EQ(unzipThere(archiveOf(0xFFFFFFFF)), kUnzipFailed); // it is no archive
    EXPECT_EQ(call(), "");
}

TEST_F(LargeArchive, WithoutTheToolIsForTheSystems)
{
    const std::string archive = archiveOf(0x100000000);
    EXPECT_EQ(unzipThere(archive), kUnzipFailed);
    fs::create_directories(m_folder / "bin/Contents/unzip64/unzip"); // no tool either
    EXPECT_EQ(unzipThere(archive), kUnzipFailed);
    EXPECT_EQ(call(), "");
}

TEST_F(LargeArchive, WithoutTheToolTheSystemsPathIsGiven)
{
    EXPECT_EQ(XeFileSystem::_getUnzipUrl(wide(archiveOf(0x100000000)).c_str()), L"/usr/bin/unzip");
    EXPECT_EQ(XeFileSystem::_getUnzipUrl(wide(archiveOf(1)).c_str()), L"/usr/bin/unzip");
    EXPECT_EQ(XeFileSystem::_getUnzipUrl(L"/absent"), L"/usr/bin/unzip");
    EXPECT_EQ(XeFileSystem::_getUnzipUrl(nullptr), L"/usr/bin/unzip");
}

} // namespace
