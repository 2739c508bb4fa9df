#pragma once

#import <Foundation/NSNumberFormatter.h>

/// Turns a threshold into text, and what users type into a threshold. [main]
///
/// With `minFinity` the unit is dB, else percent of full scale. Values show with two decimals and
/// their unit. Reading takes the present unit where none is typed, converts where the other one is
/// ("50 %" becomes -6.02 dB), and clamps what lies outside to `minimum` and `maximum`; minus
/// infinity, by any of its names or `negativeInfinitySymbol`, is the minimum. See
/// xenon::threshold::parse for what is understood; all else is refused.
@interface XeThresholdFormatter : NSNumberFormatter {
    BOOL m_minFinity;
}

/// YES: `minimum` and all below show as `negativeInfinitySymbol`, which is "-Inf." from the start.
/// NO from the start.
- (void)setMinFinity:(BOOL)flag;
- (BOOL)minFinity;

/// `value` within `minimum` and `maximum`, each where it is set. NaN becomes the minimum.
- (double)clampedValue:(double)value;

@end
