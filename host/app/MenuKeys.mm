#import "MenuKeys.h"

namespace {

constexpr unichar kEscape = 0x1B;

bool canBeChosen(NSMenu* menu, NSInteger index)
{
    NSMenuItem* const item = (NSMenuItem*)[menu itemAtIndex:index];
    return ![item isSeparatorItem] && [item isEnabled];
}

/// The first item that can be chosen from `index` on, in the direction of `step`; -1 without one.
NSInteger firstFrom(NSMenu* menu, NSInteger index, NSInteger step)
{
    while (index >= 0 && index < [menu numberOfItems]) {
        if (canBeChosen(menu, index)) {
            return index;
        }
        index += step;
    }
    return -1;
}

NSInteger tickedItem(NSMenu* menu)
{
    for (NSInteger index = 0; index < [menu numberOfItems]; ++index) {
        if ([[menu itemAtIndex:index] state] == NSOnState && canBeChosen(menu, index)) {
            return index;
        }
    }
    return -1;
}

/// Where a key moves the highlight; the same for other keys and at the ends.
NSInteger movedBy(unichar key, NSMenu* menu, NSInteger index)
{
    const NSInteger last = [menu numberOfItems] - 1;
    const bool isArrow = key == NSUpArrowFunctionKey || key == NSDownArrowFunctionKey;
    NSInteger next = -1;
    if (isArrow && index < 0) {
        next = tickedItem(menu);
    }
    if (next < 0 && key == NSDownArrowFunctionKey) {
        next = firstFrom(menu, index + 1, 1);
    } else if (next < 0 && key == NSUpArrowFunctionKey) {
        next = firstFrom(menu, index < 0 ? last : index - 1, -1);
    } else if (key == NSHomeFunctionKey) {
        next = firstFrom(menu, 0, 1);
    } else if (key == NSEndFunctionKey) {
        next = firstFrom(menu, last, -1);
    }
    return next < 0 ? index : next;
}

bool choosesItem(unichar key)
{
    return key == NSCarriageReturnCharacter || key == NSEnterCharacter || key == ' ';
}

} // namespace

@implementation MenuKeys

- (id)init
{
    self = [super init];
    if (self != nil) {
        NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
        [center addObserver:self
                   selector:@selector(_menuDidBeginTracking:)
                       name:NSMenuDidBeginTrackingNotification
                     object:nil];
        [center addObserver:self
                   selector:@selector(_menuDidEndTracking:)
                       name:NSMenuDidEndTrackingNotification
                     object:nil];
    }
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_menu release];
    [super dealloc];
}

- (void)_setMenu:(NSMenu*)menu
{
    [menu retain];
    [m_menu release];
    m_menu = menu;
    m_ignoresPointer = NO;
    m_isEnding = NO;
}

- (void)_menuDidBeginTracking:(NSNotification*)notification
{
    NSMenu* const menu = [notification object];
    [self _setMenu:[[menu menuRepresentation] isHorizontal] ? nil : menu];
}

- (void)_menuDidEndTracking:(NSNotification*)notification
{
    [self _setMenu:nil];
}

- (BOOL)isInUse
{
    // A menu whose submenu is open tracks in that one.
    return m_menu != nil && [m_menu attachedMenu] == nil;
}

- (void)_takeKey:(unichar)key
{
    NSMenuView* const view = [m_menu menuRepresentation];
    const NSInteger highlighted = [view highlightedItemIndex];
    if (key == kEscape) {
        [view setHighlightedItemIndex:-1];
    }
    m_isEnding = key == kEscape || (highlighted >= 0 && choosesItem(key));
    const NSInteger wanted = movedBy(key, m_menu, highlighted);
    if (!m_isEnding && wanted != highlighted) {
        [view setHighlightedItemIndex:wanted];
        m_ignoresPointer = YES;
        m_pointer = [NSEvent mouseLocation];
    }
}

- (NSEvent*)_release
{
    NSWindow* const window = [[m_menu menuRepresentation] window];
    return [NSEvent mouseEventWithType:NSLeftMouseUp
                              location:[window mouseLocationOutsideOfEventStream]
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[window windowNumber]
                               context:[window graphicsContext]
                           eventNumber:0
                            clickCount:1
                              pressure:0];
}

- (NSEvent*)eventForMenu:(NSEvent*)event
{
    if ([event type] == NSKeyDown) {
        NSString* const characters = [event charactersIgnoringModifiers];
        if ([characters length] == 1) {
            [self _takeKey:[characters characterAtIndex:0]];
        }
        return m_isEnding ? [self _release] : nil;
    }
    // A menu may overlook the first release.
    if (m_isEnding) {
        return [self _release];
    }
    if ([event type] == NSPeriodic && m_ignoresPointer) {
        m_ignoresPointer = NSEqualPoints([NSEvent mouseLocation], m_pointer);
        return m_ignoresPointer ? nil : event;
    }
    return event;
}

@end
