#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "XeFileSystem.h"

#include <string_view>

namespace XeFileSystem {

/// Tells by a folder's name, in bytes, whether it is a package. Linux knows no packages; another
/// rule shows how a listing treats them.
using PackageRule = bool (*)(std::string_view name);

/// _getBrowsableContentsInFolder under a rule for packages.
XeResult listBrowsable(_XeString<wchar_t> const& path, std::vector<_XeString<wchar_t>>& out,
                       bool filesOnly, PackageRule isPackage);

} // namespace XeFileSystem
