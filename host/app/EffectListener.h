#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <functional>

namespace host {

/// Hears, on the main run loop, of everything a user's hand changes in an effect: values and
/// gestures of its ten parameters, and the display format. Events come in order, at most once a
/// displayed frame, also while a control or a menu tracks the mouse. [main]
class EffectListener {
public:
    using Handler = std::function<void(const AudioUnitEvent&, AudioUnitParameterValue)>;

    /// @param unit     Must outlive the listener.
    /// @param handler  The value is 0 but for value changes.
    EffectListener(AudioUnit unit, Handler handler);
    ~EffectListener();
    EffectListener(const EffectListener&) = delete;
    EffectListener& operator=(const EffectListener&) = delete;

private:
    static void hear(void* self, void*, const AudioUnitEvent* event, UInt64,
                     AudioUnitParameterValue value);
    void add(const AudioUnitEvent& event);

    Handler m_handler;
    AUEventListenerRef m_listener = nullptr;
};

} // namespace host
