#import "XeRadioCell.h"

#import "XeDraw.h"

#import <AppKit/NSMatrix.h>

@implementation XeRadioCell

- (BOOL)isEditable
{
    return NO;
}

- (BOOL)isSelectable
{
    return NO;
}

// Of a matrix with the keyboard, only the chosen cell shows it.
- (BOOL)_isChosenIn:(NSView*)view
{
    if ([view isKindOfClass:[NSMatrix class]]) {
        return [static_cast<NSMatrix*>(view) selectedCell] == self;
    }
    return [self state] == NSOnState;
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    using namespace xenon;
    draw::State state = draw::stateOf(self, view);
    state.isHovered = state.isEnabled && m_hover.isOver(frame, view);
    const NSPoint center =
        NSMakePoint(NSMinX(frame) + metrics::kRadioDiameter / 2 + 1, NSMidY(frame));
    const BOOL isChosen = [self _isChosenIn:view];
    const bool isFocused = state.isFocused && isChosen;

    draw::disc(center, metrics::kRadioDiameter,
               state.isEnabled ? XeTone::Field : XeTone::FieldDisabled);
    XeTone outline = state.isHovered ? XeTone::BorderHover : XeTone::Border;
    if (isFocused) {
        outline = XeTone::FocusRing;
    }
    draw::ring(center, metrics::kRadioDiameter, isFocused ? metrics::kFocusRingWidth : 1,
               state.isEnabled ? outline : XeTone::BorderDisabled);
    if (isChosen) {
        draw::disc(center, 6, state.isEnabled ? XeTone::Accent : XeTone::AccentDisabled);
    }

    NSRect titleRect = frame;
    titleRect.origin.x += metrics::kRadioDiameter + metrics::kTextInset;
    titleRect.size.width -= metrics::kRadioDiameter + metrics::kTextInset;
    draw::text([self title], titleRect, state.isEnabled ? XeTone::Text : XeTone::TextDisabled,
               XeFontRole::Text, NSLeftTextAlignment);
}

@end
