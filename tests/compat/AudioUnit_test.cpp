#include "TestUnit.h"

#include <AudioUnitCompat/Testing.h>

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

using audiounit_compat::livePropertyListenerCount;
using audiounit_compat::liveUnitCount;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr AudioUnitPropertyID kLength = 3020;
constexpr UInt64 kLengthValue = 0x1122334455667788;

class AudioUnitCalls : public testing::Test {
protected:
    AudioUnitCalls() { unit.addProperty(kLength, kLengthValue); }

    OSStatus get(void* data, UInt32* size, AudioUnitPropertyID property = kLength)
    {
        return AudioUnitGetProperty(&unit, property, kAudioUnitScope_Global, 0, data, size);
    }

    OSStatus set(const void* data, UInt32 size, AudioUnitPropertyID property = kLength)
    {
        return AudioUnitSetProperty(&unit, property, kAudioUnitScope_Global, 0, data, size);
    }

    TestUnit unit;
};

// Reading -----------------------------------------------------------------------------------------

TEST_F(AudioUnitCalls, GetPropertyOfTheRightSizeGivesTheValue)
{
    UInt64 value = 0;
    UInt32 size = sizeof value;
    EXPECT_EQ(get(&value, &size), noErr);
    EXPECT_EQ(value, kLengthValue);
    EXPECT_EQ(size, sizeof value);
}

TEST_F(AudioUnitCalls, GetPropertyWithoutASizeIsAParameterError)
{
    UInt64 value = 1;
    EXPECT_EQ(get(&value, nullptr), kAudio_ParamError);
    EXPECT_EQ(value, 1U);
}

TEST_F(AudioUnitCalls, GetPropertyWithoutDataAsksForTheSize)
{
    for (UInt32 size : {0U, 1U, 100U}) {
        EXPECT_EQ(get(nullptr, &size), noErr);
        EXPECT_EQ(size, 8U);
    }
}

TEST_F(AudioUnitCalls, GetPropertyWithRoomForNothingIsAParameterError)
{
    UInt64 value = 1;
    UInt32 size = 0;
    EXPECT_EQ(get(&value, &size), kAudio_ParamError);
    EXPECT_EQ(value, 1U);
}

TEST_F(AudioUnitCalls, GetPropertyIntoAShorterBufferCopiesTheFirstBytes)
{
    std::array<unsigned char, 8> buffer;
    buffer.fill(0xEE);
    UInt32 size = 3;
    EXPECT_EQ(get(buffer.data(), &size), noErr);
    EXPECT_EQ(size, 3U);
    EXPECT_THAT(buffer, ElementsAre(0x88, 0x77, 0x66, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE));
}

TEST_F(AudioUnitCalls, GetPropertyIntoALongerBufferTellsTheRealSize)
{
    std::array<UInt64, 2> buffer{0, 5};
    UInt32 size = sizeof buffer;
    EXPECT_EQ(get(buffer.data(), &size), noErr);
    EXPECT_EQ(size, 8U);
    EXPECT_THAT(buffer, ElementsAre(kLengthValue, 5U));
}

TEST_F(AudioUnitCalls, GetPropertyWhoseValueFailsSetsTheSizeToZero)
{
    unit.propertyAt(kLength).getError = kAudioUnitErr_CannotDoInCurrentContext;
    for (const UInt32 room : {3U, 8U, 16U}) {
        std::array<UInt64, 2> buffer{1, 2};
        UInt32 size = room;
        EXPECT_EQ(get(buffer.data(), &size), kAudioUnitErr_CannotDoInCurrentContext);
        EXPECT_EQ(size, 0U);
        EXPECT_THAT(buffer, ElementsAre(1U, 2U));
    }
}

TEST_F(AudioUnitCalls, GetPropertyThatIsUnknownTouchesNothing)
{
    UInt64 value = 1;
    UInt32 size = sizeof value;
    EXPECT_EQ(get(&value, &size, 4711), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(value, 1U);
    EXPECT_EQ(size, sizeof value);
    EXPECT_EQ(get(nullptr, &size, 4711), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(size, sizeof value);
}

TEST_F(AudioUnitCalls, ScopeAndElementReachTheUnit)
{
    unit.addProperty(8, UInt32{7}, kAudioUnitScope_Output, 3);
    UInt32 value = 0;
    UInt32 size = sizeof value;
    EXPECT_EQ(AudioUnitGetProperty(&unit, 8, kAudioUnitScope_Output, 3, &value, &size), noErr);
    EXPECT_EQ(value, 7U);
}

TEST_F(AudioUnitCalls, GetPropertyInfoTakesNullOutputs)
{
    unit.propertyAt(kLength).writable = false;
    UInt32 size = 0;
    Boolean writable = 1;
    const auto info = [&](AudioUnitPropertyID property, UInt32* outSize, Boolean* outWritable) {
        return AudioUnitGetPropertyInfo(&unit, property, 0, 0, outSize, outWritable);
    };
    EXPECT_EQ(info(kLength, nullptr, nullptr), noErr);
    EXPECT_EQ(info(kLength, &size, &writable), noErr);
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(writable, 0);
    EXPECT_EQ(info(4711, &size, &writable), kAudioUnitErr_InvalidProperty);
    EXPECT_EQ(size, 8U);
}

// Writing -----------------------------------------------------------------------------------------

TEST_F(AudioUnitCalls, SetPropertyStoresAndAnnouncesEvenAnEqualValue)
{
    EXPECT_EQ(set(&kLengthValue, sizeof kLengthValue), noErr);
    EXPECT_EQ(set(&kLengthValue, sizeof kLengthValue), noErr);
    EXPECT_EQ(unit.propertyAt(kLength).sets, 2U);
}

TEST_F(AudioUnitCalls, SetPropertyWithHalfAValueIsAParameterError)
{
    EXPECT_EQ(set(nullptr, 8), kAudio_ParamError);
    EXPECT_EQ(set(&kLengthValue, 0), kAudio_ParamError);
    EXPECT_EQ(unit.propertyAt(kLength).sets, 0U);
}

TEST_F(AudioUnitCalls, SetPropertyToNothingRemovesTheValue)
{
    EXPECT_EQ(set(nullptr, 0), noErr);
    EXPECT_THAT(unit.propertyAt(kLength).value, IsEmpty());
}

TEST_F(AudioUnitCalls, SetPropertyOfTheWrongSizeIsRefused)
{
    const std::array<UInt64, 2> value{};
    EXPECT_EQ(set(value.data(), 7), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(set(value.data(), 9), kAudioUnitErr_InvalidPropertyValue);
    EXPECT_EQ(unit.propertyAt(kLength).sets, 0U);
}

TEST_F(AudioUnitCalls, SetPropertyThatIsReadOnlyOrUnknownIsRefused)
{
    unit.propertyAt(kLength).writable = false;
    EXPECT_EQ(set(&kLengthValue, 8), kAudioUnitErr_PropertyNotWritable);
    EXPECT_EQ(set(nullptr, 0), kAudioUnitErr_PropertyNotWritable);
    EXPECT_EQ(set(&kLengthValue, 8, 4711), kAudioUnitErr_InvalidProperty);
}

OSStatus _noTempo(void*, Float64*, Float64*) { return noErr; }

TEST_F(AudioUnitCalls, HostCallbacksOfAnySizeFillTheRecord)
{
    unit.addProperty(kAudioUnitProperty_HostCallbacks, HostCallbackInfo{});
    struct {
        HostCallbackInfo info;
        UInt64 more;
    } longer{};
    longer.info.hostUserData = &unit;
    longer.info.beatAndTempoProc = _noTempo;
    longer.info.transportStateProc2 = nullptr;
    longer.more = 5;
    for (const UInt32 size : {16U, 40U, 48U}) {
        EXPECT_EQ(set(&longer, size, kAudioUnitProperty_HostCallbacks), noErr);
        HostCallbackInfo stored;
        UInt32 storedSize = sizeof stored;
        EXPECT_EQ(get(&stored, &storedSize, kAudioUnitProperty_HostCallbacks), noErr);
        EXPECT_EQ(storedSize, 40U);
        EXPECT_EQ(stored.hostUserData, &unit);
        EXPECT_EQ(stored.beatAndTempoProc, &_noTempo);
        EXPECT_EQ(stored.musicalTimeLocationProc, nullptr);
    }
}

TEST_F(AudioUnitCalls, ShortHostCallbacksClearWhatWasThere)
{
    unit.addProperty(kAudioUnitProperty_HostCallbacks, HostCallbackInfo{});
    HostCallbackInfo info{};
    info.beatAndTempoProc = _noTempo;
    set(&info, sizeof info, kAudioUnitProperty_HostCallbacks);
    set(&info, 8, kAudioUnitProperty_HostCallbacks);
    HostCallbackInfo stored;
    UInt32 size = sizeof stored;
    get(&stored, &size, kAudioUnitProperty_HostCallbacks);
    EXPECT_EQ(stored.beatAndTempoProc, nullptr);
}

// Parameters --------------------------------------------------------------------------------------

TEST_F(AudioUnitCalls, ParametersAreSetAndReadWithoutLimits)
{
    EXPECT_EQ(AudioUnitSetParameter(&unit, 3, 0, 0, -1e9F, 5), noErr);
    Float32 value = 0;
    EXPECT_EQ(AudioUnitGetParameter(&unit, 3, 0, 0, &value), noErr);
    EXPECT_EQ(value, -1e9F);
    EXPECT_EQ(unit.lastOffset, 5U);
}

TEST_F(AudioUnitCalls, UnknownParameterGivesTheUnitsErrorAndLeavesTheOutput)
{
    Float32 value = 7;
    EXPECT_EQ(AudioUnitGetParameter(&unit, 10, 0, 0, &value), kAudioUnitErr_InvalidParameter);
    EXPECT_EQ(AudioUnitSetParameter(&unit, 10, 0, 0, 1, 0), kAudioUnitErr_InvalidParameter);
    EXPECT_EQ(value, 7);
}

TEST_F(AudioUnitCalls, ParameterValueMustBeFinite)
{
    for (const Float32 value : {std::numeric_limits<Float32>::infinity(),
                                -std::numeric_limits<Float32>::infinity(), std::nanf("")}) {
        EXPECT_EQ(AudioUnitSetParameter(&unit, 3, 0, 0, value, 0),
                  kAudioUnitErr_InvalidParameterValue);
    }
    EXPECT_EQ(unit.values[3], 0);
}

TEST_F(AudioUnitCalls, GetParameterWithoutOutputIsAParameterError)
{
    EXPECT_EQ(AudioUnitGetParameter(&unit, 3, 0, 0, nullptr), kAudio_ParamError);
}

// Property listeners ------------------------------------------------------------------------------

struct Announcement {
    void* userData;
    AudioUnit unit;
    AudioUnitPropertyID property;
    AudioUnitScope scope;
    AudioUnitElement element;

    bool operator==(const Announcement&) const = default;
};

std::vector<Announcement> gAnnouncements;

void _announce(void* userData, AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
               AudioUnitElement element)
{
    gAnnouncements.push_back({userData, unit, property, scope, element});
}

void _removeOther(void* userData, AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope,
                  AudioUnitElement)
{
    AudioUnitRemovePropertyListenerWithUserData(unit, property, _announce, userData);
}

class PropertyListeners : public AudioUnitCalls {
protected:
    PropertyListeners() { gAnnouncements.clear(); }
    int first = 0;
    int second = 0;
};

TEST_F(PropertyListeners, HearAnyScopeAndElementOfTheirProperty)
{
    EXPECT_EQ(AudioUnitAddPropertyListener(&unit, kLength, _announce, &first), noErr);
    unit.propertyChanged(kLength, kAudioUnitScope_Output, 3);
    unit.propertyChanged(kLength + 1, kAudioUnitScope_Output, 3);
    EXPECT_THAT(gAnnouncements,
                ElementsAre(Announcement{&first, &unit, kLength, kAudioUnitScope_Output, 3}));
}

TEST_F(PropertyListeners, AreCalledInOrderBeforeSetPropertyReturns)
{
    AudioUnitAddPropertyListener(&unit, kLength, _announce, &first);
    AudioUnitAddPropertyListener(&unit, kLength, _announce, &second);
    set(&kLengthValue, 8);
    EXPECT_THAT(gAnnouncements, ElementsAre(Announcement{&first, &unit, kLength, 0, 0},
                                            Announcement{&second, &unit, kLength, 0, 0}));
}

TEST_F(PropertyListeners, AreRemovedByFunctionAndUserData)
{
    AudioUnitAddPropertyListener(&unit, kLength, _announce, &first);
    AudioUnitAddPropertyListener(&unit, kLength, _announce, &second);
    EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(&unit, kLength, _announce, &first),
              noErr);
    EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(&unit, kLength, _announce, &first),
              noErr);
    unit.propertyChanged(kLength, 0, 0);
    EXPECT_THAT(gAnnouncements, ElementsAre(Announcement{&second, &unit, kLength, 0, 0}));
}

TEST_F(PropertyListeners, OneRemovedByAnotherIsNotCalledAnyMore)
{
    AudioUnitAddPropertyListener(&unit, kLength, _removeOther, &first);
    AudioUnitAddPropertyListener(&unit, kLength, _announce, &first);
    unit.propertyChanged(kLength, 0, 0);
    EXPECT_THAT(gAnnouncements, IsEmpty());
}

TEST_F(PropertyListeners, NeedAFunctionAndALiveUnit)
{
    EXPECT_EQ(AudioUnitAddPropertyListener(&unit, kLength, nullptr, &first), kAudio_ParamError);
    EXPECT_EQ(AudioUnitAddPropertyListener(nullptr, kLength, _announce, &first), kAudio_ParamError);
}

TEST_F(PropertyListeners, GoWithTheirUnit)
{
    const std::size_t before = livePropertyListenerCount();
    {
        TestUnit other;
        AudioUnitAddPropertyListener(&other, kLength, _announce, &first);
        EXPECT_EQ(livePropertyListenerCount(), before + 1);
    }
    EXPECT_EQ(livePropertyListenerCount(), before);
}

// Units that are gone -----------------------------------------------------------------------------

TEST(AudioUnitHandles, UnitIsLiveFromConstructionToDestruction)
{
    const std::size_t before = liveUnitCount();
    {
        const TestUnit first;
        const TestUnit second;
        EXPECT_EQ(liveUnitCount(), before + 2);
    }
    EXPECT_EQ(liveUnitCount(), before);
}

TEST(AudioUnitHandles, EveryCallOnNullOrAUnitThatIsGoneIsAParameterError)
{
    std::optional<TestUnit> place(std::in_place);
    place->addProperty(kLength, kLengthValue);
    AudioUnit const gone = &*place;
    place.reset();
    for (AudioUnit const unit : {gone, AudioUnit{nullptr}}) {
        Float32 value = 0;
        UInt64 length = 0;
        UInt32 size = sizeof length;
        Boolean writable = 0;
        EXPECT_EQ(AudioUnitGetPropertyInfo(unit, kLength, 0, 0, &size, &writable),
                  kAudio_ParamError);
        EXPECT_EQ(AudioUnitGetProperty(unit, kLength, 0, 0, &length, &size), kAudio_ParamError);
        EXPECT_EQ(AudioUnitSetProperty(unit, kLength, 0, 0, &length, size), kAudio_ParamError);
        EXPECT_EQ(AudioUnitGetParameter(unit, 1, 0, 0, &value), kAudio_ParamError);
        EXPECT_EQ(AudioUnitSetParameter(unit, 1, 0, 0, value, 0), kAudio_ParamError);
        EXPECT_EQ(AudioUnitAddPropertyListener(unit, kLength, _announce, nullptr),
                  kAudio_ParamError);
        EXPECT_EQ(AudioUnitRemovePropertyListenerWithUserData(unit, kLength, _announce, nullptr),
                  kAudio_ParamError);
        EXPECT_EQ(size, sizeof length);
    }
}

} // namespace
