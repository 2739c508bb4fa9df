#pragma once

#include "host/effect/TrimEngine.h"

#include <cstdint>
#include <vector>

namespace host {

/// A run of frames of a recording: [first, end).
struct Stretch {
    std::uint64_t first = 0;
    std::uint64_t end = 0;

    friend bool operator==(const Stretch&, const Stretch&) = default;
};

/// Where two plans of one recording differ in what they do to its frames, in order, without
/// touching each other. A curve counts only where there are fades. [any]
std::vector<Stretch> changedStretches(const TrimPlan& before, const TrimPlan& after);

/// Gain of a frame of the recording: 0 where it is cut, 0 to 1 in fades, else 1. Frames are asked
/// for in any order; finds the region in logarithmic time.
double gainAt(const TrimPlan& plan, std::uint64_t frame);

} // namespace host
