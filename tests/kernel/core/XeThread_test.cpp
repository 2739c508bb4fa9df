#include "XeSystem.h"
#include "XeThread.h"

#include "OpenDescriptors.h"

#include <gtest/gtest.h>

#include <boost/thread/exceptions.hpp>

#include <pthread.h>
#include <sys/resource.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <future>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr unsigned kStop = 1u << 31;

void waitForStop(XeThread* self, void*) { self->WaitOnEvent(kStop); }

void doNothing(XeThread*, void*) {}

/// Calls a function object on an XeThread with events.
struct Worker {
    explicit Worker(std::function<void(XeThread&)> body) : body(std::move(body)) {}

    static void run(XeThread* self, void* arg) { static_cast<Worker*>(arg)->body(*self); }

    std::function<void(XeThread&)> body;
    XeThread thread{run, this, 1, "worker"};
};

std::string currentThreadName()
{
    char name[64] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    return name;
}

TEST(WorkerThread, PassesItselfAndTheArgument)
{
    struct Seen {
        XeThread* self = nullptr;
        std::uint64_t id = 0;
        std::string name;
    } seen;
    XeThread thread(
        [](XeThread* self, void* arg) {
            *static_cast<Seen*>(arg) = {self, XeSystem::GetCurrentThreadId(), currentThreadName()};
        },
        &seen, 0, "analysis");
    thread.WaitUntilTerminated();
    EXPECT_EQ(seen.self, &thread);
    EXPECT_NE(seen.id, XeSystem::GetCurrentThreadId());
    EXPECT_EQ(seen.name, "analysis");
}

TEST(WorkerThread, WithoutAFunctionEndsAtOnce)
{
    XeThread thread(nullptr, nullptr, 0, "idle");
    thread.WaitUntilTerminated();
}

// 16 bytes and more would be refused as a whole. The cut never splits a character.
TEST(ThreadName, KeepsTheWholeCharactersOfFifteenBytes)
{
    const std::pair<const char*, const char*> rows[] = {
        {"short", "short"},
        {"exactly15bytes!", "exactly15bytes!"},
        {"exactly16bytes!!", "exactly16bytes!"},
        {"12345678901234\xC3\xA9", "12345678901234"},
        {"1234567890123\xC3\xA9", "1234567890123\xC3\xA9"},
        {"123456789012\xF0\x9F\x8E\xB5", "123456789012"},
        {"12345678901\xF0\x9F\x8E\xB5", "12345678901\xF0\x9F\x8E\xB5"},
        {"", ""},
    };
    std::async(std::launch::async, [&] {
        for (const auto& [given, kept] : rows) {
            SCOPED_TRACE(given);
            XeThread::SetName(given);
            EXPECT_EQ(currentThreadName(), kept);
        }
        XeThread::SetName("before");
        XeThread::SetName(nullptr);
        EXPECT_EQ(currentThreadName(), "before");
    }).get();
}

// The entry point may also be called by hand, on any thread, which takes the name.
TEST(ThreadStart, EntryPointCallsTheFunctionWithItsArguments)
{
    int first = 0;
    int second = 0;
    XeThread thread([](XeThread*, void* count) { ++*static_cast<int*>(count); }, &first, 0,
                    "by hand");
    thread.WaitUntilTerminated();
    std::async(std::launch::async, [&] {
        XeThread::begin(&thread, &second);
        EXPECT_EQ(currentThreadName(), "by hand");
    }).get();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST(ThreadEvents, WaitForAllReturnsAtOnceAndClearsItsBits)
{
    Worker worker([](XeThread& self) {
        self.SignalEvent(0x5);
        self.WaitOnEvent(0x1);
        EXPECT_EQ(self.WaitOnAnyEvent(0x4), 0x4u);
        self.WaitOnEvent(0);
    });
    worker.thread.WaitUntilTerminated();
}

TEST(ThreadEvents, WaitForAnyTellsTheWholeWordAndClearsItsMask)
{
    Worker worker([](XeThread& self) {
        self.SignalEvent(0x6);
        EXPECT_EQ(self.WaitOnAnyEvent(0x3), 0x6u);
        EXPECT_EQ(self.WaitOnAnyEvent(0xFFFFFFFF), 0x4u);
    });
    worker.thread.WaitUntilTerminated();
}

TEST(ThreadEvents, WaitForAllBlocksUntilTheLastBit)
{
    std::atomic<bool> through = false;
    Worker worker([&](XeThread& self) {
        self.WaitOnEvent(0x3);
        through = true;
        self.SignalEvent(0x8);
        EXPECT_EQ(self.WaitOnAnyEvent(0xF), 0x8u); // both bits were cleared
    });
    worker.thread.SignalEvent(0x1);
    EXPECT_FALSE(worker.thread.WaitUntilTerminated(30));
    EXPECT_FALSE(through);
    worker.thread.SignalEvent(0x2);
    worker.thread.WaitUntilTerminated();
    EXPECT_TRUE(through);
}

TEST(ThreadEvents, ResetClearsBitsAndTheWaiterSleepsOn)
{
    Worker worker([](XeThread& self) { self.WaitOnEvent(0x3); });
    worker.thread.SignalEvent(0x1);
    worker.thread.ResetEvent(0x1);
    worker.thread.SignalEvent(0x2);
    EXPECT_FALSE(worker.thread.WaitUntilTerminated(30));
    worker.thread.SignalEvent(0x1);
    EXPECT_TRUE(worker.thread.WaitUntilTerminated(5000));
}

TEST(ThreadEvents, AreOffWithFlagsZero)
{
    XeThread thread(doNothing, nullptr, 0, "quiet");
    thread.SignalEvent(0xFFFFFFFF);
    thread.ResetEvent(0x1);
    thread.WaitOnEvent(0xFFFFFFFF);
    EXPECT_EQ(thread.WaitOnAnyEvent(0xFFFFFFFF), 0u);
    thread.WaitUntilTerminated();
}

TEST(ThreadEvents, SignalsBeforeTheWorkerRunsAreKept)
{
    for (int i = 0; i < 200; ++i) {
        XeThread thread(waitForStop, nullptr, 1, "early");
        thread.SignalEvent(kStop);
        ASSERT_TRUE(thread.WaitUntilTerminated(10000));
    }
}

TEST(ThreadEnd, TimedWaitTellsWhetherItEndedInTime)
{
    XeThread thread(waitForStop, nullptr, 7, "timed");
    EXPECT_FALSE(thread.WaitUntilTerminated(0));
    EXPECT_FALSE(thread.WaitUntilTerminated(20));
    thread.SignalEvent(kStop);
    EXPECT_TRUE(thread.WaitUntilTerminated(5000));
}

TEST(ThreadEnd, ZeroWaitOnAFinishedThreadIsTrue)
{
    XeThread thread(doNothing, nullptr, 0, "done");
    bool ended = false;
    for (int i = 0; i < 5000 && !ended; ++i) { // until the worker has really left
        ended = thread.WaitUntilTerminated(0);
        if (!ended) {
            XeSystem::Sleep(1);
        }
    }
    EXPECT_TRUE(ended);
}

TEST(ThreadEnd, AfterASuccessfulTimedWaitTheTimedFormIsFalseAndTheOtherReturns)
{
    XeThread thread(doNothing, nullptr, 0, "done");
    EXPECT_TRUE(thread.WaitUntilTerminated(5000));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(thread.WaitUntilTerminated(20000));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s); // at once, that is
    thread.WaitUntilTerminated();
}

TEST(ThreadEnd, SelfJoinThrows)
{
    const auto expectSelfJoin = [](auto join) {
        try {
            join();
            ADD_FAILURE() << "did not throw";
        } catch (const boost::thread_resource_error& error) {
            EXPECT_EQ(error.native_error(), EDEADLK);
            EXPECT_EQ(std::string(error.what()).find("boost thread: trying joining itself"), 0u);
        }
    };
    Worker worker([&](XeThread& self) {
        expectSelfJoin([&] { self.WaitUntilTerminated(); });
        expectSelfJoin([&] { self.WaitUntilTerminated(10); });
    });
    worker.thread.WaitUntilTerminated();
}

TEST(ThreadEnd, DestructionDetachesARunningWorker)
{
    static std::atomic<bool> release;
    static std::atomic<bool> ended;
    release = false;
    ended = false;
    {
        XeThread thread(
            [](XeThread*, void*) {
                while (!release) {
                    XeSystem::Sleep(1);
                }
                ended = true;
            },
            nullptr, 0, "detached");
    }
    EXPECT_FALSE(ended);
    release = true;
    for (int i = 0; i < 5000 && !ended; ++i) {
        XeSystem::Sleep(1);
    }
    EXPECT_TRUE(ended);
}

// The object may go before the system has given the worker its first slice.
TEST(ThreadEnd, DestructionRightAfterStartIsSafe)
{
    static std::atomic<int> ran;
    ran = 0;
    for (int i = 0; i < 500; ++i) {
        XeThread([](XeThread*, void*) { ++ran; }, nullptr, 1, "short");
    }
    for (int i = 0; i < 5000 && ran < 500; ++i) {
        XeSystem::Sleep(1);
    }
    EXPECT_EQ(ran, 500);
}

TEST(ThreadStartDeathTest, RefusedThreadThrowsWithEagain)
{
    // In a child process that may have no further thread; the limit does not bind root.
    const auto start = [] {
        const rlimit none{0, 0};
        if (setrlimit(RLIMIT_AS, &none) != 0) {
            _exit(2);
        }
        try {
            XeThread thread(doNothing, nullptr, 0, "refused");
            _exit(3);
        } catch (const boost::thread_resource_error& error) {
            const bool right =
                error.native_error() == EAGAIN &&
                std::string_view(error.what()).starts_with("boost::thread_resource_error");
            _exit(right ? 0 : 4);
        } catch (const std::bad_alloc&) {
            _exit(5);
        }
    };
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the sanitizer itself needs address space to start a thread";
#endif
#endif
    EXPECT_EXIT(start(), testing::ExitedWithCode(0), "");
}

TEST(ThreadExceptionDeathTest, ExceptionLeavingTheWorkerEndsTheProcess)
{
    EXPECT_DEATH(
        {
            XeThread thread([](XeThread*, void*) { throw 1; }, nullptr, 0, "throws");
            thread.WaitUntilTerminated();
        },
        "");
    EXPECT_DEATH({ xenon::thread([] { throw 1; }).join(); }, "");
}

TEST(LightThread, SignalAndWaitLikeTheOther)
{
    xenon::thread worker([](xenon::thread& self) {
        self.signal(0x6);
        EXPECT_EQ(self.wait_any(0x3) & ~kStop, 0x6u); // the stop may be set already
        self.wait(0x4);
        self.wait(kStop);
    });
    EXPECT_TRUE(worker.joinable());
    worker.signal(kStop);
    worker.join();
    EXPECT_FALSE(worker.joinable());
    worker.join();
}

// Three wait for a bit of their own, one call sets all.
TEST(LightThread, SignalAllWakesEveryWaiter)
{
    xenon::thread events;
    std::vector<std::future<unsigned>> waiters;
    for (unsigned bit = 0; bit < 3; ++bit) {
        waiters.push_back(
            std::async(std::launch::async, [&, bit] { return events.wait_any(1u << bit); }));
    }
    XeSystem::Sleep(10); // most of them sleep by now; the rule holds for any mix
    events.signal_all(0x7);
    for (auto& waiter : waiters) {
        ASSERT_EQ(waiter.wait_for(5s), std::future_status::ready);
        waiter.get();
    }
}

// Unlike XeThread, which throws.
TEST(LightThread, SelfJoinDoesNothing)
{
    xenon::thread worker([](xenon::thread& self) {
        EXPECT_FALSE(self.joinable());
        self.join();
    });
    worker.join();
}

TEST(LightThread, WithoutAWorkerOnlyEventsWork)
{
    xenon::thread none;
    EXPECT_FALSE(none.joinable());
    none.join();
    none.signal(0x1);
    none.wait(0x1);
}

TEST(LightThread, DestructionJoins)
{
    std::atomic<bool> ended = false;
    {
        const xenon::thread worker([&] {
            XeSystem::Sleep(20);
            ended = true;
        });
    }
    EXPECT_TRUE(ended);
}

TEST(LightThread, DestructionOnTheWorkerDetaches)
{
    std::promise<void> gone;
    auto* const worker = new std::unique_ptr<xenon::thread>;
    std::latch stored(1);
    *worker = std::make_unique<xenon::thread>([&] {
        stored.wait();
        worker->reset();
        gone.set_value();
    });
    stored.count_down();
    ASSERT_EQ(gone.get_future().wait_for(5s), std::future_status::ready);
    delete worker;
}

TEST(LightThread, NamesTheCallingThread)
{
    std::async(std::launch::async, [] {
        xenon::thread events;
        events.set_name("caller");
        EXPECT_EQ(currentThreadName(), "caller");
    }).get();
}

// A worker that answers every request, over two of its events: none is lost and none comes twice.
TEST(ThreadEventStress, OneWaiterSeesEverySignal)
{
    constexpr unsigned kRequest = 0x1;
    constexpr int kRequests = 20000;
    int handled = 0; // handed over by the events alone
    xenon::thread answers;
    Worker worker([&](XeThread& self) {
        while ((self.WaitOnAnyEvent(kRequest | kStop) & kStop) == 0) {
            ++handled;
            answers.signal(kRequest);
        }
    });
    for (int i = 0; i < kRequests; ++i) {
        worker.thread.SignalEvent(kRequest);
        worker.thread.ResetEvent(0x2); // wakes it for nothing
        answers.wait(kRequest);
        ASSERT_EQ(handled, i + 1);
    }
    worker.thread.SignalEvent(kStop);
    worker.thread.WaitUntilTerminated();
    EXPECT_EQ(handled, kRequests);
}

// Each waiter has a bit of its own; several producers set them all and wake everybody.
TEST(ThreadEventStress, ManyWaitersSeeEverySignal)
{
    constexpr unsigned kWaiters = 4;
    constexpr int kRounds = 3000;
    xenon::thread requests;
    xenon::thread answers;
    std::vector<std::thread> waiters;
    for (unsigned bit = 0; bit < kWaiters; ++bit) {
        waiters.emplace_back([&, bit] {
            for (int round = 0; round < kRounds; ++round) {
                round % 2 == 0 ? requests.wait(1u << bit)
                               : static_cast<void>(requests.wait_any(1u << bit));
                answers.signal(1u << bit);
            }
        });
    }
    constexpr unsigned kAll = (1u << kWaiters) - 1;
    for (int round = 0; round < kRounds; ++round) {
        std::thread other([&] { requests.signal_all(kAll & 0x5); });
        requests.signal_all(kAll & ~0x5u);
        answers.wait(kAll);
        other.join();
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(ThreadResources, TenThousandCyclesLeaveNothingBehind)
{
    {
        XeThread(doNothing, nullptr, 1, "warm").WaitUntilTerminated();
    }
    const std::size_t descriptors = openDescriptors();
    const unsigned threads = XeSystem::GetCurrentThreadCount();
    for (int i = 0; i < 10000; ++i) {
        XeThread thread(doNothing, nullptr, 1, "cycle");
        thread.WaitUntilTerminated();
        xenon::thread light([] {});
        light.join();
    }
    for (int i = 0; i < 5000 && XeSystem::GetCurrentThreadCount() != threads; ++i) {
        XeSystem::Sleep(1);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(XeSystem::GetCurrentThreadCount(), threads);
}

} // namespace
