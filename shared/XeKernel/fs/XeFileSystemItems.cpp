#include "XeFileSystem.h"

#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"
#include "fs/XeFileSystemItemsPlatform.h"

#include <boost/filesystem/directory.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using bfs::file_type;
using xenon::network::IFileSystem;

/// An item of the other kind has no answer, so only folders have one.
std::optional<bool> _remoteFolderIsEmpty(const RemoteVolume& remote, wchar_t const* path)
{
    bool empty = false;
    const bool answered = remote.call(&IFileSystem::isFolderEmpty, path, empty) >= 0;
    return answered ? std::optional(empty) : std::nullopt;
}

bool _localFolderIsEmpty(wchar_t const* path)
{
    const auto bytes = localPath(path);
    boost::system::error_code error;
    return bytes && bfs::directory_iterator(*bytes, error) == bfs::directory_iterator() && !error;
}

/// Last name of a path, without the separators that may end it.
template <typename Char>
std::basic_string_view<Char> _lastName(std::basic_string_view<Char> path)
{
    const std::size_t end = path.find_last_not_of(Char('/'));
    path = path.substr(0, end == path.npos ? 0 : end + 1);
    return path.substr(path.rfind(Char('/')) + 1);
}

/// True for a path whose last name begins with '.', separators at its end left aside. Not so "."
/// and "..", which stand for items of another name.
template <typename Char>
bool _isNamedHidden(std::basic_string_view<Char> path)
{
    const std::basic_string_view<Char> name = _lastName(path);
    return name.size() > 1 && name[0] == '.' && (name.size() > 2 || name[1] != '.');
}

std::optional<struct stat> _statusOf(wchar_t const* path)
{
    const auto bytes = localPath(path);
    struct stat status {};
    return bytes && stat(bytes->c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// Sockets and block devices carry the folders' bit in their type, too.
/// @param folder  And `name`, as for _readStatus.
bool _isReadonly(mode_t mode, int folder, const char* name)
{
    constexpr mode_t kFolderBit = 0040000;
    return (mode & S_IWUSR) == 0 ||
           ((mode & kFolderBit) != 0 && faccessat(folder, name, W_OK, 0) != 0);
}

bool _isFileReadonly(wchar_t const* path)
{
    const auto status = _statusOf(path);
    return status && _isReadonly(status->st_mode, AT_FDCWD, localPath(path)->c_str());
}

bool _setFileReadonly(wchar_t const* path, bool readonly)
{
    constexpr mode_t kKept = 0xFFFF;
    const auto status = _statusOf(path);
    if (!status) {
        return false;
    }
    const mode_t mode = status->st_mode & kKept;
    return chmod(localPath(path)->c_str(), readonly ? mode & ~mode_t{S_IWUSR} : mode | S_IWUSR) ==
           0;
}

/// One time alone can be set by the owner only; who may but write the item sets both or none.
bool _touch(const std::string& path)
{
    const struct timespec onlyModified[] = {{0, UTIME_OMIT}, {0, UTIME_NOW}};
    return utimensat(AT_FDCWD, path.c_str(), onlyModified, 0) == 0 ||
           ((errno == EPERM || errno == EACCES) &&
            utimensat(AT_FDCWD, path.c_str(), nullptr, 0) == 0);
}

bool _remoteStrictName(const RemoteVolume& remote, wchar_t const* path, _XeString<wchar_t>& name)
{
    _XeString<wchar_t> strict;
    const _XeString<wchar_t> asked(_lastName(std::wstring_view(path)));
    const bool given = remote.call(&IFileSystem::strictFileName, asked, strict) >= 0;
    if (given && !strict.empty()) {
        name = std::move(strict);
        return true;
    }
    return false;
}

} // namespace

bool isFilePresent(wchar_t const* path)
{
    return noThrow(false, [&] {
        if (const RemoteVolume remote(path); remote) {
            std::int64_t size = 0;
            return remote.call(&IFileSystem::getFileSize, path, size) >= 0;
        }
        return localType(path) == file_type::regular_file;
    });
}

bool isFilePresent(_XeString<wchar_t> const& path) { return isFilePresent(path.c_str()); }

bool isFolderPresent(wchar_t const* path)
{
    return noThrow(false, [&] {
        if (const RemoteVolume remote(path); remote) {
            return _remoteFolderIsEmpty(remote, path).has_value();
        }
        return localType(path) == file_type::directory_file;
    });
}

bool isFolderPresent(_XeString<wchar_t> const& path) { return isFolderPresent(path.c_str()); }

bool isFolder(wchar_t const* path) { return isFolderPresent(path); }

bool isFolder(_XeString<wchar_t> const& path) { return isFolderPresent(path); }

bool isFolderEmpty(wchar_t const* path)
{
    return noThrow(false, [&] {
        if (const RemoteVolume remote(path); remote) {
            return _remoteFolderIsEmpty(remote, path).value_or(false);
        }
        return _localFolderIsEmpty(path);
    });
}

bool isFolderEmpty(_XeString<wchar_t> const& path) { return isFolderEmpty(path.c_str()); }

XeResult getFileSize(wchar_t const* path, long long& size)
{
    return noThrow(kXeGeneralFailure, [&] {
        std::int64_t found = 0;
        XeResult result = kXeOk;
        if (const RemoteVolume remote(path); remote) {
            result = remote.call(&IFileSystem::getFileSize, path, found);
        } else if (const auto local = localSize(path)) {
            found = *local;
        } else {
            result = kXeGeneralFailure;
        }
        if (result >= 0) {
            size = found;
        }
        return result;
    });
}

long long getFileSize(wchar_t const* path)
{
    long long size = -1;
    return getFileSize(path, size) >= 0 ? size : -1;
}

bool isHidden(wchar_t const* path)
{
    return noThrow(false, [&] {
        return _isNamedHidden(std::wstring_view(givenText(path))) ||
               _isMarkedHidden(givenText(path));
    });
}

bool isHidden(_XeString<wchar_t> const& path) { return isHidden(path.c_str()); }

bool isFileReadonly(wchar_t const* path)
{
    return noThrow(false, [&] { return _isFileReadonly(path); });
}

bool isFileReadonly(_XeString<wchar_t> const& path) { return isFileReadonly(path.c_str()); }

bool isFolderReadonly(wchar_t const* path) { return isFileReadonly(path); }

bool isFolderReadonly(_XeString<wchar_t> const& path) { return isFileReadonly(path); }

bool isFileLocked(wchar_t const* path)
{
    return noThrow(false, [&] { return _isFileLocked(givenText(path)); });
}

bool isFileLocked(_XeString<wchar_t> const& path) { return isFileLocked(path.c_str()); }

bool isFolderLocked(wchar_t const* path) { return isFileLocked(path); }

bool isFolderLocked(_XeString<wchar_t> const& path) { return isFileLocked(path); }

bool setLockFile(_XeString<wchar_t> const& path, bool lock)
{
    return noThrow(false, [&] { return _setLockFile(path.c_str(), lock); });
}

bool setFileReadonly(wchar_t const* path, bool readonly)
{
    return noThrow(false, [&] { return _setFileReadonly(path, readonly); });
}

XeResult touchLastModified(wchar_t const* path)
{
    return noThrow(kXeGeneralFailure, [&] {
        const auto bytes = localPath(path);
        return bytes && _touch(*bytes) ? kXeOk : kXeGeneralFailure;
    });
}

XeResult getLastModified(wchar_t const* path, tFileTime& time)
{
    return noThrow(kXeGeneralFailure, [&] {
        _ItemTimes times;
        if (!_getTimes(givenText(path), times)) {
            return kXeGeneralFailure;
        }
        time = times.modified;
        return kXeOk;
    });
}

std::time_t getModifiedTime(wchar_t const* path)
{
    return noThrow(std::time_t{-1}, [&] {
        _ItemTimes times;
        return _getTimes(givenText(path), times) ? std::time_t{times.modified.seconds} : -1;
    });
}

std::time_t getCreationTime(wchar_t const* path)
{
    return noThrow(std::time_t{-1}, [&] {
        _ItemTimes times;
        return _getTimes(givenText(path), times) ? std::time_t{times.created.seconds} : -1;
    });
}

bool _readAttribute(int folder, const char* name, tFileAtrribute& attribute)
{
    _ItemStatus status;
    if (!_readStatus(folder, name, status)) {
        return false;
    }
    const bool isFolder = S_ISDIR(status.mode);
    attribute = {.size = isFolder ? 0 : status.size,
                 .created = status.times.created,
                 .modified = status.times.modified,
                 .folder = isFolder,
                 .link = status.link,
                 .hidden = status.markedHidden || _isNamedHidden(std::string_view(name)),
                 .readonly = _isReadonly(status.mode, folder, name),
                 .locked = status.locked};
    return true;
}

XeResult getFileAttribute(wchar_t const* path, tFileAtrribute& attribute)
{
    return noThrow(kXeGeneralFailure, [&] {
        const auto bytes = localPath(path);
        return bytes && _readAttribute(AT_FDCWD, bytes->c_str(), attribute) ? kXeOk
                                                                            : kXeGeneralFailure;
    });
}

bool getStrictFileName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name)
{
    return noThrow(false, [&] {
        if (const RemoteVolume remote(path); remote) {
            return _remoteStrictName(remote, path.c_str(), name);
        }
        return _getStrictFileName(path.c_str(), name);
    });
}

} // namespace XeFileSystem
