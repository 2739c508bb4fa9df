#import "ControlsFixture.h"

#import "CurvePopUpButton.h"
#import "LengthTimeField.h"
#import "XeButton.h"
#import "XeDraw.h"
#import "XeLabel.h"
#import "XePalette.h"
#import "XePopUpButton.h"
#import "XeRadioMatrix.h"
#import "XeSlider.h"
#import "XeStepper.h"
#import "XeTextFieldCell.h"
#import "XeThresholdField.h"

#include <cmath>

namespace {

// Colours of what a view shows, read off the window.
class Picture {
public:
    explicit Picture(NSView* view)
    {
        [view display];
        [view lockFocus];
        m_picture = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]];
        [view unlockFocus];
    }
    ~Picture() { [m_picture release]; }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    // Pixels of about this tone.
    int count(XeTone tone) const
    {
        const XeRgb rgb = [XePalette channelsOfTone:tone];
        return countIf([rgb](NSColor* color) {
            return std::abs([color redComponent] - rgb.red) < 0.012 &&
                   std::abs([color greenComponent] - rgb.green) < 0.012 &&
                   std::abs([color blueComponent] - rgb.blue) < 0.012;
        });
    }

    int countReddish() const
    {
        return countIf(
            [](NSColor* color) { return [color redComponent] > [color blueComponent] + 0.2; });
    }

private:
    template <typename Condition>
    int countIf(Condition holds) const
    {
        int found = 0;
        for (NSInteger y = 0; y < [m_picture pixelsHigh]; ++y) {
            for (NSInteger x = 0; x < [m_picture pixelsWide]; ++x) {
                found += holds([m_picture colorAtX:x y:y]) ? 1 : 0;
            }
        }
        return found;
    }

    NSBitmapImageRep* m_picture;
};

class XeButtonLooksTest : public ControlsTest<XeButton> {
protected:
    void movePointer(NSPoint point)
    {
        [NSApp postEvent:gui_test::mouseEvent(m_window, NSMouseMoved, point) atStart:NO];
        gui_test::pump(0.05);
    }
    void SetUp() override
    {
        ControlsTest::SetUp();
        if (!IsSkipped()) {
            [m_control setTitle:@""];
            [m_control display];
            movePointer(NSMakePoint(5, 5));
        }
    }
};

TEST_F(XeButtonLooksTest, SurfaceShowsTheState)
{
    EXPECT_GT(Picture(m_control).count(XeTone::Control), 1000);
    [m_control highlight:YES];
    EXPECT_GT(Picture(m_control).count(XeTone::ControlPressed), 1000);
    [m_control highlight:NO];
    [m_control setEnabled:NO];
    EXPECT_GT(Picture(m_control).count(XeTone::ControlDisabled), 1000);
}

TEST_F(XeButtonLooksTest, PointerLightsItUpAndLeavesItAgain)
{
    movePointer(gui_test::centerOf(m_control));
    EXPECT_GT(Picture(m_control).count(XeTone::ControlHover), 1000);
    movePointer(NSMakePoint(5, 5));
    EXPECT_EQ(Picture(m_control).count(XeTone::ControlHover), 0);
}

TEST_F(XeButtonLooksTest, HoverFollowsAMovedControl)
{
    [m_control setFrameOrigin:NSMakePoint(50, 150)];
    [[m_window contentView] display];
    movePointer(NSMakePoint(130, 91));
    EXPECT_EQ(Picture(m_control).count(XeTone::ControlHover), 0);
    movePointer(gui_test::centerOf(m_control));
    EXPECT_GT(Picture(m_control).count(XeTone::ControlHover), 1000);
}

// A pointer that comes after the control has gone must not meet its cell.
TEST_F(XeButtonLooksTest, RemovedControlIsTrackedNoMore)
{
    [m_control removeFromSuperview];
    m_control = nil;
    gui_test::pump(0.01);
    movePointer(NSMakePoint(130, 91));
    movePointer(NSMakePoint(5, 5));
}

// With the caller's reference; a matrix has two cells, one chosen.
NSControl* newControl(Class kind)
{
    NSControl* const control = [[kind alloc] initWithFrame:NSMakeRect(50, 20, 160, 22)];
    if ([control isKindOfClass:[NSMatrix class]]) {
        [static_cast<NSMatrix*>(control) renewRows:1 columns:2];
        [static_cast<NSMatrix*>(control) selectCellAtRow:0 column:0];
    }
    return control;
}

// NSButton and NSPopUpButton see to it themselves, NSMatrix, NSSlider and NSStepper do not.
TEST_F(XeButtonLooksTest, EveryControlIsDrawnAgainWhenTheKeyboardComesAndGoes)
{
    Class const kinds[] = {[XeButton class], [XePopUpButton class], [XeRadioMatrix class],
                           [XeSlider class], [XeStepper class],     [CurvePopUpButton class]};
    for (Class const kind : kinds) {
        SCOPED_TRACE([NSStringFromClass(kind) UTF8String]);
        NSControl* const control = newControl(kind);
        [[m_window contentView] addSubview:control];
        [m_window makeFirstResponder:nil];
        [control setNeedsDisplay:NO];
        EXPECT_TRUE([m_window makeFirstResponder:control]);
        EXPECT_TRUE([control needsDisplay]);
        [control setNeedsDisplay:NO];
        EXPECT_TRUE([m_window makeFirstResponder:nil]);
        EXPECT_TRUE([control needsDisplay]);
        [control removeFromSuperview];
        [control release];
    }
}

// The cells of a control, which whoever asked for them may still have when the control has gone.
NSArray* cellsOf(NSControl* control)
{
    return [control isKindOfClass:[NSMatrix class]] ? [static_cast<NSMatrix*>(control) cells]
                                                    : @[ [control cell] ];
}

TEST_F(XeButtonLooksTest, CellsOfEveryControlMayOutliveIt)
{
    Class const kinds[] = {
        [XeButton class],         [XePopUpButton class],   [XeRadioMatrix class],
        [XeSlider class],         [XeStepper class],       [XeLabel class],
        [XeThresholdField class], [LengthTimeField class], [CurvePopUpButton class]};
    for (Class const kind : kinds) {
        SCOPED_TRACE([NSStringFromClass(kind) UTF8String]);
        NSArray* cells = nil;
        @autoreleasepool {
            NSControl* const control = newControl(kind);
            [[m_window contentView] addSubview:control];
            [control display];
            movePointer(gui_test::centerOf(control));
            cells = [cellsOf(control) retain];
            [control removeFromSuperview];
            [control release];
        }
        ASSERT_GT([cells count], 0U);
        [cells release];
        movePointer(NSMakePoint(5, 5));
    }
}

TEST_F(XeButtonLooksTest, CopiedCellsAreTrackedByThemselves)
{
    NSCell* const copy = [[m_control cell] copy];
    [copy release];
    movePointer(gui_test::centerOf(m_control));
    EXPECT_GT(Picture(m_control).count(XeTone::ControlHover), 1000);
}

TEST_F(XeButtonLooksTest, FocusRingShowsWhileItHasTheKeyboard)
{
    EXPECT_EQ(Picture(m_control).count(XeTone::FocusRing), 0);
    focus();
    EXPECT_GT(Picture(m_control).count(XeTone::FocusRing), 200);
    [m_window makeFirstResponder:nil];
    EXPECT_EQ(Picture(m_control).count(XeTone::FocusRing), 0);
}

using XeSliderLooksTest = ControlsTest<XeSlider>;

TEST_F(XeSliderLooksTest, AccentFillsUpToTheKnob)
{
    [m_control setMaxValue:1];
    [m_control setDoubleValue:0.25];
    const int quarter = Picture(m_control).count(XeTone::Accent);
    [m_control setDoubleValue:0.75];
    const int threeQuarters = Picture(m_control).count(XeTone::Accent);
    EXPECT_GT(quarter, 50);
    EXPECT_GT(threeQuarters, 2 * quarter);
    [m_control setDoubleValue:0];
    EXPECT_EQ(Picture(m_control).count(XeTone::Accent), 0);
}

TEST_F(XeSliderLooksTest, KnobFollowsTheMouse)
{
    [m_control setMaxValue:1];
    [m_control display];
    const NSPoint middle = gui_test::centerOf(m_control);
    gui_test::drag(m_window, {NSMakePoint(57, middle.y), middle});
    EXPECT_NEAR([m_control doubleValue], 0.5, 0.02);
}

TEST_F(XeSliderLooksTest, EmptyRangeDraws)
{
    [m_control setMinValue:1];
    [m_control setMaxValue:1];
    EXPECT_EQ(Picture(m_control).count(XeTone::Accent), 0);
}

using XeLabelTest = ControlsTest<XeLabel>;

TEST_F(XeLabelTest, CannotBeEdited)
{
    [m_control setStringValue:@"LILIHTHEFT"];
    gui_test::drag(m_window, {gui_test::centerOf(m_control)});
    EXPECT_EQ([m_control currentEditor], nil);
}

// The editor greys labels by their colour.
TEST_F(XeLabelTest, TextHasTheColorItWasGiven)
{
    [m_control setStringValue:@"Length"];
    [m_control setTextColor:[NSColor colorWithCalibratedRed:1 green:0 blue:0 alpha:1]];
    EXPECT_GT(Picture(m_control).countReddish(), 10);
    [m_control setTextColor:[NSColor colorWithCalibratedRed:1 green:1 blue:1 alpha:1]];
    EXPECT_EQ(Picture(m_control).countReddish(), 0);
}

TEST_F(XeLabelTest, NewColorIsShownWithoutAnotherReasonToDraw)
{
    [m_control setStringValue:@"Length"];
    [m_control display];
    ASSERT_FALSE([m_control needsDisplay]);
    [m_control setTextColor:[NSColor lightGrayColor]];
    EXPECT_TRUE([m_control needsDisplay]);
    [m_control display];
    [m_control setTextColor:[NSColor lightGrayColor]];
    EXPECT_FALSE([m_control needsDisplay]);
}

using XeTextFieldCellTest = ControlsTest<XeThresholdField>;

// One field editor serves the whole window of the host, and gets its own looks back however the
// editing ends.
class FieldEditorLooksTest : public XeTextFieldCellTest {
protected:
    void SetUp() override
    {
        XeTextFieldCellTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        m_other = [[[NSTextField alloc] initWithFrame:NSMakeRect(50, 20, 100, 22)] autorelease];
        [[m_window contentView] addSubview:m_other];
        [m_window makeFirstResponder:m_other];
        m_caret = [[otherEditor() insertionPointColor] retain];
        m_marking = [[otherEditor() selectedTextAttributes] retain];
        focus();
        EXPECT_EQ([editor() insertionPointColor], [XePalette color:XeTone::Accent]);
        EXPECT_EQ([[editor() selectedTextAttributes] objectForKey:NSBackgroundColorAttributeName],
                  [XePalette color:XeTone::Selection]);
    }
    void TearDown() override
    {
        [m_caret release];
        [m_marking release];
        XeTextFieldCellTest::TearDown();
    }
    NSTextView* otherEditor() { return static_cast<NSTextView*>([m_other currentEditor]); }
    void expectOwnLooksInOther()
    {
        [m_window makeFirstResponder:m_other];
        EXPECT_TRUE([[otherEditor() insertionPointColor] isEqual:m_caret]);
        EXPECT_EQ([otherEditor() selectedTextAttributes], m_marking);
    }

    NSTextField* m_other = nil; // owned by the window
    NSColor* m_caret = nil;
    NSDictionary* m_marking = nil;
};

TEST_F(FieldEditorLooksTest, ComeBackWhenFocusMovesOn) { expectOwnLooksInOther(); }

TEST_F(FieldEditorLooksTest, ComeBackWhenTheFieldIsSwitchedOff)
{
    [m_control setEnabled:NO];
    expectOwnLooksInOther();
}

// Being taken out is one way of leaving the field: what was typed is taken.
TEST_F(FieldEditorLooksTest, ComeBackWhenTheFieldIsTakenOutWhileTyping)
{
    type(@"-1");
    [m_control removeFromSuperview];
    m_control = nil;
    expectOwnLooksInOther();
    EXPECT_EQ([m_counter count], 1);
}

// Nothing jumps when editing begins.
TEST_F(XeTextFieldCellTest, FieldEditorLiesWhereTheTextWas)
{
    const NSRect place = [[m_control cell] drawingRectForBounds:[m_control bounds]];
    focus();
    NSView* const clip = [editor() superview];
    const NSRect edited = [clip convertRect:[clip bounds] toView:m_control];
    EXPECT_TRUE(NSEqualRects(place, edited)) << [NSStringFromRect(edited) UTF8String];
}

TEST(XeDraw, DigitsAreEquallyWideWhenSpaced)
{
    REQUIRE_DISPLAY();
    NSFont* const font = [XePalette font:XeFontRole::Number];
    NSDictionary* const attributes = @{NSFontAttributeName : font};
    double expected = 0;
    for (NSString* text in @[ @"00000x", @"11111x", @"44444x", @"12345x", @"97531x" ]) {
        NSMutableAttributedString* const spaced =
            [[[NSMutableAttributedString alloc] initWithString:text
                                                    attributes:attributes] autorelease];
        xenon::draw::space(spaced, font);
        expected = expected == 0 ? [spaced size].width : expected;
        EXPECT_NEAR([spaced size].width, expected, 0.01) << [text UTF8String];
    }
}

} // namespace
