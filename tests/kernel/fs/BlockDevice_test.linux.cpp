#include "fs/BlockDevice.linux.h"

#include "DeviceTree.linux.h"
#include "LoopVolume.linux.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <map>

namespace {

std::map<std::string, std::string> g_properties; // of udev, by name
std::map<std::string, std::string> g_tags;       // of blkid, by name

std::string propertyOf(dev_t, const char* name) { return g_properties[name]; }
std::string tagOf(const std::string&, const char* name) { return g_tags[name]; }

Mount mountOf(unsigned majorNumber, unsigned minorNumber, const char* source = "/dev/absent")
{
    Mount mount;
    mount.device = makedev(majorNumber, minorNumber);
    mount.source = source;
    return mount;
}

/// A machine with all kinds of disks.
class BlockDeviceTest : public testing::Test {
protected:
    BlockDeviceTest()
    {
        g_properties.clear();
        g_tags.clear();
        m_tree.addDevice("pci0/ata1/0:0:0:0", "scsi");
        m_tree.addDisk("pci0/ata1/0:0:0:0", "sda", "8:0");
        m_tree.addPartition("pci0/ata1/0:0:0:0/block/sda", "sda2", "8:2");

        m_tree.addDevice("pci0/usb1/1-1", "usb");
        m_tree.addDevice("pci0/usb1/1-1/host6/6:0:0:0", "scsi");
        m_tree.addDisk("pci0/usb1/1-1/host6/6:0:0:0", "sdb", "8:16");
        m_tree.addPartition("pci0/usb1/1-1/host6/6:0:0:0/block/sdb", "sdb1", "8:17");
        m_tree.setAttribute("pci0/usb1/1-1/host6/6:0:0:0", "vendor", "VANTA   ");
        m_tree.setAttribute("pci0/usb1/1-1/host6/6:0:0:0", "model", "Card Reader     ");

        m_tree.addDevice("pci0/ata2/1:0:0:0", "scsi");
        m_tree.addDisk("pci0/ata2/1:0:0:0", "sr0", "11:0");
        m_tree.setAttribute("pci0/ata2/1:0:0:0/block/sr0", "removable", "1");

        m_tree.addDevice("soc/mmc0/mmc0:0001", "mmc");
        m_tree.setAttribute("soc/mmc0/mmc0:0001", "type", "MMC");
        m_tree.addDisk("soc/mmc0/mmc0:0001", "mmcblk0", "179:0");
        m_tree.addDevice("soc/mmc1/mmc1:aaaa", "mmc");
        m_tree.setAttribute("soc/mmc1/mmc1:aaaa", "type", "SD");
        m_tree.addDisk("soc/mmc1/mmc1:aaaa", "mmcblk1", "179:8");
        m_tree.addDevice("pci0/memstick0", "memstick");
        m_tree.addDisk("pci0/memstick0", "mspblk0", "250:0");

        m_tree.addDevice("pci0/port", "pci");
        m_tree.setAttribute("pci0/port", "removable", "removable");
        m_tree.addDevice("pci0/port/nvme0", "nvme");
        m_tree.addDisk("pci0/port/nvme0", "nvme0n1", "259:0");
        m_tree.addDevice("pci0/fixed", "pci");
        m_tree.setAttribute("pci0/fixed", "removable", "fixed");
        m_tree.addDevice("pci0/fixed/nvme1", "nvme");
        m_tree.addDisk("pci0/fixed/nvme1", "nvme1n1", "259:1");

        m_tree.addMapped("dm-0", "254:0", "pci0/usb1/1-1/host6/6:0:0:0/block/sdb/sdb1");
        m_tree.addMapped("dm-1", "254:1", "pci0/ata1/0:0:0:0/block/sda/sda2");
        m_tree.addMapped("dm-2", "254:2", "virtual/block/dm-0");
    }

    std::optional<BlockDevice> find(const Mount& mount) const
    {
        return BlockDevice::find(mount, m_sources);
    }

    const DeviceTree m_tree;
    const DeviceSources m_sources = {m_tree.path(), propertyOf, tagOf};
};

TEST_F(BlockDeviceTest, AreRemovableOnTheBusesOfWhatIsPluggedIn)
{
    const struct {
        unsigned majorNumber, minorNumber;
        const char* name;
        bool removable;
    } rows[] = {
        {8, 0, "sda", false},       {8, 2, "sda2", false},     {8, 17, "sdb1", true}, // USB
        {11, 0, "sr0", true},                                  // marked by its driver
        {179, 0, "mmcblk0", false},                            // soldered
        {179, 8, "mmcblk1", true},                             // a card
        {250, 0, "mspblk0", true},  {259, 0, "nvme0n1", true}, // behind a port for external devices
        {259, 1, "nvme1n1", false}, {254, 0, "dm-0", true},    // encrypted, on USB
        {254, 1, "dm-1", false},    {254, 2, "dm-2", true},    // a volume group on that
    };
    for (const auto& row : rows) {
        const auto device = find(mountOf(row.majorNumber, row.minorNumber));
        ASSERT_TRUE(device) << row.name;
        EXPECT_EQ(device->name(), row.name);
        EXPECT_EQ(device->isRemovable(), row.removable) << row.name;
        EXPECT_FALSE(device->isEjectable()) << row.name;
    }
}

TEST_F(BlockDeviceTest, IsFoundThroughTheSourceWhereTheMountHasAnAnonymousNumber)
{
    const auto device = find(mountOf(0, 40, "/dev/sdb1"));
    // The machine of the test may have a disk of that name.
    if (struct stat status{}; stat("/dev/sdb1", &status) == 0) {
        GTEST_SKIP() << "there is a real /dev/sdb1";
    }
    ASSERT_TRUE(device);
    EXPECT_EQ(device->name(), "sdb1");
}

TEST_F(BlockDeviceTest, VolumesInMemoryAndOnTheNetworkHaveNone)
{
    EXPECT_FALSE(find(mountOf(0, 40, "tmpfs")));
    EXPECT_FALSE(find(mountOf(0, 41, "//host/share")));
    EXPECT_FALSE(find(mountOf(0, 42, "host:/path")));
    EXPECT_FALSE(find(mountOf(8, 99)));
    EXPECT_FALSE(find(Mount()));
}

TEST_F(BlockDeviceTest, VendorAndModelAreThoseOfTheDrive)
{
    for (const unsigned minorNumber : {0U, 2U}) { // also through mapped devices
        const auto device = find(mountOf(254, minorNumber));
        ASSERT_TRUE(device);
        EXPECT_EQ(device->vendor(), "VANTA   ");
        EXPECT_EQ(device->model(), "Card Reader     ");
    }
    EXPECT_EQ(find(mountOf(8, 0))->vendor(), "");
    g_properties = {{"ID_VENDOR", "From_udev"}, {"ID_MODEL", "That_too"}};
    EXPECT_EQ(find(mountOf(8, 17))->vendor(), "From_udev");
    EXPECT_EQ(find(mountOf(8, 17))->model(), "That_too");
}

TEST_F(BlockDeviceTest, IsEjectableWhereTheRulesSaySo)
{
    g_properties["ID_DRIVE_EJECTABLE"] = "1";
    EXPECT_TRUE(find(mountOf(8, 2))->isEjectable());
    g_properties["ID_DRIVE_EJECTABLE"] = "0";
    EXPECT_FALSE(find(mountOf(8, 2))->isEjectable());
}

TEST_F(BlockDeviceTest, AsksUdevBeforeBlkid)
{
    g_tags = {{"TYPE", "ext4"}, {"LABEL", "of blkid"}};
    const auto device = find(mountOf(8, 17));
    EXPECT_EQ(device->fileSystemType(), "ext4");
    EXPECT_EQ(device->label(), "of blkid");
    g_properties = {{"ID_FS_TYPE", "exfat"}, {"ID_FS_LABEL_ENC", "My\\x20card\\x2f1"}};
    EXPECT_EQ(device->fileSystemType(), "exfat");
    EXPECT_EQ(device->label(), "My card/1");
}

TEST_F(BlockDeviceTest, TakesALabelWithBrokenEscapesAsItIs)
{
    g_properties["ID_FS_LABEL_ENC"] = "a\\x2";
    EXPECT_EQ(find(mountOf(8, 17))->label(), "a\\x2");
}

TEST(BlockDevice, TellsTypeAndLabelOfARealDisk)
{
    const TemporaryFolder folder;
    const LoopDevice disk(folder / "image", "mkfs.ext4 -q -L 'A label'");
    if (!disk) {
        GTEST_SKIP() << disk.reason();
    }
    struct stat status {};
    ASSERT_EQ(stat(disk.node().c_str(), &status), 0);
    Mount mount;
    mount.device = status.st_rdev;
    mount.source = disk.node();
    const auto device = BlockDevice::find(mount);
    ASSERT_TRUE(device);
    EXPECT_EQ("/dev/" + device->name(), disk.node());
    EXPECT_EQ(device->fileSystemType(), "ext4");
    EXPECT_EQ(device->label(), "A label");
    EXPECT_FALSE(device->isRemovable());
}

} // namespace
