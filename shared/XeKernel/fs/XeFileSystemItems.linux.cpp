#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemItemsPlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/Descriptor.h"
#include "fs/LocalItem.h"
#include "fs/StoredName.linux.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace XeFileSystem {
namespace {

bool _lookUp(wchar_t const* path, unsigned mask, struct statx& status)
{
    const auto bytes = localPath(path);
    return bytes && statx(AT_FDCWD, bytes->c_str(), 0, mask, &status) == 0;
}

tFileTime _time(const struct statx_timestamp& time)
{
    return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
}

_ItemTimes _timesOf(const struct statx& status)
{
    const tFileTime modified = _time(status.stx_mtime);
    const bool keepsCreation = (status.stx_mask & STATX_BTIME) != 0;
    return {keepsCreation ? _time(status.stx_btime) : modified, modified};
}

bool _isImmutable(const struct statx& status)
{
    return (status.stx_attributes & status.stx_attributes_mask & STATX_ATTR_IMMUTABLE) != 0;
}

/// Opening a device, or asking it for flags, could make it do something.
bool _canHaveFlags(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

/// Splits an existing path into its folder and a name in it; "." and "..", which are names of
/// other folders' entries, are resolved.
bool _splitEntry(std::string path, std::string& folder, std::string& name)
{
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    name = path.substr(path.rfind('/') + 1);
    if (name.empty() || name == "." || name == "..") {
        const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
        path = real == nullptr ? "" : real.get();
        name = path.substr(path.rfind('/') + 1);
    }
    folder = path.substr(0, path.size() - name.size());
    return !path.empty();
}

} // namespace

// Only the leading dot counts here.
bool _isMarkedHidden(wchar_t const*) { return false; }

bool _isFileLocked(wchar_t const* path)
{
    struct statx status {};
    return _lookUp(path, 0, status) && _isImmutable(status);
}

bool _setLockFile(wchar_t const* path, bool lock)
{
    const auto bytes = localPath(path);
    if (!bytes || !_canHaveFlags(*bytes)) {
        return false;
    }
    const Descriptor item(open(bytes->c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    unsigned flags = 0;
    if (!item || ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0) {
        return false;
    }
    flags = lock ? flags | FS_IMMUTABLE_FL : flags & ~unsigned{FS_IMMUTABLE_FL};
    return ioctl(item.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

bool _getTimes(wchar_t const* path, _ItemTimes& times)
{
    struct statx status {};
    if (!_lookUp(path, STATX_MTIME | STATX_BTIME, status) || (status.stx_mask & STATX_MTIME) == 0) {
        return false;
    }
    times = _timesOf(status);
    return true;
}

bool _readStatus(int folder, const char* name, _ItemStatus& status)
{
    constexpr unsigned kWanted = STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_MTIME | STATX_BTIME;
    struct statx found {};
    if (statx(folder, name, AT_SYMLINK_NOFOLLOW, kWanted, &found) != 0) {
        return false;
    }
    const bool link = S_ISLNK(found.stx_mode);
    if (link && statx(folder, name, 0, kWanted, &found) != 0) {
        return false;
    }
    status = {.mode = found.stx_mode,
              .size = static_cast<std::int64_t>(found.stx_size),
              .times = _timesOf(found),
              .link = link,
              .markedHidden = false,
              .locked = _isImmutable(found)};
    return true;
}

bool _getStrictFileName(wchar_t const* path, _XeString<wchar_t>& name)
{
    const auto bytes = localPath(path);
    struct stat status {};
    std::string folder;
    std::string asked;
    if (!bytes || stat(bytes->c_str(), &status) != 0 || !_splitEntry(*bytes, folder, asked)) {
        return false;
    }
    const std::string plain = folder + asked;
    std::string stored;
    if (!asked.empty() && lstat(plain.c_str(), &status) == 0) {
        stored = storedName(folder.empty() ? "." : folder, asked, status);
    }
    // A folder that may be passed but not read tells no names: that of the root, too, is as asked.
    name = xenon::path::fromNative(asked.empty() ? folder : stored.empty() ? asked : stored);
    return true;
}

} // namespace XeFileSystem
