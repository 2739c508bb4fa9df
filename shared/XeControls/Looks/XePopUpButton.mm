#import "XePopUpButton.h"

#import "XeKeys.h"
#import "XePopUpButtonCell.h"

#import <AppKit/NSEvent.h>
#import <AppKit/NSMenu.h>

@implementation XePopUpButton

+ (Class)cellClass
{
    return [XePopUpButtonCell class];
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [super dealloc];
}

// The cell names its control as the sender of the action. A decoded cell learns its control only
// when the platform draws it, and the cells of the face draw themselves.
- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    [[self cell] setControlView:self];
    return self;
}

- (BOOL)acceptsFirstResponder
{
    return [self isEnabled];
}

- (void)_menuDidSendAction:(NSNotification*)notification
{
    m_hasChosen = YES;
}

// One platform shows the first item after a menu that was left without a choice.
- (void)mouseDown:(NSEvent*)event
{
    const NSInteger shown = [self indexOfSelectedItem];
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    m_hasChosen = NO;
    [center addObserver:self
               selector:@selector(_menuDidSendAction:)
                   name:NSMenuDidSendActionNotification
                 object:[self menu]];
    [super mouseDown:event];
    [center removeObserver:self name:NSMenuDidSendActionNotification object:[self menu]];
    if (!m_hasChosen && shown >= 0) {
        [self selectItemAtIndex:shown];
    }
}

- (void)keyDown:(NSEvent*)event
{
    const int direction = xenon::verticalArrow(event);
    if (direction == 0) {
        [super keyDown:event];
        return;
    }
    const NSInteger wanted = [self indexOfSelectedItem] - direction;
    if (wanted >= 0 && wanted < [self numberOfItems]) {
        [self selectItemAtIndex:wanted];
        [self sendAction:[self action] to:[self target]];
    }
}

@end
