#ifndef __linux__
#error "for Linux only"
#endif

#include "XeString.h"

#include <gtest/gtest.h>

#include <clocale>
#include <printf.h>

namespace {

// glibc lets a program add a conversion of its own, here "%J". It prints nothing: it counts how
// often a text is expanded and can disturb the expansion.
int g_expansions = 0;
int g_result = 0;
bool g_changesCategory = false;

int expand(FILE*, const printf_info*, const void* const*)
{
    ++g_expansions;
    if (g_changesCategory) {
        std::setlocale(LC_CTYPE, "C");
    }
    return g_result;
}

int takesNoArgument(const printf_info*, std::size_t, int*, int*) { return 0; }

class Passes : public testing::Test {
protected:
    Passes()
    {
        g_expansions = 0;
        g_result = 0;
        g_changesCategory = false;
        register_printf_specifier('J', expand, takesNoArgument);
    }

    ~Passes() override { register_printf_specifier('J', nullptr, nullptr); }
};

// The warning about the unknown conversion is for literals.
const wchar_t* const kWideFormat = L"%J%*d";
const char* const kNarrowFormat = "%J%*d";

// Trial capacities are 1024, 2048, ... 524288; one expansion follows into the exact buffer.
TEST_F(Passes, WideTextIsMeasuredWithDoublingRoomAndPrintedOnce)
{
    const struct {
        int width;
        int expansions;
    } kRows[] = {
        {10, 2},   {1023, 2},    {1024, 3},    {2047, 3},
        {2048, 4}, {524287, 11}, {524288, 10}, {600000, 10},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.width);
        g_expansions = 0;
        _XeString<> text;
        text.format(kWideFormat, row.width, 7);
        EXPECT_EQ(g_expansions, row.expansions);
    }
}

TEST_F(Passes, FailingWideFormatIsTriedWithEveryCapacity)
{
    g_result = -1;
    _XeString<> text = L"before";
    EXPECT_EQ(text.format(kWideFormat, 1, 7), 0);
    EXPECT_EQ(text, L"");
    EXPECT_EQ(g_expansions, 10);
}

TEST_F(Passes, NarrowTextIsMeasuredOnceAndPrintedOnce)
{
    for (const int width : {10, 1024, 600'000}) {
        g_expansions = 0;
        _XeString<char> text;
        EXPECT_EQ(text.format(kNarrowFormat, width, 7), width);
        EXPECT_EQ(g_expansions, 2);
    }
}

// The second pass could not widen the text in the category that the first one left behind.
TEST_F(Passes, EachWidePassSetsTheCharacterType)
{
    g_changesCategory = true;
    _XeString<> text;
    const wchar_t* const format = L"%s%J";
    EXPECT_EQ(text.format(format, "\xC3\xA9"), 1);
    EXPECT_EQ(text, L"\u00E9");
    EXPECT_EQ(g_expansions, 2);
    XeCRT::setCharacterType();
}

} // namespace
