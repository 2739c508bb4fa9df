#pragma once

#include "XeFileSystem.h"

namespace XeFileSystem {

// getSysFolder and getSysAppFolder, but for what they throw: want of memory, and Foundation's
// exceptions.
XeResult _getSysFolder(_XeString<wchar_t>& out, ESysFolder folder);
XeResult _getSysAppFolder(_XeString<wchar_t>& out, ESysFolder folder, wchar_t const* appName,
                          bool create, bool appendVersion, int major, int minor);

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
