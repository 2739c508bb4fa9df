#pragma once

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

/// Helpers for tests that drive real views in real windows with real events. [main]
namespace gui_test {

/// False when the program was started without a display; no application object exists then.
bool hasDisplay();

/// Runs the application's event loop for `seconds`, delivering timers and queued events.
void pump(double seconds);

/// Runs the event loop until `done` answers true; false when `seconds` passed before.
template <typename Condition>
bool pumpUntil(Condition done, double seconds = 5.0)
{
    NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
    while (!done()) {
        if ([limit timeIntervalSinceNow] <= 0) {
            return false;
        }
        pump(0.01);
    }
    return true;
}

/// A titled window of the given content size, ordered front and key. Caller releases.
NSWindow* makeWindow(NSSize contentSize);

/// Key-down event for `window`. `characters` is also what it gives ignoring modifiers.
NSEvent* keyDown(NSWindow* window, NSString* characters, NSUInteger modifiers = 0);

/// Sends a key press (down and up) through the application to the window's first responder.
void pressKey(NSWindow* window, NSString* characters, NSUInteger modifiers = 0);

/// Mouse event at `point` in the window's coordinates.
NSEvent* mouseEvent(NSWindow* window, NSEventType type, NSPoint point, NSInteger clickCount = 1);

/// Presses at the first point, drags over the others and releases at the last. Control tracking
/// loops run inside. One point makes a click.
void drag(NSWindow* window, std::initializer_list<NSPoint> points, NSInteger clickCount = 1);

/// Centre of `view` in its window's coordinates.
NSPoint centerOf(NSView* view);

} // namespace gui_test

/// First line of every GUI test or fixture SetUp.
#define REQUIRE_DISPLAY()                                                                          \
    if (!gui_test::hasDisplay())                                                                   \
    GTEST_SKIP() << "no display: set DISPLAY, or run ./test, which starts a virtual one"
