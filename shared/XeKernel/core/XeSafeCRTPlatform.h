#pragma once

namespace XeCRT {

/// Name of the locale whose LC_CTYPE category is UTF-8 and nothing else. A constant of the system.
const char* _characterTypeLocale() noexcept;

} // namespace XeCRT
