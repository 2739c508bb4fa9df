#include "XeFileSystem.h"

#include "fs/FileStatus.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"

#include <boost/filesystem/operations.hpp>

#include <vector>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using bfs::file_type;
using xenon::network::IFileSystem;

// Creating -------------------------------------------------------------------------------------

/// The missing levels of a path, the deepest first. A "." (from a '/' at the end) and a ".." are no
/// levels of their own.
std::vector<bfs::path> _missingLevels(bfs::path path)
{
    std::vector<bfs::path> levels;
    boost::system::error_code error;
    for (; !path.empty() && bfs::status(path, error).type() == file_type::file_not_found;
         path = path.parent_path()) {
        if (!path.filename_is_dot() && !path.filename_is_dot_dot()) {
            levels.push_back(path);
        }
    }
    return levels;
}

/// Makes the levels from the last to the first; all of them or none.
bool _createLevels(const std::vector<bfs::path>& levels)
{
    std::vector<const bfs::path*> made;
    made.reserve(levels.size()); // so that nothing throws from here on
    boost::system::error_code error;
    for (auto level = levels.rbegin(); level != levels.rend() && !error; ++level) {
        if (bfs::create_directory(*level, error)) {
            made.push_back(&*level);
        }
    }
    const bool whole = !error;
    for (; !whole && !made.empty(); made.pop_back()) {
        bfs::remove(*made.back(), error);
    }
    return whole;
}

XeResult _createLocalFolder(wchar_t const* path)
{
    const auto bytes = localPath(path);
    if (!bytes) {
        return kXeFileOperationFailed;
    }
    const auto levels = _missingLevels(*bytes);
    const bool there = levels.empty() ? isFolderPresent(path) : _createLevels(levels);
    return there ? kXeOk : kXeFileOperationFailed;
}

/// The folder that holds an item; empty where the text names none.
_XeString<wchar_t> _parentOf(const _XeString<wchar_t>& path)
{
    const std::size_t name = path.find_last_not_of(L'/');
    const std::size_t slash = name == path.npos ? path.npos : path.find_last_of(L'/', name);
    return slash == path.npos ? _XeString<wchar_t>() : _XeString<wchar_t>(path.substr(0, slash));
}

/// Asks for the folder itself first: most remotes have what is above it, and some make that too.
XeResult _createRemoteFolder(const RemoteVolume& remote, const _XeString<wchar_t>& path)
{
    const XeResult result = remote.call(&IFileSystem::createFolder, path);
    if (result >= 0 || result == kXeRemoteVolumeGone) {
        return result;
    }
    const _XeString<wchar_t> parent = _parentOf(path);
    if (!(RemoteVolume(parent) == remote) || isFolderPresent(parent)) {
        return result;
    }
    const XeResult above = _createRemoteFolder(remote, parent);
    return above < 0 ? above : remote.call(&IFileSystem::createFolder, path);
}

// Renaming and moving --------------------------------------------------------------------------

/// Tells whether a name is free. Anything takes it, also a link that leads nowhere; and what cannot
/// be looked at might be something.
/// @return  0, kXeDestinationExists or `unknown`.
XeResult _isFree(const std::string& path, XeResult unknown)
{
    const FileStatus status = FileStatus::ofLink(path);
    return status.isMissing() ? kXeOk : status.isThere() ? kXeDestinationExists : unknown;
}

/// @param acrossDevices  Set when the system cannot rename from the one place to the other.
XeResult _renameLocally(wchar_t const* source, wchar_t const* destination, bool failIfExists,
                        bool& acrossDevices)
{
    const auto from = localPath(source);
    const auto to = localPath(destination);
    if (!from || !to) {
        return kXeGeneralFailure;
    }
    if (failIfExists) {
        if (const XeResult free = _isFree(*to, kXeGeneralFailure); free < 0) {
            return free;
        }
    }
    boost::system::error_code error;
    bfs::rename(*from, *to, error);
    acrossDevices = error == boost::system::errc::cross_device_link;
    return error ? kXeGeneralFailure : kXeOk;
}

XeResult _rename(wchar_t const* source, wchar_t const* destination, bool failIfExists,
                 bool& acrossDevices)
{
    const RemoteVolume from(source);
    const RemoteVolume to(destination);
    if (!from && !to) {
        return _renameLocally(source, destination, failIfExists, acrossDevices);
    }
    if (failIfExists && (isFilePresent(destination) || isFolderPresent(destination))) {
        return kXeDestinationExists;
    }
    acrossDevices = !(from == to);
    return acrossDevices ? kXeGeneralFailure : from.call(&IFileSystem::rename, source, destination);
}

bool _areOnDifferentVolumes(wchar_t const* source, wchar_t const* destination)
{
    _XeString<wchar_t> from;
    _XeString<wchar_t> to;
    getVolumeName(source, from);
    getVolumeName(destination, to);
    return from != to;
}

} // namespace

XeResult createFolder(wchar_t const* path)
{
    return noThrow(kXeFileOperationFailed, [&] {
        const RemoteVolume remote(path);
        return remote ? _createRemoteFolder(remote, path) : _createLocalFolder(path);
    });
}

XeResult renameFile(wchar_t const* source, wchar_t const* destination, bool failIfExists)
{
    return noThrow(kXeGeneralFailure, [&] {
        bool acrossDevices = false;
        return _rename(source, destination, failIfExists, acrossDevices);
    });
}

XeResult moveFile(wchar_t const* source, wchar_t const* destination)
{
    return noThrow(kXeGeneralFailure, [&] {
        bool acrossDevices = _areOnDifferentVolumes(source, destination);
        if (!acrossDevices) {
            const XeResult renamed = _rename(source, destination, false, acrossDevices);
            if (!acrossDevices) {
                return renamed;
            }
        }
        const XeResult copied = copyFile(source, destination, false);
        return copied < 0 ? copied : deleteFile(source);
    });
}

XeResult linkFile(wchar_t const* target, wchar_t const* linkPath, bool symbolic)
{
    return noThrow(kXeFileOperationFailed, [&] {
        const auto to = localPath(target);
        const auto at = localPath(linkPath);
        const XeResult free = at ? _isFree(*at, kXeFileOperationFailed) : kXeFileOperationFailed;
        if (free < 0 || !to) {
            return free < 0 ? free : kXeFileOperationFailed;
        }
        boost::system::error_code error;
        if (symbolic) {
            bfs::create_symlink(*to, *at, error);
        } else {
            bfs::create_hard_link(*to, *at, error);
        }
        return error ? kXeFileOperationFailed : kXeOk;
    });
}

} // namespace XeFileSystem
