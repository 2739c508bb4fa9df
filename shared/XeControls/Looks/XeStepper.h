#pragma once

#import <AppKit/NSStepper.h>

/// Stepper of the face, for 64-bit whole numbers. Takes the keyboard: the up and down arrow keys
/// step it. [main]
@interface XeStepper : NSStepper

/// Changes integerValue by `steps` increments, within minValue and maxValue, and sends the action
/// when that changed it. Exact for values below 2^53.
- (void)stepBy:(NSInteger)steps;

@end
