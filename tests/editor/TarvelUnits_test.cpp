#include "TarvelUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct ShownThreshold {
    float db;
    double shownDb;
    double percent; // within 1e-9 of it
};

constexpr ShownThreshold kShownThresholds[] = {
    // clang-format off
    //  dB          shown dB                            percent
    { -60.0F,      -kInfinity,                          0.0 },
    { -59.9F,      -59.900001525878906,                 0.101157927655 },
    { -20.0F,      -20.0,                               10.0 },
    { -6.0F,       -6.0,                                50.118723362727 },
    { 0.0F,         0.0,                                100.0 },
    // Outside of the range nothing is clamped, and only exactly -60 is minus infinity.
    { -60.000004F, -60.000003814697266,                 0.0 },
    { -72.0F,      -72.0,                               0.0 },
    { 6.0F,         6.0,                                199.526231496888 },
    // clang-format on
};

TEST(ShownThreshold, FollowsTheUnit)
{
    for (const ShownThreshold& row : kShownThresholds) {
        SCOPED_TRACE(row.db);
        EXPECT_EQ(tarvel::shownDb(row.db), row.shownDb);
        EXPECT_NEAR(tarvel::shownPercent(row.db), row.percent, 1e-9);
    }
}

// In single precision -59.9 dB would give 0.10115789...; the difference shows after 7 digits.
TEST(ShownThreshold, PercentIsComputedInDoublePrecision)
{
    EXPECT_EQ(tarvel::shownPercent(-59.9F), std::pow(10.0, double{-59.9F} / 20.0) * 100.0);
    EXPECT_NE(tarvel::shownPercent(-59.9F), double{std::pow(10.0F, -59.9F / 20.0F) * 100.0F});
}

TEST(TypedPercent, BecomesDb)
{
    EXPECT_EQ(tarvel::thresholdFromPercent(0.0F), -60.0);
    EXPECT_EQ(tarvel::thresholdFromPercent(-0.0F), -60.0);
    EXPECT_NEAR(tarvel::thresholdFromPercent(50.0F), -6.0205999, 1e-6);
    EXPECT_NEAR(tarvel::thresholdFromPercent(10.0F), -20.0, 1e-6);
    EXPECT_EQ(tarvel::thresholdFromPercent(100.0F), 0.0);
}

// Nothing but the field keeps other numbers out.
TEST(TypedPercent, IsNotClamped)
{
    EXPECT_NEAR(tarvel::thresholdFromPercent(200.0F), 6.0205999, 1e-6);
    EXPECT_NEAR(tarvel::thresholdFromPercent(0.001F), -100.0, 1e-5);
}

TEST(TypedPercent, IsDividedInSinglePrecision)
{
    const float percent = 33.3F;
    const float fullScale = percent / 100.0F;
    EXPECT_EQ(tarvel::thresholdFromPercent(percent), 20.0 * std::log10(double{fullScale}));
    EXPECT_NE(tarvel::thresholdFromPercent(percent), 20.0 * std::log10(percent / 100.0));
}

struct LengthRow {
    float ms;
    double rate; // Hz
    std::int64_t samples;
};

constexpr LengthRow kLengths[] = {
    // clang-format off
    { 0.0F,         44100.0,  0 },
    { 1000.0F,      44100.0,  44100 },
    { 1.0F,         44100.0,  44 },       // 44.1
    { 0.99F,        1000.0,   0 },
    { -1.0F,        44100.0, -44 },       // toward zero, not down
    { 3600000.0F,   192000.0, 691200000 },
    { 16777216.0F,  48000.0,  805306368 },
    { 1000.0F,      0.0,      0 },
    // clang-format on
};

TEST(SamplesFromMs, AreTruncatedTowardZero)
{
    for (const LengthRow& row : kLengths) {
        SCOPED_TRACE(testing::Message() << row.ms << " ms at " << row.rate << " Hz");
        EXPECT_EQ(tarvel::samplesFromMs(row.ms, row.rate), row.samples);
    }
}

// 100000.01 ms is 100000.0078125 in a parameter; a product in single precision would lose 15
// samples.
TEST(SamplesFromMs, AreComputedInDoublePrecision)
{
    EXPECT_EQ(tarvel::samplesFromMs(100000.01F, 192000.0), 19200001);
    EXPECT_EQ(tarvel::samplesFromMs(3599999.75F, 192000.0), 691199952);
}

TEST(SamplesFromMs, StayInsideTheRangeOfTheirType)
{
    constexpr float kHuge = std::numeric_limits<float>::max();
    EXPECT_EQ(tarvel::samplesFromMs(kHuge, 192000.0), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(tarvel::samplesFromMs(-kHuge, 192000.0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(tarvel::samplesFromMs(std::nanf(""), 44100.0), 0);
}

TEST(MsFromSamples, AreRoundedToSinglePrecision)
{
    EXPECT_EQ(tarvel::msFromSamples(44100, 44100.0), 1000.0F);
    EXPECT_EQ(tarvel::msFromSamples(44, 44100.0), static_cast<float>(44 * 1000.0 / 44100.0));
    EXPECT_EQ(tarvel::msFromSamples(0, 44100.0), 0.0F);
    EXPECT_EQ(tarvel::msFromSamples(-48000, 48000.0), -1000.0F);
}

// 2^53 + 1 samples times 1000 does not fit into 64 bits when it is multiplied as an integer.
TEST(MsFromSamples, HugeCountsDoNotOverflow)
{
    EXPECT_FLOAT_EQ(tarvel::msFromSamples(std::int64_t{1} << 62, 48000.0), 9.6076792e16F);
}

TEST(LongestLength, IsTheMaterialOrOneHour)
{
    EXPECT_EQ(tarvel::longestLength(12345, 48000.0), 12345u);
    EXPECT_EQ(tarvel::longestLength(0, 48000.0), 172800000u);
    EXPECT_EQ(tarvel::longestLength(0, 44100.0), 158760000u);
    EXPECT_EQ(tarvel::longestLength(0, 0.0), 0u);
}

TEST(ShortestSilence, IsAHundredMillisecondsTruncated)
{
    EXPECT_EQ(tarvel::shortestSilence(44100.0), 4410);
    EXPECT_EQ(tarvel::shortestSilence(48000.0), 4800);
    EXPECT_EQ(tarvel::shortestSilence(11025.0), 1102); // 1102.5
    EXPECT_EQ(tarvel::shortestSilence(0.0), 0);
}

} // namespace
