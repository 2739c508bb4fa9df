#import "LengthTimeField.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <iterator>
#include <limits>

namespace {

// The default menu; rows without a title are separators.
// clang-format off
struct MenuRow {
    _zqposfmt_format format;
    const char*      title;
};
constexpr _zqposfmt_format kSeparator = zqposfmt_samples;
constexpr MenuRow kMenu[] = {
    { zqposfmt_samples,          "Samples" },
    { kSeparator,                nullptr },
    { zqposfmt_time_ms,          "Time (h:min:s.ms)" },
    { zqposfmt_seconds,          "Seconds" },
    { zqposfmt_time_frames,      "Time and Frames (75 fps)" },
    { kSeparator,                nullptr },
    { zqposfmt_measures,         "Measures and Beats" },
    { kSeparator,                nullptr },
    { zqposfmt_smpte_23_976,     "SMPTE 23.976 fps" },
    { zqposfmt_smpte_24,         "SMPTE 24 fps (Film)" },
    { zqposfmt_smpte_25,         "SMPTE 25 fps (EBU)" },
    { zqposfmt_smpte_29_97,      "SMPTE 29.97 fps Non-Drop" },
    { zqposfmt_smpte_29_97_drop, "SMPTE 29.97 fps Drop" },
    { zqposfmt_smpte_30,         "SMPTE 30 fps" },
    { kSeparator,                nullptr },
    { zqposfmt_feet_frames_35mm, "Feet and Frames (35 mm)" },
    { zqposfmt_feet_frames_16mm, "Feet and Frames (16 mm)" },
    { kSeparator,                nullptr },
    { zqposfmt_frames_75,        "CD Frames (75 fps)" },
};
// clang-format on

constexpr unichar kF10 = NSF10FunctionKey;

// Wide characters are 32-bit code points in the byte order of the machine, which is little-endian
// on every system the product runs on.
_XeString<wchar_t> _wide(NSString* text)
{
    static_assert(sizeof(wchar_t) == 4);
    NSData* const data = [text dataUsingEncoding:NSUTF32LittleEndianStringEncoding];
    return std::wstring(static_cast<const wchar_t*>([data bytes]), [data length] / sizeof(wchar_t));
}

NSString* _platformString(const std::wstring& text)
{
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size() * sizeof(wchar_t)
                                   encoding:NSUTF32LittleEndianStringEncoding] autorelease];
}

// A limit in whole samples; a double holds more than an integer does.
std::int64_t _wholeLimit(double samples)
{
    constexpr double kLimit = 0x1p63;
    if (samples >= kLimit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return samples > -kLimit ? static_cast<std::int64_t>(samples)
                             : std::numeric_limits<std::int64_t>::min();
}

// The key that opens context menus, and what keyboards without one use.
bool _isMenuKey(NSEvent* event)
{
    NSString* const characters = [event charactersIgnoringModifiers];
    if ([event type] != NSKeyDown || [characters length] != 1) {
        return false;
    }
    const unichar key = [characters characterAtIndex:0];
    return key == NSMenuFunctionKey || (key == kF10 && ([event modifierFlags] & NSShiftKeyMask));
}

} // namespace

@implementation LengthTimeField

- (void)setUpField
{
    m_minSamples = std::numeric_limits<std::int64_t>::min();
    m_maxSamples = std::numeric_limits<std::int64_t>::max();
    [super setUpField];
}

- (void)setFormat:(std::uint32_t)format
{
    m_text.setType(static_cast<_zqposfmt_format>(format));
    [self showValueUnlessTyping];
}

- (std::uint32_t)format
{
    return m_text.type();
}

- (void)setFrameAndSampleRate:(double)rate
{
    m_text.setSampleRate(rate);
    m_text.setFormatSampleRate(rate);
    [self showValueUnlessTyping];
}

- (void)setSampleRate:(double)rate
{
    m_text.setFormatSampleRate(rate);
}

- (void)setFrameRate:(double)rate
{
    m_text.setFrameRate(rate);
    [self showValueUnlessTyping];
}

- (void)setTempo:(double)tempo
{
    m_text.setTempo(tempo);
    [self showValueUnlessTyping];
}

- (void)setTimeSignature:(std::uint32_t)signature
{
    m_text.setTimeSignature(signature);
    [self showValueUnlessTyping];
}

- (void)setTicksPerBeat:(std::uint32_t)ticks
{
    m_text.setTicksPerBeat(ticks);
    [self showValueUnlessTyping];
}

- (void)setIsLength:(BOOL)flag
{
    m_text.setIsLength(flag);
    [self showValueUnlessTyping];
}

- (void)setMinValue:(double)samples
{
    m_minSamples = _wholeLimit(samples);
}

- (void)setMaxValue:(double)samples
{
    m_maxSamples = _wholeLimit(samples);
}

- (std::int64_t)getIncrement
{
    return m_text.increment();
}

// Values and text

- (NSNumber*)_boxed:(std::int64_t)samples
{
    return [NSNumber numberWithLongLong:std::max(m_minSamples, std::min(samples, m_maxSamples))];
}

- (NSString*)textForValue:(id)value
{
    return _platformString(m_text.render([value longLongValue]));
}

- (id)valueForText:(NSString*)text
{
    const std::optional<std::int64_t> samples = m_text.parse(_wide(text));
    return samples ? [self _boxed:*samples] : nil;
}

- (BOOL)stepEditedValue:(int)steps
{
    NSString* const shown = [self stringValue];
    id const base = [self isTyping] ? [self valueForText:shown] : m_value;
    if (base == nil) {
        NSBeep();
        return YES;
    }
    const NSRange selection = [[self currentEditor] selectedRange];
    const LengthText::Step step = m_text.step([base longLongValue], _wide(shown),
                                              selection.location, selection.length, steps);
    [self takeValue:[self _boxed:step.samples] selecting:NSMakeRange(step.start, step.length)];
    return YES;
}

// The context menu

- (NSMenu*)createDefaultMenuWithTarget:(id)target
{
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:@"Format"] autorelease];
    for (const MenuRow& row : kMenu) {
        if (row.title == nullptr) {
            [menu addItem:[NSMenuItem separatorItem]];
            continue;
        }
        NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@(row.title)
                                                             action:@selector(onFormatMenuAction:)
                                                      keyEquivalent:@""] autorelease];
        [item setTag:row.format];
        [item setTarget:target];
        [menu addItem:item];
    }
    return menu;
}

- (void)setDefaultMenu:(NSMenu*)menu
{
    [self setMenu:menu];
}

// The field editor lies over the field and has a menu of its own. The field takes the click that
// opens a menu before it gets there.
- (NSView*)hitTest:(NSPoint)point
{
    NSView* const view = [super hitTest:point];
    const BOOL opensMenu = [[NSApp currentEvent] type] == NSRightMouseDown && [self menu] != nil;
    return view != nil && opensMenu ? self : view;
}

// The same where the field editor asks its delegate for its menu.
- (NSMenu*)textView:(NSTextView*)editor
               menu:(NSMenu*)menu
           forEvent:(NSEvent*)event
            atIndex:(NSUInteger)index
{
    return [self menu] != nil ? [self menu] : menu;
}

- (NSEvent*)_clickBelowText:(NSEvent*)event
{
    return [NSEvent mouseEventWithType:NSRightMouseDown
                              location:[self convertPoint:NSMakePoint(8, 4) toView:nil]
                         modifierFlags:0
                             timestamp:[event timestamp]
                          windowNumber:[[self window] windowNumber]
                               context:[[self window] graphicsContext]
                           eventNumber:0
                            clickCount:1
                              pressure:1];
}

- (BOOL)performKeyEquivalent:(NSEvent*)event
{
    if ([self currentEditor] == nil || [self menu] == nil || !_isMenuKey(event)) {
        return [super performKeyEquivalent:event];
    }
    [NSMenu popUpContextMenu:[self menu] withEvent:[self _clickBelowText:event] forView:self];
    return YES;
}

@end
