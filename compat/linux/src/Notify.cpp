#include "Notify.h"

#include "EventListener.h"
#include "HostClock.h"
#include "Registry.h"

#include <AudioUnitCompat/InProcessUnit.h>

#include <algorithm>
#include <vector>

namespace audiounit_compat {

namespace {

using Route = Snapshot::Route;

bool _isSkipped(const Sender& sender, const Route& route)
{
    return sender.listener != nullptr && sender.listener == route.listener &&
           (sender.object == nullptr || sender.object == route.registration->object);
}

// The first route at or after a key, in the order that routes are sorted by.
std::vector<Route>::const_iterator _firstRoute(const std::vector<Route>& routes,
                                               const EventKey& key)
{
    return std::lower_bound(
        routes.begin(), routes.end(), key,
        [](const Route& each, const EventKey& wanted) { return each.registration->key < wanted; });
}

} // namespace

void notifyEvent(const Sender& sender, const AudioUnitEvent& event, AudioUnitParameterValue value)
{
    const UInt64 time = hostTime();
    const EventKey key = keyOf(event);
    const Registry::Reader snapshot;
    auto route = _firstRoute(snapshot->routes, key);
    for (; route != snapshot->routes.end() && route->registration->key == key; ++route) {
        if (!_isSkipped(sender, *route)) {
            route->listener->notify({route->registration, time, value});
        }
    }
}

void notifyAnyParameter(const Sender& sender, AudioUnit unit)
{
    const UInt64 time = hostTime();
    const EventKey first{unit, kAudioUnitEvent_ParameterValueChange, 0, 0, 0};
    const Registry::Reader snapshot;
    auto route = _firstRoute(snapshot->routes, first);
    for (; route != snapshot->routes.end(); ++route) {
        const EventKey& key = route->registration->key;
        if (key.unit != unit || key.type != kAudioUnitEvent_ParameterValueChange) {
            break;
        }
        AudioUnitParameterValue value = 0;
        if (!_isSkipped(sender, *route) &&
            unit->getParameter(key.id, key.scope, key.element, &value) == noErr) {
            route->listener->notify({route->registration, time, value});
        }
    }
}

} // namespace audiounit_compat
