#include "XeFileSystem.h"

#include "FileTree.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "ResultCodes.h"
#include "SmallVolume.linux.h"

#include <gtest/gtest.h>

#include <sys/mount.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

/// Makes a folder appear at a second place while it lives.
class BindMount {
public:
    BindMount(const fs::path& folder, const fs::path& at) : m_at(at)
    {
        m_mounted = mount(folder.c_str(), at.c_str(), nullptr, MS_BIND, nullptr) == 0;
    }
    ~BindMount()
    {
        if (m_mounted) {
            umount2(m_at.c_str(), MNT_DETACH);
        }
    }
    BindMount(const BindMount&) = delete;
    BindMount& operator=(const BindMount&) = delete;

    explicit operator bool() const { return m_mounted; }

private:
    fs::path m_at;
    bool m_mounted;
};

/// A temporary folder with a volume of 64 KiB in its folder "volume".
class AcrossVolumes : public testing::Test {
protected:
    void SetUp() override
    {
        if (!m_volume) {
            GTEST_SKIP() << "cannot mount a volume: " << m_volume.reason();
        }
    }
    XeResult copyFile(const std::string& from, const std::string& to) const
    {
        return XeFileSystem::copyFile(m_tree.wide(from).c_str(), m_tree.wide(to).c_str(), false);
    }
    XeResult copyFolder(const std::string& from, const std::string& to) const
    {
        return XeFileSystem::copyFolder(m_tree.wide(from).c_str(), m_tree.wide(to).c_str(),
                                        ECopyOption(0));
    }
    XeResult move(const std::string& from, const std::string& to) const
    {
        return XeFileSystem::moveFile(m_tree.wide(from).c_str(), m_tree.wide(to).c_str());
    }
    std::string bytes(const std::string& name) const
    {
        return FileTree::contents(m_tree.path(name));
    }

    const FileTree m_tree;
    const SmallVolume m_volume{m_tree / "volume", "size=64k"};
    const std::string m_tooLarge = std::string(200000, 'x');
};

TEST_F(AcrossVolumes, AFileIsMovedByCopying)
{
    m_tree.write("a", "new");
    m_tree.write("volume/a", "old");
    EXPECT_EQ(move("a", "volume/a"), kOk);
    EXPECT_EQ(bytes("volume/a"), "new");
    EXPECT_EQ(move("volume/a", "b"), kOk);
    EXPECT_EQ(bytes("b"), "new");
    EXPECT_EQ(m_tree.names(), (std::vector<std::string>{"b", "volume"}));
    EXPECT_TRUE(m_tree.names("volume").empty());
}

TEST_F(AcrossVolumes, RenamingIsAGeneralFailure)
{
    m_tree.write("a", "x");
    const auto before = m_tree.items();
    EXPECT_EQ(
        XeFileSystem::renameFile(m_tree.wide("a").c_str(), m_tree.wide("volume/a").c_str(), false),
        kGeneral);
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(AcrossVolumes, WhatCannotBeCopiedIsNotMoved)
{
    m_tree.makeFolder("folder/sub");
    m_tree.makePipe("pipe");
    m_tree.makeLink("dangling", "nowhere");
    const auto before = m_tree.items();
    for (const char* name : {"folder", "pipe", "dangling"}) {
        EXPECT_EQ(move(name, "volume/new"), kOperationFailed) << name;
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(AcrossVolumes, AFullVolumeKeepsNoPartOfACopy)
{
    m_tree.write("large", m_tooLarge);
    const std::size_t descriptors = openDescriptors();
    EXPECT_EQ(copyFile("large", "volume/new"), kOperationFailed);
    EXPECT_EQ(move("large", "volume/new"), kOperationFailed);
    EXPECT_TRUE(m_tree.names("volume").empty());
    EXPECT_EQ(bytes("large"), m_tooLarge);
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(AcrossVolumes, AFullVolumeKeepsNoPartOfARemoteFile)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->addFile(L"/remote/full/large", m_tooLarge);
    const RemoteMount mount(L"/remote/full", remote);
    EXPECT_EQ(
        XeFileSystem::copyFile(L"/remote/full/large", m_tree.wide("volume/new").c_str(), false),
        kOperationFailed);
    EXPECT_TRUE(m_tree.names("volume").empty());
}

TEST_F(AcrossVolumes, AFolderCopiedOntoAFullVolumeKeepsItsWholeFiles)
{
    m_tree.makeFolder("a");
    for (int i = 0; i < 30; ++i) {
        m_tree.write("a/" + std::to_string(i), std::string(10000, 'y'));
    }
    EXPECT_EQ(copyFolder("a", "volume/a"), kOperationFailed);
    const auto kept = m_tree.names("volume/a");
    EXPECT_FALSE(kept.empty());
    EXPECT_LT(kept.size(), 30u);
    for (const std::string& name : kept) {
        EXPECT_EQ(bytes("volume/a/" + name).size(), 10000u);
    }
}

TEST_F(AcrossVolumes, AReadOnlyVolumeRefusesEveryChange)
{
    m_tree.write("a", "x");
    m_tree.write("volume/file", "y");
    m_tree.makeFolder("volume/folder/empty");
    ASSERT_TRUE(m_volume.makeReadOnly());
    const auto before = m_tree.items();
    const auto path = [&](const char* name) { return m_tree.wide(name); };
    EXPECT_EQ(copyFile("a", "volume/new"), kOperationFailed);
    EXPECT_EQ(copyFile("a", "volume/file"), kGeneral); // cannot be deleted
    EXPECT_EQ(copyFolder("volume/folder", "volume/new"), kGeneral);
    EXPECT_EQ(move("a", "volume/new"), kOperationFailed);
    EXPECT_EQ(XeFileSystem::createFolder(path("volume/a/b").c_str()), kOperationFailed);
    EXPECT_EQ(XeFileSystem::linkFile(L"x", path("volume/l").c_str(), true), kOperationFailed);
    EXPECT_EQ(XeFileSystem::deleteFile(path("volume/file")), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteFolder(path("volume/folder").c_str(), false), kGeneral);
    EXPECT_EQ(XeFileSystem::deleteEmptyFolders(path("volume").c_str(), false), kGeneral);
    EXPECT_EQ(
        XeFileSystem::renameFile(path("volume/file").c_str(), path("volume/b").c_str(), false),
        kGeneral);
    EXPECT_EQ(m_tree.items(), before);
}

// The source stays, and so does the copy: nothing is lost.
TEST_F(AcrossVolumes, ASourceThatCannotBeDeletedIsTold)
{
    m_tree.write("volume/file", "y");
    ASSERT_TRUE(m_volume.makeReadOnly());
    EXPECT_EQ(move("volume/file", "new"), kGeneral);
    EXPECT_EQ(bytes("new"), "y");
    EXPECT_EQ(bytes("volume/file"), "y");
}

// Both lie on one disk, but the system does not rename from one mount to the other.
TEST_F(AcrossVolumes, BindMountsAreVolumesOfTheirOwn)
{
    m_tree.makeFolder("one");
    m_tree.makeFolder("two");
    m_tree.write("one/a", "x");
    const BindMount bind(m_tree / "one", m_tree / "two");
    ASSERT_TRUE(bind);
    EXPECT_EQ(move("two/a", "b"), kOk);
    EXPECT_EQ(bytes("b"), "x");
    EXPECT_TRUE(m_tree.names("one").empty());
    EXPECT_EQ(move("b", "two/a"), kOk);
    EXPECT_EQ(bytes("one/a"), "x");
    // One file through two mounts: a copy would first have deleted it.
    EXPECT_EQ(move("one/a", "two/a"), kGeneral);
    EXPECT_EQ(bytes("one/a"), "x");
}

TEST_F(AcrossVolumes, AFolderIsNotCopiedIntoItselfThroughABindMount)
{
    m_tree.makeFolder("a/sub");
    m_tree.makeFolder("b");
    m_tree.write("a/file", "x");
    {
        const BindMount bind(m_tree / "a", m_tree / "b");
        ASSERT_TRUE(bind);
        EXPECT_EQ(copyFolder("a", "b/new"), kGeneral);
        EXPECT_EQ(copyFolder("a", "b"), kGeneral);
    }
    EXPECT_EQ(m_tree.names("a"), (std::vector<std::string>{"file", "sub"}));
    // The mount shows a folder of the source, so the copy meets its own beginning.
    const BindMount bind(m_tree / "a/sub", m_tree / "b");
    ASSERT_TRUE(bind);
    EXPECT_EQ(copyFolder("a", "b/new"), kGeneral);
}

} // namespace
