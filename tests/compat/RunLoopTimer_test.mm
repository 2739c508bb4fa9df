#include "GuiTest.h"
#include "TestListener.h"
#include "TestUnit.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

bool _runInModeUntil(NSString* mode, const TestListener& listener, double seconds = 5)
{
    NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
    while (listener.heard.empty() && [limit timeIntervalSinceNow] > 0) {
        [[NSRunLoop currentRunLoop] runMode:mode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
    }
    return !listener.heard.empty();
}

class RunLoopTimer : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        pool = [[NSAutoreleasePool alloc] init];
    }
    void TearDown() override { [pool drain]; }

    NSAutoreleasePool* pool = nil;
    TestUnit unit;
};

TEST_F(RunLoopTimer, CommonModesAreDefaultEventTrackingAndModalPanel)
{
    for (NSString* mode in
         @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ]) {
        SCOPED_TRACE([mode UTF8String]);
        TestListener listener(0.02F, 0.02F, kCFRunLoopCommonModes);
        listener.add(valueEvent(&unit, 1));
        setParameter(&unit, 1, 7);
        EXPECT_TRUE(_runInModeUntil(mode, listener));
    }
}

TEST_F(RunLoopTimer, FoundationsNameOfTheCommonModesMeansTheSame)
{
    TestListener listener(0.02F, 0.02F, reinterpret_cast<CFStringRef>(NSRunLoopCommonModes));
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    EXPECT_TRUE(_runInModeUntil(NSEventTrackingRunLoopMode, listener));
}

TEST_F(RunLoopTimer, NullModeIsTheDefaultModeAlone)
{
    TestListener listener(0.02F, 0.02F, nullptr);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    EXPECT_FALSE(_runInModeUntil(NSEventTrackingRunLoopMode, listener, 0.2));
    EXPECT_TRUE(_runInModeUntil(NSDefaultRunLoopMode, listener));
}

TEST_F(RunLoopTimer, NamedModeIsTheOnlyOne)
{
    TestListener listener(0.02F, 0.02F, reinterpret_cast<CFStringRef>(NSEventTrackingRunLoopMode));
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    EXPECT_FALSE(_runInModeUntil(NSDefaultRunLoopMode, listener, 0.2));
    EXPECT_TRUE(_runInModeUntil(NSEventTrackingRunLoopMode, listener));
}

TEST_F(RunLoopTimer, ApplicationLoopDelivers)
{
    TestListener listener(0.02F, 0.02F, kCFRunLoopCommonModes);
    listener.add(valueEvent(&unit, 1));
    setParameter(&unit, 1, 7);
    EXPECT_TRUE(gui_test::pumpUntil([&] { return !listener.heard.empty(); }));
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
}

// A real drag: its tracking loop runs inside mouseDown: and ends with the mouse-up, which is only
// posted once the listener was heard.
TEST_F(RunLoopTimer, EventsArriveWhileASliderIsDragged)
{
    NSWindow* const window = gui_test::makeWindow(NSMakeSize(200, 40));
    NSSlider* const slider = [[NSSlider alloc] initWithFrame:NSMakeRect(0, 0, 200, 20)];
    [slider setContinuous:YES];
    [[window contentView] addSubview:slider];
    TestListener listener(0.02F, 0.02F, kCFRunLoopCommonModes);
    listener.add(valueEvent(&unit, 1));
    bool dragging = true;
    listener.onEvent = [&] {
        EXPECT_TRUE(dragging);
        [NSApp postEvent:gui_test::mouseEvent(window, NSLeftMouseUp, gui_test::centerOf(slider))
                 atStart:NO];
    };
    setParameter(&unit, 1, 7);
    [slider mouseDown:gui_test::mouseEvent(window, NSLeftMouseDown, gui_test::centerOf(slider))];
    dragging = false;
    EXPECT_THAT(listener.heard, ElementsAre(heardValue(1, 7)));
    [slider release];
    [window close];
    [window release];
}

} // namespace
