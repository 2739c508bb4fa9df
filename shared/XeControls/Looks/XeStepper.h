#pragma once

#import <AppKit/AppKit.h>

/// Stepper of the face. [main]
@interface XeStepper : NSStepper
@end
