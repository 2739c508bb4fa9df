#pragma once

#include "fs/VolumeRules.h"

#include <optional>
#include <string>
#include <vector>

/// What the system tells of volumes. Paths that are looked up must exist, unless a function says
/// that a path counts as its nearest parent that does. These throw what memory and conversions
/// throw. [any]
namespace XeFileSystem {

/// Tells the name of a volume's file-system type, as the kernel has it on macOS. Linux translates
/// its own names to those: "msdos" for vfat, "smbfs" for cifs.
/// @return  0; kXeGeneralFailure, with an empty name, when the path cannot be looked up.
XeResult _getFileSystemName(wchar_t const* path, std::string& name);

/// Nothing when one of the traits cannot be told.
std::optional<VolumeTraits> _readVolumeTraits(wchar_t const* path);

/// getVolumeMediaType, without its catch.
XeResult _getVolumeMediaType(wchar_t const* path, EVolumeMediaType& type);

/// getVolumeName, without its catch.
XeResult _getVolumeName(wchar_t const* path, _XeString<wchar_t>& name);

/// Characters of the folder below which the system itself mounts volumes under their names, its
/// last '/' included; 0 when the path does not lie below one. "/Volumes/" is not among them.
std::size_t _volumeFolderLength(std::wstring_view path);

XeResult _getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint);

struct VolumeSpace {
    unsigned long long free = 0; ///< Bytes for a user without privileges.
    unsigned long long total = 0;
};

/// Of the nearest parent that exists.
std::optional<VolumeSpace> _readVolumeSpace(wchar_t const* path);

/// Of the nearest parent that exists.
std::optional<bool> _isVolumeReadOnly(wchar_t const* path);

struct ListedVolume {
    _XeString<wchar_t> mountPoint;
    EVolumeMediaType type = kVolumeUnknown; ///< Not refined.
};

/// The volumes a user can store files on; nothing when the mounts cannot be read.
std::optional<std::vector<ListedVolume>> _listVolumes();

/// Path without links; nothing when it cannot be looked up.
std::optional<_XeString<wchar_t>> _withoutLinks(_XeString<wchar_t> const& path);

XeResult _getDisplayName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name);
XeResult _mountableShareVolume(wchar_t const* path, _XeString<wchar_t>& url);

} // namespace XeFileSystem
