#include "XeSystem.h"
#include "XeThread.h"

#include "OpenDescriptors.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <latch>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <thread>

namespace {

using namespace std::chrono_literals;

template <typename Result>
Result onOtherThread(std::function<Result()> function)
{
    return std::async(std::launch::async, function).get();
}

/// A thread that carries out one step at a time, so that a test can say who does what when.
class Actor {
public:
    ~Actor()
    {
        post([this] { m_done = true; });
        m_thread.join();
    }

    std::future<void> post(std::function<void()> step)
    {
        std::packaged_task<void()> task(std::move(step));
        auto future = task.get_future();
        {
            const std::lock_guard guard(m_mutex);
            m_task = std::move(task);
        }
        m_condition.notify_one();
        return future;
    }

    void run(std::function<void()> step) { post(std::move(step)).get(); }

private:
    void loop()
    {
        while (!m_done) {
            std::unique_lock lock(m_mutex);
            m_condition.wait(lock, [this] { return m_task.valid(); });
            auto task = std::exchange(m_task, {});
            lock.unlock();
            task();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::packaged_task<void()> m_task;
    bool m_done = false; // of the thread
    std::thread m_thread{[this] { loop(); }};
};

bool isReady(std::future<void>& future, std::chrono::milliseconds limit = 5000ms)
{
    return future.wait_for(limit) == std::future_status::ready;
}

bool blocks(std::future<void>& future) { return !isReady(future, 30ms); }

TEST(Mutex, TryOnAMutexHeldElsewhereIsFalse)
{
    XeMutex mutex("test");
    mutex.Lock();
    EXPECT_FALSE(onOtherThread<bool>([&] { return mutex.TryLock(); }));
    mutex.Unlock();
    EXPECT_TRUE(onOtherThread<bool>([&] {
        const std::unique_lock guard(mutex, std::try_to_lock);
        return guard.owns_lock();
    }));
}

TEST(Mutex, LockWaitsForItsHolder)
{
    XeMutex mutex("test");
    Actor other;
    mutex.lock();
    auto locked = other.post([&] { mutex.lock(); });
    EXPECT_TRUE(blocks(locked));
    mutex.unlock();
    EXPECT_TRUE(isReady(locked));
    other.run([&] { mutex.unlock(); });
}

TEST(CriticalSection, KnowsItsOwnerAndDepth)
{
    XeCriticalSection section("test");
    EXPECT_EQ(section.LockingId(), 0u);
    EXPECT_EQ(section.RecursionCount(), 0u);
    for (unsigned depth = 1; depth <= 3; ++depth) {
        section.Enter();
        EXPECT_EQ(section.RecursionCount(), depth);
        EXPECT_EQ(section.LockingId(), XeSystem::GetCurrentThreadId());
    }
    section.Leave();
    section.Leave();
    EXPECT_EQ(section.RecursionCount(), 1u);
    section.Leave();
    EXPECT_EQ(section.RecursionCount(), 0u);
}

// The id names the last owner until another thread enters; the depth says whether it still owns.
TEST(CriticalSection, LockingIdIsNeverCleared)
{
    XeCriticalSection section("test");
    {
        const std::lock_guard guard(section);
    }
    EXPECT_EQ(section.LockingId(), XeSystem::GetCurrentThreadId());
    const auto other = onOtherThread<std::uint64_t>([&] {
        const std::lock_guard guard(section);
        return XeSystem::GetCurrentThreadId();
    });
    EXPECT_EQ(section.LockingId(), other);
    EXPECT_EQ(section.RecursionCount(), 0u);
}

TEST(CriticalSection, TryEntersOnlyWhenFreeOrOwned)
{
    XeCriticalSection section("test");
    EXPECT_TRUE(section.TryEnter());
    EXPECT_TRUE(section.try_lock());
    EXPECT_EQ(section.RecursionCount(), 2u);
    EXPECT_FALSE(onOtherThread<bool>([&] { return section.TryEnter(); }));
    EXPECT_EQ(section.RecursionCount(), 2u);
    section.Leave();
    section.Leave();
}

// --- Shared mutex: every operation against a plain model of the three flags and the count, on one
// thread, so that nothing may block.

struct Model {
    unsigned shared = 0;
    bool exclusive = false;
    bool upgrade = false;
    bool promoted = false; // exclusive by promotion: the caller still owns the upgrade
    bool blocked = false;  // a writer that may have had to wait set it, its release clears it

    bool ownsUpgrade() const { return upgrade || promoted; }
};

void expectState(const XeSharedMutex& mutex, const Model& model)
{
    EXPECT_EQ(mutex.sharedCount(), model.shared);
    EXPECT_EQ(mutex.exclusive(), model.exclusive);
    EXPECT_EQ(mutex.upgrade(), model.upgrade);
    EXPECT_EQ(mutex.exclusive_waiting_blocked(), model.blocked);
}

TEST(SharedMutexModel, RandomSequencesOnOneThreadMatchTheModel)
{
    std::mt19937 random(20);
    for (int run = 0; run < 200; ++run) {
        XeSharedMutex mutex("test");
        Model m;
        for (int step = 0; step < 60; ++step) {
            switch (random() % 9) {
            case 0: {
                const bool may = !m.exclusive;
                EXPECT_EQ(mutex.TrySharedLock(), may);
                m.shared += may;
                break;
            }
            case 1:
                if (m.shared > (m.upgrade ? 1u : 0u)) {
                    mutex.SharedUnlock();
                    --m.shared;
                }
                break;
            case 2: {
                const bool may = !m.exclusive && !m.upgrade;
                EXPECT_EQ(mutex.TryUpgradeLock(), may);
                m.shared += may;
                m.upgrade |= may;
                break;
            }
            case 3:
                if (m.upgrade) {
                    mutex.UpgradeUnlock();
                    m.upgrade = false;
                    --m.shared;
                }
                break;
            case 4: {
                const bool may = !m.ownsUpgrade() && m.shared == 0 && !m.exclusive;
                EXPECT_EQ(mutex.TryUniqueLock(), may);
                m.exclusive |= may;
                break;
            }
            case 5:
                if (m.upgrade && m.shared == 1) { // promotes at once
                    mutex.UniqueLock();
                    m = {0, true, false, true, false};
                }
                break;
            case 6:
                if (m.exclusive) {
                    mutex.UniqueUnlock();
                    m = m.promoted ? Model{1, false, true, false, false} : Model{};
                }
                break;
            case 7:
                if (!m.exclusive) {
                    mutex.SharedLock();
                    ++m.shared;
                }
                break;
            default:
                if (m.shared == 0 && !m.exclusive) {
                    mutex.UniqueLock();
                    m.exclusive = m.blocked = true;
                }
                break;
            }
            expectState(mutex, m);
        }
    }
}

TEST(SharedMutex, PromotionWaitsForTheReadersAndDropsBack)
{
    XeSharedMutex mutex("test");
    Actor reader;
    Actor holder;
    reader.run([&] { mutex.SharedLock(); });
    holder.run([&] { mutex.UpgradeLock(); });
    EXPECT_EQ(mutex.sharedCount(), 2u);
    EXPECT_TRUE(mutex.upgrade());

    auto promoted = holder.post([&] { mutex.UniqueLock(); });
    EXPECT_TRUE(blocks(promoted));
    reader.run([&] { mutex.SharedUnlock(); });
    ASSERT_TRUE(isReady(promoted));
    EXPECT_TRUE(mutex.exclusive());
    EXPECT_FALSE(mutex.upgrade());
    EXPECT_EQ(mutex.sharedCount(), 0u);

    holder.run([&] { mutex.UniqueUnlock(); });
    EXPECT_EQ(mutex.sharedCount(), 1u);
    EXPECT_TRUE(mutex.upgrade());
    EXPECT_FALSE(mutex.exclusive());
    holder.run([&] { mutex.UpgradeUnlock(); });
    EXPECT_EQ(mutex.sharedCount(), 0u);
    EXPECT_FALSE(mutex.upgrade());
}

TEST(SharedMutex, TryNeverPromotes)
{
    XeSharedMutex mutex("test");
    mutex.UpgradeLock();
    EXPECT_FALSE(mutex.TryUniqueLock());
    EXPECT_TRUE(mutex.upgrade());
    mutex.UpgradeUnlock();
    EXPECT_TRUE(mutex.TryUniqueLock());
    mutex.UniqueUnlock();
}

TEST(SharedMutex, WaitingWriterKeepsNewReadersOut)
{
    XeSharedMutex mutex("test");
    Actor writer;
    mutex.SharedLock();
    auto written = writer.post([&] { mutex.UniqueLock(); });
    EXPECT_TRUE(blocks(written));
    EXPECT_TRUE(mutex.exclusive_waiting_blocked());
    EXPECT_FALSE(mutex.TrySharedLock());
    EXPECT_FALSE(mutex.TryUpgradeLock());
    mutex.SharedUnlock();
    ASSERT_TRUE(isReady(written));
    EXPECT_TRUE(mutex.exclusive());
    writer.run([&] { mutex.UniqueUnlock(); });
    EXPECT_FALSE(mutex.exclusive_waiting_blocked());
    EXPECT_TRUE(mutex.TrySharedLock());
    mutex.SharedUnlock();
}

TEST(SharedMutex, WriterWaitsForAnotherThreadsUpgradeHolder)
{
    XeSharedMutex mutex("test");
    Actor writer;
    mutex.UpgradeLock();
    auto written = writer.post([&] { mutex.UniqueLock(); });
    EXPECT_TRUE(blocks(written));
    mutex.UpgradeUnlock();
    ASSERT_TRUE(isReady(written));
    writer.run([&] { mutex.UniqueUnlock(); });
}

// Readers stay beside the upgrade holder; a second upgrade holder waits.
TEST(SharedMutex, OneUpgradeHolderBesideReaders)
{
    XeSharedMutex mutex("test");
    Actor second;
    mutex.UpgradeLock();
    EXPECT_TRUE(onOtherThread<bool>([&] {
        const bool entered = mutex.TrySharedLock();
        mutex.SharedUnlock();
        return entered;
    }));
    auto upgraded = second.post([&] { mutex.lock_upgrade(); });
    EXPECT_TRUE(blocks(upgraded));
    mutex.UpgradeUnlock();
    ASSERT_TRUE(isReady(upgraded));
    second.run([&] { mutex.unlock_upgrade(); });
}

TEST(SharedMutex, ServesStandardGuards)
{
    XeSharedMutex mutex("test");
    {
        const std::shared_lock reader(mutex);
        EXPECT_EQ(mutex.sharedCount(), 1u);
    }
    {
        const std::unique_lock writer(mutex, std::try_to_lock);
        EXPECT_TRUE(mutex.exclusive());
    }
    EXPECT_FALSE(mutex.exclusive());
}

// Two numbers that only a writer changes, always together: whoever may read sees them equal.
TEST(SharedMutexStress, ReadersUpgradersAndWritersKeepTheInvariant)
{
    XeSharedMutex mutex("test");
    long a = 0;
    long b = 0;
    std::atomic<int> writers = 0;
    std::atomic<long> broken = 0;
    std::atomic<long> changes = 0;
    const auto end = std::chrono::steady_clock::now() + 2s;

    const auto write = [&] {
        broken += writers.fetch_add(1) != 0;
        ++a;
        std::this_thread::yield();
        ++b;
        broken += writers.fetch_sub(1) != 1;
        ++changes;
    };
    const auto read = [&] { broken += a != b || writers != 0; };

    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 6; ++seed) {
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            while (std::chrono::steady_clock::now() < end) {
                switch (random() % 6) {
                case 0:
                    mutex.UniqueLock();
                    write();
                    mutex.UniqueUnlock();
                    break;
                case 1:
                    if (mutex.TryUniqueLock()) {
                        write();
                        mutex.UniqueUnlock();
                    }
                    break;
                case 2:
                    mutex.UpgradeLock();
                    read();
                    for (unsigned times = random() % 3; times != 0; --times) {
                        mutex.UniqueLock();
                        write();
                        mutex.UniqueUnlock();
                        read();
                    }
                    mutex.UpgradeUnlock();
                    break;
                case 3:
                    if (mutex.TryUpgradeLock()) {
                        read();
                        mutex.UpgradeUnlock();
                    }
                    break;
                case 4:
                    if (mutex.TrySharedLock()) {
                        read();
                        mutex.SharedUnlock();
                    }
                    break;
                default:
                    mutex.SharedLock();
                    read();
                    mutex.SharedUnlock();
                    break;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(broken, 0);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, changes);
    EXPECT_GT(changes, 100);
    EXPECT_EQ(mutex.sharedCount(), 0u);
    EXPECT_FALSE(mutex.exclusive());
    EXPECT_FALSE(mutex.upgrade());
}

TEST(LockStress, MutexAndCriticalSectionExclude)
{
    XeMutex mutex("test");
    XeCriticalSection section("test");
    long byMutex = 0;
    long bySection = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 20000; ++n) {
                {
                    const std::lock_guard guard(mutex);
                    ++byMutex;
                }
                const std::lock_guard outer(section);
                const std::lock_guard inner(section);
                ++bySection;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(byMutex, 80000);
    EXPECT_EQ(bySection, 80000);
}

TEST(LockResources, TenThousandCyclesLeaveNothingBehind)
{
    const std::size_t descriptors = openDescriptors();
    const unsigned threads = XeSystem::GetCurrentThreadCount();
    for (int i = 0; i < 10000; ++i) {
        XeMutex mutex("cycle");
        XeCriticalSection section("cycle");
        XeSharedMutex shared("cycle");
        const std::scoped_lock all(mutex, section, shared);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(XeSystem::GetCurrentThreadCount(), threads);
}

} // namespace
