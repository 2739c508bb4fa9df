#include "XeFileSystem.h"

#include "XeFileSystemManager.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"

#include <boost/filesystem/operations.hpp>

#include <string_view>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using bfs::file_type;
using xenon::network::IFileSystem;

/// A path without the '/' and "/." at its end, by which the system would follow a link.
std::string _itself(std::string path)
{
    const auto endsIn = [&](std::string_view end) {
        return path.size() > end.size() && std::string_view(path).ends_with(end);
    };
    while (endsIn("/") || endsIn("/.")) {
        path.pop_back();
    }
    return path;
}

XeResult _deleteLocalFile(wchar_t const* path)
{
    const auto bytes = localPath(path);
    boost::system::error_code error;
    const bool deleted = bytes &&
                         bfs::symlink_status(*bytes, error).type() != file_type::directory_file &&
                         bfs::remove(*bytes, error);
    return deleted ? kXeOk : kXeGeneralFailure;
}

/// With `onlyIfEmpty` what has come into the folder since it was looked at is safe.
XeResult _deleteLocalFolder(wchar_t const* path, bool onlyIfEmpty)
{
    if (!isFolderPresent(path)) {
        return kXeOk;
    }
    stopWatchingFolder(path);
    if (onlyIfEmpty && !isFolderEmpty(path)) {
        return kXeOk;
    }
    const std::string folder = _itself(localPath(path).value());
    boost::system::error_code error;
    if (onlyIfEmpty) {
        bfs::remove(folder, error);
    } else {
        bfs::remove_all(folder, error);
    }
    const bool filled = onlyIfEmpty && error == boost::system::errc::directory_not_empty;
    return filled || !isFolderPresent(path) ? kXeOk : kXeGeneralFailure;
}

XeResult _deleteRemoteFolder(const RemoteVolume& remote, wchar_t const* path, bool onlyIfEmpty)
{
    bool empty = false;
    const XeResult looked = remote.call(&IFileSystem::isFolderEmpty, path, empty);
    if (looked < 0) {
        return looked == kXeRemoteVolumeGone ? looked : kXeOk;
    }
    stopWatchingFolder(path);
    if (onlyIfEmpty && !empty) {
        return kXeOk;
    }
    const XeResult result = remote.call(&IFileSystem::deleteFolder, path);
    return result >= 0 && isFolderPresent(path) ? kXeGeneralFailure : result;
}

} // namespace

XeResult deleteFile(wchar_t const* path)
{
    return noThrow(kXeGeneralFailure, [&] {
        const RemoteVolume remote(path);
        return remote ? remote.call(&IFileSystem::deleteFile, path) : _deleteLocalFile(path);
    });
}

XeResult deleteFile(_XeString<wchar_t> const& path) { return deleteFile(path.c_str()); }

XeResult deleteFolder(wchar_t const* path, bool onlyIfEmpty)
{
    return noThrow(kXeGeneralFailure, [&] {
        const RemoteVolume remote(path);
        return remote ? _deleteRemoteFolder(remote, path, onlyIfEmpty)
                      : _deleteLocalFolder(path, onlyIfEmpty);
    });
}

XeResult deleteEmptyFolders(wchar_t const* path, bool includeSelf)
{
    return noThrow(kXeGeneralFailure, [&] {
        if (!isFolderPresent(path)) {
            return kXeOk;
        }
        std::vector<_XeString<wchar_t>> folders;
        XeResult result = getSubFolders(path, true, folders);
        if (includeSelf) {
            folders.emplace_back(path);
        }
        for (const auto& folder : folders) {
            const bool empty = isFolderEmpty(folder);
            const XeResult deleted = empty ? deleteFolder(folder.c_str(), true) : kXeOk;
            result = result < 0 ? result : deleted;
        }
        return result;
    });
}

} // namespace XeFileSystem
