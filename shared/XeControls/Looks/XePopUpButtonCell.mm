#import "XePopUpButtonCell.h"

#import "XeDraw.h"

#import <AppKit/NSImage.h>
#import <AppKit/NSMenuItem.h>
#import <AppKit/NSView.h>

namespace {

constexpr double kArrowRoom = 20;

// The platform marks the selected item with a picture of its own, which has a name. Pictures that
// belong to an item have none.
NSImage* _pictureOf(id<NSMenuItem> item)
{
    NSImage* const image = [item image];
    return [[image name] length] == 0 ? image : nil;
}

} // namespace

@implementation XePopUpButtonCell

- (void)_drawItem:(id<NSMenuItem>)item inFrame:(NSRect)frame tone:(XeTone)tone
{
    NSRect rect = NSInsetRect(frame, xenon::metrics::kTextInset, 0);
    NSImage* const image = _pictureOf(item);
    if (image != nil) {
        const NSSize size = [image size];
        const NSRect place =
            NSMakeRect(NSMinX(rect), NSMidY(rect) - size.height / 2, size.width, size.height);
        [image drawInRect:place
                  fromRect:NSZeroRect
                 operation:NSCompositeSourceOver
                  fraction:[self isEnabled] ? 1.0 : 0.4
            respectFlipped:YES
                     hints:nil];
        rect.origin.x += size.width + xenon::metrics::kTextInset;
        rect.size.width -= size.width + xenon::metrics::kTextInset;
    }
    rect.size.width -= kArrowRoom - xenon::metrics::kTextInset;
    xenon::draw::text([item title], rect, tone, XeFontRole::Text, NSLeftTextAlignment);
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    using namespace xenon;
    draw::State state = draw::stateOf(self, view);
    state.isHovered = m_hover.isOver(frame, view);
    draw::raisedBox(frame, state);
    const XeTone tone = state.isEnabled ? XeTone::Text : XeTone::TextDisabled;
    [self _drawItem:[self selectedItem] inFrame:frame tone:tone];
    draw::arrow(NSMakePoint(NSMaxX(frame) - kArrowRoom / 2, NSMidY(frame)), 8,
                draw::Direction::Down, tone, [view isFlipped]);
}

// The list opens without the platform's marks.
- (void)attachPopUpWithFrame:(NSRect)frame inView:(NSView*)view
{
    for (id<NSMenuItem> const item in [self itemArray]) {
        [item setImage:_pictureOf(item)];
    }
    [super attachPopUpWithFrame:frame inView:view];
}

@end
