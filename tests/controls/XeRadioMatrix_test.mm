#import "XeRadioMatrix.h"

#import "ControlsFixture.h"
#import "XeRadioCell.h"
#import "XeThresholdField.h"

namespace {

class XeRadioMatrixTest : public ControlsTest<XeRadioMatrix> {
protected:
    XeRadioMatrix* makeControl() override
    {
        XeRadioMatrix* const matrix =
            [[[XeRadioMatrix alloc] initWithFrame:NSMakeRect(50, 80, 124, 22)
                                             mode:NSRadioModeMatrix
                                        cellClass:[XeRadioCell class]
                                     numberOfRows:1
                                  numberOfColumns:2] autorelease];
        [matrix setCellSize:NSMakeSize(60, 22)];
        [matrix setIntercellSpacing:NSMakeSize(4, 0)];
        return matrix;
    }
    NSPoint inWindow(double x) { return [m_control convertPoint:NSMakePoint(x, 11) toView:nil]; }
};

TEST_F(XeRadioMatrixTest, ClickChoosesAndSends)
{
    gui_test::drag(m_window, {inWindow(80)});
    EXPECT_EQ([m_control selectedColumn], 1);
    EXPECT_EQ([m_counter count], 1);
    gui_test::drag(m_window, {inWindow(10)});
    EXPECT_EQ([m_control selectedColumn], 0);
    EXPECT_EQ([m_counter count], 2);
}

TEST_F(XeRadioMatrixTest, OnlyOneCellIsChosen)
{
    gui_test::drag(m_window, {inWindow(80)});
    EXPECT_EQ([[m_control cellAtRow:0 column:0] state], NSOffState);
    EXPECT_EQ([[m_control cellAtRow:0 column:1] state], NSOnState);
}

TEST_F(XeRadioMatrixTest, ClickLetGoElsewhereChoosesNothing)
{
    gui_test::drag(m_window, {inWindow(80), inWindow(10)});
    EXPECT_EQ([m_control selectedColumn], 0);
    gui_test::drag(m_window, {inWindow(80), NSMakePoint(5, 5)});
    EXPECT_EQ([m_control selectedColumn], 0);
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XeRadioMatrixTest, SwitchedOffIgnoresClicks)
{
    [m_control setEnabled:NO];
    gui_test::drag(m_window, {inWindow(80)});
    EXPECT_EQ([m_control selectedColumn], 0);
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XeRadioMatrixTest, ArrowsChooseWithoutWrapping)
{
    focus();
    press(NSRightArrowFunctionKey);
    EXPECT_EQ([m_control selectedColumn], 1);
    press(NSRightArrowFunctionKey);
    EXPECT_EQ([m_control selectedColumn], 1);
    EXPECT_EQ([m_counter count], 1);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control selectedColumn], 0);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control selectedColumn], 1);
    press(NSLeftArrowFunctionKey);
    EXPECT_EQ([m_control selectedColumn], 0);
    EXPECT_EQ([m_counter count], 4);
}

// What was typed must be taken in the unit it was typed in, before the unit changes.
TEST_F(XeRadioMatrixTest, ClickEndsTypingFirst)
{
    XeThresholdField* const field =
        [[[XeThresholdField alloc] initWithFrame:NSMakeRect(50, 20, 100, 22)] autorelease];
    [field setMinFinity:NO];
    [[m_window contentView] addSubview:field];
    [m_window makeFirstResponder:field];
    type(@"50");
    gui_test::drag(m_window, {inWindow(80)});
    EXPECT_EQ([field currentEditor], nil);
    EXPECT_DOUBLE_EQ([field doubleValue], 50);
    EXPECT_EQ([m_counter count], 1);
}

} // namespace
