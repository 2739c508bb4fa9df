#pragma once

#import "XeHover.h"

#import <AppKit/NSPopUpButtonCell.h>

/// Pop-up button: the selected item's picture and title on a raised surface, with an arrow down.
/// The open list is the host's menu. [main]
@interface XePopUpButtonCell : NSPopUpButtonCell {
    xenon::Hover m_hover;
}
@end
