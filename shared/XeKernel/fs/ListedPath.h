#pragma once

#include "XeString.h"

#include <string_view>

/// Path of an entry of a folder, as listings give it: the folder's text in front.
/// @param name  Wide, or bytes.
_XeString<wchar_t> listedPath(std::wstring_view folder, std::wstring_view name);
_XeString<wchar_t> listedPath(std::wstring_view folder, std::string_view name);

/// True for a name by which its item hides. Bytes.
inline bool isHiddenName(std::string_view name) { return name.starts_with('.'); }
