#include "fs/XeFileSystemVolumesPlatform.h"

#include "XeDevice.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"

namespace XeFileSystem {
namespace {

constexpr wchar_t kVolumesFolder[] = L"/Volumes/";

/// Files of a tape can be read from their beginning only, at the price of winding.
constexpr char kTape[] = "ltfs";

XeResult _getFormat(wchar_t const* path, EFileSystem& format)
{
    std::string name;
    if (const XeResult result = _getFileSystemName(path, name); result < 0) {
        if (!RemoteVolume(path)) {
            return result;
        }
        format = kFileSystemRemote;
        return kXeOk;
    }
    format = formatOfTypeName(name).value_or(format);
    _XeString<wchar_t> root;
    if (name == "smbfs" && _getVolumeMountPoint(path, root) >= 0 && holdsDiscStructure(root)) {
        format = kFileSystemDiscShare;
    }
    return kXeOk;
}

bool _isSeekable(const _XeString<wchar_t>& path)
{
    _XeString<wchar_t> root;
    std::string name;
    return !RemoteVolume(path) && _getVolumeMountPoint(path, root) >= 0 &&
           _getFileSystemName(root.c_str(), name) >= 0 && name != kTape;
}

XeResult _getVolumes(std::vector<_XeString<wchar_t>>& volumes, unsigned filter)
{
    const auto listed = _listVolumes();
    for (const ListedVolume& volume : listed.value_or(std::vector<ListedVolume>())) {
        if ((filter & filterBitOf(volume.type)) != 0) {
            volumes.push_back(volume.mountPoint);
        }
    }
    return listed ? kXeOk : kXeGeneralFailure;
}

bool _liesBelow(std::wstring_view path, std::wstring_view folder)
{
    folder = withoutEndingSeparators(folder);
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder == L"/" || path[folder.size()] == L'/');
}

XeResult _getSubVolumes(const _XeString<wchar_t>& path, std::vector<_XeString<wchar_t>>& volumes)
{
    const auto folder = _withoutLinks(path);
    const auto listed = _listVolumes();
    if (!listed) {
        return kXeGeneralFailure;
    }
    for (const ListedVolume& volume : *listed) {
        if (folder && _liesBelow(volume.mountPoint, *folder)) {
            volumes.push_back(volume.mountPoint);
        }
    }
    return kXeOk;
}

} // namespace

XeResult _getVolumeMediaType(wchar_t const* path, EVolumeMediaType& type)
{
    type = kVolumeUnknown;
    const auto traits = _readVolumeTraits(path);
    if (!traits) {
        return kXeGeneralFailure;
    }
    type = mediaTypeOf(*traits);
    return isRefinedByDevice(type) ? XeDevice::getUSBDeviceType(path, type) : kXeOk;
}

XeResult _getVolumeName(wchar_t const* path, _XeString<wchar_t>& name)
{
    const std::wstring_view text = path;
    static const std::size_t kVolumesLength = std::wstring_view(kVolumesFolder).size();
    const std::size_t length =
        text.starts_with(kVolumesFolder) ? kVolumesLength : _volumeFolderLength(text);
    name = _XeString<wchar_t>(volumeNameOf(text, length));
    return kXeOk;
}

XeResult getFileSystemFormat(wchar_t const* path, EFileSystem& format)
{
    return noThrow(kXeGeneralFailure, [&] { return _getFormat(givenText(path), format); });
}

XeResult getVolumeMediaType(wchar_t const* path, EVolumeMediaType& type)
{
    return noThrow(kXeGeneralFailure, [&] { return _getVolumeMediaType(givenText(path), type); });
}

XeResult getVolumeName(wchar_t const* path, _XeString<wchar_t>& name)
{
    return noThrow(kXeGeneralFailure, [&] { return _getVolumeName(givenText(path), name); });
}

XeResult getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint)
{
    return noThrow(kXeGeneralFailure, [&] { return _getVolumeMountPoint(path, mountPoint); });
}

XeResult getVolumeSpace(wchar_t const* path, unsigned long long& free, unsigned long long& total)
{
    const auto space =
        noThrow(std::optional<VolumeSpace>(), [&] { return _readVolumeSpace(givenText(path)); });
    if (space) { // the caller's own values need not be set
        free = space->free;
        total = space->total;
    }
    return space ? kXeOk : kXeGeneralFailure;
}

unsigned long long getFreeSpace(wchar_t const* path)
{
    unsigned long long free = 0;
    unsigned long long total = 0;
    getVolumeSpace(path, free, total);
    return free;
}

XeResult isVolumeWritable(_XeString<wchar_t> const& path, bool& writable)
{
    const auto readOnly =
        noThrow(std::optional<bool>(), [&] { return _isVolumeReadOnly(path.c_str()); });
    if (readOnly) {
        writable = !*readOnly;
    }
    return readOnly ? kXeOk : kXeGeneralFailure;
}

bool isSeekableVolume(_XeString<wchar_t> const& path)
{
    return noThrow(false, [&] { return _isSeekable(path); });
}

void GetVolumes(std::vector<_XeString<wchar_t>>& volumes, unsigned int filter)
{
    volumes.clear();
    noThrow(kXeGeneralFailure, [&] { return _getVolumes(volumes, filter); });
}

XeResult getSubVolumes(_XeString<wchar_t> const& path, std::vector<_XeString<wchar_t>>& volumes)
{
    volumes.clear();
    return noThrow(kXeGeneralFailure, [&] { return _getSubVolumes(path, volumes); });
}

XeResult getDisplayName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name)
{
    return noThrow(kXeGeneralFailure, [&] { return _getDisplayName(path, name); });
}

XeResult mountableShareVolume(wchar_t const* path, _XeString<wchar_t>& url)
{
    return noThrow(kXeGeneralFailure, [&] { return _mountableShareVolume(givenText(path), url); });
}

} // namespace XeFileSystem
