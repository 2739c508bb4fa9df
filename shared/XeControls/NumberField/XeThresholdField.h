#pragma once

#import <AppKit/AppKit.h>

/// Number field for a threshold. Its formatter is an XeThresholdFormatter from the start, also when
/// the field comes out of an interface description. [main]
@interface XeThresholdField : NSTextField

/// YES: the formatter's minimum shows as its `negativeInfinitySymbol`. NO from the start.
- (void)setMinFinity:(BOOL)flag;
- (BOOL)minFinity;

@end
