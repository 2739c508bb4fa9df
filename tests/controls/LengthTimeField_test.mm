#import "LengthTimeField.h"

#import "ControlsFixture.h"

#include <cstdlib>
#include <limits>
#include <string>

// Target of the format menu, as the editor's view is.
@interface FormatMenuTarget : NSObject {
    std::uint32_t m_chosen;
    LengthTimeField* m_field; // not owned
}
- (id)initWithField:(LengthTimeField*)field;
- (void)onFormatMenuAction:(id)item;
- (BOOL)validateUserInterfaceItem:(id)item;
- (std::uint32_t)chosen;
@end

@implementation FormatMenuTarget

- (id)initWithField:(LengthTimeField*)field
{
    self = [super init];
    m_field = field;
    m_chosen = 999;
    return self;
}

- (void)onFormatMenuAction:(id)item
{
    m_chosen = static_cast<std::uint32_t>([item tag]);
}

- (BOOL)validateUserInterfaceItem:(id)item
{
    [item setState:[m_field format] == static_cast<std::uint32_t>([item tag])];
    return YES;
}

- (std::uint32_t)chosen
{
    return m_chosen;
}

@end

// Waits until a menu is open and clicks one of its items, as a user does, from inside the loop that
// tracks the menu.
@interface MenuClicker : NSObject {
    NSMenu* m_menu; // not owned
    NSInteger m_tag;
    NSTimer* m_timer; // owned by the run loop
}
- (id)initWithMenu:(NSMenu*)menu tag:(NSInteger)tag;
- (void)stop;
@end

@implementation MenuClicker

- (id)initWithMenu:(NSMenu*)menu tag:(NSInteger)tag
{
    self = [super init];
    m_menu = menu;
    m_tag = tag;
    m_timer = [NSTimer timerWithTimeInterval:0.05
                                      target:self
                                    selector:@selector(clickWhenOpen:)
                                    userInfo:nil
                                     repeats:YES];
    for (NSString* mode in @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:m_timer forMode:mode];
    }
    return self;
}

- (void)stop
{
    [m_timer invalidate];
    m_timer = nil;
}

- (void)clickWhenOpen:(NSTimer*)timer
{
    NSMenuView* const list = [m_menu menuRepresentation];
    if (![[list window] isVisible]) {
        return;
    }
    const NSRect row = [list rectOfItemAtIndex:[m_menu indexOfItemWithTag:m_tag]];
    const NSPoint inWindow = [list convertPoint:NSMakePoint(NSMidX(row), NSMidY(row)) toView:nil];
    const NSPoint onScreen = [[list window] convertBaseToScreen:inWindow];
    const double height = NSHeight([[NSScreen mainScreen] frame]);
    // A bare click would be too quick for the loop to see the pointer over the item.
    NSString* const command = [NSString
        stringWithFormat:@"(xdotool mousemove %d %d; sleep 0.1; xdotool mousedown 1; sleep 0.1; "
                         @"xdotool mouseup 1) &",
                         static_cast<int>(onScreen.x), static_cast<int>(height - onScreen.y)];
    EXPECT_EQ(std::system([command UTF8String]), 0);
    [self stop];
}

@end

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

class LengthTimeFieldTest : public ControlsTest<LengthTimeField> {
protected:
    void SetUp() override
    {
        ControlsTest::SetUp();
        [m_control setFrameAndSampleRate:44100];
        [m_control setFormat:zqposfmt_time_ms];
    }

    void show(std::int64_t samples) { [m_control setObjectValue:@(samples)]; }
    std::int64_t samples() { return [[m_control objectValue] longLongValue]; }
    std::string text() { return [[m_control stringValue] UTF8String]; }
    std::string selected()
    {
        return [[[editor() string] substringWithRange:[editor() selectedRange]] UTF8String];
    }
    void typeOver(NSString* typed)
    {
        focus();
        type(typed);
    }
    void caretAt(NSUInteger place) { [editor() setSelectedRange:NSMakeRange(place, 0)]; }
};

TEST_F(LengthTimeFieldTest, KeepsTheWholeRangeExactly)
{
    for (const std::int64_t value :
         {kLowest, std::int64_t{-1}, std::int64_t{0}, (std::int64_t{1} << 53) + 1, kHighest}) {
        for (const std::uint32_t format : {0U, 1U, 5U, 8U}) {
            SCOPED_TRACE(testing::Message() << value << " in " << format);
            [m_control setFormat:format];
            show(value);
            EXPECT_EQ(samples(), value);
        }
    }
}

TEST_F(LengthTimeFieldTest, ShowsTheValueInTheFormat)
{
    show(44100 * 61);
    EXPECT_EQ(text(), "00:01:01.000");
    [m_control setFormat:zqposfmt_samples];
    EXPECT_EQ(text(), "2690100");
    [m_control setFormat:zqposfmt_smpte_25];
    EXPECT_EQ(text(), "00:01:01:00");
    EXPECT_EQ([m_control format], 9U);
    EXPECT_EQ(samples(), 2690100);
}

TEST_F(LengthTimeFieldTest, FollowsRatesTempoSignatureAndTicks)
{
    show(48000 * 2);
    [m_control setFrameAndSampleRate:48000];
    EXPECT_EQ(text(), "00:00:02.000");
    [m_control setFormat:zqposfmt_time_frames];
    [m_control setFrameRate:50];
    show(48000 * 2 + 960);
    EXPECT_EQ(text(), "00:00:02.01");
    [m_control setFormat:zqposfmt_measures];
    [m_control setTempo:60];
    [m_control setTimeSignature:3 << 16 | 4];
    [m_control setTicksPerBeat:100];
    show(48000 * 4 + 24000);
    EXPECT_EQ(text(), "1:1.50");
    [m_control setIsLength:NO];
    EXPECT_EQ(text(), "2:2.50");
    EXPECT_EQ([m_control getIncrement], 48000);
}

// The editor's own order of calls for a new session in clock time, 75 frames a second included.
TEST_F(LengthTimeFieldTest, ClockTimeIsNotDisturbedByAFrameRate)
{
    [m_control setIsLength:YES];
    [m_control setFormat:zqposfmt_time_ms];
    [m_control setSampleRate:44100];
    [m_control setFrameRate:75];
    show(66150);
    EXPECT_EQ(text(), "00:00:01.500");
    EXPECT_EQ([m_control getIncrement], 4410);
}

TEST_F(LengthTimeFieldTest, SampleRateOfTheFormatObjectMakesTheIncrement)
{
    [m_control setSampleRate:96000];
    EXPECT_EQ([m_control getIncrement], 9600);
    show(44100);
    EXPECT_EQ(text(), "00:00:01.000");
    [m_control setFrameAndSampleRate:48000];
    EXPECT_EQ([m_control getIncrement], 4800);
}

TEST_F(LengthTimeFieldTest, FocusSelectsTheWholeText)
{
    show(44100);
    focus();
    EXPECT_EQ(selected(), "00:00:01.000");
}

TEST_F(LengthTimeFieldTest, ClickSelectsTheWholeText)
{
    show(44100);
    gui_test::drag(m_window, {gui_test::centerOf(m_control)});
    ASSERT_NE(editor(), nil);
    EXPECT_EQ(selected(), "00:00:01.000");
}

TEST_F(LengthTimeFieldTest, ReturnTakesTheTypedText)
{
    show(0);
    typeOver(@"1.5");
    EXPECT_EQ([m_counter count], 0);
    press('\r');
    EXPECT_EQ(samples(), 66150);
    EXPECT_EQ(text(), "00:00:01.500");
    EXPECT_EQ([m_counter count], 1);
    EXPECT_EQ([[m_counter lastValue] longLongValue], 66150);
    EXPECT_EQ(selected(), "00:00:01.500");
}

TEST_F(LengthTimeFieldTest, LeavingTheFieldTakesTheTypedTextOnce)
{
    NSTextField* const other =
        [[[NSTextField alloc] initWithFrame:NSMakeRect(50, 20, 100, 22)] autorelease];
    [[m_window contentView] addSubview:other];
    [m_control setNextKeyView:other];
    show(0);
    typeOver(@"2");
    press('\t');
    EXPECT_NE([other currentEditor], nil);
    EXPECT_EQ(samples(), 88200);
    EXPECT_EQ([m_counter count], 1);
}

// 44 samples show as 1 ms, which is 44.1: Return on an untouched text must not write it back.
TEST_F(LengthTimeFieldTest, UntouchedTextIsNotWritten)
{
    show(44144);
    focus();
    press('\r');
    EXPECT_EQ([m_counter count], 0);
    [m_window makeFirstResponder:nil];
    EXPECT_EQ([m_counter count], 0);
    EXPECT_EQ(samples(), 44144);
}

TEST_F(LengthTimeFieldTest, EscapeRestores)
{
    show(44100);
    typeOver(@"7:");
    press(0x1B);
    EXPECT_EQ(text(), "00:00:01.000");
    EXPECT_EQ(selected(), "00:00:01.000");
    press('\r');
    EXPECT_EQ([m_counter count], 0);
    EXPECT_EQ(samples(), 44100);
}

TEST_F(LengthTimeFieldTest, UnparsableTextIsRefusedAndTheOldValueComesBack)
{
    for (NSString* const typed : {@"abc", @"-", @"1e400", @"1:2:3:4:5", @" "}) {
        SCOPED_TRACE([typed UTF8String]);
        show(44100);
        typeOver(typed);
        press('\r');
        EXPECT_EQ(samples(), 44100);
        EXPECT_EQ(text(), "00:00:01.000");
    }
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(LengthTimeFieldTest, EmptiedAndEndlessTextsAreRefused)
{
    show(44100);
    focus();
    press(NSDeleteCharacter);
    EXPECT_EQ(text(), "");
    press('\r');
    EXPECT_EQ(text(), "00:00:01.000");
    NSString* const endless = [@"" stringByPaddingToLength:10000 withString:@"x" startingAtIndex:0];
    [editor() insertText:endless];
    press('\r');
    EXPECT_EQ(text(), "00:00:01.000");
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(LengthTimeFieldTest, TypedCountsAreClampedToTheNearerLimit)
{
    [m_control setMinValue:4410];
    [m_control setMaxValue:441000];
    show(44100);
    const struct {
        NSString* typed;
        std::int64_t samples;
    } rows[] = {{@"0.001", 4410},
                {@"11", 441000},
                {@"-5", 4410},
                {@"5", 220500},
                {@"99999999999999999999", 441000}};
    int sent = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE([row.typed UTF8String]);
        typeOver(row.typed);
        press('\r');
        EXPECT_EQ(samples(), row.samples);
        EXPECT_EQ([m_counter count], ++sent);
    }
}

// What the program sets is shown as it is: the effect knows best.
TEST_F(LengthTimeFieldTest, ProgramValuesAreNotClamped)
{
    [m_control setMinValue:4410];
    show(44);
    EXPECT_EQ(samples(), 44);
    EXPECT_EQ(text(), "00:00:00.001");
}

TEST_F(LengthTimeFieldTest, ThereAreNoLimitsAtFirst)
{
    [m_control setFormat:zqposfmt_samples];
    typeOver(@"-9223372036854775808");
    press('\r');
    EXPECT_EQ(samples(), kLowest);
    [m_control setMaxValue:1e300];
    [m_control setMinValue:-1e300];
    typeOver(@"9223372036854775807");
    press('\r');
    EXPECT_EQ(samples(), kHighest);
}

TEST_F(LengthTimeFieldTest, AutomationDoesNotDestroyTyping)
{
    show(44100);
    typeOver(@"2.5");
    show(88200);
    show(132300);
    EXPECT_EQ(text(), "2.5");
    press('\r');
    EXPECT_EQ(samples(), 110250);
    EXPECT_EQ([m_counter count], 1);
}

TEST_F(LengthTimeFieldTest, LastAutomationShowsWhenTypingEndsWithoutAValue)
{
    show(44100);
    typeOver(@"xyz");
    show(88200);
    EXPECT_EQ(text(), "xyz");
    EXPECT_EQ(samples(), 88200);
    press('\r');
    EXPECT_EQ(text(), "00:00:02.000");
    typeOver(@"9");
    show(132300);
    press(0x1B);
    EXPECT_EQ(text(), "00:00:03.000");
    EXPECT_EQ([m_counter count], 0);
}

TEST_F(LengthTimeFieldTest, FormatChangeDoesNotDestroyTyping)
{
    show(44100);
    typeOver(@"2");
    [m_control setFormat:zqposfmt_seconds];
    EXPECT_EQ(text(), "2");
    press('\r');
    EXPECT_EQ(text(), "2.000");
}

TEST_F(LengthTimeFieldTest, UntouchedTextFollowsAutomation)
{
    show(44100);
    focus();
    show(88200);
    EXPECT_EQ(text(), "00:00:02.000");
    EXPECT_EQ(selected(), "00:00:02.000");
    caretAt(4);
    show(132300);
    EXPECT_EQ(text(), "00:00:03.000");
    EXPECT_EQ([editor() selectedRange].location, 4U);
}

TEST_F(LengthTimeFieldTest, ArrowsStepThePartUnderTheCaret)
{
    show(44100);
    focus();
    caretAt(4);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(text(), "00:01:01.000");
    EXPECT_EQ(selected(), "01");
    EXPECT_EQ([editor() selectedRange].location, 3U);
    EXPECT_EQ([m_counter count], 1);
    EXPECT_EQ([[m_counter lastValue] longLongValue], 44100 * 61);
    press(NSUpArrowFunctionKey);
    press(NSDownArrowFunctionKey);
    press(NSDownArrowFunctionKey);
    press(NSDownArrowFunctionKey);
    EXPECT_EQ(samples(), 0);
    EXPECT_EQ([m_counter count], 5);
}

TEST_F(LengthTimeFieldTest, ArrowsStepByTheIncrementWithEverythingSelected)
{
    show(44100);
    focus();
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(samples(), 44100 + 4410);
    EXPECT_EQ(selected(), "00:00:01.100");
    press(NSDownArrowFunctionKey);
    EXPECT_EQ(samples(), 44100);
}

// The echo of a step must leave the caret where the next step needs it.
TEST_F(LengthTimeFieldTest, EchoOfAStepKeepsTheSelectedPart)
{
    show(44100);
    focus();
    caretAt(1);
    press(NSUpArrowFunctionKey);
    show(samples());
    EXPECT_EQ(selected(), "01");
    EXPECT_EQ([editor() selectedRange].location, 0U);
}

TEST_F(LengthTimeFieldTest, ArrowsStepFromTypedText)
{
    show(44100);
    typeOver(@"5");
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(samples(), 220500 + 4410);
    typeOver(@"x");
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(text(), "x");
    EXPECT_EQ(samples(), 220500 + 4410);
    EXPECT_EQ([m_counter count], 1);
}

TEST_F(LengthTimeFieldTest, StepsStopAtTheLimits)
{
    [m_control setMinValue:44100];
    [m_control setMaxValue:44100 + 6000];
    show(44100);
    focus();
    press(NSDownArrowFunctionKey);
    EXPECT_EQ(samples(), 44100);
    press(NSUpArrowFunctionKey);
    press(NSUpArrowFunctionKey);
    EXPECT_EQ(samples(), 44100 + 6000);
}

NSEvent* wheel(NSWindow* window, NSPoint point, double turn)
{
    return [NSEvent mouseEventWithType:NSScrollWheel
                              location:point
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[window windowNumber]
                               context:[window graphicsContext]
                           eventNumber:0
                            clickCount:0
                              pressure:0
                          buttonNumber:0
                                deltaX:0
                                deltaY:turn
                                deltaZ:0];
}

TEST_F(LengthTimeFieldTest, WheelStepsTheEditedFieldOnly)
{
    show(44100);
    const NSPoint point = gui_test::centerOf(m_control);
    [NSApp postEvent:wheel(m_window, point, 1) atStart:NO];
    gui_test::pump(0.05);
    EXPECT_EQ(samples(), 44100);
    focus();
    caretAt(7);
    [NSApp postEvent:wheel(m_window, point, 1) atStart:NO];
    gui_test::pump(0.05);
    EXPECT_EQ(samples(), 88200);
    [NSApp postEvent:wheel(m_window, point, -1) atStart:NO];
    gui_test::pump(0.05);
    EXPECT_EQ(samples(), 44100);
    EXPECT_EQ([m_counter count], 2);
}

TEST_F(LengthTimeFieldTest, ShownTextCanBeCopiedAndPasted)
{
    [m_control setFormat:zqposfmt_smpte_29_97_drop];
    [m_control setObjectValue:@(44100 * 100)];
    const std::string shown = text();
    const std::int64_t before = samples();
    focus();
    [editor() copy:nil];
    EXPECT_EQ(std::string(
                  [[[NSPasteboard generalPasteboard] stringForType:NSStringPboardType] UTF8String]),
              shown);
    press('1');
    press('\r');
    EXPECT_NE(samples(), before);
    [editor() paste:nil];
    press('\r');
    EXPECT_EQ(text(), shown);
}

TEST_F(LengthTimeFieldTest, EveryOfferedFormatIsTypedBackToTheSameCount)
{
    NSMenu* const menu = [m_control createDefaultMenuWithTarget:nil];
    for (id<NSMenuItem> const item in [menu itemArray]) {
        if ([item isSeparatorItem]) {
            continue;
        }
        SCOPED_TRACE([[item title] UTF8String]);
        [m_control setFormat:static_cast<std::uint32_t>([item tag])];
        show(44100 * 3600);
        const std::string shown = text();
        NSString* const retyped = [m_control stringValue];
        show(0);
        typeOver(retyped);
        press('\r');
        EXPECT_EQ(text(), shown);
        // An hour lies on no frame of the rates that are slower than their names.
        const bool isPulledDown = [item tag] == 6 || [item tag] == 8 || [item tag] == 18;
        if (!isPulledDown) {
            EXPECT_EQ(samples(), 44100 * 3600);
        }
        const std::int64_t taken = samples();
        show(0);
        typeOver(@(shown.c_str()));
        press('\r');
        EXPECT_EQ(samples(), taken);
    }
}

TEST_F(LengthTimeFieldTest, DefaultMenuOffersTheFormatsInGroups)
{
    const struct {
        long tag; // -1: a separator
        const char* title;
    } rows[] = {
        {0, "Samples"},
        {-1, ""},
        {1, "Time (h:min:s.ms)"},
        {2, "Seconds"},
        {3, "Time and Frames (75 fps)"},
        {-1, ""},
        {5, "Measures and Beats"},
        {-1, ""},
        {18, "SMPTE 23.976 fps"},
        {10, "SMPTE 24 fps (Film)"},
        {9, "SMPTE 25 fps (EBU)"},
        {6, "SMPTE 29.97 fps Non-Drop"},
        {8, "SMPTE 29.97 fps Drop"},
        {7, "SMPTE 30 fps"},
        {-1, ""},
        {15, "Feet and Frames (35 mm)"},
        {16, "Feet and Frames (16 mm)"},
        {-1, ""},
        {17, "CD Frames (75 fps)"},
    };
    FormatMenuTarget* const target = [[FormatMenuTarget alloc] initWithField:m_control];
    NSMenu* const menu = [m_control createDefaultMenuWithTarget:target];
    ASSERT_EQ([menu numberOfItems], static_cast<NSInteger>(std::size(rows)));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].title);
        id<NSMenuItem> const item = [menu itemAtIndex:static_cast<NSInteger>(i)];
        EXPECT_EQ([item isSeparatorItem], rows[i].tag < 0);
        if (rows[i].tag >= 0) {
            EXPECT_EQ([item tag], rows[i].tag);
            EXPECT_STREQ([[item title] UTF8String], rows[i].title);
            EXPECT_TRUE(sel_isEqual([item action], @selector(onFormatMenuAction:)));
            EXPECT_EQ([item target], target);
        }
    }
    [target release];
}

TEST_F(LengthTimeFieldTest, TicksTheCurrentFormat)
{
    FormatMenuTarget* const target = [[FormatMenuTarget alloc] initWithField:m_control];
    NSMenu* const menu = [m_control createDefaultMenuWithTarget:target];
    [m_control setFormat:zqposfmt_smpte_25];
    [menu update];
    for (id<NSMenuItem> const item in [menu itemArray]) {
        EXPECT_EQ([item state],
                  ![item isSeparatorItem] && [item tag] == 9 ? NSOnState : NSOffState);
    }
    [target release];
}

class FormatMenuTest : public LengthTimeFieldTest {
protected:
    void SetUp() override
    {
        LengthTimeFieldTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        m_target = [[FormatMenuTarget alloc] initWithField:m_control];
        m_menu = [m_control createDefaultMenuWithTarget:m_target];
        [m_control setDefaultMenu:m_menu];
        show(44100);
    }
    void TearDown() override
    {
        [m_target release];
        LengthTimeFieldTest::TearDown();
    }

    // Sends `open` and clicks the item of the format in the menu that opens.
    void expectMenuFrom(NSEvent* open)
    {
        MenuClicker* const clicker = [[MenuClicker alloc] initWithMenu:m_menu
                                                                   tag:zqposfmt_smpte_25];
        // The menu opens at the pointer, where all of it has room.
        EXPECT_EQ(std::system("xdotool mousemove 300 300"), 0);
        [NSApp postEvent:open atStart:NO];
        const bool wasChosen =
            gui_test::pumpUntil([this] { return [m_target chosen] == zqposfmt_smpte_25; });
        [clicker stop];
        [clicker release];
        EXPECT_TRUE(wasChosen);
    }
    NSEvent* rightClick()
    {
        return gui_test::mouseEvent(m_window, NSRightMouseDown, gui_test::centerOf(m_control));
    }
    NSEvent* key(unichar key, NSUInteger modifiers)
    {
        return gui_test::keyDown(m_window, [NSString stringWithCharacters:&key length:1],
                                 modifiers);
    }

    FormatMenuTarget* m_target = nil;
    NSMenu* m_menu = nil; // owned by the field
};

TEST_F(FormatMenuTest, OpensWithTheRightButton) { expectMenuFrom(rightClick()); }

TEST_F(FormatMenuTest, OpensWithTheRightButtonWhileEdited)
{
    typeOver(@"2.5");
    expectMenuFrom(rightClick());
    EXPECT_EQ(text(), "2.5");
}

TEST_F(FormatMenuTest, OpensWithTheMenuKeyWhileEdited)
{
    focus();
    expectMenuFrom(key(NSMenuFunctionKey, NSFunctionKeyMask));
}

TEST_F(FormatMenuTest, OpensWithShiftF10WhileEdited)
{
    focus();
    expectMenuFrom(key(NSF10FunctionKey, NSFunctionKeyMask | NSShiftKeyMask));
}

TEST_F(FormatMenuTest, MenuKeyOfAnotherFieldIsNotTaken)
{
    EXPECT_FALSE([m_control performKeyEquivalent:key(NSMenuFunctionKey, NSFunctionKeyMask)]);
    focus();
    EXPECT_FALSE([m_control performKeyEquivalent:key(NSF10FunctionKey, NSFunctionKeyMask)]);
}

} // namespace
