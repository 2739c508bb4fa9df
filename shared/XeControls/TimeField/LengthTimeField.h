#pragma once

#include "LengthText.h"

#import "XeValueField.h"

#include <cstdint>

@class NSMenu;

/// Shows and edits a whole sample count in one of the position formats. [main]
///
/// The object value is a boxed signed 64-bit sample count, exact over the whole range. LengthText
/// says how it is written and what may be typed; a typed count outside the limits is clamped to the
/// nearer one, anything else that is no count is refused with a beep.
///
/// While the field is edited the up and down arrow keys and the wheel step the part of the text
/// that holds the caret and send the action for each step; see LengthText::step.
///
/// The context menu opens with the right button, also while the field is edited, and then with the
/// menu key and Shift-F10 too.
@interface LengthTimeField : XeValueField {
    LengthText m_text;
    std::int64_t m_minSamples;
    std::int64_t m_maxSamples;
}

/// Display format, a `_zqposfmt_format` value.
- (void)setFormat:(std::uint32_t)format;
- (std::uint32_t)format;

/// Samples per second used between samples and time or frames, Hz; also given to the field's own
/// format object, rounded. Rates and tempos that are not above 0 are ignored, here and below.
- (void)setFrameAndSampleRate:(double)rate;

/// Samples per second of the field's own format object (the one `getIncrement` asks). Hz, integral.
- (void)setSampleRate:(double)rate;

/// Frames per second of the formats that have no rate of their own; the others ignore it. A new
/// format with a rate of its own brings that rate along.
- (void)setFrameRate:(double)rate;

/// Beats per minute.
- (void)setTempo:(double)tempo;

/// Numerator in the upper 16 bits, denominator in the lower 16 bits.
- (void)setTimeSignature:(std::uint32_t)signature;

/// Parts of a beat that the musical formats count.
- (void)setTicksPerBeat:(std::uint32_t)ticks;

/// YES: the value is a duration; NO: it is a position. Measures and beats of a position count from
/// one, those of a duration from zero.
- (void)setIsLength:(BOOL)flag;

/// Limits of what may be entered, in samples. None from the start. A value set by the program is
/// shown as it is, also outside.
- (void)setMinValue:(double)samples;
- (void)setMaxValue:(double)samples;

/// Natural step of the current format, in samples, 1 or more.
- (std::int64_t)getIncrement;

/// A new, autoreleased menu of the display formats. Each item carries its format as its tag and
/// sends `onFormatMenuAction:` to `target`, which is not retained and is asked
/// `validateUserInterfaceItem:` when the menu opens.
- (NSMenu*)createDefaultMenuWithTarget:(id)target;

/// Sets the field's context menu, retained.
- (void)setDefaultMenu:(NSMenu*)menu;

@end
