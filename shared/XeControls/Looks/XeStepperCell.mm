#import "XeStepperCell.h"

#import "XeDraw.h"

#import <AppKit/NSView.h>

@implementation XeStepperCell

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    using namespace xenon;
    draw::State state = draw::stateOf(self, view);
    state.isHovered = m_hover.isOver(frame, view);
    state.isPressed = false;
    draw::raisedBox(frame, state);
    const XeTone tone = state.isEnabled ? XeTone::Text : XeTone::TextDisabled;
    const double quarter = NSHeight(frame) / 4 + 1;
    const double up = [view isFlipped] ? -quarter : quarter;
    const NSPoint center = NSMakePoint(NSMidX(frame), NSMidY(frame));
    draw::arrow(NSMakePoint(center.x, center.y + up * 0.75), 7, draw::Direction::Up, tone,
                [view isFlipped]);
    draw::arrow(NSMakePoint(center.x, center.y - up * 0.75), 7, draw::Direction::Down, tone,
                [view isFlipped]);
}

@end
