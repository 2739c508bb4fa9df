#pragma once

#include "XePosFmt.h"

/// The values that a format string takes.
enum class FormatValues { Whole, Decimal, Fields, FeetAndFrames };

/// The printf formats of a way to write positions.
struct FormatText {
    FormatValues values;
    const wchar_t* shortForm;
    const wchar_t* longForm;
    const wchar_t* longFormFrom100; ///< at 100 frames a second and more
};

/// What getIncrement() divides.
enum class Step { One, Tenth, Frame, Beat, Percent };

/// How long a day of labels is, see typeToRollFrame().
enum class Day { Video, Film, Drop };

/// Whether a type shows SMPTE time code, and which.
enum class TimeCode { None, NonDrop, DropFrame };

/// What is true of one position format.
struct FormatTraits {
    _zqposfmt_format type;
    double rate; ///< frames per second, kNoRate for types without one
    FormatText text;
    TimeCode timeCode;
    Step step;
    Day day;
    bool hmsf; ///< shown as hours, minutes, seconds and a part of a second
};

inline constexpr double kNoRate = -1.0;

/// The traits of a type; those of samples for values outside the enumeration.
const FormatTraits& formatTraits(_zqposfmt_format type);

/// True for the two types whose counts are in fields, at whole rates of 31 and more. Below that
/// the fields of two frames would share a label.
inline bool countsFields(const XePosFmt& format, unsigned fps)
{
    return fps > 30 && (format.eFormat == zqposfmt_smpte_half_step ||
                        format.eFormat == zqposfmt_smpte_half_step_drop);
}

/// The whole frames a second that labels are counted in, 0 for a rate that is not positive.
/// @throws boost::math::rounding_error when the rate is NaN or infinite.
unsigned wholeFrameRate(double rate);

/// The printf format of `format` for the flags of its text functions.
const wchar_t* formatText(const XePosFmt& format, unsigned flags);
