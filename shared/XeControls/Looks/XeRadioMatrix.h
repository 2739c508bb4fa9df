#pragma once

#import <AppKit/AppKit.h>

/// Row or column of radio buttons. [main]
@interface XeRadioMatrix : NSMatrix
@end
