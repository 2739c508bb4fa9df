#pragma once

#import <AppKit/AppKit.h>

/// Draws the face's look. [main]
@interface XeSliderCell : NSSliderCell
@end
