#include "HostClock.h"

#include <ctime>

namespace audiounit_compat {

std::atomic<UInt64> gFakeTime{0};

UInt64 hostTime() noexcept
{
    const UInt64 fake = gFakeTime.load(std::memory_order_relaxed);
    if (fake != 0) {
        return fake;
    }
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<UInt64>(now.tv_sec) * 1'000'000'000 + static_cast<UInt64>(now.tv_nsec);
}

} // namespace audiounit_compat
