#pragma once

#import <AppKit/AppKit.h>

namespace bench {

/// Runs the application's event loop for `seconds`, delivering timers and queued events. [main]
inline void pump(double seconds)
{
    NSDate* const until = [NSDate dateWithTimeIntervalSinceNow:seconds];
    do {
        @autoreleasepool {
            NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                      untilDate:until
                                                         inMode:NSDefaultRunLoopMode
                                                        dequeue:YES];
            if (event != nil) {
                [NSApp sendEvent:event];
            }
        }
    } while ([until timeIntervalSinceNow] > 0);
}

} // namespace bench
