#pragma once

#import "XePalette.h"

#import <AppKit/NSText.h>
#import <Foundation/NSGeometry.h>

@class NSCell, NSDictionary, NSMutableAttributedString, NSString, NSView;

/// What the cells draw with: shapes in the palette's tones, laid out in points of the view that has
/// the focus for drawing. [main]
namespace xenon::draw {

/// How a control is drawn at the moment.
struct State {
    bool isEnabled = true;
    bool isHovered = false; ///< the pointer is over it
    bool isPressed = false;
    bool isFocused = false; ///< it has the keyboard
};

enum class Direction { Up, Down, Left, Right };

/// State of `cell` in `view`: enabled and pressed by the cell, focused when the view or its field
/// editor is the window's first responder. Not hovered.
State stateOf(NSCell* cell, NSView* view);

/// A raised surface with its outline and, around the focused one, the focus ring.
void raisedBox(NSRect frame, const State& state);

/// A sunken surface with its outline and focus ring, for what is typed into.
void sunkenBox(NSRect frame, const State& state);

/// The focus ring alone, just inside `frame`.
void focusRing(NSRect frame, double radius);

/// A filled shape without an outline.
void roundedFill(NSRect frame, double radius, XeTone tone);
void disc(NSPoint center, double diameter, XeTone tone);

/// A ring whose outline lies inside the diameter.
void ring(NSPoint center, double diameter, double width, XeTone tone);

/// A filled arrow head, `size` across, pointing where the user sees it point in either kind of
/// coordinates.
void arrow(NSPoint center, double size, Direction direction, XeTone tone, bool isFlipped);

/// One line of text, spaced as by space() and centred vertically, cut with "..." where too long.
void text(NSString* string, NSRect frame, NSDictionary* attributes);
void text(NSString* string, NSRect frame, XeTone tone, XeFontRole role, NSTextAlignment alignment);

/// Height of a line of `font` in whole points.
double lineHeight(NSFont* font);

/// The part of `frame` that a line of `font` takes, centred vertically on whole points.
NSRect lineRect(NSRect frame, NSFont* font);

/// Attributes of text on a control.
NSDictionary* textAttributes(NSColor* color, NSFont* font, NSTextAlignment alignment);

/// Spaces the ASCII characters of `string` as the font's designer meant, where the layout would
/// round every advance to whole points, and makes all digits equally wide. Sets kerning, in place.
/// Texts of more than 200 characters stay as they are.
void space(NSMutableAttributedString* string, NSFont* font);

} // namespace xenon::draw
