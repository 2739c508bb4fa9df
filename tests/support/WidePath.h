#pragma once

#include "XeNativePath.h"

#include <filesystem>

/// A path as text of the kernel.
inline _XeString<wchar_t> wide(const std::filesystem::path& path)
{
    return xenon::path::fromNative(path.native());
}
