#include "fs/MountTable.linux.h"

#include "FuseVolume.linux.h"
#include "OpenDescriptors.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/sysmacros.h>

namespace {

namespace fs = std::filesystem;

MountTable tableOf(const TemporaryFolder& folder, const char* text)
{
    const auto table = MountTable::read(folder.write("mountinfo", text));
    EXPECT_TRUE(table);
    return table.value_or(MountTable());
}

TEST(MountTable, ReadsAllFieldsWithTheirEscapes)
{
    const TemporaryFolder folder;
    const auto table = tableOf(
        folder, "36 35 98:7 /sub\\040folder /mnt/a\\040b\\134c\\011d ro,noatime master:1 - ext3 "
                "/dev/my\\040disk rw,errors=continue\n");
    ASSERT_EQ(table.mounts().size(), 1U);
    const Mount& mount = table.mounts().front();
    EXPECT_EQ(mount.id, 36);
    EXPECT_EQ(mount.parent, 35);
    EXPECT_EQ(mount.device, makedev(98, 7));
    EXPECT_EQ(mount.root, "/sub folder");
    EXPECT_EQ(mount.point, "/mnt/a b\\c\td");
    EXPECT_EQ(mount.type, "ext3");
    EXPECT_EQ(mount.source, "/dev/my disk");
    EXPECT_EQ(mount.options, "ro,noatime");
    EXPECT_EQ(mount.superOptions, "rw,errors=continue");
}

TEST(MountTable, KeepsTheOrderAndNamesThatAreNotUtf8)
{
    const TemporaryFolder folder;
    const auto table = tableOf(folder, "1 0 8:1 / / rw - ext4 /dev/a rw\n"
                                       "3 1 8:2 / /mnt/caf\xE9 rw - ext4 /dev/b rw\n"
                                       "2 1 8:3 / /opt rw - ext4 /dev/c rw\n");
    ASSERT_EQ(table.mounts().size(), 3U);
    EXPECT_EQ(table.mounts()[1].point, "/mnt/caf\xE9");
    EXPECT_EQ(table.mounts()[2].id, 2);
    EXPECT_EQ(table.find(4), nullptr);
}

TEST(MountTable, WithoutAFileThereIsNone) { EXPECT_FALSE(MountTable::read("/no such file")); }

TEST(MountTable, TellsWhatIsHidden)
{
    const TemporaryFolder folder;
    const auto table = tableOf(folder, "1 0 8:1 / / rw - ext4 /dev/a rw\n"
                                       "2 1 8:2 / /mnt rw - ext4 /dev/b rw\n"
                                       "3 2 8:3 / /mnt rw - ext4 /dev/c rw\n"      // over 2
                                       "4 2 8:4 / /mnt/deep rw - ext4 /dev/d rw\n" // below 2
                                       "5 3 8:5 / /mnt/deep rw - ext4 /dev/e rw\n" // below 3
                                       "6 1 8:6 / /data/x rw - ext4 /dev/f rw\n"   // behind 8
                                       "7 6 8:7 / /data/x/y rw - ext4 /dev/g rw\n" // below 6
                                       "8 1 8:8 / /data rw - ext4 /dev/h rw\n"
                                       "9 1 8:9 / /data2 rw - ext4 /dev/i rw\n");
    std::vector<int> visible;
    for (const Mount& mount : table.mounts()) {
        if (table.isVisible(mount)) {
            visible.push_back(mount.id);
        }
    }
    EXPECT_EQ(visible, (std::vector{1, 3, 5, 8, 9}));
}

TEST(MountTable, FindsTheMountOfAPath)
{
    const auto root = findPlace("/");
    const auto device = findPlace("/dev/null");
    ASSERT_TRUE(root && device);
    EXPECT_EQ(findMount(*root).value_or(Mount()).point, "/");
    const Mount mount = findMount(*device).value_or(Mount());
    EXPECT_EQ(mount.point, "/dev");
    EXPECT_FALSE(mount.type.empty());
    EXPECT_FALSE(findMount(Place{"/", -1}));
}

TEST(MountTable, LeavesNoDescriptorOpen)
{
    const std::size_t before = openDescriptors();
    findMount(findPlace("/dev/null").value_or(Place()));
    MountTable::read("/no such file");
    EXPECT_EQ(openDescriptors(), before);
}

TEST(PlaceOfAPath, IsItselfOrThatOfItsNearestParent)
{
    const TemporaryFolder folder;
    const std::string path = fs::canonical(folder.path());
    fs::create_directory_symlink(folder.path(), folder / "link");
    EXPECT_FALSE(findPlace(folder.path("absent")));
    EXPECT_EQ(findPlace(folder.path("link")).value_or(Place()).path, path);
    EXPECT_EQ(findNearestPlace(folder.path("absent/deeper")).value_or(Place()).path, path);
    EXPECT_EQ(findNearestPlace(folder.path("link/absent/")).value_or(Place()).path, path);
    EXPECT_FALSE(findNearestPlace(""));
    EXPECT_FALSE(findNearestPlace("absent")); // has no parent to ask
    EXPECT_FALSE(findNearestPlace(folder.write("file", "") + "/below"));
}

TEST(MountPoint, IsThePathItselfNotALinkToIt)
{
    const TemporaryFolder folder;
    fs::create_directory_symlink("/dev", folder / "link");
    EXPECT_TRUE(isMountPoint("/"));
    EXPECT_TRUE(isMountPoint("/dev"));
    EXPECT_TRUE(isMountPoint("/dev//"));
    EXPECT_FALSE(isMountPoint("/dev/null"));
    EXPECT_FALSE(isMountPoint(folder.path("link")));
    EXPECT_FALSE(isMountPoint(folder.path("link") + '/'));
    EXPECT_FALSE(isMountPoint("/no such folder"));
    EXPECT_FALSE(isMountPoint(""));
}

TEST(MountPoint, OfAVolumeWhoseServerIsGoneIsStillFound)
{
    const TemporaryFolder folder;
    const std::string point = fs::canonical(folder.path()) / "mounted";
    FuseVolume volume(folder.path(), point, "subtype=mirror");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    volume.killServer();
    for (const std::string& path : {point, point + "/file", point + "/a/b"}) {
        const Place place = findNearestPlace(path).value_or(Place());
        EXPECT_EQ(place.path, point);
        EXPECT_EQ(mountPointOf(place), point);
        EXPECT_EQ(findMount(place).value_or(Mount()).type, "fuse.mirror");
    }
}

} // namespace
