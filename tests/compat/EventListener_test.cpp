#include "TestListener.h"
#include "TestUnit.h"

#include <AudioUnitCompat/Testing.h>

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>

using audiounit_compat::deliverAll;
using audiounit_compat::deliverDue;
using audiounit_compat::FakeClock;
using audiounit_compat::liveListenerCount;
using audiounit_compat::livePropertyListenerCount;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr UInt64 kSecond = 1'000'000'000;
constexpr UInt64 kMs = 1'000'000;

class EventListener : public testing::Test {
protected:
    FakeClock clock;
    TestUnit unit;
};

/// Any addresses will do as objects.
int gViews[2];
void* const kView = &gViews[0];
void* const kControl = &gViews[1];

// Delivery ----------------------------------------------------------------------------------------

TEST_F(EventListener, DeliversNothingBeforeTheIntervalHasPassed)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    clock.advance(0.049999);
    deliverDue();
    EXPECT_THAT(listener.heard, IsEmpty());
    clock.advance(0.000001);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
}

TEST_F(EventListener, DeadlineRunsFromTheFirstUndeliveredEvent)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    // One change each 10 ms without a pause: every window still ends.
    for (int change = 1; change <= 12; ++change) {
        setParameter(&unit, 1, static_cast<float>(change));
        clock.advance(0.01);
        deliverDue();
    }
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 5), heardValue(1, 10)));
}

TEST_F(EventListener, DeliverAllDoesNotWaitForTheInterval)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
}

TEST_F(EventListener, IntervalZeroDeliversInsideTheNotifyingCall)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
}

TEST_F(EventListener, ListenersAreServedInTheOrderTheyWereMade)
{
    TestListener first(0.05F, 0.05F);
    TestListener second(0.05F, 0.05F);
    std::vector<int> order;
    first.onEvent = [&] { order.push_back(1); };
    second.onEvent = [&] { order.push_back(2); };
    second.add(valueEvent(&unit, 1));
    first.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    deliverAll();
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(EventListener, TimeIsThatOfTheNotificationInNanoseconds)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    clock.advance(0.02);
    setParameter(&unit, 1, 1);
    clock.advance(0.01);
    setParameter(&unit, 1, 2);
    clock.advance(1);
    deliverDue();
    EXPECT_THAT(listener.times, ElementsAre(kSecond + 20 * kMs, kSecond + 30 * kMs));
}

TEST_F(EventListener, CallbackGetsTheWholeRegisteredEventAndObject)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(
        parameterEvent(kAudioUnitEvent_ParameterValueChange, &unit, 3, kAudioUnitScope_Output, 2),
        kView);
    const AudioUnitParameter record{&unit, 3, kAudioUnitScope_Output, 2};
    AUParameterSet(nullptr, kControl, &record, 5, 0);
    deliverAll();
    ASSERT_EQ(listener.events.size(), 1U);
    EXPECT_EQ(listener.objects.front(), kView);
    EXPECT_EQ(listener.events.front().mArgument.mParameter.mAudioUnit, &unit);
    EXPECT_EQ(listener.events.front().mArgument.mParameter.mScope, kAudioUnitScope_Output);
    EXPECT_EQ(listener.events.front().mArgument.mParameter.mElement, 2U);
}

// Granularity -------------------------------------------------------------------------------------

TEST_F(EventListener, OfChangesCloserThanTheGranularityOnlyTheLaterIsReported)
{
    TestListener listener(0.2F, 0.01F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    clock.advance(0.009);
    setParameter(&unit, 1, 2);
    clock.advance(0.01); // exactly the granularity is not closer
    setParameter(&unit, 1, 3);
    clock.advance(0.2);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 2), heardValue(1, 3)));
    EXPECT_THAT(listener.times, ElementsAre(kSecond + 9 * kMs, kSecond + 19 * kMs));
}

TEST_F(EventListener, GranularityWindowSlidesWithTheLastChange)
{
    TestListener listener(0.2F, 0.01F);
    listener.add(valueEvent(&unit, 1));
    for (int change = 1; change <= 15; ++change) {
        setParameter(&unit, 1, static_cast<float>(change));
        clock.advance(0.009);
    }
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 15)));
}

TEST_F(EventListener, GranularityZeroReportsEveryChange)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    setParameter(&unit, 1, 2);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(1, 2)));
}

TEST_F(EventListener, EndlessGranularityReportsOnlyTheLastChange)
{
    TestListener listener(0.05F, std::numeric_limits<Float32>::max());
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    clock.advance(1000);
    setParameter(&unit, 1, 2);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 2)));
}

TEST_F(EventListener, ReplacedChangeMovesToTheLaterTime)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    listener.add(valueEvent(&unit, 2));
    setParameter(&unit, 1, 10);
    clock.advance(0.01);
    setParameter(&unit, 2, 20);
    clock.advance(0.01);
    setParameter(&unit, 1, 11);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(2, 20), heardValue(1, 11)));
}

TEST_F(EventListener, NoValueMovesAcrossAGestureOfItsParameter)
{
    TestListener listener(0.05F, 0.05F);
    for (const auto& event : {valueEvent(&unit, 1), beginEvent(&unit, 1), endEvent(&unit, 1)}) {
        listener.add(event);
    }
    const AudioUnitEvent begin = beginEvent(&unit, 1);
    const AudioUnitEvent end = endEvent(&unit, 1);
    setParameter(&unit, 1, 1);
    AUEventListenerNotify(nullptr, nullptr, &begin);
    setParameter(&unit, 1, 2);
    setParameter(&unit, 1, 3);
    AUEventListenerNotify(nullptr, nullptr, &end);
    setParameter(&unit, 1, 4);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardBegin(1), heardValue(1, 3),
                                            heardEnd(1), heardValue(1, 4)));
}

TEST_F(EventListener, GestureOfAnotherParameterDoesNotKeepValuesApart)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    listener.add(beginEvent(&unit, 2));
    const AudioUnitEvent begin = beginEvent(&unit, 2);
    setParameter(&unit, 1, 1);
    AUEventListenerNotify(nullptr, nullptr, &begin);
    setParameter(&unit, 1, 2);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardBegin(2), heardValue(1, 2)));
}

TEST_F(EventListener, GestureHeardForOneObjectKeepsTheValuesOfAnotherApart)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(endEvent(&unit, 1), kControl);
    const AudioUnitEvent end = endEvent(&unit, 1);
    setParameter(&unit, 1, 1);
    AUEventListenerNotify(nullptr, nullptr, &end);
    setParameter(&unit, 1, 2);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardEnd(1), heardValue(1, 2)));
}

TEST_F(EventListener, EqualPropertyEventsAndGesturesAreAllKept)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(propertyEvent(&unit, 9000));
    listener.add(beginEvent(&unit, 1));
    const AudioUnitEvent begin = beginEvent(&unit, 1);
    unit.propertyChanged(9000, 0, 0);
    AUEventListenerNotify(nullptr, nullptr, &begin);
    unit.propertyChanged(9000, 0, 0);
    AUEventListenerNotify(nullptr, nullptr, &begin);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardProperty(9000), heardBegin(1), heardProperty(9000),
                                            heardBegin(1)));
}

TEST_F(EventListener, MergingDoesNotReachBackIntoAnEarlierDelivery)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    deliverAll();
    setParameter(&unit, 1, 2);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(1, 2)));
}

TEST_F(EventListener, OneListenersRegistrationsOfOneParameterAreMergedEachForItself)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(valueEvent(&unit, 1), kControl);
    setParameter(&unit, 1, 1);
    setParameter(&unit, 1, 2);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 2), heardValue(1, 2)));
    EXPECT_THAT(listener.objects, ElementsAre(kView, kControl));
}

// Values ------------------------------------------------------------------------------------------

TEST_F(EventListener, ParameterSetReportsTheValueGiven)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 5);
    unit.values[1] = 6;
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 5)));
}

TEST_F(EventListener, ParameterSetHandsOnTheBufferOffset)
{
    const AudioUnitParameter record{&unit, 1, kAudioUnitScope_Global, 0};
    EXPECT_EQ(AUParameterSet(nullptr, nullptr, &record, 5, 64), noErr);
    EXPECT_EQ(unit.values[1], 5);
    EXPECT_EQ(unit.lastOffset, 64U);
}

TEST_F(EventListener, NotifiedValueIsReadAtNotifyTimeNotAtDelivery)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    const AudioUnitEvent event = valueEvent(&unit, 1);
    unit.values[1] = 5;
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &event), noErr);
    unit.values[1] = 6;
    EXPECT_EQ(AUParameterListenerNotify(nullptr, nullptr, &event.mArgument.mParameter), noErr);
    unit.values[1] = 7;
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 5), heardValue(1, 6)));
}

TEST_F(EventListener, BareAudioUnitSetParameterTellsNobody)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1));
    EXPECT_EQ(AudioUnitSetParameter(&unit, 1, 0, 0, 5, 0), noErr);
    EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(EventListener, FailedSetGivesItsErrorAndTellsNobody)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 10));
    EXPECT_EQ(setParameter(&unit, 10, 5), kAudioUnitErr_InvalidParameter);
    EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(EventListener, NotifyOfAnUnreadableValueGivesItsErrorAndTellsNobody)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 10));
    const AudioUnitEvent event = valueEvent(&unit, 10);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &event), kAudioUnitErr_InvalidParameter);
    EXPECT_EQ(AUParameterListenerNotify(nullptr, nullptr, &event.mArgument.mParameter),
              kAudioUnitErr_InvalidParameter);
    EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(EventListener, PropertyEventsAndGesturesHaveTheValueZero)
{
    TestListener listener(0, 0);
    listener.add(propertyEvent(&unit, 1));
    listener.add(endEvent(&unit, 1));
    unit.values[1] = 5;
    const AudioUnitEvent property = propertyEvent(&unit, 1);
    const AudioUnitEvent end = endEvent(&unit, 1);
    AUEventListenerNotify(nullptr, nullptr, &property);
    AUEventListenerNotify(nullptr, nullptr, &end);
    EXPECT_THAT(listener.heard, ElementsAre(heardProperty(1), heardEnd(1)));
}

// AnyParameter ------------------------------------------------------------------------------------

TEST_F(EventListener, AnyParameterReportsToEachRegistrationItsOwnPresentValue)
{
    TestUnit other;
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 2));
    listener.add(valueEvent(&unit, 1));
    listener.add(valueEvent(&other, 1));
    listener.add(beginEvent(&unit, 1));
    listener.add(propertyEvent(&unit, 1));
    unit.values[1] = 10;
    unit.values[2] = 20;
    // Scope and element of such a record are often left as they were.
    const AudioUnitParameter any{&unit, kAUParameterListener_AnyParameter, 0xDEAD, 0xBEEF};
    EXPECT_EQ(AUParameterListenerNotify(nullptr, nullptr, &any), noErr);
    EXPECT_THAT(listener.take(), ElementsAre(heardValue(1, 10), heardValue(2, 20)));

    const AudioUnitEvent event = parameterEvent(kAudioUnitEvent_ParameterValueChange, &unit,
                                                kAUParameterListener_AnyParameter, 0xDEAD, 0xBEEF);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &event), noErr);
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 10), heardValue(2, 20)));
}

TEST_F(EventListener, AnyParameterPassesOverParametersThatCannotBeRead)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 10));
    listener.add(valueEvent(&unit, 1));
    const AudioUnitParameter any{&unit, kAUParameterListener_AnyParameter, 0, 0};
    EXPECT_EQ(AUParameterListenerNotify(nullptr, nullptr, &any), noErr);
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 0)));
}

TEST_F(EventListener, AnyParameterKeepsTheSkipRule)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(valueEvent(&unit, 2), kControl);
    const AudioUnitParameter any{&unit, kAUParameterListener_AnyParameter, 0, 0};
    AUParameterListenerNotify(listener.ref, kView, &any);
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(2, 0)));
}

TEST_F(EventListener, AnyParameterCannotBeRegistered)
{
    TestListener listener(0, 0);
    const AudioUnitEvent event = valueEvent(&unit, kAUParameterListener_AnyParameter);
    EXPECT_EQ(AUEventListenerAddEventType(listener.ref, nullptr, &event), kAudio_ParamError);
}

// Who is skipped ----------------------------------------------------------------------------------

struct SkipRow {
    const char* name;
    bool sentByListener;
    void* sendingObject;
    std::vector<void*> heardFor; // objects of the sending listener's registrations
};

TEST_F(EventListener, SkipsOnlyTheSendersOwnRegistrations)
{
    TestListener listener(0, 0);
    TestListener other(0, 0);
    for (const auto& event : {valueEvent(&unit, 1), beginEvent(&unit, 1)}) {
        listener.add(event, kView);
        listener.add(event, kControl);
        other.add(event, kView);
    }
    const SkipRow rows[] = {
        {"no listener, no object", false, nullptr, {kView, kControl}},
        {"no listener, an object", false, kView, {kView, kControl}},
        {"listener without object", true, nullptr, {}},
        {"listener and object", true, kView, {kControl}},
        {"listener and unregistered object", true, &unit, {kView, kControl}},
    };
    for (const SkipRow& row : rows) {
        SCOPED_TRACE(row.name);
        AUEventListenerRef const sender = row.sentByListener ? listener.ref : nullptr;
        const AudioUnitEvent value = valueEvent(&unit, 1);
        const AudioUnitEvent begin = beginEvent(&unit, 1);

        setParameter(&unit, 1, 1, sender, row.sendingObject);
        EXPECT_EQ(listener.objects, row.heardFor);
        listener.take();
        AUEventListenerNotify(sender, row.sendingObject, &begin);
        EXPECT_EQ(listener.objects, row.heardFor);
        listener.take();
        AUParameterListenerNotify(sender, row.sendingObject, &value.mArgument.mParameter);
        EXPECT_EQ(listener.objects, row.heardFor);
        listener.take();

        EXPECT_EQ(other.take().size(), 3U);
    }
}

// Matching ----------------------------------------------------------------------------------------

TEST_F(EventListener, ParameterRegistrationsMatchOnEveryField)
{
    TestUnit other;
    TestListener listener(0, 0);
    listener.add(
        parameterEvent(kAudioUnitEvent_ParameterValueChange, &unit, 1, kAudioUnitScope_Output, 2));
    struct {
        const char* name;
        AudioUnitEvent event;
        bool heard;
    } const rows[] = {
        {"same", parameterEvent(0, &unit, 1, kAudioUnitScope_Output, 2), true},
        {"unit", parameterEvent(0, &other, 1, kAudioUnitScope_Output, 2), false},
        {"id", parameterEvent(0, &unit, 2, kAudioUnitScope_Output, 2), false},
        {"scope", parameterEvent(0, &unit, 1, kAudioUnitScope_Input, 2), false},
        {"element", parameterEvent(0, &unit, 1, kAudioUnitScope_Output, 0), false},
        {"begin", parameterEvent(1, &unit, 1, kAudioUnitScope_Output, 2), false},
        {"end", parameterEvent(2, &unit, 1, kAudioUnitScope_Output, 2), false},
        {"property", propertyEvent(&unit, 1, kAudioUnitScope_Output, 2), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &row.event), noErr);
        EXPECT_EQ(listener.take().size(), row.heard ? 1U : 0U);
    }
}

TEST_F(EventListener, PropertyRegistrationsCompareScopeAndElement)
{
    TestUnit other;
    TestListener listener(0, 0);
    listener.add(propertyEvent(&unit, 8, kAudioUnitScope_Output, 0));
    unit.propertyChanged(8, kAudioUnitScope_Global, 0);
    unit.propertyChanged(8, kAudioUnitScope_Output, 1);
    unit.propertyChanged(2, kAudioUnitScope_Output, 0);
    other.propertyChanged(8, kAudioUnitScope_Output, 0);
    EXPECT_THAT(listener.heard, IsEmpty());
    unit.propertyChanged(8, kAudioUnitScope_Output, 0);
    EXPECT_THAT(listener.heard, ElementsAre(heardProperty(8)));
}

TEST_F(EventListener, SetPropertyQueuesItsEventBeforeItReturns)
{
    unit.addProperty(9000, UInt32{1});
    TestListener listener(0.05F, 0.05F);
    listener.add(propertyEvent(&unit, 9000));
    const UInt32 format = 1; // announced also when it is equal
    EXPECT_EQ(AudioUnitSetProperty(&unit, 9000, 0, 0, &format, sizeof format), noErr);
    EXPECT_THAT(listener.heard, IsEmpty());
    clock.advance(0.05);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardProperty(9000)));
}

TEST_F(EventListener, PropertyRegistrationCountsAsAPropertyListenerUntilDispose)
{
    const std::size_t before = livePropertyListenerCount();
    TestListener listener(0.05F, 0.05F);
    listener.add(propertyEvent(&unit, 8, kAudioUnitScope_Output, 0));
    listener.add(propertyEvent(&unit, 9000));
    listener.add(valueEvent(&unit, 1));
    EXPECT_EQ(livePropertyListenerCount(), before + 2);
    listener.dispose();
    EXPECT_EQ(livePropertyListenerCount(), before);
}

TEST_F(EventListener, AddingTheSameEventTwiceIsIgnored)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(propertyEvent(&unit, 1), kView);
    listener.add(propertyEvent(&unit, 1), kView);
    setParameter(&unit, 1, 5);
    unit.propertyChanged(1, 0, 0);
    EXPECT_EQ(listener.heard.size(), 2U);
}

TEST_F(EventListener, RemovedEventIsNotHeardNorDeliveredWhenItWaits)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1), kView);
    listener.add(valueEvent(&unit, 1), kControl);
    const AudioUnitEvent event = valueEvent(&unit, 1);
    setParameter(&unit, 1, 5);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener.ref, kView, &event), noErr);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener.ref, kView, &event), noErr);
    setParameter(&unit, 1, 6);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 6)));
    EXPECT_THAT(listener.objects, ElementsAre(kControl));
}

TEST_F(EventListener, EventAddedAgainAfterRemovalIsHeardFromThenOn)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    const AudioUnitEvent event = valueEvent(&unit, 1);
    setParameter(&unit, 1, 5);
    AUEventListenerRemoveEventType(listener.ref, nullptr, &event);
    listener.add(event);
    setParameter(&unit, 1, 6);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 6)));
}

// Refusals ----------------------------------------------------------------------------------------

void _ignore(void*, void*, const AudioUnitEvent*, UInt64, AudioUnitParameterValue) {}

TEST_F(EventListener, CreateRefusesMissingPartsAndImpossibleTimes)
{
    const std::size_t before = liveListenerCount();
    AUEventListenerRef listener = nullptr;
    const auto create = [&](AUEventListenerProc proc, Float32 interval, Float32 granularity,
                            AUEventListenerRef* out) {
        return AUEventListenerCreate(proc, nullptr, nullptr, nullptr, interval, granularity, out);
    };
    EXPECT_EQ(create(nullptr, 0, 0, &listener), kAudio_ParamError);
    EXPECT_EQ(create(_ignore, 0, 0, nullptr), kAudio_ParamError);
    EXPECT_EQ(create(_ignore, -1, 0, &listener), kAudio_ParamError);
    EXPECT_EQ(create(_ignore, 0, -1, &listener), kAudio_ParamError);
    EXPECT_EQ(create(_ignore, NAN, 0, &listener), kAudio_ParamError);
    EXPECT_EQ(create(_ignore, 0, INFINITY, &listener), kAudio_ParamError);
    EXPECT_EQ(listener, nullptr);
    EXPECT_EQ(liveListenerCount(), before);
}

TEST_F(EventListener, CallsRefuseMissingAndUnknownArguments)
{
    TestListener listener(0, 0);
    AUEventListenerRef const disposed = listener.ref;
    const AudioUnitEvent event = valueEvent(&unit, 1);
    const AudioUnitEvent unknownType = parameterEvent(4, &unit, 1);
    EXPECT_EQ(AUEventListenerAddEventType(nullptr, nullptr, &event), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(listener.ref, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(listener.ref, nullptr, &unknownType), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerRemoveEventType(nullptr, nullptr, &event), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener.ref, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerRemoveEventType(listener.ref, nullptr, &unknownType),
              kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &unknownType), kAudio_ParamError);
    EXPECT_EQ(AUParameterListenerNotify(nullptr, nullptr, nullptr), kAudio_ParamError);
    EXPECT_EQ(AUParameterSet(nullptr, nullptr, nullptr, 1, 0), kAudio_ParamError);
    EXPECT_EQ(AUListenerDispose(nullptr), kAudio_ParamError);
    listener.dispose();
    EXPECT_EQ(AUListenerDispose(disposed), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(disposed, nullptr, &event), kAudio_ParamError);
}

// Ends --------------------------------------------------------------------------------------------

TEST_F(EventListener, DisposeDropsWhatWaits)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 5);
    listener.dispose();
    setParameter(&unit, 1, 6);
    deliverAll();
    EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(EventListener, DisposeInsideItsCallbackEndsTheDelivery)
{
    const std::size_t before = liveListenerCount();
    for (const Float32 interval : {0.0F, 0.05F}) {
        SCOPED_TRACE(interval);
        TestListener listener(interval, 0);
        listener.add(valueEvent(&unit, 1), kView);
        listener.add(valueEvent(&unit, 1), kControl);
        listener.onEvent = [&] { listener.dispose(); };
        setParameter(&unit, 1, 5);
        setParameter(&unit, 1, 6);
        deliverAll();
        EXPECT_EQ(listener.heard.size(), 1U);
        EXPECT_EQ(liveListenerCount(), before);
    }
}

TEST_F(EventListener, OneListenerMayDisposeAnotherThatIsStillToBeServed)
{
    TestListener first(0.05F, 0);
    TestListener second(0.05F, 0);
    first.add(valueEvent(&unit, 1));
    second.add(valueEvent(&unit, 1));
    first.onEvent = [&] { second.dispose(); };
    setParameter(&unit, 1, 5);
    deliverAll();
    EXPECT_EQ(first.heard.size(), 1U);
    EXPECT_THAT(second.heard, IsEmpty());
}

TEST_F(EventListener, EventsOfAUnitThatIsGoneAreDropped)
{
    auto gone = std::make_unique<TestUnit>();
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(gone.get(), 1));
    listener.add(propertyEvent(gone.get(), 9000));
    listener.add(valueEvent(&unit, 1));
    setParameter(gone.get(), 1, 5);
    gone->propertyChanged(9000, 0, 0);
    setParameter(&unit, 1, 6);
    gone.reset();
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 6)));
    listener.dispose();
}

TEST_F(EventListener, UnitMadeAtAnOldAddressDoesNotInheritRegistrations)
{
    std::optional<TestUnit> place(std::in_place);
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&*place, 1));
    setParameter(&*place, 1, 5);
    place.emplace();
    setParameter(&*place, 1, 6);
    deliverAll();
    EXPECT_THAT(listener.heard, IsEmpty());
}

TEST_F(EventListener, CallsOnAUnitThatIsGoneGiveAnError)
{
    AudioUnit gone = nullptr;
    {
        TestUnit unitOfThisBlock;
        gone = &unitOfThisBlock;
    }
    TestListener listener(0, 0);
    const AudioUnitEvent value = valueEvent(gone, 1);
    const AudioUnitEvent begin = beginEvent(gone, 1);
    EXPECT_EQ(setParameter(gone, 1, 5), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &value), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerNotify(nullptr, nullptr, &begin), kAudio_ParamError);
    EXPECT_EQ(AUEventListenerAddEventType(listener.ref, nullptr, &value), kAudio_ParamError);
}

// Inside callbacks --------------------------------------------------------------------------------

TEST_F(EventListener, WriteFromACallbackIsDeliveredLater)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    listener.onEvent = [&] {
        if (listener.heard.size() == 1) {
            setParameter(&unit, 1, 6);
        }
    };
    setParameter(&unit, 1, 5);
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 5)));
    clock.advance(0.05);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 5), heardValue(1, 6)));
}

// A callback that runs the run loop itself, for a panel say, is followed by the rest of its own
// delivery first.
TEST_F(EventListener, NestedDeliveryKeepsTheOrder)
{
    TestListener listener(0.05F, 0);
    for (UInt32 parameter : {1U, 2U, 3U}) {
        listener.add(valueEvent(&unit, parameter));
        setParameter(&unit, parameter, static_cast<float>(parameter));
    }
    listener.onEvent = [&] {
        if (listener.heard.size() == 1) {
            setParameter(&unit, 1, 9);
            deliverAll();
        }
    };
    deliverAll();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(2, 2), heardValue(3, 3),
                                            heardValue(1, 9)));
}

TEST_F(EventListener, CallbackThatThrowsLosesOnlyItsOwnEvent)
{
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 1);
    setParameter(&unit, 1, 2);
    listener.onEvent = [&] {
        if (listener.heard.size() == 1) {
            throw 1;
        }
    };
    clock.advance(0.05);
    EXPECT_THROW(deliverDue(), int);
    deliverDue();
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(1, 2)));
}

TEST_F(EventListener, IntervalZeroCallbackMaySetAnotherParameterAtOnce)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1));
    listener.add(valueEvent(&unit, 2));
    listener.onEvent = [&] {
        if (listener.heard.size() == 1) {
            setParameter(&unit, 2, 2);
        }
    };
    setParameter(&unit, 1, 1);
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1), heardValue(2, 2)));
}

// More than the cells that are set aside for waiting events.
TEST_F(EventListener, NoEventIsLostHoweverManyWait)
{
    constexpr int kEvents = 20'000;
    TestListener listener(0.05F, 0);
    listener.add(valueEvent(&unit, 1));
    for (int round = 0; round < 2; ++round) {
        for (int change = 0; change < kEvents; ++change) {
            setParameter(&unit, 1, static_cast<float>(change));
        }
        deliverAll();
        const auto heard = listener.take();
        ASSERT_EQ(heard.size(), static_cast<std::size_t>(kEvents));
        for (int change = 0; change < kEvents; ++change) {
            ASSERT_EQ(heard[static_cast<std::size_t>(change)].value, static_cast<float>(change));
        }
    }
}

TEST_F(EventListener, ThousandListenersComeAndGoWithoutTrace)
{
    const std::size_t before = liveListenerCount();
    for (int round = 0; round < 1000; ++round) {
        TestListener listener(0.05F, 0.05F);
        listener.add(valueEvent(&unit, 1));
        setParameter(&unit, 1, 1);
    }
    EXPECT_EQ(liveListenerCount(), before);
}

} // namespace
