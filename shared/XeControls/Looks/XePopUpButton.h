#pragma once

#import <AppKit/NSPopUpButton.h>

/// Pop-up button of the face. [main]
///
/// With the keyboard on it, the up and down arrow keys choose the item before and after, and send
/// the action when that changed the selection; other keys go to NSPopUpButton. A menu that is left
/// without a choice leaves the selection as it was.
@interface XePopUpButton : NSPopUpButton {
@private
    BOOL m_hasChosen; // while the menu is open
}
@end
