#pragma once

#import <AppKit/AppKit.h>

/// Push button of the face. [main]
@interface XeButton : NSButton
@end
