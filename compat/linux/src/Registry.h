#pragma once

#include "EventListener.h"

#include <AudioToolbox/AudioToolbox.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace audiounit_compat {

/// A property listener of one unit.
struct PropertyListener {
    AudioUnit unit;
    AudioUnitPropertyID property;
    AudioUnitPropertyListenerProc proc;
    void* userData;

    bool operator==(const PropertyListener&) const = default;
};

/// What the notifying threads read: the live units and the registrations as they are at one
/// moment. Never changed once published.
struct Snapshot {
    struct Route {
        Registration* registration;
        AUListenerBase* listener;
    };

    std::vector<AudioUnit> units;                           // ascending
    std::vector<Route> routes;                              // by event, then by age
    std::vector<std::shared_ptr<AUListenerBase>> listeners; // by age; keeps those in routes alive

    bool isLive(AudioUnit unit) const;
};

/// Everything that is registered in this process. Changes lock; readers do not.
///
/// A change copies the tables into a new snapshot and publishes it. The old one is kept until no
/// reader can be looking at it any more, which is checked at the next change, so neither side ever
/// waits for the other.
class Registry {
public:
    static Registry& shared();

    /// A look at the present snapshot, which stays valid for the life of this object. Wait-free.
    class Reader {
    public:
        Reader();
        ~Reader();
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;
        const Snapshot* operator->() const { return m_snapshot; }

    private:
        const Snapshot* m_snapshot;
    };

    void addUnit(AudioUnit unit);

    /// Also forgets the unit's property listeners and ends the registrations on it.
    void removeUnit(AudioUnit unit);

    OSStatus addPropertyListener(const PropertyListener& listener);
    void removePropertyListener(const PropertyListener& listener);

    /// Calls the property listeners of the property, each one only if it is still registered when
    /// its turn comes.
    void callPropertyListeners(const AudioUnitProperty& property);

    void addListener(std::shared_ptr<AUListenerBase> listener);

    /// Null when it is not among the live ones.
    std::shared_ptr<AUListenerBase> removeListener(AUListenerBase* listener);

    OSStatus addRegistration(AUListenerBase* listener, void* object, const AudioUnitEvent& event);
    OSStatus removeRegistration(AUListenerBase* listener, void* object,
                                const AudioUnitEvent& event);

    std::vector<std::shared_ptr<AUListenerBase>> listeners();
    std::size_t propertyListenerCount();

private:
    Registry();
    bool hasPropertyListener(const PropertyListener& listener);
    void publish(); // m_mutex is held, as in the two below
    void freeRetired();
    AUListenerBase* find(AUListenerBase* listener) const;

    std::mutex m_mutex;
    std::vector<AudioUnit> m_units;
    std::vector<PropertyListener> m_propertyListeners;
    std::vector<std::shared_ptr<AUListenerBase>> m_listeners;
    std::vector<std::unique_ptr<const Snapshot>> m_retired;

    std::atomic<const Snapshot*> m_snapshot;
    std::atomic<unsigned> m_readers{0};
};

} // namespace audiounit_compat
