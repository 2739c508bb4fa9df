#include "XeChannelNames.h"

#include "ShownText.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Text = _XeString<wchar_t>;

std::vector<Text> channelNames(const Text& name, unsigned count)
{
    std::vector<Text> names;
    XeGenerateUniqueChannelNames(name, count, names);
    return names;
}

struct StereoRow {
    const wchar_t* name;
    const wchar_t* left;
    const wchar_t* right;
};

void expectStereo(const StereoRow& row)
{
    SCOPED_TRACE(shown(row.name));
    Text left = L"old";
    Text right = L"old";
    XeChannelizeStereoName(row.name, left, right);
    EXPECT_EQ(left, row.left);
    EXPECT_EQ(right, row.right);
}

TEST(ChannelizeStereo, NumbersAPlainName)
{
    expectStereo({L"Output", L"Output 1", L"Output 2"});
    expectStereo({L"Main Output", L"Main Output 1", L"Main Output 2"});
    expectStereo({L"", L"1", L"2"});
    expectStereo({L"  ", L"1", L"2"});
}

TEST(ChannelizeStereo, LettersTheNameOfAStereoPortInAnyCase)
{
    constexpr StereoRow kRows[] = {
        {L"Main Stereo", L"Main Stereo L", L"Main Stereo R"},
        {L"PHONES", L"PHONES L", L"PHONES R"},
        {L"Headphones", L"Headphones L", L"Headphones R"},
        {L"SPDIF", L"SPDIF L", L"SPDIF R"},
        {L"S/PDIF Out", L"S/PDIF Out L", L"S/PDIF Out R"},
        {L"stereofon", L"stereofon L", L"stereofon R"},
        {L"Phone", L"Phone 1", L"Phone 2"},
    };
    for (const StereoRow& row : kRows) {
        expectStereo(row);
    }
}

TEST(ChannelizeStereo, RemovesTheWordLAndLettersTheRest)
{
    constexpr StereoRow kRows[] = {
        {L"Main L", L"Main L", L"Main R"},       {L"L Main", L"Main L", L"Main R"},
        {L"L L Main L", L"Main L", L"Main R"},   {L"L", L"L", L"R"},
        {L"Main l", L"Main l 1", L"Main l 2"},   {L"Main LR", L"Main LR 1", L"Main LR 2"},
        {L"Main R", L"Main R 1", L"Main R 2"}, // the word R is like any other
        {L"Main L R", L"Main R L", L"Main R R"},
    };
    for (const StereoRow& row : kRows) {
        expectStereo(row);
    }
}

TEST(ChannelizeStereo, RebuildsTheNameFromItsWords)
{
    expectStereo({L"  Main   Out ", L"Main Out 1", L"Main Out 2"});
    expectStereo({L"Main\tOut", L"Main\tOut 1", L"Main\tOut 2"}); // only blanks part words
}

TEST(ChannelizeStereo, GivesEachNumberOfAPairToOneChannel)
{
    constexpr StereoRow kRows[] = {
        {L"Line 1/2", L"Line 1", L"Line 2"},
        {L"Line 15-16", L"Line 15", L"Line 16"},
        {L"In 1 2", L"In 1", L"In 2"},
        {L"In 1 + 2 Digital", L"In 1 Digital", L"In 2 Digital"},
        {L"9/10", L"9", L"10"},
        {L"Line 09/10", L"Line 09", L"Line 10"},
        {L"Line 0/1", L"Line 0", L"Line 1"},
        {L"S/PDIF 1/2", L"S/PDIF 1", L"S/PDIF 2"}, // the numbers go before L and R
        {L"Main L 1/2", L"Main 1", L"Main 2"},
    };
    for (const StereoRow& row : kRows) {
        expectStereo(row);
    }
}

TEST(ChannelizeStereo, SplitsOneRunOfDigitsInTheMiddle)
{
    constexpr StereoRow kRows[] = {
        {L"In 12", L"In 1", L"In 2"},
        {L"In 1516", L"In 15", L"In 16"},
        {L"In 0910 x", L"In 09 x", L"In 10 x"},
        {L"In34", L"In3", L"In4"},
    };
    for (const StereoRow& row : kRows) {
        expectStereo(row);
    }
}

TEST(ChannelizeStereo, KeepsTheSuffixesForNumbersThatAreNoPair)
{
    constexpr StereoRow kRows[] = {
        {L"Line 5", L"Line 5 1", L"Line 5 2"},
        {L"Line 2/1", L"Line 2/1 1", L"Line 2/1 2"},
        {L"Line 1/3", L"Line 1/3 1", L"Line 1/3 2"},
        {L"Line 1/1", L"Line 1/1 1", L"Line 1/1 2"},
        {L"In 11", L"In 11 1", L"In 11 2"},
        {L"In 910", L"In 910 1", L"In 910 2"}, // three digits have no middle
        {L"In 1/2/3", L"In 1/2/3 1", L"In 1/2/3 2"},
        {L"In 12/13/14", L"In 12/13/14 1", L"In 12/13/14 2"},
        {L"Stereo 5", L"Stereo 5 L", L"Stereo 5 R"},
        // Beyond 64 bits there are no numbers, and the largest one has no successor.
        {L"In 18446744073709551615/0", L"In 18446744073709551615/0 1",
         L"In 18446744073709551615/0 2"},
        {L"In 18446744073709551615/18446744073709551616",
         L"In 18446744073709551615/18446744073709551616 1",
         L"In 18446744073709551615/18446744073709551616 2"},
    };
    for (const StereoRow& row : kRows) {
        expectStereo(row);
    }
}

TEST(ChannelizeStereo, MayWriteOverTheNameItself)
{
    Text left = L"a long name of a port";
    Text right;
    XeChannelizeStereoName(left, left, right);
    EXPECT_EQ(left, L"a long name of a port 1");
    EXPECT_EQ(right, L"a long name of a port 2");

    right = L"a port with numbers 3/4";
    XeChannelizeStereoName(right, left, right);
    EXPECT_EQ(left, L"a port with numbers 3");
    EXPECT_EQ(right, L"a port with numbers 4");
}

TEST(UniqueChannelNames, CountNoneOneAndTwoAreSpecial)
{
    EXPECT_THAT(channelNames(L"Line", 0), IsEmpty());
    EXPECT_THAT(channelNames(L"  Line 5 ", 1), ElementsAre(L"Line 5"));
    EXPECT_THAT(channelNames(L" Main Stereo ", 2), ElementsAre(L"Main Stereo L", L"Main Stereo R"));
    EXPECT_THAT(channelNames(L"Output", 2), ElementsAre(L"Output 1", L"Output 2"));
}

TEST(UniqueChannelNames, AreNumberedFromOne)
{
    EXPECT_THAT(channelNames(L" Line ", 3), ElementsAre(L"Line 1", L"Line 2", L"Line 3"));
    EXPECT_THAT(channelNames(L"Main  Out", 3),
                ElementsAre(L"Main  Out 1", L"Main  Out 2", L"Main  Out 3"));
    EXPECT_THAT(channelNames(L"", 3), ElementsAre(L" 1", L" 2", L" 3"));
    EXPECT_EQ(channelNames(L"Line", 12).back(), L"Line 12");
}

TEST(UniqueChannelNames, HaveADashBehindANumberThatCouldBeAChannel)
{
    struct {
        const wchar_t* name;
        const wchar_t* first;
    } constexpr kRows[] = {
        // With 8 channels the numbers 1 to 9 get a dash.
        {L"Line 5", L"Line 5 - 1"},
        {L"Line 1", L"Line 1 - 1"},
        {L"Line 9", L"Line 9 - 1"},
        {L"Line 10", L"Line 10 1"},
        {L"Line 50", L"Line 50 1"},
        {L"Line 0", L"Line 0 1"},
        {L"Line +5", L"Line +5 - 1"},
        {L"Line -5", L"Line -5 1"},
        {L"Line 05", L"Line 05 - 1"},
        {L"5", L"5 - 1"},
        {L"Line5", L"Line5 1"},
        {L"5 Line", L"5 Line 1"},
        {L"Line 5.", L"Line 5. 1"},
        {L"Line +", L"Line + 1"},
        {L"Line 4294967301", L"Line 4294967301 1"}, // 5 more than 32 bits hold
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(shown(row.name));
        EXPECT_EQ(channelNames(row.name, 8).front(), row.first);
    }
    EXPECT_EQ(channelNames(L"Line 5", 8).back(), L"Line 5 - 8");
    EXPECT_EQ(channelNames(L"Line 50", 8).back(), L"Line 50 8");
}

TEST(UniqueChannelNames, ReplaceWhatWasThere)
{
    std::vector<Text> names = {L"a", L"b", L"c", L"d", L"e"};
    XeGenerateUniqueChannelNames(L"Line", 3, names);
    EXPECT_THAT(names, ElementsAre(L"Line 1", L"Line 2", L"Line 3"));
    XeGenerateUniqueChannelNames(L"Line", 4, names);
    EXPECT_THAT(names, ElementsAre(L"Line 1", L"Line 2", L"Line 3", L"Line 4"));
    XeGenerateUniqueChannelNames(names[0], 1, names);
    EXPECT_THAT(names, ElementsAre(L"Line 1"));
    XeGenerateUniqueChannelNames(names[0], 0, names);
    EXPECT_THAT(names, IsEmpty());
}

} // namespace
