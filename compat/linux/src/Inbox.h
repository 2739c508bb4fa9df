#pragma once

#include <AudioUnit/AudioUnit.h>

#include <atomic>
#include <vector>

namespace audiounit_compat {

struct Registration;

/// One event on its way to one registration.
struct Arrival {
    Registration* registration;
    UInt64 time; // host time, ns
    AudioUnitParameterValue value;
};

/// Hands events from the notifying threads to the delivering one. Lock-free: a stack of cells, put
/// in one by one and taken out all at once. The cells come from a pool of the process, and from
/// the heap once that is empty.
class Inbox {
public:
    Inbox() = default;
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    /// Puts an event in; any thread. True when the inbox was empty before. An event is lost only
    /// when there is no memory for it.
    bool put(const Arrival& arrival) noexcept;

    /// True when nothing waits; any thread.
    bool isEmpty() const noexcept { return m_top.load(std::memory_order_acquire) == nullptr; }

    /// Earliest time of what waits, which must be something. One taker at a time.
    UInt64 firstTime() const noexcept;

    /// Appends all that waits to `arrivals`, by time and then in the order of putting. One taker
    /// at a time.
    void takeAll(std::vector<Arrival>& arrivals);

    struct Cell;

private:
    std::atomic<Cell*> m_top{nullptr};
};

} // namespace audiounit_compat
