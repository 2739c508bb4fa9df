#import "XeSliderCell.h"

#import "XeDraw.h"

#import <AppKit/NSView.h>

#include <cmath>

@implementation XeSliderCell

- (BOOL)_isVerticalIn:(NSRect)frame
{
    return NSHeight(frame) > NSWidth(frame);
}

// Where the middle of the knob is, between 0 at the low end and 1 at the high end.
- (double)_fraction
{
    const double range = [self maxValue] - [self minValue];
    return range > 0 ? ([self doubleValue] - [self minValue]) / range : 0;
}

// Straight to the inside: the platform's border is left out. The groove and the knob are asked for
// without the view, so its state is kept for them.
- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    m_state = xenon::draw::stateOf(self, view);
    m_state.isHovered = m_hover.isOver(frame, view);
    [self drawInteriorWithFrame:frame inView:view];
}

- (void)drawBarInside:(NSRect)frame flipped:(BOOL)isFlipped
{
    using namespace xenon;
    const double half = metrics::kKnobDiameter / 2;
    const double groove = metrics::kGrooveHeight;
    const bool isVertical = [self _isVerticalIn:frame];
    NSRect bar = isVertical
                     ? NSMakeRect(std::floor(NSMidX(frame) - groove / 2), NSMinY(frame) + half,
                                  groove, NSHeight(frame) - 2 * half)
                     : NSMakeRect(NSMinX(frame) + half, std::floor(NSMidY(frame) - groove / 2),
                                  NSWidth(frame) - 2 * half, groove);
    const bool isEnabled = [self isEnabled];
    draw::roundedFill(bar, groove / 2, isEnabled ? XeTone::Border : XeTone::BorderDisabled);
    if (isVertical) {
        const double height = NSHeight(bar) * [self _fraction];
        bar.origin.y = isFlipped ? NSMaxY(bar) - height : NSMinY(bar);
        bar.size.height = height;
    } else {
        bar.size.width *= [self _fraction];
    }
    draw::roundedFill(bar, groove / 2, isEnabled ? XeTone::Accent : XeTone::AccentDisabled);
}

- (NSRect)knobRectFlipped:(BOOL)isFlipped
{
    const NSRect frame = [self trackRect];
    const double size = xenon::metrics::kKnobDiameter;
    if ([self _isVerticalIn:frame]) {
        const double way = (NSHeight(frame) - size) * [self _fraction];
        const double y = isFlipped ? NSMaxY(frame) - size - way : NSMinY(frame) + way;
        return NSMakeRect(NSMidX(frame) - size / 2, y, size, size);
    }
    return NSMakeRect(NSMinX(frame) + (NSWidth(frame) - size) * [self _fraction],
                      NSMidY(frame) - size / 2, size, size);
}

- (void)drawKnob:(NSRect)knob
{
    using namespace xenon;
    const NSPoint center = NSMakePoint(NSMidX(knob), NSMidY(knob));
    XeTone surface = m_state.isHovered ? XeTone::Text : XeTone::TextSecondary;
    if (!m_state.isEnabled) {
        surface = XeTone::TextDisabled;
    }
    draw::disc(center, metrics::kKnobDiameter, XeTone::Window);
    draw::disc(center, metrics::kKnobDiameter - 2, surface);
    if (m_state.isFocused) {
        draw::ring(center, metrics::kKnobDiameter, metrics::kFocusRingWidth, XeTone::FocusRing);
    }
}

@end
