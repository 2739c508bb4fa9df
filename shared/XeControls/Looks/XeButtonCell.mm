#import "XeButtonCell.h"

#import "XeDraw.h"

@implementation XeButtonCell

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    xenon::draw::State state = xenon::draw::stateOf(self, view);
    state.isHovered = m_hover.isOver(frame, view);
    xenon::draw::raisedBox(frame, state);
    xenon::draw::text([self title], frame, state.isEnabled ? XeTone::Text : XeTone::TextDisabled,
                      XeFontRole::Text, NSCenterTextAlignment);
}

@end
