#include "XeFileSystem.h"

#include "InChild.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "SmallVolume.linux.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "fs/StoredName.linux.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

/// The file system's own flags of an item, read and set without the library.
class Flags {
public:
    explicit Flags(const std::string& path) : m_descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
    }
    ~Flags() { close(m_descriptor); }
    Flags(const Flags&) = delete;
    Flags& operator=(const Flags&) = delete;

    std::optional<unsigned> get() const
    {
        unsigned flags = 0;
        const bool got = ioctl(m_descriptor, FS_IOC_GETFLAGS, &flags) == 0;
        return got ? std::optional(flags) : std::nullopt;
    }
    bool set(unsigned flags) const { return ioctl(m_descriptor, FS_IOC_SETFLAGS, &flags) == 0; }

private:
    int m_descriptor;
};

/// A file and a folder that are not locked at the end, or could not be removed.
class Locks : public testing::Test {
protected:
    Locks()
    {
        m_folder.write("file", "x");
        fs::create_directory(m_folder / "folder");
    }
    ~Locks() override
    {
        for (const char* name : {"file", "folder"}) {
            const Flags flags(m_folder.path(name));
            flags.set(flags.get().value_or(0) & ~unsigned{FS_IMMUTABLE_FL});
        }
    }

    /// Why the flag cannot be set here, or nothing.
    std::string obstacle() const
    {
        const Flags flags(m_folder.path("file"));
        const auto before = flags.get();
        if (!before || !flags.set(*before | FS_IMMUTABLE_FL)) {
            return std::string("the immutable flag: ") + std::strerror(errno);
        }
        flags.set(*before);
        return "";
    }

    const TemporaryFolder m_folder;
};

TEST_F(Locks, ALockIsTheImmutableFlagAndNoOther)
{
    if (const std::string reason = obstacle(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    for (const char* name : {"file", "folder"}) {
        SCOPED_TRACE(name);
        const Text path = wide(m_folder / name);
        const Flags flags(m_folder.path(name));
        ASSERT_TRUE(flags.set(*flags.get() | FS_NODUMP_FL));
        const unsigned before = *flags.get();

        EXPECT_FALSE(XeFileSystem::isFileLocked(path));
        EXPECT_TRUE(XeFileSystem::setLockFile(path, true));
        EXPECT_EQ(*flags.get(), before | 0x10);
        EXPECT_TRUE(XeFileSystem::isFileLocked(path));
        EXPECT_TRUE(XeFileSystem::isFileLocked(path.c_str()));
        EXPECT_TRUE(XeFileSystem::isFolderLocked(path));
        EXPECT_TRUE(XeFileSystem::isFolderLocked(path.c_str()));
        tFileAtrribute attribute;
        EXPECT_EQ(XeFileSystem::getFileAttribute(path.c_str(), attribute), 0);
        EXPECT_TRUE(attribute.locked);

        EXPECT_TRUE(XeFileSystem::setLockFile(path, true));
        EXPECT_TRUE(XeFileSystem::setLockFile(path, false));
        EXPECT_EQ(*flags.get(), before);
        EXPECT_FALSE(XeFileSystem::isFileLocked(path));
        EXPECT_TRUE(XeFileSystem::setLockFile(path, false));
    }
}

TEST_F(Locks, ALockedFileTakesNoChange)
{
    if (const std::string reason = obstacle(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    const Text path = wide(m_folder / "file");
    ASSERT_TRUE(XeFileSystem::setLockFile(path, true));
    EXPECT_FALSE(XeFileSystem::setFileReadonly(path.c_str(), true));
    EXPECT_EQ(XeFileSystem::touchLastModified(path.c_str()), static_cast<XeResult>(0x80000008));
    // In a child, since GLib keeps the environment of its first use.
    inChild([&] {
        setenv("HOME", m_folder.path().c_str(), 1);
        setenv("XDG_DATA_HOME", m_folder.path("data").c_str(), 1);
        EXPECT_EQ(XeFileSystem::moveFileToTrash(path.c_str()), static_cast<XeResult>(0x80000008));
    });
    EXPECT_FALSE(XeFileSystem::isFileReadonly(path)); // which is another thing
}

TEST_F(Locks, ThroughALinkTheItemBehindItIsMeant)
{
    if (const std::string reason = obstacle(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    fs::create_symlink("file", m_folder / "link");
    EXPECT_TRUE(XeFileSystem::setLockFile(wide(m_folder / "link"), true));
    EXPECT_TRUE(XeFileSystem::isFileLocked(wide(m_folder / "link")));
    EXPECT_TRUE(XeFileSystem::isFileLocked(wide(m_folder / "file")));
}

TEST_F(Locks, LockingTakesTheRightsOfRoot)
{
    fs::permissions(m_folder.path(), fs::perms(0777));
    asOrdinaryUser([&] {
        const std::string own = m_folder.write("own", "x");
        EXPECT_FALSE(XeFileSystem::setLockFile(wide(own), true));
        EXPECT_FALSE(XeFileSystem::isFileLocked(wide(own)));
    });
}

TEST_F(Locks, ALockOfRootsIsSeenByEverybody)
{
    if (const std::string reason = obstacle(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    fs::permissions(m_folder.path(), fs::perms(0755));
    ASSERT_TRUE(XeFileSystem::setLockFile(wide(m_folder / "file"), true));
    asOrdinaryUser([&] {
        EXPECT_TRUE(XeFileSystem::isFileLocked(wide(m_folder / "file")));
        EXPECT_FALSE(XeFileSystem::setLockFile(wide(m_folder / "file"), false));
    });
}

TEST_F(Locks, NothingIsLockedWhereTheFileSystemHasNoFlags)
{
    const fs::path volume = m_folder / "volume";
    fs::create_directory(volume);
    if (mount("none", volume.c_str(), "ramfs", 0, nullptr) != 0) {
        GTEST_SKIP() << "ramfs: " << std::strerror(errno);
    }
    const std::string file = m_folder.write("volume/file", "x");
    EXPECT_FALSE(XeFileSystem::setLockFile(wide(file), true));
    EXPECT_FALSE(XeFileSystem::isFileLocked(wide(file)));
    EXPECT_EQ(umount2(volume.c_str(), MNT_DETACH), 0);
}

TEST_F(Locks, DevicesAreNotOpened)
{
    EXPECT_FALSE(XeFileSystem::setLockFile(L"/dev/tty", true));
    EXPECT_FALSE(XeFileSystem::setLockFile(L"/dev/null", true));
    EXPECT_FALSE(XeFileSystem::isFileLocked(L"/dev/null"));
}

TEST_F(Locks, LeaveNoDescriptorOpen)
{
    const std::size_t before = openDescriptors();
    XeFileSystem::setLockFile(wide(m_folder / "file"), true);
    XeFileSystem::setLockFile(wide(m_folder / "file"), false);
    XeFileSystem::setLockFile(wide(m_folder / "absent"), true);
    XeFileSystem::isFileLocked(wide(m_folder / "file"));
    EXPECT_EQ(openDescriptors(), before);
}

struct statx statusOf(const char* path)
{
    struct statx status {};
    EXPECT_EQ(statx(AT_FDCWD, path, 0, STATX_BTIME | STATX_MTIME, &status), 0);
    return status;
}

TEST(CreationTime, DoesNotChangeWithTheModification)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("file", "x");
    const struct statx status = statusOf(file.c_str());
    if ((status.stx_mask & STATX_BTIME) == 0) {
        GTEST_SKIP() << "the file system does not keep it";
    }
    const timespec longAgo[] = {{1000, 0}, {2000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), longAgo, 0), 0);
    EXPECT_EQ(XeFileSystem::getCreationTime(wide(file).c_str()), status.stx_btime.tv_sec);
    EXPECT_EQ(XeFileSystem::getModifiedTime(wide(file).c_str()), 2000);
    tFileAtrribute attribute;
    ASSERT_EQ(XeFileSystem::getFileAttribute(wide(file).c_str(), attribute), 0);
    EXPECT_EQ(attribute.created.seconds, status.stx_btime.tv_sec);
    EXPECT_EQ(attribute.created.nanoseconds, static_cast<std::int32_t>(status.stx_btime.tv_nsec));
}

TEST(CreationTime, IsTheModificationWhereTheFileSystemDoesNotKeepIt)
{
    const struct statx status = statusOf("/proc/self/status");
    ASSERT_EQ(status.stx_mask & STATX_BTIME, 0u);
    EXPECT_EQ(XeFileSystem::getCreationTime(L"/proc/self/status"),
              XeFileSystem::getModifiedTime(L"/proc/self/status"));
    EXPECT_GT(XeFileSystem::getCreationTime(L"/proc/self/status"), 0);
}

TEST(ReadonlyVolume, ItsFoldersAreReadonlyForRootToo)
{
    const TemporaryFolder folder;
    const SmallVolume volume(folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    fs::create_directory(volume / "folder");
    folder.write("volume/file", "x");
    EXPECT_FALSE(XeFileSystem::isFolderReadonly(wide(volume / "folder")));
    ASSERT_TRUE(volume.makeReadOnly());
    EXPECT_TRUE(XeFileSystem::isFolderReadonly(wide(volume / "folder")));
    EXPECT_FALSE(XeFileSystem::isFileReadonly(wide(volume / "file"))); // its owner's bit is set
    EXPECT_FALSE(XeFileSystem::setFileReadonly(wide(volume / "file").c_str(), true));
    EXPECT_EQ(XeFileSystem::touchLastModified(wide(volume / "file").c_str()),
              static_cast<XeResult>(0x80000008));
}

class StoredName : public testing::Test {
protected:
    struct stat statusOf(const std::string& name) const
    {
        struct stat status {};
        EXPECT_EQ(lstat(m_folder.path(name).c_str(), &status), 0);
        return status;
    }
    std::string stored(const std::string& asked, const std::string& item) const
    {
        return storedName(m_folder.path(), asked, statusOf(item));
    }

    const TemporaryFolder m_folder;
};

TEST_F(StoredName, IsTheEntryOfThatNameElseOfThatItem)
{
    m_folder.write("Take.wav", "x");
    m_folder.write("other.wav", "x");
    fs::create_symlink("Take.wav", m_folder / "link");
    EXPECT_EQ(stored("Take.wav", "Take.wav"), "Take.wav");
    EXPECT_EQ(stored("TAKE.WAV", "Take.wav"), "Take.wav");
    EXPECT_EQ(stored("LINK", "link"), "link");
    EXPECT_EQ(stored("TAKE~1.WAV", "other.wav"), "other.wav");
    EXPECT_EQ(stored("LINK", "other.wav"), "other.wav"); // before the one that is spelt alike
}

TEST_F(StoredName, OfTwoNamesOfAnItemTheOneAskedForWins)
{
    m_folder.write("one", "x");
    fs::create_hard_link(m_folder / "one", m_folder / "two");
    EXPECT_EQ(stored("one", "one"), "one");
    EXPECT_EQ(stored("two", "one"), "two");
    EXPECT_THAT((std::vector<std::string>{"one", "two"}), testing::Contains(stored("ONE", "one")));
}

TEST_F(StoredName, OfAnItemOfAnotherFolderIsOneOfTheSameLettersOrNone)
{
    m_folder.write("file", "x");
    fs::create_directory(m_folder / "folder");
    m_folder.write("folder/Other", "x");
    EXPECT_EQ(storedName(m_folder.path("folder"), "file", statusOf("file")), "");
    EXPECT_EQ(storedName(m_folder.path("folder"), "OTHER", statusOf("file")), "Other");
    EXPECT_EQ(storedName(m_folder.path("absent"), "file", statusOf("file")), "");
    EXPECT_EQ(storedName(m_folder.path("file"), "file", statusOf("file")), "");
}

/// A volume that does not tell letter cases apart, in an image of its own.
class CaseInsensitive : public testing::Test {
protected:
    void SetUp() override
    {
        const std::string image = m_folder.write("image", "");
        fs::resize_file(image, 32 << 20);
        fs::create_directory(root());
        const std::string mount =
            "device=$(losetup -f --show '" + image +
            "') && { mkfs.exfat \"$device\" && mount.exfat-fuse \"$device\" '" + root() +
            "'; status=$?; losetup -d \"$device\"; exit $status; }";
        // The device goes with the last that uses it, which is the mount.
        m_mounted = std::system(("{ " + mount + "; } >/dev/null 2>&1").c_str()) == 0;
        if (!m_mounted) {
            GTEST_SKIP() << "no exFAT volume can be mounted here";
        }
    }
    void TearDown() override
    {
        if (m_mounted) {
            umount2(root().c_str(), MNT_DETACH);
        }
    }
    std::string root() const { return m_folder.path("volume"); }

    const TemporaryFolder m_folder;
    bool m_mounted = false;
};

TEST_F(CaseInsensitive, TheStrictNameHasTheLetterCaseOfTheEntry)
{
    m_folder.write("volume/Take One.wav", "x");
    Text name;
    EXPECT_TRUE(XeFileSystem::getStrictFileName(wide(root() + "/TAKE one.WAV"), name));
    EXPECT_EQ(name, L"Take One.wav");
    EXPECT_TRUE(XeFileSystem::getStrictFileName(wide(root() + "/Take One.wav"), name));
    EXPECT_EQ(name, L"Take One.wav");
    EXPECT_TRUE(XeFileSystem::getStrictFileName(wide(root()), name));
    EXPECT_EQ(name, L"volume");
    EXPECT_FALSE(XeFileSystem::getStrictFileName(wide(root() + "/Take Two.wav"), name));
}

} // namespace
