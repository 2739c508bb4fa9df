#include "CurveShape.h"

#include <cmath>
#include <iterator>
#include <numbers>

namespace xenon::curve {

namespace {

double _linear(double x) { return x; }
double _equalPower(double x) { return std::sin(x * std::numbers::pi / 2); }
double _logarithmic(double x) { return std::log10(1 + 9 * x); }
double _exponential(double x) { return (std::pow(10, x) - 1) / 9; }
double _sCurve(double x) { return (1 - std::cos(x * std::numbers::pi)) / 2; }

// clang-format off
constexpr struct Row {
    Code        code;
    const char* name;
    double    (*gain)(double x);
} kRows[] = {
    { Linear,      "Linear",      _linear      },
    { EqualPower,  "Equal power", _equalPower  },
    { Logarithmic, "Logarithmic", _logarithmic },
    { Exponential, "Exponential", _exponential },
    { SCurve,      "S-curve",     _sCurve      },
};
// clang-format on
static_assert(std::size(kRows) == kCodeCount);
static_assert([] {
    for (int i = 0; i < kCodeCount; ++i) {
        if (kRows[i].code != i) {
            return false;
        }
    }
    return true;
}());

} // namespace

const char* name(int code) { return kRows[code].name; }

double gain(int code, double x) { return kRows[code].gain(x); }

} // namespace xenon::curve
