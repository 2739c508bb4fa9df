#pragma once

#import <AppKit/AppKit.h>

/// Pop-up button of the face. [main]
@interface XePopUpButton : NSPopUpButton
@end
