#include "fs/RemoteVolume.h"

#include "MemoryFileSystem.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using xenon::network::IFileSystem;

class RemoteVolumeTest : public testing::Test {
protected:
    std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    RemoteMount m_mount{L"/remote/volume", m_remote};
};

TEST_F(RemoteVolumeTest, IsFoundForEveryPathBelowItsMountPoint)
{
    for (const wchar_t* path : {L"/remote/volume", L"/remote/volume/", L"/remote/volume/a/b"}) {
        EXPECT_EQ(RemoteVolume(path).fileSystem(), m_remote);
    }
    for (const wchar_t* path : {L"", L"/", L"/remote", L"/remote/volumes", L"remote/volume"}) {
        EXPECT_FALSE(RemoteVolume(path));
    }
    EXPECT_TRUE(RemoteVolume(L"/remote/volume/a") == RemoteVolume(L"/remote/volume/b"));
    EXPECT_FALSE(RemoteVolume(L"/remote/volume/a") == RemoteVolume(L"/b"));
}

TEST_F(RemoteVolumeTest, ContextsOfOtherKindsAreNone)
{
    XeFileSystem::addMountPointContext(L"/remote/other", std::make_shared<int>(1), 5, false);
    EXPECT_FALSE(RemoteVolume(L"/remote/other/a"));
    XeFileSystem::removeMountPointContext(L"/remote/other");
}

TEST_F(RemoteVolumeTest, HandsCallsAndResultsOn)
{
    m_remote->addFile(L"/remote/volume/a", "bytes");
    const RemoteVolume volume(L"/remote/volume/a");
    std::int64_t size = 0;
    EXPECT_EQ(volume.call(&IFileSystem::getFileSize, L"/remote/volume/a", size), kXeOk);
    EXPECT_EQ(size, 5);
    m_remote->failures["deleteFile"] = -7;
    EXPECT_EQ(volume.call(&IFileSystem::deleteFile, L"/remote/volume/a"), -7);
}

// The volume that holds the folder is the machine's own.
TEST_F(RemoteVolumeTest, ALostVolumeThatIsNotMountedEjectsNothing)
{
    EXPECT_EQ(RemoteVolume(L"/remote/volume").ended(kXeRemoteVolumeGone), kXeRemoteVolumeGone);
}

} // namespace
