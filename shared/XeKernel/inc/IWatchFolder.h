#pragma once

#include "XeResult.h"
#include "XeString.h"

#include <deque>
#include <functional>
#include <memory>
#include <utility>

/// A watch of one folder: tells observers that entries were created, deleted, renamed or linked in
/// it, that its own attributes changed, or that it was renamed, deleted or unmounted.
///
/// Not told are changes inside the entries: to the contents of files, and anything in sub-folders.
/// Changes close together make one notification; after the last change comes at least one. What
/// other computers do on a network volume may go unseen.
///
/// A watch is created, initialised, started and stopped, once each. [any], unless stated otherwise.
class IWatchFolder {
public:
    /// What happened to an entry.
    enum ChangedState {
        kFolderChanged = 0, ///< the folder as a whole; the entry's path is empty. Look again.
    };

    using Changes = std::deque<std::pair<_XeString<wchar_t>, ChangedState>>;

    /// Told of the watch and of what changed; or of a null pointer, once, when the watch has ended.
    /// [watch-worker] While it runs no further changes are looked at: they make one notification
    /// afterwards. Must not throw.
    using Observer = std::function<void(std::shared_ptr<IWatchFolder>, std::shared_ptr<Changes>)>;

    virtual ~IWatchFolder() = default;

    /// Prepares to watch a folder. Changes count from here on.
    /// @param cycle  Milliseconds between the worker's looks at things that the system does not
    ///               tell; 0 and less keep the present value.
    /// @return       0; kXeAlreadyStarted when initialised before; kXeNotWatchable when the path is
    ///               no folder, may not be read, or the system has no room for another watch.
    virtual XeResult initWatch(const _XeString<wchar_t>& path, int cycle) = 0;

    /// Starts the worker, which keeps the watch alive until it has ended.
    /// @return  0; kXeNotInitialised before initWatch and after the end; kXeAlreadyStarted;
    ///          kXeThreadNotStarted when the system refuses a thread.
    /// @throws std::bad_weak_ptr  when the watch is not owned by a shared pointer.
    virtual XeResult startWatch() = 0;

    /// Ends the watch. The worker tells the observers of it.
    /// @param wait  Returns after the worker has ended, so no observer is called any more. On the
    ///              worker itself, that is from an observer of this watch, nothing waits.
    /// @return      0.
    virtual XeResult stopWatch(bool wait) = 0;

    /// Adds an observer.
    /// @param handle  Receives the registration; dropping it does not end that.
    /// @return        0; kXeGeneralFailure for an empty function, which leaves `handle` alone.
    virtual XeResult addObserver(Observer observer, std::shared_ptr<void>& handle) = 0;

    /// Removes an observer. It may be running still, unless this is called on the worker.
    /// @param handle  From addObserver; emptied.
    /// @return        0; kXeGeneralFailure when the handle names no observer of this watch.
    virtual XeResult removeObserver(std::shared_ptr<void>& handle) = 0;

    /// Tells the path as it was given to initWatch, empty before, and the cycle.
    /// @return  0.
    virtual XeResult getWatch(_XeString<wchar_t>& path, int& cycle) = 0;

    /// Tells the mount point of the volume that the folder lies on. Looked up once.
    /// @return  0; kXeNotInitialised without a watched path; else the look-up's failure.
    virtual XeResult getMountPoint(_XeString<wchar_t>& mountPoint) = 0;

    /// True when nobody is served: not started, stopped, or without observers.
    virtual bool notWatching() = 0;

    /// Sets the cycle in milliseconds, from the worker's next wait on. 0 is kept and waits 1 ms.
    /// @return  0; kXeNotWatchable for a negative cycle, which changes nothing.
    virtual XeResult setCycle(int cycle) = 0;
};
