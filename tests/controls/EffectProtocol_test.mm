#import "EffectLog.h"
#import "GuiTest.h"
#import "XeParameterSetter.h"
#import "XeSlider.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// The view of the scenarios: its actions write, its listener only shows.
@interface ProtocolView : NSObject {
@public
    XeParameterSetter* setter;
    XeSlider* attackSlider;
    NSTextField* attackTextField;
    NSPopUpButton* functionPopupButton;
}
- (void)attackChanged:(id)sender;
- (void)functionChanged:(id)sender;
- (void)showParameter:(UInt32)parameter value:(Float32)value;
@end

@implementation ProtocolView

- (void)attackChanged:(id)sender
{
    const double valueDb =
        sender == attackTextField ? [attackTextField floatValue] : [attackSlider doubleValue];
    [setter setParameter:1 toValue:valueDb fromObject:sender];
}

- (void)functionChanged:(id)sender
{
    [setter setParameter:0 toValue:[sender indexOfSelectedItem] fromObject:sender];
}

- (void)showParameter:(UInt32)parameter value:(Float32)value
{
    if (parameter == 0) {
        [functionPopupButton selectItemAtIndex:static_cast<NSInteger>(value)];
        return;
    }
    [attackSlider setDoubleValue:value];
    [attackTextField setDoubleValue:value];
}

@end

namespace {

// The fenced blocks of one kind, by the heading above them.
using Blocks = std::map<std::string, Lines>;

Blocks documented(const std::string& kind)
{
    std::ifstream page(CONTROLS_TEST_PROTOCOL);
    EXPECT_TRUE(page.is_open()) << CONTROLS_TEST_PROTOCOL;
    Blocks blocks;
    std::string heading;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("## ", 0) == 0) {
            heading = line.substr(3);
        } else if (isInside && line == "```") {
            isInside = false;
        } else if (isInside) {
            blocks[heading].push_back(line);
        } else if (line == "```" + kind) {
            EXPECT_EQ(blocks.count(heading), 0u) << "two blocks under " << heading;
            isInside = true;
        }
    }
    return blocks;
}

void showInView(void* view, void*, const AudioUnitEvent* event, UInt64,
                AudioUnitParameterValue value)
{
    if (event->mEventType == kAudioUnitEvent_ParameterValueChange) {
        [static_cast<ProtocolView*>(view) showParameter:event->mArgument.mParameter.mParameterID
                                                  value:value];
    }
}

void writeDown(void* lines, void*, const AudioUnitEvent* event, UInt64,
               AudioUnitParameterValue value)
{
    std::string line = eventTypeText(event->mEventType);
    line += " " + std::to_string(event->mArgument.mParameter.mParameterID);
    if (event->mEventType == kAudioUnitEvent_ParameterValueChange) {
        line += " " + valueText(value);
    }
    static_cast<Lines*>(lines)->push_back(line);
}

// The host's automation: a listener of its own that hears everything about parameters 0 and 1.
class Recorder {
public:
    explicit Recorder(AudioUnit effect)
    {
        EXPECT_EQ(
            AUEventListenerCreate(writeDown, &m_heard, nullptr, nullptr, 0.05f, 0.05f, &m_listener),
            0);
        registerParameter(m_listener, this, effect, 0);
        registerParameter(m_listener, this, effect, 1);
    }
    ~Recorder() { AUListenerDispose(m_listener); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    Lines take() { return std::exchange(m_heard, {}); }

private:
    Lines m_heard;
    AUEventListenerRef m_listener = nullptr;
};

class EffectProtocol : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_pool = [[NSAutoreleasePool alloc] init];
        m_window = gui_test::makeWindow(NSMakeSize(320, 160));
        makeControls();
        m_log = std::make_unique<EffectLog>(m_view, showInView);
        registerParameter(m_log->listener(), m_view, m_log->effect(), 0);
        m_recorder = std::make_unique<Recorder>(m_log->effect());
        m_log->name(m_view->attackSlider, "attackSlider");
        m_log->name(m_view->attackTextField, "attackTextField");
        m_log->name(m_view->functionPopupButton, "functionPopupButton");
        m_log->name(m_view, "the view");

        const UInt32 ids[] = {0, 1};
        m_view->setter = [[XeParameterSetter alloc] initWithAudioUnit:m_log->effect()
                                                             listener:m_log->listener()
                                                         parameterIds:ids
                                                             andCount:2];
        [m_view->setter addXeSlider:m_view->attackSlider forParameter:1];
        [m_window display];
    }

    void TearDown() override
    {
        if (m_view == nil) {
            return;
        }
        [m_view->setter release];
        m_recorder.reset();
        m_log.reset();
        [m_window close];
        [m_window release];
        [m_view release];
        [m_pool drain];
    }

    void setSlider(double value) { [m_view->attackSlider setDoubleValue:value]; }

    // Where the pointer, in the window, takes the knob to the value. Only at its two ends does the
    // knob's rectangle not depend on the rounding to pixels.
    NSPoint pointOf(double value)
    {
        const NSPoint left = knobAt([m_view->attackSlider minValue]);
        const NSPoint right = knobAt([m_view->attackSlider maxValue]);
        const double fraction = (value - [m_view->attackSlider minValue]) /
                                ([m_view->attackSlider maxValue] - [m_view->attackSlider minValue]);
        return NSMakePoint(left.x + fraction * (right.x - left.x), left.y);
    }

    void press(unichar key)
    {
        gui_test::pressKey(m_window, [NSString stringWithCharacters:&key length:1]);
    }

    // What was called and then heard is what the page tells under the heading. Hearing it makes
    // the view show the value, which calls nothing.
    void expectScenario(const std::string& heading)
    {
        EXPECT_EQ(m_log->take(), documented("calls")[heading]);
        audiounit_compat::deliverAll();
        EXPECT_EQ(m_recorder->take(), documented("heard")[heading]);
        EXPECT_THAT(m_log->take(), testing::IsEmpty()) << "the echo was written back";
    }

    ProtocolView* m_view = nil;
    NSWindow* m_window = nil;

private:
    NSPoint knobAt(double value)
    {
        XeSlider* const slider = m_view->attackSlider;
        const double before = [slider doubleValue];
        [[slider cell] setDoubleValue:value];
        const NSRect knob = [[slider cell] knobRectFlipped:[slider isFlipped]];
        [[slider cell] setDoubleValue:before];
        return [slider convertPoint:NSMakePoint(NSMidX(knob), NSMidY(knob)) toView:nil];
    }

    void makeControls()
    {
        m_view = [[ProtocolView alloc] init];
        XeSlider* const slider =
            [[[XeSlider alloc] initWithFrame:NSMakeRect(20, 20, 260, 24)] autorelease];
        [slider setMinValue:-60];
        [slider setMaxValue:0];
        m_view->attackSlider = slider;
        m_view->attackTextField =
            [[[NSTextField alloc] initWithFrame:NSMakeRect(20, 60, 80, 24)] autorelease];
        m_view->functionPopupButton =
            [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(20, 100, 160, 26)
                                        pullsDown:NO] autorelease];
        for (NSString* const mode : {@"Trim", @"Silence", @"Crop"}) {
            [m_view->functionPopupButton addItemWithTitle:mode];
        }
        connect(m_view->attackSlider, @selector(attackChanged:));
        connect(m_view->attackTextField, @selector(attackChanged:));
        connect(m_view->functionPopupButton, @selector(functionChanged:));
    }

    void connect(NSControl* control, SEL action)
    {
        [control setTarget:m_view];
        [control setAction:action];
        [[m_window contentView] addSubview:control];
    }

    std::unique_ptr<EffectLog> m_log;
    std::unique_ptr<Recorder> m_recorder;
    NSAutoreleasePool* m_pool = nil;
};

TEST_F(EffectProtocol, DraggingASlider)
{
    setSlider(-40);
    gui_test::drag(m_window, {pointOf(-40), pointOf(-30), pointOf(-24)});
    expectScenario("Dragging a slider");
}

TEST_F(EffectProtocol, SteppingASliderByKey)
{
    setSlider(-24);
    [m_window makeFirstResponder:m_view->attackSlider];
    press(NSUpArrowFunctionKey);
    expectScenario("Stepping a slider by key");
}

TEST_F(EffectProtocol, TypingAValue)
{
    gui_test::drag(m_window, {gui_test::centerOf(m_view->attackTextField)});
    for (const unichar key : {'-', '1', '2', '\r'}) {
        press(key);
    }
    expectScenario("Typing a value");
    EXPECT_EQ([m_view->attackSlider doubleValue], -12) << "the slider follows the host";
}

TEST_F(EffectProtocol, ChoosingFromAPopUp)
{
    [m_window makeFirstResponder:m_view->functionPopupButton];
    press(' ');
    press(NSDownArrowFunctionKey);
    press(NSDownArrowFunctionKey);
    press('\r');
    EXPECT_EQ([m_view->functionPopupButton indexOfSelectedItem], 2);
    expectScenario("Choosing from a pop-up");
}

TEST_F(EffectProtocol, DoubleClickingASlider)
{
    [m_view->attackSlider setDefaultValue:-40];
    setSlider(-18);
    gui_test::drag(m_window, {pointOf(-18)}, 2);
    expectScenario("Double-clicking a slider");
}

TEST(EffectProtocolPage, TellsTheseFiveScenariosAndNoOther)
{
    for (const char* const kind : {"calls", "heard"}) {
        SCOPED_TRACE(kind);
        Lines headings;
        for (const auto& [heading, lines] : documented(kind)) {
            headings.push_back(heading);
            EXPECT_THAT(lines, testing::Not(testing::IsEmpty()));
        }
        EXPECT_THAT(headings, testing::UnorderedElementsAre(
                                  "Dragging a slider", "Stepping a slider by key", "Typing a value",
                                  "Choosing from a pop-up", "Double-clicking a slider"));
    }
}

} // namespace
