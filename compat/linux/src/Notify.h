#pragma once

#include <AudioToolbox/AudioToolbox.h>

namespace audiounit_compat {

/// Who sends an event, for the rule of who is skipped.
struct Sender {
    AUEventListenerRef listener = nullptr;
    void* object = nullptr;
};

/// Tells every matching registration but the skipped ones. Any thread.
void notifyEvent(const Sender& sender, const AudioUnitEvent& event, AudioUnitParameterValue value);

/// Tells every value registration of the unit its own parameter's present value. Any thread.
void notifyAnyParameter(const Sender& sender, AudioUnit unit);

} // namespace audiounit_compat
