#include "Registry.h"

#include <algorithm>
#include <utility>

namespace audiounit_compat {

namespace {

bool _canBeRegistered(const EventKey& key)
{
    return key.type == kAudioUnitEvent_PropertyChange ||
           (key.type < kAudioUnitEvent_PropertyChange &&
            key.id != kAUParameterListener_AnyParameter);
}

Registration* _find(AUListenerBase& listener, void* object, const EventKey& key)
{
    for (Registration& registration : listener.registrations) {
        if (registration.active && registration.object == object && registration.key == key) {
            return &registration;
        }
    }
    return nullptr;
}

} // namespace

bool Snapshot::isLive(AudioUnit unit) const
{
    return std::binary_search(units.begin(), units.end(), unit);
}

// Never destroyed: units and listeners may outlive the static objects of this library.
Registry& Registry::shared()
{
    static Registry* const registry = new Registry;
    return *registry;
}

Registry::Registry() : m_snapshot(new Snapshot) {}

Registry::Reader::Reader()
{
    Registry& registry = shared();
    registry.m_readers.fetch_add(1);
    m_snapshot = registry.m_snapshot.load();
}

Registry::Reader::~Reader() { shared().m_readers.fetch_sub(1); }

void Registry::publish()
{
    auto next = std::make_unique<Snapshot>();
    next->units = m_units;
    next->listeners = m_listeners;
    for (const auto& listener : m_listeners) {
        for (Registration& registration : listener->registrations) {
            if (registration.active) {
                next->routes.push_back({&registration, listener.get()});
            }
        }
    }
    std::stable_sort(next->routes.begin(), next->routes.end(),
                     [](const Snapshot::Route& a, const Snapshot::Route& b) {
                         return a.registration->key < b.registration->key;
                     });
    m_retired.emplace_back(m_snapshot.exchange(next.release()));
    freeRetired();
}

// A reader that begins after the exchange in publish() sees the new snapshot, so once none is
// under way all the old ones are out of sight.
void Registry::freeRetired()
{
    if (m_readers.load() == 0) {
        m_retired.clear();
    }
}

void Registry::addUnit(AudioUnit unit)
{
    const std::lock_guard lock(m_mutex);
    m_units.insert(std::lower_bound(m_units.begin(), m_units.end(), unit), unit);
    publish();
}

void Registry::removeUnit(AudioUnit unit)
{
    const std::lock_guard lock(m_mutex);
    std::erase(m_units, unit);
    std::erase_if(m_propertyListeners, [unit](const auto& each) { return each.unit == unit; });
    for (const auto& listener : m_listeners) {
        for (Registration& registration : listener->registrations) {
            if (registration.key.unit == unit) {
                registration.active = false;
            }
        }
    }
    publish();
}

OSStatus Registry::addPropertyListener(const PropertyListener& listener)
{
    const std::lock_guard lock(m_mutex);
    if (!std::binary_search(m_units.begin(), m_units.end(), listener.unit)) {
        return kAudio_ParamError;
    }
    m_propertyListeners.push_back(listener);
    return noErr;
}

void Registry::removePropertyListener(const PropertyListener& listener)
{
    const std::lock_guard lock(m_mutex);
    std::erase(m_propertyListeners, listener);
}

void Registry::callPropertyListeners(const AudioUnitProperty& property)
{
    std::vector<PropertyListener> listeners;
    {
        const std::lock_guard lock(m_mutex);
        std::copy_if(m_propertyListeners.begin(), m_propertyListeners.end(),
                     std::back_inserter(listeners), [&property](const PropertyListener& each) {
                         return each.unit == property.mAudioUnit &&
                                each.property == property.mPropertyID;
                     });
    }
    for (const PropertyListener& listener : listeners) {
        if (hasPropertyListener(listener)) {
            listener.proc(listener.userData, property.mAudioUnit, property.mPropertyID,
                          property.mScope, property.mElement);
        }
    }
}

bool Registry::hasPropertyListener(const PropertyListener& listener)
{
    const std::lock_guard lock(m_mutex);
    return std::find(m_propertyListeners.begin(), m_propertyListeners.end(), listener) !=
           m_propertyListeners.end();
}

void Registry::addListener(std::shared_ptr<AUListenerBase> listener)
{
    const std::lock_guard lock(m_mutex);
    m_listeners.push_back(std::move(listener));
    publish();
}

std::shared_ptr<AUListenerBase> Registry::removeListener(AUListenerBase* listener)
{
    const std::lock_guard lock(m_mutex);
    const auto found =
        std::find_if(m_listeners.begin(), m_listeners.end(),
                     [listener](const auto& each) { return each.get() == listener; });
    if (found == m_listeners.end()) {
        return nullptr;
    }
    std::shared_ptr<AUListenerBase> removed = std::move(*found);
    m_listeners.erase(found);
    publish();
    return removed;
}

AUListenerBase* Registry::find(AUListenerBase* listener) const
{
    const bool live = std::any_of(m_listeners.begin(), m_listeners.end(),
                                  [listener](const auto& each) { return each.get() == listener; });
    return live ? listener : nullptr;
}

OSStatus Registry::addRegistration(AUListenerBase* listener, void* object,
                                   const AudioUnitEvent& event)
{
    const std::lock_guard lock(m_mutex);
    const EventKey key = keyOf(event);
    if (find(listener) == nullptr || !_canBeRegistered(key) ||
        !std::binary_search(m_units.begin(), m_units.end(), key.unit)) {
        return kAudio_ParamError;
    }
    if (_find(*listener, object, key) == nullptr) {
        listener->registrations.emplace_back(key, object);
        publish();
    }
    return noErr;
}

OSStatus Registry::removeRegistration(AUListenerBase* listener, void* object,
                                      const AudioUnitEvent& event)
{
    const std::lock_guard lock(m_mutex);
    const EventKey key = keyOf(event);
    if (find(listener) == nullptr || key.type > kAudioUnitEvent_PropertyChange) {
        return kAudio_ParamError;
    }
    if (Registration* const registration = _find(*listener, object, key)) {
        registration->active = false;
        publish();
    }
    return noErr;
}

std::vector<std::shared_ptr<AUListenerBase>> Registry::listeners()
{
    const std::lock_guard lock(m_mutex);
    return m_listeners;
}

std::size_t Registry::propertyListenerCount()
{
    const std::lock_guard lock(m_mutex);
    std::size_t count = m_propertyListeners.size();
    for (const auto& listener : m_listeners) {
        for (const Registration& registration : listener->registrations) {
            count += registration.active && registration.key.type == kAudioUnitEvent_PropertyChange;
        }
    }
    return count;
}

} // namespace audiounit_compat
