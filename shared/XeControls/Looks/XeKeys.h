#pragma once

@class NSEvent;

namespace xenon {

/// Direction of an arrow key, whatever the modifiers; 0 for every other key. [main]
int verticalArrow(NSEvent* event);   // up +1, down -1
int horizontalArrow(NSEvent* event); // right +1, left -1

} // namespace xenon
