#pragma once

#import <AppKit/AppKit.h>

/// Turns a threshold into text and what users type into a threshold. [main]
@interface XeThresholdFormatter : NSNumberFormatter {
    BOOL m_minFinity;
}

/// YES: the minimum shows as `negativeInfinitySymbol`. NO from the start.
- (void)setMinFinity:(BOOL)flag;
- (BOOL)minFinity;

@end
