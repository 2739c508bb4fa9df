#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemVolumesPlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"
#include "fs/LocalItem.h"

#import <Foundation/Foundation.h>

#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace XeFileSystem {
namespace {

std::optional<struct statfs> _record(const std::optional<std::string>& path)
{
    struct statfs volume;
    return path && statfs(path->c_str(), &volume) == 0 ? std::optional(volume) : std::nullopt;
}

/// The record of the volume of a path or of its nearest parent that exists.
std::optional<struct statfs> _nearestRecord(wchar_t const* path)
{
    auto bytes = localPath(path);
    while (bytes && !bytes->empty()) {
        if (const auto volume = _record(bytes)) {
            return volume;
        }
        if (errno != ENOENT || *bytes == "/") {
            return std::nullopt;
        }
        const std::size_t slash = bytes->find_last_of('/');
        bytes->resize(slash == 0 ? 1 : slash == std::string::npos ? 0 : slash);
    }
    return std::nullopt;
}

/// The URL of an item; nil for text that Foundation cannot take.
NSURL* _urlOf(wchar_t const* path)
{
    NSString* const text = _foundationText(path);
    return [text length] == 0 ? nil : [NSURL fileURLWithPath:text];
}

/// All mounts, in the order of the system, without asking any of them.
std::vector<struct statfs> _mounts()
{
    std::vector<struct statfs> mounts;
    int count = getfsstat(nullptr, 0, MNT_NOWAIT);
    while (count > 0 && std::cmp_greater_equal(count, mounts.size())) {
        mounts.resize(static_cast<std::size_t>(count) + 1); // one may come meanwhile
        count = getfsstat(mounts.data(), static_cast<int>(mounts.size() * sizeof mounts.front()),
                          MNT_NOWAIT);
    }
    mounts.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return mounts;
}

} // namespace

XeResult _getFileSystemName(wchar_t const* path, std::string& name)
{
    name.clear();
    const auto volume = _record(localPath(path));
    if (!volume) {
        return kXeGeneralFailure;
    }
    name = volume->f_fstypename;
    return kXeOk;
}

std::optional<VolumeTraits> _readVolumeTraits(wchar_t const* path)
{
    @autoreleasepool {
        NSURL* const url = _urlOf(path);
        VolumeTraits traits;
        const std::array<std::pair<NSString*, bool*>, 4> values = {{
            {NSURLVolumeIsInternalKey, &traits.internal},
            {NSURLVolumeIsLocalKey, &traits.local},
            {NSURLVolumeIsRemovableKey, &traits.removable},
            {NSURLVolumeIsEjectableKey, &traits.ejectable},
        }};
        for (const auto& [key, trait] : values) {
            NSNumber* value = nil;
            if (![url getResourceValue:&value forKey:key error:nullptr]) {
                return std::nullopt;
            }
            *trait = [value boolValue] != NO;
        }
        return traits;
    }
}

// All volumes but the root are below "/Volumes/".
std::size_t _volumeFolderLength(std::wstring_view) { return 0; }

XeResult _getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint)
{
    const auto volume = _nearestRecord(path.c_str());
    if (!volume) {
        return kXeGeneralFailure;
    }
    mountPoint = xenon::path::fromNative(volume->f_mntonname);
    return kXeOk;
}

std::optional<VolumeSpace> _readVolumeSpace(wchar_t const* path)
{
    const auto volume = _nearestRecord(path);
    return volume ? std::optional(VolumeSpace{volume->f_bavail * volume->f_bsize,
                                              volume->f_blocks * volume->f_bsize})
                  : std::nullopt;
}

std::optional<bool> _isVolumeReadOnly(wchar_t const* path)
{
    const auto volume = _nearestRecord(path);
    return volume ? std::optional((volume->f_flags & MNT_RDONLY) != 0) : std::nullopt;
}

// What the system mounts for itself is marked as not for browsing.
std::optional<std::vector<ListedVolume>> _listVolumes()
{
    const std::vector<struct statfs> mounts = _mounts();
    std::vector<ListedVolume> volumes;
    for (const struct statfs& mount : mounts) {
        if ((mount.f_flags & MNT_DONTBROWSE) == 0) {
            auto point = xenon::path::fromNative(mount.f_mntonname);
            const auto traits = _readVolumeTraits(point.c_str());
            volumes.push_back({std::move(point), traits ? mediaTypeOf(*traits) : kVolumeUnknown});
        }
    }
    return mounts.empty() ? std::nullopt : std::optional(volumes);
}

std::optional<_XeString<wchar_t>> _withoutLinks(_XeString<wchar_t> const& path)
{
    const auto bytes = localPath(path.c_str());
    std::array<char, PATH_MAX> real;
    return bytes && realpath(bytes->c_str(), real.data()) != nullptr
               ? std::optional(xenon::path::fromNative(real.data()))
               : std::nullopt;
}

XeResult _getDisplayName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name)
{
    @autoreleasepool {
        const auto bytes = localPath(path.c_str());
        struct stat status;
        if (!bytes || lstat(bytes->c_str(), &status) != 0) {
            return kXeGeneralFailure;
        }
        NSString* const shown =
            [[NSFileManager defaultManager] displayNameAtPath:_foundationText(path)];
        name = [shown length] == 0 ? _XeString<wchar_t>(lastName(path)) : _wideText(shown);
        return kXeOk;
    }
}

XeResult _mountableShareVolume(wchar_t const* path, _XeString<wchar_t>& share)
{
    @autoreleasepool {
        _XeString<wchar_t> mountPoint;
        NSURL* url = nil;
        if (_getVolumeMountPoint(path, mountPoint) < 0 ||
            ![_urlOf(mountPoint.c_str()) getResourceValue:&url
                                                   forKey:NSURLVolumeURLForRemountingKey
                                                    error:nullptr] ||
            [[url absoluteString] length] == 0) {
            return kXeGeneralFailure;
        }
        share = _wideText([url absoluteString]);
        return kXeOk;
    }
}

} // namespace XeFileSystem
