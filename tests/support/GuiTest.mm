#import "GuiTest.h"

#include <cstdlib>
#include <vector>

namespace gui_test {

bool hasDisplay() { return NSApp != nil; }

void pump(double seconds)
{
    NSDate* const until = [[NSDate alloc] initWithTimeIntervalSinceNow:seconds];
    do {
        @autoreleasepool {
            NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                      untilDate:until
                                                         inMode:NSDefaultRunLoopMode
                                                        dequeue:YES];
            if (event != nil) {
                [NSApp sendEvent:event];
            }
        }
    } while ([until timeIntervalSinceNow] > 0);
    [until release];
}

// Runs the event loop until no event of the kind is queued any more.
static void pumpUntilTaken(NSUInteger eventMask)
{
    pumpUntil([eventMask] {
        return [NSApp nextEventMatchingMask:eventMask
                                  untilDate:[NSDate distantPast]
                                     inMode:NSDefaultRunLoopMode
                                    dequeue:NO] == nil;
    });
}

NSWindow* makeWindow(NSSize contentSize)
{
    NSWindow* const window = [[NSWindow alloc]
        initWithContentRect:NSMakeRect(100, 100, contentSize.width, contentSize.height)
                  styleMask:NSTitledWindowMask | NSClosableWindowMask
                    backing:NSBackingStoreBuffered
                      defer:NO];
    [window setReleasedWhenClosed:NO];
    [window makeKeyAndOrderFront:nil];
    pumpUntil([window] { return [window isKeyWindow]; });
    return window;
}

static NSEvent* keyEvent(NSEventType type, NSWindow* window, NSString* characters,
                         NSUInteger modifiers)
{
    return [NSEvent keyEventWithType:type
                            location:NSZeroPoint
                       modifierFlags:modifiers
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:[window graphicsContext]
                          characters:characters
         charactersIgnoringModifiers:characters
                           isARepeat:NO
                             keyCode:0];
}

NSEvent* keyDown(NSWindow* window, NSString* characters, NSUInteger modifiers)
{
    return keyEvent(NSKeyDown, window, characters, modifiers);
}

void pressKey(NSWindow* window, NSString* characters, NSUInteger modifiers)
{
    [NSApp postEvent:keyEvent(NSKeyDown, window, characters, modifiers) atStart:NO];
    [NSApp postEvent:keyEvent(NSKeyUp, window, characters, modifiers) atStart:NO];
    pumpUntilTaken(NSKeyUpMask);
}

NSEvent* mouseEvent(NSWindow* window, NSEventType type, NSPoint point, NSInteger clickCount)
{
    return [NSEvent mouseEventWithType:type
                              location:point
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[window windowNumber]
                               context:[window graphicsContext]
                           eventNumber:0
                            clickCount:clickCount
                              pressure:1];
}

void drag(NSWindow* window, std::initializer_list<NSPoint> points, NSInteger clickCount)
{
    const NSPoint first = *points.begin();
    const NSPoint last = *(points.end() - 1);
    [NSApp postEvent:mouseEvent(window, NSLeftMouseDown, first, clickCount) atStart:NO];
    for (const NSPoint& point : points) {
        [NSApp postEvent:mouseEvent(window, NSLeftMouseDragged, point, clickCount) atStart:NO];
    }
    [NSApp postEvent:mouseEvent(window, NSLeftMouseUp, last, clickCount) atStart:NO];
    pumpUntilTaken(NSLeftMouseUpMask);
}

NSPoint centerOf(NSView* view)
{
    const NSRect bounds = [view bounds];
    return [view convertPoint:NSMakePoint(NSMidX(bounds), NSMidY(bounds)) toView:nil];
}

} // namespace gui_test
