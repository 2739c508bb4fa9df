#pragma once

#include "Inbox.h"
#include "RunLoopTimer.h"

#include <AudioToolbox/AudioToolbox.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

namespace audiounit_compat {

/// What registrations are matched by; the same four numbers for parameters and properties.
struct EventKey {
    AudioUnit unit;
    AudioUnitEventType type;
    UInt32 id;
    AudioUnitScope scope;
    AudioUnitElement element;

    bool operator==(const EventKey&) const = default;
    bool operator<(const EventKey& other) const
    {
        return std::tie(unit, type, id, scope, element) <
               std::tie(other.unit, other.type, other.id, other.scope, other.element);
    }
};

EventKey keyOf(const AudioUnitEvent& event);
AudioUnitEvent eventOf(const EventKey& key);

/// One event that a listener wants to hear of. Kept until the listener goes, because events on
/// their way point to it; an ended one is no longer active.
struct Registration {
    Registration(const EventKey& eventKey, void* registeredObject)
        : key(eventKey), object(registeredObject)
    {
    }

    const EventKey key;
    void* const object;
    std::atomic<bool> active{true};
    std::uint64_t lastValue = 0; // place of its newest queued value; of the delivering side
};

} // namespace audiounit_compat

/// A listener behind its handle.
///
/// Notifying threads put events into the inbox and arm the timer when they are the first. The
/// thread of the run loop takes them out when they are due, merges them into the queue and works
/// that off one by one. The queue is a field, so that a callback that runs the run loop itself
/// still sees all events in order, and one that disposes the listener ends the work.
struct AUListenerBase : std::enable_shared_from_this<AUListenerBase> {
    struct Timing {
        UInt64 interval;    // ns
        UInt64 granularity; // ns
    };

    AUListenerBase(AUEventListenerProc proc, void* userData, Timing timing);

    /// Begins to listen on a run loop; see AUEventListenerCreate() for the arguments.
    OSStatus start(CFRunLoopRef runLoop, CFStringRef mode);

    /// Takes an event in, or delivers it if the interval is 0. Any thread.
    void notify(const audiounit_compat::Arrival& arrival);

    /// Delivers what waits if its time has come; otherwise sees to it that the timer will.
    void deliverDue();

    /// Delivers what waits.
    void deliverAll();

    /// Drops what waits and ends all callbacks. Waits for one on another thread.
    void dispose();

    /// Starts afresh after the clock was replaced.
    void clockChanged();

    // Guarded by the registry's lock. A deque, because registrations never move.
    std::deque<audiounit_compat::Registration> registrations;

private:
    struct Pending {
        audiounit_compat::Arrival arrival;
        bool merged; // into a later one
    };

    struct LeftoverGuard {
        AUListenerBase& listener;
        ~LeftoverGuard();
    };

    bool isDue() const;
    void armForWaiting();
    void collect();
    void enqueue(audiounit_compat::Arrival arrival);
    void mergeInto(const audiounit_compat::Arrival& later);
    void noteGesture(const audiounit_compat::EventKey& gesture);
    std::uint64_t lastGesture(const audiounit_compat::EventKey& value) const;
    void workOff();
    void call(const audiounit_compat::Arrival& arrival);

    const AUEventListenerProc m_proc;
    void* const m_userData;
    const Timing m_timing;
    audiounit_compat::Inbox m_inbox;
    audiounit_compat::RunLoopTimer m_timer;

    // Held while the callback runs, so all below belongs to the thread that delivers.
    std::recursive_mutex m_delivery;
    bool m_disposed = false;
    UInt64 m_newestTime = 0;
    std::vector<audiounit_compat::Arrival> m_arrivals; // scratch
    std::deque<Pending> m_queue;
    std::uint64_t m_firstPlace = 1; // place of the queue's front; places count up for ever
    std::vector<std::pair<audiounit_compat::EventKey, std::uint64_t>> m_gestures; // newest places
};
