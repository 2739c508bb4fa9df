#pragma once

#import <AppKit/NSMatrix.h>

/// A row or column of radio buttons, one of them chosen. [main]
///
/// A click that is let go over the cell it began on chooses that cell and sends the action, also
/// when the cell was chosen already. With the keyboard on the matrix, the arrow keys choose the
/// next enabled cell in their direction, without wrapping, and send the action.
@interface XeRadioMatrix : NSMatrix
@end
