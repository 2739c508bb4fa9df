#include "XeFileSystemManager.h"

#include "WatchFolder.h"
#include "XeSafeCRT.h"

#include <atomic>
#include <mutex>
#include <tuple>
#include <utility>

namespace {

using Guard = std::lock_guard<XeCriticalSection>;
using Path = _XeString<wchar_t>;

/// A path as the tables hold it.
Path _withoutEndingSeparators(Path path)
{
    while (path.size() > 1 && path.back() == L'/') {
        path.pop_back();
    }
    return path;
}

/// The folder that holds a path; empty for "/" and for a single name.
Path _parentOf(const Path& path)
{
    const std::size_t slash = path.find_last_of(L'/');
    if (slash == Path::npos || path.size() == 1) {
        return {};
    }
    return _withoutEndingSeparators(path.substr(0, slash + 1));
}

/// All watches here are made here.
WatchFolder& _asFolder(const std::shared_ptr<IWatchFolder>& watch)
{
    return static_cast<WatchFolder&>(*watch);
}

/// Exact, at the price of a look at the file system.
bool _isOver(const std::shared_ptr<IWatchFolder>& watch)
{
    return watch->notWatching() || !_asFolder(watch).followsPath();
}

/// Looks at the file system only where something happened.
bool _isKnownToBeOver(const std::shared_ptr<IWatchFolder>& watch)
{
    return watch->notWatching() ||
           (_asFolder(watch).toldChange() && !_asFolder(watch).followsPath());
}

} // namespace

/// What a handle stands for. Copies of a handle share it.
struct XeFileSystemManager::Registration {
    std::weak_ptr<IWatchFolder> watch;
    std::shared_ptr<void> observer; // null when removed
};

XeFileSystemManager::~XeFileSystemManager()
{
    _stop(Watches(m_created.begin(), m_created.end()), true);
}

XeResult XeFileSystemManager::addWatchFolder(const Path& path, Observer callback,
                                             std::shared_ptr<void>& handle)
{
    if (getTerminate()) {
        return kXeGeneralFailure;
    }
    const Path key = _withoutEndingSeparators(path);
    XeResult result = kXeOk;
    {
        const Guard guard(m_section);
        const auto found = m_watches.find(key);
        result = found != m_watches.end() && !_isOver(found->second)
                     ? _addToRunning(found->second, std::move(callback), handle)
                     : _addNew(key, std::move(callback), handle);
    }
    updateWatch();
    return result;
}

XeResult XeFileSystemManager::_addToRunning(const WatchPointer& watch, Observer callback,
                                            std::shared_ptr<void>& handle)
{
    auto registration = std::make_shared<Registration>();
    registration->watch = watch;
    const XeResult result = watch->addObserver(std::move(callback), registration->observer);
    if (result >= 0) {
        handle = std::move(registration);
    }
    return result;
}

XeResult XeFileSystemManager::_addNew(const Path& path, Observer callback,
                                      std::shared_ptr<void>& handle)
{
    const auto watch = std::make_shared<WatchFolder>();
    std::shared_ptr<void> added;
    XeResult result = watch->initWatch(path, WatchFolder::kDefaultCycleMs);
    if (result >= 0) {
        result = _addToRunning(watch, std::move(callback), added);
    }
    if (result >= 0) {
        result = watch->startWatch();
    }
    if (result < 0) {
        return result;
    }
    WatchPointer& entry = m_watches[path];
    if (entry != nullptr) {
        entry->stopWatch(false);
    }
    entry = watch;
    m_created.push_front(watch);
    handle = std::move(added);
    return kXeOk;
}

XeResult XeFileSystemManager::removeWatchFolder(std::shared_ptr<void>& handle)
{
    const auto registration =
        std::static_pointer_cast<Registration>(std::exchange(handle, nullptr));
    Watches unused;
    {
        const Guard guard(m_section);
        if (registration == nullptr || registration->observer == nullptr) {
            return kXeGeneralFailure;
        }
        auto observer = std::exchange(registration->observer, nullptr);
        if (const WatchPointer watch = registration->watch.lock()) {
            watch->removeObserver(observer);
            unused = _takeOut(
                [&](const WatchPointer& other) { return other == watch && watch->notWatching(); });
        }
    }
    _stop(unused, true);
    updateWatch();
    return kXeOk;
}

bool XeFileSystemManager::isWatchingFolder(std::shared_ptr<void>& handle)
{
    const Guard guard(m_section);
    const auto* const registration = static_cast<const Registration*>(handle.get());
    if (registration == nullptr || registration->observer == nullptr) {
        return false;
    }
    const WatchPointer watch = registration->watch.lock();
    return watch != nullptr && !watch->notWatching();
}

XeResult XeFileSystemManager::stopWatchingFolder(const Path& path)
{
    const Path key = _withoutEndingSeparators(path);
    Watches stopped;
    {
        const Guard guard(m_section);
        if (const auto found = m_watches.find(key); found != m_watches.end()) {
            stopped.push_back(found->second);
            m_watches.erase(found);
        }
    }
    _stop(stopped, true);
    updateWatch();
    return kXeOk;
}

XeResult XeFileSystemManager::stopWatchingMountPoint(const Path& mountPoint)
{
    const Path key = _withoutEndingSeparators(mountPoint);
    Watches stopped;
    {
        const Guard guard(m_section);
        stopped = _takeOut([&](const WatchPointer& watch) {
            Path of;
            return watch->getMountPoint(of) >= 0 && _withoutEndingSeparators(of) == key;
        });
    }
    _stop(stopped, true);
    updateWatch();
    return kXeOk;
}

void XeFileSystemManager::updateWatch()
{
    Watches over;
    {
        const Guard guard(m_section);
        if (m_terminate) {
            return;
        }
        over = _takeOut(_isKnownToBeOver);
        m_created.remove_if([](const WatchPointer& watch) { return _asFolder(watch).hasEnded(); });
    }
    _stop(over, false);
}

/// Takes watches out of the map, so that no new observer comes to them.
template <typename Predicate>
auto XeFileSystemManager::_takeOut(Predicate predicate) -> Watches
{
    Watches taken;
    for (auto entry = m_watches.begin(); entry != m_watches.end();) {
        if (predicate(entry->second)) {
            taken.push_back(entry->second);
            entry = m_watches.erase(entry);
        } else {
            ++entry;
        }
    }
    return taken;
}

// Without the section: an observer that runs may be waiting for it. All are told to stop before the
// first is waited for, so that they end side by side.
void XeFileSystemManager::_stop(const Watches& watches, bool wait)
{
    for (const WatchPointer& watch : watches) {
        watch->stopWatch(false);
    }
    for (const WatchPointer& watch : watches) {
        watch->stopWatch(wait && !WatchFolder::onWorker());
    }
}

XeResult XeFileSystemManager::addMountPointContext(const Path& mountPoint,
                                                   const std::shared_ptr<void>& context, int kind,
                                                   bool stopWatches)
{
    {
        const Guard guard(m_section);
        m_contexts[_withoutEndingSeparators(mountPoint)] = {context, kind};
    }
    return stopWatches ? stopWatchingMountPoint(mountPoint) : kXeOk;
}

XeResult XeFileSystemManager::getMountPointContext(const Path& path, std::shared_ptr<void>& context,
                                                   int& kind)
{
    const Guard guard(m_section);
    for (Path at = _withoutEndingSeparators(path); !at.empty(); at = _parentOf(at)) {
        if (const auto found = m_contexts.find(at); found != m_contexts.end()) {
            std::tie(context, kind) = found->second;
            return kXeOk;
        }
    }
    return kXeGeneralFailure;
}

XeResult XeFileSystemManager::removeMountPointContext(const Path& mountPoint)
{
    const Guard guard(m_section);
    return m_contexts.erase(_withoutEndingSeparators(mountPoint)) != 0 ? kXeOk : kXeGeneralFailure;
}

void XeFileSystemManager::setTerminate()
{
    {
        const Guard guard(m_section);
        if (std::exchange(m_terminate, true)) {
            return;
        }
    }
    m_terminateObservers.NotifyObservers(weak_from_this().lock(), true);
}

bool XeFileSystemManager::getTerminate()
{
    const Guard guard(m_section);
    return m_terminate;
}

namespace XeFileSystem {
namespace {

std::atomic<bool> g_terminating = false;

/// Destroys the manager when the process exits. Other threads may ask for it to the very end, so
/// the lock and the pointer are never destroyed.
struct Holder {
    struct Slot {
        std::mutex mutex;
        std::shared_ptr<XeFileSystemManager> manager = std::make_shared<XeFileSystemManager>();
    };
    Slot* const slot = new Slot;

    std::shared_ptr<XeFileSystemManager> exchange(std::shared_ptr<XeFileSystemManager> manager)
    {
        const std::lock_guard guard(slot->mutex);
        return std::exchange(slot->manager, std::move(manager));
    }

    std::shared_ptr<XeFileSystemManager> get() const
    {
        const std::lock_guard guard(slot->mutex);
        return slot->manager;
    }

    ~Holder()
    {
        g_terminating = true;
        exchange(nullptr); // and destroys it here, outside the lock
    }
};

/// Calls a member of the manager.
template <typename Result, typename... Parameters, typename... Arguments>
Result _call(Result without, Result (XeFileSystemManager::*member)(Parameters...),
             Arguments&&... arguments)
{
    const auto manager = getManagerInstance();
    return manager == nullptr ? without : (*manager.*member)(std::forward<Arguments>(arguments)...);
}

} // namespace

std::shared_ptr<XeFileSystemManager> getManagerInstance()
{
    if (g_terminating) {
        return nullptr;
    }
    static const Holder holder;
    auto manager = holder.get();
    if (manager == nullptr || manager->getTerminate()) {
        g_terminating = true;
        return nullptr;
    }
    return manager;
}

bool getTerminateFlag() { return _call(true, &XeFileSystemManager::getTerminate); }

void setTerminateFlag()
{
    if (const auto manager = getManagerInstance()) {
        manager->setTerminate();
    }
}

XeResult addWatchFolder(Path const& path, IWatchFolder::Observer callback,
                        std::shared_ptr<void>& handle)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::addWatchFolder, path, std::move(callback),
                 handle);
}

XeResult removeWatchFolder(std::shared_ptr<void>& handle)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::removeWatchFolder, handle);
}

bool isWatchingFolder(std::shared_ptr<void>& handle)
{
    return _call(false, &XeFileSystemManager::isWatchingFolder, handle);
}

XeResult stopWatchingFolder(Path const& path)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::stopWatchingFolder, path);
}

XeResult stopWatchingMountPoint(Path const& mountPoint)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::stopWatchingMountPoint, mountPoint);
}

XeResult addMountPointContext(Path const& mountPoint, std::shared_ptr<void> const& context,
                              int kind, bool stopWatches)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::addMountPointContext, mountPoint, context,
                 kind, stopWatches);
}

XeResult getMountPointContext(Path const& path, std::shared_ptr<void>& context, int& kind)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::getMountPointContext, path, context,
                 kind);
}

XeResult removeMountPointContext(Path const& mountPoint)
{
    return _call(kXeGeneralFailure, &XeFileSystemManager::removeMountPointContext, mountPoint);
}

} // namespace XeFileSystem
