#pragma once

#import <Foundation/NSObject.h>

#include <cstdint>

@class NSColor, NSFont;

/// Every colour of the face, by what it is for. Values and contrast are in the table of the source.
enum class XeTone : unsigned {
    Window,          ///< background of the whole face
    Control,         ///< raised control at rest: button, pop-up, stepper, knob
    ControlHover,    ///< raised control under the pointer
    ControlPressed,  ///< raised control while the mouse button is down
    ControlDisabled, ///< raised control that takes no input
    Field,           ///< sunken control: text field, slider groove, radio ring
    FieldDisabled,   ///< sunken control that takes no input
    Border,          ///< outline at rest
    BorderHover,     ///< outline under the pointer
    BorderDisabled,  ///< outline of a control that takes no input
    Text,            ///< values, titles and names
    TextSecondary,   ///< knobs at rest, remarks
    TextDisabled,    ///< text of a control that takes no input
    Accent,          ///< the one accent colour: slider fill, chosen radio, caret
    AccentDisabled,  ///< accent of a control that takes no input
    Selection,       ///< behind selected text
    FocusRing,       ///< ring round the control that has the keyboard
    Count_           ///< number of tones, not a tone
};

/// Fonts of the face, by what they are for.
enum class XeFontRole : unsigned {
    Text,   ///< labels, titles, pop-ups
    Number, ///< values in fields; all digits as wide as the widest, see xenon::draw::space
    Count_  ///< number of roles, not a role
};

/// Channels of a tone, sRGB, each 0 to 1.
struct XeRgb {
    double red;
    double green;
    double blue;
};

/// Colours, fonts and metrics shared by all controls. [main]
@interface XePalette : NSObject

/// Channels of `tone`, for arithmetic without a colour object.
+ (XeRgb)channelsOfTone:(XeTone)tone;

/// Colour of `tone`; owned by the palette, lives as long as the process.
+ (NSColor*)color:(XeTone)tone;

/// Font of `role`; owned by the palette. Inter where it is installed, else DejaVu Sans, else the
/// system font.
+ (NSFont*)font:(XeFontRole)role;

@end

/// Lengths in points, on the pixel grid at 1x.
namespace xenon::metrics {

constexpr double kCornerRadius = 3.0;   ///< of fields, buttons and pop-ups
constexpr double kFocusRingWidth = 2.0; ///< drawn inside the frame, so nothing clips it
constexpr double kTextInset = 6.0;      ///< between the edge of a control and its text
constexpr double kKnobDiameter = 14.0;
constexpr double kGrooveHeight = 4.0;
constexpr double kRadioDiameter = 14.0;
constexpr double kFontSize = 12.0;
constexpr double kNumberSize = 12.0;

} // namespace xenon::metrics
