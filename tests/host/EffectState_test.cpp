#include "host/effect/EffectState.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using namespace host;
using testing::ElementsAre;

namespace {

using Bytes = std::vector<std::uint8_t>;

const SavedParameter kLeft{1, -20.0F};
const SavedParameter kRight{9, 1500.0F};

// -20 is 0xC1A00000, 1500 is 0x44BB8000.
const Bytes kEncoded = {0, 0, 0, 0, 0,    0,    0,    0, 0, 0, 0, 2, //
                        0, 0, 0, 1, 0xC1, 0xA0, 0,    0,             //
                        0, 0, 0, 9, 0x44, 0xBB, 0x80, 0};

std::vector<SavedParameter> decoded(const Bytes& bytes)
{
    std::vector<SavedParameter> parameters;
    EXPECT_TRUE(decodeParameters(bytes, parameters));
    return parameters;
}

bool isRefused(const Bytes& bytes)
{
    std::vector<SavedParameter> parameters{kLeft};
    const bool refused = !decodeParameters(bytes, parameters);
    EXPECT_TRUE(!refused || parameters == std::vector{kLeft}) << "changed by a failure";
    return refused;
}

} // namespace

TEST(EffectState, IsBigEndianWordsInScopeElementCountOrder)
{
    EXPECT_EQ(encodeParameters(std::vector{kLeft, kRight}), kEncoded);
    EXPECT_EQ(encodeParameters({}), (Bytes(12, 0)));
}

TEST(EffectState, ReadsBackWhatItWrote)
{
    EXPECT_THAT(decoded(kEncoded), ElementsAre(kLeft, kRight));
    EXPECT_TRUE(decoded({}).empty());
}

TEST(EffectState, SectionsOfOtherScopesAndElementsArePassedOver)
{
    for (const std::size_t place : {3U, 7U}) {
        Bytes bytes = kEncoded;
        bytes[place] = 1;
        EXPECT_TRUE(decoded(bytes).empty());
        bytes.insert(bytes.end(), kEncoded.begin(), kEncoded.end());
        EXPECT_THAT(decoded(bytes), ElementsAre(kLeft, kRight));
    }
}

TEST(EffectState, CutShortAnywhereIsRefused)
{
    for (std::size_t length = 1; length < kEncoded.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_TRUE(isRefused(Bytes(kEncoded.begin(), kEncoded.begin() + length)));
    }
}

TEST(EffectState, CountBeyondTheBytesIsRefused)
{
    Bytes bytes = kEncoded;
    bytes[8] = 0xFF;
    EXPECT_TRUE(isRefused(bytes));
}

TEST(EffectState, ValueThatIsNoNumberIsRefused)
{
    Bytes bytes = kEncoded;
    bytes[16] = 0x7F;
    bytes[17] = 0xC0;
    EXPECT_TRUE(isRefused(bytes));
    bytes[17] = 0x80; // infinity
    EXPECT_TRUE(isRefused(bytes));
}
