// View factories of a bundle that the loader's tests open: one good one, and one for each fault.

#import <AppKit/AppKit.h>
#import <AudioUnit/AUCocoaUIView.h>

@interface HostTestViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation HostTestViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSString*)description
{
    return @"Test View";
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    if (unit == nullptr || NSEqualSizes(preferredSize, NSZeroSize)) {
        return nil;
    }
    return [[[NSView alloc] initWithFrame:NSMakeRect(7, 8, 320, 200)] autorelease];
}

@end

@interface HostTestNilView : HostTestViewFactory
@end

@implementation HostTestNilView

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    return nil;
}

@end

@interface HostTestNoView : HostTestViewFactory
@end

@implementation HostTestNoView

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    return (NSView*)@"a string is no view";
}

@end

@interface HostTestRaises : HostTestViewFactory
@end

@implementation HostTestRaises

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    [NSException raise:NSInternalInconsistencyException format:@"no window today"];
    return nil;
}

@end

@interface HostTestNewerInterface : HostTestViewFactory
@end

@implementation HostTestNewerInterface

- (unsigned)interfaceVersion
{
    return 1;
}

@end

@interface HostTestNilFactory : HostTestViewFactory
@end

@implementation HostTestNilFactory

- (id)init
{
    [self release];
    return nil;
}

@end

// Has the methods but does not say that it follows the protocol.
@interface HostTestNoProtocol : NSObject
@end

@implementation HostTestNoProtocol

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize
{
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease];
}

@end

// Says that it follows the protocol but lacks a method.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wprotocol"
@interface HostTestNoMethod : NSObject <AUCocoaUIBase>
@end

@implementation HostTestNoMethod

- (unsigned)interfaceVersion
{
    return 0;
}

@end
#pragma clang diagnostic pop
