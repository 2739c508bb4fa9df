#pragma once

#import <AppKit/NSTextField.h>

/// A field that shows and edits one value as text: what length and threshold fields share. [main]
///
/// Typing. Focus selects the whole text. Return, Tab and leaving the field (also by being taken out
/// of the window) take what was typed: the action is sent once, after the value was taken, and only
/// when the text was changed. A text that makes no value is refused with a beep and the old text
/// comes back. Escape brings the old text back as well. Return keeps the field selected.
///
/// A value that the program sets while the user is typing is kept and not shown, so that nothing
/// typed is lost; if the typing ends without a value of its own, the last value set shows. A field
/// that has the keyboard but whose text nobody has touched shows new values at once.
///
/// The value lives in the field and not in the cell: every getter answers it, also while a text is
/// being typed. A subclass says how values become text and text becomes values.
@interface XeValueField : NSTextField {
    id m_value;            // retained, nil until the first
    NSString* m_shownText; // retained, what the program showed last
    BOOL m_isEnding;       // inside the platform's own end of editing
    BOOL m_wasTaken;       // the typed text became the value
}

/// The text of `value`. Override. `value` is never nil.
- (NSString*)textForValue:(id)value;

/// The value of a typed text within the field's limits, nil for a text that makes none. Override.
- (id)valueForText:(NSString*)text;

/// Steps the value while the field is edited, `steps` up (or down, negative). NO, as here, when the
/// field has no steps. For an override that steps: takeValue:selecting: shows and sends the result.
- (BOOL)stepEditedValue:(int)steps;

/// True while the text in the field editor is not what the program showed last.
- (BOOL)isTyping;

/// Makes `value` the value as if the user had typed it: shows it, selects `range` of its text if
/// the field is edited, and sends the action.
- (void)takeValue:(id)value selecting:(NSRange)range;

/// Shows the value's text again, over anything typed; for changes of how values become text.
- (void)showValue;

/// The same unless the user is typing.
- (void)showValueUnlessTyping;

/// What both initialisers do. Overrides call it first.
- (void)setUpField;

@end
