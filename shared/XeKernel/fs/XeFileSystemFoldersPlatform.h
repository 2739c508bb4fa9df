#pragma once

#include "XeFileSystem.h"

#include <algorithm>
#include <cstddef>

namespace XeFileSystem {

// getSysFolder and getSysAppFolder, but for what they throw: want of memory, and Foundation's
// exceptions.
XeResult _getSysFolder(_XeString<wchar_t>& out, ESysFolder folder);
XeResult _getSysAppFolder(_XeString<wchar_t>& out, ESysFolder folder, wchar_t const* appName,
                          bool create, bool appendVersion, int major, int minor);

/// The row of a folder in a table; null when it has none.
template <typename Row, std::size_t count>
const Row* _rowOf(const Row (&rows)[count], ESysFolder folder)
{
    const Row* const found =
        std::find_if(rows, rows + count, [folder](const Row& row) { return row.folder == folder; });
    return found == rows + count ? nullptr : found;
}

/// Asks the system for a folder other than home, with '/' at the end. What lies in the user's
/// library is answered with the library itself.
/// @return  As getSysFolder.
XeResult _findSysFolder(_XeString<wchar_t>& out, ESysFolder folder);

// The public functions of these names.
XeResult _getExecutablePath(_XeString<wchar_t>& out);
XeResult _getExecutableFolder(_XeString<wchar_t>& out);
XeResult _getResourceFolder(_XeString<wchar_t>& out);
XeResult _getExecutableName(_XeString<wchar_t>& out);

} // namespace XeFileSystem
