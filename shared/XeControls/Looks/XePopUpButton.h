#pragma once

#import <AppKit/NSPopUpButton.h>

/// Pop-up button of the face. [main]
///
/// With the keyboard on it, the up and down arrow keys choose the item before and after, and send
/// the action when that changed the selection; other keys go to NSPopUpButton.
@interface XePopUpButton : NSPopUpButton
@end
