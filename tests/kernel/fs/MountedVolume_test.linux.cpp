#include "fs/MountedVolume.linux.h"

#include "DeviceTree.linux.h"

#include <gtest/gtest.h>

#include <sys/sysmacros.h>

namespace {

using XeFileSystem::mediaTypeOf;

std::string g_fileSystemType; // of every device
std::string g_label;
int g_devicesAsked = 0;

std::string propertyOf(dev_t, const char* name)
{
    ++g_devicesAsked;
    return name == std::string_view("ID_FS_TYPE")        ? g_fileSystemType
           : name == std::string_view("ID_FS_LABEL_ENC") ? g_label
                                                         : std::string();
}
std::string tagOf(const std::string&, const char*) { return {}; }

/// Mounts of all kinds, as their line of mountinfo.
class MountedVolumeTest : public testing::Test {
protected:
    MountedVolumeTest()
    {
        g_fileSystemType.clear();
        g_label.clear();
        g_devicesAsked = 0;
        m_tree.addDevice("pci0/ata1", "pci");
        m_tree.addDisk("pci0/ata1", "sda", "8:0");
        m_tree.addDevice("pci0/usb1", "usb");
        m_tree.addDisk("pci0/usb1", "sdb", "8:16");
    }

    /// @param line  What stands behind the mount's id and parent.
    Mount mountOf(const std::string& line) const
    {
        const auto table = MountTable::read(m_folder.write("mountinfo", "5 1 " + line + '\n'));
        EXPECT_TRUE(table && table->mounts().size() == 1) << line;
        return table && !table->mounts().empty() ? table->mounts().front() : Mount();
    }
    Mount mountOfType(const std::string& type, const std::string& source = "source") const
    {
        return mountOf("0:50 / /mnt/x rw - " + type + ' ' + source + " rw");
    }
    int mediaType(const std::string& line) const
    {
        return mediaTypeOf(mountedVolume::traits(mountOf(line), m_devices));
    }

    const TemporaryFolder m_folder;
    const DeviceTree m_tree;
    const DeviceSources m_devices = {m_tree.path(), propertyOf, tagOf};
};

TEST_F(MountedVolumeTest, HasTheTypeNameOfMacOS)
{
    const struct {
        const char* type;
        const char* name;
    } rows[] = {
        {"vfat", "msdos"},
        {"msdos", "msdos"},
        {"umsdos", "msdos"},
        {"fuse.vfat", "msdos"},
        {"exfat", "exfat"},
        {"fuse.exfat", "exfat"},
        {"udf", "udf"},
        {"hfs", "hfs"},
        {"hfsplus", "hfs"},
        {"cifs", "smbfs"},
        {"smb3", "smbfs"},
        {"smbfs", "smbfs"},
        {"fuse.smbnetfs", "smbfs"},
        {"fuse.afpfs", "afpfs"},
        {"nfs", "nfs"},
        {"nfs4", "nfs"},
        {"ufs", "ufs"},
        {"fuse.ltfs", "ltfs"},
        {"fuse.vantacard", "vantacard"},
        // what macOS does not have
        {"ext4", "ext4"},
        {"btrfs", "btrfs"},
        {"fuse.sshfs", "fuse.sshfs"},
        {"tmpfs", "tmpfs"},
        {"fuseblk", "fuseblk"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mountedVolume::typeName(mountOfType(row.type), m_devices), row.name) << row.type;
    }
}

TEST_F(MountedVolumeTest, OfFuseOnADiskHasTheTypeThatTheDiskHas)
{
    const Mount mount = mountOf("8:16 / /media/ann/CARD rw - fuseblk /dev/sdb rw");
    g_fileSystemType = "exfat";
    EXPECT_EQ(mountedVolume::typeName(mount, m_devices), "exfat");
    g_fileSystemType = "vfat";
    EXPECT_EQ(mountedVolume::typeName(mount, m_devices), "msdos");
    g_fileSystemType = "ntfs";
    EXPECT_EQ(mountedVolume::typeName(mount, m_devices), "ntfs");
    g_fileSystemType = "";
    EXPECT_EQ(mountedVolume::typeName(mount, m_devices), "fuseblk");
}

TEST_F(MountedVolumeTest, HasItsMediaType)
{
    const struct {
        const char* line;
        int type;
    } rows[] = {
        {"8:0 / / rw - ext4 /dev/sda rw", 1},
        {"8:16 / /media/ann/CARD rw - exfat /dev/sdb rw", 0},
        {"8:16 / /media/ann/CARD rw - fuseblk /dev/sdb rw", 0},
        {"0:30 / /tmp rw - tmpfs tmpfs rw", 255},
        {"0:31 / /merged rw - overlay overlay rw,lowerdir=/a", 255},
        {"0:32 / /mnt/x rw - fuse.bindfs /a rw", 255},
        {"0:33 / /mnt/x rw - nfs4 host:/path rw", 2},
        {"0:34 / /mnt/x rw - nfs host:/path rw", 2},
        {"0:35 / /mnt/x rw - cifs //host/share rw", 2},
        {"0:36 / /mnt/x rw - smb3 //host/share rw", 2},
        {"0:37 / /mnt/x rw - fuse.sshfs ann@host:/path rw", 2},
        {"0:38 / /mnt/x rw - fuse.rclone remote: rw", 2},
        {"0:39 / /mnt/x rw - fuse.afpfs afpfs rw", 2},
        {"0:40 / /mnt/x rw - 9p share rw", 2},
        {"0:41 / /mnt/x rw - virtiofs share rw", 2},
        {"0:42 / /mnt/x rw - fuse https://host/dav rw", 2}, // davfs2
        {"0:43 / /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw", 2},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mediaType(row.line), row.type) << row.line;
    }
}

TEST_F(MountedVolumeTest, OnTheNetworkIsNoDevicesBusiness)
{
    mediaType("8:16 / /mnt/x rw - cifs //host/share rw");
    EXPECT_EQ(g_devicesAsked, 0);
}

TEST_F(MountedVolumeTest, IsShownUnderItsLabelOrItsMountPointsName)
{
    const Mount card = mountOf("8:16 / /media/ann/6A3F rw - exfat /dev/sdb rw");
    EXPECT_EQ(mountedVolume::displayName(card, m_devices), "6A3F");
    g_label = "My\\x20card";
    EXPECT_EQ(mountedVolume::displayName(card, m_devices), "My card");
    // The label is not that of a folder of the volume, nor of a volume without a device.
    const Mount folder = mountOf("8:16 /home /home rw - ext4 /dev/sdb rw");
    EXPECT_EQ(mountedVolume::displayName(folder, m_devices), "home");
    EXPECT_EQ(mountedVolume::displayName(mountOfType("tmpfs"), m_devices), "x");
    const Mount root = mountOf("8:0 / / rw - ext4 /dev/sda rw");
    EXPECT_EQ(mountedVolume::displayName(root, m_devices), "My card");
    g_label = "";
    EXPECT_EQ(mountedVolume::displayName(root, m_devices), "/");
}

TEST_F(MountedVolumeTest, OfAShareHasAUrl)
{
    const struct {
        const char* type;
        const char* source;
        const char* url;
    } rows[] = {
        {"cifs", "//host/share", "smb://host/share"},
        {"smb3", "//host/my\\040share/sub", "smb://host/my%20share/sub"},
        {"cifs", "//host/caf\xC3\xA9%", "smb://host/caf%C3%A9%25"},
        {"nfs", "host:/export/a\\040b", "nfs://host/export/a%20b"},
        {"nfs4", "[fe80::1]:/export", "nfs://[fe80::1]/export"},
        {"nfs4", "10.0.0.1:/", "nfs://10.0.0.1/"},
        {"fuse.sshfs", "ann@host:/music", "sftp://ann@host/music"},
        {"fuse.sshfs", "host:", "sftp://host/"},
        {"fuse", "https://host/dav", "https://host/dav"},
        {"fuse.curlftpfs", "curlftpfs#ftp://host/", "ftp://host/"},
        {"fuse.afpfs", "afp://host/volume", "afp://host/volume"},
        // shares that do not tell their server
        {"cifs", "share", ""},
        {"nfs", "none", ""},
        {"nfs", ":/path", ""},
        {"virtiofs", "share", ""},
        {"fuse.rclone", "remote:", ""},
        // no shares
        {"ext4", "/dev/sda", ""},
        {"tmpfs", "//host/share", ""},
        {"fuse.bindfs", "host:/path", ""},
        {"fuse", "://", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mountedVolume::shareUrl(mountOfType(row.type, row.source)), row.url)
            << row.type << ' ' << row.source;
    }
}

TEST_F(MountedVolumeTest, IsForUsersUnlessTheSystemKeepsItForItself)
{
    const auto table = MountTable::read(m_folder.write(
        "mountinfo",
        "20 1 0:20 / / rw - overlay overlay rw\n" // the root always counts
        "21 20 0:21 / /proc rw - proc proc rw\n"
        "22 20 0:22 / /sys rw - sysfs sysfs rw\n"
        "23 20 0:6 / /dev rw - devtmpfs devtmpfs rw\n"
        "24 20 0:23 / /run rw - tmpfs tmpfs rw\n"
        "25 20 0:24 / /tmp rw - tmpfs tmpfs rw\n"
        "26 20 8:1 / /boot/efi rw - vfat /dev/sda1 rw\n"
        "27 20 7:1 / /snap/core/1 ro - squashfs /dev/loop1 ro\n"
        "28 20 7:2 / /opt/image ro - squashfs /dev/loop2 ro\n"
        "29 20 0:40 /@home /home rw - btrfs /dev/sda3 rw,subvol=/@home\n"
        "30 24 8:17 / /run/media/ann/CARD\\0401 rw - exfat /dev/sdb1 rw\n"
        "31 24 0:41 / /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw\n"
        "32 24 0:42 / /run/user/1000/doc rw - fuse.portal portal rw\n"
        "33 20 0:43 / /mnt/nfs rw - nfs4 host:/path rw\n"
        "34 20 0:44 / /mnt/smb rw - cifs //host/share rw\n"
        "35 20 0:45 / /mnt/host rw - virtiofs share rw\n"
        "36 20 0:46 / /mnt/dav rw - fuse https://host/ rw\n"
        "37 20 11:0 / /media/ann/DVD ro - udf /dev/sr0 ro\n"
        "38 20 8:33 / /media/ann/Mac rw - hfsplus /dev/sdc1 rw\n"
        "39 20 8:49 / /mnt/hidden rw - ext4 /dev/sdd1 rw\n"
        "40 39 8:50 / /mnt/hidden rw - ext4 /dev/sde1 rw\n"
        "41 20 8:17 /sub /mnt/bound rw - exfat /dev/sdb1 rw\n"
        "42 20 8:2 /etc/hosts /proc/self/stat rw - ext4 /dev/sda2 rw\n"
        "43 20 8:2 /etc/hosts /etc/hosts rw - ext4 /dev/sda2 rw\n" // a file over a file
        "44 20 0:47 / /mnt/autofs rw - autofs systemd-1 rw\n"));
    ASSERT_TRUE(table);
    std::vector<int> ids;
    for (const Mount& mount : mountedVolume::userMounts(*table)) {
        ids.push_back(mount.id);
    }
    EXPECT_EQ(ids, (std::vector{20, 29, 30, 33, 34, 35, 36, 37, 38, 40, 41}));
}

} // namespace
