#pragma once

#include "XeFileSystem.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The rules of volumes that are the same on every system. [any]
namespace XeFileSystem {

/// What a system tells of a volume to decide its media type.
struct VolumeTraits {
    bool internal = false;
    bool local = false;
    bool removable = false;
    bool ejectable = false;
};

/// The format of a file-system type name; nothing for one that has none.
std::optional<EFileSystem> formatOfTypeName(std::string_view name);

/// True when the folder has the folders of an optical disc: a copy of one, or a disc that is
/// shared.
bool holdsDiscStructure(_XeString<wchar_t> const& folder);

/// The media type before the device refines it.
EVolumeMediaType mediaTypeOf(const VolumeTraits& traits);

/// True for a media type of which the device may know more.
bool isRefinedByDevice(EVolumeMediaType type);

/// The bit that selects volumes of a type; refined types count as removable.
EVolumeFilter filterBitOf(EVolumeMediaType type);

/// The volume that a path's text names.
/// @param prefixLength  Characters in front of the volume's own name; 0 when the path names none.
std::wstring_view volumeNameOf(std::wstring_view path, std::size_t prefixLength);

/// Length of a pattern at the front of a path; 0 when the path does not begin with it. A '*' in the
/// pattern stands for one name.
std::size_t prefixLength(std::wstring_view path, std::wstring_view pattern);

/// Text without the separators at its end; "/" stays.
std::wstring_view withoutEndingSeparators(std::wstring_view path);

/// What comes behind the last '/'; "/" for itself.
std::wstring_view lastName(std::wstring_view path);

} // namespace XeFileSystem
