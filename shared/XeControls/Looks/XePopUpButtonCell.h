#pragma once

#import <AppKit/AppKit.h>

/// Draws the face's look. [main]
@interface XePopUpButtonCell : NSPopUpButtonCell
@end
