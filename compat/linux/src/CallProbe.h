#pragma once

#include <AudioUnitCompat/Testing.h>

#include <atomic>

namespace audiounit_compat {

extern std::atomic<CallProbe*> gCallProbe;

/// Shows a client call to the probe, if there is one, and gives its verdict.
inline OSStatus probeCall(const Call& call)
{
    CallProbe* const probe = gCallProbe.load(std::memory_order_acquire);
    return probe != nullptr ? probe->willCall(call) : noErr;
}

} // namespace audiounit_compat
