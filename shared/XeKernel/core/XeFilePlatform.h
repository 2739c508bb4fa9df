#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

/// A path as the system's calls take it: its bytes (xenon::path::toNative), on macOS in the
/// system's own spelling of composed characters.
/// @return  Nothing for a path that has characters no file name can have.
std::optional<std::string> _systemPath(std::wstring_view path);

/// Opens a stream on a path.
/// @param mode  As for fopen. Linux adds "e": child processes do not inherit the descriptor.
/// @return      Owned by the caller; null when the file cannot be opened, and for a path that has
///              characters no file name can have.
std::FILE* _fopenSystem(const wchar_t* path, const char* mode);

/// Gives an empty file its size. Linux reserves the blocks too; where it cannot, the call fails and
/// the size is undefined.
/// @param descriptor  Open for writing.
/// @param size        Bytes, above 0.
bool _setNewFileSize(int descriptor, long long size);
