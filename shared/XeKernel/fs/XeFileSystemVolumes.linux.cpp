#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemVolumesPlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/LocalItem.h"
#include "fs/MountedVolume.linux.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>

namespace XeFileSystem {
namespace {

std::optional<Mount> _mountOf(wchar_t const* path)
{
    const auto place = findPlace(nativePath(path));
    return place ? findMount(*place) : std::nullopt;
}

/// Status of the volume of a path or of its nearest parent that exists.
std::optional<struct statvfs> _volumeStatus(wchar_t const* path)
{
    const auto place = findNearestPlace(nativePath(path));
    struct statvfs status {};
    return place && statvfs(place->path.c_str(), &status) == 0 ? std::optional(status)
                                                               : std::nullopt;
}

} // namespace

// The mount is known of a volume that does not answer any more, too; that one has no name.
XeResult _getFileSystemName(wchar_t const* path, std::string& name)
{
    name.clear();
    struct statfs status {};
    const auto mount =
        statfs(nativePath(path).c_str(), &status) == 0 ? _mountOf(path) : std::nullopt;
    if (!mount) {
        return kXeGeneralFailure;
    }
    name = mountedVolume::typeName(*mount);
    return kXeOk;
}

std::optional<VolumeTraits> _readVolumeTraits(wchar_t const* path)
{
    const auto mount = _mountOf(path);
    return mount ? std::optional(mountedVolume::traits(*mount)) : std::nullopt;
}

std::size_t _volumeFolderLength(std::wstring_view path)
{
    for (const wchar_t* const folder : {L"/media/*/", L"/run/media/*/", L"/mnt/"}) {
        if (const std::size_t length = prefixLength(path, folder); length != 0) {
            return length;
        }
    }
    return 0;
}

XeResult _getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint)
{
    const auto place = findNearestPlace(nativePath(path.c_str()));
    if (!place) {
        return kXeGeneralFailure;
    }
    mountPoint = xenon::path::fromNative(mountPointOf(*place));
    return kXeOk;
}

std::optional<VolumeSpace> _readVolumeSpace(wchar_t const* path)
{
    const auto status = _volumeStatus(path);
    return status ? std::optional(VolumeSpace{status->f_bavail * status->f_frsize,
                                              status->f_blocks * status->f_frsize})
                  : std::nullopt;
}

std::optional<bool> _isVolumeReadOnly(wchar_t const* path)
{
    const auto status = _volumeStatus(path);
    return status ? std::optional((status->f_flag & ST_RDONLY) != 0) : std::nullopt;
}

std::optional<std::vector<ListedVolume>> _listVolumes()
{
    const auto table = MountTable::read();
    if (!table) {
        return std::nullopt;
    }
    std::vector<ListedVolume> volumes;
    for (const Mount& mount : mountedVolume::userMounts(*table)) {
        volumes.push_back(
            {xenon::path::fromNative(mount.point), mediaTypeOf(mountedVolume::traits(mount))});
    }
    return volumes;
}

std::optional<_XeString<wchar_t>> _withoutLinks(_XeString<wchar_t> const& path)
{
    const auto place = findPlace(nativePath(path.c_str()));
    return place ? std::optional(xenon::path::fromNative(place->path)) : std::nullopt;
}

XeResult _getDisplayName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name)
{
    const _XeString<wchar_t> item(withoutEndingSeparators(path));
    const std::string bytes = nativePath(item.c_str());
    struct stat status {};
    if (lstat(bytes.c_str(), &status) != 0) {
        return kXeGeneralFailure;
    }
    const auto mount = isMountPoint(bytes) ? _mountOf(item.c_str()) : std::nullopt;
    name = mount ? xenon::path::fromNative(mountedVolume::displayName(*mount))
                 : _XeString<wchar_t>(lastName(item));
    return kXeOk;
}

XeResult _mountableShareVolume(wchar_t const* path, _XeString<wchar_t>& share)
{
    const auto place = findNearestPlace(nativePath(path));
    const auto mount = place ? findMount(*place) : std::nullopt;
    const std::string url = mount ? mountedVolume::shareUrl(*mount) : std::string();
    if (url.empty()) {
        return kXeGeneralFailure;
    }
    share = xenon::path::fromNative(url);
    return kXeOk;
}

} // namespace XeFileSystem
