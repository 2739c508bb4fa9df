#include "XeThread.h"

#include "XeSafeCRT.h"
#include "XeSystem.h"

#include <boost/thread/mutex.hpp>
#include <boost/thread/recursive_mutex.hpp>
#include <boost/thread/shared_mutex.hpp>

namespace {

struct _SharedState {
    std::uint32_t sharedCount = 0;
    bool exclusive = false;
    bool upgrade = false;
    bool exclusiveWaitingBlocked = false;
};

_SharedState _readState(boost::shared_mutex& mutex);

// Boost has no accessors for the state of its shared mutex. Its operations make exactly the
// transitions that XeSharedMutex promises, so a second state beside it could only go wrong. An
// explicit instantiation may name private members, which is the one legal way to read them.
template <auto State, auto StateMutex>
struct _StateReader {
    friend _SharedState _readState(boost::shared_mutex& mutex)
    {
        const boost::lock_guard<boost::mutex> guard(mutex.*StateMutex);
        const auto& state = mutex.*State;
        return {state.shared_count, state.exclusive, state.upgrade,
                state.exclusive_waiting_blocked};
    }
};

template struct _StateReader<&boost::shared_mutex::state, &boost::shared_mutex::state_change>;

} // namespace

XeMutex::XeMutex(const char* name) : m_mutex(std::make_unique<boost::mutex>()), m_name(name) {}

XeMutex::~XeMutex() = default;

void XeMutex::Lock()
{
    if (m_mutex) {
        m_mutex->lock();
    }
}

bool XeMutex::TryLock() { return m_mutex && m_mutex->try_lock(); }

void XeMutex::Unlock()
{
    if (m_mutex) {
        m_mutex->unlock();
    }
}

XeCriticalSection::XeCriticalSection(const char* name)
    : m_mutex(std::make_unique<boost::recursive_mutex>()), m_name(name)
{
}

XeCriticalSection::~XeCriticalSection() = default;

// Written by the owner only; atomic for those who look from outside.
void XeCriticalSection::_entered()
{
    if (m_recursionCount++ == 0) {
        m_lockingId = XeSystem::GetCurrentThreadId();
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
        --m_recursionCount;
        m_mutex->unlock();
    }
}

XeSharedMutex::XeSharedMutex(const char* name)
    : m_mutex(std::make_unique<boost::shared_mutex>()), m_name(name)
{
}

XeSharedMutex::~XeSharedMutex() = default;

bool XeSharedMutex::_callerOwnsUpgrade() const
{
    return m_upgradeOwner == XeSystem::GetCurrentThreadId();
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
        m_upgradeOwner = XeSystem::GetCurrentThreadId();
    }
}

bool XeSharedMutex::TryUpgradeLock()
{
    if (!m_mutex || !m_mutex->try_lock_upgrade()) {
        return false;
    }
    m_upgradeOwner = XeSystem::GetCurrentThreadId();
    return true;
}

// The next holder may enter, and record itself, as soon as the lock is free.
void XeSharedMutex::UpgradeUnlock()
{
    if (m_mutex) {
        m_upgradeOwner = 0;
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
