#pragma once

#include <AudioUnit/AudioUnit.h>

namespace host {

/// The host's tempo and time signature, told through the host callbacks. Fields may change while
/// the callbacks are installed; a client asks again whenever it wants to know.
struct HostMusic {
    Float64 tempo = 120.0;    // quarter notes a minute; 0 means unknown
    Float32 numerator = 4.0F; // of the time signature; 0 means unknown
    UInt32 denominator = 4;   // of the time signature; 0 means unknown
    OSStatus result = noErr;  // another result is given without writing any output

    /// The record to set as host callbacks. It refers to this object, which must outlive its use.
    HostCallbackInfo callbacks();
};

} // namespace host
