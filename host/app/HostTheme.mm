#import "HostTheme.h"

#import "HostLook.h"

using namespace host;

namespace {

struct ColorRow {
    NSString* name;
    NSColor* (*color)();
};

// clang-format off
const ColorRow kColors[] = {
    { @"alternateRowBackgroundColor",        look::panel },
    { @"alternateSelectedControlColor",      look::accent },
    { @"alternateSelectedControlTextColor",  look::accentText },
    { @"controlBackgroundColor",             look::panel },
    { @"controlColor",                       look::panel },
    { @"controlDarkShadowColor",             look::well },
    { @"controlHighlightColor",              look::line },
    { @"controlLightHighlightColor",         look::line },
    { @"controlShadowColor",                 look::well },
    { @"controlTextColor",                   look::text },
    { @"disabledControlTextColor",           look::faintText },
    { @"gridColor",                          look::line },
    { @"headerColor",                        look::panel },
    { @"headerTextColor",                    look::text },
    { @"highlightColor",                     look::line },
    { @"keyboardFocusIndicatorColor",        look::accent },
    { @"knobColor",                          look::line },
    { @"labelColor",                         look::text },
    { @"rowBackgroundColor",                 look::well },
    { @"scrollBarColor",                     look::well },
    { @"secondaryLabelColor",                look::faintText },
    { @"secondarySelectedControlColor",      look::line },
    { @"selectedControlColor",               look::accent },
    { @"selectedControlTextColor",           look::accentText },
    { @"selectedKnobColor",                  look::accent },
    { @"selectedMenuItemColor",              look::accent },
    { @"selectedMenuItemTextColor",          look::accentText },
    { @"selectedTextBackgroundColor",        look::accent },
    { @"selectedTextColor",                  look::accentText },
    { @"shadowColor",                        look::well },
    { @"textBackgroundColor",                look::well },
    { @"textColor",                          look::text },
    { @"toolTipColor",                       look::panel },
    { @"toolTipTextColor",                   look::text },
    { @"windowBackgroundColor",              look::background },
    { @"windowFrameColor",                   look::line },
    { @"windowFrameTextColor",               look::text },
};
// clang-format on

NSString* const kThemeName = @"tarvel-host";
constexpr CGFloat kMenuItemHeight = 24;
constexpr CGFloat kTickSize = 10;

} // namespace

@implementation HostTheme

+ (void)install
{
    GSTheme* const theme = [[self alloc] initWithBundle:[NSBundle mainBundle]];
    [theme setName:kThemeName];
    [GSTheme setTheme:theme];
    [theme release];
    [self _nameInDefaults];
    [self _installTick];
}

+ (void)_drawTick:(NSImageRep*)image
{
    const CGFloat size = kTickSize;
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(0.1 * size, 0.5 * size)];
    [path lineToPoint:NSMakePoint(0.4 * size, 0.2 * size)];
    [path lineToPoint:NSMakePoint(0.9 * size, 0.85 * size)];
    [path setLineWidth:0.15 * size];
    [look::text() set];
    [path stroke];
}

// The platform's tick is black, which nobody sees on the ground of these menus.
+ (void)_installTick
{
    NSCustomImageRep* const drawing =
        [[[NSCustomImageRep alloc] initWithDrawSelector:@selector(_drawTick:)
                                               delegate:self] autorelease];
    [drawing setSize:NSMakeSize(kTickSize, kTickSize)];
    NSImage* const tick =
        [[[NSImage alloc] initWithSize:NSMakeSize(kTickSize, kTickSize)] autorelease];
    [tick setCacheMode:NSImageCacheNever]; // sharp at every scale
    [tick addRepresentation:drawing];
    NSImage* const black = [NSImage imageNamed:@"NSMenuCheckmark"];
    NSString* const name = [[[black name] copy] autorelease]; // the platform has another one for it
    [black setName:nil];
    [tick setName:name];
}

// At every change of the user defaults the framework installs the theme they name, unless that is
// the present one. Words of a command line win over what the user has set for all programs.
+ (void)_nameInDefaults
{
    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    NSMutableDictionary* const arguments =
        [[[defaults volatileDomainForName:NSArgumentDomain] mutableCopy] autorelease];
    [arguments setObject:kThemeName forKey:@"GSTheme"];
    [defaults removeVolatileDomainForName:NSArgumentDomain];
    [defaults setVolatileDomain:arguments forName:NSArgumentDomain];
}

// A click opens a pop-up menu, which stays until the next one; else a release would close it at
// once.
- (BOOL)doesProcessEventsForPopUpMenu
{
    return YES;
}

- (NSColorList*)colors
{
    NSColorList* const colors = [[[NSColorList alloc] initWithName:@"System"] autorelease];
    for (const ColorRow& row : kColors) {
        [colors setColor:row.color() forKey:row.name];
    }
    return colors;
}

- (NSColor*)menuBackgroundColor
{
    return look::panel();
}

- (NSColor*)menuItemBackgroundColor
{
    return look::panel();
}

- (NSColor*)menuBarBackgroundColor
{
    return look::panel();
}

- (NSColor*)menuBarBorderColor
{
    return look::line();
}

- (NSColor*)menuBorderColor
{
    return look::line();
}

- (NSColor*)menuSeparatorColor
{
    return look::line();
}

- (BOOL)menuShouldShowIcon
{
    return NO;
}

- (CGFloat)menuBarHeight
{
    return kMenuItemHeight;
}

- (CGFloat)menuItemHeight
{
    return kMenuItemHeight;
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell*)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView*)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)isHorizontal
{
    const BOOL selected = state == GSThemeSelectedState || state == GSThemeHighlightedState;
    [(selected ? look::accent() : look::panel()) set];
    NSRectFill(frame);
}

@end
