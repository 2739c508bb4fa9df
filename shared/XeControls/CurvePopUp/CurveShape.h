#pragma once

/// Fade curves by the codes that the effect uses. [any]
namespace xenon::curve {

enum Code { Linear = 0, EqualPower = 1, Logarithmic = 2, Exponential = 3, SCurve = 4 };
constexpr int kCodeCount = 5;

/// Name shown for a code from 0 to kCodeCount - 1, ASCII.
const char* name(int code);

/// Gain of a fade-in at `x`, both from 0 to 1. `code` from 0 to kCodeCount - 1.
double gain(int code, double x);

} // namespace xenon::curve
