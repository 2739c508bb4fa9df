#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <utility>
#include <vector>

/// One callback as a test compares it; events of properties have the property's ID.
struct Heard {
    AudioUnitEventType type;
    UInt32 id;
    AudioUnitParameterValue value;

    bool operator==(const Heard&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Heard& heard)
    {
        return out << "{type " << heard.type << ", id " << heard.id << ", value " << heard.value
                   << "}";
    }
};

inline Heard heardValue(UInt32 id, AudioUnitParameterValue value)
{
    return {kAudioUnitEvent_ParameterValueChange, id, value};
}

inline Heard heardBegin(UInt32 id) { return {kAudioUnitEvent_BeginParameterChangeGesture, id, 0}; }

inline Heard heardEnd(UInt32 id) { return {kAudioUnitEvent_EndParameterChangeGesture, id, 0}; }

inline Heard heardProperty(UInt32 id) { return {kAudioUnitEvent_PropertyChange, id, 0}; }

inline AudioUnitEvent parameterEvent(AudioUnitEventType type, AudioUnit unit,
                                     AudioUnitParameterID parameter,
                                     AudioUnitScope scope = kAudioUnitScope_Global,
                                     AudioUnitElement element = 0)
{
    AudioUnitEvent event{};
    event.mEventType = type;
    event.mArgument.mParameter = {unit, parameter, scope, element};
    return event;
}

inline AudioUnitEvent valueEvent(AudioUnit unit, AudioUnitParameterID parameter)
{
    return parameterEvent(kAudioUnitEvent_ParameterValueChange, unit, parameter);
}

inline AudioUnitEvent beginEvent(AudioUnit unit, AudioUnitParameterID parameter)
{
    return parameterEvent(kAudioUnitEvent_BeginParameterChangeGesture, unit, parameter);
}

inline AudioUnitEvent endEvent(AudioUnit unit, AudioUnitParameterID parameter)
{
    return parameterEvent(kAudioUnitEvent_EndParameterChangeGesture, unit, parameter);
}

inline AudioUnitEvent propertyEvent(AudioUnit unit, AudioUnitPropertyID property,
                                    AudioUnitScope scope = kAudioUnitScope_Global,
                                    AudioUnitElement element = 0)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_PropertyChange;
    event.mArgument.mProperty = {unit, property, scope, element};
    return event;
}

inline OSStatus setParameter(AudioUnit unit, AudioUnitParameterID parameter,
                             AudioUnitParameterValue value, AUEventListenerRef sender = nullptr,
                             void* object = nullptr)
{
    const AudioUnitParameter record{unit, parameter, kAudioUnitScope_Global, 0};
    return AUParameterSet(sender, object, &record, value, 0);
}

/// An event listener that keeps what it hears.
class TestListener {
public:
    TestListener(Float32 interval, Float32 granularity, CFStringRef mode = nullptr)
    {
        EXPECT_EQ(AUEventListenerCreate(_hear, this, nullptr, mode, interval, granularity, &ref),
                  noErr);
    }
    ~TestListener() { dispose(); }
    TestListener(const TestListener&) = delete;
    TestListener& operator=(const TestListener&) = delete;

    void add(const AudioUnitEvent& event, void* object = nullptr)
    {
        EXPECT_EQ(AUEventListenerAddEventType(ref, object, &event), noErr);
    }

    void dispose()
    {
        if (ref != nullptr) {
            EXPECT_EQ(AUListenerDispose(std::exchange(ref, nullptr)), noErr);
        }
    }

    /// What was heard since the last call.
    std::vector<Heard> take()
    {
        objects.clear();
        times.clear();
        return std::exchange(heard, {});
    }

    AUEventListenerRef ref = nullptr;
    std::vector<Heard> heard;
    std::vector<void*> objects;
    std::vector<UInt64> times;
    std::vector<AudioUnitEvent> events;
    std::function<void()> onEvent; // called after an event was noted

private:
    static void _hear(void* userData, void* object, const AudioUnitEvent* event, UInt64 time,
                      AudioUnitParameterValue value)
    {
        auto& listener = *static_cast<TestListener*>(userData);
        const bool isProperty = event->mEventType == kAudioUnitEvent_PropertyChange;
        listener.heard.push_back({event->mEventType,
                                  isProperty ? event->mArgument.mProperty.mPropertyID
                                             : event->mArgument.mParameter.mParameterID,
                                  value});
        listener.objects.push_back(object);
        listener.times.push_back(time);
        listener.events.push_back(*event);
        if (listener.onEvent) {
            listener.onEvent();
        }
    }
};
