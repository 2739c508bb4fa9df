#import "XeSlider.h"

#import "GuiTest.h"
#import "SliderProbe.h"
#import "XeSliderCell.h"
#import "XeTry.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

using gui_test::centerOf;
using gui_test::drag;
using gui_test::mouseEvent;
using gui_test::pressKey;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr NSRect kWide = {{20, 20}, {200, 24}};
constexpr NSRect kTall = {{20, 20}, {24, 200}};

constexpr NSUInteger kOption = NSAlternateKeyMask;
constexpr NSUInteger kOptionCommand = NSAlternateKeyMask | NSCommandKeyMask;

NSString* keyText(unichar key) { return [NSString stringWithCharacters:&key length:1]; }

const char* actionName(NSControl* control)
{
    return [NSStringFromSelector([control action]) UTF8String];
}

// A window with one slider of the range -1000..1000 that stands at 0.
class Slider : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_pool = [[NSAutoreleasePool alloc] init];
        m_window = gui_test::makeWindow(NSMakeSize(260, 260));
        m_listener = [[SliderListener alloc] initWithLog:&m_log];
        useSlider(kWide);
    }

    void TearDown() override
    {
        if (m_window == nil) {
            return;
        }
        dropSlider();
        [m_listener release];
        [m_model release];
        [m_window close];
        [m_window release];
        [m_pool drain];
    }

    void useSlider(NSRect frame)
    {
        dropSlider();
        m_slider = [[SliderProbe alloc] initWithFrame:frame];
        [m_slider setMinValue:-1000];
        [m_slider setMaxValue:1000];
        [m_listener listenTo:m_slider];
        [[m_window contentView] addSubview:m_slider];
        [m_window makeFirstResponder:m_slider];
        [m_window display];
        [m_slider setLog:&m_log];
    }

    void setValue(double value)
    {
        [m_slider setDoubleValue:value];
        m_log.clear();
    }

    void bindTo(NSString* keyPath, double level)
    {
        m_model = [[SliderModel alloc] init];
        [m_model setLevel:level];
        [m_slider bind:NSValueBinding toObject:m_model withKeyPath:keyPath options:nil];
        m_log.clear();
    }

    void press(unichar key, NSUInteger modifiers = 0)
    {
        pressKey(m_window, keyText(key), modifiers | NSFunctionKeyMask);
    }

    double value() const { return [m_slider doubleValue]; }

    NSWindow* m_window = nil;
    SliderProbe* m_slider = nil;
    SliderListener* m_listener = nil;
    SliderModel* m_model = nil;
    SliderLog m_log;

private:
    void dropSlider()
    {
        [m_slider unbind:NSValueBinding];
        [m_slider setLog:nullptr];
        [m_slider removeFromSuperview];
        [m_slider release];
        m_slider = nil;
    }

    NSAutoreleasePool* m_pool = nil;
};

// --- what a new slider is ------------------------------------------------------------------------

// clang-format off
const struct { NSString* name; double atFirst; } kProperties[] = {
    { @"tinyStep",      0.01 },
    { @"smallStep",     0.1  },
    { @"basicStep",     1    },
    { @"largeStep",     5    },
    { @"muchoStep",    10    },
    { @"grandStep",   100    },
    { @"defaultValue",  0    },
};
// clang-format on

TEST_F(Slider, StartsWithItsSixStepsAndTakesTheFocusOnClick)
{
    for (const auto& row : kProperties) {
        SCOPED_TRACE([row.name UTF8String]);
        EXPECT_EQ([[m_slider valueForKey:row.name] doubleValue], row.atFirst);
    }
    EXPECT_TRUE([m_slider becomeFirstResponderOnClick]);
}

TEST_F(Slider, KeepsEachOfItsPropertiesApart)
{
    double number = 0.5;
    for (const auto& row : kProperties) {
        [m_slider setValue:@(number++) forKey:row.name];
    }
    number = 0.5;
    for (const auto& row : kProperties) {
        SCOPED_TRACE([row.name UTF8String]);
        EXPECT_EQ([[m_slider valueForKey:row.name] doubleValue], number++);
    }
    [m_slider setBecomeFirstResponderOnClick:NO];
    EXPECT_FALSE([m_slider becomeFirstResponderOnClick]);
}

TEST_F(Slider, DrawsItselfWithTheCellOfTheFace)
{
    EXPECT_TRUE([[m_slider cell] isKindOfClass:[XeSliderCell class]]);
}

TEST_F(Slider, StartsAsItsOwnTarget)
{
    XeSlider* const slider = [[[XeSlider alloc] initWithFrame:kWide] autorelease];
    EXPECT_EQ([slider target], slider);
    EXPECT_STREQ(actionName(slider), "sliderChanged:");
}

TEST_F(Slider, NamesItsTwoNotifications)
{
    EXPECT_TRUE([XeSliderMouseDownNotification isEqual:@"XeSliderMouseDownNotification"]);
    EXPECT_TRUE([XeSliderMouseUpNotification isEqual:@"XeSliderMouseUpNotification"]);
}

TEST_F(Slider, OfAnArchiveTakesItsStoredValueAsDefaultAndIsItsOwnTarget)
{
    setValue(-20);
    [m_slider setDefaultValue:3];
    [m_slider setBasicStep:3];
    [m_slider setTarget:nil];
    NSData* const archive = [NSKeyedArchiver archivedDataWithRootObject:m_slider];
    XeSlider* const decoded = [NSKeyedUnarchiver unarchiveObjectWithData:archive];
    ASSERT_TRUE([decoded isKindOfClass:[XeSlider class]]);
    EXPECT_EQ([decoded doubleValue], -20);
    EXPECT_EQ([decoded defaultValue], -20);
    EXPECT_EQ([decoded basicStep], 1.0);
    EXPECT_TRUE([decoded becomeFirstResponderOnClick]);
    EXPECT_EQ([decoded target], decoded);
    EXPECT_STREQ(actionName(decoded), "sliderChanged:");
}

// The connections of an interface description are made after the slider initialised itself.
TEST_F(Slider, OfAnInterfaceDescriptionSendsTheConnectedAction)
{
    NSString* const path = @CONTROLS_TEST_DATA "/SliderPanel.xib";
    NSMutableArray* const topLevel = [NSMutableArray array];
    NSDictionary* const names = @{NSNibOwner : m_listener, NSNibTopLevelObjects : topLevel};
    ASSERT_TRUE([NSBundle loadNibFile:path externalNameTable:names withZone:nullptr]);

    XeSlider* slider = nil;
    for (id object in topLevel) {
        if ([object isKindOfClass:[NSView class]]) {
            slider = [[object subviews] lastObject];
        }
    }
    ASSERT_TRUE([slider isKindOfClass:[XeSlider class]]);
    EXPECT_EQ([slider target], m_listener);
    EXPECT_STREQ(actionName(slider), "sliderMoved:");
    EXPECT_TRUE([[slider cell] isKindOfClass:[XeSliderCell class]]);
    EXPECT_EQ([slider doubleValue], -20);
    EXPECT_EQ([slider defaultValue], -20);
    EXPECT_EQ([slider basicStep], 1.0);

    m_log.clear();
    [slider changeValueBy:5];
    EXPECT_THAT(m_log, ElementsAre("action -15"));
}

// --- keys ----------------------------------------------------------------------------------------

// clang-format off
constexpr struct KeyRow {
    const char* name;
    unichar key;
    double plain, option, optionCommand;   // value after the key, from 0
} kStepRows[] = {
    // key                                   plain   Option  Option-Command
    { "Up",        NSUpArrowFunctionKey,        1,     0.1,     0.01 },
    { "Right",     NSRightArrowFunctionKey,     1,     0.1,     0.01 },
    { "Down",      NSDownArrowFunctionKey,     -1,    -0.1,    -0.01 },
    { "Left",      NSLeftArrowFunctionKey,     -1,    -0.1,    -0.01 },
    { "Page Up",   NSPageUpFunctionKey,         5,    10,     100    },
    { "Page Down", NSPageDownFunctionKey,      -5,   -10,    -100    },
};
constexpr KeyRow kWideEndRows[] = {
    { "Home, wide", NSHomeFunctionKey,      -1000, -1000,   -1000    },
    { "End, wide",  NSEndFunctionKey,        1000,  1000,    1000    },
};
constexpr KeyRow kTallEndRows[] = {
    { "Home, tall", NSHomeFunctionKey,       1000,  1000,    1000    },
    { "End, tall",  NSEndFunctionKey,       -1000, -1000,   -1000    },
};
// clang-format on

class SliderKeys : public Slider {
protected:
    void expectKey(unichar key, NSUInteger modifiers, double expected)
    {
        SCOPED_TRACE(testing::Message() << "modifiers 0x" << std::hex << modifiers);
        setValue(0);
        press(key, modifiers);
        EXPECT_EQ(value(), expected);
        EXPECT_EQ(std::count(m_log.begin(), m_log.end(), "hook"), 2);
        EXPECT_EQ(m_log.size(), 3u) << "one setting, one action, one end of the key";
    }

    template <std::size_t Count>
    void expectRows(const KeyRow (&rows)[Count])
    {
        for (const KeyRow& row : rows) {
            SCOPED_TRACE(row.name);
            expectKey(row.key, 0, row.plain);
            expectKey(row.key, kOption, row.option);
            expectKey(row.key, kOptionCommand, row.optionCommand);
        }
    }
};

TEST_F(SliderKeys, StepAWideSlider)
{
    expectRows(kStepRows);
    expectRows(kWideEndRows);
}

TEST_F(SliderKeys, StepATallSlider)
{
    useSlider(kTall);
    expectRows(kStepRows);
    expectRows(kTallEndRows);
}

TEST_F(SliderKeys, OfASquareSliderAreThoseOfAWideOne)
{
    useSlider(NSMakeRect(20, 20, 40, 40));
    expectRows(kWideEndRows);
}

TEST_F(SliderKeys, FollowTheOrientationAfterAResize)
{
    [m_slider setFrame:kTall];
    expectRows(kTallEndRows);
}

TEST_F(SliderKeys, IgnoreAllOtherModifiers)
{
    // clang-format off
    const struct { NSUInteger modifiers; double expected; } rows[] = {
        { NSShiftKeyMask,                                        1    },
        { NSControlKeyMask,                                      1    },
        { NSCommandKeyMask,                                      1    },
        { NSShiftKeyMask | NSControlKeyMask | NSCommandKeyMask,  1    },
        { NSNumericPadKeyMask | NSAlphaShiftKeyMask,             1    },
        { kOption | NSShiftKeyMask,                              0.1  },
        { kOption | NSControlKeyMask,                            0.1  },
        { kOptionCommand | NSShiftKeyMask | NSControlKeyMask,    0.01 },
    };
    // clang-format on
    for (const auto& row : rows) {
        expectKey(NSUpArrowFunctionKey, row.modifiers, row.expected);
    }
}

TEST_F(SliderKeys, UseTheStepsThatWereSet)
{
    [m_slider setTinyStep:0.25];
    [m_slider setSmallStep:0.5];
    [m_slider setBasicStep:2];
    [m_slider setLargeStep:3];
    [m_slider setMuchoStep:7];
    [m_slider setGrandStep:11];
    const KeyRow rows[] = {
        {"Up", NSUpArrowFunctionKey, 2, 0.5, 0.25},
        {"Page Down", NSPageDownFunctionKey, -3, -7, -11},
    };
    expectRows(rows);
}

TEST_F(SliderKeys, SetTheValueThenSendTheActionThenTellTheHook)
{
    press(NSUpArrowFunctionKey);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 1", "hook"));
}

TEST_F(SliderKeys, SendNoActionWhereTheValueStays)
{
    [m_slider setBasicStep:0];
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(value(), 0);
    EXPECT_THAT(m_log, ElementsAre("hook", "hook"));
}

// The slider asks for 5 past its end and says so, whatever NSSlider then makes of it.
TEST_F(SliderKeys, PastTheEndOfAnUnboundSliderStillSendTheAction)
{
    setValue(1000);
    press(NSPageUpFunctionKey);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 1000", "hook"));
}

TEST_F(SliderKeys, OfTwoCharactersOrNoneOnlyTellTheHook)
{
    NSString* const up = keyText(NSUpArrowFunctionKey);
    NSString* const twoSteps = [up stringByAppendingString:up];
    for (NSString* const characters : {twoSteps, @"ab", @""}) {
        SCOPED_TRACE([characters UTF8String]);
        m_log.clear();
        [m_slider keyDown:gui_test::keyDown(m_window, characters)];
        EXPECT_EQ(value(), 0);
        EXPECT_THAT(m_log, ElementsAre("hook"));
    }
}

// Option and Up may well type something; what counts is the key.
TEST_F(SliderKeys, AreReadIgnoringTheirModifiers)
{
    NSEvent* const event = [NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:kOption
                                           timestamp:0
                                        windowNumber:[m_window windowNumber]
                                             context:[m_window graphicsContext]
                                          characters:@"xy"
                         charactersIgnoringModifiers:keyText(NSUpArrowFunctionKey)
                                           isARepeat:NO
                                             keyCode:0];
    [m_slider keyDown:event];
    EXPECT_EQ(value(), 0.1);
}

TEST_F(SliderKeys, ThatMeanNothingHereGoToTheBaseClass)
{
    [m_slider setNextResponder:m_listener];
    pressKey(m_window, @"q");
    press(NSUpArrowFunctionKey);
    [m_slider setNextResponder:[m_window contentView]];
    EXPECT_THAT(m_log, ElementsAre("key q", "hook", "hook", "action 1", "hook"));
}

// --- the mouse -----------------------------------------------------------------------------------

class SliderMouse : public Slider {
protected:
    NSPoint at(double fraction) const
    {
        const NSRect bounds = [m_slider bounds];
        return [m_slider convertPoint:NSMakePoint(bounds.size.width * fraction, NSMidY(bounds))
                               toView:nil];
    }

    void doubleClick() { drag(m_window, {at(0.75)}, 2); }
};

TEST_F(SliderMouse, DragIsAnnouncedAroundItsValues)
{
    drag(m_window, {at(0.5), at(0.6), at(0.75)});
    ASSERT_GE(m_log.size(), 5u);
    EXPECT_EQ(m_log.front(), "down");
    EXPECT_EQ(m_log[m_log.size() - 2], "up");
    EXPECT_EQ(m_log.back(), "hook");
    const SliderLog actions(m_log.begin() + 1, m_log.end() - 2);
    EXPECT_THAT(actions, Each(StartsWith("action ")));
    EXPECT_NE(actions.front(), actions.back()) << "values are sent while the drag goes on";
    EXPECT_GT(value(), 300);
    EXPECT_LT(value(), 700);
}

TEST_F(SliderMouse, ClickThatMovesNothingIsAnnouncedToo)
{
    drag(m_window, {at(0.5)});
    EXPECT_EQ(m_log.front(), "down");
    EXPECT_EQ(m_log.back(), "hook");
    EXPECT_EQ(std::count(m_log.begin(), m_log.end(), "up"), 1);
}

TEST_F(SliderMouse, ClickThatMovesNothingSendsItsValueOnce)
{
    setValue(1000);
    drag(m_window, {NSMakePoint(213, 32), NSMakePoint(213, 32)});
    EXPECT_THAT(m_log, ElementsAre("down", "action 1000", "up", "hook"));
}

TEST_F(SliderMouse, DragSendsEachOfItsValuesOnce)
{
    drag(m_window, {at(0.6), at(0.6), at(0.75), at(0.75)});
    ASSERT_EQ(m_log.size(), 5u);
    EXPECT_THAT(m_log[1], StartsWith("action "));
    EXPECT_THAT(m_log[2], StartsWith("action "));
    EXPECT_NE(m_log[1], m_log[2]);
}

// The press moves the knob and is answered with another value. Neither the pointer that rests then
// nor the release sends that value.
TEST_F(SliderMouse, ValueSetWhileThePointerRestsIsNotSentAndStays)
{
    [m_listener replyToNextActionWith:-800];
    drag(m_window, {at(0.75), at(0.75)});
    ASSERT_EQ(m_log.size(), 5u);
    EXPECT_THAT(m_log[1], StartsWith("action "));
    EXPECT_EQ(m_log[2], "hook");
    EXPECT_EQ(m_log[3], "up");
    EXPECT_EQ(value(), -800);
}

TEST_F(SliderMouse, DragGoesOnFromThePointerAfterAValueWasSet)
{
    [m_listener replyToNextActionWith:-800];
    drag(m_window, {at(0.6), at(0.75)});
    EXPECT_GT(value(), 300);
    EXPECT_THAT(m_log, Not(Contains("action -800")));
    EXPECT_THAT(m_log[m_log.size() - 3], StartsWith("action "));
}

TEST_F(SliderMouse, ChangeOfABoundModelIsNotWrittenBackByTheDrag)
{
    bindTo(@"level", 40);
    [m_listener replyToNextActionWith:-800];
    drag(m_window, {at(0.75), at(0.75)});
    EXPECT_EQ(value(), -800);
    EXPECT_EQ([m_model level], -800);
    EXPECT_THAT(m_log, Not(Contains("action -800")));
}

TEST_F(SliderMouse, NotificationsCarryTheSliderAlone)
{
    XeSlider* const other = [[[XeSlider alloc] initWithFrame:kTall] autorelease];
    [m_listener listenTo:other];
    drag(m_window, {at(0.5)});
    EXPECT_EQ(std::count(m_log.begin(), m_log.end(), "down"), 1);
    EXPECT_EQ(std::count(m_log.begin(), m_log.end(), "up"), 1);
}

TEST_F(SliderMouse, ClickTakesTheFocus)
{
    [m_window makeFirstResponder:nil];
    drag(m_window, {at(0.5)});
    EXPECT_EQ([m_window firstResponder], m_slider);
}

TEST_F(SliderMouse, ClickLeavesTheFocusWhereItIsWhenToldSo)
{
    [m_window makeFirstResponder:nil];
    [m_slider setBecomeFirstResponderOnClick:NO];
    drag(m_window, {at(0.5)});
    EXPECT_NE([m_window firstResponder], m_slider);
    EXPECT_EQ(m_log.front(), "down");
    EXPECT_TRUE([m_window makeFirstResponder:m_slider]) << "the keyboard still gets there";
}

TEST_F(SliderMouse, DoubleClickTakesTheFocusToo)
{
    [m_window makeFirstResponder:nil];
    doubleClick();
    EXPECT_EQ([m_window firstResponder], m_slider);
}

TEST_F(SliderMouse, ClickOnADisabledSliderIsAnnouncedButMovesNothing)
{
    [m_window makeFirstResponder:nil];
    [m_slider setEnabled:NO];
    drag(m_window, {at(0.75)});
    EXPECT_NE([m_window firstResponder], m_slider);
    EXPECT_EQ(value(), 0);
    EXPECT_THAT(m_log, ElementsAre("down", "up", "hook"));
}

TEST_F(SliderMouse, DoubleClickRestoresTheDefaultWithoutAnnouncement)
{
    [m_slider setDefaultValue:-18];
    setValue(250);
    doubleClick();
    EXPECT_EQ(value(), -18);
    EXPECT_THAT(m_log, ElementsAre("hook", "action -18"));
}

TEST_F(SliderMouse, TripleClickIsLikeADoubleClick)
{
    setValue(250);
    drag(m_window, {at(0.75)}, 3);
    EXPECT_EQ(value(), 0);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 0"));
}

TEST_F(SliderMouse, DoubleClickAtTheDefaultSendsNoAction)
{
    doubleClick();
    EXPECT_EQ(value(), 0);
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

TEST_F(SliderMouse, DoubleClickOnABoundSliderWritesTheModel)
{
    bindTo(@"level", 40);
    [m_slider setDefaultValue:-18];
    doubleClick();
    EXPECT_EQ([m_model level], -18);
    EXPECT_THAT(m_log, ElementsAre("hook", "action -18"));
}

} // namespace

// A slider that would accept the focus even when disabled.
@interface EagerSlider : XeSlider
@end

@implementation EagerSlider
- (BOOL)acceptsFirstResponder
{
    return YES;
}
@end

namespace {

// The press goes straight to the slider here, so no window has offered it the focus before.
TEST_F(SliderMouse, PressItselfTakesTheFocusOfTheEnabledSliderOnly)
{
    // clang-format off
    const struct { BOOL isEnabled, takesFocus; bool getsFocus; } rows[] = {
        { YES, YES, true }, { YES, NO, false }, { NO, YES, false }, { NO, NO, false },
    };
    // clang-format on
    EagerSlider* const slider = [[[EagerSlider alloc] initWithFrame:kWide] autorelease];
    [[m_window contentView] addSubview:slider];
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "enabled " << int{row.isEnabled});
        [m_window makeFirstResponder:nil];
        [slider setEnabled:row.isEnabled];
        [slider setBecomeFirstResponderOnClick:row.takesFocus];
        [slider mouseDown:mouseEvent(m_window, NSLeftMouseDown, at(0.5), 2)];
        EXPECT_EQ([m_window firstResponder] == slider, row.getsFocus);
    }
    [slider removeFromSuperview];
}

// --- values --------------------------------------------------------------------------------------

TEST_F(Slider, SetterTellsTheHookAndSendsNothing)
{
    [m_slider setDoubleValue:2];
    EXPECT_EQ(value(), 2);
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

TEST_F(Slider, OwnActionTellsTheHook)
{
    [m_slider sliderChanged:nil];
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

TEST_F(Slider, AsItsOwnTargetTellsTheHookAgain)
{
    [m_slider setTarget:m_slider];
    [m_slider setAction:@selector(sliderChanged:)];
    press(NSUpArrowFunctionKey);
    EXPECT_THAT(m_log, ElementsAre("hook", "hook", "hook"));
}

TEST_F(Slider, WithoutAnActionSendsNone)
{
    [m_slider setAction:nullptr];
    [m_slider setBoundObjectValue:5];
    EXPECT_EQ(value(), 5);
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

// The next responder answers the action and would get it if it went up the responder chain.
TEST_F(Slider, WithoutATargetSendsNothing)
{
    [m_slider setTarget:nil];
    [m_slider setNextResponder:m_listener];
    [m_slider setBoundObjectValue:5];
    [m_slider setNextResponder:[m_window contentView]];
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

TEST_F(Slider, ChangeByIsASetOfTheSum)
{
    setValue(2);
    [m_slider changeValueBy:-0.5];
    EXPECT_EQ(value(), 1.5);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 1.5"));
}

TEST_F(Slider, UnboundGivesNoBindingInformation) { EXPECT_EQ([m_slider getValueBinding], nil); }

TEST_F(Slider, BoundGivesItsBindingInformation)
{
    bindTo(@"level", 40);
    NSDictionary* const binding = [m_slider getValueBinding];
    EXPECT_EQ([binding objectForKey:NSObservedObjectKey], m_model);
    EXPECT_TRUE([[binding objectForKey:NSObservedKeyPathKey] isEqual:@"level"]);
}

TEST_F(Slider, BoundIsClampedToItsRange)
{
    [m_slider setMinValue:-60];
    [m_slider setMaxValue:0];
    // clang-format off
    const struct { double wanted, expected; } rows[] = {
        { -30, -30 }, { 0, 0 }, { -60, -60 }, { 0.5, 0 }, { 1e9, 0 }, { -60.5, -60 }, { -1e9, -60 },
    };
    // clang-format on
    bindTo(@"level", -2);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.wanted);
        [m_model setLevel:-2];
        [m_slider setBoundObjectValue:row.wanted];
        EXPECT_EQ([m_model level], row.expected);
        EXPECT_EQ(value(), row.expected);
    }
}

TEST_F(Slider, BoundStepsNoFurtherThanItsMaximum)
{
    [m_slider setMinValue:-60];
    [m_slider setMaxValue:0];
    bindTo(@"level", -2);
    press(NSPageUpFunctionKey);
    EXPECT_EQ([m_model level], 0);
    EXPECT_EQ(value(), 0);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 0", "hook"));
}

// At the end of the range the clamped value is the old one: nothing has changed.
TEST_F(Slider, BoundAtItsEndSendsNoAction)
{
    [m_slider setMaxValue:0];
    bindTo(@"level", 0);
    press(NSPageUpFunctionKey);
    EXPECT_EQ([m_model level], 0);
    EXPECT_THAT(m_log, ElementsAre("hook", "hook"));
}

TEST_F(Slider, BoundThroughSelfWritesTheKeyBehindIt)
{
    bindTo(@"self.level", 4);
    [m_slider setBoundObjectValue:7];
    EXPECT_EQ([m_model level], 7);
    EXPECT_EQ(value(), 7);
    EXPECT_THAT(m_log, ElementsAre("hook", "action 7"));
}

TEST_F(Slider, SetterOfABoundSliderLeavesTheModelAlone)
{
    bindTo(@"level", 4);
    [m_slider setDoubleValue:9];
    EXPECT_EQ([m_model level], 4);
    EXPECT_THAT(m_log, ElementsAre("hook"));
}

} // namespace

// A slider that tells of a binding of the test's choice.
@interface SliderWithBinding : SliderProbe {
    NSDictionary* m_binding;
}
@property (nonatomic, retain) NSDictionary* binding;
@end

@implementation SliderWithBinding
@synthesize binding = m_binding;
- (void)dealloc
{
    [m_binding release];
    [super dealloc];
}
- (NSDictionary*)infoForBinding:(NSString*)name
{
    return [name isEqual:NSValueBinding] ? m_binding : [super infoForBinding:name];
}
@end

namespace {

// A binding whose object or path is gone sets nothing, yet the wish to change is sent on.
TEST_F(Slider, IncompleteBindingSetsNothingButSendsTheAction)
{
    SliderModel* const model = [[[SliderModel alloc] init] autorelease];
    SliderWithBinding* const slider = [[[SliderWithBinding alloc] initWithFrame:kWide] autorelease];
    [slider setMaxValue:10];
    [m_listener listenTo:slider];
    [slider setLog:&m_log];
    for (NSDictionary* const binding :
         { @{NSObservedKeyPathKey : @"level"}, @{NSObservedObjectKey : model}, @{} }) {
        SCOPED_TRACE([[binding description] UTF8String]);
        [slider setBinding:binding];
        m_log.clear();
        [slider setBoundObjectValue:50];
        EXPECT_EQ([slider doubleValue], 0);
        EXPECT_EQ([model level], 0);
        EXPECT_THAT(m_log, ElementsAre("action 0"));
        m_log.clear();
        [slider setBoundObjectValue:0];
        EXPECT_THAT(m_log, ElementsAre());
    }
    [slider setTarget:nil];
}

void setThroughDottedPath(void* slider)
{
    [static_cast<XeSlider*>(static_cast<id>(slider)) setBoundObjectValue:1];
}

// The path is used as one key, so only the "self." in front may contain a dot.
TEST_F(Slider, LongerPathIsNotFollowed)
{
    SliderModel* const model = [[[SliderModel alloc] init] autorelease];
    SliderWithBinding* const slider = [[[SliderWithBinding alloc] initWithFrame:kWide] autorelease];
    [slider setBinding:@{NSObservedObjectKey : model, NSObservedKeyPathKey : @"self.self.level"}];
    char text[256] = "";
    EXPECT_EQ(XeTry(setThroughDottedPath, slider, text, sizeof text), 1);
    EXPECT_THAT(text, StartsWith("NSUnknownKeyException"));
}

} // namespace
