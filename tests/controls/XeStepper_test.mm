#import "XeStepper.h"

#import "ControlsFixture.h"

namespace {

class XeStepperTest : public ControlsTest<XeStepper> {
protected:
    XeStepper* makeControl() override
    {
        XeStepper* const stepper =
            [[[XeStepper alloc] initWithFrame:NSMakeRect(50, 80, 17, 22)] autorelease];
        [stepper setMinValue:0];
        [stepper setMaxValue:172800000000.0];
        [stepper setIncrement:1000];
        [stepper setValueWraps:NO];
        return stepper;
    }
    NSPoint half(double y) { return [m_control convertPoint:NSMakePoint(8, y) toView:nil]; }
};

TEST_F(XeStepperTest, ArrowsStepIn64Bits)
{
    [m_control setIntegerValue:172799999000];
    focus();
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control integerValue], 172800000000);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control integerValue], 172800000000);
    EXPECT_EQ([m_counter count], 1);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control integerValue], 172799999000);
    EXPECT_EQ([m_counter count], 2);
}

TEST_F(XeStepperTest, ArrowsStopAtTheMinimum)
{
    [m_control setIntegerValue:400];
    focus();
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control integerValue], 0);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_counter count], 1);
}

TEST_F(XeStepperTest, HalvesStepUpAndDown)
{
    [m_control setIntegerValue:5000];
    const bool isFlipped = [m_control isFlipped];
    gui_test::drag(m_window, {half(isFlipped ? 4 : 18)});
    EXPECT_EQ([m_control integerValue], 6000);
    gui_test::drag(m_window, {half(isFlipped ? 18 : 4)});
    EXPECT_EQ([m_control integerValue], 5000);
    EXPECT_EQ([m_counter count], 2);
}

TEST_F(XeStepperTest, SwitchedOffTakesNoKeyboard)
{
    [m_control setEnabled:NO];
    EXPECT_FALSE([m_control acceptsFirstResponder]);
}

} // namespace
