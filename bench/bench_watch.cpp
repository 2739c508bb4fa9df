// Folder watching: from a change to its notification, beside a thread that reads inotify itself and
// beside fswatch; notifications of a burst; what watches cost while nothing happens.

#include "WatchFolder.h"
#include "XeFileSystemManager.h"

#include <benchmark/benchmark.h>

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kWatches = 1000;

class Folder {
public:
    Folder()
    {
        char name[] = "/tmp/tarvel-bench-XXXXXX";
        m_path = mkdtemp(name);
    }
    ~Folder() { fs::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path& path() const { return m_path; }
    _XeString<wchar_t> wide() const { return wideOf(m_path); }
    static _XeString<wchar_t> wideOf(const fs::path& path)
    {
        const std::wstring text = path.wstring();
        return _XeString<wchar_t>(text);
    }
    void change() { std::ofstream(m_path / std::to_string(++m_changes)); }

private:
    fs::path m_path;
    int m_changes = 0;
};

/// Makes one change after the other, each when the one before was told, and reports the times.
template <typename WaitForNews>
void measureLatency(benchmark::State& state, Folder& folder, WaitForNews waitForNews)
{
    std::vector<double> samples;
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5)); // each change by itself
        const Clock::time_point start = Clock::now();
        folder.change();
        if (!waitForNews()) {
            state.SkipWithError("a change was not told within five seconds");
            return;
        }
        const std::chrono::duration<double> each = Clock::now() - start;
        state.SetIterationTime(each.count());
        samples.push_back(each.count() * 1e6);
    }
    std::sort(samples.begin(), samples.end());
    state.counters["median_us"] = samples[samples.size() / 2];
    state.counters["p95_us"] = samples[samples.size() * 95 / 100];
}

void latency_inotify(benchmark::State& state)
{
    Folder folder;
    const int inotify = inotify_init1(IN_CLOEXEC);
    inotify_add_watch(inotify, folder.path().c_str(), IN_CREATE);
    std::counting_semaphore<> news{0};
    std::atomic<bool> stop = false;
    std::thread reader([&] {
        char buffer[4096];
        while (read(inotify, buffer, sizeof buffer) > 0 && !stop) {
            news.release();
        }
    });
    measureLatency(state, folder, [&] { return news.try_acquire_for(std::chrono::seconds(5)); });
    stop = true;
    folder.change();
    reader.join();
    close(inotify);
}

/// fswatch with its shortest latency, writing a line for each change into a pipe.
void latency_fswatch(benchmark::State& state)
{
    Folder folder;
    int ends[2];
    if (pipe(ends) != 0) {
        state.SkipWithError("no pipe");
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string path = folder.path();
    const char* const arguments[] = {"fswatch", "-l",         "0.01", "--event",
                                     "Created", path.c_str(), nullptr};
    pid_t child = 0;
    const int error = posix_spawnp(&child, "fswatch", &actions, nullptr,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const auto hearsALine = [&] {
        char buffer[4096];
        pollfd polled{ends[0], POLLIN, 0};
        return poll(&polled, 1, 5000) == 1 && read(ends[0], buffer, sizeof buffer) > 0;
    };
    if (error != 0) {
        state.SkipWithError("fswatch is not installed");
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(500)); // it does not say "ready"
        measureLatency(state, folder, hearsALine);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    close(ends[0]);
}

void latency_WatchFolder(benchmark::State& state)
{
    Folder folder;
    std::counting_semaphore<> news{0};
    const auto watch = std::make_shared<WatchFolder>();
    std::shared_ptr<void> handle;
    watch->initWatch(folder.wide(), 2000);
    watch->addObserver([&](auto, auto) { news.release(); }, handle);
    watch->startWatch();
    measureLatency(state, folder, [&] { return news.try_acquire_for(std::chrono::seconds(5)); });
    watch->stopWatch(true);
}

void burst_of_1000(benchmark::State& state)
{
    double notifications = 0;
    for (auto _ : state) {
        Folder folder;
        std::atomic<int> told = 0;
        const auto watch = std::make_shared<WatchFolder>();
        std::shared_ptr<void> handle;
        watch->initWatch(folder.wide(), 2000);
        watch->addObserver([&](auto, auto changes) { told += changes != nullptr; }, handle);
        watch->startWatch();
        for (int i = 0; i < 1000; ++i) {
            folder.change();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // for the last of them
        watch->stopWatch(true);
        notifications += told;
    }
    state.counters["notifications"] = notifications / static_cast<double>(state.iterations());
}

/// A number of /proc/self/status, in the unit that it has there.
long statusValue(const fs::path& status, const std::string& name)
{
    std::ifstream stream(status);
    for (std::string line; std::getline(stream, line);) {
        if (line.rfind(name + ':', 0) == 0) {
            return std::stol(line.substr(name.size() + 1));
        }
    }
    return 0;
}

/// Watches of as many folders, through a manager.
struct ManyWatches {
    explicit ManyWatches(int count) : handles(static_cast<std::size_t>(count))
    {
        for (int i = 0; i < count; ++i) {
            const fs::path each = folder.path() / std::to_string(i);
            fs::create_directory(each);
            if (manager->addWatchFolder(
                    Folder::wideOf(each), [](auto, auto) {}, handles[static_cast<std::size_t>(i)]) <
                0) {
                ++failures;
            }
        }
    }

    Folder folder;
    std::shared_ptr<XeFileSystemManager> manager = std::make_shared<XeFileSystemManager>();
    std::vector<std::shared_ptr<void>> handles;
    int failures = 0;
};

void watches_1000(benchmark::State& state)
{
    for (auto _ : state) {
        const long before = statusValue("/proc/self/status", "VmRSS");
        const long virtualBefore = statusValue("/proc/self/status", "VmSize");
        const Clock::time_point start = Clock::now();
        ManyWatches watches(kWatches);
        const std::chrono::duration<double, std::milli> added = Clock::now() - start;
        state.counters["add_ms"] = added.count();
        state.counters["KiB_each"] =
            static_cast<double>(statusValue("/proc/self/status", "VmRSS") - before) / kWatches;
        state.counters["virtual_KiB_each"] =
            static_cast<double>(statusValue("/proc/self/status", "VmSize") - virtualBefore) /
            kWatches;
        state.counters["failures"] = watches.failures;
        const Clock::time_point stop = Clock::now();
        watches.manager.reset();
        const std::chrono::duration<double, std::milli> stopped = Clock::now() - stop;
        state.counters["stop_ms"] = stopped.count();
    }
}

/// Times that threads of this name went to sleep so far.
long sleepsOf(const std::string& wanted)
{
    long sleeps = 0;
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == wanted) {
            sleeps += statusValue(task.path() / "status", "voluntary_ctxt_switches");
        }
    }
    return sleeps;
}

void idle_watches(benchmark::State& state)
{
    constexpr int kIdle = 10;
    constexpr int kSeconds = 12;
    for (auto _ : state) {
        const ManyWatches watches(kIdle);
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const long workers = sleepsOf("XeWatchFolder");
        const long hub = sleepsOf("XeWatchHub");
        std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
        state.counters["wakeups_per_minute_each"] =
            static_cast<double>(sleepsOf("XeWatchFolder") - workers) * 60 / kSeconds / kIdle;
        state.counters["reader_wakeups_per_minute"] =
            static_cast<double>(sleepsOf("XeWatchHub") - hub) * 60 / kSeconds;
    }
}

BENCHMARK(latency_inotify)->UseManualTime()->Iterations(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(latency_fswatch)->UseManualTime()->Iterations(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(latency_WatchFolder)->UseManualTime()->Iterations(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(burst_of_1000)->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(watches_1000)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(idle_watches)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
