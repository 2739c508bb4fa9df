// The editor in use: keyboard, automation that arrives while the user is busy, and hard times.

#import "ControlRecorder.h"
#import "EditorTest.h"
#import "NewObjects.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <fstream>
#include <malloc.h>
#include <thread>
#include <unistd.h>

#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#endif

// Calls a function once, while whatever loop the application is in goes on.
@interface LaterCall : NSObject {
@public
    std::function<void()> function;
}
@end

@implementation LaterCall

- (void)fire:(NSTimer*)timer
{
    (void)timer;
    function();
}

@end

namespace {

using editor_test::ControlRecorder;
using editor_test::EditorTest;
using editor_test::movePointer;
using editor_test::OpenEditor;
using editor_test::pointOnScreen;
using testing::Contains;
using testing::Each;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr UInt32 kSamples = 0;

// Runs `function` in `seconds`, also while a control or a menu tracks the mouse.
void later(double seconds, std::function<void()> function)
{
    LaterCall* const call = [[[LaterCall alloc] init] autorelease];
    call->function = std::move(function);
    NSTimer* const timer = [NSTimer timerWithTimeInterval:seconds
                                                   target:call
                                                 selector:@selector(fire:)
                                                 userInfo:nil
                                                  repeats:NO];
    for (NSString* mode in
         @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
    }
}

class Use : public EditorTest {
protected:
    /// Lets events arrive by themselves, as they do for users.
    void useRealClock() { m_clock.reset(); }

    /// Words for xdotool: press `button` at a point of a control.
    NSString* pressAt(const char* name, double x, int button)
    {
        const NSPoint at = pointOnScreen(editor().window(), editor().point(name, x, 0.5));
        return [NSString stringWithFormat:@"mousemove %.0f %.0f mousedown %d", at.x, at.y, button];
    }

    NSString* moveTo(const char* name, double x)
    {
        const NSPoint at = pointOnScreen(editor().window(), editor().point(name, x, 0.5));
        return [NSString stringWithFormat:@" mousemove %.0f %.0f", at.x, at.y];
    }

    bool run(NSString* words) { return movePointer([words componentsSeparatedByString:@" "]); }

    /// Name of the outlet that has the keyboard.
    std::string focus()
    {
        id responder = [editor().window() firstResponder];
        if ([responder isKindOfClass:[NSTextView class]]) {
            responder = [responder delegate];
        }
        for (const char* name : kTabOrder) {
            if (editor().outlet(name) == responder) {
                return name;
            }
        }
        return sel_isEqual([responder action], @selector(helpButtonClicked:)) ? "help" : "?";
    }

    static constexpr const char* kTabOrder[] = {
        "functionPopupButton",    "gainUnitsButtons",       "attackSlider",
        "attackTextField",        "releaseSlider",          "releaseTextField",
        "fadeInTypePopupButton",  "fadeInLengthTextField",  "fadeInLengthStepper",
        "fadeOutTypePopupButton", "fadeOutLengthTextField", "fadeOutLengthStepper",
        "minSilenceTextField",    "minSilenceStepper",      "cropStartTextField",
        "cropStartStepper",       "cropLengthTextField",    "cropLengthStepper"};
};

// --- keyboard ------------------------------------------------------------------------------------

TEST_F(Use, TabWalksTheEnabledControlsInReadingOrder)
{
    OpenEditor& editor = open();
    for (int mode = 0; mode < 3; ++mode) {
        SCOPED_TRACE(mode);
        automateAndDeliver(kTarvelParam_Function, static_cast<float>(mode));
        std::vector<std::string> expected;
        for (const std::string name : kTabOrder) {
            if (editor.enabled(name.c_str())) {
                expected.push_back(name);
            }
        }
        expected.insert(expected.end(), {"help", "functionPopupButton"});

        [editor.window() makeFirstResponder:editor.outlet("functionPopupButton")];
        std::vector<std::string> visited{focus()};
        while (visited.size() < expected.size()) {
            gui_test::pressKey(editor.window(), @"\t");
            visited.push_back(focus());
        }
        EXPECT_THAT(visited, ElementsAreArray(expected));
    }
    EXPECT_THAT(log().take(), IsEmpty()); // walking through the fields writes nothing
}

struct BadRow {
    bool percent;
    NSString* text;
    double writes; // NaN: nothing
};

const double kNothing = std::nan("");

const BadRow kBadThresholds[] = {
    // clang-format off
    { false, @"abc",   kNothing },
    { false, @"-",     kNothing },
    { false, @"",      kNothing },
    { false, @"-70",   -60 },      // outside: the nearest limit
    { false, @"5",     0 },
    { true,  @"abc",   kNothing },
    { true,  @"101 %", 0 },
    { true,  @"-3",    -60 },
    // clang-format on
};

TEST_F(Use, BadThresholdsAreRefusedOrClamped)
{
    OpenEditor& editor = open();
    for (const BadRow& row : kBadThresholds) {
        SCOPED_TRACE(testing::Message()
                     << '"' << [row.text UTF8String] << '"' << (row.percent ? " percent" : " dB"));
        editor.click("gainUnitsButtons", row.percent ? 0.4 : 0.05);
        automateAndDeliver(kTarvelParam_AttackThreshold, -20);
        const std::string before = editor.text("attackTextField");
        editor.type("attackTextField", row.text);
        if (std::isnan(row.writes)) {
            EXPECT_THAT(log().take(), Each(Not(HasSubstr("AUParameterSet"))));
            EXPECT_EQ(parameter(kTarvelParam_AttackThreshold), -20);
            gui_test::pressKey(editor.window(), @"\x1b"); // back to what was there
            EXPECT_EQ(editor.text("attackTextField"), before);
        } else {
            EXPECT_EQ(parameter(kTarvelParam_AttackThreshold), row.writes);
        }
        log().take();
    }
}

TEST_F(Use, ARidiculousThresholdNeverReachesTheEffectAsInfinityOrNaN)
{
    OpenEditor& editor = open();
    for (NSString* text in @[
             @"1e400", @"-1e400", @"nan", @"inf", @"-inf",
             [@"" stringByPaddingToLength:60 withString:@"9" startingAtIndex:0]
         ]) {
        SCOPED_TRACE([text UTF8String]);
        editor.type("attackTextField", text);
        deliver();
        const float value = parameter(kTarvelParam_AttackThreshold);
        EXPECT_TRUE(value >= -60 && value <= 0) << value;
    }
}

// --- automation while the user is busy -----------------------------------------------------------

TEST_F(Use, AutomationLeavesATypedThresholdAlone)
{
    OpenEditor& editor = open();
    editor.typeWithoutReturn("attackTextField", @"-3");
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    EXPECT_EQ(editor.text("attackTextField"), "-3");
    EXPECT_EQ(editor.doubleValue("attackSlider"), -20);
    automateAndDeliver(kTarvelParam_AttackThreshold, -21);
    gui_test::pressKey(editor.window(), @"\x1b"); // given up: the last value shows
    EXPECT_EQ(editor.text("attackTextField").rfind("-21", 0), 0u);
    EXPECT_THAT(log().take(), IsEmpty());
}

TEST_F(Use, ATypedThresholdWinsOverTheAutomationBeforeIt)
{
    OpenEditor& editor = open();
    editor.typeWithoutReturn("attackTextField", @"-3");
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    gui_test::pressKey(editor.window(), @"\r");
    EXPECT_EQ(parameter(kTarvelParam_AttackThreshold), -3);
    deliver();
    EXPECT_EQ(editor.doubleValue("attackSlider"), -3);
}

TEST_F(Use, AutomationLeavesATypedLengthAlone)
{
    OpenEditor& editor = open();
    setTimeFormat(kSamples);
    deliver();
    log().take();
    editor.typeWithoutReturn("fadeInLengthTextField", @"123");
    automateAndDeliver(kTarvelParam_FadeInLength, 1000);
    EXPECT_EQ(editor.text("fadeInLengthTextField"), "123");
    EXPECT_EQ(editor.samples("fadeInLengthStepper"), 44100);
    gui_test::pressKey(editor.window(), @"\x1b");
    EXPECT_EQ(editor.text("fadeInLengthTextField"), "44100");
    EXPECT_THAT(log().take(), IsEmpty());
}

TEST_F(Use, AChangeOfRateOrFormatLeavesATypedLengthAlone)
{
    OpenEditor& editor = open();
    setTimeFormat(kSamples);
    deliver();
    editor.typeWithoutReturn("fadeInLengthTextField", @"123");
    effect().setSampleRate(96000);
    deliver();
    EXPECT_EQ(editor.text("fadeInLengthTextField"), "123");
    log().take();
    gui_test::pressKey(editor.window(), @"\x1b");
    EXPECT_EQ(editor.text("fadeInLengthTextField"), "480"); // 5 ms
    EXPECT_THAT(log().take(), IsEmpty());
}

TEST_F(Use, AutomationShowsWhileASliderIsDraggedAndTheDragWins)
{
    OpenEditor& editor = open();
    useRealClock();
    float releaseWhileDragging = 0;
    double attackWhileDragging = 0;
    later(0.25, [this] {
        automate(kTarvelParam_AttackThreshold, -57.25F);
        automate(kTarvelParam_ReleaseThreshold, -33);
    });
    later(0.5, [&] {
        releaseWhileDragging = static_cast<float>(editor.doubleValue("releaseSlider"));
        attackWhileDragging = editor.doubleValue("attackSlider");
    });
    NSString* const words =
        [NSString stringWithFormat:@"%@ sleep 0.7%@ sleep 0.1 mouseup 1",
                                   pressAt("attackSlider", 0.5, 1), moveTo("attackSlider", 0.7)];
    ASSERT_TRUE(run(words));
    EXPECT_EQ(releaseWhileDragging, -33);
    EXPECT_EQ(attackWhileDragging, -57.25);
    EXPECT_NEAR(parameter(kTarvelParam_AttackThreshold), -18, 3); // where the mouse let go
    // The drag's own lines: the host's two are the only ones without a listener.
    std::vector<std::string> own = log().take();
    std::erase_if(
        own, [](const std::string& line) { return line.find("no listener") != std::string::npos; });
    EXPECT_THAT(own, Contains(HasSubstr("begin-gesture 1")));
    EXPECT_THAT(own, Contains(HasSubstr("end-gesture 1")));
    EXPECT_THAT(own, Each(Not(HasSubstr("global/0 object releaseSlider"))));
    EXPECT_THAT(own, Each(Not(HasSubstr("AUParameterSet listener 1 2"))));
    EXPECT_THAT(own, Each(Not(HasSubstr("value -57.25"))));
    EXPECT_TRUE(gui_test::pumpUntil([&] {
        return std::abs(editor.doubleValue("attackSlider") -
                        double{parameter(kTarvelParam_AttackThreshold)}) < 1e-6;
    }));
}

// The pointer rests from the press to the release: what the host wrote last is what remains.
TEST_F(Use, AutomationDuringADragThatRestsIsNotWrittenBack)
{
    OpenEditor& editor = open();
    useRealClock();
    later(0.25, [this] { automate(kTarvelParam_AttackThreshold, -57.25F); });
    later(0.4, [this] { automate(kTarvelParam_AttackThreshold, -41.5F); });
    ASSERT_TRUE(
        run([pressAt("attackSlider", 0.5, 1) stringByAppendingString:@" sleep 0.7 mouseup 1"]));
    EXPECT_EQ(parameter(kTarvelParam_AttackThreshold), -41.5F);
    std::vector<std::string> own = log().take();
    std::erase_if(
        own, [](const std::string& line) { return line.find("no listener") != std::string::npos; });
    EXPECT_THAT(own, Contains(HasSubstr("end-gesture 1")));
    EXPECT_THAT(own, Each(Not(HasSubstr("value -57.25"))));
    EXPECT_THAT(own, Each(Not(HasSubstr("value -41.5"))));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return editor.doubleValue("attackSlider") == -41.5; }));
}

TEST_F(Use, AutomationShowsWhileAPopUpIsOpenAndThePickWins)
{
    OpenEditor& editor = open();
    useRealClock();
    double attackWhileOpen = 0;
    later(0.25, [this] {
        automate(kTarvelParam_AttackThreshold, -7);
        automate(kTarvelParam_FadeInType, 3);
    });
    later(0.5, [&] { attackWhileOpen = editor.doubleValue("attackSlider"); });
    NSMenuView* const list = [[editor.outlet("fadeInTypePopupButton") menu] menuRepresentation];
    [list sizeToFit];
    const NSPoint at =
        pointOnScreen(editor.window(), editor.point("fadeInTypePopupButton", 0.3, 0.5));
    ASSERT_TRUE(
        run([NSString stringWithFormat:@"%@ sleep 0.7 mousemove %.0f %.0f sleep 0.1 mouseup 1",
                                       pressAt("fadeInTypePopupButton", 0.3, 1), at.x,
                                       at.y + NSHeight([list rectOfItemAtIndex:0])]));
    EXPECT_EQ(attackWhileOpen, -7);
    EXPECT_TRUE(gui_test::pumpUntil([this] { return parameter(kTarvelParam_FadeInType) == 1; }));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return editor.curve("fadeInTypePopupButton") == 1; }));
}

TEST_F(Use, TheFormatMenuOpensOnARightClickAndAutomationGoesOn)
{
    OpenEditor& editor = open();
    useRealClock();
    double attackWhileOpen = 0;
    later(0.25, [this] { automate(kTarvelParam_AttackThreshold, -7); });
    later(0.5, [&] { attackWhileOpen = editor.doubleValue("attackSlider"); });
    NSMenu* const menu = [editor.outlet("cropStartTextField") menu];
    NSMenuView* const list = [menu menuRepresentation];
    [list sizeToFit];
    // The menu's corner comes to lie at the pointer; the third row is well inside of it.
    const NSRect row = [list rectOfItemAtIndex:2];
    const NSPoint at =
        pointOnScreen(editor.window(), editor.point("fadeInLengthTextField", 0.3, 0.5));
    const double down = NSHeight([list frame]) - NSMidY(row);
    log().take();
    ASSERT_TRUE(run([NSString
        stringWithFormat:@"%@ sleep 0.7 mousemove %.0f %.0f sleep 0.1 mouseup 3",
                         pressAt("fadeInLengthTextField", 0.3, 3), at.x + 20, at.y + down]));
    EXPECT_EQ(attackWhileOpen, -7);
    EXPECT_THAT(log().take(), Contains("AudioUnitSetProperty 9000 global/0 size 4"));
    const auto chosen = static_cast<UInt32>([[menu itemAtIndex:2] tag]);
    EXPECT_TRUE(gui_test::pumpUntil(
        [&] { return editor_test::ivar<UInt32>(editor.view(), "mTimeFormat") == chosen; }));
}

// --- hard times ----------------------------------------------------------------------------------

TEST_F(Use, TenThousandChangesASecondShowTheLastOneAndFewOthers)
{
    using namespace std::chrono;
    OpenEditor& editor = open();
    useRealClock();
    ControlRecorder recorder(editor, {"attackSlider"});
    std::atomic<bool> done = false;
    const auto start = steady_clock::now();
    std::thread automation([this, &done, start] {
        for (int i = 0; i < 10000; ++i) {
            automate(kTarvelParam_AttackThreshold, -60 + static_cast<float>(i) * 0.005F);
            std::this_thread::sleep_until(start + microseconds(100 * (i + 1)));
        }
        done = true;
    });
    EXPECT_TRUE(gui_test::pumpUntil([&done] { return done.load(); }, 30));
    automation.join();
    const double seconds = duration<double>(steady_clock::now() - start).count();
    const float last = parameter(kTarvelParam_AttackThreshold);
    EXPECT_TRUE(gui_test::pumpUntil(
        [&] { return std::abs(editor.doubleValue("attackSlider") - double{last}) < 1e-6; }));
    const std::size_t updates = recorder.take({"setDoubleValue"}).size();
    EXPECT_GE(updates, 5u);
    // At most one each 0.05 s, and the one that ends it all.
    EXPECT_LE(updates, static_cast<std::size_t>(seconds / 0.05) + 3);
    std::printf("10000 changes in %.2f s: %zu updates\n", seconds, updates);
}

TEST_F(Use, AFormatWrittenOnAnotherThreadShows)
{
    OpenEditor& editor = open();
    useRealClock();
    std::thread([this] { setTimeFormat(kSamples); }).join();
    EXPECT_TRUE(gui_test::pumpUntil(
        [&] { return editor_test::ivar<UInt32>(editor.view(), "mTimeFormat") == kSamples; }));
    EXPECT_EQ(editor.text("cropLengthTextField"), "2646000");
}

TEST_F(Use, ClosingWithEventsPendingDropsThem)
{
    OpenEditor& editor = open();
    useRealClock();
    for (int i = 0; i < 100; ++i) {
        automate(kTarvelParam_AttackThreshold, -static_cast<float>(i % 60));
    }
    editor.close();
    gui_test::pump(0.15); // a delivery to the dead view would end the test here
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u);
}

// --- a thousand openings -------------------------------------------------------------------------

double residentMegabytes()
{
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

#if __has_feature(address_sanitizer)
constexpr bool kFreedMemoryStaysResident = true; // in the sanitizer's quarantine
double heapBytes() { return static_cast<double>(__sanitizer_get_current_allocated_bytes()); }
#else
constexpr bool kFreedMemoryStaysResident = false;
double heapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}
#endif

class Openings : public Use {
protected:
    void SetUp() override
    {
        Use::SetUp();
        if (!IsSkipped()) {
            m_openingsWindow = gui_test::makeWindow(NSMakeSize(480, 340));
        }
    }
    void TearDown() override
    {
        [m_openingsWindow close];
        [m_openingsWindow release];
        Use::TearDown();
    }

    /// Opens and closes that often, showing each tenth editor.
    void openAndClose(int times)
    {
        for (int i = 0; i < times; ++i) {
            @autoreleasepool {
                NSView* const view = [editor_test::newFactory() uiViewForAudioUnit:&effect()
                                                                          withSize:NSZeroSize];
                if (i % 10 == 0) {
                    show(view);
                }
            }
            log().take(); // what the test itself would gather
        }
    }

private:
    void show(NSView* view)
    {
        [[m_openingsWindow contentView] addSubview:view];
        [m_openingsWindow display];
        [view removeFromSuperview];
        gui_test::pump(0.001); // takes in what the display answers, which would pile up
    }

    NSWindow* m_openingsWindow = nil;
};

TEST_F(Openings, AThousandLeaveNothingBehind)
{
    constexpr int kFillingCaches = 200; // of the platform: fonts, glyphs, pictures
    constexpr int kMeasured = 800;
    constexpr int kRare = 20;              // GNUstep reads its defaults anew now and then
    constexpr double kHeapSlack = 128e3;   // bytes, 160 for each opening
    constexpr double kResidentSlack = 1.0; // MB: pages that come in late
    openAndClose(kFillingCaches);
    NewObjects objects;
    const double residentBefore = residentMegabytes();
    const double heapBefore = heapBytes();
    openAndClose(kMeasured);
    const double heap = heapBytes() - heapBefore;
    const double resident = residentMegabytes() - residentBefore;
    std::printf("openings %d to %d: resident %.2f MB %+.2f MB, heap %.2f MB %+.3f MB\n",
                kFillingCaches, kFillingCaches + kMeasured, residentBefore, resident,
                heapBefore / 1e6, heap / 1e6);
    for (const auto& [name, count] : objects.take()) {
        EXPECT_LT(count, kRare) << name;
    }
    EXPECT_LT(heap, kHeapSlack);
    if (!kFreedMemoryStaysResident) {
        EXPECT_LT(resident, kResidentSlack);
    }
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u);
    EXPECT_EQ(audiounit_compat::livePropertyListenerCount(), 0u);
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

} // namespace
