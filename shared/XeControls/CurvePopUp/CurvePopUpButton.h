#pragma once

#import "XePopUpButton.h"

/// Pop-up button of the fade curves; each item shows its curve and its name. [main]
@interface CurvePopUpButton : XePopUpButton {
    NSInteger m_curve; // what was set last, also without an item
}

/// Curve code: 0 linear, 1 equal power, 2 logarithmic, 3 exponential, 4 S-curve. What the user
/// chose, or what was set when that has no item.
- (NSInteger)curve;

/// Selects the item of `curve`. A code without an item is kept, so that reading it back gives the
/// same code, and nothing is selected.
- (void)setCurve:(NSInteger)curve;

@end
