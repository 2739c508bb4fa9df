#include "fs/VolumeRules.h"

#include <algorithm>
#include <unordered_map>

namespace XeFileSystem {
namespace {

// clang-format off
/// By the name that the kernel gives the type of a mount; on Linux as the twin translates it.
const std::unordered_map<std::string_view, EFileSystem> kFormats = {
    {"msdos",        kFileSystemMsdos},
    {"exfat",        kFileSystemExfat},
    {"udf",          kFileSystemUdf},
    {"hfs",          kFileSystemHfs},
    {"smbfs",        kFileSystemNetworkShare},
    {"afpfs",        kFileSystemNetworkShare},
    {"nfs",          kFileSystemNfs},
    {"ufs",          kFileSystemUfs},
    // the vendor's own media, by the file systems of its recorders and drives
    {"vantadisc",    kFileSystemVendorDisc},
    {"vantacard",    kFileSystemVendorCard},
    {"vantacardx",   kFileSystemVendorCard},          // the same for cards above 2 TB
    {"vantadiscdl",  kFileSystemVendorDualLayerDisc},
    {"vantaarchive", kFileSystemVendorArchiveDisc},
    {"vantapack",    kFileSystemVendorMemoryPack},
};

/// A folder of an optical disc and the file without which it is none.
constexpr struct { const wchar_t* folder; const wchar_t* index; } kDiscStructures[] = {
    {L"VIDEO_TS", L"VIDEO_TS.IFO"},
    {L"BDMV",     L"index.bdmv"},
    {L"AUDIO_TS", L"AUDIO_TS.IFO"},
};
// clang-format on

} // namespace

std::optional<EFileSystem> formatOfTypeName(std::string_view name)
{
    const auto found = kFormats.find(name);
    return found == kFormats.end() ? std::nullopt : std::optional(found->second);
}

bool holdsDiscStructure(_XeString<wchar_t> const& folder)
{
    const _XeString<wchar_t> root(withoutEndingSeparators(folder));
    for (const auto& structure : kDiscStructures) {
        if (isFilePresent(root + L'/' + structure.folder + L'/' + structure.index)) {
            return true;
        }
    }
    return false;
}

EVolumeMediaType mediaTypeOf(const VolumeTraits& traits)
{
    if (!traits.local) {
        return kVolumeNetwork;
    }
    if (traits.removable || traits.ejectable) {
        return kVolumeRemovable;
    }
    return traits.internal ? kVolumeInternal : kVolumeUnknown;
}

bool isRefinedByDevice(EVolumeMediaType type)
{
    return type == kVolumeRemovable || type == kVolumeInternal;
}

EVolumeFilter filterBitOf(EVolumeMediaType type)
{
    switch (type) {
    case kVolumeInternal:
    case kVolumeUnknown:
        return kVolumesLocal;
    case kVolumeNetwork:
        return kVolumesNetwork;
    default:
        return kVolumesRemovable;
    }
}

std::wstring_view volumeNameOf(std::wstring_view path, std::size_t prefixLength)
{
    const std::size_t slash = path.find(L'/', prefixLength);
    return slash == std::wstring_view::npos ? path : path.substr(0, slash + 1);
}

std::size_t prefixLength(std::wstring_view path, std::wstring_view pattern)
{
    std::size_t at = 0;
    for (const wchar_t expected : pattern) {
        if (expected == L'*') {
            const std::size_t begin = at;
            at = std::min(path.find(L'/', at), path.size());
            if (at == begin) {
                return 0;
            }
        } else if (at == path.size() || path[at++] != expected) {
            return 0;
        }
    }
    return at;
}

std::wstring_view withoutEndingSeparators(std::wstring_view path)
{
    while (path.size() > 1 && path.back() == L'/') {
        path.remove_suffix(1);
    }
    return path;
}

std::wstring_view lastName(std::wstring_view path)
{
    path = withoutEndingSeparators(path);
    return path == L"/" ? path : path.substr(path.find_last_of(L'/') + 1);
}

} // namespace XeFileSystem
