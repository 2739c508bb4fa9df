#pragma once

#import <AppKit/AppKit.h>

namespace host {

/// Has a view told by mouseEntered: and mouseExited: that the pointer comes over its bounds and
/// leaves them. [main]
class PointerArea {
public:
    /// Follows the view's present bounds; call when they change and when it comes into a window.
    void follow(NSView* view)
    {
        stop(view);
        if ([view window] != nil) {
            m_tag = [view addTrackingRect:[view bounds]
                                    owner:view
                                 userData:nullptr
                             assumeInside:NO];
        }
    }

    /// Call before the view leaves its window. Harmless when repeated.
    void stop(NSView* view)
    {
        if (m_tag != 0) {
            [view removeTrackingRect:m_tag];
            m_tag = 0;
        }
    }

private:
    NSTrackingRectTag m_tag = 0;
};

} // namespace host
