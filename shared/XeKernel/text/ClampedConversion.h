#pragma once

#include <limits>

/// The whole part of `value`, clamped to the range of an integer type; 0 for NaN. A plain
/// conversion of what does not fit is undefined.
template <class Integer>
constexpr Integer truncatedTo(double value)
{
    using Limits = std::numeric_limits<Integer>;
    if (value != value) {
        return 0;
    }
    if (value <= static_cast<double>(Limits::min())) {
        return Limits::min();
    }
    if (value >= static_cast<double>(Limits::max())) { // 2^n - 1 may round up to 2^n here
        return Limits::max();
    }
    return static_cast<Integer>(value);
}
