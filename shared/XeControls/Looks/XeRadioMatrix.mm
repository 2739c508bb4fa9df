#import "XeRadioMatrix.h"

#import "XeKeys.h"
#import "XeRadioCell.h"

#import <AppKit/AppKit.h>

@implementation XeRadioMatrix

+ (Class)cellClass
{
    return [XeRadioCell class];
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [super dealloc];
}

- (BOOL)acceptsFirstResponder
{
    return [self isEnabled];
}

- (BOOL)becomeFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super becomeFirstResponder];
}

- (BOOL)resignFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super resignFirstResponder];
}

- (NSCell*)_cellUnder:(NSEvent*)event
{
    NSInteger row = 0;
    NSInteger column = 0;
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    return [self getRow:&row column:&column forPoint:point] ? [self cellAtRow:row column:column]
                                                            : nil;
}

- (void)_chooseCell:(NSCell*)cell
{
    NSInteger row = 0;
    NSInteger column = 0;
    if ([self getRow:&row column:&column ofCell:cell]) {
        [self selectCellAtRow:row column:column];
        [self setNeedsDisplay:YES];
        [self sendAction];
    }
}

// A matrix that comes out of an interface description selects on a click but sends nothing, so the
// click is followed here.
- (void)mouseDown:(NSEvent*)event
{
    NSCell* const cell = [self _cellUnder:event];
    if (![self isEnabled] || cell == nil || ![cell isEnabled]) {
        return;
    }
    NSEvent* last = nil;
    do {
        last = [[self window] nextEventMatchingMask:NSLeftMouseUpMask | NSLeftMouseDraggedMask];
    } while ([last type] != NSLeftMouseUp);
    if ([self _cellUnder:last] == cell) {
        [self _chooseCell:cell];
    }
}

- (NSCell*)_nextCell:(NSInteger)direction
{
    NSArray* const cells = [self cells];
    const NSInteger count = static_cast<NSInteger>([cells count]);
    const NSUInteger selected = [cells indexOfObjectIdenticalTo:[self selectedCell]];
    NSInteger i = selected == NSNotFound ? -1 : static_cast<NSInteger>(selected);
    for (i += direction; i >= 0 && i < count; i += direction) {
        NSCell* const cell = [cells objectAtIndex:static_cast<NSUInteger>(i)];
        if ([cell isEnabled]) {
            return cell;
        }
    }
    return nil;
}

- (void)keyDown:(NSEvent*)event
{
    const int direction = xenon::horizontalArrow(event) - xenon::verticalArrow(event);
    if (direction == 0) {
        [super keyDown:event];
        return;
    }
    [self _chooseCell:[self _nextCell:direction]];
}

@end
