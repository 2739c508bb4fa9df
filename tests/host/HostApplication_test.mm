#import "host/app/HostApplication.h"

#import "GuiTest.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

/// Queues an event from within the run loop, which does not look at what it has queued.
@interface LateEvent : NSObject
@end

@implementation LateEvent

- (void)queue:(NSWindow*)window
{
    [NSApp postEvent:gui_test::mouseEvent(window, NSLeftMouseUp, NSZeroPoint) atStart:NO];
}

@end

namespace {

TEST(HostApplication, SeesAnEventThatTheRunLoopQueuedWhileItWaits)
{
    REQUIRE_DISPLAY();
    ASSERT_TRUE([NSApp isKindOfClass:[HostApplication class]]);
    NSWindow* const window = gui_test::makeWindow(NSMakeSize(100, 100));
    LateEvent* const late = [[[LateEvent alloc] init] autorelease];
    [[NSRunLoop currentRunLoop] performSelector:@selector(queue:)
                                         target:late
                                       argument:window
                                          order:0
                                          modes:@[ NSEventTrackingRunLoopMode ]];
    NSDate* const start = [NSDate date];
    NSEvent* const event = [NSApp nextEventMatchingMask:NSLeftMouseUpMask
                                              untilDate:[start dateByAddingTimeInterval:30]
                                                 inMode:NSEventTrackingRunLoopMode
                                                dequeue:YES];
    EXPECT_NE(event, nil);
    EXPECT_LT(-[start timeIntervalSinceNow], 15);
    [window close];
    [window release];
}

// Only the first click of a process could fail.
TEST(HostApplication, TakesPressAndReleaseInOrderWhenBothHaveBeenWaiting)
{
    REQUIRE_DISPLAY();
    NSWindow* const window = gui_test::makeWindow(NSMakeSize(100, 100));
    const NSPoint place = [window convertBaseToScreen:NSMakePoint(50, 50)];
    char words[64];
    std::snprintf(words, sizeof words, "xdotool mousemove %.0f %.0f click 1", place.x,
                  NSHeight([[window screen] frame]) - place.y);
    gui_test::pump(0); // what is under way to the X server
    ASSERT_EQ(std::system(words), 0);
    std::vector<NSEventType> types;
    NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:5];
    while (types.size() < 2 && [limit timeIntervalSinceNow] > 0) {
        NSEvent* const event = [NSApp nextEventMatchingMask:NSLeftMouseDownMask | NSLeftMouseUpMask
                                                  untilDate:limit
                                                     inMode:NSEventTrackingRunLoopMode
                                                    dequeue:YES];
        types.push_back(event != nil ? [event type] : NSEventType{});
    }
    EXPECT_EQ(types, (std::vector<NSEventType>{NSLeftMouseDown, NSLeftMouseUp}));
    [window close];
    [window release];
}

TEST(HostApplication, WaitsNoLongerThanItIsTold)
{
    REQUIRE_DISPLAY();
    NSDate* const start = [NSDate date];
    EXPECT_EQ([NSApp nextEventMatchingMask:NSOtherMouseUpMask
                                 untilDate:[start dateByAddingTimeInterval:0.2]
                                    inMode:NSEventTrackingRunLoopMode
                                   dequeue:YES],
              nil);
    EXPECT_GE(-[start timeIntervalSinceNow], 0.2);
}

TEST(HostApplication, KeepsTheEventInHandWhileItWaitsForTheNext)
{
    REQUIRE_DISPLAY();
    NSWindow* const window = gui_test::makeWindow(NSMakeSize(100, 100));
    [NSApp postEvent:gui_test::mouseEvent(window, NSOtherMouseDown, NSZeroPoint) atStart:NO];
    NSEvent* const event = [NSApp nextEventMatchingMask:NSOtherMouseDownMask
                                              untilDate:[NSDate distantPast]
                                                 inMode:NSEventTrackingRunLoopMode
                                                dequeue:YES];
    ASSERT_NE(event, nil);
    [NSApp nextEventMatchingMask:NSOtherMouseUpMask
                       untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                          inMode:NSEventTrackingRunLoopMode
                         dequeue:YES];
    EXPECT_EQ([NSApp currentEvent], event);
    [window close];
    [window release];
}

} // namespace
