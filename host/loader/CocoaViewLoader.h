#pragma once

#import <AppKit/AppKit.h>
#import <AudioUnit/AudioUnit.h>

namespace host {

/// An audio unit's editor, or why there is none.
struct CocoaView {
    NSView* view = nil;      // autoreleased; nil when a step failed
    NSString* name = nil;    // what the view's factory calls it; autoreleased
    NSString* problem = nil; // one sentence for the user; nil when there is a view; autoreleased
};

/// Opens the editor that `unit` names in its CocoaUI property: finds the bundle by URL, loads it,
/// looks the first factory class up by name, checks that it follows AUCocoaUIBase, and asks it for
/// a view. The factory is gone when this returns. An exception on the way is a problem like any
/// other. Bundles are never unloaded. [main]
///
/// @param preferredSize  Passed on in points; most editors have their own size.
CocoaView openCocoaView(AudioUnit unit, NSSize preferredSize);

} // namespace host
