#import "XePalette.h"

#import <AppKit/AppKit.h>

#import "GuiTest.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// Contrast of two colours by the formula of the Web Content Accessibility Guidelines 2.1.
double luminance(XeTone tone)
{
    const XeRgb rgb = [XePalette channelsOfTone:tone];
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(rgb.red) + 0.7152 * linear(rgb.green) + 0.0722 * linear(rgb.blue);
}

double contrast(XeTone a, XeTone b)
{
    const double light = std::max(luminance(a), luminance(b));
    const double dark = std::min(luminance(a), luminance(b));
    return (light + 0.05) / (dark + 0.05);
}

TEST(XePalette, TextIsLegibleOnEverySurface)
{
    for (const XeTone surface : {XeTone::Window, XeTone::Control, XeTone::ControlHover,
                                 XeTone::ControlPressed, XeTone::Field, XeTone::Selection}) {
        SCOPED_TRACE(static_cast<unsigned>(surface));
        EXPECT_GE(contrast(XeTone::Text, surface), 4.5);
    }
    EXPECT_GE(contrast(XeTone::TextSecondary, XeTone::Window), 4.5);
}

TEST(XePalette, DisabledTextCanStillBeRead)
{
    for (const XeTone surface : {XeTone::Window, XeTone::ControlDisabled, XeTone::FieldDisabled}) {
        SCOPED_TRACE(static_cast<unsigned>(surface));
        EXPECT_GE(contrast(XeTone::TextDisabled, surface), 3.0);
        EXPECT_LT(contrast(XeTone::TextDisabled, surface), contrast(XeTone::Text, surface));
    }
}

TEST(XePalette, FocusAndAccentStandOut)
{
    for (const XeTone surface : {XeTone::Window, XeTone::Control, XeTone::Field}) {
        SCOPED_TRACE(static_cast<unsigned>(surface));
        EXPECT_GE(contrast(XeTone::FocusRing, surface), 3.0);
        EXPECT_GE(contrast(XeTone::Accent, surface), 3.0);
    }
}

TEST(XePalette, ColorsAndFontsAreMadeOnce)
{
    REQUIRE_DISPLAY();
    for (unsigned i = 0; i < static_cast<unsigned>(XeTone::Count_); ++i) {
        NSColor* const color = [XePalette color:static_cast<XeTone>(i)];
        ASSERT_NE(color, nil);
        EXPECT_EQ([XePalette color:static_cast<XeTone>(i)], color);
        const XeRgb rgb = [XePalette channelsOfTone:static_cast<XeTone>(i)];
        EXPECT_NEAR([color redComponent], rgb.red, 0.002);
        EXPECT_NEAR([color blueComponent], rgb.blue, 0.002);
    }
    for (unsigned i = 0; i < static_cast<unsigned>(XeFontRole::Count_); ++i) {
        ASSERT_NE([XePalette font:static_cast<XeFontRole>(i)], nil);
    }
}

// Without Inter the substitute is as good as it gets.
TEST(XePalette, FaceIsSetInInter)
{
    REQUIRE_DISPLAY();
    if ([NSFont fontWithName:@"Inter-Regular" size:12] == nil) {
        GTEST_SKIP() << "the font Inter is not installed";
    }
    EXPECT_STREQ([[[XePalette font:XeFontRole::Text] fontName] UTF8String], "Inter-Regular");
}

} // namespace
