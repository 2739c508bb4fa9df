#include "XeString.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <unordered_set>

namespace {

using Tokens = std::vector<_XeString<wchar_t>>;

int wideFormat(_XeString<wchar_t>& out, const wchar_t* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written = out.va_format(fmt, args);
    va_end(args);
    return written;
}

int narrowFormat(_XeString<char>& out, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written = out.va_format(fmt, args);
    va_end(args);
    return written;
}

// ---- the type ----

static_assert(std::is_base_of_v<std::wstring, _XeString<>>);
static_assert(std::is_base_of_v<std::wstring, _XeString<wchar_t>>);
static_assert(std::is_base_of_v<std::string, _XeString<char>>);
static_assert(sizeof(_XeString<wchar_t>) == sizeof(std::wstring));
static_assert(sizeof(_XeString<char>) == sizeof(std::string));
static_assert(std::is_nothrow_move_constructible_v<_XeString<wchar_t>>);
static_assert(std::is_nothrow_constructible_v<_XeString<char>, std::string&&>);

TEST(XeString, TakesWhateverTheStandardStringTakes)
{
    const std::wstring standard = L"standard";
    EXPECT_EQ(_XeString<>(), L"");
    EXPECT_EQ(_XeString<>(L"text"), L"text");
    EXPECT_EQ(_XeString<>(L"text", 2), L"te");
    EXPECT_EQ(_XeString<>(3, L'x'), L"xxx");
    EXPECT_EQ(_XeString<>(standard), L"standard");
    EXPECT_EQ(_XeString<>(standard.begin(), standard.begin() + 5), L"stand");
    EXPECT_EQ((_XeString<>{L'a', L'b'}), L"ab");
    EXPECT_EQ(_XeString<char>("h\xC3\xA9"), "h\xC3\xA9");
}

TEST(XeString, IsAssignedFromStandardStringsPointersAndCharacters)
{
    _XeString<> text;
    text = std::wstring(L"standard");
    EXPECT_EQ(text, L"standard");
    text = L"pointer";
    EXPECT_EQ(text, L"pointer");
    text = L'c';
    EXPECT_EQ(text, L"c");
    text = _XeString<>(L"own") + L" sum";
    EXPECT_EQ(text, L"own sum");
    text = {};
    EXPECT_EQ(text, L"");
}

TEST(XeString, MovesAStandardStringInWithoutCopyingItsCharacters)
{
    std::wstring source(1000, L'x');
    const wchar_t* const characters = source.data();
    _XeString<> text(std::move(source));
    EXPECT_EQ(text.data(), characters);
    const std::wstring back(std::move(text));
    EXPECT_EQ(back.data(), characters);
}

TEST(XeString, HashesLikeTheStandardString)
{
    EXPECT_EQ(std::hash<_XeString<>>()(L"key"), std::hash<std::wstring>()(L"key"));
    const std::unordered_set<_XeString<char>> keys = {"one", "two"};
    EXPECT_EQ(keys.count("two"), 1u);
}

// ---- format ----

TEST(Format, WideTakesWideAndUtf8Text)
{
    _XeString<> text;
    EXPECT_EQ(text.format(L"%d %ls %s %.3f", -5, L"\u00E9\U0001F3B5", "\xC3\xA9", 0.5), 13);
    EXPECT_EQ(text, L"-5 \u00E9\U0001F3B5 \u00E9 0.500");
    EXPECT_EQ(wideFormat(text, L"%05u|%lc", 42u, static_cast<wint_t>(L'\u20AC')), 7);
    EXPECT_EQ(text, L"00042|\u20AC");
}

TEST(Format, NarrowTakesWideTextAsUtf8)
{
    _XeString<char> text;
    EXPECT_EQ(narrowFormat(text, "%d %ls %s", 7, L"\u20AC", "\xC3\xA9"), 8);
    EXPECT_EQ(text, "7 \xE2\x82\xAC \xC3\xA9");
    EXPECT_EQ(text.format("%x", 255u), 2);
    EXPECT_EQ(text, "ff");
}

TEST(Format, EmptyExpansionEmptiesTheStringAndGivesZero)
{
    _XeString<> wide = L"before";
    EXPECT_EQ(wide.format(L"%ls", L""), 0);
    EXPECT_EQ(wide, L"");
    _XeString<char> narrow = "before";
    EXPECT_EQ(narrowFormat(narrow, "%s", ""), 0);
    EXPECT_EQ(narrow, "");
}

// Bytes that are no UTF-8 cannot be widened, a surrogate cannot be narrowed.
TEST(Format, FailingFormatEmptiesTheStringAndGivesZero)
{
    _XeString<> wide = L"before";
    EXPECT_EQ(wide.format(L"%s", "\xFF"), 0);
    EXPECT_EQ(wide, L"");
    _XeString<char> narrow = "before";
    EXPECT_EQ(narrowFormat(narrow, "%ls", L"a\xD800"), 0);
    EXPECT_EQ(narrow, "");
}

TEST(Format, WideExpansionEndsBelow524288Characters)
{
    const struct {
        int width;
        int result;
    } kRows[] = {
        {1, 1},           {1022, 1022},     {1023, 1023}, {1024, 1024},
        {1025, 1025},     {2047, 2047},     {2048, 2048}, {262143, 262143},
        {262144, 262144}, {524287, 524287}, {524288, 0},  {600000, 0},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.width);
        _XeString<> text = L"before";
        EXPECT_EQ(text.format(L"%*d", row.width, 7), row.result);
        EXPECT_EQ(text.size(), static_cast<std::size_t>(row.result));
        EXPECT_TRUE(text.empty() || text.back() == L'7');
    }
}

TEST(Format, NarrowExpansionHasNoUpperBound)
{
    _XeString<char> text;
    EXPECT_EQ(narrowFormat(text, "%*d", 2'000'000, 7), 2'000'000);
    EXPECT_EQ(text.size(), 2'000'000u);
    EXPECT_EQ(text.back(), '7');
}

TEST(Format, LeavesNoSlackCapacity)
{
    _XeString<> text(5000, L'x');
    text.format(L"%ls", L"a text of some length");
    EXPECT_LT(text.capacity(), 2 * text.size());
}

TEST(Format, TakesArgumentsAndFormatOutOfTheStringItself)
{
    _XeString<> text = L"[%ls]";
    EXPECT_EQ(text.format(text.c_str(), text.c_str()), 7);
    EXPECT_EQ(text, L"[[%ls]]");
    _XeString<char> narrow = "ab";
    EXPECT_EQ(narrowFormat(narrow, "%s%s", narrow.c_str(), narrow.c_str()), 4);
    EXPECT_EQ(narrow, "abab");
}

TEST(Format, KeepsZeroCharactersInside)
{
    _XeString<> wide;
    EXPECT_EQ(wide.format(L"a%lcb", static_cast<wint_t>(0)), 3);
    EXPECT_EQ(wide, _XeString<>(L"a\0b", 3));
    _XeString<char> narrow;
    EXPECT_EQ(narrowFormat(narrow, "a%cb", 0), 3);
    EXPECT_EQ(narrow, _XeString<char>("a\0b", 3));
}

// A host may change the category at any time; in "C" neither of these can be converted.
TEST(Format, SetsTheCharacterTypeOnEveryCall)
{
    XeCRT::setCharacterType();
    const std::string utf8 = std::setlocale(LC_CTYPE, nullptr);

    std::setlocale(LC_CTYPE, "C");
    _XeString<> wide;
    EXPECT_EQ(wide.format(L"%s", "\xC3\xA9"), 1);
    EXPECT_EQ(wide, L"\u00E9");
    EXPECT_EQ(std::setlocale(LC_CTYPE, nullptr), utf8);

    std::setlocale(LC_CTYPE, "C");
    _XeString<char> narrow;
    EXPECT_EQ(narrowFormat(narrow, "%ls", L"\u00E9"), 2);
    EXPECT_EQ(narrow, "\xC3\xA9");
    EXPECT_EQ(std::setlocale(LC_CTYPE, nullptr), utf8);
}

// ---- the printf family ----

int wideList(_XeString<wchar_t>& out, const _XeString<wchar_t>* stringFmt, const wchar_t* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written =
        stringFmt != nullptr ? XeVSprintf(out, *stringFmt, args) : XeVSprintf(out, fmt, args);
    va_end(args);
    return written;
}

int narrowList(_XeString<char>& out, const _XeString<char>* stringFmt, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written =
        stringFmt != nullptr ? XeVSprintfA(out, *stringFmt, args) : XeVSprintfA(out, fmt, args);
    va_end(args);
    return written;
}

TEST(PrintfFamily, EveryWideFormFormatsIntoItsTarget)
{
    _XeString<> text;
    EXPECT_EQ(XeSprintf(text, L"%d-%ls", 1, L"a"), 3);
    EXPECT_EQ(text, L"1-a");
    EXPECT_EQ(wideList(text, nullptr, L"%d-%ls", 22, L"b"), 4);
    EXPECT_EQ(text, L"22-b");
    const _XeString<> format = L"%d+%ls";
    EXPECT_EQ(wideList(text, &format, L"", 333, L"c"), 5);
    EXPECT_EQ(text, L"333+c");
    EXPECT_EQ(XeSprintf(text, L"%ls", L""), 0);
    EXPECT_EQ(text, L"");
}

TEST(PrintfFamily, EveryNarrowFormFormatsIntoItsTarget)
{
    _XeString<char> text;
    EXPECT_EQ(XeSprintfA(text, "%d-%s", 1, "a"), 3);
    EXPECT_EQ(text, "1-a");
    EXPECT_EQ(narrowList(text, nullptr, "%d-%s", 22, "b"), 4);
    EXPECT_EQ(text, "22-b");
    const _XeString<char> format = "%d+%s";
    EXPECT_EQ(narrowList(text, &format, "", 333, "c"), 5);
    EXPECT_EQ(text, "333+c");
    EXPECT_EQ(XeSprintfA(text, "%s", ""), 0);
    EXPECT_EQ(text, "");
}

// ---- tokenize and trim ----

TEST(Tokenize, SplitsAtRunsOfAnyDelimiter)
{
    const struct {
        const wchar_t* text;
        const wchar_t* delimiters;
        Tokens tokens;
    } kRows[] = {
        {L",,a,,b,,", L",", {L"a", L"b"}},
        {L"a", L",", {L"a"}},
        {L"a,b", L",", {L"a", L"b"}},
        {L" one;two, three ", L" ,;", {L"one", L"two", L"three"}},
        {L"\u00E9|\U0001F3B5", L"|", {L"\u00E9", L"\U0001F3B5"}},
        {L"no delimiters", L"", {L"no delimiters"}},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        Tokens out = {L"replaced"};
        _XeString<>(row.text).tokenize(out, row.delimiters);
        EXPECT_EQ(out, row.tokens);
    }
}

TEST(Tokenize, LeavesTheOutputAloneWhenThereIsNoToken)
{
    for (const wchar_t* text : {L"", L",", L",,,"}) {
        Tokens out = {L"kept"};
        _XeString<>(text).tokenize(out, L",");
        EXPECT_EQ(out, Tokens{L"kept"});
    }
}

TEST(Tokenize, MaySplitAnElementOfItsOwnOutput)
{
    Tokens out = {L"a b", L"other"};
    out[0].tokenize(out, L" ");
    EXPECT_EQ(out, (Tokens{L"a", L"b"}));
}

TEST(Trim, RemovesTheSetFromBothEnds)
{
    const struct {
        const wchar_t* text;
        const wchar_t* chars;
        const wchar_t* trimmed;
    } kRows[] = {
        {L"\t a b \t", L" \t", L"a b"}, {L"a b", L" ", L"a b"}, {L"  a", L" ", L"a"},
        {L"a  ", L" ", L"a"},           {L"  ", L" ", L""},     {L"", L" ", L""},
        {L" a ", L"", L" a "},          {L"xay", L"xy", L"a"},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        _XeString<> text = row.text;
        text.trim(row.chars);
        EXPECT_EQ(text, row.trimmed);
    }
}

TEST(Trim, NullSetChangesNothing)
{
    _XeString<> text = L" a ";
    text.trim(nullptr);
    EXPECT_EQ(text, L" a ");
}

// ---- GUID text ----

static_assert(sizeof(_GUID) == 16);
static_assert(offsetof(_GUID, Data2) == 4 && offsetof(_GUID, Data3) == 6);
static_assert(offsetof(_GUID, Data4) == 8);

constexpr _GUID kGuid = {
    0x12345678, 0x9ABC, 0xDEF0, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

TEST(GuidText, IsLowerCaseWithoutBraces)
{
    const struct {
        _GUID guid;
        const wchar_t* wide;
        const char* narrow;
    } kRows[] = {
        {kGuid, L"12345678-9abc-def0-0123-456789abcdef", "12345678-9abc-def0-0123-456789abcdef"},
        {{0x0A1B2C3D, 0x4E5F, 0x6071, {0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7, 0xE8, 0xF9}},
         L"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9",
         "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"},
        {{}, L"00000000-0000-0000-0000-000000000000", "00000000-0000-0000-0000-000000000000"},
        {{0xFFFFFFFF, 0xFFFF, 0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
         L"ffffffff-ffff-ffff-ffff-ffffffffffff",
         "ffffffff-ffff-ffff-ffff-ffffffffffff"},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.narrow);
        _XeString<> wide;
        EXPECT_EQ(XeGuidToString(wide, row.guid), 36);
        EXPECT_EQ(wide, row.wide);
        EXPECT_EQ(XeGuidToString(row.guid), row.wide);
        _XeString<char> narrow;
        EXPECT_EQ(XeGuidToStringA(narrow, row.guid), 36);
        EXPECT_EQ(narrow, row.narrow);
        EXPECT_EQ(XeGuidToStringA(row.guid), row.narrow);
    }
}

TEST(GuidText, IsReadBack)
{
    const struct {
        const char* text;
        _GUID guid;
    } kRows[] = {
        {"12345678-9abc-def0-0123-456789abcdef", kGuid},
        {"12345678-9ABC-DEF0-0123-456789ABCDEF", kGuid},
        {"12345678-9abc-def0-0123-456789abcdef and more", kGuid},
        // The digit counts are maxima: the last byte is 0x0e here.
        {"12345678-9abc-def0-0123-456789abcde",
         {0x12345678, 0x9ABC, 0xDEF0, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0x0E}}},
        {"1-2-3-4-050607080900", {1, 2, 3, {0, 4, 5, 6, 7, 8, 9, 0}}},
        // A sign is a digit of the group; what it makes of the number is cut to the field.
        {"1--2-3-4-050607080900", {1, 0xFFFE, 3, {0, 4, 5, 6, 7, 8, 9, 0}}},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.text);
        _GUID guid{};
        EXPECT_TRUE(XeStringIsGuidA(row.text));
        XeGuidFromStringA(row.text, guid);
        EXPECT_EQ(guid, row.guid);

        const std::string text = row.text;
        const _XeString<> wide(text.begin(), text.end());
        guid = {};
        EXPECT_TRUE(XeStringIsGuid(wide));
        XeGuidFromString(wide, guid);
        EXPECT_EQ(guid, row.guid);
    }
}

TEST(GuidText, NeedsAllTenNumbers)
{
    for (const char* text :
         {"", "12345678", "12345678-9abc-def0-0123", "12345678-9abc-def0-0123-",
          "12345678-9abc-def0-0123-456789abcd", "{12345678-9abc-def0-0123-456789abcdef}",
          "123456789-abc-def0-0123-456789abcdef", "12345678-9abc-def0-0123-456789abcdxx",
          "12345678 9abc def0 0123 456789abcdef", "g2345678-9abc-def0-0123-456789abcdef"}) {
        SCOPED_TRACE(text);
        const std::string narrow = text;
        EXPECT_FALSE(XeStringIsGuidA(narrow));
        EXPECT_FALSE(XeStringIsGuid(_XeString<>(narrow.begin(), narrow.end())));
    }
}

} // namespace
