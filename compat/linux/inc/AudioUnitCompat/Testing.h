#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <AudioUnit/AudioUnit.h>

#include <cstddef>

#pragma GCC visibility push(default)

/// What tests need of the Audio Unit layer: a look at every call a client makes, a chance to fail
/// it, a clock of their own, and delivery on demand. Product code includes none of this.
namespace audiounit_compat {

/// One call of the client interface, before it is carried out and before its arguments are
/// checked. Fields a function does not have are zero.
struct Call {
    const char* function = ""; // "AudioUnitGetProperty", "AUEventListenerCreate", ...
    AudioUnit unit = nullptr;  // the unit named by the call or by its event record
    UInt32 eventType = 0;      // AUEventListenerAddEventType, RemoveEventType and Notify
    UInt32 id = 0;             // property or parameter
    AudioUnitScope scope = 0;
    AudioUnitElement element = 0;
    UInt32 size = 0; // bytes offered or passed
    AudioUnitParameterValue value = 0;
    AUEventListenerRef listener = nullptr; // the listener changed, disposed or sending
    const void* object = nullptr;          // the registered or sending object
    Float32 interval = 0;                  // AUEventListenerCreate, seconds
    Float32 granularity = 0;               // AUEventListenerCreate, seconds
};

/// Sees every client call, on the thread that makes it. What a call does inside is no call of
/// its own: AUParameterSet() is not followed by AudioUnitSetParameter().
class CallProbe {
public:
    virtual ~CallProbe() = default;

    /// A result other than 0 is returned to the client and the call is not carried out.
    virtual OSStatus willCall(const Call& call) = 0;
};

/// Installs the probe; null takes it away. Not owned; must outlive its installation. Set it
/// only while no other thread makes client calls.
void setCallProbe(CallProbe* probe);

/// Replaces the host clock by one that stands still until it is moved; timers are not started
/// while it is installed, so nothing is delivered except by deliverDue() and deliverAll(), and
/// at once by listeners with interval 0. Make and destroy it on one thread, one at a time,
/// while no other thread notifies.
class FakeClock {
public:
    FakeClock();  // starts at 1 s
    ~FakeClock(); // back to the real clock; what still waits is then delivered by the run loops
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;
    void advance(double seconds); // not negative; rounded to the nanosecond
    UInt64 now() const;           // host time, ns
};

/// Delivers, on the calling thread, what is due at the present time of the clock, listener by
/// listener in the order they were made, as their run loops would.
void deliverDue();

/// Delivers everything that is waiting, due or not.
void deliverAll();

std::size_t liveListenerCount();         // event listeners made and not disposed
std::size_t livePropertyListenerCount(); // property listeners on live units, the registrations
                                         // of property events included
std::size_t liveUnitCount();

} // namespace audiounit_compat

#pragma GCC visibility pop
