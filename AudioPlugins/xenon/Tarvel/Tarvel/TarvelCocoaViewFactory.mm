#import "TarvelCocoaViewFactory.h"

#import "TarvelCocoaView.h"

#import <AppKit/AppKit.h>

@implementation TarvelCocoaViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSString*)description
{
    return @" Cocoa View";
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    (void)preferredSize;
    if (![NSBundle loadNibNamed:@"TarvelCocoaView" owner:self]) {
        NSLog(@"Unable to load nib for view.");
        return nil;
    }
    // Given to the pool first, so that a binding which is ended by an assertion leaks no view.
    TarvelCocoaView* const view = [uiFreshlyLoadedView autorelease];
    [view setAU:audioUnit];
    uiFreshlyLoadedView = nil;
    return view;
}

@end
