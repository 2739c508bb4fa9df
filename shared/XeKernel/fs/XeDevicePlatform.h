#pragma once

#include "XeFileSystem.h"

#include <optional>
#include <string_view>

namespace XeDevice {

/// The media type of a reader of the product family; nothing for other devices. [any]
/// @param vendor  As the device tells it: blanks at the end, and '_' for blanks, do not count.
std::optional<EVolumeMediaType> _readerType(std::string_view vendor, std::string_view model);

} // namespace XeDevice
