#pragma once

#include "text/NumericStyle.h"

#include <string_view>

/// The parts of xenon::util::myatof, for texts that are read without being changed.

/// Tabs and spaces surround a number.
inline bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

/// The text without tabs and spaces in front.
std::wstring_view withoutLead(std::wstring_view text);

/// The text without tabs, spaces and percent signs at its end.
std::wstring_view withoutTail(std::wstring_view text);

/// Reads a number up to the first character that is not part of it, as xenon::util::myatof reads
/// what is left when lead and tail are gone.
///
/// @param out  The number.
/// @return     Where reading stopped, within `text` or at its end.
const wchar_t* readUpToOther(const NumericStyle& style, std::wstring_view text, double& out);
