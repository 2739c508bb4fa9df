#include "FileTestSupport.h"
#include "OpenDescriptors.h"

#include <unistd.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

constexpr auto kOpenFailed = static_cast<XeResult>(0x8004E015);
constexpr auto kCreateFailed = static_cast<XeResult>(0x8004E014);
constexpr auto kGeneralFailure = static_cast<XeResult>(0x80000008);

class File : public FileTest {
protected:
    /// What XeFile reads from a file of these units.
    Text readUnits(const std::u16string& units, unsigned long count) const
    {
        ReadOnly attributes(made("units", bytesOf(units)));
        XeFile file;
        EXPECT_EQ(file.Open(attributes), 0);
        Text text = L"before";
        file.read(text, count, true);
        return text;
    }

    std::string written(const Text& text, bool writeNull, bool utf16, unsigned long bytes) const
    {
        Create attributes(m_folder / "written");
        XeFile file;
        EXPECT_EQ(file.Open(attributes), 0);
        EXPECT_EQ(file.write(text, writeNull, utf16), bytes);
        file.Close();
        return bytesOf(m_folder / "written");
    }
};

TEST_F(File, ModeFollowsTheAttributes)
{
    struct Row {
        bool readOnly, create, text;
        long long newFileSize;
        bool exists;
        const char* mode;
        bool readOnlyAfter, createAfter;
    };
    // clang-format off
    constexpr Row kRows[] = {
        // readOnly create text newSize exists mode  readOnly create after
        {  true,  false, true,   0, true,  "rt",  true,  false },
        {  true,  false, false,  0, true,  "rb",  true,  false },
        {  true,  false, false,  0, false, "rb",  true,  false },
        {  false, false, true,   0, true,  "r+t", false, false },
        {  false, false, false,  0, true,  "r+b", false, false },
        {  false, false, true,   0, false, "a+t", false, false },
        {  false, false, false,  0, false, "a+b", false, false },
        {  false, true,  true,   0, true,  "w+t", false, true  },
        {  false, true,  false,  0, false, "w+b", false, true  },
        {  true,  true,  false,  0, true,  "w+b", false, true  },
        {  false, false, false,  1, true,  "w+b", false, true  },
        {  true,  false, true,   1, false, "w+t", false, true  },
        {  true,  false, false, -1, true,  "rb",  true,  false },
    };
    // clang-format on
    const Path present = made("present", "x");
    int index = 0;
    for (const Row& row : kRows) {
        SCOPED_TRACE(index++);
        for (const bool byOpening : {false, true}) {
            Attributes attributes(row.exists ? present : m_folder / "absent");
            attributes.readOnly = row.readOnly;
            attributes.create = row.create;
            attributes.text = row.text;
            attributes.newFileSize = row.newFileSize;
            if (byOpening) {
                XeFile().setOpenAttrib(attributes);
            } else {
                EXPECT_EQ(XeFile::buildCRTOpenStr(attributes), row.mode);
            }
            EXPECT_EQ(attributes.readOnly, row.readOnlyAfter);
            EXPECT_EQ(attributes.create, row.createAfter);
        }
    }
    EXPECT_EQ(bytesOf(present), "x");
}

TEST_F(File, OpensAnExistingFileForReadingAndWriting)
{
    Attributes attributes(made("file", "abc"));
    XeFile file(attributes);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.Open(), 0);
    EXPECT_TRUE(file.isOpen());
    char first = 0;
    EXPECT_EQ(file.read(&first, 1), 1u);
    EXPECT_EQ(first, 'a');
    EXPECT_EQ(file.seek(SEEK_SET, 1), 0);
    EXPECT_EQ(file.write("X", 1), 1u);
    file.Close();
    EXPECT_EQ(bytesOf(m_folder / "file"), "aXc");
}

TEST_F(File, MakesAMissingFileAndAppends)
{
    Attributes attributes(m_folder / "new");
    XeFile file;
    EXPECT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.write("ab", 2), 2u);
    EXPECT_EQ(file.seek(SEEK_SET, 0), 0);
    EXPECT_EQ(file.write("c", 1), 1u);
    file.Close();
    EXPECT_EQ(bytesOf(m_folder / "new"), "abc");
}

TEST_F(File, CreateEmptiesTheFileAndMakesItsFolders)
{
    {
        Create attributes(made("full", "content"));
        XeFile file;
        EXPECT_EQ(file.Open(attributes), 0);
    }
    EXPECT_EQ(bytesOf(m_folder / "full"), "");

    Create deep(m_folder / "one/two/three.dat");
    XeFile file;
    EXPECT_EQ(file.Open(deep), 0);
    EXPECT_TRUE(std::filesystem::exists(m_folder / "one/two/three.dat"));
}

// The folder is made for a caller who asked to create, not for one who gave a size.
TEST_F(File, NewFileSizeAloneMakesTheFileButNotItsFolder)
{
    Attributes missing(m_folder / "folder/file");
    missing.newFileSize = 10;
    XeFile file;
    EXPECT_EQ(file.Open(missing), kOpenFailed);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "folder"));

    Attributes present(made("file", "content"));
    present.newFileSize = 10;
    EXPECT_EQ(file.Open(present), 0);
    file.Close();
    EXPECT_EQ(bytesOf(m_folder / "file"), "");

    Create both(m_folder / "folder/file");
    both.newFileSize = 10;
    EXPECT_EQ(file.Open(both), 0);
}

TEST_F(File, FailureToMakeTheFolderIsReturnedAsItIs)
{
    Create attributes(made("in the way", "x") / "folder/file");
    XeFile file;
    EXPECT_EQ(file.Open(attributes), kCreateFailed);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.createFolder(), kCreateFailed);
}

TEST_F(File, PathWithoutFolderLiesInTheWorkingFolder)
{
    const Path before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.path());
    Create attributes("plain");
    XeFile file;
    EXPECT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.createFolder(), 0);
    std::filesystem::current_path(before);
    EXPECT_TRUE(std::filesystem::exists(m_folder / "plain"));
}

TEST_F(File, OpenSeeksToAPositiveOffset)
{
    for (const auto& [offset, position] :
         {std::pair(2LL, 2LL), {9LL, 9LL}, {0LL, 0LL}, {-1LL, 0LL}}) {
        SCOPED_TRACE(offset);
        ReadOnly attributes(made("file", "abc"));
        attributes.offset = offset;
        XeFile file;
        EXPECT_EQ(file.Open(attributes), 0);
        EXPECT_EQ(file.curFilePos(), position);
    }
}

TEST_F(File, MissingFileCannotBeOpenedReadOnly)
{
    ReadOnly attributes(m_folder / "absent");
    XeFile file;
    EXPECT_EQ(file.Open(attributes), kOpenFailed);
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(std::filesystem::exists(m_folder / "absent"));
    EXPECT_EQ(XeFile().Open(), kOpenFailed);
    _xeAttrib none;
    EXPECT_EQ(file.Open(none), kOpenFailed);
}

TEST_F(File, OpeningAnOpenFileClosesItFirst)
{
    const std::size_t before = openDescriptors();
    Create first(m_folder / "first");
    XeFile file;
    ASSERT_EQ(file.Open(first), 0);
    file.write("a", 1);
    EXPECT_EQ(file.Open(), 0);
    EXPECT_EQ(openDescriptors(), before + 1);
    EXPECT_EQ(bytesOf(m_folder / "first"), "");

    file.write("b", 1);
    Create second(m_folder / "second");
    EXPECT_EQ(file.Open(second), 0);
    EXPECT_EQ(openDescriptors(), before + 1);
    EXPECT_EQ(bytesOf(m_folder / "first"), "b");
}

TEST_F(File, CloseForgetsThePath)
{
    Create attributes(m_folder / "file");
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.Open(), kOpenFailed);
    EXPECT_EQ(file.Close(), 0);

    file.setOpenAttrib(attributes);
    EXPECT_EQ(file.Close(), 0); // never opened
    EXPECT_EQ(file.Open(), kOpenFailed);
}

// Seen through a second descriptor of the same open file. The seek makes no file longer.
TEST_F(File, CloseSeeksToTheNewSize)
{
    Create attributes(m_folder / "file");
    attributes.newFileSize = 100;
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    file.write("abc", 3);
    const int same = dup(fileno(file.getHandle()));
    file.Close();
    EXPECT_EQ(lseek(same, 0, SEEK_CUR), 100);
    close(same);
    EXPECT_EQ(bytesOf(m_folder / "file"), "abc");
}

TEST_F(File, DestructionFlushesAndCloses)
{
    const std::size_t before = openDescriptors();
    {
        Create attributes(m_folder / "file");
        XeFile file(attributes);
        ASSERT_EQ(file.Open(), 0);
        file.write("abc", 3);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(bytesOf(m_folder / "file"), "abc");
}

TEST_F(File, FlushMakesWritingVisible)
{
    Create attributes(m_folder / "file");
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    file.write("abc", 3);
    EXPECT_EQ(file.flush(), 0);
    EXPECT_EQ(bytesOf(m_folder / "file"), "abc");
}

TEST_F(File, AttachTakesOverOneStream)
{
    const std::size_t before = openDescriptors();
    std::FILE* const first = std::tmpfile();
    std::FILE* const second = std::tmpfile();
    XeFile file;
    EXPECT_EQ(file.attach(first), 0);
    EXPECT_EQ(file.attach(second), kGeneralFailure);
    EXPECT_EQ(file.getHandle(), first);
    EXPECT_EQ(file.write("ab", 2), 2u);
    EXPECT_EQ(file.curFilePos(), 2);
    EXPECT_EQ(file.Close(), 0);
    XeFile(static_cast<void*>(second)).Close();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(File, AssignmentCopiesTheAttributesAndForgetsTheStream)
{
    ReadOnly attributes(made("file", "abcdef"));
    attributes.offset = 4;
    XeFile original;
    ASSERT_EQ(original.Open(attributes), 0);

    std::FILE* const held = std::tmpfile();
    XeFile target(static_cast<void*>(held));
    target = original;
    EXPECT_FALSE(target.isOpen());
    EXPECT_EQ(std::fclose(held), 0); // still open: nobody closed it
    EXPECT_TRUE(original.isOpen());

    for (XeFile copy : {target, XeFile(original)}) {
        EXPECT_EQ(copy.Open(), 0);
        EXPECT_EQ(copy.curFilePos(), 4);
        EXPECT_EQ(copy.write("x", 1), 0u); // "rb"
    }
}

TEST_F(File, CopiesKeepCreateAndTheNewSize)
{
    Create attributes(m_folder / "folder/file");
    attributes.newFileSize = 7;
    const XeFile original(attributes);
    XeFile copy(original);
    EXPECT_EQ(copy.Open(), 0);
    const int same = dup(fileno(copy.getHandle()));
    copy.Close();
    EXPECT_EQ(lseek(same, 0, SEEK_CUR), 7);
    close(same);
}

TEST_F(File, ClosedFileAnswersMinusOne)
{
    XeFile file;
    char buffer[4] = "abc";
    Text text = L"before";
    EXPECT_EQ(file.seek(SEEK_SET, 0), -1);
    EXPECT_EQ(file.curFilePos(), -1);
    EXPECT_EQ(file.flush(), -1);
    EXPECT_EQ(file.getHandle(), nullptr);
    EXPECT_EQ(file.read(buffer, 3), ULONG_MAX);
    EXPECT_EQ(file.write(buffer, 3), ULONG_MAX);
    EXPECT_EQ(file.read(text, 3, false), ULONG_MAX);
    EXPECT_EQ(file.read(text, 3, true), ULONG_MAX);
    EXPECT_EQ(text, L"before");
    EXPECT_EQ(file.write(text, true, false), ULONG_MAX);
    EXPECT_EQ(file.write(text, true, true), ULONG_MAX);
    EXPECT_EQ(file.writeString(L"a"), ULONG_MAX);
    EXPECT_EQ(file.writeStringA(L"a"), ULONG_MAX);
    EXPECT_EQ(file.writeStringA("a"), ULONG_MAX);
}

TEST_F(File, SeeksFromStartPositionAndEnd)
{
    ReadOnly attributes(made("file", "abcdef"));
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.seek(SEEK_SET, 2), 0);
    EXPECT_EQ(file.seek(SEEK_CUR, 2), 0);
    EXPECT_EQ(file.curFilePos(), 4);
    EXPECT_EQ(file.seek(SEEK_END, -1), 0);
    EXPECT_EQ(file.curFilePos(), 5);
    EXPECT_EQ(file.seek(SEEK_SET, -1), -1);
    EXPECT_EQ(file.curFilePos(), 5);
}

TEST_F(File, WritesUtf16WithPairsAndTerminator)
{
    const Text text = L"a\x1F600";
    EXPECT_EQ(written(text, true, true, 8),
              bytesOf(std::u16string{0x0061, 0xD83D, 0xDE00, 0x0000}));
    EXPECT_EQ(written(text, false, true, 6), bytesOf(std::u16string{0x0061, 0xD83D, 0xDE00}));
    EXPECT_EQ(written(Text(L"\xFFFF\x10000\x10FFFF\xD800"), false, true, 12),
              bytesOf(std::u16string{0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF, 0xD800}));
    EXPECT_EQ(written(Text(), false, true, 0), "");
    EXPECT_EQ(written(Text(), true, true, 2), std::string(2, '\0'));
}

TEST_F(File, WritesUtf32WithTerminator)
{
    const std::wstring plain = L"a\x1F600";
    EXPECT_EQ(written(Text(plain), true, false, 12), bytesOf(plain + L'\0'));
    EXPECT_EQ(written(Text(plain), false, false, 8), bytesOf(plain));
    EXPECT_EQ(written(Text(), false, false, 0), "");
    EXPECT_EQ(written(Text(), true, false, 4), std::string(4, '\0'));
}

TEST_F(File, ReadsUtf16)
{
    struct Row {
        std::u16string units;
        std::wstring text;
    };
    const Row rows[] = {
        {{0x0061, 0xD83D, 0xDE00, 0x0062},
         L"a\x1F600"
         L"b"},
        {{0xD800, 0xDC00, 0xDBFF, 0xDFFF}, L"\x10000\x10FFFF"},
        {{0xD83D, 0x0041}, L"_"},               // the 'A' is consumed
        {{0xD83D, 0x0041, 0x0042}, L"_B"},      //
        {{0xD83D, 0xD83D, 0xDE00}, L"_\xDE00"}, // the second high one too
        {{0x0061, 0xD83D}, L"a_"},              // nothing follows
        {{0xDE00, 0x0061}, L"\xDE00\x61"},      // a lone low one stays
        {{0xFEFF, 0x0061}, L"\xFEFF\x61"},      // a byte-order mark is a character
        {{0x0061, 0x0000, 0x0062}, L"a"},       // ends at the zero
        {{0xD83D, 0x0000, 0x0062}, L"_\x62"},   // which a high one may consume
        {{}, L""},
    };
    int index = 0;
    for (const auto& [units, text] : rows) {
        SCOPED_TRACE(index++);
        EXPECT_EQ(readUnits(units, units.size()), text);
        EXPECT_EQ(readUnits(units, units.size() + 5), text); // more than is there
        EXPECT_EQ(readUnits(units, ULONG_MAX), text);
    }
    EXPECT_EQ(readUnits({0x0061, 0x0062}, 1), L"a");
    EXPECT_EQ(readUnits({0xD83D, 0xDE00}, 1), L"_");
    EXPECT_EQ(readUnits({0x0061}, 0), L"");
}

TEST_F(File, ReadsUtf32UpToTheFirstZero)
{
    const std::wstring units{L'a', 0x1F600, 0, L'b', L'c'};
    ReadOnly attributes(made("file", bytesOf(units)));
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    Text text = L"before";
    EXPECT_EQ(file.read(text, 4, false), 16u);
    EXPECT_EQ(text, L"a\x1F600");
    EXPECT_EQ(file.curFilePos(), 16); // behind the units, not behind the zero
    EXPECT_EQ(file.read(text, 1, false), 4u);
    EXPECT_EQ(text, L"c");
    EXPECT_EQ(file.read(text, 1, false), 0u);
    EXPECT_EQ(text, L"");
}

// A short read ends the text after the units that were there; bytes of half a unit only count.
TEST_F(File, ShortReadEndsTheTextBehindWhatWasRead)
{
    ReadOnly attributes(made("file", bytesOf(std::wstring(L"ab")) + "xyz"));
    XeFile file;
    Text text;
    for (const unsigned long count : {3ul, 1000ul, 1ul << 20, ULONG_MAX / 4, ULONG_MAX}) {
        SCOPED_TRACE(count);
        ASSERT_EQ(file.Open(attributes), 0);
        EXPECT_EQ(file.read(text, count, false), 11u);
        EXPECT_EQ(text, L"ab");
    }
    ReadOnly odd(made("odd", bytesOf(std::u16string(u"ab")) + "x"));
    ASSERT_EQ(file.Open(odd), 0);
    EXPECT_EQ(file.read(text, 3, true), 5u);
    EXPECT_EQ(text, L"ab");
}

// Texts are moved in pieces inside; no length and no pair at a seam may show it.
TEST_F(File, TextsOfEveryLengthRoundTrip)
{
    for (const std::size_t length : {1u, 4094u, 4095u, 4096u, 4097u, 8191u, 8192u, 20000u}) {
        SCOPED_TRACE(length);
        Text text;
        for (std::size_t i = 0; i < length; ++i) {
            text += static_cast<wchar_t>(length % 2 == 0 || i % 4095 == 0 ? 0x1F600 + i % 7
                                                                          : 0x61 + i % 26);
        }
        for (const bool utf16 : {false, true}) {
            Create attributes(m_folder / "text");
            XeFile file;
            ASSERT_EQ(file.Open(attributes), 0);
            const unsigned long bytes = file.write(text, false, utf16);
            file.seek(SEEK_SET, 0);
            Text back;
            EXPECT_EQ(file.read(back, bytes / (utf16 ? 2 : 4), utf16), bytes);
            EXPECT_EQ(back, text);
        }
    }
}

TEST_F(File, WritesStringsWithoutTerminator)
{
    Create attributes(m_folder / "file");
    XeFile file;
    ASSERT_EQ(file.Open(attributes), 0);
    EXPECT_EQ(file.writeString(L"a\x20AC"), 8u);
    EXPECT_EQ(file.writeStringA(L"a\x20AC"), 4u);
    EXPECT_EQ(file.writeStringA("b\xE9"), 2u);
    EXPECT_EQ(file.writeString(nullptr), 0u);
    EXPECT_EQ(file.writeStringA(static_cast<const wchar_t*>(nullptr)), 0u);
    EXPECT_EQ(file.writeStringA(static_cast<const char*>(nullptr)), 0u);
    file.Close();
    EXPECT_EQ(bytesOf(m_folder / "file"),
              bytesOf(std::wstring(L"a\x20AC")) + "a\xE2\x82\xAC" + "b\xE9");
}

TEST_F(File, TenThousandCyclesLeaveNothingBehind)
{
    Create attributes(m_folder / "file");
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 10000; ++i) {
        XeFile file;
        ASSERT_EQ(file.Open(attributes), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
