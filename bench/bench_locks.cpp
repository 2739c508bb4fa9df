// Locks beside their counterparts of the standard library and of Boost, free and contended by two
// threads, and the way of an event to the thread that waits for it and back, beside a bare
// condition variable. Ours comes last in each group.
//
// Where threads wait for each other, most of the time is the scheduler's choice of a processor;
// kept on one (taskset -c 0) the rows of a group can be compared.

#include "XeThread.h"

#include "ComparedRows.h"

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/recursive_mutex.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <type_traits>

namespace {

/// Gives a lock of ours the default constructor that its peers have.
template <typename Lock>
struct Named : Lock {
    Named() : Lock("bench") {}
};

constexpr auto kUnique = [](auto& lock) {
    lock.lock();
    lock.unlock();
};

constexpr auto kTwice = [](auto& lock) {
    lock.lock();
    kUnique(lock);
    lock.unlock();
};

constexpr auto kShared = [](auto& lock) {
    lock.lock_shared();
    lock.unlock_shared();
};

constexpr auto kUpgrade = [](auto& lock) {
    lock.lock_upgrade();
    lock.unlock_upgrade();
};

/// Two threads that do the same many times.
template <typename Lock, typename Use>
void contend(Lock& lock, Use use)
{
    const auto run = [&] {
        for (int i = 0; i < 20000; ++i) {
            use(lock);
        }
    };
    std::thread other(run);
    run();
    other.join();
}

template <typename Lock, typename Use>
void addLock(const std::string& group, const std::string& name, Use use)
{
    const auto lock = std::make_shared<Lock>();
    addComparedRow(group + "_free", name, [=] { use(*lock); });
}

template <typename Lock, typename Use>
void addContended(const std::string& group, const std::string& name, Use use)
{
    const auto lock = std::make_shared<Lock>();
    addComparedRow<WallTime>(group + "_contended", name, [=] { contend(*lock, use); });
}

/// Rows for the standard lock, Boost's and ours.
template <typename Std, typename Boost, typename Ours, typename Use>
void addLocks(const std::string& group, const std::string& ours, Use use)
{
    addLock<Std>(group, "std", use);
    addLock<Boost>(group, "boost", use);
    addLock<Named<Ours>>(group, ours, use);
    addContended<Std>(group, "std", use);
    addContended<Boost>(group, "boost", use);
    addContended<Named<Ours>>(group, ours, use);
}

// The standard library has no upgradable lock.
void addUpgrades()
{
    addLock<boost::shared_mutex>("upgrade", "boost", kUpgrade);
    addLock<Named<XeSharedMutex>>("upgrade", "XeSharedMutex", kUpgrade);

    const auto boostLock = std::make_shared<boost::shared_mutex>();
    addComparedRow("promote_free", "boost", [=] {
        boostLock->lock_upgrade();
        boostLock->unlock_upgrade_and_lock();
        boostLock->unlock_and_lock_upgrade();
        boostLock->unlock_upgrade();
    });
    const auto ourLock = std::make_shared<Named<XeSharedMutex>>();
    addComparedRow("promote_free", "XeSharedMutex", [=] {
        ourLock->UpgradeLock();
        kUnique(*ourLock);
        ourLock->UpgradeUnlock();
    });
}

// Each library's condition takes the lock type of its own library only.
template <typename Mutex>
using Lock = std::conditional_t<std::is_same_v<Mutex, std::mutex>, std::unique_lock<std::mutex>,
                                boost::unique_lock<boost::mutex>>;

/// The least that an event can be, with the parts of one library.
template <typename Mutex, typename Condition>
class BareEvent {
public:
    void signal()
    {
        {
            const std::lock_guard<Mutex> guard(m_mutex);
            m_isSet = true;
        }
        m_condition.notify_one();
    }
    void wait()
    {
        Lock<Mutex> lock(m_mutex);
        m_condition.wait(lock, [this] { return m_isSet; });
        m_isSet = false;
    }

private:
    Mutex m_mutex;
    Condition m_condition;
    bool m_isSet = false;
};

class LightEvent {
public:
    void signal() { m_events.signal(1); }
    void wait() { m_events.wait(1); }

private:
    xenon::thread m_events;
};

// The events go on working when the thread has ended.
class WorkerEvent {
public:
    void signal() { m_thread.SignalEvent(1); }
    void wait() { m_thread.WaitOnEvent(1); }

private:
    XeThread m_thread{nullptr, nullptr, 1, "events"};
};

/// A thread that answers each question.
template <typename Event>
class Partner {
public:
    ~Partner()
    {
        m_stop = true;
        m_question.signal();
        m_thread.join();
    }
    void ask()
    {
        m_question.signal();
        m_answer.wait();
    }

private:
    void _serve()
    {
        for (m_question.wait(); !m_stop; m_question.wait()) {
            m_answer.signal();
        }
    }

    Event m_question;
    Event m_answer;
    bool m_stop = false; // handed over by the event
    std::thread m_thread{[this] { _serve(); }};
};

template <typename Event>
void addWakeUp(const std::string& name)
{
    const auto partner = std::make_shared<Partner<Event>>();
    addComparedRow<WallTime>("wake_up_and_back", name, [=] { partner->ask(); });
}

// Before main(), which runs what is registered.
[[maybe_unused]] const bool g_registered = [] {
    addLocks<std::mutex, boost::mutex, XeMutex>("mutex", "XeMutex", kUnique);
    addLocks<std::recursive_mutex, boost::recursive_mutex, XeCriticalSection>(
        "recursive", "XeCriticalSection", kTwice);
    addLocks<std::shared_mutex, boost::shared_mutex, XeSharedMutex>("shared", "XeSharedMutex",
                                                                    kShared);
    addLocks<std::shared_mutex, boost::shared_mutex, XeSharedMutex>("unique", "XeSharedMutex",
                                                                    kUnique);
    addUpgrades();
    addWakeUp<BareEvent<std::mutex, std::condition_variable>>("std");
    addWakeUp<BareEvent<boost::mutex, boost::condition_variable>>("boost");
    addWakeUp<LightEvent>("xenon_thread");
    addWakeUp<WorkerEvent>("XeThread");
    return true;
}();

} // namespace
