#include "EffectListener.h"

#include "host/effect/TarvelProtocol.h"

#include <utility>

namespace host {

namespace {

constexpr Float32 kIntervalSeconds = 1.0F / 60;

constexpr AudioUnitEventType kParameterEvents[] = {
    kAudioUnitEvent_ParameterValueChange,
    kAudioUnitEvent_BeginParameterChangeGesture,
    kAudioUnitEvent_EndParameterChangeGesture,
};

} // namespace

EffectListener::EffectListener(AudioUnit unit, Handler handler) : m_handler(std::move(handler))
{
    if (AUEventListenerCreate(hear, this, CFRunLoopGetCurrent(), kCFRunLoopCommonModes,
                              kIntervalSeconds, kIntervalSeconds, &m_listener) != noErr) {
        return;
    }
    for (UInt32 parameter = 0; parameter < kParameterCount; ++parameter) {
        for (const AudioUnitEventType type : kParameterEvents) {
            AudioUnitEvent event{};
            event.mEventType = type;
            event.mArgument.mParameter = {unit, parameter, kAudioUnitScope_Global, 0};
            add(event);
        }
    }
    AudioUnitEvent format{};
    format.mEventType = kAudioUnitEvent_PropertyChange;
    format.mArgument.mProperty = {unit, kTimeFormatProperty, kAudioUnitScope_Global, 0};
    add(format);
}

EffectListener::~EffectListener()
{
    if (m_listener != nullptr) {
        AUListenerDispose(m_listener);
    }
}

void EffectListener::add(const AudioUnitEvent& event)
{
    AUEventListenerAddEventType(m_listener, this, &event);
}

void EffectListener::hear(void* self, void*, const AudioUnitEvent* event, UInt64,
                          AudioUnitParameterValue value)
{
    static_cast<const EffectListener*>(self)->m_handler(*event, value);
}

} // namespace host
