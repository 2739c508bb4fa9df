#pragma once

#import <AppKit/AppKit.h>

#include <AudioUnit/AudioUnit.h>

/// What the factory class of an editor bundle answers to a host. [main]
@protocol AUCocoaUIBase

/// Version of this protocol: 0.
- (unsigned)interfaceVersion;

/// Makes a new view for the unit, autoreleased; nil when it cannot be made. The factory may go away
/// before the view.
/// @param inPreferredSize  A wish; the view's own frame decides.
- (NSView*)uiViewForAudioUnit:(AudioUnit)inAudioUnit withSize:(NSSize)inPreferredSize;

@end
