#pragma once

#include "XeFileSystem.h"

#include <vector>

namespace XeFileSystem {

// zipFolder and unzipArchive, but for what they throw.
XeResult _zipFolder(wchar_t const* folder, wchar_t const* archive, bool junkPaths);
XeResult _unzipArchive(wchar_t const* archive, wchar_t const* destination, bool junkPaths);

/// Path of the tool that takes an archive out: that of the system, and for one of 4 GiB and more
/// the one that is shipped with the program, if it is.
_XeString<wchar_t> _getUnzipUrl(wchar_t const* archive);

/// Runs a program to its end, with nothing to read and nobody to ask.
/// @param arguments  The program's absolute path first.
/// @param folder     Its working folder.
/// @return           The exit status; -1 when it did not start or did not end by itself.
int _runTool(const std::vector<_XeString<wchar_t>>& arguments, const _XeString<wchar_t>& folder);

/// The folder that holds "Contents": the main bundle, on Linux the executable's folder. Empty when
/// the system does not tell.
_XeString<wchar_t> _programFolder();

} // namespace XeFileSystem
