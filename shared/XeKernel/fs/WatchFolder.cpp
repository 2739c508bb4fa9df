#include "WatchFolder.h"

#include "fs/LocalItem.h"
#include "fs/WatchFolderPlatform.h"

#include "XeFileSystem.h"
#include "XeNativePath.h"
#include "XeSafeCRT.h"

#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace {

using Guard = std::lock_guard<XeCriticalSection>;

thread_local const WatchFolder* t_watchOfThisWorker = nullptr;

} // namespace

bool WatchFolder::onWorker() { return t_watchOfThisWorker != nullptr; }

// A worker lives as long as its watch, so it is at its end here, or it is this thread.
WatchFolder::~WatchFolder()
{
    if (t_watchOfThisWorker == this) {
        m_thread.detach();
    } else if (m_thread.joinable()) {
        m_thread.join();
    }
    _closeQueue();
}

XeResult WatchFolder::initWatch(const _XeString<wchar_t>& path, int cycle)
{
    const Guard guard(m_section);
    if (m_queue >= 0) {
        return kXeAlreadyStarted;
    }
    const std::optional<std::string> bytes = localPath(path.c_str());
    if (!bytes || localType(path.c_str()) != boost::filesystem::directory_file) {
        return kXeNotWatchable;
    }
    if (cycle > 0) {
        m_cycle = cycle;
    }
    m_path = path;
    _openFolderQueue(*bytes, m_queue, m_folder);
    return m_queue >= 0 ? kXeOk : kXeNotWatchable;
}

// The reference is taken here: a watch that is dropped right after this call must not be gone
// before its worker has begun.
XeResult WatchFolder::startWatch()
{
    const Guard guard(m_section);
    if (m_queue < 0) {
        return kXeNotInitialised;
    }
    if (m_started) {
        return kXeAlreadyStarted;
    }
    try {
        m_thread = std::thread([self = shared_from_this()]() mutable {
            const std::shared_ptr<WatchFolder> watch = std::move(self);
            watch->worker();
        });
    } catch (const std::system_error&) {
        return kXeThreadNotStarted;
    }
    m_started = true;
    return kXeOk;
}

void WatchFolder::worker()
{
    XeThread::SetName("XeWatchFolder");
    t_watchOfThisWorker = this;
    const std::shared_ptr<IWatchFolder> self = shared_from_this();
    while (!_stopRequested()) {
        const FolderEvent event = _waitForFolderEvent(m_queue, m_cycle);
        if (event == FolderEvent::Failure || _stopRequested()) {
            break;
        }
        if (event == FolderEvent::Change) {
            m_toldChange = true;
            const Changes::value_type folder(_XeString<wchar_t>(), kFolderChanged);
            NotifyObservers(self, std::make_shared<Changes>(1, folder));
        }
    }
    _requestStop();
    NotifyObservers(self, nullptr);
    _closeQueue();
    m_ended = true;
}

XeResult WatchFolder::stopWatch(bool wait)
{
    _requestStop();
    m_cycle = 1;
    signalWorker();
    if (wait && t_watchOfThisWorker != this) {
        _join();
        _closeQueue();
    }
    return kXeOk;
}

void WatchFolder::_join()
{
    const std::lock_guard<std::mutex> guard(m_joining);
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void WatchFolder::signalWorker()
{
    const Guard guard(m_section);
    if (m_started && m_queue >= 0) {
        _wakeFolderQueue(m_queue, m_folder);
    }
}

bool WatchFolder::_stopRequested()
{
    const Guard guard(m_section);
    return m_stop;
}

void WatchFolder::_requestStop()
{
    const Guard guard(m_section);
    m_stop = true;
}

void WatchFolder::_closeQueue()
{
    const Guard guard(m_section);
    _closeFolderQueue(m_queue, m_folder);
}

XeResult WatchFolder::addObserver(Observer observer, std::shared_ptr<void>& handle)
{
    if (observer == nullptr) {
        return kXeGeneralFailure;
    }
    RegisterObserver(std::move(observer), handle);
    return kXeOk;
}

XeResult WatchFolder::removeObserver(std::shared_ptr<void>& handle)
{
    if (!_owns(handle)) {
        return kXeGeneralFailure;
    }
    UnregisterObserver(handle);
    return kXeOk;
}

XeResult WatchFolder::getWatch(_XeString<wchar_t>& path, int& cycle)
{
    const Guard guard(m_section);
    path = m_path;
    cycle = m_cycle;
    return kXeOk;
}

XeResult WatchFolder::getMountPoint(_XeString<wchar_t>& mountPoint)
{
    const Guard guard(m_section);
    if (m_path.empty()) {
        return kXeNotInitialised;
    }
    if (m_mountPoint.empty()) {
        const XeResult result = XeFileSystem::getVolumeMountPoint(m_path, m_mountPoint);
        if (result < 0) {
            return result;
        }
    }
    mountPoint = m_mountPoint;
    return kXeOk;
}

bool WatchFolder::notWatching()
{
    const Guard guard(m_section);
    return m_stop || !m_started || !HasObservers();
}

XeResult WatchFolder::setCycle(int cycle)
{
    if (cycle < 0) {
        return kXeNotWatchable;
    }
    m_cycle = cycle;
    return kXeOk;
}

bool WatchFolder::followsPath() const
{
    const Guard guard(m_section);
    return m_queue >= 0 && _pathLeadsToQueue(xenon::path::toNative(m_path).value_or(std::string()),
                                             m_queue, m_folder);
}
