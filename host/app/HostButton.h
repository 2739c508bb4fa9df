#pragma once

#import <AppKit/AppKit.h>

#import "PointerArea.h"

/// A flat button of the host's window, with states for the pointer over it, for being pressed, for
/// having the keyboard and for being disabled. [main]
@interface HostButton : NSButton {
@private
    host::PointerArea m_area;
    BOOL m_isHovered;
}

/// A button as wide as its title asks, autoreleased. Its action goes to the first responder when
/// the target is nil.
+ (HostButton*)buttonWithTitle:(NSString*)title action:(SEL)action target:(id)target;

- (BOOL)isHovered;

@end
