#pragma once

#include <boost/signals2/connection.hpp>
#include <boost/signals2/signal.hpp>

#include <functional>
#include <memory>
#include <utility>

/// A list of observers that are told of a subject and a payload.
///
///     std::shared_ptr<void> handle;
///     changes.RegisterObserver([](int subject, bool payload) { ... }, handle);
///     changes.NotifyObservers(1, true);
///     changes.UnregisterObserver(handle);
///
/// A handle names one registration; dropping it does not end that. Handles may be copied, and may
/// outlive the observable. Observers run on the thread that notifies and may register and
/// unregister any observer meanwhile, themselves too. One that another thread unregisters may still
/// be running when UnregisterObserver returns. [any]
template <typename Subject, typename Payload>
class XeObservable {
public:
    using Observer = std::function<void(Subject, Payload)>;

    XeObservable() = default;
    virtual ~XeObservable() = default;
    XeObservable(const XeObservable&) = delete;
    XeObservable& operator=(const XeObservable&) = delete;

    /// Adds an observer behind those that are there.
    /// @param observer  Copied; must not be empty and must not throw.
    /// @param handle    Replaced by the registration's.
    virtual void RegisterObserver(Observer observer, std::shared_ptr<void>& handle)
    {
        handle = std::make_shared<Registration>(
            Registration{this, m_observers.connect(std::move(observer))});
    }

    /// Ends a registration and empties the handle. Nothing happens to a null handle, to one of
    /// another observable and to one whose registration has ended.
    /// @param handle  Null or made by RegisterObserver of this template.
    virtual void UnregisterObserver(std::shared_ptr<void>& handle)
    {
        if (_owns(handle)) {
            static_cast<Registration*>(handle.get())->connection.disconnect();
            handle.reset();
        }
    }

    /// Ends all registrations.
    virtual void UnregisterObservers() { m_observers.disconnect_all_slots(); }

    /// Calls every observer in the order of registration.
    virtual void NotifyObservers(Subject subject, Payload payload)
    {
        m_observers(std::move(subject), std::move(payload));
    }

    /// True when any observer is registered.
    virtual bool HasObservers() { return !m_observers.empty(); }

protected:
    /// True for a handle whose registration with this observable has not ended.
    bool _owns(const std::shared_ptr<void>& handle) const
    {
        const auto* const registration = static_cast<const Registration*>(handle.get());
        return registration != nullptr && registration->owner == this &&
               registration->connection.connected();
    }

private:
    struct Registration {
        const XeObservable* owner; // compared only: it may be gone
        boost::signals2::connection connection;
    };

    boost::signals2::signal<void(Subject, Payload)> m_observers;
};
