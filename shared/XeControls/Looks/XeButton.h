#pragma once

#import <AppKit/NSButton.h>

/// Push button of the face. Takes the keyboard; Space pushes it. [main]
@interface XeButton : NSButton
@end
