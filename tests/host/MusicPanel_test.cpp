#include "host/app/MusicPanel.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

TEST(MusicPanel, ReadsTempoAndSignature)
{
    const auto music = readMusic(" 92,5 ", "6 / 8");
    ASSERT_TRUE(music);
    EXPECT_EQ(music->tempo, 92.5);
    EXPECT_EQ(music->numerator, 6);
    EXPECT_EQ(music->denominator, 8u);
    EXPECT_EQ(readMusic("120.25", "4/4")->tempo, 120.25);
}

TEST(MusicPanel, RefusesWhatMakesNoSense)
{
    const char* const rows[][2] = {{"", "4/4"},     {"fast", "4/4"}, {"0", "4/4"},
                                   {"1000", "4/4"}, {"120x", "4/4"}, {"120", ""},
                                   {"120", "4"},    {"120", "4/3"},  {"120", "0/4"},
                                   {"120", "a/4"},  {"120", "4/4x"}};
    for (const auto& row : rows) {
        EXPECT_FALSE(readMusic(row[0], row[1])) << row[0] << ", " << row[1];
    }
}

} // namespace
