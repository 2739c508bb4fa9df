#include "XeFileSystem.h"

#include "FuseVolume.linux.h"
#include "LoopVolume.linux.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "SmallVolume.linux.h"
#include "TemporaryFolder.h"
#include "WidePath.h"

#include <gmock/gmock.h>

#include <sys/mount.h>

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr auto kFailure = static_cast<XeResult>(0x80000008);

int formatOf(const fs::path& path)
{
    auto format = static_cast<EFileSystem>(77);
    EXPECT_EQ(XeFileSystem::getFileSystemFormat(wide(path).c_str(), format), 0) << path;
    return format;
}

int mediaTypeOf(const fs::path& path)
{
    auto type = static_cast<EVolumeMediaType>(77);
    EXPECT_EQ(XeFileSystem::getVolumeMediaType(wide(path).c_str(), type), 0) << path;
    return type;
}

_XeString<wchar_t> displayNameOf(const _XeString<wchar_t>& path)
{
    _XeString<wchar_t> name;
    EXPECT_EQ(XeFileSystem::getDisplayName(path, name), 0);
    return name;
}

std::vector<_XeString<wchar_t>> volumesOf(unsigned filter)
{
    std::vector<_XeString<wchar_t>> volumes;
    XeFileSystem::GetVolumes(volumes, filter);
    return volumes;
}

TEST(VolumeName, OnLinuxIsAlsoCutWhereTheDesktopMounts)
{
    const struct {
        const wchar_t* path;
        const wchar_t* name;
    } rows[] = {
        {L"/media/ann/CARD 1/a/b", L"/media/ann/CARD 1/"},
        {L"/media/ann/CARD 1", L"/media/ann/CARD 1"},
        {L"/media/ann", L"/"},
        {L"/media/a", L"/"},
        {L"/run/media/ann/CARD/a", L"/run/media/ann/CARD/"},
        {L"/run/media/ann", L"/"},
        {L"/run/user/ann/a", L"/"},
        {L"/mnt/disk/a", L"/mnt/disk/"},
        {L"/mnt/disk", L"/mnt/disk"},
        {L"/mnt", L"/"},
        {L"/home/ann/a", L"/"},
    };
    for (const auto& row : rows) {
        _XeString<wchar_t> name;
        EXPECT_EQ(XeFileSystem::getVolumeName(row.path, name), 0);
        EXPECT_EQ(name, row.name) << row.path;
    }
}

/// The folder "source" shown as a volume "mounted" of any type of FUSE.
class FuseVolumeTest : public testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(m_folder / "source/folder");
        m_folder.write("source/file", "12345");
        if (!FuseVolume(m_folder / "source", m_point, "subtype=mirror")) {
            GTEST_SKIP() << FuseVolume::reason();
        }
    }

    const TemporaryFolder m_folder;
    const fs::path m_point = fs::canonical(m_folder.path()) / "mounted";
};

TEST_F(FuseVolumeTest, HasTheFormatOfItsType)
{
    const struct {
        const char* type;
        int format;
    } rows[] = {
        {"vfat", 2},       {"exfat", 3},   {"udf", 6},  {"hfsplus", 7},    {"smbnetfs", 9},
        {"afpfs", 9},      {"nfs", 10},    {"ufs", 12}, {"vantadisc", 14}, {"vantacard", 15},
        {"vantapack", 19}, {"mirror", 77}, // without a number: left alone
    };
    for (const auto& row : rows) {
        const FuseVolume volume(m_folder / "source", m_point, std::string("subtype=") + row.type);
        ASSERT_TRUE(volume);
        for (const char* item : {"", "folder", "file"}) {
            EXPECT_EQ(formatOf(m_point / item), row.format) << row.type << ' ' << item;
        }
    }
}

// The structure lies at the top of the share, wherever the path is.
TEST_F(FuseVolumeTest, OfSmbWithAnOpticalDiscOnItIsADiscShare)
{
    fs::create_directories(m_folder / "source/VIDEO_TS");
    m_folder.write("source/VIDEO_TS/VIDEO_TS.IFO", "");
    {
        const FuseVolume share(m_folder / "source", m_point, "subtype=smbnetfs");
        EXPECT_EQ(formatOf(m_point), 20);
        EXPECT_EQ(formatOf(m_point / "folder"), 20);
    }
    const FuseVolume other(m_folder / "source", m_point, "subtype=afpfs");
    EXPECT_EQ(formatOf(m_point), 9);
}

TEST_F(FuseVolumeTest, OfTheNetworkHasMediaTypeTwo)
{
    for (const char* options : {"subtype=sshfs,fsname=host:/path", "subtype=smbnetfs"}) {
        const FuseVolume volume(m_folder / "source", m_point, options);
        EXPECT_EQ(mediaTypeOf(m_point / "file"), 2) << options;
        EXPECT_THAT(volumesOf(4), Contains(wide(m_point)));
        EXPECT_THAT(volumesOf(3), Not(Contains(wide(m_point))));
    }
}

TEST_F(FuseVolumeTest, WithoutADeviceHasMediaTypeUnknown)
{
    const FuseVolume volume(m_folder / "source", m_point, "subtype=mirror");
    EXPECT_EQ(mediaTypeOf(m_point), 255);
    EXPECT_THAT(volumesOf(1), Contains(wide(m_point)));
}

TEST_F(FuseVolumeTest, HasTheShareItWasMountedFrom)
{
    const FuseVolume volume(m_folder / "source", m_point,
                            "subtype=sshfs,fsname=ann@host:/my music");
    _XeString<wchar_t> url;
    EXPECT_EQ(XeFileSystem::mountableShareVolume(wide(m_point / "file").c_str(), url), 0);
    EXPECT_EQ(url, L"sftp://ann@host/my%20music");
    EXPECT_EQ(XeFileSystem::mountableShareVolume(wide(m_point / "absent/a").c_str(), url), 0);
    EXPECT_EQ(url, L"sftp://ann@host/my%20music");
    EXPECT_EQ(XeFileSystem::mountableShareVolume(wide(m_folder.path()).c_str(), url), kFailure);
}

TEST_F(FuseVolumeTest, OnATapeIsNotSeekable)
{
    {
        const FuseVolume tape(m_folder / "source", m_point, "subtype=ltfs");
        EXPECT_FALSE(XeFileSystem::isSeekableVolume(wide(m_point / "file")));
    }
    const FuseVolume disk(m_folder / "source", m_point, "subtype=mirror");
    EXPECT_TRUE(XeFileSystem::isSeekableVolume(wide(m_point / "file")));
}

// What statfs(2) does not answer is a remote's, if there is one.
TEST_F(FuseVolumeTest, ThatDoesNotAnswerHasTheFormatElevenOfARemote)
{
    FuseVolume volume(m_folder / "source", m_point, "subtype=nfs");
    volume.killServer();
    auto format = static_cast<EFileSystem>(77);
    EXPECT_EQ(XeFileSystem::getFileSystemFormat(wide(m_point).c_str(), format), kFailure);
    EXPECT_EQ(format, 77);
    const RemoteMount remote(wide(m_point), std::make_shared<MemoryFileSystem>());
    EXPECT_EQ(formatOf(m_point), 11);
    EXPECT_EQ(formatOf(m_point / "file"), 11);
}

TEST_F(FuseVolumeTest, ThatDoesNotAnswerHasAMountPointButNoSpace)
{
    FuseVolume volume(m_folder / "source", m_point, "subtype=mirror");
    volume.killServer();
    _XeString<wchar_t> mountPoint;
    EXPECT_EQ(XeFileSystem::getVolumeMountPoint(wide(m_point / "a/b"), mountPoint), 0);
    EXPECT_EQ(mountPoint, wide(m_point));
    unsigned long long free = 77;
    unsigned long long total = 78;
    EXPECT_EQ(XeFileSystem::getVolumeSpace(wide(m_point).c_str(), free, total), kFailure);
    EXPECT_EQ(free + total, 155U);
    bool writable = false;
    EXPECT_EQ(XeFileSystem::isVolumeWritable(wide(m_point), writable), kFailure);
    EXPECT_THAT(volumesOf(7), Contains(wide(m_point)));
}

TEST_F(FuseVolumeTest, IsFoundUnderAFolderAndItsLinks)
{
    const FuseVolume volume(m_folder / "source", m_point / "deeper", "subtype=mirror");
    fs::create_directory_symlink(m_folder.path(), m_folder / "link");
    std::vector<_XeString<wchar_t>> volumes = {L"before"};
    for (const auto& path : {m_folder.path(), m_folder / "link", m_folder / "mounted/"}) {
        EXPECT_EQ(XeFileSystem::getSubVolumes(wide(path), volumes), 0);
        EXPECT_THAT(volumes, ElementsAre(wide(m_point / "deeper"))) << path;
    }
    for (const auto& path : {m_point / "deeper", m_folder / "mount", m_point / "deeper/folder"}) {
        EXPECT_EQ(XeFileSystem::getSubVolumes(wide(path), volumes), 0);
        EXPECT_THAT(volumes, ElementsAre()) << path;
    }
}

TEST_F(FuseVolumeTest, IsTheSameForAnOrdinaryUser)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "the other tests ran as an ordinary user";
    }
    if (!fs::exists("/dev/fuse") ||
        (fs::status("/dev/fuse").permissions() & fs::perms::others_write) == fs::perms::none) {
        GTEST_SKIP() << "/dev/fuse is not for every user";
    }
    asOrdinaryUser([] {
        const TemporaryFolder own;
        const fs::path point = fs::canonical(own.path()) / "mounted";
        const FuseVolume volume(own.path(), point, "subtype=sshfs,fsname=host:/p");
        ASSERT_TRUE(volume);
        EXPECT_EQ(mediaTypeOf(point), 2);
        EXPECT_EQ(formatOf(point), 77);
        EXPECT_THAT(volumesOf(4), Contains(wide(point)));
    });
}

TEST_F(FuseVolumeTest, LeavesNoDescriptorOpen)
{
    const FuseVolume volume(m_folder / "source", m_point, "subtype=smbnetfs");
    const auto ask = [&] {
        formatOf(m_point);
        mediaTypeOf(m_point);
        mediaTypeOf("/");
        displayNameOf(wide(m_point));
        displayNameOf(L"/");
        volumesOf(7);
        XeFileSystem::getFreeSpace(wide(m_point).c_str());
    };
    ask();
    const std::size_t before = openDescriptors();
    ask();
    EXPECT_EQ(openDescriptors(), before);
}

TEST(FuseOnADisk, HasTheFormatOfTheDisk)
{
    const TemporaryFolder folder;
    const LoopDevice disk(folder / "image", "mkfs.exfat -L CARD");
    if (!disk) {
        GTEST_SKIP() << disk.reason();
    }
    const FuseVolume volume(folder.path(), folder / "card", "blkdev,fsname=" + disk.node());
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    EXPECT_EQ(formatOf(folder / "card"), 3);
    EXPECT_EQ(mediaTypeOf(folder / "card"), 1);
    EXPECT_EQ(displayNameOf(wide(folder / "card")), L"CARD");
}

TEST(VolumeInMemory, HasTheMediaTypeUnknownAndNoFormat)
{
    const TemporaryFolder folder;
    const SmallVolume volume(folder / "small", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    EXPECT_EQ(mediaTypeOf(folder / "small"), 255);
    EXPECT_EQ(formatOf(folder / "small"), 77);
    EXPECT_THAT(volumesOf(7), Not(Contains(wide(fs::canonical(folder / "small")))));
}

TEST(VolumeInMemory, TellsItsSpaceAndWhetherItIsWritable)
{
    const TemporaryFolder folder;
    const SmallVolume volume(folder / "small", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    const _XeString<wchar_t> path = wide(folder / "small");
    unsigned long long free = 0;
    unsigned long long total = 0;
    EXPECT_EQ(XeFileSystem::getVolumeSpace(path.c_str(), free, total), 0);
    EXPECT_EQ(total, 65536U);
    EXPECT_EQ(free, 65536U);
    std::ofstream(folder / "small/file") << std::string(8192, 'x');
    EXPECT_EQ(XeFileSystem::getFreeSpace(path.c_str()), 65536U - 8192U);
    EXPECT_EQ(XeFileSystem::getFreeSpace((path + L"/not/there").c_str()), 65536U - 8192U);

    bool writable = false;
    EXPECT_EQ(XeFileSystem::isVolumeWritable(path, writable), 0);
    EXPECT_TRUE(writable);
    ASSERT_TRUE(volume.makeReadOnly());
    EXPECT_EQ(XeFileSystem::isVolumeWritable(path + L"/not/there", writable), 0);
    EXPECT_FALSE(writable);
}

TEST(BoundFolder, ThatIsReadOnlyIsNotWritableThroughItsOwnPathAlone)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "source");
    const MountedFolder bound(folder / "source", folder / "bound", nullptr, MS_BIND);
    if (!bound) {
        GTEST_SKIP() << "no rights to mount";
    }
    ASSERT_EQ(mount(nullptr, folder.path("bound").c_str(), nullptr,
                    MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
              0);
    bool writable = true;
    EXPECT_EQ(XeFileSystem::isVolumeWritable(wide(folder / "bound"), writable), 0);
    EXPECT_FALSE(writable);
    EXPECT_EQ(XeFileSystem::isVolumeWritable(wide(folder / "source"), writable), 0);
    EXPECT_TRUE(writable);
    EXPECT_EQ(mediaTypeOf(folder / "bound"), mediaTypeOf(folder / "source"));
    EXPECT_EQ(displayNameOf(wide(folder / "bound")), L"bound");
    EXPECT_THAT(volumesOf(7), Contains(wide(fs::canonical(folder / "bound"))));
}

// The free blocks that are kept for root are not the caller's.
TEST(VolumeOnADisk, TellsTheSpaceThatTheCallerMayUse)
{
    const TemporaryFolder folder;
    const LoopDevice disk(folder / "image", "mkfs.ext4 -q -m 25 -L 'My disk'");
    if (!disk) {
        GTEST_SKIP() << disk.reason();
    }
    const MountedFolder volume(disk.node(), folder / "disk", "ext4");
    ASSERT_TRUE(volume);
    const fs::space_info space = fs::space(folder / "disk");
    ASSERT_GT(space.free, space.available + 1'000'000);
    unsigned long long free = 0;
    unsigned long long total = 0;
    EXPECT_EQ(XeFileSystem::getVolumeSpace(wide(folder / "disk").c_str(), free, total), 0);
    EXPECT_EQ(free, space.available);
    EXPECT_EQ(total, space.capacity);
}

TEST(VolumeOnADisk, IsInternalAndShownUnderItsLabel)
{
    const TemporaryFolder folder;
    const LoopDevice disk(folder / "image", "mkfs.ext4 -q -L 'My disk'");
    if (!disk) {
        GTEST_SKIP() << disk.reason();
    }
    const fs::path point = fs::canonical(folder.path()) / "disk";
    const MountedFolder volume(disk.node(), point, "ext4");
    ASSERT_TRUE(volume);
    EXPECT_EQ(mediaTypeOf(point), 1);
    EXPECT_EQ(formatOf(point), 77);
    EXPECT_THAT(volumesOf(1), Contains(wide(point)));
    EXPECT_THAT(volumesOf(6), Not(Contains(wide(point))));
    EXPECT_EQ(displayNameOf(wide(point)), L"My disk");
    EXPECT_EQ(displayNameOf(wide(point) + L"/"), L"My disk");
    EXPECT_EQ(displayNameOf(wide(point / "lost+found")), L"lost+found");
    fs::create_directory_symlink(point, folder / "link");
    EXPECT_EQ(displayNameOf(wide(folder / "link")), L"link");
    {
        const SmallVolume over(point, "size=64k");
        EXPECT_THAT(volumesOf(7), Not(Contains(wide(point)))); // hidden now
        EXPECT_EQ(displayNameOf(wide(point)), L"disk");
    }
    _XeString<wchar_t> mountPoint;
    EXPECT_EQ(XeFileSystem::getVolumeMountPoint(wide(point / "lost+found/a"), mountPoint), 0);
    EXPECT_EQ(mountPoint, wide(point));
}

TEST(Overlay, HasTheMediaTypeUnknown)
{
    const TemporaryFolder folder;
    for (const char* name : {"lower", "upper", "work"}) {
        fs::create_directory(folder / name);
    }
    const std::string options = "lowerdir=" + folder.path("lower") +
                                ",upperdir=" + folder.path("upper") +
                                ",workdir=" + folder.path("work");
    const MountedFolder overlay("overlay", folder / "merged", "overlay", 0, options.c_str());
    if (!overlay) {
        GTEST_SKIP() << "no rights, or no overlay here";
    }
    EXPECT_EQ(mediaTypeOf(folder / "merged"), 255);
    EXPECT_EQ(formatOf(folder / "merged"), 77);
}

TEST(DisplayName, OfAnItemIsItsFileName)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder.d");
    folder.write("caf\xE9.wav", ""); // no UTF-8
    fs::create_symlink("nowhere", folder / "dangling");
    EXPECT_EQ(displayNameOf(wide(folder / "folder.d")), L"folder.d");
    EXPECT_EQ(displayNameOf(wide(folder / "folder.d") + L"//"), L"folder.d");
    EXPECT_EQ(displayNameOf(wide(folder / "caf\xE9.wav")), L"caf\xDCE9.wav");
    EXPECT_EQ(displayNameOf(wide(folder / "dangling")), L"dangling");
    _XeString<wchar_t> name = L"before";
    EXPECT_EQ(XeFileSystem::getDisplayName(wide(folder / "absent"), name), kFailure);
    EXPECT_EQ(name, L"before");
}

} // namespace
