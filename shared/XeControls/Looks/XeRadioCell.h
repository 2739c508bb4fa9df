#pragma once

#import "XeHover.h"

#import <AppKit/NSButtonCell.h>

/// Radio button: a ring, with a dot in the accent when chosen, and the title beside it. [main]
///
/// Its title is never for editing or selecting, whatever an interface description leaves out: a
/// matrix would take the window's field editor for such a cell.
@interface XeRadioCell : NSButtonCell {
    xenon::Hover m_hover;
}
@end
