#pragma once

#include <string_view>

/// True when a name is one that a pattern stands for: '*' is any text, also none, '?' any one
/// character, and every other character itself.
///
/// The time is bounded by the product of both lengths, whatever the pattern. [any]
bool matchesWildcard(std::wstring_view name, std::wstring_view pattern);
