#pragma once

#import "XeHover.h"

#import <AppKit/NSStepperCell.h>

/// Stepper: an arrow up over an arrow down on one raised surface. [main]
@interface XeStepperCell : NSStepperCell {
    xenon::Hover m_hover;
}
@end
