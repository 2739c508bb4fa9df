#include "XeUtcText.h"

#include "ShownText.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gtest/gtest.h>

#include <climits>
#include <locale>
#include <string>

namespace {

using boost::bad_lexical_cast;
using namespace xenon::util;

/// A record with a mark in every field.
tm marked()
{
    tm t{};
    t.tm_year = t.tm_mon = t.tm_mday = t.tm_hour = t.tm_min = t.tm_sec = -7;
    t.tm_wday = t.tm_yday = t.tm_isdst = -7;
    return t;
}

void expectTime(const tm& t, int hour, int minute, int second)
{
    EXPECT_EQ(t.tm_hour, hour);
    EXPECT_EQ(t.tm_min, minute);
    EXPECT_EQ(t.tm_sec, second);
}

void expectDate(const tm& t, int year, int month, int day)
{
    EXPECT_EQ(t.tm_year, year);
    EXPECT_EQ(t.tm_mon, month);
    EXPECT_EQ(t.tm_mday, day);
}

void expectUntouched(const tm& t)
{
    expectDate(t, -7, -7, -7);
    expectTime(t, -7, -7, -7);
}

struct Row {
    const wchar_t* text;
    int fields[3];
};

// clang-format off
constexpr Row kDates[] = {
    // text                tm_year  tm_mon  tm_mday
    {L"2024-03-05",       {  124,      2,     5    }},
    {L"20240305",         {  124,      2,     5    }},
    {L"2024-3-5",         {  124,      2,     5    }},
    {L"2024-+3-+5",       {  124,      2,     5    }},
    {L"+2024-03",         {  124,      2,     0    }},
    {L"2024-00-05",       {  124,      0,     5    }},  // month 0
    {L"2024-99-99",       {  124,     98,    99    }},  // not judged
    {L"2024",             {  124,      0,     0    }},
    {L"202403",           {  124,      2,     0    }},
    {L"2024035",          {  124,      2,     5    }},  // a short last field
    {L"202",              {-1698,      0,     0    }},
    {L"20240305xyz",      {  124,      2,     5    }},  // behind the third field
    {L"0-0",              {-1900,      0,     0    }},
    {L"2147483647-1",     {INT_MAX - 1900, 0, 0    }},
};

constexpr Row kTimes[] = {
    // text                hour minute second
    {L"14:07:09",         { 14,    7,    9 }},
    {L"14:07:09Z",        { 14,    7,    9 }},
    {L"14:07:09+02:00",   { 14,    7,    9 }},  // the offset is not applied
    {L"14:07:09-05",      { 14,    7,    9 }},
    {L"140709",           { 14,    7,    9 }},
    {L"140709Z",          { 14,    7,    9 }},
    {L"140709.5",         { 14,    7,    9 }},  // behind the third field
    {L"14:7",             { 14,    7,    0 }},
    {L"14",               { 14,    0,    0 }},
    {L"1407",             { 14,    7,    0 }},
    {L"14079",            { 14,    7,    9 }},
    {L"99:99:99",         { 99,   99,   99 }},
    {L"Z",                {  0,    0,    0 }},
    {L"+02:00",           {  0,    0,    0 }},
    {L"-",                {  0,    0,    0 }},
};
// clang-format on

TEST(DateFromUtc, ReadsBothForms)
{
    for (const Row& row : kDates) {
        SCOPED_TRACE(shown(row.text));
        tm t = marked();
        date_from_utc_string(row.text, t);
        expectDate(t, row.fields[0], row.fields[1], row.fields[2]);
        expectTime(t, -7, -7, -7);
        EXPECT_EQ(t.tm_isdst, -7);
    }
}

TEST(TimeFromUtc, ReadsBothForms)
{
    for (const Row& row : kTimes) {
        SCOPED_TRACE(shown(row.text));
        tm t = marked();
        time_from_utc_string(row.text, t);
        expectTime(t, row.fields[0], row.fields[1], row.fields[2]);
        expectDate(t, -7, -7, -7);
        EXPECT_EQ(t.tm_isdst, -7);
    }
}

TEST(DateFromUtc, EmptyTextAndMoreThanThreeFieldsChangeNothing)
{
    for (const wchar_t* text : {L"", L"2024-03-05-06", L"---", L"x-y-z-w"}) {
        SCOPED_TRACE(shown(text));
        tm t = marked();
        date_from_utc_string(text, t);
        expectUntouched(t);
    }
}

TEST(TimeFromUtc, EmptyTextAndMoreThanThreeFieldsChangeNothing)
{
    for (const wchar_t* text : {L"", L"14:07:09:10", L":::", L"a:b:c:dZ"}) {
        SCOPED_TRACE(shown(text));
        tm t = marked();
        time_from_utc_string(text, t);
        expectUntouched(t);
    }
}

TEST(DateFromUtc, FieldsThatAreNoNumbersRaiseAndChangeNothing)
{
    constexpr const wchar_t* kTexts[] = {
        L"2024-Mar-05",
        L"2024--05",
        L"2024-03-",
        L"-2024-03",
        L"-",
        L"--",
        L"2024-03-0x",
        L" 2024",
        L"2024-03 -05",
        L"abcd",
        L"2024ab",
        L"202403+",
        L"2024-+-05",
        L"2024-03-\x0665",
        // Beyond what the record holds.
        L"2147483648-1",
        L"99999999999999999999-1",
        L"18446744073709553640-1",
        L"2024-99999999999-1",
    };
    for (const wchar_t* text : kTexts) {
        SCOPED_TRACE(shown(text));
        tm t = marked();
        EXPECT_THROW(date_from_utc_string(text, t), bad_lexical_cast);
        expectUntouched(t);
    }
}

TEST(TimeFromUtc, FieldsThatAreNoNumbersRaiseAndChangeNothing)
{
    constexpr const wchar_t* kTexts[] = {
        L"14:07:09.5",
        L"14:07:",
        L":07",
        L"14::09",
        L":",
        L"ab",
        L"14 07",
        L"1.",
        L"14:0x7",
        L"14:99999999999",
        L"14:2147483648",
        L"14:18446744073709551623",
    };
    for (const wchar_t* text : kTexts) {
        SCOPED_TRACE(shown(text));
        tm t = marked();
        EXPECT_THROW(time_from_utc_string(text, t), bad_lexical_cast);
        expectUntouched(t);
    }
}

/// Digit groups of three, as many languages write them.
class Grouping : public std::numpunct<wchar_t> {
protected:
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(DateFromUtc, TakesNoDigitGroupsWhateverTheLocale)
{
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    tm t = marked();
    EXPECT_THROW(date_from_utc_string(L"2.024-03-05", t), bad_lexical_cast);
    std::locale::global(before);
}

TEST(DateTimeFromUtc, JoinsDateAndTime)
{
    for (const wchar_t* text : {L"2024-03-05T14:07:09Z", L"20240305T140709",
                                L"2024-03-05T14:07:09+02:00", L"2024-03-05T14:07:09TX"}) {
        SCOPED_TRACE(shown(text));
        const tm t = date_time_from_utc_string(text);
        expectDate(t, 124, 2, 5);
        expectTime(t, 14, 7, 9);
        EXPECT_EQ(t.tm_wday, 0);
        EXPECT_EQ(t.tm_yday, 0);
        EXPECT_EQ(t.tm_isdst, 0);
    }
}

TEST(DateTimeFromUtc, LeavesMissingPartsAtZero)
{
    struct {
        const wchar_t* text;
        int date[3];
        int hour;
    } constexpr kRows[] = {
        {L"", {0, 0, 0}, 0},
        {L"T", {0, 0, 0}, 0},
        {L"2024-03-05", {124, 2, 5}, 0},
        {L"2024-03-05T", {124, 2, 5}, 0},
        {L"T14", {0, 0, 0}, 14},
        {L"1-2-3-4T14", {0, 0, 0}, 14},
        {L"2024-03-05TT14", {124, 2, 5}, 0},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(shown(row.text));
        const tm t = date_time_from_utc_string(row.text);
        expectDate(t, row.date[0], row.date[1], row.date[2]);
        EXPECT_EQ(t.tm_hour, row.hour);
    }
}

TEST(DateTimeFromUtc, RaisesForEitherPart)
{
    EXPECT_THROW(date_time_from_utc_string(L"2024-xx-05T14:07:09"), bad_lexical_cast);
    EXPECT_THROW(date_time_from_utc_string(L"2024-03-05T14:07:09.5"), bad_lexical_cast);
    EXPECT_THROW(date_time_from_utc_string(L"2024-03-05t14:07:09"), bad_lexical_cast);
}

TEST(UtcFromDateTime, WritesTheExtendedFormWithoutZone)
{
    tm t{};
    t.tm_year = 124;
    t.tm_mon = 2;
    t.tm_mday = 5;
    t.tm_hour = 14;
    t.tm_min = 7;
    t.tm_sec = 9;
    EXPECT_EQ(utc_string_from_date_time(t), L"2024-03-05T14:07:09");
}

TEST(UtcFromDateTime, ComesBackThroughTheReader)
{
    for (int i = 0; i < 5000; ++i) {
        tm t{};
        t.tm_year = i * 7 % 8100 - 900; // the years 1000 to 9099
        t.tm_mon = i % 12;
        t.tm_mday = i % 31 + 1;
        t.tm_hour = i % 24;
        t.tm_min = i * 11 % 60;
        t.tm_sec = i * 13 % 61;
        const std::wstring text = utc_string_from_date_time(t);
        const tm back = date_time_from_utc_string(text);
        SCOPED_TRACE(shown(text));
        expectDate(back, t.tm_year, t.tm_mon, t.tm_mday);
        expectTime(back, t.tm_hour, t.tm_min, t.tm_sec);
    }
}

} // namespace
