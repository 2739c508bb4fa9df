#include "FileTestSupport.h"
#include "OpenDescriptors.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdint>

namespace {

constexpr auto kMapFailed = static_cast<XeResult>(0x80000008);
constexpr auto kUnexpected = static_cast<XeResult>(0x8000FFFF);
constexpr long long kSize = 12345;

class MappedFile : public FileTest {
protected:
    static std::string pattern()
    {
        std::string bytes;
        for (int i = 0; i < kSize; ++i) {
            bytes += static_cast<char>(i * 7 + i / 256);
        }
        return bytes;
    }

    static std::string window(const XeMappedFile& file) { return {file.const_data(), file.size()}; }

    const std::string m_bytes = pattern();
    const Path m_path = made("file", m_bytes);
};

TEST_F(MappedFile, WindowsStartAtAnyByte)
{
    for (const long long offset : {0, 1, 904, 4095, 4096, 4097, 5000, 8192, 12288, 12344}) {
        for (const long long length : {0LL, 1LL, kSize - offset}) {
            for (const bool readOnly : {false, true}) {
                SCOPED_TRACE(testing::Message() << offset << ' ' << length << ' ' << readOnly);
                Window attributes(m_path, offset, length, readOnly);
                XeMappedFile file;
                ASSERT_EQ(file.Open(attributes), 0);
                const auto start = static_cast<std::size_t>(offset);
                const auto count = static_cast<std::size_t>(length);
                // Compares the last byte too: reading the whole window never faults.
                EXPECT_EQ(window(file), m_bytes.substr(start, length == 0 ? kSize : count));
            }
        }
    }
}

TEST_F(MappedFile, OddOffsetIsReachedFromTheAlignedOneBelow)
{
    if (sysconf(_SC_PAGESIZE) != 4096) {
        GTEST_SKIP() << "the numbers are those of 4096-byte pages";
    }
    ReadOnly attributes(m_path);
    attributes.offset = 5000;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(file.const_data()) % 4096, 904u);
    EXPECT_EQ(file.const_data()[-904], m_bytes[4096]);
    EXPECT_EQ(file.size(), static_cast<std::size_t>(kSize - 5000));
}

TEST_F(MappedFile, EmptyWindowsAndThosePastTheEndAreRefused)
{
    struct Row {
        long long offset, length;
    };
    constexpr Row kRows[] = {
        {kSize, 0},     {kSize + 1, 0},    {12288, 58},          {20480, 0},
        {0, kSize + 1}, {1, kSize},        {5000, kSize - 4999}, {16384, 1},
        {0, LLONG_MAX}, {5000, LLONG_MAX}, {LLONG_MAX, 0},       {LLONG_MAX, LLONG_MAX},
        {-1, 0},        {-4096, 10},       {LLONG_MIN, 0},       {LLONG_MIN + 1, 1},
        {0, -1},        {5000, LLONG_MIN},
    };
    const std::size_t before = openDescriptors();
    for (const auto& [offset, length] : kRows) {
        for (const bool readOnly : {false, true}) {
            SCOPED_TRACE(testing::Message() << offset << ' ' << length << ' ' << readOnly);
            Window attributes(m_path, offset, length, readOnly);
            XeMappedFile file;
            EXPECT_EQ(file.Open(attributes), kMapFailed);
            EXPECT_FALSE(file.isOpen());
            EXPECT_EQ(file.size(), 0u);
            EXPECT_EQ(file.const_data(), nullptr);
            EXPECT_EQ(file.data(), nullptr);
            EXPECT_EQ(file.Close(), 1);
        }
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(bytesOf(m_path), m_bytes);
}

TEST_F(MappedFile, EmptyAndMissingFilesAreRefused)
{
    for (const Path& path : {made("empty", ""), m_folder / "absent", Path()}) {
        SCOPED_TRACE(path);
        Create attributes(path);
        XeMappedFile file;
        EXPECT_EQ(file.Open(attributes), kMapFailed);
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder / "absent"));
    _xeAttrib none;
    EXPECT_EQ(XeMappedFile(none).Open(), kMapFailed);
}

TEST_F(MappedFile, ReadOnlyHasNoWritableData)
{
    ReadOnly attributes(m_path);
    attributes.offset = 5000;
    XeMappedFile file(attributes);
    EXPECT_FALSE(file.isOpen());
    ASSERT_EQ(file.Open(), 0);
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.data(), nullptr);
    ASSERT_NE(file.const_data(), nullptr);
    EXPECT_EQ(*file.const_data(), m_bytes[5000]);
}

// `create` asks for the right to write; only a new size makes a file.
TEST_F(MappedFile, CreateMeansWritableAndLeavesTheContents)
{
    Create attributes(m_path);
    attributes.readOnly = true;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_FALSE(attributes.readOnly);
    EXPECT_NE(file.data(), nullptr);
    EXPECT_EQ(window(file), m_bytes);
}

TEST_F(MappedFile, WritingReachesTheFile)
{
    Attributes attributes(m_path);
    attributes.offset = 5000;
    attributes.length = 3;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.data(), file.const_data());
    std::string("XYZ").copy(file.data(), 3);
    EXPECT_EQ(file.Close(), 0);
    std::string expected = m_bytes;
    EXPECT_EQ(bytesOf(m_path), expected.replace(5000, 3, "XYZ"));
}

TEST_F(MappedFile, OpenWithoutAttributesIsUnexpected)
{
    XeMappedFile file;
    EXPECT_EQ(file.Open(), kUnexpected);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.Close(), 1);
}

TEST_F(MappedFile, OpenWhenOpenIsUnexpectedAndChangesNothing)
{
    ReadOnly attributes(m_path);
    attributes.offset = 5000;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    const char* const data = file.const_data();
    EXPECT_EQ(file.Open(), kUnexpected);
    ReadOnly other(made("other", "abc"));
    other.offset = 1;
    EXPECT_EQ(file.Open(other), kUnexpected);
    EXPECT_EQ(file.const_data(), data);
    EXPECT_EQ(window(file), m_bytes.substr(5000));

    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(file.Open(), 0); // the attributes given last
    EXPECT_EQ(window(file), "bc");
}

TEST_F(MappedFile, OpensAgainAfterClosingAndAfterAFailure)
{
    ReadOnly attributes(m_path);
    attributes.offset = 5000;
    XeMappedFile file;
    EXPECT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.Open(), 0);
    EXPECT_EQ(window(file), m_bytes.substr(5000));
    file.Close();

    attributes.offset = kSize;
    EXPECT_EQ(file.Open(attributes), kMapFailed);
    attributes.offset = 0;
    EXPECT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(window(file), m_bytes);
}

TEST_F(MappedFile, NewSizeMakesAFileOfZeros)
{
    ReadOnly attributes(m_folder / "new");
    attributes.newFileSize = 10000;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_TRUE(attributes.create);
    EXPECT_FALSE(attributes.readOnly);
    EXPECT_EQ(window(file), std::string(10000, '\0'));
    file.data()[9999] = 'z';
    file.Close();
    EXPECT_EQ(bytesOf(m_folder / "new"), std::string(9999, '\0') + 'z');
}

TEST_F(MappedFile, NewSizeEmptiesAFileThatIsThere)
{
    Attributes attributes(m_path);
    attributes.newFileSize = 5001;
    attributes.offset = 5000;
    XeMappedFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(window(file), std::string(1, '\0'));
    EXPECT_EQ(bytesOf(m_path), std::string(5001, '\0'));
}

TEST_F(MappedFile, NewFileHasNoMoreRightsThanUsual)
{
    const mode_t before = umask(027);
    Attributes attributes(m_folder / "new");
    attributes.newFileSize = 1;
    XeMappedFile file;
    EXPECT_EQ(file.Open(attributes), 0);
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat((m_folder / "new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(MappedFile, WindowPastTheNewSizeIsRefusedBeforeTheFileIsTouched)
{
    for (const Path& path : {m_path, m_folder / "new"}) {
        Attributes attributes(path);
        attributes.newFileSize = 100;
        attributes.length = 101;
        XeMappedFile file;
        EXPECT_EQ(file.Open(attributes), kMapFailed);
    }
    EXPECT_EQ(bytesOf(m_path), m_bytes);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "new"));
}

TEST_F(MappedFile, TenThousandCyclesLeaveNothingBehind)
{
    Attributes attributes(m_path);
    attributes.offset = 5000;
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 10000; ++i) {
        XeMappedFile file;
        ASSERT_EQ(file.Open(attributes), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
