#include "fs/MountTable.linux.h"

#include "XeSafeCRT.h"

#include <fcntl.h>
#include <libmount.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
    void operator()(libmnt_table* table) const { mnt_unref_table(table); }
    void operator()(libmnt_iter* iterator) const { mnt_free_iter(iterator); }
};

std::string _text(const char* text) { return text == nullptr ? std::string() : text; }

Mount _copy(libmnt_fs* entry)
{
    Mount mount;
    mount.id = mnt_fs_get_id(entry);
    mount.parent = mnt_fs_get_parent_id(entry);
    mount.device = mnt_fs_get_devno(entry);
    mount.root = _text(mnt_fs_get_root(entry));
    mount.point = _text(mnt_fs_get_target(entry));
    mount.type = _text(mnt_fs_get_fstype(entry));
    mount.source = _text(mnt_fs_get_source(entry));
    mount.options = _text(mnt_fs_get_vfs_options(entry));
    mount.superOptions = _text(mnt_fs_get_fs_options(entry));
    return mount;
}

void _toParent(std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    path.resize(slash == 0 ? 1 : slash == std::string::npos ? 0 : slash);
}

bool _isBelow(const std::string& path, const std::string& folder)
{
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder == "/" || path[folder.size()] == '/');
}

/// Errors of a path below the root of a volume whose server or disk is gone. The root itself is
/// known to the system and can still be found.
bool _isVolumeGone(int error)
{
    constexpr std::array kErrors = {ENOTCONN, EIO, ESTALE, EHOSTDOWN, EHOSTUNREACH, ETIMEDOUT};
    return std::find(kErrors.begin(), kErrors.end(), error) != kErrors.end();
}

bool _mayAskParent(int error, const std::string& path)
{
    return (error == ENOENT || _isVolumeGone(error)) && path != "/";
}

/// Asked for nothing, statx(2) tells the mount alone and puts no question to the file system, which
/// may be gone or may refuse to answer this user.
int _statMount(const char* path, struct statx& status)
{
    return statx(AT_FDCWD, path, AT_NO_AUTOMOUNT | AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC, 0,
                 &status);
}

/// @param error  As errno, where nothing is found.
std::optional<Place> _find(const std::string& path, int& error)
{
    const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
    struct statx status {};
    if (real == nullptr || _statMount(real.get(), status) != 0) {
        error = errno;
        return std::nullopt;
    }
    if ((status.stx_mask & STATX_MNT_ID) == 0) {
        error = ENOSYS; // before Linux 5.8
        return std::nullopt;
    }
    return Place{real.get(), static_cast<int>(status.stx_mnt_id)};
}

} // namespace

std::optional<MountTable> MountTable::read(const std::string& file)
{
    const std::unique_ptr<libmnt_table, Free> table(mnt_new_table_from_file(file.c_str()));
    const std::unique_ptr<libmnt_iter, Free> iterator(mnt_new_iter(MNT_ITER_FORWARD));
    if (table == nullptr || iterator == nullptr) {
        return std::nullopt;
    }
    MountTable mounts;
    for (libmnt_fs* entry = nullptr; mnt_table_next_fs(table.get(), iterator.get(), &entry) == 0;) {
        mounts.m_mounts.push_back(_copy(entry));
    }
    return mounts;
}

const Mount* MountTable::find(int id) const
{
    const auto found = std::find_if(m_mounts.begin(), m_mounts.end(),
                                    [id](const Mount& mount) { return mount.id == id; });
    return found == m_mounts.end() ? nullptr : &*found;
}

bool MountTable::isVisible(const Mount& mount) const
{
    const bool covered = std::any_of(m_mounts.begin(), m_mounts.end(), [&](const Mount& other) {
        return other.parent == mount.id && other.id != mount.id && other.point == mount.point;
    });
    return !covered && _isReachable(mount);
}

/// True when no other mount lies over a folder on the way.
bool MountTable::_isReachable(const Mount& mount) const
{
    const Mount* const parent = find(mount.parent);
    if (parent == nullptr || parent->id == mount.id) {
        return true;
    }
    const bool behindOther = std::any_of(m_mounts.begin(), m_mounts.end(), [&](const Mount& other) {
        return other.parent == mount.parent && other.id != mount.parent &&
               _isBelow(mount.point, other.point);
    });
    return !behindOther && _isReachable(*parent);
}

std::optional<Place> findPlace(const std::string& path)
{
    int error = 0;
    return _find(path, error);
}

std::optional<Place> findNearestPlace(std::string path)
{
    for (; !path.empty(); _toParent(path)) {
        int error = 0;
        auto place = _find(path, error);
        if (place || !_mayAskParent(error, path)) {
            return place;
        }
    }
    return std::nullopt;
}

bool isMountPoint(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back(); // which would lead behind a link
    }
    struct statx status {};
    return _statMount(path.c_str(), status) == 0 &&
           (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

std::string mountPointOf(const Place& place)
{
    std::string path = place.path;
    while (path.size() > 1 && !isMountPoint(path)) {
        _toParent(path);
    }
    return path;
}

// The table is no snapshot: a mount that comes or goes while it is read may hide another.
std::optional<Mount> findMount(const Place& place)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto table = MountTable::read();
        if (const Mount* const mount = table ? table->find(place.mountId) : nullptr) {
            return *mount;
        }
    }
    return std::nullopt;
}
