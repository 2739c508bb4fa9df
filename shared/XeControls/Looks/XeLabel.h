#pragma once

#import <AppKit/AppKit.h>

/// Text that cannot be edited. [main]
@interface XeLabel : NSTextField
@end
