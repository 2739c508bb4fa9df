#pragma once

#include "XeFileSystem.h"

namespace XeFileSystem {

/// moveFileToTrash for an item of either kind. Throws for want of memory and, on macOS,
/// Foundation's exceptions.
/// @param path  Not empty.
XeResult _moveItemToTrash(wchar_t const* path);

} // namespace XeFileSystem
