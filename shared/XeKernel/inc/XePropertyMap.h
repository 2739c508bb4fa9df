#pragma once

#include "XeString.h"
#include "detail/XeProperty.h"

#include <map>

/// Where settings are stored by name: an ordered map from a key to a typed number.
///
///     XePropertyMap map;
///     map.insert({L"dTempo", 120.0});
///     map.insert({L"dTempo", 90.0});    // the key is there: 120 stays
///     map[L"dTempo"].GetValue<double>();  // 120
///     map[L"missing"].GetValue<int>();    // 0, and an empty entry "missing" stays in the map
///
/// Keys are unique and in the order of the string's less-than. How a map reaches a file is up to
/// its owner. No locking. [any]
using XePropertyMap = std::map<_XeString<wchar_t>, XeProperty>;
