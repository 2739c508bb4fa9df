#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using xenon::path::fromNative;
using xenon::path::toNative;
using Text = _XeString<wchar_t>;

/// RFC 3629, written out for one code point.
std::string utf8(char32_t c)
{
    const auto byte = [](char32_t value) { return static_cast<char>(value); };
    if (c < 0x80) {
        return {byte(c)};
    }
    if (c < 0x800) {
        return {byte(0xC0 + c / 64), byte(0x80 + c % 64)};
    }
    if (c < 0x10000) {
        return {byte(0xE0 + c / 4096), byte(0x80 + c / 64 % 64), byte(0x80 + c % 64)};
    }
    return {byte(0xF0 + c / 262144), byte(0x80 + c / 4096 % 64), byte(0x80 + c / 64 % 64),
            byte(0x80 + c % 64)};
}

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

TEST(NativePath, ConvertsEveryCodePointBothWays)
{
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (isSurrogate(c)) {
            continue;
        }
        const Text text(1, static_cast<wchar_t>(c));
        ASSERT_EQ(toNative(text), utf8(c)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(fromNative(utf8(c)), text) << std::hex << static_cast<unsigned>(c);
    }
}

// The library's general conversion knows the same encoding, and passes surrogates too.
TEST(Utf8Conversion, AgreesWithRfc3629ForEveryCodePointBothWays)
{
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        const std::wstring wide(1, static_cast<wchar_t>(c));
        std::string narrow;
        xeassign(narrow, wide.c_str());
        ASSERT_EQ(narrow, utf8(c)) << std::hex << static_cast<unsigned>(c);
        std::wstring back;
        xeassign(back, narrow.c_str());
        ASSERT_EQ(back, wide) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(NativePath, SingleBytesThatAreNotUtf8BecomeTheirEscapesAndComeBack)
{
    for (int byte = 0x80; byte <= 0xFF; ++byte) {
        const std::string name = {'a', static_cast<char>(byte), 'b'};
        const Text text = {L'a', static_cast<wchar_t>(0xDC00 + byte), L'b'};
        EXPECT_EQ(fromNative(name), text) << byte;
        EXPECT_EQ(toNative(text), name) << byte;
    }
}

TEST(NativePath, EveryPairOfBytesComesBack)
{
    for (int first = 0; first <= 0xFF; ++first) {
        for (int second = 0; second <= 0xFF; ++second) {
            const std::string name = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(toNative(fromNative(name)), name) << first << ' ' << second;
        }
    }
}

struct NameRow {
    const char* bytes;
    const wchar_t* text;
};

// clang-format off
constexpr NameRow kMalformedNames[] = {
    {"\xC0\xAF",              L"\xDCC0\xDCAF"              },  // '/' in two bytes
    {"\xC1\xBF",              L"\xDCC1\xDCBF"              },
    {"\xE0\x80\xAF",          L"\xDCE0\xDC80\xDCAF"        },
    {"\xE0\x9F\xBF",          L"\xDCE0\xDC9F\xDCBF"        },
    {"\xED\xA0\x80",          L"\xDCED\xDCA0\xDC80"        },  // U+D800
    {"\xED\xBF\xBF",          L"\xDCED\xDCBF\xDCBF"        },  // U+DFFF
    {"\xED\xB2\x80",          L"\xDCED\xDCB2\xDC80"        },  // U+DC80, the escape of a byte
    {"\xF0\x8F\xBF\xBF",      L"\xDCF0\xDC8F\xDCBF\xDCBF"  },
    {"\xF4\x90\x80\x80",      L"\xDCF4\xDC90\xDC80\xDC80"  },  // U+110000
    {"\xF5\x80\x80\x80",      L"\xDCF5\xDC80\xDC80\xDC80"  },
    {"\xF8\x88\x80\x80\x80",  L"\xDCF8\xDC88\xDC80\xDC80\xDC80"},
    {"\xE2\x82",              L"\xDCE2\xDC82"              },  // cut off
    {"\xE2\x82z",             L"\xDCE2\xDC82z"             },
    {"\xE2\xE2\x82\xAC",      L"\xDCE2\x20AC"              },  // begins again at once
    {"\x80\xC3\xA9\xFF",      L"\xDC80\x00E9\xDCFF"        },
};
// clang-format on

TEST(NativePath, MalformedSequencesAreEscapedByteByByte)
{
    for (const NameRow& row : kMalformedNames) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        EXPECT_EQ(fromNative(row.bytes), row.text);
        EXPECT_EQ(toNative(row.text), row.bytes);
    }
}

TEST(NativePath, NothingIsNormalised)
{
    EXPECT_EQ(toNative(L"e\x0301"), "e\xCC\x81");
    EXPECT_EQ(fromNative("e\xCC\x81"), L"e\x0301");
    EXPECT_EQ(toNative(L"\x00E9"), "\xC3\xA9");
}

TEST(NativePath, OtherSurrogatesAndHugeNumbersHaveNoBytes)
{
    for (const wchar_t c : {L'\xD800', L'\xDBFF', L'\xDC00', L'\xDC7F', L'\xDD00', L'\xDFFF',
                            L'\x110000', static_cast<wchar_t>(-1)}) {
        EXPECT_EQ(toNative(Text{L'a', c}), std::nullopt) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(NativePath, EmptyStaysEmptyAndZerosPass)
{
    EXPECT_EQ(toNative(L""), "");
    EXPECT_EQ(fromNative(""), L"");
    EXPECT_EQ(fromNative(std::string("a\0b", 3)), Text(L"a\0b", 3));
    EXPECT_EQ(toNative(Text(L"a\0b", 3)), std::string("a\0b", 3));
}

} // namespace
