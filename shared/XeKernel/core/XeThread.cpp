#include "XeThread.h"

#include "core/XeThreadPlatform.h"

#include "XeSafeCRT.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>

#include <atomic>
#include <cerrno>
#include <mutex>

namespace {

// The event word's rules, the same for both classes whatever their mutex and condition.

template <typename Mutex, typename Change>
void _change(Mutex& mutex, Change change)
{
    const std::lock_guard<Mutex> guard(mutex);
    change();
}

template <typename Mutex, typename Condition>
unsigned int _waitAndClear(Mutex& mutex, Condition& condition, unsigned int& events,
                           unsigned int mask, bool all)
{
    // Each library's condition takes the lock type of its own library only.
    using Lock = std::conditional_t<std::is_same_v<Mutex, std::mutex>, std::unique_lock<std::mutex>,
                                    boost::unique_lock<boost::mutex>>;
    Lock lock(mutex);
    while (all ? (events & mask) != mask : (events & mask) == 0) {
        condition.wait(lock);
    }
    const unsigned int before = events;
    events &= ~mask;
    return before;
}

struct _Call {
    XeThread::Function function;
    XeThread* self;
    void* arg;

    static void run(void* call)
    {
        const auto& [function, self, arg] = *static_cast<_Call*>(call);
        function(self, arg);
    }
};

} // namespace

/// The two moments of a start that the other side waits for. Shared, so that neither outlives it.
struct XeThread::Start {
    static void tell(std::atomic<bool>& moment)
    {
        moment = true;
        moment.notify_all();
    }

    std::atomic<bool> built{false}; // by the constructor: the worker may look at the fields
    std::atomic<bool> begun{false}; // by the worker: it has read what it needs of them
};

XeThread::XeThread(Function function, void* arg, unsigned int flags, const char* name)
    : m_start(std::make_shared<Start>()), m_flags(flags), m_function(function), m_name(name)
{
    if (m_flags != 0) {
        m_eventCondition = std::make_unique<boost::condition_variable>();
        m_eventMutex = std::make_unique<boost::mutex>();
    }
    m_thread = std::make_unique<boost::thread>([this, arg] { begin(this, arg); });
    Start::tell(m_start->built);
}

// A worker that has not begun would look at an object that is gone.
XeThread::~XeThread() { m_start->begun.wait(false); }

void XeThread::begin(XeThread* self, void* arg) noexcept
{
    const std::shared_ptr<Start> start = self->m_start;
    start->built.wait(false);
    _Call call{self->m_function, self, arg};
    SetName(self->m_name);
    Start::tell(start->begun);
    if (call.function != nullptr) {
        _callWithPool(_Call::run, &call);
    }
}

void XeThread::_checkNotWorker() const
{
    if (m_thread->get_id() == boost::this_thread::get_id()) {
        throw boost::thread_resource_error(EDEADLK, "boost thread: trying joining itself");
    }
}

void XeThread::WaitUntilTerminated()
{
    if (m_thread) {
        _checkNotWorker();
        m_thread->join();
    }
}

bool XeThread::WaitUntilTerminated(unsigned int milliseconds)
{
    if (!m_thread) {
        return false;
    }
    const auto deadline = boost::posix_time::microsec_clock::universal_time() +
                          boost::posix_time::microseconds(milliseconds * 1000LL);
    _checkNotWorker();
    // Boost would try again and again, up to the deadline, to join a thread that is joined already.
    return m_thread->joinable() && m_thread->timed_join(deadline);
}

void XeThread::SignalEvent(unsigned int mask)
{
    if (m_eventMutex) {
        _change(*m_eventMutex, [&] { m_events |= mask; });
        m_eventCondition->notify_one();
    }
}

void XeThread::ResetEvent(unsigned int mask)
{
    if (m_eventMutex) {
        _change(*m_eventMutex, [&] { m_events &= ~mask; });
        m_eventCondition->notify_one();
    }
}

void XeThread::WaitOnEvent(unsigned int mask)
{
    if (m_eventMutex) {
        _waitAndClear(*m_eventMutex, *m_eventCondition, m_events, mask, true);
    }
}

unsigned int XeThread::WaitOnAnyEvent(unsigned int mask)
{
    return m_eventMutex ? _waitAndClear(*m_eventMutex, *m_eventCondition, m_events, mask, false)
                        : 0;
}

namespace xenon {

thread::~thread()
{
    if (joinable()) {
        join();
    } else if (m_thread.joinable()) {
        m_thread.detach();
    }
}

void thread::signal(unsigned int mask)
{
    _change(m_eventMutex, [&] { m_events |= mask; });
    m_eventCondition.notify_one();
}

void thread::signal_all(unsigned int mask)
{
    _change(m_eventMutex, [&] { m_events |= mask; });
    m_eventCondition.notify_all();
}

void thread::wait(unsigned int mask)
{
    _waitAndClear(m_eventMutex, m_eventCondition, m_events, mask, true);
}

unsigned int thread::wait_any(unsigned int mask)
{
    return _waitAndClear(m_eventMutex, m_eventCondition, m_events, mask, false);
}

bool thread::joinable() const
{
    return m_thread.joinable() && m_thread.get_id() != std::this_thread::get_id();
}

void thread::join()
{
    if (joinable()) {
        m_thread.join();
    }
}

void thread::set_name(const char* name) { XeThread::SetName(name); }

} // namespace xenon
