#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/WatchFolderPlatform.h"

#include "XeSafeCRT.h"
#include "XeThread.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

using namespace std::chrono_literals;

// Without IN_MODIFY and IN_CLOSE_WRITE: the contents of entries are not the folder's.
constexpr std::uint32_t kChanges =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

// The steps of one operation (a rename, a save through a temporary file) end in one notification,
// and a burst of changes in few, when what comes this soon after the first is taken together.
constexpr auto kSettle = 2ms;

// A queue of 16384 events without names (the default limit) fits in eight.
constexpr int kMostReadsAtOnce = 16;
constexpr std::size_t kReadBytes = 0x10000;

/// What tells one folder from another at the same path.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const Identity&) const = default;
};

/// Of no folder when the path leads nowhere.
Identity _identityAt(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? Identity{status.st_dev, status.st_ino} : Identity{};
}

/// True when the path surely leads nowhere or to another folder.
bool _leadsAway(const std::string& path, const Identity& from)
{
    errno = 0;
    const bool other = _identityAt(path) != from;
    return other && (errno == 0 || errno == ENOENT || errno == ENOTDIR);
}

/// The one inotify instance of the process: a user may have 128 of them for the whole desktop. Its
/// thread runs from the first watch to the last and sorts changes into the watches' eventfds.
///
/// No descriptor on a folder is held: it would keep the volume from being unmounted and the news of
/// the folder's deletion from coming.
class Hub {
public:
    /// Never destroyed: workers may run until the process has ended.
    static Hub& instance()
    {
        static Hub* const hub = new Hub;
        return *hub;
    }

    void add(const std::string& path, std::atomic<int>& queue, std::atomic<int>& folder);
    void remove(int queue);

    /// True for the first look that finds another folder, or none, at the watch's path when no
    /// event has told so: the event is held back while any process keeps the folder open.
    bool noticesLoss(int queue);

    /// True when the path leads to the very folder of the watch. Exact where `noticesLoss` is not:
    /// a new folder may get the number of the one that was deleted.
    bool leadsToFolder(const std::string& path, int queue);

private:
    struct Watch {
        int folder; // equal for two watches of one folder, through whatever paths
        std::string path;
        Identity identity;
        bool lossTold = false;
        bool lossNoticed = false;
    };

    bool _start();
    void _stop();
    bool _isUsed(int folder) const;
    void _run();
    void _drain();
    void _dispatch(const std::map<int, std::uint32_t>& changes);
    bool _concerns(Watch& watch, std::uint32_t changes);

    std::mutex m_life; // guards the four below; held while watches come and go
    int m_inotify = -1;
    int m_stopEvent = -1;
    std::thread m_reader;

    std::mutex m_table;             // taken after m_life
    std::map<int, Watch> m_watches; // by queue
    alignas(inotify_event) char m_buffer[kReadBytes];
};

bool Hub::_start()
{
    if (m_reader.joinable()) {
        return true;
    }
    m_inotify = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    m_stopEvent = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (m_inotify >= 0 && m_stopEvent >= 0) {
        try {
            m_reader = std::thread([this] { _run(); });
            return true;
        } catch (const std::system_error&) {
        }
    }
    _stop();
    return false;
}

// Closing a descriptor does not wake a thread that polls it, so there is an event for that.
void Hub::_stop()
{
    if (m_reader.joinable()) {
        eventfd_write(m_stopEvent, 1);
        m_reader.join();
    }
    for (int* const descriptor : {&m_inotify, &m_stopEvent}) {
        if (*descriptor >= 0) {
            close(*descriptor);
            *descriptor = -1;
        }
    }
}

void Hub::add(const std::string& path, std::atomic<int>& queue, std::atomic<int>& folder)
{
    const std::lock_guard life(m_life);
    if (!_start()) {
        return;
    }
    // Read first: should the folder be replaced before the registration, the watch notices later.
    const Identity identity = _identityAt(path);
    const int event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    std::unique_lock table(m_table); // the first event must find the entry
    const int number =
        event < 0 ? -1 : inotify_add_watch(m_inotify, path.c_str(), kChanges | IN_ONLYDIR);
    if (number >= 0) {
        m_watches[event] = {number, path, identity};
        queue = event;
        folder = number;
    } else if (event >= 0) {
        close(event);
    }
    const bool unused = m_watches.empty();
    table.unlock();
    if (unused) {
        _stop();
    }
}

bool Hub::_isUsed(int folder) const
{
    return std::any_of(m_watches.begin(), m_watches.end(),
                       [=](const auto& entry) { return entry.second.folder == folder; });
}

void Hub::remove(int queue)
{
    const std::lock_guard life(m_life);
    std::unique_lock table(m_table);
    const auto removed = m_watches.find(queue);
    const int folder = removed->second.folder;
    m_watches.erase(removed);
    if (!_isUsed(folder)) {
        inotify_rm_watch(m_inotify, folder); // fails when the folder is gone
    }
    close(queue);
    const bool unused = m_watches.empty();
    table.unlock();
    if (unused) {
        _stop();
    }
}

void Hub::_run()
{
    XeThread::SetName("XeWatchHub");
    pollfd polled[] = {{m_inotify, POLLIN, 0}, {m_stopEvent, POLLIN, 0}};
    for (;;) {
        if (poll(polled, std::size(polled), -1) < 0) {
            continue;
        }
        if (polled[1].revents != 0) {
            return;
        }
        std::this_thread::sleep_for(kSettle);
        _drain();
    }
}

void Hub::_drain()
{
    std::map<int, std::uint32_t> changes; // by folder; -1 for lost events
    for (int reads = 0; reads < kMostReadsAtOnce; ++reads) {
        const ssize_t length = read(m_inotify, m_buffer, sizeof m_buffer);
        if (length <= 0) {
            break;
        }
        for (const char* at = m_buffer; at < m_buffer + length;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            const bool ofAnEntry = event->len > 0;
            const std::uint32_t ignored = ofAnEntry ? IN_ATTRIB | IN_IGNORED : IN_IGNORED;
            changes[event->wd] |= event->mask & ~ignored;
            at += sizeof(inotify_event) + event->len;
        }
    }
    _dispatch(changes);
}

void Hub::_dispatch(const std::map<int, std::uint32_t>& changes)
{
    const bool overflow = changes.count(-1) != 0;
    const std::lock_guard table(m_table);
    for (auto& [queue, watch] : m_watches) {
        const auto found = changes.find(watch.folder);
        if (overflow || (found != changes.end() && _concerns(watch, found->second))) {
            eventfd_write(queue, 1);
        }
    }
}

bool Hub::_concerns(Watch& watch, std::uint32_t changes)
{
    const std::uint32_t told = changes & (kChanges | IN_UNMOUNT);
    const bool gone = (told & (IN_DELETE_SELF | IN_UNMOUNT)) != 0;
    const bool moved = (told & IN_MOVE_SELF) != 0; // and watched on where it is now
    watch.lossTold = watch.lossTold || gone || moved;
    return told != 0 && !(watch.lossNoticed && (gone || told == IN_MOVE_SELF));
}

bool Hub::noticesLoss(int queue)
{
    std::unique_lock table(m_table);
    const Watch watch = m_watches.at(queue);
    table.unlock();
    if (watch.lossTold || watch.lossNoticed || !_leadsAway(watch.path, watch.identity)) {
        return false;
    }
    table.lock();
    Watch& entry = m_watches.at(queue);
    entry.lossNoticed = !entry.lossTold;
    return entry.lossNoticed;
}

// Registering a folder again gives the number that it has already.
bool Hub::leadsToFolder(const std::string& path, int queue)
{
    const std::lock_guard life(m_life);
    const std::lock_guard table(m_table);
    const int folder = m_watches.at(queue).folder;
    const int found = inotify_add_watch(m_inotify, path.c_str(), kChanges | IN_ONLYDIR);
    if (found < 0) {
        return errno != ENOENT && errno != ENOTDIR;
    }
    if (!_isUsed(found)) {
        inotify_rm_watch(m_inotify, found);
    }
    return found == folder;
}

} // namespace

void _openFolderQueue(const std::string& path, std::atomic<int>& queue, std::atomic<int>& folder)
{
    Hub::instance().add(path, queue, folder);
}

FolderEvent _waitForFolderEvent(int queue, int cycleMs)
{
    const auto end = std::chrono::steady_clock::now() + std::max(cycleMs, 1) * 1ms;
    for (;;) {
        const auto rest =
            std::max<std::chrono::nanoseconds>(end - std::chrono::steady_clock::now(), 0ns);
        const timespec limit{rest / 1s, rest % 1s / 1ns};
        pollfd polled{queue, POLLIN, 0};
        const int count = ppoll(&polled, 1, &limit, nullptr);
        if (count == 0) {
            return Hub::instance().noticesLoss(queue) ? FolderEvent::Change : FolderEvent::TimeOut;
        }
        if (count > 0) {
            // Cleared before the observers are called: what comes while they run counts anew.
            eventfd_t changes = 0;
            return eventfd_read(queue, &changes) == 0 ? FolderEvent::Change : FolderEvent::Failure;
        }
        if (errno != EINTR) {
            return FolderEvent::Failure;
        }
    }
}

// The worker looks at its stop flag before it believes in a change.
void _wakeFolderQueue(std::atomic<int>& queue, std::atomic<int>&) { eventfd_write(queue, 1); }

void _closeFolderQueue(std::atomic<int>& queue, std::atomic<int>& folder)
{
    if (queue >= 0) {
        Hub::instance().remove(queue);
        queue = -1;
        folder = -1;
    }
}

bool _pathLeadsToQueue(const std::string& path, int queue, int)
{
    return Hub::instance().leadsToFolder(path, queue);
}
