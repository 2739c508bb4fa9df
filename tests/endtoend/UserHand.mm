#import "UserHand.h"

#import "GuiTest.h"

#include <cstdio>
#include <utility>

/// Looks again and again whether its time has come.
@interface UserHandWaiter : NSObject {
@public
    std::function<bool()> when;
    std::function<void()> then;
}
@end

@implementation UserHandWaiter

- (void)look:(NSTimer*)timer
{
    if (when()) {
        [timer invalidate];
        then();
    }
}

@end

namespace user_hand {

namespace {

constexpr double kTimeLimit = 15; // seconds
constexpr NSTimeInterval kLookSeconds = 0.01;

NSTask* launch(const std::string& words)
{
    NSTask* const task = [[[NSTask alloc] init] autorelease];
    [task setLaunchPath:@"/usr/bin/xdotool"];
    [task setArguments:[[NSString stringWithUTF8String:words.c_str()]
                           componentsSeparatedByString:@" "]];
    [task launch];
    return task;
}

bool waitFor(NSTask* task)
{
    return gui_test::pumpUntil([task] { return ![task isRunning]; }, kTimeLimit) &&
           [task terminationStatus] == 0;
}

std::string onScreen(NSWindow* window, NSPoint point)
{
    const NSPoint base = [window convertBaseToScreen:point];
    char text[64];
    std::snprintf(text, sizeof text, "%.0f %.0f", base.x,
                  NSHeight([[window screen] frame]) - base.y);
    return text;
}

std::string centreOfItem(NSMenu* menu, NSInteger index)
{
    NSMenuView* const list = [menu menuRepresentation];
    const NSRect row = [list rectOfItemAtIndex:index];
    const NSPoint centre = NSMakePoint(NSMinX(row) + 20, NSMidY(row));
    return onScreen([list window], [list convertPoint:centre toView:nil]);
}

/// Presses a button; lets go over an item once the menu is there.
bool pressAndPick(const std::string& place, int button, NSMenu* menu, NSInteger index)
{
    const std::string number = std::to_string(button);
    bool released = false;
    whenever([menu] { return [[[menu menuRepresentation] window] isVisible]; },
             [&released, menu, index, number] {
                 released = true;
                 const std::string item = centreOfItem(menu, index);
                 launch("mousemove " + item +
                        " sleep 0.05 mousemove_relative 1 0 sleep 0.05 mouseup " + number);
             });
    launch("mousemove " + place + " mousedown " + number);
    return gui_test::pumpUntil(
        [&released, menu] { return released && ![[[menu menuRepresentation] window] isVisible]; },
        kTimeLimit);
}

} // namespace

void whenever(std::function<bool()> when, std::function<void()> then)
{
    UserHandWaiter* const waiter = [[[UserHandWaiter alloc] init] autorelease];
    waiter->when = std::move(when);
    waiter->then = std::move(then);
    NSTimer* const timer = [NSTimer timerWithTimeInterval:kLookSeconds
                                                   target:waiter
                                                 selector:@selector(look:)
                                                 userInfo:nil
                                                  repeats:YES];
    for (NSString* mode in
         @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
    }
}

void start(const std::string& words) { launch(words); }

bool xdotool(const std::string& words) { return waitFor(launch(words)); }

bool type(const std::string& text) { return xdotool("type --delay 8 " + text); }

bool key(const std::string& name) { return xdotool("key " + name); }

std::string at(NSView* view, double x, double y)
{
    const NSSize size = [view bounds].size;
    const NSPoint point = NSMakePoint(size.width * x, size.height * ([view isFlipped] ? 1 - y : y));
    return onScreen([view window], [view convertPoint:point toView:nil]);
}

bool drag(NSView* view, NSPoint from, NSPoint to)
{
    constexpr int kSteps = 8;
    std::string words = "mousemove " + at(view, from.x, from.y) + " mousedown 1 sleep 0.05";
    for (int i = 1; i <= kSteps; ++i) {
        const double part = static_cast<double>(i) / kSteps;
        words += " mousemove " +
                 at(view, from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part) +
                 " sleep 0.02";
    }
    return xdotool(words + " sleep 0.05 mouseup 1");
}

bool click(NSView* view, double x, double y)
{
    return xdotool("mousemove " + at(view, x, y) + " mousedown 1 sleep 0.03 mouseup 1");
}

bool pickFromContextMenu(NSView* view, NSMenu* menu, NSInteger index)
{
    return pressAndPick(at(view, 0.3, 0.5), 3, menu, index);
}

bool pickFromPopUp(NSPopUpButton* button, NSInteger index)
{
    return pressAndPick(at(button, 0.3, 0.5), 1, [button menu], index);
}

} // namespace user_hand
