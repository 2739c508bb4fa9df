#pragma once

#include "XeFileSystem.h"
#include "fs/FolderReader.h"

namespace XeFileSystem {

// What the listings ask of the local file system. None throws but for want of memory and, on macOS,
// Foundation's exceptions.

/// Lists what a browser shows of a folder, as BrowsableRules.h has it. The paths begin with that of
/// the folder without links.
/// @param filesOnly  The files, else the folders.
/// @param out        Keeps what was found before a failure.
/// @return           As getBrowsableSubFolders.
XeResult _getBrowsableContentsInFolder(_XeString<wchar_t> const& path,
                                       std::vector<_XeString<wchar_t>>& out, bool filesOnly);

/// True when an entry carries its system's mark for what file managers do not show.
/// @param folder  At that entry.
bool _hasHiddenMark(const FolderReader& folder, const FolderEntry& entry);

} // namespace XeFileSystem
