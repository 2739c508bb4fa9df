#pragma once

#include "XeResult.h"
#include "XeString.h"

namespace XeFileSystem {

/// Tells where the volume that holds `path` is mounted, links followed. A path that does not exist
/// counts as its nearest parent that does.
/// @return  0; kXeGeneralFailure when the system does not tell, which leaves `mountPoint` alone.
XeResult getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint);

} // namespace XeFileSystem
