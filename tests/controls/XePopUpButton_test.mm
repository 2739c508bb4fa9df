#import "XePopUpButton.h"

#import "ControlsFixture.h"

namespace {

class XePopUpButtonTest : public ControlsTest<XePopUpButton> {
protected:
    void SetUp() override
    {
        ControlsTest::SetUp();
        [m_control addItemsWithTitles:@[ @"One", @"Two", @"Three" ]];
        [m_control selectItemAtIndex:1];
    }
};

TEST_F(XePopUpButtonTest, ArrowsChooseAndSend)
{
    focus();
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control indexOfSelectedItem], 2);
    EXPECT_EQ([m_counter count], 1);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control indexOfSelectedItem], 2);
    EXPECT_EQ([m_counter count], 1);
    press(NSUpArrowFunctionKey);
    press(NSUpArrowFunctionKey);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control indexOfSelectedItem], 0);
    EXPECT_EQ([m_counter count], 3);
}

TEST_F(XePopUpButtonTest, EmptyButtonDrawsAndIgnoresArrows)
{
    [m_control removeAllItems];
    focus();
    [m_control display];
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XePopUpButtonTest, SwitchedOffTakesNoKeyboard)
{
    [m_control setEnabled:NO];
    EXPECT_FALSE([m_control acceptsFirstResponder]);
}

} // namespace
