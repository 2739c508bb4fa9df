#pragma once

#include "XePath.h"

#include <string_view>

namespace xenon::normalize {

/// True when every character is below the first one that the form could change, so that the text
/// is its own normal form.
bool _isPlain(std::wstring_view text, form target);

/// normalize for a text that is not empty.
_XeString<wchar_t> _normalize(const _XeString<wchar_t>& text, form target);

} // namespace xenon::normalize
