#include "host/app/HostOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;

namespace {

HostOptions parsed(const std::vector<std::string>& words)
{
    const ParsedOptions result = parseOptions(words);
    EXPECT_EQ(result.problem, "");
    return result.options;
}

} // namespace

TEST(HostOptions, AreAllOptional)
{
    const HostOptions options = parsed({});
    EXPECT_FALSE(options.help);
    EXPECT_EQ(options.snapshot, std::nullopt);
    EXPECT_EQ(options.bundle, std::nullopt);
    EXPECT_EQ(options.recording, std::nullopt);
    EXPECT_EQ(options.scale, 1.0);
}

TEST(HostOptions, MayComeInAnyOrder)
{
    const HostOptions options = parsed({"--scale", "1.5", "take 1.wav", "--snapshot", "-a.png",
                                        "--bundle", "/x/Y.bundle", "--help"});
    EXPECT_TRUE(options.help);
    EXPECT_EQ(options.snapshot, "-a.png");
    EXPECT_EQ(options.bundle, "/x/Y.bundle");
    EXPECT_EQ(options.recording, "take 1.wav");
    EXPECT_EQ(options.scale, 1.5);
    EXPECT_TRUE(parsed({"-h"}).help);
}

TEST(HostOptions, TwoDashesEndTheOptions)
{
    EXPECT_EQ(parsed({"--", "--scale"}).recording, "--scale");
    EXPECT_EQ(parsed({"--"}).recording, std::nullopt);
}

TEST(HostOptions, ScaleLiesBetweenAHalfAndFour)
{
    EXPECT_EQ(parsed({"--scale", "0.5"}).scale, 0.5);
    EXPECT_EQ(parsed({"--scale", "4"}).scale, 4.0);
    for (const char* const wrong : {"0.49", "4.1", "-1", "two", "2x", "nan", "inf"}) {
        EXPECT_EQ(parseOptions({"--scale", wrong}).problem,
                  "The scale must be a number from 0.5 to 4, not \"" + std::string(wrong) + "\".");
    }
}

TEST(HostOptions, WrongUseIsToldInOneSentence)
{
    struct Row {
        std::vector<std::string> words;
        const char* expected;
    };
    const Row rows[] = {
        {{"--loud"}, "There is no option \"--loud\"; --help lists them."},
        {{"-x"}, "There is no option \"-x\"; --help lists them."},
        {{"--bundle"}, "The option --bundle needs a value."},
        {{"--snapshot", ""}, "The option --snapshot needs a value."},
        {{"a.wav", "--snapshot"}, "The option --snapshot needs a value."},
        {{"a.wav", "b\n.wav"}, "Only one recording can be opened, not \"b\\x0a.wav\" as well."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(parseOptions(row.words).problem, row.expected);
    }
}

TEST(HostOptions, UsageNamesEveryOption)
{
    for (const char* const option : {"--bundle", "--scale", "--snapshot", "--help", "RECORDING"}) {
        EXPECT_THAT(usage(), testing::HasSubstr(option));
    }
}
