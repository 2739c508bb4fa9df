#ifndef __linux__
#error "for Linux only"
#endif

// Both kinds of file on volumes that are full or read only, without rights, and under names and
// sizes that stretch the system.

#include "FileTestSupport.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "SmallVolume.linux.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

constexpr auto kOpenFailed = static_cast<XeResult>(0x8004E015);
constexpr auto kCreateFailed = static_cast<XeResult>(0x8004E014);
constexpr auto kMapFailed = static_cast<XeResult>(0x80000008);

/// Every fault leaves as many descriptors open as there were.
class FileFault : public FileTest {
protected:
    void SetUp() override { m_descriptors = openDescriptors(); }
    void TearDown() override { EXPECT_EQ(openDescriptors(), m_descriptors); }

    /// What opening a file and mapping it give.
    template <typename Attributes>
    static void expectOpen(const Path& path, XeResult opened, XeResult mapped)
    {
        SCOPED_TRACE(path);
        Attributes attributes(path);
        EXPECT_EQ(XeFile().Open(attributes), opened);
        EXPECT_EQ(XeMappedFile().Open(attributes), mapped);
    }

    static XeResult mapNew(const Path& path, long long size)
    {
        Attributes attributes(path);
        attributes.newFileSize = size;
        return XeMappedFile().Open(attributes);
    }

    std::size_t m_descriptors = 0;
};

TEST_F(FileFault, FullDiskShowsInTheCountOrWhenFlushed)
{
    const SmallVolume volume(m_folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << "cannot mount a small volume: " << volume.reason();
    }
    Create large(volume / "large");
    XeFile file;
    ASSERT_EQ(file.Open(large), 0);
    const std::string bytes(200 * 1024, 'x');
    const unsigned long count = file.write(bytes.data(), bytes.size());
    EXPECT_TRUE(count < bytes.size() || file.flush() == EOF);
    EXPECT_LE(fs::file_size(volume / "large"), 64u * 1024);

    // What fits the buffer seems to succeed.
    Create small(volume / "small");
    XeFile other;
    ASSERT_EQ(other.Open(small), 0);
    EXPECT_EQ(other.write(bytes.data(), 100), 100u);
    EXPECT_EQ(other.flush(), EOF);
    EXPECT_EQ(other.Close(), 0);
    EXPECT_EQ(file.Close(), 0);
}

TEST_F(FileFault, TextStopsAtAFullDisk)
{
    for (const bool utf16 : {false, true}) {
        XeFile file;
        std::FILE* const full = std::fopen("/dev/full", "w");
        ASSERT_EQ(file.attach(full), 0);
        std::setvbuf(full, nullptr, _IONBF, 0);
        EXPECT_EQ(file.write(Text(10000, L'a'), true, utf16), 0u);
        EXPECT_EQ(file.writeString(L"a"), 0u);
    }
}

// The blocks are reserved, so that no write to the mapping can fault; a file that cannot have them
// is not left behind.
TEST_F(FileFault, NewMappedFileHasItsRoomOrIsNotMade)
{
    const SmallVolume volume(m_folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << "cannot mount a small volume: " << volume.reason();
    }
    EXPECT_EQ(mapNew(volume / "large", 200 * 1024), kMapFailed);
    EXPECT_FALSE(fs::exists(volume / "large"));

    put(volume / "present", "content");
    EXPECT_EQ(mapNew(volume / "present", 200 * 1024), kMapFailed);
    EXPECT_EQ(fs::file_size(volume / "present"), 0u);

    EXPECT_EQ(mapNew(volume / "fits", 40 * 1024), 0);
    struct stat status {};
    ASSERT_EQ(stat((volume / "fits").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 40 * 1024);
    EXPECT_GE(status.st_blocks * 512, 40 * 1024);
}

TEST_F(FileFault, ReadOnlyVolumeIsReadOnly)
{
    const SmallVolume volume(m_folder / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << "cannot mount a small volume: " << volume.reason();
    }
    put(volume / "file", "abc");
    ASSERT_TRUE(volume.makeReadOnly());
    expectOpen<ReadOnly>(volume / "file", 0, 0);
    expectOpen<Attributes>(volume / "file", kOpenFailed, kMapFailed);
    expectOpen<Create>(volume / "file", kOpenFailed, kMapFailed);
    expectOpen<Attributes>(volume / "new", kOpenFailed, kMapFailed);
    expectOpen<Create>(volume / "folder/new", kCreateFailed, kMapFailed);
    EXPECT_EQ(mapNew(volume / "file", 10), kMapFailed);
    EXPECT_EQ(mapNew(volume / "new", 10), kMapFailed);
    EXPECT_EQ(bytesOf(volume / "file"), "abc");
}

TEST_F(FileFault, WithoutRightsNothingOpens)
{
    fs::permissions(m_folder.path(), fs::perms(0755));
    fs::create_directory(m_folder / "closed");
    put(m_folder / "closed/file", "abc");
    const Path secret = made("secret", "abc");
    const Path readable = made("readable", "abc");
    fs::permissions(secret, fs::perms(0));
    fs::permissions(readable, fs::perms(0444));
    fs::permissions(m_folder / "closed", fs::perms(0));
    asOrdinaryUser([&] {
        expectOpen<ReadOnly>(secret, kOpenFailed, kMapFailed);
        expectOpen<ReadOnly>(readable, 0, 0);
        expectOpen<Attributes>(readable, kOpenFailed, kMapFailed);
        expectOpen<Create>(readable, kOpenFailed, kMapFailed);
        expectOpen<ReadOnly>(m_folder / "closed/file", kOpenFailed, kMapFailed);
        expectOpen<Create>(m_folder / "closed/new", kOpenFailed, kMapFailed);
        expectOpen<Create>(m_folder / "closed/folder/new", kCreateFailed, kMapFailed);
        EXPECT_EQ(mapNew(readable, 10), kMapFailed);
    });
    fs::permissions(m_folder / "closed", fs::perms(0755));
    EXPECT_EQ(bytesOf(readable), "abc");
}

TEST_F(FileFault, NameTooLongIsAnOpenFailure)
{
    const std::string name(256, 'n');
    expectOpen<ReadOnly>(m_folder / name, kOpenFailed, kMapFailed);
    expectOpen<Attributes>(m_folder / name, kOpenFailed, kMapFailed);
    expectOpen<Create>(m_folder / name, kOpenFailed, kMapFailed);
    EXPECT_EQ(mapNew(m_folder / name, 10), kMapFailed);
    expectOpen<Create>(m_folder / "made" / name / "file", kCreateFailed, kMapFailed);
    EXPECT_FALSE(fs::exists(m_folder / "made"));
    // 255 characters, but 510 bytes.
    std::string accents;
    for (int i = 0; i < 255; ++i) {
        accents += "\xC3\xA9";
    }
    expectOpen<Create>(m_folder / accents, kOpenFailed, kMapFailed);
}

TEST_F(FileFault, NameThatIsNotUtf8Opens)
{
    const Path path = m_folder / "a\xE9\xFF.wav";
    Create attributes(path);
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    file.write("abc", 3);
    file.Close();
    EXPECT_EQ(bytesOf(path), "abc");
    expectOpen<ReadOnly>(path, 0, 0);
}

TEST_F(FileFault, PathThatNoFileCanHaveDoesNotOpen)
{
    for (const wchar_t character : {L'\xD800', L'\xDC00', L'\xDFFF', wchar_t(0x110000)}) {
        const Text path = wide(m_folder.path()) + L'/' + character;
        _xeAttrib attributes;
        attributes.path = path.c_str();
        attributes.newFileSize = 10;
        EXPECT_EQ(XeFile().Open(attributes), kOpenFailed);
        EXPECT_EQ(XeMappedFile().Open(attributes), kMapFailed);
    }
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

// The system opens a folder for reading, and then reads nothing from it.
TEST_F(FileFault, FolderIsNoFile)
{
    const Path folder = m_folder / "folder";
    fs::create_directory(folder);
    expectOpen<Attributes>(folder, kOpenFailed, kMapFailed);
    expectOpen<Create>(folder, kOpenFailed, kMapFailed);
    expectOpen<ReadOnly>(folder, 0, kMapFailed);
    EXPECT_EQ(mapNew(folder, 10), kMapFailed);
    ReadOnly attributes(folder);
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1), 0u);
}

TEST_F(FileFault, MappingAPipeDoesNotWaitForItsOtherEnd)
{
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    ReadOnly attributes(m_folder / "pipe");
    EXPECT_EQ(XeMappedFile().Open(attributes), kMapFailed);
}

TEST_F(FileFault, LinksThatLeadNowhere)
{
    fs::create_symlink(m_folder / "absent", m_folder / "dangling");
    fs::create_symlink(m_folder / "loop", m_folder / "loop");
    expectOpen<ReadOnly>(m_folder / "dangling", kOpenFailed, kMapFailed);
    expectOpen<ReadOnly>(m_folder / "loop", kOpenFailed, kMapFailed);
    expectOpen<Create>(m_folder / "loop", kOpenFailed, kMapFailed);
    expectOpen<Create>(m_folder / "loop/file", kCreateFailed, kMapFailed);
}

TEST_F(FileFault, FileThatVanishesBeforeItIsOpenedIsNotMadeAgain)
{
    Attributes attributes(made("file", "abc"));
    XeFile file(attributes); // "r+b", as it is there
    XeMappedFile mapped(attributes);
    fs::remove(m_folder / "file");
    EXPECT_EQ(file.Open(), kOpenFailed);
    EXPECT_EQ(mapped.Open(), kMapFailed);
    EXPECT_FALSE(fs::exists(m_folder / "file"));
}

TEST_F(FileFault, FileThatVanishesWhileOpenStaysReadable)
{
    ReadOnly attributes(made("file", "abc"));
    XeFile file;
    XeMappedFile mapped;
    ASSERT_EQ(file.Open(attributes), 0);
    ASSERT_EQ(mapped.Open(attributes), 0);
    fs::remove(m_folder / "file");
    char bytes[3] = {};
    EXPECT_EQ(file.read(bytes, 3), 3u);
    EXPECT_EQ(std::string(bytes, 3), "abc");
    EXPECT_EQ(std::string(mapped.const_data(), mapped.size()), "abc");
}

TEST_F(FileFault, ChildProcessesDoNotInheritTheStream)
{
    Create attributes(m_folder / "file");
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(fcntl(fileno(file.getHandle()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(FileFault, FiveGigabytesAreReachedByBoth)
{
    constexpr long long kFar = 5LL << 30;

    Create attributes(m_folder / "sparse");
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    ASSERT_EQ(file.seek(SEEK_SET, kFar), 0);
    ASSERT_EQ(file.write("end", 3), 3u);
    EXPECT_EQ(file.curFilePos(), kFar + 3);
    file.Close();
    EXPECT_EQ(fs::file_size(m_folder / "sparse"), static_cast<std::uintmax_t>(kFar + 3));

    ReadOnly far(m_folder / "sparse");
    far.offset = kFar + 1;
    char bytes[4] = {};
    ASSERT_EQ(file.Open(far), 0);
    EXPECT_EQ(file.read(bytes, 4), 2u);
    EXPECT_EQ(std::string(bytes, 2), "nd");

    XeMappedFile mapped;
    ASSERT_EQ(mapped.Open(far), 0);
    EXPECT_EQ(std::string(mapped.const_data(), mapped.size()), "nd");
    mapped.Close();
    far.offset = 0;
    ASSERT_EQ(mapped.Open(far), 0);
    EXPECT_EQ(mapped.size(), static_cast<std::size_t>(kFar + 3));
    EXPECT_EQ(mapped.const_data()[kFar], 'e');
}

} // namespace
