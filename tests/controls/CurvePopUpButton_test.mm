#import "CurvePopUpButton.h"

#import "ControlsFixture.h"

#include <string>

namespace {

using CurvePopUpButtonTest = ControlsTest<CurvePopUpButton>;

TEST_F(CurvePopUpButtonTest, OffersTheFiveCurvesWithPictures)
{
    const char* const titles[] = {"Linear", "Equal power", "Logarithmic", "Exponential", "S-curve"};
    ASSERT_EQ([m_control numberOfItems], 5);
    for (NSInteger code = 0; code < 5; ++code) {
        [m_control setCurve:code];
        EXPECT_STREQ([[m_control titleOfSelectedItem] UTF8String], titles[code]);
        EXPECT_EQ([[m_control selectedItem] tag], code);
        EXPECT_NE([[m_control selectedItem] image], nil);
        EXPECT_EQ([m_control curve], code);
    }
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(CurvePopUpButtonTest, StartsLinear) { EXPECT_EQ([m_control curve], 0); }

// An effect may know curves that the editor does not.
TEST_F(CurvePopUpButtonTest, UnknownCodeIsKeptWithNothingSelected)
{
    for (const NSInteger code : {5, 99, -1}) {
        [m_control setCurve:code];
        EXPECT_EQ([m_control curve], code);
        EXPECT_EQ([m_control indexOfSelectedItem], -1);
        [m_control display];
    }
    [m_control setCurve:3];
    EXPECT_EQ([m_control curve], 3);
}

TEST_F(CurvePopUpButtonTest, ChosenItemIsTheCurve)
{
    [m_control setCurve:99];
    [m_control selectItemAtIndex:2];
    EXPECT_EQ([m_control curve], 2);
}

TEST_F(CurvePopUpButtonTest, ArrowsChooseTheNextCurve)
{
    [m_control setCurve:1];
    focus();
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control curve], 2);
    press(NSUpArrowFunctionKey);
    press(NSUpArrowFunctionKey);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control curve], 0);
    EXPECT_EQ([m_counter count], 3);
}

} // namespace
