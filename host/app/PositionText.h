#pragma once

#include <XePosFmt.h>

#include <cstdint>
#include <string>

namespace host {

/// How positions of a recording are written.
struct PositionStyle {
    std::uint32_t format = zqposfmt_time_ms; // a _zqposfmt_format; unknown ones mean samples
    double sampleRate = 44100;               // Hz, above 0
    double tempo = 120;                      // beats a minute, above 0
    unsigned beatsPerMeasure = 4;            // 1 or more
    bool isLength = false;                   // measures and beats from 0, else from 1

    friend bool operator==(const PositionStyle&, const PositionStyle&) = default;
};

/// The text of a position, "00:00:01.500", as the editor's fields write it: the last point of the
/// format's grid (milliseconds, frames, quarter beats) that is not after it. [any]
///
/// @param frame  Sample frame of the recording, 0 or more.
std::string positionText(std::uint64_t frame, const PositionStyle& style);

/// Sample frames between two neighbouring points of the format's grid, with a fraction. Above 0.
double gridFrames(const PositionStyle& style);

} // namespace host
