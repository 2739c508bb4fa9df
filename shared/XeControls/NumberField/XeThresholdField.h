#pragma once

#import "XeValueField.h"

@class XeThresholdFormatter;

/// Number field for a threshold. [main]
///
/// Its formatter is an XeThresholdFormatter from the start, also when the field comes out of an
/// interface description, and says the unit and the limits. doubleValue, floatValue and objectValue
/// are always finite and within those limits: a field that shows minus infinity answers the
/// minimum.
///
/// The up and down arrow keys and the wheel step the edited field by 1 dB or 1 percent.
@interface XeThresholdField : XeValueField {
    XeThresholdFormatter* m_formatter; // retained
}

/// YES: dB, and the formatter's minimum shows as its `negativeInfinitySymbol`. NO, as from the
/// start: percent. A text being typed is left alone.
- (void)setMinFinity:(BOOL)flag;
- (BOOL)minFinity;

@end
