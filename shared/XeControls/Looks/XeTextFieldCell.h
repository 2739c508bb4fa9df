#pragma once

#import "XeHover.h"

#import <AppKit/NSTextFieldCell.h>

@class NSColor, NSDictionary, NSTextView;

/// Text: a sunken field when it is bezeled or bordered, else plain text. The text keeps the cell's
/// own colour while enabled, and its digits are all equally wide.
///
/// The field editor gets the face's caret and selection while it edits this cell and its own back
/// afterwards, because one editor serves all fields of the host's window. [main]
@interface XeTextFieldCell : NSTextFieldCell {
    xenon::Hover m_hover;
    NSTextView* m_editor;          // not retained; nil while nothing is edited
    NSColor* m_editorCaret;        // retained, what the editor had before
    NSDictionary* m_editorMarking; // retained, likewise
}
@end
