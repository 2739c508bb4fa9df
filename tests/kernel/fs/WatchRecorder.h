#pragma once

#include "IWatchFolder.h"
#include "TemporaryFolder.h"
#include "WatchFolder.h"
#include "WidePath.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

/// An observer that counts what it is told.
class WatchRecorder {
public:
    /// The observer. The recorder must outlive its registration.
    IWatchFolder::Observer observer()
    {
        return [this](std::shared_ptr<IWatchFolder> watch,
                      std::shared_ptr<IWatchFolder::Changes> changes) {
            const std::lock_guard guard(m_mutex);
            m_watch = watch.get();
            if (changes == nullptr) {
                ++m_ends;
            } else {
                ++m_changes;
                m_malformed += changes->size() != 1 || !changes->front().first.empty() ||
                               changes->front().second != 0;
            }
            m_told.notify_all();
        };
    }

    /// False when that many notifications have not come within ten seconds.
    bool waitForChanges(int count)
    {
        return waitFor([&] { return m_changes >= count; });
    }
    bool waitForEnd()
    {
        return waitFor([&] { return m_ends > 0; });
    }

    int changes() const { return get(m_changes); }
    int ends() const { return get(m_ends); }
    int malformed() const { return get(m_malformed); }
    const IWatchFolder* watch() const { return get(m_watch); } ///< that told last

private:
    template <typename Value>
    Value get(const Value& value) const
    {
        const std::lock_guard guard(m_mutex);
        return value;
    }

    template <typename Condition>
    bool waitFor(Condition condition)
    {
        std::unique_lock lock(m_mutex);
        return m_told.wait_for(lock, std::chrono::seconds(10), condition);
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_told;
    int m_changes = 0;
    int m_ends = 0;
    int m_malformed = 0;
    const IWatchFolder* m_watch = nullptr;
};

/// Polls for what nobody tells; false when it has not come within ten seconds.
template <typename Condition>
bool waitUntil(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline void createFile(const std::filesystem::path& path) { std::ofstream(path) << "x"; }

/// Cycle of watches whose time-outs do not matter to the test.
constexpr int kLongCycleMs = 60000;

/// A watch that runs, with its recorder.
struct RunningWatch {
    explicit RunningWatch(const std::filesystem::path& folder, int cycleMs = kLongCycleMs)
        : watch(std::make_shared<WatchFolder>())
    {
        initResult = watch->initWatch(wide(folder), cycleMs);
        watch->addObserver(recorder.observer(), handle);
        startResult = watch->startWatch();
    }
    ~RunningWatch() { watch->stopWatch(true); }
    RunningWatch(const RunningWatch&) = delete;
    RunningWatch& operator=(const RunningWatch&) = delete;

    WatchRecorder recorder;
    std::shared_ptr<WatchFolder> watch;
    std::shared_ptr<void> handle;
    XeResult initResult = -1;
    XeResult startResult = -1;
};

/// Passes when every change made before has been told: changes are looked at in their order, and
/// this makes two in a folder of its own, one after the other was told.
class Fence {
public:
    explicit Fence(const std::filesystem::path& folder)
        : m_folder((std::filesystem::create_directory(folder), folder)), m_running(folder)
    {
    }

    bool pass()
    {
        for (int i = 0; i < 2; ++i) {
            createFile(m_folder / std::to_string(++m_count));
            if (!m_running.recorder.waitForChanges(m_count)) {
                return false;
            }
        }
        return true;
    }

private:
    std::filesystem::path m_folder;
    RunningWatch m_running;
    int m_count = 0;
};

/// A test with a folder to watch, and room for others beside it.
class WatchTest : public testing::Test {
protected:
    std::filesystem::path makeFolder(const std::string& name)
    {
        std::filesystem::create_directories(m_temporary / name);
        return m_temporary / name;
    }

    const TemporaryFolder m_temporary;
    const std::filesystem::path m_folder = makeFolder("watched");
};
