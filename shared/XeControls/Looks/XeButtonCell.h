#pragma once

#import "XeHover.h"

#import <AppKit/NSButtonCell.h>

/// Push button: its title on a raised surface. [main]
@interface XeButtonCell : NSButtonCell {
    xenon::Hover m_hover;
}
@end
