#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

#include <pthread.h>

namespace boost {
class condition_variable;
class mutex;
class recursive_mutex;
class shared_mutex;
class thread;
} // namespace boost

// Locks ---------------------------------------------------------------------------------------
//
// Each class owns one lock of the system or of Boost.Thread on the heap. Names are kept, not
// copied, for whoever looks at a lock in a debugger; they must outlive the lock. The lower-case
// operations are the capitalised ones under the names that standard guards call. Nothing is
// copyable or movable. Destroying a held lock is the caller's error and not checked. [any], unless
// stated otherwise.

/// Plain exclusive lock.
///
/// @throws boost::thread_resource_error  from the constructor, with the error number and "boost::
///     mutex constructor failed in pthread_mutex_init".
/// @throws boost::lock_error  from Lock() and Unlock(), with the error number and "boost: mutex
///     lock failed in pthread_mutex_lock" or "boost: mutex unlock failed in pthread_mutex_unlock".
class XeMutex {
public:
    explicit XeMutex(const char* name);
    virtual ~XeMutex();
    XeMutex(const XeMutex&) = delete;
    XeMutex& operator=(const XeMutex&) = delete;

    /// Blocks until the lock is owned.
    void Lock();

    /// Takes the lock when it is free. Never blocks, never throws; every error gives false.
    bool TryLock();

    /// Releases the lock. Called by the thread that holds it.
    void Unlock();

    void lock() { Lock(); }
    bool try_lock() { return TryLock(); }
    void unlock() { Unlock(); }

private:
    std::unique_ptr<pthread_mutex_t> m_mutex;
    const char* m_name;
};

/// Recursive lock that knows its owner and depth.
class XeCriticalSection {
public:
    explicit XeCriticalSection(const char* name);
    virtual ~XeCriticalSection();
    XeCriticalSection(const XeCriticalSection&) = delete;
    XeCriticalSection& operator=(const XeCriticalSection&) = delete;

    /// Blocks until the lock is owned, once more if this thread owns it already.
    void Enter();

    /// The same without blocking; false when another thread owns the lock.
    bool TryEnter();

    /// Undoes one Enter(). Called by the owner.
    void Leave();

    void lock() { Enter(); }
    bool try_lock() { return TryEnter(); }
    void unlock() { Leave(); }

    /// The thread that last entered from depth 0, as XeSystem::GetCurrentThreadId tells it; 0
    /// before the first time. It keeps naming that thread after the last Leave(): compare it only
    /// while RecursionCount() is not 0. Exact on the owning thread, possibly stale on others.
    std::uint64_t LockingId() const { return m_lockingId.load(std::memory_order_relaxed); }

    /// Present depth, 0 when free. Exact on the owning thread, possibly stale on others.
    std::uint64_t RecursionCount() const
    {
        return m_recursionCount.load(std::memory_order_relaxed);
    }

private:
    void _entered();

    std::unique_ptr<boost::recursive_mutex> m_mutex;
    std::atomic<std::uint64_t> m_lockingId{0};
    std::atomic<std::uint64_t> m_recursionCount{0};
    const char* m_name;
};

/// Reader/writer lock with one upgradable reader, which can promote itself to the writer and drop
/// back.
///
/// The full cycle of an upgrade holder: UpgradeLock(), any number of UniqueLock()/UniqueUnlock()
/// pairs, UpgradeUnlock(). Waiting writers keep new readers out.
///
/// | held        | another's SharedLock | another's UpgradeLock | another's UniqueLock |
/// |-------------|----------------------|-----------------------|----------------------|
/// | shared      | enters               | enters                | waits                |
/// | upgrade     | enters               | waits                 | waits                |
/// | unique      | waits                | waits                 | waits                |
class XeSharedMutex {
public:
    explicit XeSharedMutex(const char* name);
    ~XeSharedMutex();
    XeSharedMutex(const XeSharedMutex&) = delete;
    XeSharedMutex& operator=(const XeSharedMutex&) = delete;

    /// Reader lock. The try fails while a writer holds the lock or waits for it.
    void SharedLock();
    bool TrySharedLock();
    void SharedUnlock();

    /// Writer lock. On the thread that holds the upgrade lock, UniqueLock() promotes: it waits
    /// until the other readers have left. The try never promotes, it is false there.
    void UniqueLock();
    bool TryUniqueLock();

    /// Ends a writer lock. A promoted upgrade holder drops back to its upgrade lock, which it must
    /// still end.
    void UniqueUnlock();

    /// Upgradable reader lock: one holder at a time, beside any number of readers.
    void UpgradeLock();
    bool TryUpgradeLock();
    void UpgradeUnlock();

    void lock() { UniqueLock(); }
    bool try_lock() { return TryUniqueLock(); }
    void unlock() { UniqueUnlock(); }
    void lock_shared() { SharedLock(); }
    bool try_lock_shared() { return TrySharedLock(); }
    void unlock_shared() { SharedUnlock(); }
    void lock_upgrade() { UpgradeLock(); }
    bool try_lock_upgrade() { return TryUpgradeLock(); }
    void unlock_upgrade() { UpgradeUnlock(); }

    /// Readers, the upgrade holder included. A momentary value, like the three flags below.
    std::uint32_t sharedCount() const;

    /// True while a writer holds the lock, a promoted upgrade holder included.
    bool exclusive() const;

    /// True while an upgrade holder reads; false while it is promoted.
    bool upgrade() const;

    /// True from a UniqueLock() that does not promote, while it waits and while it holds, to its
    /// release: no new reader enters.
    bool exclusive_waiting_blocked() const;

private:
    bool _callerOwnsUpgrade() const;
    void _setUpgradeOwner(std::uint64_t thread);

    std::unique_ptr<boost::shared_mutex> m_mutex;
    std::atomic<std::uint64_t> m_upgradeOwner{0}; // thread id, 0 for none
    const char* m_name;
};

// Threads -------------------------------------------------------------------------------------
//
// Both classes carry 32 events, the bits of one word. A producer sets bits; the worker waits for
// all or for any bits of a mask, and a wait that succeeds clears the mask's bits. Waits have no
// time limit.

/// A worker thread that runs from construction until its function returns.
///
/// The destructor neither signals nor waits for the end: it detaches a worker that still runs.
/// Owners signal an event that means "stop" and call WaitUntilTerminated() first.
class XeThread {
public:
    using Function = void (*)(XeThread* self, void* arg);

    /// Starts the worker, which is named and runs `function(this, arg)` with a pool for Cocoa
    /// objects around it. Returns as soon as it is started. An exception that leaves the function
    /// ends the process.
    ///
    /// @param function  Null gives a worker that ends at once.
    /// @param arg       Passed on, not looked at.
    /// @param flags     Any value but 0 gives the thread events.
    /// @param name      UTF-8; kept, not copied; must outlive the thread.
    /// @throws boost::thread_resource_error  with EAGAIN and "boost::thread_resource_error" when
    ///     the system refuses a thread, or with the text of XeMutex's constructor.
    XeThread(Function function, void* arg, unsigned int flags, const char* name);
    ~XeThread();
    XeThread(const XeThread&) = delete;
    XeThread& operator=(const XeThread&) = delete;

    /// Waits until the worker has ended; returns at once when that was seen before.
    /// @throws boost::thread_resource_error  with EDEADLK and "boost thread: trying joining itself"
    ///     when called on the worker.
    void WaitUntilTerminated();

    /// Waits at most `milliseconds`. True when the worker ended within that time; false when it did
    /// not, and at once when its end was seen by an earlier wait. Throws like the other form.
    bool WaitUntilTerminated(unsigned int milliseconds);

    /// Sets the bits of `mask` and wakes one waiter. Like all four event operations it does nothing
    /// on a thread without events. Only one wakes, so the events serve one waiting thread.
    void SignalEvent(unsigned int mask);

    /// Clears the bits of `mask`. Wakes one waiter, which looks again and sleeps on.
    void ResetEvent(unsigned int mask);

    /// Waits until all bits of `mask` are set, then clears them. A mask of 0 returns at once.
    void WaitOnEvent(unsigned int mask);

    /// Waits until any bit of `mask` is set, then clears the mask's bits.
    /// @return  The whole word before that, bits outside the mask included; 0 without events.
    unsigned int WaitOnAnyEvent(unsigned int mask);

    /// Names the calling thread for debuggers and crash reports.
    /// @param name  UTF-8; copied by the system. Linux keeps the whole characters of the first 15
    ///              bytes. Null does nothing.
    static void SetName(const char* name);

    /// Entry point of the worker: names the thread and calls `self`'s function with `self` and
    /// `arg`, with a pool around it.
    static void begin(XeThread* self, void* arg) noexcept;

private:
    void _checkNotWorker() const;

    struct Start;

    std::shared_ptr<Start> m_start;
    std::unique_ptr<boost::condition_variable> m_eventCondition; // absent without events
    std::unique_ptr<boost::mutex> m_eventMutex;                  // absent without events
    unsigned int m_flags;
    unsigned int m_events = 0; // guarded by m_eventMutex
    Function m_function;
    const char* m_name;
    std::unique_ptr<boost::thread> m_thread;
};

namespace xenon {

/// A lighter worker over the standard thread, whose events are always there and can wake all
/// waiters.
///
///     xenon::thread worker([](xenon::thread& self) { self.wait(kStop); });
///     worker.signal(kStop);
///     worker.join();
///
/// Destroying a worker that was not joined joins it; on the worker itself it is detached instead.
class thread {
public:
    /// No worker; only the events work.
    thread() = default;

    /// Starts a worker that runs `function(*this)` or, when it takes nothing, `function()`. The
    /// worker starts after this object is complete. An exception that leaves the function ends
    /// the process.
    /// @throws std::system_error  when the system refuses a thread.
    template <typename Function>
    explicit thread(Function function)
    {
        m_thread = std::thread([this, run = std::move(function)]() mutable noexcept {
            m_built.wait(false);
            if constexpr (std::is_invocable_v<Function&, thread&>) {
                run(*this);
            } else {
                run();
            }
        });
        m_built = true;
        m_built.notify_one();
    }

    ~thread();
    thread(const thread&) = delete;
    thread& operator=(const thread&) = delete;

    /// Sets the bits of `mask` and wakes one waiter.
    void signal(unsigned int mask);

    /// Sets the bits of `mask` and wakes all waiters.
    void signal_all(unsigned int mask);

    /// Waits until all bits of `mask` are set, then clears them.
    void wait(unsigned int mask);

    /// Waits until any bit of `mask` is set, then clears the mask's bits.
    /// @return  The whole word before that, bits outside the mask included.
    unsigned int wait_any(unsigned int mask);

    /// True when a worker is attached and it is not the calling thread.
    bool joinable() const;

    /// Joins when joinable(). Otherwise, on the worker itself too, it does nothing: unlike
    /// XeThread, which throws there.
    void join();

    /// XeThread::SetName: names the calling thread, not this object's worker.
    void set_name(const char* name);

private:
    std::condition_variable m_eventCondition;
    std::mutex m_eventMutex;
    std::atomic<bool> m_built{false};
    std::thread m_thread;
    unsigned int m_events = 0; // guarded by m_eventMutex
};

} // namespace xenon
