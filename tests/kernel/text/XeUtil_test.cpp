#include "XeUtil.h"

#include "LocaleGuard.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <thread>

namespace {

using xenon::util::doubleToString;

template <class Integer>
struct Read {
    Integer value;
    std::ptrdiff_t length;

    friend bool operator==(const Read&, const Read&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Read& read)
    {
        return out << read.value << " in " << read.length << " characters";
    }
};

template <class Integer>
Read<Integer> readInteger(const _XeString<wchar_t>& text)
{
    Integer value = 99;
    const auto end = xenon::util::atoi(text.begin(), text.end(), value);
    return {value, end - text.begin()};
}

Read<double> readDecimal(const _XeString<wchar_t>& text)
{
    double value = 99;
    const auto end = xenon::util::atof(text.begin(), text.end(), value);
    return {value, end - text.begin()};
}

using Signed = Read<long long>;
using Decimal = Read<double>;

TEST(Atoi, SkipsWhiteSpaceOnBothSides)
{
    EXPECT_EQ(readInteger<long long>(L"  -42  "), (Signed{-42, 7}));
    EXPECT_EQ(readInteger<long long>(L"\t\n\v\f\r 7\n"), (Signed{7, 8}));
}

// White space is what the global locale calls so: the classic one knows no em space.
TEST(Atoi, WhiteSpaceIsTheLocales)
{
    EXPECT_EQ(readInteger<long long>(L"7\u2003"), (Signed{7, 1}));
    const GlobalLocale utf8(std::locale("C.UTF-8"));
    EXPECT_EQ(readInteger<long long>(L"7\u2003"), (Signed{7, 2}));
}

TEST(Atoi, EmptyAndBlankTextIsZeroAndWhole)
{
    EXPECT_EQ(readInteger<long long>(L""), (Signed{0, 0}));
    EXPECT_EQ(readInteger<long long>(L"   "), (Signed{0, 3}));
}

TEST(Atoi, TakesOneSign)
{
    EXPECT_EQ(readInteger<long long>(L"+5"), (Signed{5, 2}));
    EXPECT_EQ(readInteger<long long>(L"-"), (Signed{0, 1}));
    EXPECT_EQ(readInteger<long long>(L"--5"), (Signed{0, 1}));
    EXPECT_EQ(readInteger<long long>(L"- 5"), (Signed{0, 2}));
}

TEST(Atoi, StopsAtTheFirstOtherCharacter)
{
    EXPECT_EQ(readInteger<long long>(L"12:34"), (Signed{12, 2}));
    EXPECT_EQ(readInteger<long long>(L"1.5"), (Signed{1, 1}));
    EXPECT_EQ(readInteger<long long>(L"12 x"), (Signed{12, 3}));
    EXPECT_EQ(readInteger<long long>(L"x"), (Signed{0, 0}));
    EXPECT_EQ(readInteger<long long>(L"\u0663"), (Signed{0, 0})); // an Arabic digit is none here
}

TEST(Atoi, SkipsThousandsSeparatorsWhereverTheyStand)
{
    EXPECT_EQ(readInteger<long long>(L"1,234,567"), (Signed{1234567, 9}));
    EXPECT_EQ(readInteger<long long>(L",1,,2,"), (Signed{12, 6}));
    const GlobalPunctuation swiss(L'.', L'\'');
    EXPECT_EQ(readInteger<long long>(L"1'234"), (Signed{1234, 5}));
    EXPECT_EQ(readInteger<long long>(L"1,234"), (Signed{1, 1}));
}

TEST(Atoi, WrapsInTheTargetType)
{
    EXPECT_EQ(readInteger<unsigned>(L"4294967297").value, 1u);
    EXPECT_EQ(readInteger<unsigned>(L"-1").value, 4294967295u);
    EXPECT_EQ(readInteger<unsigned long long>(L"18446744073709551617").value, 1u);
    EXPECT_EQ(readInteger<long long>(L"9223372036854775808").value,
              std::numeric_limits<long long>::min());
    EXPECT_EQ(readInteger<long long>(L"-9223372036854775808").value,
              std::numeric_limits<long long>::min());
}

TEST(Atoi, WorksOnMutableIterators)
{
    _XeString<wchar_t> text = L" 17 ";
    unsigned value = 0;
    unsigned long long wide = 0;
    long long positive = 0;
    EXPECT_EQ(xenon::util::atoi(text.begin(), text.end(), value), text.end());
    EXPECT_EQ(xenon::util::atoi(text.begin(), text.end(), wide), text.end());
    EXPECT_EQ(xenon::util::atoi(text.begin(), text.end(), positive), text.end());
    EXPECT_EQ(value + wide + static_cast<unsigned long long>(positive), 51u);
}

TEST(Atof, ReadsSignPointAndExponent)
{
    EXPECT_EQ(readDecimal(L"  1.5"), (Decimal{1.5, 5}));
    EXPECT_EQ(readDecimal(L"-0.25"), (Decimal{-0.25, 5}));
    EXPECT_EQ(readDecimal(L"+.5"), (Decimal{0.5, 3}));
    EXPECT_EQ(readDecimal(L"5."), (Decimal{5.0, 2}));
    EXPECT_EQ(readDecimal(L"1e3"), (Decimal{1000.0, 3}));
    EXPECT_EQ(readDecimal(L"1.25E-2"), (Decimal{0.0125, 7}));
    EXPECT_EQ(readDecimal(L"2e+2"), (Decimal{200.0, 4}));
}

TEST(Atof, ReturnsWhereTheNumberEnds)
{
    EXPECT_EQ(readDecimal(L"1.5 "), (Decimal{1.5, 3}));
    EXPECT_EQ(readDecimal(L"1.5:20"), (Decimal{1.5, 3}));
    EXPECT_EQ(readDecimal(L"2-1"), (Decimal{2.0, 1}));
}

TEST(Atof, SkipsThousandsSeparators)
{
    EXPECT_EQ(readDecimal(L"1,234.5"), (Decimal{1234.5, 7}));
    EXPECT_EQ(readDecimal(L"12,345,678,901,234,567.5"), (Decimal{12345678901234567.5, 24}));
}

TEST(Atof, TakesThePunctuationOfTheGlobalLocale)
{
    const GlobalPunctuation german(L',', L'.');
    EXPECT_EQ(readDecimal(L"1.234,5"), (Decimal{1234.5, 7}));
    EXPECT_EQ(readDecimal(L"0,1234567890123456789"), (Decimal{0.1234567890123456789, 21}));
    EXPECT_EQ(readDecimal(L"2,5e1"), (Decimal{25.0, 5}));
}

TEST(Atof, AcceptsNotANumberAndInfinity)
{
    for (const wchar_t* word : {L"NAN", L"nan"}) {
        EXPECT_TRUE(std::isnan(readDecimal(word).value));
        EXPECT_EQ(readDecimal(word).length, 3);
    }
    for (const wchar_t* word : {L"INFINITY", L"infinity"}) {
        EXPECT_EQ(readDecimal(word), (Decimal{HUGE_VAL, 8}));
    }
    EXPECT_EQ(readDecimal(L"-infinity"), (Decimal{-HUGE_VAL, 9}));
}

TEST(Atof, RaisesForWhatIsNoNumber)
{
    for (const wchar_t* text :
         {L"", L"  ", L"+", L"-", L".", L"abc", L"1.2.3", L"1e", L"1e+", L":", L"1e999", L"e5"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_THROW(readDecimal(text), boost::bad_lexical_cast);
        double value = 99;
        const _XeString<wchar_t> copy(text);
        EXPECT_ANY_THROW(xenon::util::atof(copy.begin(), copy.end(), value));
        EXPECT_EQ(value, 0.0);
    }
}

TEST(Atof, WorksOnMutableIterators)
{
    _XeString<wchar_t> text = L"0.5";
    double value = 0;
    EXPECT_EQ(xenon::util::atof(text.begin(), text.end(), value), text.end());
    EXPECT_EQ(value, 0.5);
}

// The result is the nearest double, on the quick way through short numbers as on the long one.
TEST(Atof, AgreesWithTheCLibraryToTheLastBit)
{
    std::mt19937_64 random(20240229);
    for (int round = 0; round < 200000; ++round) {
        std::string text = std::to_string(random() >> (random() % 64));
        text.insert(random() % (text.size() + 1), ".");
        if (round % 8 == 0) {
            text += "e" + std::to_string(static_cast<int>(random() % 600) - 300);
        }
        double value = 0;
        const _XeString<wchar_t> wide(text.begin(), text.end());
        const double expected = std::strtod(text.c_str(), nullptr);
        if (std::isinf(expected)) {
            continue;
        }
        ASSERT_EQ(xenon::util::atof(wide.begin(), wide.end(), value), wide.end()) << text;
        ASSERT_EQ(value, expected) << text;
    }
}

struct Stop {
    double value;
    wchar_t character;

    friend bool operator==(const Stop&, const Stop&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Stop& stop)
    {
        return out << testing::PrintToString(stop.value) << " stopped at " << int(stop.character);
    }
};

constexpr double kAway = 0.000000000005;

Stop readUpTo(std::wstring text)
{
    double value = 99;
    const wchar_t stop = xenon::util::myatof(text.data(), &value);
    return {value, stop};
}

TEST(Myatof, NullAndBlankTextIsZero)
{
    double value = 99;
    EXPECT_EQ(xenon::util::myatof(nullptr, &value), 0);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(readUpTo(L""), (Stop{0, 0}));
    EXPECT_EQ(readUpTo(L" \t "), (Stop{0, 0}));
}

TEST(Myatof, MovesANumberReadToItsEndAwayFromZero)
{
    EXPECT_EQ(readUpTo(L"7"), (Stop{7 + kAway, 0}));
    EXPECT_EQ(readUpTo(L"-7"), (Stop{-7 - kAway, 0}));
    EXPECT_EQ(readUpTo(L"0"), (Stop{kAway, 0}));
    EXPECT_EQ(readUpTo(L"-0"), (Stop{-kAway, 0}));
    EXPECT_EQ(std::trunc(readUpTo(L"0.29").value * 100), 29.0);
}

TEST(Myatof, StopsAtAColonWithTheDigitsSoFar)
{
    EXPECT_EQ(readUpTo(L"12:34"), (Stop{12, L':'}));
    EXPECT_EQ(readUpTo(L"-12:34"), (Stop{12, L':'})); // without the sign
    EXPECT_EQ(readUpTo(L"+5"), (Stop{0, L'+'}));
    EXPECT_EQ(readUpTo(L"1.2.3"), (Stop{1, L'.'})); // only the last point is one
}

TEST(Myatof, ReadsAFractionAfterTheLastPoint)
{
    EXPECT_EQ(readUpTo(L"1,234.5"), (Stop{1234.5 + kAway, 0}));
    EXPECT_EQ(readUpTo(L".25"), (Stop{0.25 + kAway, 0}));
    EXPECT_EQ(readUpTo(L"5."), (Stop{5 + kAway, 0}));
    EXPECT_EQ(readUpTo(L"1.5:20"), (Stop{1.5 + kAway, L':'}));
    EXPECT_EQ(readUpTo(L"-1.5x"), (Stop{-1.5 - kAway, L'x'}));
}

TEST(Myatof, ASpaceEndsTheNumberWithoutAFraction)
{
    EXPECT_EQ(readUpTo(L"12 34"), (Stop{12 + kAway, L' '}));
    EXPECT_EQ(readUpTo(L"-12\t.5"), (Stop{-12 - kAway, L'\t'}));
}

TEST(Myatof, ASpaceThatSeparatesThousandsIsSkipped)
{
    const GlobalPunctuation spaced(L',', L' ');
    EXPECT_EQ(readUpTo(L"1 234,5"), (Stop{1234.5 + kAway, 0}));
}

TEST(Myatof, CutsBlanksAndPercentSignsOffTheCallersText)
{
    wchar_t text[] = L" 7 % ";
    double value = 0;
    EXPECT_EQ(xenon::util::myatof(text, &value), 0);
    EXPECT_EQ(value, 7 + kAway);
    EXPECT_STREQ(text, L" 7");
    EXPECT_EQ(text[3], 0); // each of them overwritten, not only the first
    EXPECT_EQ(text[4], 0);
    EXPECT_EQ(readUpTo(L"  %"), (Stop{kAway, 0}));
}

TEST(Myatof, TakesThePunctuationOfTheGlobalLocale)
{
    const GlobalPunctuation german(L',', L'.');
    EXPECT_EQ(readUpTo(L"1.234,5"), (Stop{1234.5 + kAway, 0}));
    EXPECT_EQ(readUpTo(L"1,234.5"), (Stop{1.234 + kAway, L'.'}));
}

TEST(NumberReaders, FollowTheGlobalLocaleBetweenTwoCallsOfOneThread)
{
    EXPECT_EQ(readInteger<long long>(L"1.5").length, 1);
    {
        const GlobalPunctuation german(L',', L'.');
        EXPECT_EQ(readInteger<long long>(L"1.5").value, 15);
        const GlobalPunctuation plain(L'.', L'_');
        EXPECT_EQ(readInteger<long long>(L"1_5").value, 15);
    }
    EXPECT_EQ(readInteger<long long>(L"1.5").value, 1);
}

TEST(NumberReaders, FollowTheGlobalLocaleOnEveryThread)
{
    long long before = 0;
    long long after = 0;
    std::thread reader([&] { before = readInteger<long long>(L"1.5").value; });
    reader.join();
    const GlobalPunctuation german(L',', L'.');
    reader = std::thread([&] { after = readInteger<long long>(L"1.5").value; });
    reader.join();
    EXPECT_EQ(before, 1);
    EXPECT_EQ(after, 15);
}

TEST(DoubleToString, PrintsTheDecimalsAsked)
{
    EXPECT_EQ(doubleToString(2.5, 3, false), L"2.500");
    EXPECT_EQ(doubleToString(-0.125, 2, false), L"-0.12"); // printf's own rounding
    EXPECT_EQ(doubleToString(100.0, 0, false), L"100");
}

TEST(DoubleToString, TrimsZerosAndThenThePoint)
{
    EXPECT_EQ(doubleToString(2.5, 3, true), L"2.5");
    EXPECT_EQ(doubleToString(2.0, 3, true), L"2");
    EXPECT_EQ(doubleToString(100.0, 2, true), L"100");
    EXPECT_EQ(doubleToString(0.0, 2, true), L"0");
    EXPECT_EQ(doubleToString(100.0, 0, true), L"100"); // no point, so its zeros stay
}

TEST(DoubleToString, KeepsBetweenFewestAndMostDecimals)
{
    EXPECT_EQ(doubleToString(2.5, 3, 1), L"2.5");
    EXPECT_EQ(doubleToString(2.0, 3, 1), L"2.0");
    EXPECT_EQ(doubleToString(2.0, 3, 0), L"2");
    EXPECT_EQ(doubleToString(2.0, 1, 3), L"2.0"); // in either order
    EXPECT_EQ(doubleToString(2.125, 3, 1), L"2.125");
    EXPECT_EQ(doubleToString(2.1204, 4, 2), L"2.1204");
    EXPECT_EQ(doubleToString(2.12, 4, 2), L"2.12");
    EXPECT_EQ(doubleToString(100.0, 2, 0), L"100");
    EXPECT_EQ(doubleToString(100.0, 0, 0), L"100");
    EXPECT_EQ(doubleToString(-0.5, 3, 1), L"-0.5");
    EXPECT_EQ(doubleToString(HUGE_VAL, 3, 1), L"inf");
}

// The fraction is what a path calls its extension: a decimal comma makes none, so nothing is
// trimmed, while the trimming flag of the other form knows the comma.
TEST(DoubleToString, TrimmedExtensionRouteLeavesADecimalCommaAlone)
{
    const DecimalComma comma;
    if (!comma.made()) {
        GTEST_SKIP() << "no locale with a decimal comma, and localedef cannot make one";
    }
    EXPECT_EQ(doubleToString(2.5, 3, false), L"2,500");
    EXPECT_EQ(doubleToString(2.5, 3, 1), L"2,500");
    EXPECT_EQ(doubleToString(2.5, 3, true), L"2,5");
    EXPECT_EQ(doubleToString(2.0, 3, true), L"2");
}

} // namespace
