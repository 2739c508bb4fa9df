#include <AudioUnitCompat/Testing.h>

#include "HostClock.h"
#include "Registry.h"

#include <cmath>

namespace audiounit_compat {

namespace {

constexpr UInt64 kStart = 1'000'000'000;

void _setClock(UInt64 time)
{
    gFakeTime = time;
    for (const auto& listener : Registry::shared().listeners()) {
        listener->clockChanged();
    }
}

} // namespace

FakeClock::FakeClock() { _setClock(kStart); }

FakeClock::~FakeClock() { _setClock(0); }

void FakeClock::advance(double seconds)
{
    gFakeTime += static_cast<UInt64>(std::llround(seconds * 1e9));
}

UInt64 FakeClock::now() const { return gFakeTime; }

void deliverDue()
{
    for (const auto& listener : Registry::shared().listeners()) {
        listener->deliverDue();
    }
}

void deliverAll()
{
    for (const auto& listener : Registry::shared().listeners()) {
        listener->deliverAll();
    }
}

std::size_t liveListenerCount() { return Registry::shared().listeners().size(); }

std::size_t livePropertyListenerCount() { return Registry::shared().propertyListenerCount(); }

std::size_t liveUnitCount() { return Registry::Reader()->units.size(); }

} // namespace audiounit_compat
