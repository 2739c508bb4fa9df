#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Thresholds as text. [any]
namespace xenon::threshold {

enum class Unit {
    Decibel, ///< dB relative to full scale
    Percent, ///< of full scale
};

/// Reads a typed threshold and gives it in `unit`, or nothing for a text that is no threshold.
///
///     "-12", "-12.5", "-12,5"              in `unit`
///     "-12 dB", "-12dBFS", "50 %", "50%"   in their own unit, converted: "50 %" is -6.02 dB
///     "-inf", "-Inf.", "-infinity", "-∞"   no level at all: minus infinity dB, 0 %
///
/// Capitals do not matter; the typographic minus is a minus. There are no exponents, so "1e400" is
/// no number. The result is not limited: in decibels it may be minus infinity (also for "0 %"), and
/// it is never NaN or plus infinity.
std::optional<double> parse(std::wstring_view text, Unit unit);

/// The number with two decimals and its unit: "-12.00 dB", "50.00 %". A value that rounds to zero
/// has no sign. `value` is finite.
std::string render(double value, Unit unit);

/// 20 log10(percent / 100); minus infinity for 0 and below.
double decibelsFromPercent(double percent);

/// 100 x 10^(decibels / 20).
double percentFromDecibels(double decibels);

} // namespace xenon::threshold
