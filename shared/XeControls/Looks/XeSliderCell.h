#pragma once

#import "XeDraw.h"
#import "XeHover.h"

#import <AppKit/NSSliderCell.h>

/// Slider: a groove, filled in the accent up to a round knob. Horizontal sliders fill from the
/// left, vertical ones from the bottom. [main]
@interface XeSliderCell : NSSliderCell {
    xenon::Hover m_hover;
    xenon::draw::State m_state; // while drawing
}
@end
