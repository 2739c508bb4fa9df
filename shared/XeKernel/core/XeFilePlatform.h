#pragma once

#include <cstdio>

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
