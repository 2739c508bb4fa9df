#pragma once

#include "XeFileSystem.h"

#include <sys/types.h>

#include <cstdint>

namespace XeFileSystem {

// What the functions of the tests and times ask of the local file system. None throws but for want
// of memory and, on macOS, Foundation's exceptions.

/// When an item was created and last modified.
struct _ItemTimes {
    tFileTime created; ///< `modified` where the file system does not keep it.
    tFileTime modified;
};

/// What the system tells of an item at once, links followed.
struct _ItemStatus {
    mode_t mode = 0;
    std::int64_t size = 0;
    _ItemTimes times;
    bool link = false;         ///< The item itself is a link.
    bool markedHidden = false; ///< As _isMarkedHidden.
    bool locked = false;       ///< As _isFileLocked.
};

/// Asks the system as rarely as it can: of an item that is no link, once.
/// @param folder  An open folder, or AT_FDCWD.
/// @param name    Of an entry of that folder, or a path.
/// @return        False when the item cannot be looked up, with errno.
bool _readStatus(int folder, const char* name, _ItemStatus& status);

/// True when the item itself carries its system's mark for what file managers do not show.
bool _isMarkedHidden(wchar_t const* path);

// The public functions of these names.
bool _isFileLocked(wchar_t const* path);
bool _setLockFile(wchar_t const* path, bool lock);

/// Links are followed.
/// @return  False when the item cannot be looked up, which leaves `times` alone.
bool _getTimes(wchar_t const* path, _ItemTimes& times);

/// getFileAttribute of an entry of a folder, or of a path, as for _readStatus.
/// @return  False with errno, which leaves `attribute` alone.
bool _readAttribute(int folder, const char* name, tFileAtrribute& attribute);

/// The public function of this name for a path that no remote volume serves.
bool _getStrictFileName(wchar_t const* path, _XeString<wchar_t>& name);

} // namespace XeFileSystem
