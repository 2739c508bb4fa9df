#pragma once

#import <Foundation/Foundation.h>

#include "host/effect/HostMusic.h"
#include "host/effect/TarvelEffect.h"

#include <string>

namespace host {

/// Name of the file that keeps a recording's settings, beside it: "take.wav" -> "take.wav.tarvel".
std::string settingsPath(const std::string& recordingPath);

/// Everything that is kept of an effect and its host, as the bytes of a property list: the effect's
/// own state, tempo and time signature. Equal settings give equal bytes. Autoreleased. [main]
NSData* settingsData(TarvelEffect& effect, const HostMusic& music);

/// Writes the bytes under a temporary name, then gives them theirs. Returns the problem as one
/// sentence, or an empty text. Blocks.
std::string writeSettings(const std::string& path, NSData* data);

/// Reads settings and gives them to effect and host; listeners hear of it. A file that is not there
/// is no problem. One that cannot be read or is damaged changes nothing.
/// @return  The problem as one sentence, or an empty text. [main]
std::string readSettings(const std::string& path, TarvelEffect& effect, HostMusic& music);

/// Ranges in which a host's music makes sense. Quarter notes a minute, and parts of a signature.
bool isTempo(double tempo);                                 // 1 to 999
bool isTimeSignature(double numerator, double denominator); // whole, 1 to 32; 1, 2, 4 ... 32

} // namespace host
