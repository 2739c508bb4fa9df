#import "XeValueField.h"

#import "XeDraw.h"
#import "XeTextFieldCell.h"

#import <AppKit/AppKit.h>

namespace {

NSRange _wholeOf(NSString* text) { return NSMakeRange(0, [text length]); }

// What is left of a selection in a text that may have become shorter.
NSRange _clampedRange(NSRange range, NSUInteger length)
{
    const NSUInteger start = MIN(range.location, length);
    return NSMakeRange(start, MIN(range.length, length - start));
}

} // namespace

@implementation XeValueField

+ (Class)cellClass
{
    return [XeTextFieldCell class];
}

- (void)setUpField
{
    m_shownText = [@"" retain];
    [[self cell] setStringValue:@""];
    [self setEditable:YES];
    [self setBezeled:YES];
    [self setDrawsBackground:NO];
    [self setFont:[XePalette font:XeFontRole::Number]];
    [self setTextColor:[XePalette color:XeTone::Text]];
    [self setAlignment:NSRightTextAlignment];
    [[self cell] setScrollable:YES];
    [[self cell] setSendsActionOnEndEditing:NO];
}

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self != nil) {
        [self setUpField];
    }
    return self;
}

- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self != nil) {
        [self setUpField];
    }
    return self;
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [m_value release];
    [m_shownText release];
    [super dealloc];
}

- (NSString*)textForValue:(id)value
{
    return [value description];
}

- (id)valueForText:(NSString*)text
{
    return text;
}

- (BOOL)stepEditedValue:(int)steps
{
    return NO;
}

- (BOOL)isTyping
{
    NSText* const editor = [self currentEditor];
    return editor != nil && ![[editor string] isEqualToString:m_shownText];
}

// What is shown

- (NSTextStorage*)_editedText
{
    NSText* const editor = [self currentEditor];
    return [editor isKindOfClass:[NSTextView class]]
               ? [static_cast<NSTextView*>(editor) textStorage]
               : nil;
}

- (void)_spaceEditedText
{
    NSTextStorage* const text = [self _editedText];
    [text removeAttribute:NSKernAttributeName range:NSMakeRange(0, [text length])];
    xenon::draw::space(text, [self font]);
}

- (void)_showText:(NSString*)text
{
    if ([self currentEditor] == nil && [text isEqualToString:m_shownText]) {
        return; // automation often changes less than is shown
    }
    [m_shownText autorelease];
    m_shownText = [text copy];
    [[self cell] setStringValue:text];
    [self setNeedsDisplay:YES];

    NSText* const editor = [self currentEditor];
    if (editor != nil && ![[editor string] isEqualToString:text]) {
        const NSRange selection = [editor selectedRange];
        const BOOL wasWhole = NSEqualRanges(selection, _wholeOf([editor string]));
        [editor setString:text];
        [editor
            setSelectedRange:wasWhole ? _wholeOf(text) : _clampedRange(selection, [text length])];
        [self _spaceEditedText];
    }
}

- (void)showValue
{
    [self _showText:m_value != nil ? [self textForValue:m_value] : @""];
}

- (void)showValueUnlessTyping
{
    if (![self isTyping]) {
        [self showValue];
    }
}

- (void)_setValue:(id)value
{
    [m_value autorelease];
    m_value = [value retain];
}

// The value, whatever the cell or the field editor hold

- (id)objectValue
{
    return m_value;
}

- (void)setObjectValue:(id)value
{
    [self _setValue:value];
    [self showValueUnlessTyping];
}

- (NSString*)stringValue
{
    NSText* const editor = [self currentEditor];
    return editor != nil ? [[[editor string] copy] autorelease] : m_shownText;
}

// As if typed, without the action: a text that makes no value changes nothing.
- (void)setStringValue:(NSString*)text
{
    id const value = [self valueForText:text];
    if (value != nil) {
        [self setObjectValue:value];
    }
}

- (double)doubleValue
{
    return [[self objectValue] doubleValue];
}

- (void)setDoubleValue:(double)value
{
    [self setObjectValue:@(value)];
}

- (float)floatValue
{
    return static_cast<float>([self doubleValue]);
}

- (void)setFloatValue:(float)value
{
    [self setDoubleValue:static_cast<double>(value)];
}

- (NSInteger)integerValue
{
    return [[self objectValue] integerValue];
}

- (void)setIntegerValue:(NSInteger)value
{
    [self setObjectValue:[NSNumber numberWithInteger:value]];
}

- (int)intValue
{
    return [[self objectValue] intValue];
}

- (void)setIntValue:(int)value
{
    [self setIntegerValue:value];
}

// Editing

// The platform reads the typed text into the cell here. The field does that itself, and only once.
- (void)validateEditing
{
}

- (void)takeValue:(id)value selecting:(NSRange)range
{
    [self _setValue:value];
    [self showValue];
    NSText* const editor = [self currentEditor];
    [editor setSelectedRange:_clampedRange(range, [m_shownText length])];
    [self sendAction:[self action] to:[self target]];
}

- (void)_takeTypedText
{
    if (![self isTyping]) {
        return;
    }
    id const value = [self valueForText:[[self currentEditor] string]];
    if (value != nil) {
        [self _setValue:value];
        m_wasTaken = YES;
    } else {
        NSBeep();
    }
    [self showValue];
}

- (BOOL)sendAction:(SEL)action to:(id)target
{
    return m_isEnding ? YES : [super sendAction:action to:target];
}

- (BOOL)textShouldEndEditing:(NSText*)editor
{
    [self _takeTypedText];
    return [super textShouldEndEditing:editor];
}

// The platform sends the action for Return whether or not something was typed. Shown values are
// rounded, so an untouched text must not be written back.
- (void)textDidEndEditing:(NSNotification*)notification
{
    m_isEnding = YES;
    [super textDidEndEditing:notification];
    m_isEnding = NO;
    if (m_wasTaken) {
        m_wasTaken = NO;
        [self sendAction:[self action] to:[self target]];
    }
}

- (void)textDidChange:(NSNotification*)notification
{
    [super textDidChange:notification];
    [self _spaceEditedText];
}

- (BOOL)abortEditing
{
    const BOOL wasEditing = [super abortEditing];
    [self showValue];
    return wasEditing;
}

// A field that is switched off has no use for what was being typed.
- (void)setEnabled:(BOOL)flag
{
    if (!flag && [self currentEditor] != nil) {
        [self abortEditing];
    }
    [super setEnabled:flag];
    [self setNeedsDisplay:YES];
}

- (void)selectText:(id)sender
{
    [super selectText:sender];
    [self _spaceEditedText];
    [self setNeedsDisplay:YES];
}

// Clicks into the text of an edited field go to the field editor. Those that come here give the
// field the keyboard, or the window has done so already, with everything selected.
- (void)mouseDown:(NSEvent*)event
{
    if (![self isEnabled]) {
        [super mouseDown:event];
        return;
    }
    if ([self currentEditor] == nil) {
        [[self window] makeFirstResponder:self];
    }
    [[self currentEditor] setSelectedRange:_wholeOf([self stringValue])];
}

- (void)_dropTypedText
{
    [self showValue];
    [self selectText:self];
}

// Commands of the field editor's key bindings. Escape asks for completions on one platform and
// cancels on the other.
- (BOOL)textView:(NSTextView*)editor doCommandBySelector:(SEL)command
{
    if (sel_isEqual(command, @selector(moveUp:))) {
        return [self stepEditedValue:1];
    }
    if (sel_isEqual(command, @selector(moveDown:))) {
        return [self stepEditedValue:-1];
    }
    if (sel_isEqual(command, @selector(complete:)) ||
        sel_isEqual(command, @selector(cancelOperation:))) {
        [self _dropTypedText];
        return YES;
    }
    return NO;
}

// Turning the wheel over the field that is being edited steps it; over any other field it scrolls
// what the host scrolls.
- (void)scrollWheel:(NSEvent*)event
{
    const double turn = [event deltaY];
    if (turn == 0 || [self currentEditor] == nil || ![self stepEditedValue:turn > 0 ? 1 : -1]) {
        [super scrollWheel:event];
    }
}

@end
