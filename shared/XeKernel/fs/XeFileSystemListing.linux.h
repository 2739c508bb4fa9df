#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemListingPlatform.h"

#include <string_view>

namespace XeFileSystem {

/// Tells by a folder's name, in bytes, whether it is a package. Linux knows no packages; another
/// rule shows how a listing treats them.
using PackageRule = bool (*)(std::string_view name);

/// _browseFolder under a rule for packages.
XeResult browseFolder(_XeString<wchar_t> const& path, bool filesOnly, PackageRule isPackage,
                      const _TakeBrowsed& take);

} // namespace XeFileSystem
