#import "HostContentView.h"

#import "HostLook.h"

using namespace host;

@implementation HostContentView

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    [self registerForDraggedTypes:@[ NSFilenamesPboardType ]];
    return self;
}

- (void)setDelegate:(id<HostContentViewDelegate>)delegate
{
    m_delegate = delegate;
}

- (BOOL)isOpaque
{
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect
{
    [look::background() set];
    NSRectFill(dirtyRect);
    if (m_isTarget) {
        [look::accent() set];
        NSFrameRectWithWidth([self bounds], 2);
    }
}

- (void)_setTarget:(BOOL)flag
{
    if (m_isTarget != flag) {
        m_isTarget = flag;
        [self setNeedsDisplay:YES];
    }
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)info
{
    NSArray* const types = [[info draggingPasteboard] types];
    [self _setTarget:[types containsObject:NSFilenamesPboardType]];
    return m_isTarget ? NSDragOperationCopy : NSDragOperationNone;
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)info
{
    return m_isTarget ? NSDragOperationCopy : NSDragOperationNone;
}

- (void)draggingExited:(id<NSDraggingInfo>)info
{
    [self _setTarget:NO];
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)info
{
    return YES;
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)info
{
    [self _setTarget:NO];
    NSArray* const files = [[info draggingPasteboard] propertyListForType:NSFilenamesPboardType];
    if (![files isKindOfClass:[NSArray class]] || [files count] == 0) {
        return NO;
    }
    [m_delegate contentViewDidReceiveFile:[[files objectAtIndex:0] fileSystemRepresentation]];
    return YES;
}

@end
