#pragma once

#include <boost/filesystem/file_status.hpp>

#include <cstdint>
#include <optional>
#include <string>

// What the local file system itself says of a path, also on the mount point of a remote volume.
// The functions throw nothing but for want of memory. [any]

/// A path as the system takes it; nothing for null, for the empty path and for one that no item can
/// have.
std::optional<std::string> localPath(wchar_t const* path);

/// The same with the empty path, which leads nowhere, where there is none.
inline std::string nativePath(wchar_t const* path)
{
    return localPath(path).value_or(std::string());
}

/// A text argument; null counts as the empty text.
inline wchar_t const* givenText(wchar_t const* text) { return text == nullptr ? L"" : text; }

/// Type of what a path leads to, links followed; an error for a path that names nothing.
boost::filesystem::file_type localType(wchar_t const* path);

/// Size of a regular file in bytes, links followed; nothing when there is none.
std::optional<std::int64_t> localSize(wchar_t const* path);
