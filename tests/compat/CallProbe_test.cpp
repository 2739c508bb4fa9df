#include "TestListener.h"
#include "TestUnit.h"

#include <AudioUnitCompat/Testing.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using audiounit_compat::Call;
using audiounit_compat::CallProbe;
using audiounit_compat::deliverAll;
using audiounit_compat::deliverDue;
using audiounit_compat::FakeClock;
using audiounit_compat::liveListenerCount;
using audiounit_compat::setCallProbe;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr OSStatus kRefused = -1234;

class Recorder : public CallProbe {
public:
    Recorder() { setCallProbe(this); }
    ~Recorder() override { setCallProbe(nullptr); }

    OSStatus willCall(const Call& call) override
    {
        calls.push_back(call);
        return result;
    }

    std::vector<Call> calls;
    OSStatus result = noErr;
};

void _hear(void*, void*, const AudioUnitEvent*, UInt64, AudioUnitParameterValue) {}
void _announce(void*, AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement) {}

class CallProbeTest : public testing::Test {
protected:
    CallProbeTest()
    {
        unit.addProperty(9000, UInt32{3}, kAudioUnitScope_Output, 2);
        EXPECT_EQ(AUEventListenerCreate(_hear, nullptr, nullptr, nullptr, 0.5F, 0.25F, &listener),
                  noErr);
    }
    ~CallProbeTest() override { AUListenerDispose(listener); }

    // Every call there is, with telling arguments.
    std::vector<OSStatus> callEverything()
    {
        const AudioUnitEvent begin = parameterEvent(kAudioUnitEvent_BeginParameterChangeGesture,
                                                    &unit, 4, kAudioUnitScope_Output, 2);
        const AudioUnitEvent property = propertyEvent(&unit, 9000, kAudioUnitScope_Output, 2);
        const AudioUnitParameter parameter{&unit, 4, kAudioUnitScope_Output, 2};
        UInt32 data = 0;
        UInt32 size = sizeof data;
        Float32 value = 0;
        const AudioUnitScope scope = kAudioUnitScope_Output;
        return {
            AudioUnitGetPropertyInfo(&unit, 9000, scope, 2, nullptr, nullptr),
            AudioUnitGetProperty(&unit, 9000, scope, 2, &data, &size),
            AudioUnitSetProperty(&unit, 9000, scope, 2, &data, 4),
            AudioUnitGetParameter(&unit, 4, scope, 2, &value),
            AudioUnitSetParameter(&unit, 4, scope, 2, 1.5F, 0),
            AudioUnitAddPropertyListener(&unit, 9000, _announce, &object),
            AudioUnitRemovePropertyListenerWithUserData(&unit, 9000, _announce, &object),
            AUEventListenerCreate(_hear, &object, nullptr, nullptr, 0.5F, 0.25F, &created),
            AUEventListenerAddEventType(listener, &object, &begin),
            AUEventListenerRemoveEventType(listener, &object, &property),
            AUEventListenerNotify(listener, &object, &begin),
            AUParameterSet(listener, &object, &parameter, 2.5F, 0),
            AUParameterListenerNotify(listener, &object, &parameter),
            AUListenerDispose(created),
        };
    }

    TestUnit unit;
    int object = 0;
    AUEventListenerRef listener = nullptr;
    AUEventListenerRef created = nullptr;
};

TEST_F(CallProbeTest, SeesEveryCallOnceWithItsArguments)
{
    const AudioUnit kUnit = &unit;
    const AudioUnitScope kOut = kAudioUnitScope_Output;
    Recorder probe;
    callEverything();

    // clang-format off
    const Call expected[] = {
        // function                      unit   type id   scope el size value listener  object interval
        {"AudioUnitGetPropertyInfo",     kUnit, 0, 9000, kOut, 2, 0, 0,    nullptr,  nullptr, 0, 0},
        {"AudioUnitGetProperty",         kUnit, 0, 9000, kOut, 2, 4, 0,    nullptr,  nullptr, 0, 0},
        {"AudioUnitSetProperty",         kUnit, 0, 9000, kOut, 2, 4, 0,    nullptr,  nullptr, 0, 0},
        {"AudioUnitGetParameter",        kUnit, 0, 4,    kOut, 2, 0, 0,    nullptr,  nullptr, 0, 0},
        {"AudioUnitSetParameter",        kUnit, 0, 4,    kOut, 2, 0, 1.5F, nullptr,  nullptr, 0, 0},
        {"AudioUnitAddPropertyListener", kUnit, 0, 9000, 0,    0, 0, 0,    nullptr,  &object, 0, 0},
        {"AudioUnitRemovePropertyListenerWithUserData",
                                         kUnit, 0, 9000, 0,    0, 0, 0,    nullptr,  &object, 0, 0},
        {"AUEventListenerCreate",        nullptr, 0, 0,  0,    0, 0, 0,    nullptr,  &object, 0.5F, 0.25F},
        {"AUEventListenerAddEventType",  kUnit, 1, 4,    kOut, 2, 0, 0,    listener, &object, 0, 0},
        {"AUEventListenerRemoveEventType", kUnit, 3, 9000, kOut, 2, 0, 0,  listener, &object, 0, 0},
        {"AUEventListenerNotify",        kUnit, 1, 4,    kOut, 2, 0, 0,    listener, &object, 0, 0},
        {"AUParameterSet",               kUnit, 0, 4,    kOut, 2, 0, 2.5F, listener, &object, 0, 0},
        {"AUParameterListenerNotify",    kUnit, 0, 4,    kOut, 2, 0, 0,    listener, &object, 0, 0},
        {"AUListenerDispose",            nullptr, 0, 0,  0,    0, 0, 0,    created,  nullptr, 0, 0},
    };
    // clang-format on
    ASSERT_EQ(probe.calls.size(), std::size(expected));
    for (std::size_t index = 0; index < std::size(expected); ++index) {
        const Call& wanted = expected[index];
        const Call& call = probe.calls[index];
        SCOPED_TRACE(wanted.function);
        EXPECT_STREQ(call.function, wanted.function);
        EXPECT_EQ(call.unit, wanted.unit);
        EXPECT_EQ(call.eventType, wanted.eventType);
        EXPECT_EQ(call.id, wanted.id);
        EXPECT_EQ(call.scope, wanted.scope);
        EXPECT_EQ(call.element, wanted.element);
        EXPECT_EQ(call.size, wanted.size);
        EXPECT_EQ(call.value, wanted.value);
        EXPECT_EQ(call.listener, wanted.listener);
        EXPECT_EQ(call.object, wanted.object);
        EXPECT_EQ(call.interval, wanted.interval);
        EXPECT_EQ(call.granularity, wanted.granularity);
    }
}

TEST_F(CallProbeTest, RefusedCallsGiveItsResultAndAreNotCarriedOut)
{
    unit.values[4] = 9;
    const std::size_t listeners = liveListenerCount();
    Recorder probe;
    probe.result = kRefused;
    const std::vector<OSStatus> results = callEverything();
    EXPECT_EQ(results, std::vector<OSStatus>(results.size(), kRefused));
    EXPECT_EQ(unit.values[4], 9);
    EXPECT_EQ(unit.propertyAt(9000, kAudioUnitScope_Output, 2).sets, 0U);
    EXPECT_EQ(liveListenerCount(), listeners);
    EXPECT_EQ(created, nullptr);
}

TEST_F(CallProbeTest, RefusedSetOrNotifyTellsNobody)
{
    TestListener hearing(0, 0);
    hearing.add(valueEvent(&unit, 4));
    hearing.add(beginEvent(&unit, 4));
    const AudioUnitEvent begin = beginEvent(&unit, 4);
    {
        Recorder probe;
        probe.result = kRefused;
        EXPECT_EQ(setParameter(&unit, 4, 1), kRefused);
        EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &begin), kRefused);
    }
    EXPECT_THAT(hearing.heard, IsEmpty());
}

TEST_F(CallProbeTest, SeesCallsThatWillBeRefusedForTheirArguments)
{
    Recorder probe;
    EXPECT_EQ(AUParameterSet(nullptr, nullptr, nullptr, 1, 0), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(AudioUnitGetProperty(nullptr, 1, 0, 0, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(probe.calls.size(), 3U);
}

TEST(FakeClockTest, StartsAtOneSecondAndMovesOnlyWhenTold)
{
    FakeClock clock;
    EXPECT_EQ(clock.now(), 1'000'000'000U);
    clock.advance(0.05);
    EXPECT_EQ(clock.now(), 1'050'000'000U);
}

// The listener lives through a change of clock without its times running backwards or merging.
TEST(FakeClockTest, ListenerMadeBeforeItWorksOnTheFakeTime)
{
    TestUnit unit;
    TestListener listener(0.2F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    deliverAll();
    FakeClock clock;
    setParameter(&unit, 1, 2);
    clock.advance(0.05);
    setParameter(&unit, 1, 3);
    clock.advance(0.15);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(1, 2), heardValue(1, 3)));
    EXPECT_EQ(listener.times.back(), 1'050'000'000U);
}

} // namespace
