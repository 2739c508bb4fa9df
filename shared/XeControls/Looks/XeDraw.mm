#import "XeDraw.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace xenon::draw {

namespace {

constexpr double kOutlineWidth = 1.0;

// Outlines lie on the middle of a pixel, so that they stay sharp.
NSBezierPath* _outline(NSRect frame, double radius, double width)
{
    const double inset = width / 2;
    NSBezierPath* const path =
        [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(frame, inset, inset)
                                        xRadius:radius - inset
                                        yRadius:radius - inset];
    [path setLineWidth:width];
    return path;
}

void _strokeOutline(NSRect frame, double radius, double width, XeTone tone)
{
    [[XePalette color:tone] set];
    [_outline(frame, radius, width) stroke];
}

NSRect _square(NSPoint center, double side)
{
    return NSMakeRect(center.x - side / 2, center.y - side / 2, side, side);
}

void _box(NSRect frame, const State& state, XeTone surface)
{
    const double radius = metrics::kCornerRadius;
    XeTone border = XeTone::Border;
    if (!state.isEnabled) {
        border = XeTone::BorderDisabled;
    } else if (state.isHovered) {
        border = XeTone::BorderHover;
    }
    roundedFill(frame, radius, surface);
    _strokeOutline(frame, radius, kOutlineWidth, border);
    if (state.isFocused) {
        focusRing(frame, radius);
    }
}

bool _hasKeyboard(NSView* view)
{
    NSResponder* const responder = [[view window] firstResponder];
    if (responder == view) {
        return true;
    }
    return [responder isKindOfClass:[NSText class]] &&
           [static_cast<NSText*>(responder) delegate] == static_cast<id>(view);
}

double _width(NSString* string, NSFont* font)
{
    return [string sizeWithAttributes:@{NSFontAttributeName : font}].width;
}

// How much narrower each digit of a font is than its widest, in points.
struct DigitGaps {
    NSFont* font = nil; // retained
    std::array<double, 10> gaps{};
};

// Measuring text is slow, and nearly all numbers are in one font, so the last one is remembered.
const DigitGaps& _digitGaps(NSFont* font)
{
    static DigitGaps last;
    if ([last.font isEqual:font]) {
        return last;
    }
    [last.font release];
    last.font = [font retain];
    for (unichar i = 0; i < last.gaps.size(); ++i) {
        const unichar digit = '0' + i;
        last.gaps.at(i) = _width([NSString stringWithCharacters:&digit length:1], font);
    }
    const double widest = *std::max_element(last.gaps.begin(), last.gaps.end());
    for (double& gap : last.gaps) {
        gap = widest - gap;
    }
    return last;
}

} // namespace

State stateOf(NSCell* cell, NSView* view)
{
    State state;
    state.isEnabled = [cell isEnabled];
    state.isPressed = state.isEnabled && [cell isHighlighted];
    state.isFocused = state.isEnabled && _hasKeyboard(view);
    return state;
}

void roundedFill(NSRect frame, double radius, XeTone tone)
{
    [[XePalette color:tone] set];
    [[NSBezierPath bezierPathWithRoundedRect:frame xRadius:radius yRadius:radius] fill];
}

void disc(NSPoint center, double diameter, XeTone tone)
{
    roundedFill(_square(center, diameter), diameter / 2, tone);
}

void ring(NSPoint center, double diameter, double width, XeTone tone)
{
    _strokeOutline(_square(center, diameter), diameter / 2, width, tone);
}

void focusRing(NSRect frame, double radius)
{
    _strokeOutline(frame, radius, metrics::kFocusRingWidth, XeTone::FocusRing);
}

void raisedBox(NSRect frame, const State& state)
{
    XeTone surface = XeTone::Control;
    if (!state.isEnabled) {
        surface = XeTone::ControlDisabled;
    } else if (state.isPressed) {
        surface = XeTone::ControlPressed;
    } else if (state.isHovered) {
        surface = XeTone::ControlHover;
    }
    _box(frame, state, surface);
}

void sunkenBox(NSRect frame, const State& state)
{
    _box(frame, state, state.isEnabled ? XeTone::Field : XeTone::FieldDisabled);
}

void arrow(NSPoint center, double size, Direction direction, XeTone tone, bool isFlipped)
{
    const double half = size / 2;
    const double depth = size / 4;
    const bool isVertical = direction == Direction::Up || direction == Direction::Down;
    double sign = direction == Direction::Up || direction == Direction::Right ? 1 : -1;
    if (isVertical && isFlipped) {
        sign = -sign;
    }
    const auto at = [&](double along, double across) {
        return isVertical ? NSMakePoint(center.x + across, center.y + along * sign)
                          : NSMakePoint(center.x + along * sign, center.y + across);
    };
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:at(-depth, -half)];
    [path lineToPoint:at(depth, 0)];
    [path lineToPoint:at(-depth, half)];
    [path closePath];
    [[XePalette color:tone] set];
    [path fill];
}

double lineHeight(NSFont* font) { return std::ceil([font ascender] - [font descender]); }

NSRect lineRect(NSRect frame, NSFont* font)
{
    const double height = std::min(lineHeight(font), NSHeight(frame));
    return NSMakeRect(NSMinX(frame), NSMinY(frame) + std::floor((NSHeight(frame) - height) / 2),
                      NSWidth(frame), height);
}

NSDictionary* textAttributes(NSColor* color, NSFont* font, NSTextAlignment alignment)
{
    NSMutableParagraphStyle* const style =
        [[[NSParagraphStyle defaultParagraphStyle] mutableCopy] autorelease];
    [style setAlignment:alignment];
    [style setLineBreakMode:NSLineBreakByTruncatingTail];
    return @{
        NSForegroundColorAttributeName : color,
        NSFontAttributeName : font,
        NSParagraphStyleAttributeName : style,
    };
}

void text(NSString* string, NSRect frame, XeTone tone, XeFontRole role, NSTextAlignment alignment)
{
    NSFont* const font = [XePalette font:role];
    NSDictionary* const attributes = textAttributes([XePalette color:tone], font, alignment);
    [string drawInRect:lineRect(frame, font) withAttributes:attributes];
}

// Half of a narrow digit's gap goes before it, as kerning of the character in front.
void spaceDigits(NSMutableAttributedString* string, NSFont* font)
{
    const DigitGaps& digits = _digitGaps(font);
    NSString* const characters = [string string];
    std::vector<double> kerning([characters length]);
    for (NSUInteger i = 0; i < kerning.size(); ++i) {
        const unichar c = [characters characterAtIndex:i];
        if (c < '0' || c > '9') {
            continue;
        }
        const double gap = digits.gaps.at(c - '0');
        const double before = i == 0 ? 0 : std::floor(gap / 2);
        kerning[i] += gap - before;
        if (i > 0) {
            kerning[i - 1] += before;
        }
    }
    for (NSUInteger i = 0; i < kerning.size(); ++i) {
        if (kerning[i] > 0) {
            [string addAttribute:NSKernAttributeName
                           value:@(kerning[i])
                           range:NSMakeRange(i, 1)];
        }
    }
}

} // namespace xenon::draw
