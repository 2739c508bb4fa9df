#include "XeStringUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <vector>

namespace {

using State = std::mbstate_t;

std::wstring toWide(const std::string& utf8, int capacity = 100)
{
    std::vector<wchar_t> buffer(static_cast<std::size_t>(capacity) + 2, L'#');
    EXPECT_EQ(StdConvert(buffer.data(), capacity, utf8.data(), static_cast<int>(utf8.size())),
              buffer.data());
    EXPECT_EQ(buffer.back(), L'#');
    return buffer.data();
}

std::string toNarrow(const std::wstring& wide, int capacity = 100)
{
    std::vector<char> buffer(static_cast<std::size_t>(capacity) + 2, '#');
    EXPECT_EQ(StdConvert(buffer.data(), capacity, wide.data(), static_cast<int>(wide.size())),
              buffer.data());
    EXPECT_EQ(buffer.back(), '#');
    return buffer.data();
}

/// Replaces the global locale for one test.
class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale) : m_before(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(m_before); }

    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    const std::locale m_before;
};

/// Reads every byte as one character of ISO 8859-1, except '!' at which it stops with an error.
class Latin1 : public xenon::Utf8Facet {
protected:
    result do_in(State&, const char* from, const char* end, const char*& next, wchar_t* to,
                 wchar_t* toEnd, wchar_t*& toNext) const override
    {
        while (from != end && to != toEnd && *from != '!') {
            *to++ = static_cast<unsigned char>(*from++);
        }
        next = from;
        toNext = to;
        return from == end ? ok : *from == '!' ? error : partial;
    }
};

std::locale latin1() { return std::locale(std::locale::classic(), new Latin1); }

// ---- facet and locale ----

TEST(Facet, HasVariableWidthOfUpToSixBytesAndNoState)
{
    const xenon::Utf8Facet& facet = xenon::get_facet();
    EXPECT_EQ(facet.encoding(), 0);
    EXPECT_FALSE(facet.always_noconv());
    EXPECT_EQ(facet.max_length(), 6);

    State state{};
    char buffer[4] = {};
    char* next = nullptr;
    EXPECT_EQ(facet.unshift(state, buffer, buffer + 4, next), std::codecvt_base::ok);
    EXPECT_EQ(next, buffer);
}

TEST(Facet, IsOneAndOutlivesTheLocalesThatHoldIt)
{
    const xenon::Utf8Facet* const facet = &xenon::get_facet();
    {
        const std::locale holder(std::locale::classic(), const_cast<xenon::Utf8Facet*>(facet));
        EXPECT_EQ(&std::use_facet<xenon::Utf8Facet>(holder), facet);
    }
    EXPECT_EQ(&xenon::get_facet(), facet);
    EXPECT_EQ(facet->max_length(), 6);
}

TEST(Locale, HoldsTheFacetAndIsAlwaysTheSame)
{
    const std::locale& locale = xenon::get_locale();
    EXPECT_EQ(&std::use_facet<xenon::Utf8Facet>(locale), &xenon::get_facet());
    EXPECT_EQ(&xenon::get_locale(), &locale);
}

struct Comma : std::numpunct<wchar_t> {
    wchar_t do_decimal_point() const override { return L','; }
};

struct Apostrophe : std::numpunct<wchar_t> {
    wchar_t do_decimal_point() const override { return L'\''; }
};

wchar_t decimalPoint(const std::locale& locale)
{
    return std::use_facet<std::numpunct<wchar_t>>(locale).decimal_point();
}

// In a process of its own, because the first use may lie behind other tests in this one.
TEST(Locale, KeepsTheGlobalLocaleOfItsFirstUse)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto firstUseThenChange = [] {
        std::locale::global(std::locale(std::locale::classic(), new Comma));
        if (decimalPoint(xenon::get_locale()) != L',') {
            std::exit(1);
        }
        std::locale::global(std::locale(std::locale::classic(), new Apostrophe));
        std::exit(decimalPoint(xenon::get_locale()) == L',' ? 0 : 2);
    };
    EXPECT_EXIT(firstUseThenChange(), testing::ExitedWithCode(0), "");
}

// ---- StdConvert ----

TEST(StdConvert, ConvertsBothWays)
{
    const struct {
        const char* utf8;
        const wchar_t* wide;
    } kRows[] = {
        {"plain", L"plain"},
        {"h\xC3\xA9llo", L"h\u00E9llo"},
        {"\xE2\x82\xAC", L"\u20AC"},
        {"\xF0\x9F\x8E\xB5", L"\U0001F3B5"},
        {"\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         L"\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"},
        // The facet does not judge: surrogates and numbers beyond Unicode pass.
        {"\xED\xB2\x80", L"\xDC80"},
        {"\xF4\x90\x80\x80", L"\x110000"},
        {"\xFD\xBF\xBF\xBF\xBF\xBF", L"\x7FFFFFFF"},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.utf8));
        EXPECT_EQ(toWide(row.utf8), row.wide);
        EXPECT_EQ(toNarrow(row.wide), row.utf8);
    }
}

TEST(StdConvert, KeepsZerosInsideTheSource)
{
    wchar_t wide[4] = {9, 9, 9, 9};
    StdConvert(wide, 3, "a\0b", 3);
    EXPECT_EQ(std::wstring(wide, 4), std::wstring(L"a\0b\0", 4));
    char narrow[4] = {9, 9, 9, 9};
    StdConvert(narrow, 3, L"a\0b", 3);
    EXPECT_EQ(std::string(narrow, 4), std::string("a\0b\0", 4));
}

TEST(StdConvert, EmptyOrNegativeSourceGivesAnEmptyText)
{
    for (const int count : {0, -1}) {
        wchar_t wide[2] = {L'x', L'y'};
        EXPECT_EQ(StdConvert(wide, 1, "a", count), wide);
        EXPECT_EQ(std::wstring(wide, 2), std::wstring(L"\0y", 2));
        char narrow[2] = {'x', 'y'};
        EXPECT_EQ(StdConvert(narrow, 1, L"a", count), narrow);
        EXPECT_EQ(std::string(narrow, 2), std::string("\0y", 2));
    }
}

TEST(StdConvert, FullWideDestinationKeepsWhatFits)
{
    wchar_t buffer[5] = {L'#', L'#', L'#', L'#', L'#'};
    StdConvert(buffer, 3,
               "ab\xC3\xA9"
               "de",
               6);
    EXPECT_EQ(std::wstring(buffer, 5), std::wstring(L"ab\u00E9\0#", 5));
}

// The text is good; that it does not fit is no reason to ask another conversion.
TEST(StdConvert, FullWideDestinationIsNotConvertedAgain)
{
    const GlobalLocale global(latin1());
    EXPECT_EQ(toWide("\xC3\xA9x", 1), L"\u00E9");
    EXPECT_EQ(toWide("\xC3\xA9x", 0), L"");
}

TEST(StdConvert, FullNarrowDestinationKeepsWholeCharacters)
{
    char buffer[5] = {'#', '#', '#', '#', '#'};
    StdConvert(buffer, 3, L"a\u20ACb", 3);
    EXPECT_EQ(std::string(buffer, 2), std::string("a\0", 2));
    EXPECT_EQ(buffer[4], '#');
    EXPECT_EQ(toNarrow(L"\u20AC", 3), "\xE2\x82\xAC");
    EXPECT_EQ(toNarrow(L"\u20AC", 2), "");
}

TEST(StdConvert, NegativeDestinationTakesTheTerminatorOnly)
{
    wchar_t wide[2] = {L'x', L'y'};
    StdConvert(wide, -1, "ab", 2);
    EXPECT_EQ(std::wstring(wide, 2), std::wstring(L"\0y", 2));
    char narrow[2] = {'x', 'y'};
    StdConvert(narrow, -1, L"ab", 2);
    EXPECT_EQ(std::string(narrow, 2), std::string("\0y", 2));
}

TEST(StdConvert, TextThatIsNotUtf8IsReadInTheGlobalLocale)
{
    const struct {
        const char* source;
        const wchar_t* wide;
    } kRows[] = {
        {"caf\xE9", L"caf\u00E9"},               // cut off at the end
        {"caf\xE9s", L"caf\u00E9s"},             // not a continuation
        {"\x80", L"\u0080"},                     // no lead byte
        {"\xFF", L"\u00FF"},                     // never a lead byte
        {"\xC3\xA9\xFF", L"\u00C3\u00A9\u00FF"}, // from the start: the good part too
        {"ab\xFF"
         "cd!ef",
         L"ab\u00FF"
         L"cd"},                       // kept up to where the second one stops
        {"ok!\xC3\xA9", L"ok!\u00E9"}, // good UTF-8 never gets there
    };
    const GlobalLocale global(latin1());
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.source));
        EXPECT_EQ(toWide(row.source), row.wide);
    }
}

TEST(StdConvert, SecondAttemptHasTheSameLimit)
{
    const GlobalLocale global(latin1());
    EXPECT_EQ(toWide("\xFF"
                     "bcd",
                     2),
              L"\u00FF"
              L"b");
}

TEST(StdConvert, SecondAttemptStartsBeforeTheAsciiThatWasGood)
{
    const GlobalLocale global(latin1());
    EXPECT_EQ(toWide("0123!5678901234567890123456789\xFF"), L"0123");
}

// Blocks of ASCII are copied without the facet: the first other character may stand anywhere.
TEST(StdConvert, MixesAsciiAndOtherCharactersAtEveryPosition)
{
    for (std::size_t position = 0; position <= 50; ++position) {
        SCOPED_TRACE(position);
        const std::string before(position, 'a');
        const std::wstring wideBefore(position, L'a');
        for (const std::size_t after : {0, 1, 15, 16, 17}) {
            const std::string narrow = before + "\xC2\x80" + std::string(after, 'b');
            const std::wstring wide = wideBefore + L"\u0080" + std::wstring(after, L'b');
            EXPECT_EQ(toWide(narrow), wide);
            EXPECT_EQ(toNarrow(wide), narrow);
        }
    }
}

TEST(StdConvert, LimitsAsciiAtEveryLength)
{
    const std::string narrow(50, 'a');
    const std::wstring wide(50, L'a');
    for (int capacity = 0; capacity <= 50; ++capacity) {
        SCOPED_TRACE(capacity);
        const auto length = static_cast<std::size_t>(capacity);
        EXPECT_EQ(toWide(narrow, capacity), wide.substr(0, length));
        EXPECT_EQ(toNarrow(wide, capacity), narrow.substr(0, length));
    }
}

// The global locale's own conversion stops at the first byte that it cannot read.
TEST(StdConvert, ClassicGlobalLocaleKeepsTheTextBeforeTheBadByte)
{
    const GlobalLocale global(std::locale::classic());
    EXPECT_EQ(toWide("plain\xFF"
                     "rest")
                  .substr(0, 5),
              L"plain");
}

// ---- xeassign ----

template <typename T>
class AssignSame : public testing::Test {
protected:
    static std::basic_string<T> text(const char* ascii) { return {ascii, ascii + strlen(ascii)}; }
};

using CharacterTypes = testing::Types<wchar_t, char>;
TYPED_TEST_SUITE(AssignSame, CharacterTypes, );

TYPED_TEST(AssignSame, NullEmptiesTheString)
{
    auto s = this->text("before");
    xeassign(s, static_cast<const TypeParam*>(nullptr));
    EXPECT_EQ(s, this->text(""));
}

TYPED_TEST(AssignSame, ForeignPointerIsCopied)
{
    auto s = this->text("before");
    const auto source = this->text("a text that is longer than any short-string buffer");
    xeassign(s, source.c_str());
    EXPECT_EQ(s, source);
    EXPECT_NE(s.data(), source.data());
}

TYPED_TEST(AssignSame, PointerIntoTheStringLeavesTheTail)
{
    for (const char* whole : {"abc", "a text that is longer than any short-string buffer"}) {
        const auto before = this->text(whole);
        for (const std::size_t offset : {std::size_t{0}, std::size_t{2}, before.size()}) {
            SCOPED_TRACE(offset);
            auto s = before;
            xeassign(s, s.c_str() + offset);
            EXPECT_EQ(s, before.substr(offset));
        }
    }
}

TEST(AssignConverted, Utf8BecomesWide)
{
    std::wstring s = L"before";
    xeassign(s, "h\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5");
    EXPECT_EQ(s, L"h\u00E9\u20AC\U0001F3B5");
    EXPECT_EQ(s.size(), 4u);
}

TEST(AssignConverted, WideBecomesUtf8)
{
    std::string s = "before";
    xeassign(s, L"h\u00E9\u20AC\U0001F3B5");
    EXPECT_EQ(s, "h\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5");
    EXPECT_EQ(s.size(), 10u);
}

TEST(AssignConverted, NullOrEmptySourceEmptiesTheString)
{
    for (const char* source : {static_cast<const char*>(nullptr), ""}) {
        std::wstring s = L"before";
        xeassign(s, source);
        EXPECT_EQ(s, L"");
    }
    for (const wchar_t* source : {static_cast<const wchar_t*>(nullptr), L""}) {
        std::string s = "before";
        xeassign(s, source);
        EXPECT_EQ(s, "");
    }
}

// Two bytes that stand for zero.
TEST(AssignConverted, WideResultEndsAtItsFirstZero)
{
    std::wstring s;
    xeassign(s, "ab\xC0\x80"
                "cd");
    EXPECT_EQ(s, L"ab");
    EXPECT_EQ(s.size(), 2u);
}

TEST(AssignConverted, TextThatIsNotUtf8IsReadInTheGlobalLocale)
{
    const GlobalLocale global(latin1());
    std::wstring s;
    xeassign(s, "caf\xE9");
    EXPECT_EQ(s, L"caf\u00E9");
}

// Room is made for four bytes a character and four more; six-byte characters can exceed it.
TEST(AssignConverted, NarrowResultHasRoomForFourBytesACharacterAndFourMore)
{
    const std::string sixBytes = "\xFD\xBF\xBF\xBF\xBF\xBF";
    std::string s;
    xeassign(s, L"\x7FFFFFFF\x7FFFFFFF");
    EXPECT_EQ(s, sixBytes + sixBytes);
    xeassign(s, L"\x7FFFFFFF\x7FFFFFFF\x7FFFFFFF");
    EXPECT_EQ(s, sixBytes + sixBytes);
    // 25 bytes, one more than there is room for
    xeassign(s, L"\x3FFFFFF\x3FFFFFF\x3FFFFFF\x3FFFFFF\x3FFFFFF");
    EXPECT_EQ(s.size(), 20u);
    xeassign(s, std::wstring(50, L'\U0010FFFF').c_str());
    EXPECT_EQ(s.size(), 200u);
}

TEST(AssignConverted, LongTextSurvivesTheRoundTrip)
{
    std::wstring wide;
    for (int i = 0; i < 10'000; ++i) {
        wide += L"a\u00E9\u20AC\U0001F3B5";
    }
    std::string narrow;
    xeassign(narrow, wide.c_str());
    EXPECT_EQ(narrow.size(), 100'000u);
    std::wstring back;
    xeassign(back, narrow.c_str());
    EXPECT_EQ(back, wide);
}

// ---- util::utf8 ----

TEST(Utf8Append, WritesOneToFourBytes)
{
    const struct {
        std::uint32_t codePoint;
        const char* bytes;
        std::size_t count;
    } kRows[] = {
        {0x00, "\0", 1},
        {0x7F, "\x7F", 1},
        {0x80, "\xC2\x80", 2},
        {0x7FF, "\xDF\xBF", 2},
        {0x800, "\xE0\xA0\x80", 3},
        {0xD7FF, "\xED\x9F\xBF", 3},
        {0xE000, "\xEE\x80\x80", 3},
        {0xFFFF, "\xEF\xBF\xBF", 3},
        {0x10000, "\xF0\x90\x80\x80", 4},
        {0x10FFFF, "\xF4\x8F\xBF\xBF", 4},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.codePoint);
        std::string out = ">";
        util::utf8::append(row.codePoint, std::back_inserter(out));
        EXPECT_EQ(out, ">" + std::string(row.bytes, row.count));
    }
}

TEST(Utf8Append, ReturnsTheIteratorBehindTheLastByte)
{
    char buffer[4] = {};
    EXPECT_EQ(util::utf8::append(0x20AC, buffer), buffer + 3);
}

TEST(Utf8Append, AgreesWithTheFacetOnEveryScalarValue)
{
    for (std::uint32_t codePoint = 1; codePoint < 0x110000; ++codePoint) {
        if (codePoint == 0xD800) {
            codePoint = 0xE000;
        }
        std::string appended;
        util::utf8::append(codePoint, std::back_inserter(appended));
        const wchar_t wide = static_cast<wchar_t>(codePoint);
        char converted[7];
        ASSERT_EQ(appended, StdConvert(converted, 6, &wide, 1)) << std::hex << codePoint;
    }
}

TEST(Utf8Append, ThrowsForWhatIsNoScalarValue)
{
    for (const std::uint32_t codePoint :
         {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(codePoint);
        std::string out = "kept";
        try {
            util::utf8::append(codePoint, std::back_inserter(out));
            ADD_FAILURE() << "nothing was thrown";
        } catch (const util::utf8::invalid_code_point& error) {
            EXPECT_STREQ(error.what(), "Invalid code point");
            EXPECT_EQ(error.code_point(), codePoint);
        }
        EXPECT_EQ(out, "kept");
    }
}

static_assert(std::is_base_of_v<std::exception, util::utf8::exception>);
static_assert(std::is_base_of_v<util::utf8::exception, util::utf8::invalid_code_point>);

} // namespace
