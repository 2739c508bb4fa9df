#pragma once

#include "IWatchFolder.h"
#include "XeObservable.h"
#include "XeResult.h"
#include "XeString.h"
#include "XeThread.h"

#include <forward_list>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

/// Kind of a mount-point context that is a remote volume. Its context is made of a
/// `std::shared_ptr<xenon::network::IFileSystem>`, converted to `std::shared_ptr<void>` as it
/// stands: a pointer to a derived class has to be converted to that one first, since whoever looks
/// a context up casts it back to exactly IFileSystem.
inline constexpr int kRemoteVolumeContext = 6;

/// What the process watches and what its mount points stand for.
///
/// Programs use the functions in XeFileSystem, which act on the one manager of the process. Paths
/// count as equal when they are the same text but for separators at the end. [any]
///
/// Removing and stopping wait until the workers concerned have ended, so that no observer is called
/// afterwards; not inside an observer, where nothing waits. The caller must not hold a lock that an
/// observer takes.
class XeFileSystemManager : public std::enable_shared_from_this<XeFileSystemManager> {
public:
    using Observer = IWatchFolder::Observer;
    using TerminateObservers = XeObservable<std::shared_ptr<XeFileSystemManager>, bool>;

    XeFileSystemManager() = default;

    /// Stops all watches, waits for their workers and forgets the contexts.
    virtual ~XeFileSystemManager();
    XeFileSystemManager(const XeFileSystemManager&) = delete;
    XeFileSystemManager& operator=(const XeFileSystemManager&) = delete;

    /// Adds an observer to the watch of a folder, which is made when there is none, or when the one
    /// that is there has stopped or has lost its folder.
    /// @param callback  See IWatchFolder::Observer for the rules of what it does.
    /// @param handle    Receives the registration. Dropping it does not end that.
    /// @return          0; kXeGeneralFailure after the terminate flag was set and for an empty
    ///                  callback; else the failure of IWatchFolder's initWatch or startWatch.
    virtual XeResult addWatchFolder(const _XeString<wchar_t>& path, Observer callback,
                                    std::shared_ptr<void>& handle);

    /// Ends a registration; with the last one of a folder its watch ends too.
    /// @param handle  From addWatchFolder; emptied.
    /// @return        0, also when the watch has stopped by itself; kXeGeneralFailure for null and
    ///                for a registration that was removed through a copy of the handle.
    virtual XeResult removeWatchFolder(std::shared_ptr<void>& handle);

    /// True while the registration stands and its watch runs.
    virtual bool isWatchingFolder(std::shared_ptr<void>& handle);

    /// Stops the watch of a path, whose observers are told of the end.
    /// @return  0, also when there is none.
    virtual XeResult stopWatchingFolder(const _XeString<wchar_t>& path);

    /// Stops every watch of a folder whose volume is mounted there, or was when it was last asked.
    /// @return  0, also when there is none.
    virtual XeResult stopWatchingMountPoint(const _XeString<wchar_t>& mountPoint);

    /// Drops watches that nobody listens to, that were stopped, or that have told of a change and
    /// whose path leads elsewhere now. Their workers end soon after. Does nothing after the
    /// terminate flag was set.
    virtual void updateWatch();

    /// Enters a context for a mount point, in place of the one that is there.
    /// @param context      Kept until removed.
    /// @param kind         kRemoteVolumeContext, or a number of the caller's own.
    /// @param stopWatches  Stops the watches on the mount point: they watch a folder that paths do
    ///                     not lead to any more.
    /// @return             0.
    virtual XeResult addMountPointContext(const _XeString<wchar_t>& mountPoint,
                                          const std::shared_ptr<void>& context, int kind,
                                          bool stopWatches);

    /// Finds the context of the mount point that `path` is or lies below, whole names compared; of
    /// nested ones the innermost.
    /// @return  0; kXeGeneralFailure when there is none, which leaves both results alone.
    virtual XeResult getMountPointContext(const _XeString<wchar_t>& path,
                                          std::shared_ptr<void>& context, int& kind);

    /// @return  0; kXeGeneralFailure when there is none.
    virtual XeResult removeMountPointContext(const _XeString<wchar_t>& mountPoint);

    /// No new watches from here on. Running ones go on.
    virtual void setTerminate();
    virtual bool getTerminate();

    /// Told (manager, true) once, when the terminate flag is set, on the thread that sets it.
    TerminateObservers& terminateObservers() { return m_terminateObservers; }

private:
    using WatchPointer = std::shared_ptr<IWatchFolder>;
    using Watches = std::vector<WatchPointer>;
    struct Registration;

    XeResult _addToRunning(const WatchPointer& watch, Observer callback,
                           std::shared_ptr<void>& handle);
    XeResult _addNew(const _XeString<wchar_t>& path, Observer callback,
                     std::shared_ptr<void>& handle);
    template <typename Predicate>
    Watches _takeOut(Predicate predicate);
    static void _stop(const Watches& watches, bool wait);

    XeCriticalSection m_section{"XeFileSystemManager"};             // guards all but the observers
    std::unordered_map<_XeString<wchar_t>, WatchPointer> m_watches; // take new observers
    std::unordered_map<_XeString<wchar_t>, std::pair<std::shared_ptr<void>, int>> m_contexts;
    std::forward_list<WatchPointer> m_created; // newest first, until their workers have ended
    TerminateObservers m_terminateObservers;
    bool m_terminate = false;
};

namespace XeFileSystem {

/// The one manager of the process, made on first call and destroyed at process exit. Null once the
/// terminate flag was set, so that no service starts while the process ends.
std::shared_ptr<XeFileSystemManager> getManagerInstance();

/// True when there is no manager.
bool getTerminateFlag();
void setTerminateFlag();

/// The manager's operations of the same names. Without a manager they give kXeGeneralFailure or
/// false.
XeResult addWatchFolder(_XeString<wchar_t> const& path, IWatchFolder::Observer callback,
                        std::shared_ptr<void>& handle);
XeResult removeWatchFolder(std::shared_ptr<void>& handle);
bool isWatchingFolder(std::shared_ptr<void>& handle);
XeResult stopWatchingFolder(_XeString<wchar_t> const& path);
XeResult stopWatchingMountPoint(_XeString<wchar_t> const& mountPoint);
XeResult addMountPointContext(_XeString<wchar_t> const& mountPoint,
                              std::shared_ptr<void> const& context, int kind, bool stopWatches);
XeResult getMountPointContext(_XeString<wchar_t> const& path, std::shared_ptr<void>& context,
                              int& kind);
XeResult removeMountPointContext(_XeString<wchar_t> const& mountPoint);

} // namespace XeFileSystem
