#import "HostButton.h"

#import "HostLook.h"

using namespace host;

namespace {

constexpr CGFloat kHeight = 24;
constexpr CGFloat kPadding = 12;
constexpr CGFloat kRadius = 4;

NSDictionary* attributesOf(NSButtonCell* cell)
{
    return @{
        NSFontAttributeName : [cell font],
        NSForegroundColorAttributeName : [cell isEnabled] ? look::text() : look::faintText(),
    };
}

bool hasKeyboard(NSView* view)
{
    return [[view window] isKeyWindow] && [[view window] firstResponder] == view;
}

} // namespace

@interface HostButtonCell : NSButtonCell
@end

@implementation HostButtonCell

- (NSColor*)_groundInView:(NSView*)view
{
    if (![self isEnabled]) {
        return look::background();
    }
    if ([self isHighlighted]) {
        return look::pressed();
    }
    return [(HostButton*)view isHovered] ? look::hover() : look::panel();
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    [look::background() set];
    NSRectFill(frame);
    NSBezierPath* const shape = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(frame, 0.5, 0.5)
                                                                xRadius:kRadius
                                                                yRadius:kRadius];
    [[self _groundInView:view] set];
    [shape fill];
    [(hasKeyboard(view) ? look::accent() : look::line()) set];
    [shape stroke];
    NSDictionary* const attributes = attributesOf(self);
    const NSSize size = [[self title] sizeWithAttributes:attributes];
    [[self title]
           drawAtPoint:NSMakePoint(NSMidX(frame) - size.width / 2, NSMidY(frame) - size.height / 2)
        withAttributes:attributes];
}

@end

@implementation HostButton

+ (Class)cellClass
{
    return [HostButtonCell class];
}

+ (HostButton*)buttonWithTitle:(NSString*)title action:(SEL)action target:(id)target
{
    HostButton* const button = [[[self alloc] initWithFrame:NSZeroRect] autorelease];
    [button setTitle:title];
    [button setFont:[NSFont systemFontOfSize:12]];
    [button setAction:action];
    [button setTarget:target];
    const NSSize size = [title sizeWithAttributes:attributesOf([button cell])];
    [button setFrameSize:NSMakeSize(std::ceil(size.width) + 2 * kPadding, kHeight)];
    return button;
}

- (BOOL)isHovered
{
    return m_isHovered;
}

- (void)viewWillMoveToWindow:(NSWindow*)window
{
    m_area.stop(self);
    [super viewWillMoveToWindow:window];
}

- (void)viewDidMoveToWindow
{
    m_area.follow(self);
}

- (void)setFrame:(NSRect)frame
{
    [super setFrame:frame];
    m_area.follow(self);
}

- (void)mouseEntered:(NSEvent*)event
{
    m_isHovered = YES;
    [self setNeedsDisplay:YES];
}

- (void)mouseExited:(NSEvent*)event
{
    m_isHovered = NO;
    [self setNeedsDisplay:YES];
}

@end
