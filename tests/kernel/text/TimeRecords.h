#pragma once

#include "XePosFmt.h"

#include <ostream>

/// A time-code record, or a clock time with milliseconds.
inline XESMPTEVAL label(unsigned hours, unsigned minutes, unsigned seconds, unsigned frames,
                        bool field = false)
{
    return {0, hours, minutes, seconds, frames, field};
}

// GoogleTest finds these by their name.
inline void PrintTo(const XESMPTEVAL& label, std::ostream* out)
{
    *out << label.hours << ':' << label.minutes << ':' << label.seconds << ':' << label.frames
         << (label.field ? "*" : "") << (label.reserved != 0 ? " reserved" : "");
}

inline void PrintTo(const faf_val& length, std::ostream* out)
{
    *out << length.feet << '+' << length.frames;
}
