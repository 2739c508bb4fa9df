#pragma once

#import <AppKit/NSButton.h>

/// Push button of the face. Takes the keyboard; Space and Return push it. [main]
@interface XeButton : NSButton
@end
