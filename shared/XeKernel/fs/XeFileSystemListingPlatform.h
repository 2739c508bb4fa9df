#pragma once

#include "XeFileSystem.h"
#include "fs/FolderReader.h"

#include <functional>

namespace XeFileSystem {

// What the listings ask of the local file system. None throws but for want of memory and, on macOS,
// Foundation's exceptions.

/// An entry that a browser shows.
struct _BrowsedItem {
    _XeString<wchar_t>& path; ///< May be moved from.
    int folder;               ///< And `name`: the entry as openat(2) takes it.
    const char* name;
};
using _TakeBrowsed = std::function<void(const _BrowsedItem&)>;

/// Hands out what a browser shows of a folder, as BrowsableRules.h has it. The paths begin with
/// that of the folder without links.
/// @param filesOnly  The files, else the folders.
/// @param take       Called also for what was found before a failure.
/// @return           As getBrowsableSubFolders.
XeResult _browseFolder(_XeString<wchar_t> const& path, bool filesOnly, const _TakeBrowsed& take);

/// True when an entry carries its system's mark for what file managers do not show.
/// @param folder  At that entry.
bool _hasHiddenMark(const FolderReader& folder, const FolderEntry& entry);

} // namespace XeFileSystem
