#pragma once

#import <Foundation/Foundation.h>

/// Watches a timer's descriptor on the run loop of one thread. Calls attach and detach there.
@interface AudioUnitCompatWatcher : NSObject <RunLoopEvents> {
    int m_descriptor;
    NSArray* m_modes;
    void (*m_fire)(void*);
    void (*m_release)(void*);
    void* m_context;
}

/// @param fire     Called with `context` for every expiry. An Objective-C exception out of it is
///                 logged and goes no further, as with an NSTimer.
/// @param release  Called with `context` once, when it is not needed any more.
- (id)initWithDescriptor:(int)descriptor
                   modes:(NSArray*)modes
                    fire:(void (*)(void*))fire
                 release:(void (*)(void*))release
                 context:(void*)context;

- (void)attach;

/// Stops watching and releases the context.
- (void)detach;

/// Releases the context without a run loop to leave, its thread being gone.
- (void)abandon;

@end
