#pragma once

#import <AppKit/NSTextField.h>

/// Text that cannot be edited or selected, in the face's font. Its colour is what the program or
/// the interface description gives it; labels made in code start in the palette's text colour.
/// [main]
@interface XeLabel : NSTextField
@end
