#pragma once

#include <CoreFoundation/CFBase.h>

#include <atomic>

namespace audiounit_compat {

/// Time of the fake clock in ns; 0 while the real one is used.
extern std::atomic<UInt64> gFakeTime;

/// Host time in nanoseconds: CLOCK_MONOTONIC, or the fake clock of a test.
UInt64 hostTime() noexcept;

inline bool isClockFake() noexcept { return gFakeTime.load(std::memory_order_relaxed) != 0; }

} // namespace audiounit_compat
