#pragma once

#include "XeString.h"

#include <vector>

/// Derives the two channel names of a stereo port or bus. [any]
///
///     "Output"      -> "Output 1",      "Output 2"
///     "Main Stereo" -> "Main Stereo L", "Main Stereo R"
///     "Main L"      -> "Main L",        "Main R"
///     "Line 1/2"    -> "Line 1",        "Line 2"
///     "In 1516"     -> "In 15",         "In 16"
///
/// The base name is the name's words, each followed by one blank, without the words that are just
/// "L". Behind it stands the suffix: "L" and "R" when there were such words or when the name
/// contains "stereo", "phones", "spdif" or "s/pdif" in any letter case, else "1" and "2".
///
/// A name that counts its channels itself has no suffix. That is one with exactly two numbers, the
/// second one above the first, or with one run of an even number of digits whose halves are such
/// numbers. Each channel name then has its own number, as it is written, in place of both and what
/// is between them.
///
/// @param left   May be `name` itself, as may `right`.
void XeChannelizeStereoName(const _XeString<wchar_t>& name, _XeString<wchar_t>& left,
                            _XeString<wchar_t>& right);

/// Gives each of `count` channels of a port or bus a name of its own. [any]
///
///     "Line", 3     -> "Line 1", "Line 2", "Line 3"
///     "Line 5", 8   -> "Line 5 - 1", ... "Line 5 - 8"
///     "Line 50", 8  -> "Line 50 1", ... "Line 50 8"
///     "Line", 1     -> "Line"
///     "Line", 2     -> as by XeChannelizeStereoName
///
/// Blanks around the name are dropped. A dash goes before the numbers when the name's last word is
/// a number, from 1 to `count` + 1, that could be mistaken for a channel's.
///
/// @param names  Replaced by `count` names.
void XeGenerateUniqueChannelNames(const _XeString<wchar_t>& name, unsigned count,
                                  std::vector<_XeString<wchar_t>>& names);
