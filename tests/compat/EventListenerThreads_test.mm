#include "TestListener.h"
#include "TestUnit.h"

#include <AudioUnitCompat/Testing.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <future>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using audiounit_compat::liveListenerCount;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

constexpr double kTimeLimit = 10; // seconds

// Runs the calling thread's run loop until `done`, at most for the time limit.
template <typename Condition>
bool runLoopUntil(Condition done)
{
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:kTimeLimit];
    while (!done() && [limit timeIntervalSinceNow] > 0) {
        NSAutoreleasePool* const turn = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
        [turn drain];
    }
    [pool drain];
    return done();
}

UInt64 _monotonicTime()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<UInt64>(now.tv_sec) * 1'000'000'000 + static_cast<UInt64>(now.tv_nsec);
}

class EventListenerThreads : public testing::Test {
protected:
    EventListenerThreads()
    {
        pool = [[NSAutoreleasePool alloc] init];
        CFRunLoopGetCurrent(); // the main one is to be made on the main thread
    }
    ~EventListenerThreads() override { [pool drain]; }

    NSAutoreleasePool* pool = nil;
    TestUnit unit;
};

TEST_F(EventListenerThreads, RunLoopDeliversAboutOneIntervalAfterTheEvent)
{
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    UInt64 delivered = 0;
    listener.onEvent = [&] { delivered = _monotonicTime(); };
    const UInt64 before = _monotonicTime();
    setParameter(&unit, 1, 7);
    const UInt64 after = _monotonicTime();
    ASSERT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
    EXPECT_GE(listener.times.front(), before);
    EXPECT_LE(listener.times.front(), after);
    EXPECT_GE(delivered - listener.times.front(), 50'000'000U);
}

TEST_F(EventListenerThreads, TenThousandChangesInASecondShowTheLastValueInFewDeliveries)
{
    constexpr int kChanges = 10'000;
    TestListener listener(0.05F, 0.05F);
    listener.add(valueEvent(&unit, 1));
    std::atomic<bool> finished{false};
    const UInt64 begin = _monotonicTime();
    std::thread audio([&] {
        const auto start = std::chrono::steady_clock::now();
        for (int change = 1; change <= kChanges; ++change) {
            setParameter(&unit, 1, static_cast<float>(change));
            std::this_thread::sleep_until(start + change * 100us);
        }
        finished = true;
    });
    const auto showsLast = [&] {
        return finished && !listener.heard.empty() && listener.heard.back().value == kChanges;
    };
    EXPECT_TRUE(runLoopUntil(showsLast));
    audio.join();
    // One value for each interval, so the time that passed bounds their number from above. At
    // least some arrive on the way: a steady stream does not hold them all back.
    const UInt64 intervals = (_monotonicTime() - begin) / 50'000'000;
    EXPECT_LE(listener.heard.size(), intervals + 1);
    EXPECT_GE(listener.heard.size(), 4U);
}

TEST_F(EventListenerThreads, EveryThreadsEventsArriveInItsOrder)
{
    constexpr int kThreads = 4;
    constexpr int kChanges = 5'000;
    TestListener listener(0.01F, 0);
    for (UInt32 parameter = 0; parameter < kThreads; ++parameter) {
        listener.add(valueEvent(&unit, parameter));
    }
    std::vector<std::thread> threads;
    for (UInt32 parameter = 0; parameter < kThreads; ++parameter) {
        threads.emplace_back([&, parameter] {
            for (int change = 1; change <= kChanges; ++change) {
                setParameter(&unit, parameter, static_cast<float>(change));
            }
        });
    }
    EXPECT_TRUE(
        runLoopUntil([&] { return listener.heard.size() == std::size_t{kThreads} * kChanges; }));
    for (auto& thread : threads) {
        thread.join();
    }
    float last[kThreads] = {};
    for (const Heard& heard : listener.heard) {
        ASSERT_EQ(heard.value, last[heard.id] + 1);
        last[heard.id] = heard.value;
    }
    EXPECT_TRUE(std::is_sorted(listener.times.begin(), listener.times.end()));
}

TEST_F(EventListenerThreads, NotifyingNeverWaitsForACallback)
{
    TestListener listener(0.01F, 0);
    listener.add(valueEvent(&unit, 1));
    std::promise<void> notified;
    std::thread audio;
    listener.onEvent = [&] {
        if (listener.heard.size() > 1) {
            return;
        }
        // While this callback stands still, another thread gets through its calls.
        audio = std::thread([&] {
            for (int change = 0; change < 1000; ++change) {
                setParameter(&unit, 1, static_cast<float>(change));
            }
            notified.set_value();
        });
        EXPECT_EQ(notified.get_future().wait_for(10s), std::future_status::ready);
    };
    setParameter(&unit, 1, 1);
    EXPECT_TRUE(runLoopUntil([&] { return listener.heard.size() == 1001; }));
    if (audio.joinable()) {
        audio.join();
    }
}

TEST_F(EventListenerThreads, ListenersComeAndGoWhileOthersNotify)
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int count = 0; count < 2; ++count) {
        threads.emplace_back([&] {
            for (int change = 0; !stop; ++change) {
                setParameter(&unit, 1, static_cast<float>(change));
                unit.propertyChanged(9000, 0, 0);
            }
        });
    }
    const std::size_t before = liveListenerCount();
    for (int round = 0; round < 300; ++round) {
        TestListener waiting(0.001F, 0);
        TestListener immediate(0, 0);
        for (TestListener* listener : {&waiting, &immediate}) {
            listener->add(valueEvent(&unit, 1));
            listener->add(propertyEvent(&unit, 9000));
        }
        const AudioUnitEvent event = valueEvent(&unit, 1);
        AUEventListenerRemoveEventType(waiting.ref, nullptr, &event);
        if (round % 10 == 0) {
            EXPECT_TRUE(runLoopUntil([&] { return !waiting.heard.empty(); }));
        }
    }
    stop = true;
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(liveListenerCount(), before);
}

TEST_F(EventListenerThreads, DisposeOnAnotherThreadWaitsForTheCallbackUnderWay)
{
    TestListener listener(0, 0);
    listener.add(valueEvent(&unit, 1));
    std::promise<void> inside;
    std::promise<void> leave;
    std::atomic<bool> left{false};
    listener.onEvent = [&] {
        inside.set_value();
        leave.get_future().wait();
        left = true;
    };
    std::thread audio([&] { setParameter(&unit, 1, 1); });
    inside.get_future().wait();
    std::thread helper([&] { leave.set_value(); });
    listener.dispose();
    EXPECT_TRUE(left);
    audio.join();
    helper.join();
}

TEST_F(EventListenerThreads, ListenerOfTheMainRunLoopMayBeMadeAndDisposedOnAnotherThread)
{
    std::unique_ptr<TestListener> listener;
    std::thread maker([&] {
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        listener = std::make_unique<TestListener>(0.01F, 0.0F);
        AUListenerDispose(std::exchange(listener->ref, nullptr));
        EXPECT_EQ(AUEventListenerCreate(
                      [](void* data, void*, const AudioUnitEvent*, UInt64, Float32 value) {
                          auto& hearing = *static_cast<TestListener*>(data);
                          EXPECT_TRUE([NSThread isMainThread]);
                          hearing.heard.push_back(heardValue(1, value));
                      },
                      listener.get(), CFRunLoopGetMain(), kCFRunLoopCommonModes, 0.01F, 0,
                      &listener->ref),
                  noErr);
        listener->add(valueEvent(&unit, 1));
        setParameter(&unit, 1, 7);
        [inner drain];
        GSUnregisterCurrentThread();
    });
    maker.join();
    EXPECT_TRUE(runLoopUntil([&] { return !listener->heard.empty(); }));
    EXPECT_THAT(listener->take(), ElementsAre(heardValue(1, 7)));

    setParameter(&unit, 1, 8);
    std::thread([&] {
        listener->dispose();
        GSUnregisterCurrentThread();
    }).join();
    int turns = 0;
    runLoopUntil([&] { return ++turns > 5; });
    EXPECT_THAT(listener->heard, IsEmpty());
}

TEST_F(EventListenerThreads, ThreadWithItsOwnRunLoopHearsThere)
{
    std::thread worker([&] {
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        {
            TestListener listener(0.01F, 0);
            listener.add(valueEvent(&unit, 1));
            setParameter(&unit, 1, 7);
            EXPECT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
        }
        [inner drain];
        GSUnregisterCurrentThread();
    });
    worker.join();
}

TEST_F(EventListenerThreads, RunLoopOfAThirdThreadIsRefused)
{
    std::promise<CFRunLoopRef> runLoop;
    std::promise<void> leave;
    std::thread other([&] {
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        runLoop.set_value(CFRunLoopGetCurrent());
        leave.get_future().wait();
        [inner drain];
        GSUnregisterCurrentThread();
    });
    AUEventListenerRef listener = nullptr;
    EXPECT_EQ(AUEventListenerCreate([](void*, void*, const AudioUnitEvent*, UInt64, Float32) {},
                                    nullptr, runLoop.get_future().get(), nullptr, 0.05F, 0.05F,
                                    &listener),
              kAudio_ParamError);
    EXPECT_EQ(listener, nullptr);
    leave.set_value();
    other.join();
}

TEST_F(EventListenerThreads, ListenerMayOutliveItsRunLoopsThread)
{
    std::unique_ptr<TestListener> listener;
    std::thread([&] {
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        listener = std::make_unique<TestListener>(0.01F, 0.0F);
        listener->add(valueEvent(&unit, 1));
        [inner drain];
        GSUnregisterCurrentThread();
    }).join();
    setParameter(&unit, 1, 7);
    listener->dispose();
    EXPECT_THAT(listener->heard, IsEmpty());
}

TEST_F(EventListenerThreads, PropertySetOnAnotherThreadIsHeardOnTheRunLoop)
{
    unit.addProperty(9000, UInt32{1});
    TestListener listener(0.01F, 0);
    listener.add(propertyEvent(&unit, 9000));
    listener.onEvent = [] { EXPECT_TRUE([NSThread isMainThread]); };
    std::thread([&] {
        const UInt32 format = 2;
        EXPECT_EQ(AudioUnitSetProperty(&unit, 9000, 0, 0, &format, sizeof format), noErr);
    }).join();
    EXPECT_THAT(listener.heard, IsEmpty());
    EXPECT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardProperty(9000)));
}

TEST_F(EventListenerThreads, ExceptionOutOfACallbackIsLoggedAndTheRestDelivered)
{
    TestListener listener(0.01F, 0);
    listener.add(valueEvent(&unit, 1));
    listener.onEvent = [&] {
        if (listener.heard.size() == 1) {
            [NSException raise:@"Test" format:@"from a callback"];
        }
    };
    setParameter(&unit, 1, 1);
    setParameter(&unit, 1, 2);
    EXPECT_TRUE(runLoopUntil([&] { return listener.heard.size() == 2; }));
    setParameter(&unit, 1, 3);
    EXPECT_TRUE(runLoopUntil([&] { return listener.heard.size() == 3; }));
}

TEST_F(EventListenerThreads, ListenerMayBeDisposedInsideItsCallbackOnTheRunLoop)
{
    TestListener survivor(0.01F, 0);
    survivor.add(valueEvent(&unit, 2));
    TestListener listener(0.01F, 0, kCFRunLoopCommonModes);
    listener.add(valueEvent(&unit, 1));
    listener.onEvent = [&] { listener.dispose(); };
    setParameter(&unit, 1, 1);
    setParameter(&unit, 1, 2);
    EXPECT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
    setParameter(&unit, 2, 3);
    EXPECT_TRUE(runLoopUntil([&] { return !survivor.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 1)));
}

TEST_F(EventListenerThreads, UnitMayGoBeforeItsListenerWithEventsWaiting)
{
    auto gone = std::make_unique<TestUnit>();
    TestListener listener(0.01F, 0);
    listener.add(valueEvent(gone.get(), 1));
    listener.add(valueEvent(&unit, 1));
    setParameter(gone.get(), 1, 1);
    gone.reset();
    setParameter(&unit, 1, 2);
    EXPECT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 2)));
}

TEST_F(EventListenerThreads, WhatWaitedUnderAFakeClockIsDeliveredAfterIt)
{
    TestListener listener(0.01F, 0);
    listener.add(valueEvent(&unit, 1));
    {
        const audiounit_compat::FakeClock clock;
        setParameter(&unit, 1, 7);
        int turns = 0;
        runLoopUntil([&] { return ++turns > 3; });
        EXPECT_THAT(listener.heard, IsEmpty());
    }
    EXPECT_TRUE(runLoopUntil([&] { return !listener.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
}

TEST_F(EventListenerThreads, ListenerLeavesNoDescriptorBehind)
{
    // A descriptor that stayed behind would be a leak of one for each editor that was opened.
    const auto openDescriptors = [] {
        return [[[NSFileManager defaultManager] contentsOfDirectoryAtPath:@"/proc/self/fd"
                                                                    error:NULL] count];
    };
    {
        TestListener warmUp(0.05F, 0.05F);
    }
    const NSUInteger before = openDescriptors();
    for (int round = 0; round < 100; ++round) {
        TestListener listener(0.05F, 0.05F, kCFRunLoopCommonModes);
        listener.add(valueEvent(&unit, 1));
        setParameter(&unit, 1, 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
