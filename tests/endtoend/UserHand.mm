#import "UserHand.h"

#import "GuiTest.h"

#include <objc/runtime.h>

#include <algorithm>
#include <cstdio>
#include <deque>
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

std::deque<std::string> s_events;
IMP s_nextEvent;

NSEvent* recordNextEvent(id self, SEL selector, NSUInteger mask, NSDate* limit, NSString* mode,
                         BOOL dequeue)
{
    using Next = NSEvent* (*)(id, SEL, NSUInteger, NSDate*, NSString*, BOOL);
    NSEvent* const event =
        reinterpret_cast<Next>(s_nextEvent)(self, selector, mask, limit, mode, dequeue);
    if (event != nil && dequeue && [event type] != NSPeriodic) {
        constexpr std::size_t kMost = 300;
        char now[32];
        std::snprintf(now, sizeof now, "%.3f", [NSDate timeIntervalSinceReferenceDate]);
        s_events.push_back(now + std::string(" ") + [mode UTF8String] + ": " +
                           [[event description] UTF8String]);
        if (s_events.size() > kMost) {
            s_events.pop_front();
        }
    }
    return event;
}

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

std::string centreOfRow(NSMenuView* list, NSInteger index)
{
    const NSRect row = [list rectOfItemAtIndex:index];
    // The title, which is the left end of an item in a menu.
    const CGFloat x = NSMinX(row) + std::min(NSWidth(row) / 2, 20.0);
    const NSPoint centre = NSMakePoint(x, NSMidY(row));
    return onScreen([list window], [list convertPoint:centre toView:nil]);
}

std::string centreOfItem(NSMenu* menu, NSInteger index)
{
    return centreOfRow([menu menuRepresentation], index);
}

/// Moves over an item of an open menu, and goes on once the menu has noticed.
void moveOver(NSMenu* menu, NSInteger index, std::function<void()> then)
{
    launch("mousemove " + centreOfItem(menu, index));
    whenever([menu, index] { return [[menu menuRepresentation] highlightedItemIndex] == index; },
             std::move(then));
}

/// Another item that can be chosen and is not under the pointer yet; none: the same.
NSInteger itemBeside(NSMenu* menu, NSInteger index)
{
    const NSInteger highlighted = [[menu menuRepresentation] highlightedItemIndex];
    for (NSInteger other = 0; other < [menu numberOfItems]; ++other) {
        NSMenuItem* const item = (NSMenuItem*)[menu itemAtIndex:other];
        if (other != index && other != highlighted && ![item isSeparatorItem] && [item isEnabled]) {
            return other;
        }
    }
    return index;
}

/// Presses a button; lets go over an item once the menu is there. A menu in which the pointer stays
/// on one item from the start takes this for a click that opens it, and stays open: the pointer
/// comes by another item.
bool pressAndPick(const std::string& place, int button, NSMenu* menu, NSInteger index)
{
    const std::string number = std::to_string(button);
    bool released = false;
    whenever([menu] { return isOpen(menu); },
             [&released, menu, index, number] {
                 moveOver(menu, itemBeside(menu, index), [&released, menu, index, number] {
                     moveOver(menu, index, [&released, number] {
                         released = true;
                         launch("mouseup " + number);
                     });
                 });
             });
    launch("mousemove " + place + " mousedown " + number);
    return gui_test::pumpUntil([&released, menu] { return released && !isOpen(menu); }, kTimeLimit);
}

/// An item of a menu.
struct MenuPlace {
    NSMenu* menu;
    NSInteger index;
};

/// The items on the way from the menu bar; empty when there is none of such a name.
std::vector<MenuPlace> placesInMenuBar(const std::vector<std::string>& titles)
{
    std::vector<MenuPlace> places;
    NSMenu* menu = [NSApp mainMenu];
    for (const std::string& title : titles) {
        const NSInteger index = [menu indexOfItemWithTitle:@(title.c_str())];
        if (menu == nil || index < 0) {
            return {};
        }
        places.push_back({menu, index});
        menu = [[menu itemAtIndex:index] submenu];
    }
    return places;
}

NSButton* buttonBelow(NSView* view, NSString* title)
{
    for (NSView* part in [view subviews]) {
        if ([part isKindOfClass:[NSButton class]] &&
            [[(NSButton*)part title] isEqualToString:title]) {
            return (NSButton*)part;
        }
        NSButton* const button = buttonBelow(part, title);
        if (button != nil) {
            return button;
        }
    }
    return nil;
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

void recordEvents()
{
    s_nextEvent = method_setImplementation(
        class_getInstanceMethod([NSApp class], @selector(nextEventMatchingMask:
                                                                     untilDate:inMode:dequeue:)),
        reinterpret_cast<IMP>(recordNextEvent));
}

void tellEvents()
{
    for (const std::string& event : s_events) {
        std::fprintf(stderr, "%s\n", event.c_str());
    }
    s_events.clear();
    std::fprintf(stderr, "now %.3f\n", [NSDate timeIntervalSinceReferenceDate]);
    for (NSWindow* window in [NSApp windows]) {
        const NSRect frame = [window frame];
        std::fprintf(
            stderr, "window %ld \"%s\" %s at %.0f,%.0f %.0fx%.0f, responder %s%s%s\n",
            static_cast<long>([window windowNumber]), [[window title] UTF8String],
            [window isVisible] ? "shown" : "hidden", NSMinX(frame), NSMinY(frame), NSWidth(frame),
            NSHeight(frame), [[[window firstResponder] description] UTF8String],
            [window isKeyWindow] ? ", key" : "", [NSApp modalWindow] == window ? ", modal" : "");
    }
    xdotool("getmouselocation getwindowfocus");
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

bool isOpen(NSMenu* menu) { return [[[menu menuRepresentation] window] isVisible]; }

bool pickFromContextMenu(NSView* view, NSMenu* menu, NSInteger index)
{
    return pressAndPick(at(view, 0.3, 0.5), 3, menu, index);
}

bool pickFromPopUp(NSPopUpButton* button, NSInteger index)
{
    return pressAndPick(at(button, 0.3, 0.5), 1, [button menu], index);
}

bool chooseFromMenuBar(const std::vector<std::string>& titles)
{
    const std::vector<MenuPlace> places = placesInMenuBar(titles);
    if (places.empty()) {
        return false;
    }
    [places.back().menu update];
    [places.back().menu performActionForItemAtIndex:places.back().index];
    return true;
}

NSButton* panelButton(const std::string& title)
{
    return buttonBelow([[NSApp modalWindow] contentView], @(title.c_str()));
}

void clickPanelButtonWhenShown(const std::string& title)
{
    whenever([title] { return panelButton(title) != nil && [[NSApp modalWindow] isKeyWindow]; },
             [title] {
                 launch("mousemove " + at(panelButton(title), 0.5, 0.5) +
                        " mousedown 1 sleep 0.03 mouseup 1");
             });
}

} // namespace user_hand
