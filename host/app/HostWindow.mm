#import "HostWindow.h"

#import "HostLook.h"
#import "RecordingText.h"
#import "host/effect/AudioFile.h"

#include <algorithm>
#include <utility>

using namespace host;

namespace {

constexpr CGFloat kMargin = 12;
constexpr CGFloat kHeaderHeight = 34;
constexpr CGFloat kLabelHeight = 20;
constexpr CGFloat kLabelDrop = 29; // from the top of the window to the bottom of a label
constexpr CGFloat kWaveformHeight = 150;
constexpr CGFloat kSmallestWaveform = 60;
const NSSize kPlaceholderSize = {640, 220};

NSString* fromUtf8(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

/// A line of text that cannot be edited.
NSTextField* makeLabel(NSRect frame, NSFont* font, NSColor* color)
{
    NSTextField* const label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label setFont:font];
    [label setTextColor:color];
    [[label cell] setLineBreakMode:NSLineBreakByTruncatingTail];
    return label;
}

} // namespace

/// A window that may be larger than its screen: a user's window manager decides better, and a
/// snapshot at twice the scale must be whole.
@interface UnconstrainedWindow : NSWindow
@end

@implementation UnconstrainedWindow

- (NSRect)constrainFrameRect:(NSRect)frame toScreen:(NSScreen*)screen
{
    return frame;
}

@end

/// Background of the window.
@interface HostContentView : NSView
@end

@implementation HostContentView

- (BOOL)isOpaque
{
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect
{
    [look::background() set];
    NSRectFill(dirtyRect);
}

@end

@implementation HostWindow

- (id)initWithBundle:(const std::string&)bundle factory:(const std::string&)factory
{
    self = [super init];
    if (self != nil) {
        m_effect = std::make_unique<TarvelEffect>();
        m_effect->setViewBundle(bundle, {factory});
        const HostCallbackInfo callbacks = m_music.callbacks();
        AudioUnitSetProperty(m_effect.get(), kAudioUnitProperty_HostCallbacks,
                             kAudioUnitScope_Global, 0, &callbacks, sizeof callbacks);
        [self _makeWindow];
        [self _openEditor];
    }
    return self;
}

- (void)dealloc
{
    [self close];
    [m_pane setDelegate:nil];
    [m_window release];
    [super dealloc];
}

- (NSWindow*)window
{
    return m_window;
}

- (EditorPane*)editorPane
{
    return m_pane;
}

- (TarvelEffect*)effect
{
    return m_effect.get();
}

- (void)close
{
    [m_pane closeEditor];
    m_effect.reset();
}

// ---- recording

- (void)showRecording:(std::shared_ptr<const Recording>)recording
{
    [m_title setStringValue:fromUtf8(displayName(*recording))];
    [m_details setStringValue:fromUtf8(describeRecording(*recording))];
    [m_window setTitle:[NSString stringWithFormat:@"%@ — Tarvel", [m_title stringValue]]];
    [m_waveform setEngine:std::make_shared<const TrimEngine>(recording)];
    m_effect->setRecording(std::move(recording));
    [self _openEditor]; // an editor reads the length of the material only when it opens
}

- (std::string)openFile:(const std::string&)path
{
    const ReadResult result = readAudioFile(path);
    if (result.recording != nullptr) {
        [self showRecording:result.recording];
    }
    return result.problem + result.warning; // at most one of them
}

- (void)openDocument:(id)sender
{
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    if ([panel runModalForTypes:nil] != NSOKButton) {
        return;
    }
    const std::string message = [self openFile:[[panel filename] fileSystemRepresentation]];
    if (!message.empty()) {
        NSRunAlertPanel(@"Open", @"%@", @"OK", nil, nil, fromUtf8(message));
    }
}

// ---- layout: header and waveform take what the editor below leaves

- (void)_makeWindow
{
    const NSRect content = NSMakeRect(0, 0, kPlaceholderSize.width, [self _heightAbovePane] + 100);
    m_window = [[UnconstrainedWindow alloc]
        initWithContentRect:content
                  styleMask:NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask |
                            NSResizableWindowMask
                    backing:NSBackingStoreBuffered
                      defer:NO];
    [m_window setReleasedWhenClosed:NO];
    [m_window setTitle:@"Tarvel"];
    [m_window setContentView:[[[HostContentView alloc] initWithFrame:content] autorelease]];
    [self _addViews];
}

- (CGFloat)_heightAbovePane
{
    return kHeaderHeight + kWaveformHeight + 2 * kMargin;
}

- (void)_addViews
{
    NSView* const content = [m_window contentView];
    const NSRect bounds = [content bounds];
    const CGFloat width = NSWidth(bounds) - 2 * kMargin;
    const CGFloat top = NSMaxY(bounds);

    m_title = makeLabel(NSMakeRect(kMargin, top - kLabelDrop, width / 2, kLabelHeight),
                        [NSFont boldSystemFontOfSize:13], look::text());
    [m_title setStringValue:@"No recording"];
    [m_title setAutoresizingMask:NSViewMinYMargin | NSViewWidthSizable];
    [content addSubview:m_title];

    m_details =
        makeLabel(NSMakeRect(kMargin + width / 2, top - kLabelDrop, width / 2, kLabelHeight),
                  [NSFont systemFontOfSize:12], look::faintText());
    [m_details setAlignment:NSRightTextAlignment];
    [m_details setAutoresizingMask:NSViewMinYMargin | NSViewMinXMargin];
    [content addSubview:m_details];

    m_waveform = [[[WaveformView alloc]
        initWithFrame:NSMakeRect(kMargin, top - kHeaderHeight - kWaveformHeight, width,
                                 kWaveformHeight)] autorelease];
    [m_waveform setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [content addSubview:m_waveform];

    m_pane = [[[EditorPane alloc] initWithFrame:NSMakeRect(0, 0, kPlaceholderSize.width,
                                                           kPlaceholderSize.height)] autorelease];
    [m_pane setAutoresizingMask:NSViewMinXMargin | NSViewMaxXMargin | NSViewMaxYMargin];
    [m_pane setDelegate:self];
    [content addSubview:m_pane];
}

- (void)_openEditor
{
    [m_pane openEditorForUnit:m_effect.get()];
    [self editorPaneDidResize:m_pane];
}

- (void)editorPaneDidResize:(EditorPane*)pane
{
    const NSSize size = [pane frame].size;
    const CGFloat above = kHeaderHeight + NSHeight([m_waveform frame]) + kMargin;
    const CGFloat narrowest = std::max(size.width, kPlaceholderSize.width);
    // A window that the user has made wider stays so.
    const CGFloat width = std::max(narrowest, NSWidth([[m_window contentView] frame]));
    [m_window setContentMinSize:NSMakeSize(narrowest, size.height + kHeaderHeight +
                                                          kSmallestWaveform + kMargin)];
    [m_window setContentSize:NSMakeSize(width, size.height + above)];
    [self _placeAbovePane:size];
}

- (void)_placeAbovePane:(NSSize)paneSize
{
    const NSRect bounds = [[m_window contentView] bounds];
    const CGFloat bottom = paneSize.height + kMargin;
    [m_pane setFrameOrigin:NSMakePoint(std::floor((NSWidth(bounds) - paneSize.width) / 2), 0)];
    [m_waveform setFrame:NSMakeRect(kMargin, bottom, NSWidth(bounds) - 2 * kMargin,
                                    NSMaxY(bounds) - kHeaderHeight - bottom)];
    [[m_window contentView] setNeedsDisplay:YES];
}

@end
