#pragma once

#include "XePosFmt.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

/// A position format as it is called on the command line.
struct LengthFormat {
    std::string_view name;
    _zqposfmt_format type;
    const char* example; // of 90 s and a bit, for people
};

/// The formats in which lengths can be typed and shown.
std::span<const LengthFormat> lengthFormats();

/// Format of that name, or null.
const LengthFormat* findLengthFormat(std::string_view name);

/// Measures and beats of a position count from one, those of a duration from zero.
enum class LengthKind { Duration, Position };

/// Reads a length that somebody typed.
///
///     readLength("1.5 s", {}, kind, 48000)                     // 72000, also "250 ms", "2 min"
///     readLength("48000 samples", {}, kind, 48000)             // 48000
///     readLength("0:01:02.5", {}, kind, 48000)                 // 3000000
///     readLength("00:00:01:12", zqposfmt_smpte_25, kind, 48000) // 71040
///     readLength("12+08", zqposfmt_feet_frames_35mm, kind, 48000)
///     readLength("2:1.1", zqposfmt_measures, kind, 48000)      // 120 beats a minute in 4/4
///
/// A unit always tells how a number is meant. Without one the text is read in the format; where
/// there is no format, whole numbers are frames, decimal ones seconds, and one or two colons make
/// a clock time. Numbers are not negative and have a decimal point. What has colons is less than a
/// day. Film runs at 24 frames a second.
///
/// @param format      Of lengthFormats().
/// @param sampleRate  Hz, 1 or more. Whether a text can be read does not depend on it.
/// @return            Audio frames; none for a text that is no length.
std::optional<std::uint64_t> readLength(const std::string& text,
                                        std::optional<_zqposfmt_format> format, LengthKind kind,
                                        unsigned sampleRate);

/// A number of audio frames in the long form of a format, which readLength() reads again. Formats
/// coarser than the audio show the last of their steps that is not after it.
/// @param format  Of lengthFormats().
std::string lengthText(std::uint64_t frames, _zqposfmt_format format, LengthKind kind,
                       unsigned sampleRate);

} // namespace host
