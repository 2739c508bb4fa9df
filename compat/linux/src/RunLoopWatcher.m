#import "RunLoopWatcher.h"

#include <unistd.h>

// The run loop takes a descriptor for a pointer.
static void* _handle(int descriptor)
{
    return (void*)(intptr_t)descriptor; // NOLINT(performance-no-int-to-ptr)
}

@implementation AudioUnitCompatWatcher

- (id)initWithDescriptor:(int)descriptor
                   modes:(NSArray*)modes
                    fire:(void (*)(void*))fire
                 release:(void (*)(void*))release
                 context:(void*)context
{
    self = [super init];
    if (self != nil) {
        m_descriptor = descriptor;
        m_modes = [modes copy];
        m_fire = fire;
        m_release = release;
        m_context = context;
    }
    return self;
}

- (void)dealloc
{
    [m_modes release];
    [super dealloc];
}

- (void)attach
{
    for (NSString* mode in m_modes) {
        [[NSRunLoop currentRunLoop] addEvent:_handle(m_descriptor)
                                        type:ET_RDESC
                                     watcher:self
                                     forMode:mode];
    }
}

- (void)detach
{
    for (NSString* mode in m_modes) {
        [[NSRunLoop currentRunLoop] removeEvent:_handle(m_descriptor)
                                           type:ET_RDESC
                                        forMode:mode
                                            all:YES];
    }
    [self abandon];
}

- (void)abandon
{
    if (m_context != NULL) {
        m_release(m_context);
        m_context = NULL;
    }
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode
{
    uint64_t expirations;
    if (read(m_descriptor, &expirations, sizeof expirations) < 0 || m_context == NULL) {
        return; // armed anew meanwhile, or detached
    }
    [[self retain] autorelease];
    @try {
        m_fire(m_context);
    } @catch (NSException* exception) {
        NSLog(@"*** an event listener's callback raised %@: %@", [exception name],
              [exception reason]);
    }
}

@end
