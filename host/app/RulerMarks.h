#pragma once

#include "PositionText.h"

#include <cstdint>
#include <vector>

namespace host {

/// Sample frames from one labelled mark of a time ruler to the next, with a fraction: the smallest
/// round step of the style's format that is at least `smallest`. Round are 1, 2 and 5 times a power
/// of ten below a second and in samples; 1, 2, 5, 10, 15 and 30 seconds and minutes; frames that
/// divide a second; beats and doubled measures.
/// @param smallest  Sample frames, above 0.
double rulerStep(double smallest, const PositionStyle& style);

/// Positions of the marks that a recording has room for, from 0 on.
/// @param frames    Of the recording.
/// @param smallest  As above.
std::vector<std::uint64_t> rulerMarks(std::uint64_t frames, double smallest,
                                      const PositionStyle& style);

} // namespace host
