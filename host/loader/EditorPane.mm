#import "EditorPane.h"

#import "CocoaViewLoader.h"

@implementation EditorPane

- (void)dealloc
{
    [self closeEditor];
    [m_problem release];
    [super dealloc];
}

- (void)setDelegate:(id<EditorPaneDelegate>)delegate
{
    m_delegate = delegate;
}

- (NSView*)editor
{
    return m_editor;
}

- (NSString*)problem
{
    return m_problem;
}

- (BOOL)openEditorForUnit:(AudioUnit)unit
{
    [self closeEditor];
    const host::CocoaView opened = host::openCocoaView(unit, [self frame].size);
    [m_problem release];
    m_problem = [opened.problem copy];
    if (opened.view != nil) {
        [self _adoptEditor:opened.view];
    }
    [self setNeedsDisplay:YES];
    return m_editor != nil;
}

- (void)_adoptEditor:(NSView*)editor
{
    m_editor = [editor retain];
    [self setAutoresizesSubviews:NO]; // the editor alone decides its size
    [m_editor setFrameOrigin:NSZeroPoint];
    [self addSubview:m_editor];
    [m_editor setPostsFrameChangedNotifications:YES];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(_editorFrameDidChange:)
                                                 name:NSViewFrameDidChangeNotification
                                               object:m_editor];
    [self _followEditor];
}

- (void)closeEditor
{
    if (m_editor == nil) {
        return;
    }
    [[NSNotificationCenter defaultCenter] removeObserver:self
                                                    name:NSViewFrameDidChangeNotification
                                                  object:m_editor];
    [m_editor removeFromSuperview];
    [m_editor release];
    m_editor = nil;
}

- (void)_editorFrameDidChange:(NSNotification*)notification
{
    [self _followEditor];
}

- (void)_followEditor
{
    const NSSize size = [m_editor frame].size;
    if (!NSEqualSizes(size, [self frame].size)) {
        [self setFrameSize:size];
        [m_delegate editorPaneDidResize:self];
    }
}

- (void)drawRect:(NSRect)dirtyRect
{
    if (m_problem == nil) {
        return;
    }
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setAlignment:NSCenterTextAlignment];
    NSDictionary* const attributes = @{
        NSFontAttributeName : [NSFont systemFontOfSize:0],
        NSForegroundColorAttributeName : [NSColor controlTextColor],
        NSParagraphStyleAttributeName : style,
    };
    const NSRect bounds = NSInsetRect([self bounds], 20, 20);
    const NSRect text = [m_problem boundingRectWithSize:bounds.size
                                                options:NSStringDrawingUsesLineFragmentOrigin
                                             attributes:attributes];
    const CGFloat height = NSHeight(text);
    [m_problem drawInRect:NSMakeRect(NSMinX(bounds), NSMidY(bounds) - height / 2, NSWidth(bounds),
                                     height)
           withAttributes:attributes];
}

@end
