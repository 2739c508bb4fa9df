#pragma once

#import <Foundation/NSGeometry.h>

@class NSView, XeHoverTracker;

namespace xenon {

/// Tells a cell whether the pointer is over it, and has it drawn again when that changes. [main]
///
/// A field of a cell. The cell calls isOver() whenever it draws, and its control forget() when it
/// goes; that is all there is to it. Cells are copied byte by byte, and a copy starts without
/// tracking.
class Hover {
public:
    Hover() = default;
    ~Hover();
    Hover(const Hover&) = delete;
    Hover& operator=(const Hover&) = delete;

    /// True while the pointer is over `frame`, in coordinates of `view`. Follows the view when it
    /// has moved since the last drawing. `view` is not retained: it calls forget() before it goes.
    bool isOver(NSRect frame, NSView* view);

    /// Ends the tracking of `view` by every cell. Part of the dealloc of each control whose cells
    /// have a Hover, since anyone may hold on to a cell for longer than its control lives.
    static void forget(NSView* view);

private:
    const Hover* m_owner = this; // another address in a cell copied byte by byte
    XeHoverTracker* m_tracker = nullptr;
};

} // namespace xenon
