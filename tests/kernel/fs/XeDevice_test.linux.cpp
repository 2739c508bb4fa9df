#include "XeDevice.h"

#include "FuseVolume.linux.h"
#include "LoopVolume.linux.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "SmallVolume.linux.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "fs/RemoteVolume.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace {

namespace fs = std::filesystem;

constexpr auto kFailure = static_cast<XeResult>(0x80000008);
constexpr auto kVolumeGone = static_cast<XeResult>(0x8004E195);

XeResult eject(const fs::path& path) { return XeDevice::ejectVolume(wide(path)); }

bool isMounted(const fs::path& path)
{
    struct statx status {};
    EXPECT_EQ(statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, 0, &status), 0) << path;
    return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

/// A volume in memory in a folder.
class EjectVolume : public testing::Test {
protected:
    void SetUp() override
    {
        if (!m_volume) {
            GTEST_SKIP() << "no volume can be mounted: " << m_volume.reason();
        }
        // The desktop of the machine is left alone.
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/no such bus", 1);
    }

    void TearDown() override { unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    const TemporaryFolder m_folder;
    const fs::path m_point = m_folder / "a volume";
    const SmallVolume m_volume{m_point, "size=64k"};
};

TEST_F(EjectVolume, UnmountsIt)
{
    EXPECT_EQ(eject(m_point), 0);
    EXPECT_FALSE(isMounted(m_point));
}

TEST_F(EjectVolume, TakesASeparatorAtTheEnd)
{
    EXPECT_EQ(eject(m_point / ""), 0);
    EXPECT_FALSE(isMounted(m_point));
}

TEST_F(EjectVolume, RefusesAPathInsideIt)
{
    fs::create_directory(m_point / "folder");
    EXPECT_EQ(eject(m_point / "folder"), kFailure);
    EXPECT_EQ(eject(m_point / "absent"), kFailure);
    EXPECT_EQ(eject(m_folder.path()), kFailure);
    EXPECT_TRUE(isMounted(m_point));
}

TEST_F(EjectVolume, RefusesALinkToIt)
{
    fs::create_directory_symlink(m_point, m_folder / "link");
    EXPECT_EQ(eject(m_folder / "link"), kFailure);
    EXPECT_EQ(eject(m_folder / "link" / ""), kFailure);
    EXPECT_TRUE(isMounted(m_point));
}

TEST_F(EjectVolume, FailsForAVolumeInUse)
{
    const std::ofstream file(m_point / "open");
    EXPECT_EQ(eject(m_point), kFailure);
    EXPECT_TRUE(isMounted(m_point));
}

TEST_F(EjectVolume, TakesTheUppermostOfTwo)
{
    const SmallVolume second(m_point, "size=64k");
    EXPECT_EQ(eject(m_point), 0);
    EXPECT_TRUE(isMounted(m_point));
    EXPECT_EQ(eject(m_point), 0);
    EXPECT_FALSE(isMounted(m_point));
}

TEST_F(EjectVolume, FailsForAnOrdinaryUser)
{
    asOrdinaryUser([&] { EXPECT_EQ(eject(m_point), kFailure); });
    EXPECT_TRUE(isMounted(m_point));
}

TEST_F(EjectVolume, HasNoDeviceInMemory)
{
    std::string name = "before";
    EXPECT_EQ(XeDevice::getBSDName(wide(m_point).c_str(), name), kFailure);
    EXPECT_EQ(name, "");
    auto type = static_cast<EVolumeMediaType>(7);
    EXPECT_EQ(XeDevice::getUSBDeviceType(wide(m_point).c_str(), type), 0);
    EXPECT_EQ(type, 7);
}

/// Ejects a FUSE volume of this user, whose server may be gone.
void ejectFuseVolume(bool serverIsGone)
{
    const TemporaryFolder folder;
    const fs::path point = fs::canonical(folder.path()) / "it's \"mounted\"";
    FuseVolume volume(folder.path(), point, "subtype=mirror");
    ASSERT_TRUE(volume);
    if (serverIsGone) {
        volume.killServer();
    }
    const std::size_t before = openDescriptors();
    EXPECT_EQ(eject(point), 0);
    EXPECT_FALSE(isMounted(point));
    EXPECT_EQ(openDescriptors(), before);
}

TEST(EjectFuse, UnmountsAVolumeOfTheUser)
{
    const TemporaryFolder folder;
    if (!FuseVolume(folder.path(), folder / "mounted", "subtype=mirror")) {
        GTEST_SKIP() << FuseVolume::reason();
    }
    ejectFuseVolume(false);
    ejectFuseVolume(true);
}

/// True when a user without privileges may use FUSE. fusermount3 reads the mounts in /etc/mtab when
/// it is to end one, which a system that was never booted may lack.
bool usersHaveFuse()
{
    constexpr unsigned kOthersMayUse = S_IROTH | S_IWOTH;
    struct stat status {};
    return stat("/dev/fuse", &status) == 0 && (status.st_mode & kOthersMayUse) == kOthersMayUse &&
           access("/etc/mtab", R_OK) == 0;
}

TEST(EjectFuse, IsPossibleForAnOrdinaryUser)
{
    if (!usersHaveFuse()) {
        GTEST_SKIP() << "/dev/fuse is not for every user, or there is no /etc/mtab";
    }
    asOrdinaryUser([] {
        ejectFuseVolume(false);
        ejectFuseVolume(true);
    });
}

// The remote behind a mount point of FUSE tells that its volume is lost.
TEST(EjectFuse, FollowsFromARemoteVolumeThatIsGone)
{
    const TemporaryFolder folder;
    const fs::path point = fs::canonical(folder.path()) / "remote";
    FuseVolume volume(folder.path(), point, "subtype=mirror");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    const auto remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount mount(wide(point), remote);
    remote->failures["createFolder"] = kVolumeGone;
    remote->failures["deleteFile"] = kFailure;

    const auto path = wide(point / "folder");
    EXPECT_EQ(RemoteVolume(path).call(&xenon::network::IFileSystem::deleteFile, path), kFailure);
    EXPECT_TRUE(isMounted(point));
    volume.killServer(); // as when the connection breaks
    EXPECT_EQ(RemoteVolume(path).call(&xenon::network::IFileSystem::createFolder, path),
              kVolumeGone);
    EXPECT_FALSE(isMounted(point));
}

TEST(DeviceOfADisk, HasTheKernelsName)
{
    const TemporaryFolder folder;
    const LoopDevice disk(folder / "image", "mkfs.ext4 -q");
    if (!disk) {
        GTEST_SKIP() << disk.reason();
    }
    const MountedFolder volume(disk.node(), folder / "disk", "ext4");
    ASSERT_TRUE(volume);
    std::ofstream(folder / "disk/file");
    std::string name;
    EXPECT_EQ(XeDevice::getBSDName(wide(folder / "disk/file").c_str(), name), 0);
    EXPECT_EQ("/dev/" + name, disk.node());
    auto type = static_cast<EVolumeMediaType>(7);
    EXPECT_EQ(XeDevice::getUSBDeviceType(wide(folder / "disk").c_str(), type), 0);
    EXPECT_EQ(type, 7);
    EXPECT_EQ(eject(folder / "disk"), 0);
    EXPECT_FALSE(isMounted(folder / "disk"));
}

} // namespace
