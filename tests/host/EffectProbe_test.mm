#import "host/effect/EffectProbe.h"
#import "host/effect/TarvelEffect.h"

#import <AudioToolbox/AudioToolbox.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void ignoreEvent(void*, void*, const AudioUnitEvent*, UInt64, Float32) {}

OSStatus getParameter(AudioUnit unit, AudioUnitParameterID id)
{
    AudioUnitParameterValue value = 0;
    return AudioUnitGetParameter(unit, id, kAudioUnitScope_Global, 0, &value);
}

AUEventListenerRef makeListener()
{
    AUEventListenerRef listener = nullptr;
    EXPECT_EQ(
        AUEventListenerCreate(ignoreEvent, nullptr, nullptr, nullptr, 0.05F, 0.025F, &listener),
        noErr);
    return listener;
}

AudioUnitEvent parameterEvent(AudioUnit unit, AudioUnitEventType type, AudioUnitParameterID id)
{
    AudioUnitEvent event{};
    event.mEventType = type;
    event.mArgument.mParameter = {unit, id, kAudioUnitScope_Global, 0};
    return event;
}

class EffectProbeTest : public testing::Test {
protected:
    TarvelEffect effect;
    EffectProbe probe;
    AudioUnit const unit = &effect;
};

} // namespace

TEST_F(EffectProbeTest, WritesEveryCallWithItsOwnFieldsInOrder)
{
    int view = 0;
    int slider = 0;
    probe.log().name(&view, "view");
    AUEventListenerRef const listener = makeListener();
    const AudioUnitEvent change = parameterEvent(unit, kAudioUnitEvent_ParameterValueChange, 3);
    AUEventListenerAddEventType(listener, &view, &change);
    AudioUnitEvent format{};
    format.mEventType = kAudioUnitEvent_PropertyChange;
    format.mArgument.mProperty = {unit, 8, kAudioUnitScope_Output, 0};
    AUEventListenerAddEventType(listener, nullptr, &format);
    UInt32 size = 0;
    AudioUnitGetPropertyInfo(unit, 9000, kAudioUnitScope_Global, 0, &size, nullptr);
    UInt64 length = 0;
    size = sizeof length;
    AudioUnitGetProperty(unit, 3020, kAudioUnitScope_Global, 0, &length, &size);
    const UInt32 timeFormat = 2;
    AudioUnitSetProperty(unit, 9000, kAudioUnitScope_Global, 0, &timeFormat, sizeof timeFormat);
    getParameter(unit, 7);
    AudioUnitSetParameter(unit, 1, kAudioUnitScope_Global, 0, -20, 0);
    const AudioUnitEvent begin =
        parameterEvent(unit, kAudioUnitEvent_BeginParameterChangeGesture, 1);
    AUEventListenerNotify(listener, &slider, &begin);
    const AudioUnitParameter attack{unit, 1, kAudioUnitScope_Global, 0};
    AUParameterSet(listener, &slider, &attack, -6.5F, 0);
    const AudioUnitEvent end = parameterEvent(unit, kAudioUnitEvent_EndParameterChangeGesture, 1);
    AUEventListenerNotify(listener, &view, &end);
    AUParameterListenerNotify(nullptr, nullptr, &attack);
    AUEventListenerRemoveEventType(listener, &view, &change);
    AUListenerDispose(listener);
    EXPECT_THAT(
        probe.log().take(),
        ElementsAre("AUEventListenerCreate interval 0.05 granularity 0.025",
                    "AUEventListenerAddEventType listener 1 value-change 3 global/0 object view",
                    "AUEventListenerAddEventType listener 1 property-change 8 output/0 object nil",
                    "AudioUnitGetPropertyInfo 9000 global/0",
                    "AudioUnitGetProperty 3020 global/0 size 8",
                    "AudioUnitSetProperty 9000 global/0 size 4", "AudioUnitGetParameter 7 global/0",
                    "AudioUnitSetParameter 1 global/0 value -20",
                    "AUEventListenerNotify listener 1 begin-gesture 1 global/0 object #1",
                    "AUParameterSet listener 1 1 global/0 value -6.5 object #1",
                    "AUEventListenerNotify listener 1 end-gesture 1 global/0 object view",
                    "AUParameterListenerNotify no listener 1 global/0 object nil",
                    "AUEventListenerRemoveEventType listener 1 value-change 3 global/0 object view",
                    "AUListenerDispose listener 1"));
    EXPECT_THAT(probe.log().take(), IsEmpty());
}

// A listener that is made after another was disposed may get the same address.
TEST_F(EffectProbeTest, ListenersAreNumberedInOrderOfAppearance)
{
    for (const char* const expected :
         {"AUListenerDispose listener 1", "AUListenerDispose listener 2",
          "AUListenerDispose listener 3"}) {
        AUEventListenerRef const listener = makeListener();
        probe.log().take();
        AUListenerDispose(listener);
        EXPECT_THAT(probe.log().take(), ElementsAre(expected));
    }
}

TEST_F(EffectProbeTest, UnitsWithANameAreTold)
{
    TarvelEffect other;
    probe.log().nameUnit(&other, "other");
    getParameter(unit, 0);
    getParameter(&other, 0);
    EXPECT_THAT(probe.log().take(), ElementsAre("AudioUnitGetParameter 0 global/0",
                                                "AudioUnitGetParameter 0 global/0 on other"));
}

TEST_F(EffectProbeTest, FailsAFunctionForOneId)
{
    probe.inject({.function = "AudioUnitGetParameter", .id = 3, .result = -50});
    EXPECT_EQ(getParameter(unit, 2), noErr);
    EXPECT_EQ(getParameter(unit, 3), -50);
    EXPECT_EQ(getParameter(unit, 3), -50);
    EXPECT_EQ(AudioUnitSetParameter(unit, 3, kAudioUnitScope_Global, 0, 1, 0), noErr);
    probe.clearFaults();
    EXPECT_EQ(getParameter(unit, 3), noErr);
    EXPECT_THAT(probe.log().take(), ElementsAre("AudioUnitGetParameter 2 global/0",
                                                "AudioUnitGetParameter 3 global/0 -> -50",
                                                "AudioUnitGetParameter 3 global/0 -> -50",
                                                "AudioUnitSetParameter 3 global/0 value 1",
                                                "AudioUnitGetParameter 3 global/0"));
}

TEST_F(EffectProbeTest, FailsTheNthCallThatMatches)
{
    probe.inject({.function = "AudioUnitGetParameter", .nth = 2, .result = -1});
    EXPECT_EQ(getParameter(unit, 5), noErr);
    EXPECT_EQ(AudioUnitSetParameter(unit, 5, kAudioUnitScope_Global, 0, 1, 0), noErr);
    EXPECT_EQ(getParameter(unit, 6), -1);
    EXPECT_EQ(getParameter(unit, 7), noErr);
}

TEST_F(EffectProbeTest, FailsEveryCall)
{
    probe.inject({});
    EXPECT_EQ(getParameter(unit, 1), -10879);
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kAudioUnitScope_Global, 0, 1, 0), -10879);
    AUEventListenerRef listener = nullptr;
    EXPECT_EQ(AUEventListenerCreate(ignoreEvent, nullptr, nullptr, nullptr, 0, 0, &listener),
              -10879);
    EXPECT_EQ(listener, nullptr);
}

TEST_F(EffectProbeTest, FirstFaultThatMatchesDecides)
{
    probe.inject({.function = "AudioUnitGetParameter", .id = 1, .result = -1});
    probe.inject({.function = "AudioUnitGetParameter", .nth = 2, .result = -2});
    EXPECT_EQ(getParameter(unit, 1), -1);
    EXPECT_EQ(getParameter(unit, 2), -2);
    EXPECT_EQ(getParameter(unit, 1), -1);
}

TEST_F(EffectProbeTest, FailedCallIsNotCarriedOut)
{
    probe.inject({.function = "AudioUnitSetParameter", .result = -50});
    AudioUnitSetParameter(unit, 1, kAudioUnitScope_Global, 0, -3, 0);
    EXPECT_EQ(effect.settings().attackThresholdDb, -48.0F);
}

TEST(EffectProbe, EndsWithItsObject)
{
    TarvelEffect effect;
    {
        EffectProbe probe;
        probe.inject({});
        EXPECT_EQ(getParameter(&effect, 1), -10879);
    }
    EXPECT_EQ(getParameter(&effect, 1), noErr);
}
