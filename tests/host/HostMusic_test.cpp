#include "host/effect/HostMusic.h"

#include <gtest/gtest.h>

using host::HostMusic;

namespace {

struct Answers {
    Float64 beat = -1, tempo = -1, downBeat = -1;
    UInt32 delta = 99, denominator = 99;
    Float32 numerator = -1;
};

void ask(const HostCallbackInfo& host, Answers& answers, OSStatus expected)
{
    EXPECT_EQ(host.beatAndTempoProc(host.hostUserData, &answers.beat, &answers.tempo), expected);
    EXPECT_EQ(host.musicalTimeLocationProc(host.hostUserData, &answers.delta, &answers.numerator,
                                           &answers.denominator, &answers.downBeat),
              expected);
}

} // namespace

TEST(HostMusic, TellsTempoAndTimeSignature)
{
    HostMusic music{.tempo = 90.5, .numerator = 7, .denominator = 8};
    Answers answers;
    ask(music.callbacks(), answers, noErr);
    EXPECT_EQ(answers.tempo, 90.5);
    EXPECT_EQ(answers.numerator, 7.0F);
    EXPECT_EQ(answers.denominator, 8U);
    EXPECT_EQ(answers.beat, 0.0);
    EXPECT_EQ(answers.delta, 0U);
    EXPECT_EQ(answers.downBeat, 0.0);
}

TEST(HostMusic, AnswersPresentValuesThroughTheSameRecord)
{
    HostMusic music;
    const HostCallbackInfo host = music.callbacks();
    Answers answers;
    ask(host, answers, noErr);
    EXPECT_EQ(answers.tempo, 120.0);
    EXPECT_EQ(answers.numerator, 4.0F);
    EXPECT_EQ(answers.denominator, 4U);
    music.tempo = 0;
    music.numerator = 0;
    music.denominator = 0;
    ask(host, answers, noErr);
    EXPECT_EQ(answers.tempo, 0.0);
    EXPECT_EQ(answers.numerator, 0.0F);
    EXPECT_EQ(answers.denominator, 0U);
}

TEST(HostMusic, OutputsMayBeLeftOut)
{
    HostMusic music;
    const HostCallbackInfo host = music.callbacks();
    EXPECT_EQ(host.beatAndTempoProc(host.hostUserData, nullptr, nullptr), noErr);
    EXPECT_EQ(host.musicalTimeLocationProc(host.hostUserData, nullptr, nullptr, nullptr, nullptr),
              noErr);
}

TEST(HostMusic, FailureWritesNothing)
{
    HostMusic music{.result = kAudioUnitErr_CannotDoInCurrentContext};
    Answers answers;
    ask(music.callbacks(), answers, kAudioUnitErr_CannotDoInCurrentContext);
    EXPECT_EQ(answers.beat, -1);
    EXPECT_EQ(answers.tempo, -1);
    EXPECT_EQ(answers.delta, 99U);
    EXPECT_EQ(answers.numerator, -1);
    EXPECT_EQ(answers.denominator, 99U);
    EXPECT_EQ(answers.downBeat, -1);
}

TEST(HostMusic, KnowsNoTransport)
{
    HostMusic music;
    EXPECT_EQ(music.callbacks().transportStateProc, nullptr);
    EXPECT_EQ(music.callbacks().transportStateProc2, nullptr);
}
