#import "ControlsFixture.h"

#import "CurvePopUpButton.h"
#import "LengthTimeField.h"
#import "XeButton.h"
#import "XeLabel.h"
#import "XePalette.h"
#import "XeRadioMatrix.h"
#import "XeStepper.h"
#import "XeThresholdField.h"
#import "XeThresholdFormatter.h"

namespace {

// All controls as they come out of an interface description, in a window.
class ControlsPanelTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_window = gui_test::makeWindow(NSMakeSize(300, 200));
        m_counter = [[ActionCounter alloc] init];
        NSMutableArray* const topLevel = [NSMutableArray array];
        NSDictionary* const names = @{NSNibOwner : m_counter, NSNibTopLevelObjects : topLevel};
        ASSERT_TRUE([NSBundle loadNibFile:@CONTROLS_TEST_DATA "/ControlsPanel.xib"
                        externalNameTable:names
                                 withZone:nullptr]);
        for (id object in topLevel) {
            if ([object isKindOfClass:[NSView class]]) {
                [[m_window contentView] addSubview:object];
                m_panel = object;
            }
        }
        ASSERT_NE(m_panel, nil);
        [m_panel display];
    }
    void TearDown() override
    {
        [m_window close];
        [m_window release];
        [m_counter release];
    }

    template <typename Control>
    Control* find(Class kind)
    {
        for (NSView* view in [m_panel subviews]) {
            if ([view isMemberOfClass:kind]) {
                return static_cast<Control*>(view);
            }
        }
        return nil;
    }
    void type(NSString* text)
    {
        for (NSUInteger i = 0; i < [text length]; ++i) {
            gui_test::pressKey(m_window, [text substringWithRange:NSMakeRange(i, 1)]);
        }
    }

    NSWindow* m_window = nil;
    NSView* m_panel = nil; // owned by the window
    ActionCounter* m_counter = nil;
};

TEST_F(ControlsPanelTest, EveryControlHasTheCellOfTheFace)
{
    const struct {
        Class control;
        const char* cell;
    } rows[] = {
        {[XeLabel class], "XeTextFieldCell"},
        {[LengthTimeField class], "XeTextFieldCell"},
        {[XeThresholdField class], "XeTextFieldCell"},
        {[CurvePopUpButton class], "XePopUpButtonCell"},
        {[XeStepper class], "XeStepperCell"},
        {[XeButton class], "XeButtonCell"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.cell);
        NSControl* const control = find<NSControl>(row.control);
        ASSERT_NE(control, nil);
        EXPECT_STREQ([NSStringFromClass([[control cell] class]) UTF8String], row.cell);
    }
    for (NSCell* cell in [find<XeRadioMatrix>([XeRadioMatrix class]) cells]) {
        EXPECT_STREQ([NSStringFromClass([cell class]) UTF8String], "XeRadioCell");
    }
}

TEST_F(ControlsPanelTest, FieldsAreReady)
{
    XeThresholdField* const threshold = find<XeThresholdField>([XeThresholdField class]);
    EXPECT_TRUE([[threshold formatter] isKindOfClass:[XeThresholdFormatter class]]);
    EXPECT_EQ([threshold font], [XePalette font:XeFontRole::Number]);
    LengthTimeField* const length = find<LengthTimeField>([LengthTimeField class]);
    EXPECT_EQ([length format], 0U);
    EXPECT_TRUE([length isEditable]);
    EXPECT_STREQ([[length stringValue] UTF8String], "");
    EXPECT_EQ([length objectValue], nil);
}

TEST_F(ControlsPanelTest, LabelKeepsItsColorAndText)
{
    XeLabel* const label = find<XeLabel>([XeLabel class]);
    EXPECT_STREQ([[label stringValue] UTF8String], "Length");
    NSColor* const color = [[label textColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    EXPECT_NEAR([color redComponent], 1, 0.001);
}

TEST_F(ControlsPanelTest, TypedValuesReachTheConnectedTarget)
{
    [m_window makeFirstResponder:find<NSView>([LengthTimeField class])];
    type(@"44100\r");
    EXPECT_EQ([m_counter count], 1);
    EXPECT_EQ([[m_counter lastValue] longLongValue], 44100);
    [m_window makeFirstResponder:find<NSView>([XeThresholdField class])];
    type(@"50 %\r");
    EXPECT_EQ([m_counter count], 2);
    EXPECT_EQ([[m_counter lastValue] doubleValue], 50);
}

// A matrix keeps the window's field editor for a cell that can be selected, and ends its editing
// once more when it goes; by then the window may be gone.
TEST_F(ControlsPanelTest, RadioCellsAreNotForEditing)
{
    XeRadioMatrix* const matrix = find<XeRadioMatrix>([XeRadioMatrix class]);
    ASSERT_EQ([[matrix cells] count], 2U);
    for (NSCell* cell in [matrix cells]) {
        EXPECT_FALSE([cell isEditable]);
        EXPECT_FALSE([cell isSelectable]);
        [cell setEditable:YES];
        EXPECT_FALSE([cell isSelectable]);
    }
    [m_window makeFirstResponder:matrix];
    [matrix selectText:nil];
    EXPECT_EQ([m_window firstResponder], matrix);
}

TEST_F(ControlsPanelTest, RadioClickReachesTheConnectedTarget)
{
    XeRadioMatrix* const matrix = find<XeRadioMatrix>([XeRadioMatrix class]);
    gui_test::drag(m_window, {[matrix convertPoint:NSMakePoint(80, 11) toView:nil]});
    EXPECT_EQ([matrix selectedColumn], 1);
    EXPECT_EQ([m_counter count], 1);
}

TEST_F(ControlsPanelTest, PopUpNamesItselfAsTheSenderBeforeItIsDrawn)
{
    CurvePopUpButton* const curves = find<CurvePopUpButton>([CurvePopUpButton class]);
    EXPECT_EQ([[curves cell] controlView], curves);
    [curves setTarget:m_counter];
    [curves setAction:@selector(act:)];
    [[curves menu] performActionForItemAtIndex:2];
    EXPECT_EQ([m_counter count], 1);
    EXPECT_EQ([m_counter lastSender], curves);
}

TEST_F(ControlsPanelTest, ButtonIsPushedByClickAndBySpace)
{
    XeButton* const button = find<XeButton>([XeButton class]);
    gui_test::drag(m_window, {gui_test::centerOf(button)});
    EXPECT_EQ([m_counter count], 1);
    [m_window makeFirstResponder:button];
    gui_test::pressKey(m_window, @" ");
    EXPECT_TRUE(gui_test::pumpUntil([this] { return [m_counter count] == 2; }));
}

TEST_F(ControlsPanelTest, CurvesAndStepperWork)
{
    CurvePopUpButton* const curves = find<CurvePopUpButton>([CurvePopUpButton class]);
    EXPECT_EQ([curves numberOfItems], 5);
    [curves setCurve:4];
    EXPECT_STREQ([[curves titleOfSelectedItem] UTF8String], "S-curve");
    XeStepper* const stepper = find<XeStepper>([XeStepper class]);
    [stepper setIntegerValue:5];
    [m_window makeFirstResponder:stepper];
    const unichar up = NSUpArrowFunctionKey;
    gui_test::pressKey(m_window, [NSString stringWithCharacters:&up length:1], NSFunctionKeyMask);
    EXPECT_EQ([stepper integerValue], 6);
    EXPECT_EQ([m_counter count], 1);
}

} // namespace
