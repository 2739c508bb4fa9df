#pragma once

#include "XeString.h"

#include <optional>
#include <string>
#include <string_view>

/// The one place where paths change between wide text and the bytes that the system takes.
///
/// Names on disk are bytes, mostly but not surely UTF-8. Text in UTF-8 (RFC 3629) is converted;
/// each other byte, 0x80 to 0xFF, becomes one of U+DC80 to U+DCFF and turns back into that byte. So
/// every name that the system lists can be shown, opened and deleted. Nothing is normalised. [any]
namespace xenon::path {

/// Bytes of the system as wide text. `toNative` of the result gives the same bytes again.
_XeString<wchar_t> fromNative(std::string_view bytes); // "a\xE9" -> L"a\xDCE9"

/// Wide text as bytes for the system; nothing when a character has none: a surrogate other than
/// U+DC80 to U+DCFF, or a number above 0x10FFFF. No file can have such a name.
std::optional<std::string> toNative(std::wstring_view path);

} // namespace xenon::path
