#pragma once

#import <AppKit/AppKit.h>

/// The keyboard in open pop-up and context menus, which on this platform follow the pointer alone.
/// Up and down arrows, Home and End move the highlight over the items that can be chosen, the first
/// press to the ticked one; Return, Enter and the space bar choose it, Escape closes the menu. The
/// pointer takes over again as soon as it moves. [main]
@interface MenuKeys : NSObject {
@private
    NSMenu* m_menu; // the one that is open and tracks, or nil
    NSPoint m_pointer;
    BOOL m_ignoresPointer;
    BOOL m_isEnding;
}

/// True while such a menu is open.
- (BOOL)isInUse;

/// What the menu's tracking is to get in the place of the next event.
/// @param event  An event of the tracking, or the press of a key.
/// @return The event itself, another, or nil when it is not for the menu.
- (NSEvent*)eventForMenu:(NSEvent*)event;

@end
