#pragma once

#import <Foundation/NSGeometry.h>

@class NSView, XeHoverTracker;

namespace xenon {

/// Tells a cell whether the pointer is over it, and has it drawn again when that changes. [main]
///
/// A field of a cell. The cell calls isOver() whenever it draws; that is all there is to it. Cells
/// are copied byte by byte, and a copy starts without tracking.
class Hover {
public:
    Hover() = default;
    ~Hover();
    Hover(const Hover&) = delete;
    Hover& operator=(const Hover&) = delete;

    /// True while the pointer is over `frame`, in coordinates of `view`. Follows the view when it
    /// has moved since the last drawing. `view` is not retained; it outlives the cell's tracking
    /// because a control releases its cell before it goes.
    bool isOver(NSRect frame, NSView* view);

private:
    const Hover* m_owner = this; // another address in a cell copied byte by byte
    XeHoverTracker* m_tracker = nullptr;
};

} // namespace xenon
