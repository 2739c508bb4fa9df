#include "XeThread.h"

#include "XeSafeCRT.h"
#include "XeSystem.h"

#include <boost/thread/exceptions.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/recursive_mutex.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <cerrno>

namespace {

struct _SharedState {
    std::uint32_t sharedCount = 0;
    bool exclusive = false;
    bool upgrade = false;
    bool exclusiveWaitingBlocked = false;
};

_SharedState _readState(boost::shared_mutex& mutex);

/// `State` is Boost's own record, whose name is private.
template <typename State>
_SharedState _copyOf(const State& state)
{
    return {state.shared_count, state.exclusive, state.upgrade, state.exclusive_waiting_blocked};
}

// Boost has no accessors for the state of its shared mutex. Its operations make exactly the
// transitions that XeSharedMutex promises, so a second state beside it could only go wrong. An
// explicit instantiation may name private members, which is the one legal way to read them.
template <auto State, auto StateMutex>
struct _StateReader {
    friend _SharedState _readState(boost::shared_mutex& mutex)
    {
        const boost::lock_guard<boost::mutex> guard(mutex.*StateMutex);
        return _copyOf(mutex.*State);
    }
};

template struct _StateReader<&boost::shared_mutex::state, &boost::shared_mutex::state_change>;

/// Calls a function on a mutex, again whenever a signal interrupts it. Without a mutex nothing is
/// done, successfully.
int _untilDone(int (*call)(pthread_mutex_t*), const std::unique_ptr<pthread_mutex_t>& mutex)
{
    int error = 0;
    do {
        error = mutex ? call(mutex.get()) : 0;
    } while (error == EINTR);
    return error;
}

} // namespace

// Not a boost::mutex: its unlock() keeps errors to itself, and whether it repeats an interrupted
// call depends on the system that Boost was set up for.
XeMutex::XeMutex(const char* name) : m_mutex(std::make_unique<pthread_mutex_t>()), m_name(name)
{
    if (const int error = pthread_mutex_init(m_mutex.get(), nullptr); error != 0) {
        throw boost::thread_resource_error(
            error, "boost:: mutex constructor failed in pthread_mutex_init");
    }
}

XeMutex::~XeMutex() { _untilDone(pthread_mutex_destroy, m_mutex); }

void XeMutex::Lock()
{
    if (const int error = _untilDone(pthread_mutex_lock, m_mutex); error != 0) {
        throw boost::lock_error(error, "boost: mutex lock failed in pthread_mutex_lock");
    }
}

bool XeMutex::TryLock() { return m_mutex && _untilDone(pthread_mutex_trylock, m_mutex) == 0; }

void XeMutex::Unlock()
{
    if (const int error = _untilDone(pthread_mutex_unlock, m_mutex); error != 0) {
        throw boost::lock_error(error, "boost: mutex unlock failed in pthread_mutex_unlock");
    }
}

XeCriticalSection::XeCriticalSection(const char* name)
    : m_mutex(std::make_unique<boost::recursive_mutex>()), m_name(name)
{
}

XeCriticalSection::~XeCriticalSection() = default;

// Written by the owner only, under the lock; atomic for those who look from outside, without the
// cost of an order that the lock gives anyway.
void XeCriticalSection::_entered()
{
    const std::uint64_t depth = RecursionCount();
    m_recursionCount.store(depth + 1, std::memory_order_relaxed);
    if (depth == 0) {
        m_lockingId.store(XeSystem::GetCurrentThreadId(), std::memory_order_relaxed);
    }
}

void XeCriticalSection::Enter()
{
    if (m_mutex) {
        m_mutex->lock();
        _entered();
    }
}

bool XeCriticalSection::TryEnter()
{
    if (!m_mutex || !m_mutex->try_lock()) {
        return false;
    }
    _entered();
    return true;
}

// The owner's name stays: clearing it here would race with nobody, but those who compare it know
// to look at the depth first.
void XeCriticalSection::Leave()
{
    if (m_mutex) {
        m_recursionCount.store(RecursionCount() - 1, std::memory_order_relaxed);
        m_mutex->unlock();
    }
}

XeSharedMutex::XeSharedMutex(const char* name)
    : m_mutex(std::make_unique<boost::shared_mutex>()), m_name(name)
{
}

XeSharedMutex::~XeSharedMutex() = default;

// A thread finds its own id only where it has stored it itself, so no order is needed.
bool XeSharedMutex::_callerOwnsUpgrade() const
{
    return m_upgradeOwner.load(std::memory_order_relaxed) == XeSystem::GetCurrentThreadId();
}

void XeSharedMutex::_setUpgradeOwner(std::uint64_t thread)
{
    m_upgradeOwner.store(thread, std::memory_order_relaxed);
}

void XeSharedMutex::SharedLock()
{
    if (m_mutex) {
        m_mutex->lock_shared();
    }
}

bool XeSharedMutex::TrySharedLock() { return m_mutex && m_mutex->try_lock_shared(); }

void XeSharedMutex::SharedUnlock()
{
    if (m_mutex) {
        m_mutex->unlock_shared();
    }
}

void XeSharedMutex::UpgradeLock()
{
    if (m_mutex) {
        m_mutex->lock_upgrade();
        _setUpgradeOwner(XeSystem::GetCurrentThreadId());
    }
}

bool XeSharedMutex::TryUpgradeLock()
{
    if (!m_mutex || !m_mutex->try_lock_upgrade()) {
        return false;
    }
    _setUpgradeOwner(XeSystem::GetCurrentThreadId());
    return true;
}

// The next holder may enter, and record itself, as soon as the lock is free.
void XeSharedMutex::UpgradeUnlock()
{
    if (m_mutex) {
        _setUpgradeOwner(0);
        m_mutex->unlock_upgrade();
    }
}

void XeSharedMutex::UniqueLock()
{
    if (!m_mutex) {
        return;
    }
    if (_callerOwnsUpgrade()) {
        m_mutex->unlock_upgrade_and_lock();
    } else {
        m_mutex->lock();
    }
}

bool XeSharedMutex::TryUniqueLock()
{
    return m_mutex && !_callerOwnsUpgrade() && m_mutex->try_lock();
}

void XeSharedMutex::UniqueUnlock()
{
    if (!m_mutex) {
        return;
    }
    if (_callerOwnsUpgrade()) {
        m_mutex->unlock_and_lock_upgrade();
    } else {
        m_mutex->unlock();
    }
}

std::uint32_t XeSharedMutex::sharedCount() const
{
    return m_mutex ? _readState(*m_mutex).sharedCount : 0;
}

bool XeSharedMutex::exclusive() const { return m_mutex && _readState(*m_mutex).exclusive; }

bool XeSharedMutex::upgrade() const { return m_mutex && _readState(*m_mutex).upgrade; }

bool XeSharedMutex::exclusive_waiting_blocked() const
{
    return m_mutex && _readState(*m_mutex).exclusiveWaitingBlocked;
}
