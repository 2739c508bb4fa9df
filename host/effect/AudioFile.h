#pragma once

#include "Recording.h"

#include <memory>
#include <string>

namespace host {

/// A decoded recording, or why there is none.
struct ReadResult {
    std::shared_ptr<const Recording> recording; // null when the file could not be read
    std::string problem;                        // one sentence for the user, in valid UTF-8
    std::string warning;                        // one, when less could be read than promised
};

/// Reads a whole recording: WAV, FLAC, AIFF and whatever else libsndfile decodes, at any rate and
/// with any number of channels. Blocks while reading. [any]
///
/// Only regular files are opened, so a pipe or a device never makes it wait. A file that ends
/// early or is damaged in the middle is read as far as it goes, with a warning where its header
/// tells the promised length (FLAC, WAV, AIFF). One that holds no sample, or that does not fit into
/// memory, is a problem.
///
/// @param path  Bytes as the system knows them, in any encoding or none.
ReadResult readAudioFile(const std::string& path);

/// A path as text for people: in double quotes, with bytes that are no printable UTF-8 written as
/// \xNN, so that it always fits on one line.
std::string quotedPath(const std::string& path); // "a\nb" -> "\"a\\x0ab\""

} // namespace host
