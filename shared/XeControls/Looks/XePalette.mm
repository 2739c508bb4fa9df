#import "XePalette.h"

#import <AppKit/NSColor.h>
#import <AppKit/NSFont.h>
#import <Foundation/NSString.h>

#include <array>
#include <cstddef>
#include <iterator>

namespace {

// clang-format off
constexpr struct ToneRow {
    XeTone        tone;
    std::uint32_t rgb;
} kTones[] = {
    // Text keeps 4.5:1 on every surface it is drawn on, disabled text and outlines of focus 3:1.
    { XeTone::Window,          0x1E2024 },
    { XeTone::Control,         0x33373E },
    { XeTone::ControlHover,    0x3D424A },
    { XeTone::ControlPressed,  0x282B31 },
    { XeTone::ControlDisabled, 0x26292E },
    { XeTone::Field,           0x14161A },
    { XeTone::FieldDisabled,   0x1B1D21 },
    { XeTone::Border,          0x4A5059 },
    { XeTone::BorderHover,     0x6A727E },
    { XeTone::BorderDisabled,  0x33373D },
    { XeTone::Text,            0xE6E8EB },
    { XeTone::TextSecondary,   0xA9B0BA },
    { XeTone::TextDisabled,    0x7C838D },
    { XeTone::Accent,          0x4C9EEB },
    { XeTone::AccentDisabled,  0x46566A },
    { XeTone::Selection,       0x2A527A },
    { XeTone::FocusRing,       0x4C9EEB },
};

constexpr struct FontRow {
    XeFontRole  role;
    const char* preferred;
    const char* substitute;
    double      size;
} kFonts[] = {
    { XeFontRole::Text,   "Inter-Regular",  "DejaVuSans",      xenon::metrics::kFontSize      },
    { XeFontRole::Number, "Inter-Regular",  "DejaVuSans",      xenon::metrics::kNumberSize    },
};
// clang-format on

template <typename Row, std::size_t N, typename Key>
constexpr bool _isComplete(const Row (&rows)[N], Key Row::*key)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (static_cast<std::size_t>(rows[i].*key) != i) {
            return false;
        }
    }
    return N == static_cast<std::size_t>(Key::Count_);
}
static_assert(_isComplete(kTones, &ToneRow::tone));
static_assert(_isComplete(kFonts, &FontRow::role));

NSFont* _makeFont(const FontRow& row)
{
    for (const char* const name : {row.preferred, row.substitute}) {
        NSFont* const font = [NSFont fontWithName:@(name) size:row.size];
        if (font != nil) {
            return font;
        }
    }
    return [NSFont systemFontOfSize:row.size];
}

} // namespace

@implementation XePalette

+ (XeRgb)channelsOfTone:(XeTone)tone
{
    const std::uint32_t rgb = kTones[static_cast<std::size_t>(tone)].rgb;
    return {(rgb >> 16 & 0xFF) / 255.0, (rgb >> 8 & 0xFF) / 255.0, (rgb & 0xFF) / 255.0};
}

+ (NSColor*)color:(XeTone)tone
{
    static std::array<NSColor*, std::size(kTones)> colors;
    NSColor*& color = colors[static_cast<std::size_t>(tone)];
    if (color == nil) {
        const XeRgb rgb = [self channelsOfTone:tone];
        color = [[NSColor colorWithCalibratedRed:rgb.red green:rgb.green blue:rgb.blue
                                           alpha:1.0] retain];
    }
    return color;
}

+ (NSFont*)font:(XeFontRole)role
{
    static std::array<NSFont*, std::size(kFonts)> fonts;
    NSFont*& font = fonts[static_cast<std::size_t>(role)];
    if (font == nil) {
        font = [_makeFont(kFonts[static_cast<std::size_t>(role)]) retain];
    }
    return font;
}

@end
