#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

/// A user's mouse and keyboard: what it does goes through the X server, as it does for users, while
/// the application goes on. [main]
namespace user_hand {

/// Keeps from now on what the application takes from its queue of events, the last few hundred.
void recordEvents();

/// Prints them, which window has the keyboard and where the pointer is, and starts anew.
void tellEvents();

/// Runs xdotool with these words, separated by blanks; false when it failed or did not end in time.
bool xdotool(const std::string& words);

/// The same without waiting for its end.
void start(const std::string& words);

/// Types a text by key presses, then "Return" and the like. Text without quotes.
bool type(const std::string& text);
bool key(const std::string& name); // "super+z"

/// A point of a view, given in fractions of its width and height from the bottom left, in pixels
/// from the top left of the screen: "x y".
std::string at(NSView* view, double x, double y);

/// Drags from one point of a view to another in small steps.
bool drag(NSView* view, NSPoint from, NSPoint to);
bool click(NSView* view, double x = 0.5, double y = 0.5);

bool isOpen(NSMenu* menu);

/// Opens the context menu of a view with the right button, and lets go over one of its items.
bool pickFromContextMenu(NSView* view, NSMenu* menu, NSInteger index);

/// Opens a pop-up button and lets go over one of its items.
bool pickFromPopUp(NSPopUpButton* button, NSInteger index);

/// Chooses an item by the titles on the way to it, {"File", "Open Recent", "take.wav"}, as the
/// platform does when the mouse lets go over it. The menus themselves stay closed: with the hand's
/// speed the menu bar does not always follow the pointer.
bool chooseFromMenuBar(const std::vector<std::string>& titles);

/// The button with this title in the panel that has the event loop to itself; nil without one.
NSButton* panelButton(const std::string& title);

/// Clicks that button as soon as it is there, also while the panel has the event loop.
void clickPanelButtonWhenShown(const std::string& title);

/// Calls `then` as soon as `when` is true, also while a menu or a panel has the event loop.
void whenever(std::function<bool()> when, std::function<void()> then);

} // namespace user_hand
