#import "XeHover.h"

#import <AppKit/AppKit.h>

#include <vector>

@class XeHoverTracker;

namespace {

// The trackers that have a view, a few dozen of one editor. Kept for ever: cells may go after the
// static objects.
std::vector<XeHoverTracker*>& _trackers()
{
    static auto* const trackers = new std::vector<XeHoverTracker*>;
    return *trackers;
}

} // namespace

// What the tracking rectangle sends its events to.
@interface XeHoverTracker : NSObject {
    NSView* m_view; // not retained
    NSRect m_frame; // in the view
    NSRect m_area;  // in the window
    NSTrackingRectTag m_tag;
    BOOL m_isInside;
}
- (BOOL)isInside;
- (BOOL)isTracking:(NSView*)view;
- (void)trackFrame:(NSRect)frame inView:(NSView*)view;
- (void)stop;
@end

@implementation XeHoverTracker

- (BOOL)isInside
{
    return m_isInside;
}

- (BOOL)isTracking:(NSView*)view
{
    return m_view == view;
}

- (void)trackFrame:(NSRect)frame inView:(NSView*)view
{
    const NSRect area = [view convertRect:frame toView:nil];
    if (m_view == view && NSEqualRects(m_area, area)) {
        return;
    }
    [self stop];
    const NSPoint pointer = [[view window] mouseLocationOutsideOfEventStream];
    _trackers().push_back(self);
    m_view = view;
    m_frame = frame;
    m_area = area;
    m_isInside = NSPointInRect(pointer, area);
    m_tag = [view addTrackingRect:frame owner:self userData:nullptr assumeInside:m_isInside];
}

- (void)stop
{
    std::erase(_trackers(), self);
    [m_view removeTrackingRect:m_tag];
    m_view = nil;
    m_isInside = NO;
}

- (void)setInside:(BOOL)flag
{
    m_isInside = flag;
    [m_view setNeedsDisplayInRect:m_frame];
}

- (void)mouseEntered:(NSEvent*)event
{
    [self setInside:YES];
}

- (void)mouseExited:(NSEvent*)event
{
    [self setInside:NO];
}

@end

namespace xenon {

Hover::~Hover()
{
    if (m_owner == this) {
        [m_tracker stop];
        [m_tracker release];
    }
}

void Hover::forget(NSView* view)
{
    const std::vector<XeHoverTracker*> trackers = _trackers();
    for (XeHoverTracker* tracker : trackers) {
        if ([tracker isTracking:view]) {
            [tracker stop];
        }
    }
}

bool Hover::isOver(NSRect frame, NSView* view)
{
    if (m_owner != this) {
        m_owner = this;
        m_tracker = nullptr;
    }
    if (m_tracker == nullptr) {
        m_tracker = [[XeHoverTracker alloc] init];
    }
    [m_tracker trackFrame:frame inView:view];
    return [m_tracker isInside];
}

} // namespace xenon
