#pragma once

#include "XeFileSystem.h"

namespace XeFileSystem {

// What the functions of the tests and times ask of the local file system. None throws but for want
// of memory and, on macOS, Foundation's exceptions.

/// When an item was created and last modified.
struct _ItemTimes {
    tFileTime created; ///< `modified` where the file system does not keep it.
    tFileTime modified;
};

/// True when the item itself carries its system's mark for what file managers do not show.
bool _isMarkedHidden(wchar_t const* path);

// The public functions of these names.
bool _isFileLocked(wchar_t const* path);
bool _setLockFile(wchar_t const* path, bool lock);

/// Links are followed.
/// @return  False when the item cannot be looked up, which leaves `times` alone.
bool _getTimes(wchar_t const* path, _ItemTimes& times);

/// The public function of this name for a path that no remote volume serves.
bool _getStrictFileName(wchar_t const* path, _XeString<wchar_t>& name);

} // namespace XeFileSystem
