#pragma once

#include "IWatchFolder.h"
#include "XeObservable.h"
#include "XeThread.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

/// The watch of a folder of this computer, with a worker thread of its own.
///
/// Make it with std::make_shared. The last reference may be dropped anywhere, on the worker too; a
/// watch that runs holds one itself. See IWatchFolder for what each operation does.
class WatchFolder
    : public IWatchFolder,
      public XeObservable<std::shared_ptr<IWatchFolder>, std::shared_ptr<IWatchFolder::Changes>>,
      public std::enable_shared_from_this<WatchFolder> {
public:
    using IWatchFolder::Observer;

    /// The cycle of a watch that is given none, in milliseconds.
    static constexpr int kDefaultCycleMs = 2000;

    WatchFolder() = default;
    ~WatchFolder() override;

    XeResult initWatch(const _XeString<wchar_t>& path, int cycle) override;
    XeResult startWatch() override;
    XeResult stopWatch(bool wait) override;
    XeResult addObserver(Observer observer, std::shared_ptr<void>& handle) override;
    XeResult removeObserver(std::shared_ptr<void>& handle) override;
    XeResult getWatch(_XeString<wchar_t>& path, int& cycle) override;
    XeResult getMountPoint(_XeString<wchar_t>& mountPoint) override;
    bool notWatching() override;
    XeResult setCycle(int cycle) override;

    /// True while the path still leads to the folder that is watched. Blocks on the file system.
    bool followsPath() const;

    /// True when a change was told since the last call. No folder is lost without one.
    bool toldChange() { return m_toldChange.exchange(false); }

    /// True after the observers were told of the end.
    bool hasEnded() const { return m_ended; }

    /// True on the worker of any watch, that is inside an observer. What waits for a worker does
    /// not wait there, lest two workers wait for each other.
    static bool onWorker();

private:
    void worker();
    void signalWorker();
    void _join();
    bool _stopRequested();
    void _requestStop();
    void _closeQueue();

    _XeString<wchar_t> m_path;
    _XeString<wchar_t> m_mountPoint;
    std::atomic<int> m_cycle = kDefaultCycleMs;
    std::atomic<int> m_queue = -1;
    std::atomic<int> m_folder = -1;
    std::thread m_thread; // joined by the holder of m_joining
    bool m_stop = false;
    mutable XeCriticalSection m_section{"WatchFolder"}; // guards the texts, m_stop and m_started,
                                                        // and the queue against closing
    bool m_started = false;
    std::atomic<bool> m_ended = false;
    std::atomic<bool> m_toldChange = false;
    std::mutex m_joining;
};
