#pragma once

#import "XeHover.h"

#import <AppKit/NSButtonCell.h>

/// Radio button: a ring, with a dot in the accent when chosen, and the title beside it. [main]
@interface XeRadioCell : NSButtonCell {
    xenon::Hover m_hover;
}
@end
