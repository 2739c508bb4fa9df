#import "XeTextFieldCell.h"

#import "XeDraw.h"

#import <AppKit/AppKit.h>

@implementation XeTextFieldCell

- (id)copyWithZone:(NSZone*)zone
{
    XeTextFieldCell* const copy = [super copyWithZone:zone];
    copy->m_editor = nil;
    copy->m_editorCaret = nil;
    copy->m_editorMarking = nil;
    return copy;
}

- (void)dealloc
{
    [m_editorCaret release];
    [m_editorMarking release];
    [super dealloc];
}

- (BOOL)_isField
{
    return [self isBezeled] || [self isBordered];
}

- (NSColor*)_shownColor
{
    return [self isEnabled] ? [self textColor] : [XePalette color:XeTone::TextDisabled];
}

// Text and field editor lie in the same place, so that nothing jumps when editing begins.
- (NSRect)drawingRectForBounds:(NSRect)bounds
{
    const double inset = [self _isField] ? xenon::metrics::kTextInset : 0;
    return xenon::draw::lineRect(NSInsetRect(bounds, inset, 0), [self font]);
}

- (NSRect)titleRectForBounds:(NSRect)bounds
{
    return [self drawingRectForBounds:bounds];
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view
{
    if ([self _isField]) {
        xenon::draw::State state = xenon::draw::stateOf(self, view);
        state.isHovered = m_hover.isOver(frame, view);
        xenon::draw::sunkenBox(frame, state);
    }
    [self drawInteriorWithFrame:frame inView:view];
}

- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view
{
    if (m_editor != nil && [m_editor delegate] == static_cast<id>(view)) {
        return;
    }
    NSDictionary* const attributes =
        xenon::draw::textAttributes([self _shownColor], [self font], [self alignment]);
    xenon::draw::text([self stringValue], [self drawingRectForBounds:frame], attributes);
}

- (NSText*)setUpFieldEditorAttributes:(NSText*)editor
{
    NSText* const prepared = [super setUpFieldEditorAttributes:editor];
    [prepared setBackgroundColor:[XePalette color:XeTone::Field]];
    [prepared setDrawsBackground:YES];
    [prepared setTextColor:[self _shownColor]];
    if (m_editor == nil && [prepared isKindOfClass:[NSTextView class]]) {
        m_editor = static_cast<NSTextView*>(prepared);
        m_editorCaret = [[m_editor insertionPointColor] retain];
        m_editorMarking = [[m_editor selectedTextAttributes] retain];
        [m_editor setInsertionPointColor:[XePalette color:XeTone::Accent]];
        [m_editor setSelectedTextAttributes:@{
            NSBackgroundColorAttributeName : [XePalette color:XeTone::Selection],
            NSForegroundColorAttributeName : [XePalette color:XeTone::Text],
        }];
    }
    return prepared;
}

- (void)endEditing:(NSText*)editor
{
    [m_editor setInsertionPointColor:m_editorCaret];
    [m_editor setSelectedTextAttributes:m_editorMarking];
    [m_editorCaret release];
    [m_editorMarking release];
    m_editorCaret = nil;
    m_editorMarking = nil;
    m_editor = nil;
    [super endEditing:editor];
}

@end
