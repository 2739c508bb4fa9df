#pragma once

#include "host/effect/Recording.h"

#include <string>

namespace host {

/// What a recording is, for people: "48 kHz  ·  Stereo  ·  16 bit  ·  0:06.200  ·  FLAC".
std::string describeRecording(const Recording& recording);

/// The last part of a recording's path as text for people, without quotes.
std::string displayName(const Recording& recording);

/// A length as minutes, seconds and milliseconds, with hours from one on: "1:02:03.004".
/// @param seconds  0 or more, rounded to the millisecond.
std::string clockText(double seconds);

} // namespace host
