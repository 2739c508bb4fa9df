#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/WatchFolderPlatform.h"

#include "XeSafeCRT.h"

#include <fcntl.h>
#include <sys/event.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

constexpr unsigned kEveryNote =
    NOTE_DELETE | NOTE_WRITE | NOTE_EXTEND | NOTE_ATTRIB | NOTE_LINK | NOTE_RENAME | NOTE_REVOKE;
static_assert(kEveryNote == 0x7F);

void _close(std::atomic<int>& descriptor)
{
    const int open = descriptor.exchange(-1);
    if (open >= 0) {
        close(open);
    }
}

} // namespace

void _openFolderQueue(const std::string& path, std::atomic<int>& queue, std::atomic<int>& folder)
{
    queue = kqueue();
    folder = open(path.c_str(), O_EVTONLY | O_CLOEXEC);
    struct kevent change;
    EV_SET(&change, static_cast<uintptr_t>(folder.load()), EVFILT_VNODE, EV_ADD | EV_CLEAR,
           kEveryNote, 0, nullptr);
    if (folder < 0 || kevent(queue, &change, 1, nullptr, 0, nullptr) < 0) {
        _closeFolderQueue(queue, folder);
    }
}

FolderEvent _waitForFolderEvent(int queue, int cycleMs)
{
    const int wait = std::max(cycleMs, 1);
    const timespec limit{wait / 1000, wait % 1000 * 1000000L};
    struct kevent event;
    const int count = kevent(queue, nullptr, 0, &event, 1, &limit);
    if (count == 0 || (count < 0 && errno == EINTR)) {
        return FolderEvent::TimeOut;
    }
    return count < 0 || event.flags == EV_ERROR ? FolderEvent::Failure : FolderEvent::Change;
}

// The wait fails on a closed queue, and the worker ends.
void _wakeFolderQueue(std::atomic<int>& queue, std::atomic<int>& folder)
{
    _closeFolderQueue(queue, folder);
}

void _closeFolderQueue(std::atomic<int>& queue, std::atomic<int>& folder)
{
    _close(queue);
    _close(folder);
}

bool _pathLeadsToQueue(const std::string& path, int, int folder)
{
    struct stat named;
    struct stat watched;
    return stat(path.c_str(), &named) == 0 && fstat(folder, &watched) == 0 &&
           named.st_dev == watched.st_dev && named.st_ino == watched.st_ino;
}
