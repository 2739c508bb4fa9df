// An editor of the name tarvel-host opens, whose view raises when it is clicked.

#import <AppKit/AppKit.h>
#import <AudioUnit/AUCocoaUIView.h>

@interface AngryView : NSView
@end

@implementation AngryView

- (void)mouseDown:(NSEvent*)event
{
    [NSException raise:@"TestException" format:@"do not touch"];
}

@end

@interface TarvelCocoaViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation TarvelCocoaViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    return [[[AngryView alloc] initWithFrame:NSMakeRect(0, 0, 640, 200)] autorelease];
}

@end
