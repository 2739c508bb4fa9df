#ifndef __linux__
#error "for Linux only"
#endif

// Errors that the system never reports of its own accord. The program is linked so that calls of
// these functions come here first (ld --wrap).

#include "XeThread.h"

#include <gtest/gtest.h>

#include <boost/thread/exceptions.hpp>

#include <pthread.h>

#include <cerrno>
#include <string>

namespace {

/// What the next calls answer instead of doing their work; on this thread only.
struct Fault {
    int error = 0;
    int times = 0;
    int after = 0; // calls that do their work first

    bool strikes()
    {
        if (after > 0) {
            --after;
            return false;
        }
        return times > 0 && times-- > 0;
    }
};

thread_local Fault initFault;
thread_local Fault lockFault;
thread_local Fault tryFault;
thread_local Fault unlockFault;

} // namespace

extern "C" {

int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_trylock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes)
{
    return initFault.strikes() ? initFault.error : __real_pthread_mutex_init(mutex, attributes);
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex)
{
    return lockFault.strikes() ? lockFault.error : __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_trylock(pthread_mutex_t* mutex)
{
    return tryFault.strikes() ? tryFault.error : __real_pthread_mutex_trylock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    return unlockFault.strikes() ? unlockFault.error : __real_pthread_mutex_unlock(mutex);
}
}

namespace {

template <typename Error, typename Action>
void expectThrown(int number, const std::string& text, Action action)
{
    try {
        action();
        ADD_FAILURE() << "did not throw";
    } catch (const Error& error) {
        EXPECT_EQ(error.native_error(), number);
        EXPECT_EQ(error.code().category(), boost::system::generic_category());
        EXPECT_EQ(std::string(error.what()).substr(0, text.size()), text);
    }
}

TEST(MutexFault, ConstructionThrowsAResourceError)
{
    const char* const kText = "boost:: mutex constructor failed in pthread_mutex_init";
    initFault = {EAGAIN, 1};
    expectThrown<boost::thread_resource_error>(EAGAIN, kText, [] { const XeMutex mutex("test"); });
    initFault = {ENOMEM, 1, 1}; // the condition has a mutex of its own
    expectThrown<boost::thread_resource_error>(
        ENOMEM, kText, [] { XeThread([](XeThread*, void*) {}, nullptr, 1, "test"); });
}

TEST(MutexFault, LockAndUnlockThrowLockErrors)
{
    XeMutex mutex("test");
    lockFault = {EDEADLK, 1};
    expectThrown<boost::lock_error>(EDEADLK, "boost: mutex lock failed in pthread_mutex_lock",
                                    [&] { mutex.Lock(); });
    mutex.Lock();
    unlockFault = {EPERM, 1};
    expectThrown<boost::lock_error>(EPERM, "boost: mutex unlock failed in pthread_mutex_unlock",
                                    [&] { mutex.Unlock(); });
    mutex.Unlock();
}

TEST(MutexFault, InterruptedCallsAreRepeated)
{
    XeMutex mutex("test");
    lockFault = {EINTR, 3};
    mutex.Lock();
    EXPECT_EQ(lockFault.times, 0);
    unlockFault = {EINTR, 3};
    mutex.Unlock();
    EXPECT_EQ(unlockFault.times, 0);
    tryFault = {EINTR, 3};
    EXPECT_TRUE(mutex.TryLock());
    EXPECT_EQ(tryFault.times, 0);
    mutex.Unlock();
}

TEST(MutexFault, TryAnswersFalseToEveryError)
{
    XeMutex mutex("test");
    for (const int error : {EBUSY, EINVAL, EAGAIN, EDEADLK}) {
        tryFault = {error, 1};
        EXPECT_FALSE(mutex.TryLock());
    }
    EXPECT_TRUE(mutex.TryLock());
    mutex.Unlock();
}

} // namespace
