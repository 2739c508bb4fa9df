#import "XeThresholdField.h"

#import "ControlsFixture.h"
#import "XeThresholdFormatter.h"

#include <cmath>
#include <string>

namespace {

class XeThresholdFieldTest : public ControlsTest<XeThresholdField> {
protected:
    void SetUp() override
    {
        ControlsTest::SetUp();
        decibels();
    }
    void decibels() { limits(YES, -60, 0); }
    void percent() { limits(NO, 0, 100); }
    void limits(BOOL minFinity, float minimum, float maximum)
    {
        [m_control setMinFinity:minFinity];
        [[m_control formatter] setMinimum:static_cast<id>(@(minimum))];
        [[m_control formatter] setMaximum:static_cast<id>(@(maximum))];
    }
    std::string text() { return [[m_control stringValue] UTF8String]; }
    void typeOver(NSString* typed)
    {
        focus();
        type(typed);
        press('\r');
    }
};

TEST_F(XeThresholdFieldTest, FormatterIsItsOwn)
{
    EXPECT_TRUE([[m_control formatter] isKindOfClass:[XeThresholdFormatter class]]);
    NSNumberFormatter* const other = [[[NSNumberFormatter alloc] init] autorelease];
    [m_control setFormatter:other];
    EXPECT_NE([m_control formatter], other);
}

TEST_F(XeThresholdFieldTest, ShowsValuesAndMinusInfinity)
{
    [m_control setDoubleValue:-12.5];
    EXPECT_EQ(text(), "-12.50 dB");
    EXPECT_FLOAT_EQ([m_control floatValue], -12.5F);
    [m_control setDoubleValue:-HUGE_VAL];
    EXPECT_EQ(text(), "-Inf.");
    percent();
    [m_control setDoubleValue:0];
    EXPECT_EQ(text(), "0.00 %");
    [m_control setDoubleValue:0.10115794542598985];
    EXPECT_EQ(text(), "0.10 %");
}

// What the field answers goes into the effect's parameter.
TEST_F(XeThresholdFieldTest, AnswersTheMinimumForMinusInfinityAndNaN)
{
    for (const double value : {-HUGE_VAL, static_cast<double>(NAN), -1e300}) {
        [m_control setDoubleValue:value];
        EXPECT_EQ([m_control floatValue], -60.0F);
        EXPECT_EQ([m_control doubleValue], -60.0);
        EXPECT_EQ([[m_control objectValue] doubleValue], -60.0);
    }
    [m_control setDoubleValue:HUGE_VAL];
    EXPECT_EQ([m_control floatValue], 0.0F);
}

TEST_F(XeThresholdFieldTest, TypedValuesAreTaken)
{
    const struct {
        NSString* typed;
        float value;
        const char* text;
    } rows[] = {{@"-12", -12, "-12.00 dB"},      {@"-13 dB", -13, "-13.00 dB"},
                {@"-14dB", -14, "-14.00 dB"},    {@"-6,5", -6.5, "-6.50 dB"},
                {@"50 %", -6.0206F, "-6.02 dB"}, {@"-inf", -60, "-Inf."},
                {@"-99", -60, "-Inf."},          {@"7", 0, "0.00 dB"}};
    int sent = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE([row.typed UTF8String]);
        [m_control setDoubleValue:-30];
        typeOver(row.typed);
        EXPECT_NEAR([m_control floatValue], row.value, 1e-4);
        EXPECT_EQ(text(), row.text);
        EXPECT_EQ([m_counter count], ++sent);
    }
}

TEST_F(XeThresholdFieldTest, TypedPercentIsTaken)
{
    percent();
    const struct {
        NSString* typed;
        float value;
    } rows[] = {{@"50 %", 50}, {@"25%", 25}, {@"0", 0}, {@"101 %", 100}, {@"-20 dB", 10}};
    for (const auto& row : rows) {
        SCOPED_TRACE([row.typed UTF8String]);
        typeOver(row.typed);
        EXPECT_FLOAT_EQ([m_control floatValue], row.value);
    }
}

TEST_F(XeThresholdFieldTest, BadInputIsRefused)
{
    [m_control setDoubleValue:-30];
    for (NSString* const typed : {@"abc", @"-", @"1e400", @" ", @"nan"}) {
        SCOPED_TRACE([typed UTF8String]);
        typeOver(typed);
        EXPECT_EQ([m_control floatValue], -30.0F);
        EXPECT_EQ(text(), "-30.00 dB");
    }
    focus();
    press(NSDeleteCharacter);
    press('\r');
    EXPECT_EQ(text(), "-30.00 dB");
    [editor() insertText:[@"" stringByPaddingToLength:10000 withString:@"x" startingAtIndex:0]];
    press('\r');
    EXPECT_EQ(text(), "-30.00 dB");
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XeThresholdFieldTest, EndlessDigitsAreClamped)
{
    focus();
    [editor() insertText:[@"-" stringByPaddingToLength:10000 withString:@"9" startingAtIndex:0]];
    press('\r');
    EXPECT_EQ([m_control floatValue], -60.0F);
}

TEST_F(XeThresholdFieldTest, AutomationDoesNotDestroyTyping)
{
    [m_control setDoubleValue:-30];
    focus();
    type(@"-1");
    [m_control setDoubleValue:-20];
    type(@"2");
    EXPECT_EQ(text(), "-12");
    press('\r');
    EXPECT_EQ([m_control floatValue], -12.0F);
}

TEST_F(XeThresholdFieldTest, LastAutomationShowsWhenTypingIsDropped)
{
    [m_control setDoubleValue:-30];
    focus();
    type(@"-1");
    [m_control setDoubleValue:-20];
    press(0x1B);
    EXPECT_EQ(text(), "-20.00 dB");
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XeThresholdFieldTest, UnitSwitchShowsTheNewUnit)
{
    [m_control setDoubleValue:-30];
    [m_control setMinFinity:NO];
    EXPECT_EQ(text(), "-30.00 %");
    EXPECT_FALSE([m_control minFinity]);
}

TEST_F(XeThresholdFieldTest, ArrowsStepByOne)
{
    [m_control setDoubleValue:-1.5];
    focus();
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(text(), "-0.50 dB");
    press(NSUpArrowFunctionKey);
    EXPECT_EQ([m_control floatValue], 0.0F);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ([m_control floatValue], -1.0F);
    EXPECT_EQ([m_counter count], 3);
}

TEST_F(XeThresholdFieldTest, SwitchingOffEndsTyping)
{
    [m_control setDoubleValue:-30];
    focus();
    type(@"-1");
    [m_control setEnabled:NO];
    EXPECT_EQ([m_control currentEditor], nil);
    EXPECT_EQ(text(), "-30.00 dB");
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(XeThresholdFieldTest, ValueIsNotRoundedByWhatIsShown)
{
    [m_control setDoubleValue:-12.3456789];
    EXPECT_DOUBLE_EQ([m_control doubleValue], -12.3456789);
    focus();
    press('\r');
    EXPECT_DOUBLE_EQ([m_control doubleValue], -12.3456789);
    EXPECT_EQ([m_counter count], 0);
}

} // namespace
