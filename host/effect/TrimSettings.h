#pragma once

namespace host {

/// What the effect does with the recording. The values are those of the function parameter.
enum class FunctionMode : unsigned { TrimStartAndEnd, RemoveSilence, Crop, FadesOnly };
inline constexpr unsigned kFunctionModeCount = 4;

/// Course of a fade between silence and full level. The values are those of the curve parameters.
enum class FadeCurve : unsigned { Linear, EqualPower, Logarithmic, Exponential, SCurve };
inline constexpr unsigned kFadeCurveCount = 5;

/// A threshold at or below this level means minus infinity: only digital silence lies under it.
inline constexpr float kMinusInfinityDb = -60.0F;

/// The effect's ten parameters in the units in which they travel. Lengths are kept finer than
/// they travel, so that every frame of a long recording can be named.
struct TrimSettings {
    FunctionMode function = FunctionMode::TrimStartAndEnd;
    float attackThresholdDb = -48.0F;  // -60 to 0, relative to full scale
    float releaseThresholdDb = -48.0F; // -60 to 0, relative to full scale
    FadeCurve fadeInCurve = FadeCurve::Linear;
    double fadeInLengthMs = 5.0;
    FadeCurve fadeOutCurve = FadeCurve::Linear;
    double fadeOutLengthMs = 50.0;
    double minSilenceMs = 500.0;   // mode RemoveSilence
    double cropStartMs = 0.0;      // mode Crop
    double cropLengthMs = 60000.0; // mode Crop

    friend bool operator==(const TrimSettings&, const TrimSettings&) = default;
};

} // namespace host
