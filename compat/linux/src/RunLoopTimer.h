#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include <functional>

namespace audiounit_compat {

/// A timer that any thread can arm and that fires on one run loop: a timerfd(2) on CLOCK_MONOTONIC
/// which the run loop watches.
class RunLoopTimer {
public:
    RunLoopTimer() = default;
    ~RunLoopTimer(); // only after stop()
    RunLoopTimer(const RunLoopTimer&) = delete;
    RunLoopTimer& operator=(const RunLoopTimer&) = delete;

    /// Begins to watch. Not a thread that may not allocate.
    /// @param runLoop  That of the calling or of the main thread; null means the calling one's.
    /// @param mode     Null means default; the common modes mean the three they stand for.
    /// @param fire     Called on the run loop's thread. Destroyed there too, after stop().
    /// @return kAudio_ParamError for another thread's run loop, or the system's error number.
    int start(CFRunLoopRef runLoop, CFStringRef mode, std::function<void()> fire);

    /// Sets the time of the next firing, in ns of CLOCK_MONOTONIC; a time that has passed fires at
    /// once. Any thread; one system call that does not block.
    void arm(UInt64 time) noexcept;

    /// Ends watching; on another thread than the run loop's as soon as that one gets to it.
    void stop();

private:
    int m_descriptor = -1;
    void* m_watcher = nullptr; // RunLoopWatcher, retained
    void* m_thread = nullptr;  // NSThread, retained
};

} // namespace audiounit_compat
