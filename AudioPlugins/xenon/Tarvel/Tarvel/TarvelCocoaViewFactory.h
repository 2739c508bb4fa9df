#pragma once

#import <AudioUnit/AUCocoaUIView.h>
#import <Foundation/NSObject.h>

@class TarvelCocoaView;

/// Makes the effect's editors for a host. A host finds the class by its name and makes one with
/// plain init; it may release it as soon as it has its view. [main]
@interface TarvelCocoaViewFactory : NSObject <AUCocoaUIBase> {
    IBOutlet TarvelCocoaView* uiFreshlyLoadedView; // filled while the description loads, else nil
}

/// 0, the only version of the protocol.
- (unsigned)interfaceVersion;

/// The name of the view in a host's list: " Cocoa View", with a leading blank because hosts put
/// the effect's name before it.
- (NSString*)description;

/// Makes a new editor and binds it to `audioUnit`.
///
/// @param preferredSize  Ignored: the editor has one size.
/// @return  A TarvelCocoaView, autoreleased and unknown to the factory; nil, with one line in the
///          system log, when the interface description cannot be loaded.
- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize;

@end
