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

bool _isDigit(unichar c) { return c >= '0' && c <= '9'; }

double _width(NSString* string, NSFont* font)
{
    return [string sizeWithAttributes:@{NSFontAttributeName : font}].width;
}

// The advances of a font's ASCII characters that kerning has to add, in points.
struct Spacing {
    static constexpr unichar kCount = 128;

    NSFont* font = nil; // retained
    std::array<double, kCount> extra{};
};

constexpr double kReferenceSize = 1000;

// Every spaced character is laid out by itself, which takes seconds for a pasted page.
constexpr NSUInteger kLongestSpaced = 200;

// Advances are rounded to whole points where text is laid out, which shows in small type. What
// was rounded off is the difference to the advance in large type. Digits get the widest digit's.
void _fillSpacing(Spacing& spacing)
{
    NSFont* const font = spacing.font;
    NSFont* const large = [NSFont fontWithName:[font fontName] size:kReferenceSize];
    const double scale = [font pointSize] / kReferenceSize;
    double widestDigit = 0;
    std::array<double, Spacing::kCount> exact{};
    for (unichar c = ' '; c < Spacing::kCount - 1; ++c) {
        exact.at(c) = _width([NSString stringWithCharacters:&c length:1], large) * scale;
        if (_isDigit(c)) {
            widestDigit = std::max(widestDigit, exact.at(c));
        }
    }
    for (unichar c = ' '; c < Spacing::kCount - 1; ++c) {
        const double laidOut = _width([NSString stringWithCharacters:&c length:1], font);
        spacing.extra.at(c) = (_isDigit(c) ? widestDigit : exact.at(c)) - laidOut;
    }
}

// Whether kerning lies before the character that has it, as one of the platforms has it, or after.
bool _kernsBefore()
{
    static const bool kernsBefore = [] {
        NSMutableAttributedString* const text =
            [[[NSMutableAttributedString alloc] initWithString:@"xx"] autorelease];
        const double plain = [text size].width;
        [text addAttribute:NSKernAttributeName value:@(10.0) range:NSMakeRange(0, 1)];
        return [text size].width < plain + 5;
    }();
    return kernsBefore;
}

// Measuring text is slow and the face has few fonts, so they are remembered.
const Spacing& _spacingOf(NSFont* font)
{
    static std::vector<Spacing> known;
    for (const Spacing& spacing : known) {
        if ([spacing.font isEqual:font]) {
            return spacing;
        }
    }
    known.push_back({[font retain], {}});
    _fillSpacing(known.back());
    return known.back();
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

void text(NSString* string, NSRect frame, NSDictionary* attributes)
{
    if ([string length] == 0) {
        return;
    }
    NSFont* const font = [attributes objectForKey:NSFontAttributeName];
    NSMutableAttributedString* const spaced =
        [[NSMutableAttributedString alloc] initWithString:string attributes:attributes];
    space(spaced, font);
    [spaced drawInRect:lineRect(frame, font)];
    [spaced release];
}

void text(NSString* string, NSRect frame, XeTone tone, XeFontRole role, NSTextAlignment alignment)
{
    text(string, frame, textAttributes([XePalette color:tone], [XePalette font:role], alignment));
}

void space(NSMutableAttributedString* string, NSFont* font)
{
    if ([string length] > kLongestSpaced) {
        return;
    }
    const Spacing& spacing = _spacingOf(font);
    const NSUInteger offset = _kernsBefore() ? 1 : 0;
    NSString* const characters = [string string];
    for (NSUInteger i = 0; i + offset < [characters length]; ++i) {
        const unichar c = [characters characterAtIndex:i];
        if (c < Spacing::kCount) {
            [string addAttribute:NSKernAttributeName
                           value:@(spacing.extra.at(c))
                           range:NSMakeRange(i + offset, 1)];
        }
    }
}

} // namespace xenon::draw
