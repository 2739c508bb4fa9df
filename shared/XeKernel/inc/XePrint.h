#pragma once

#include "XeString.h"

/// Groups the digits of a number text in threes, in place.
///
///     L"1234567"      ->  L"1,234,567"
///     L"-1234.5678 "  ->  L"-1,234.5678"
///     L"0001234"      ->  L"0001,234"      leading blanks and zeros stay and are not counted
///     L""             ->  L"0"
///
/// Tabs and spaces at the end are removed. The fraction is left alone. Separator and decimal point
/// are those of the global C++ locale's numeric punctuation, whatever grouping it asks for. The
/// text is not checked to be a number: everything before the decimal point but a leading '-'
/// counts as a digit.
///
/// @return  The new length. [any]
int PrettyNumber(_XeString<wchar_t>& text);

/// Prints the magnitude of a number with a fixed number of decimals, rounding half away from zero.
///
///     FormatFloatPretty(out, 1234.567, L"0.00", true);  // out = L"1,234.57"
///     FormatFloatPretty(out, -2.5, L"0.00", true);      // out = L"2.50": the caller adds a sign
///
/// Half a unit is taken from a single-precision table, so values within its rounding error of a
/// tie are rounded up too. Magnitudes of 2^31 and more are printed in full; infinity and NaN as
/// the C library spells them, without decimals.
///
/// @param out      Replaced by the text.
/// @param pattern  One decimal for each character after its first '.'; at most 9 are used, none
///                 without a '.'. Not changed. May be the same object as `out`.
/// @param pretty   Whether to group the whole part, see PrettyNumber.
/// @return         Always 0. [any]
int FormatFloatPretty(_XeString<wchar_t>& out, double value, _XeString<wchar_t>& pattern,
                      bool pretty);

/// Number formatting as the platform's number formatters do it.
struct XeFormatterPlatform {
    /// FormatFloatPretty with grouping, and "-" in front of every value below 0: -0.001 with the
    /// pattern L"0.00" gives L"-0.00".
    ///
    /// @param pattern  As for FormatFloatPretty; null means no decimals. [any]
    static void stringFromDouble(_XeString<wchar_t>& out, double value, const wchar_t* pattern);
};

/// Zoom of a waveform display. A ratio is pixels per sample: above 1 magnifies, below 1 reduces.
/// A text names samples and pixels, "24:1" for 24 samples in a pixel, "1:8" for 8 pixels a sample.
/// Ratios are expected above 0; what does not fit a number is clamped to its range. [any]
struct ZoomRatioUtils {
    /// The ratio of a number of magnify steps: 0, 1, 2, 3, 4 ... give 1, 2, 3, 4, 6, 8, 12 ...,
    /// above 98 always 2^50; negative steps give the reciprocals, never below 1/24.
    static double ZoomRatioFromHMagnify(int magnify);

    /// ZoomRatioTextFromZoomRatio of that ratio.
    static void ZoomRatioTextFromHMagnify(int magnify, _XeString<wchar_t>& text);

    /// "1:N" with N rounded half up for ratios of 1 and more, else "N:1" with N the rounded
    /// reciprocal.
    static void ZoomRatioTextFromZoomRatio(double ratio, _XeString<wchar_t>& text);

    /// The same two numbers: `*a` pixels show `*b` samples, one of them 1. Null pointers are
    /// skipped.
    static void PixelDensityFromZoomRatio(double ratio, long long* a, long long* b);
};
