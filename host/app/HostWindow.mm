#import "HostWindow.h"

#import "ExportPanel.h"
#import "HostLook.h"
#import "MusicPanel.h"
#import "RecordingText.h"
#import "SettingsFile.h"
#import "host/effect/AudioFile.h"
#import "host/effect/ParameterTable.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <utility>

using namespace host;

namespace {

constexpr CGFloat kMargin = 12;
constexpr CGFloat kHeaderHeight = 54;
constexpr CGFloat kLabelHeight = 20;
constexpr CGFloat kTitleDrop = 27;   // from the top of the window to the bottom of the label
constexpr CGFloat kDetailsDrop = 46; // likewise
constexpr CGFloat kButtonDrop = 39;
constexpr CGFloat kButtonGap = 8;
constexpr CGFloat kStatusHeight = 28;
constexpr CGFloat kWaveformHeight = 190;
constexpr CGFloat kSmallestWaveform = 80;
const NSSize kPlaceholderSize = {640, 220};
constexpr NSTimeInterval kSaveSeconds = 0.5; // after the last change

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

const char* parameterName(AudioUnitParameterID parameter) { return findParameter(parameter)->name; }

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
        m_listener = std::make_unique<EffectListener>(
            m_effect.get(), [self](const AudioUnitEvent& event, AudioUnitParameterValue value) {
                [self _hear:event value:value];
            });
        [self _makeWindow];
        [self _openEditor];
        [self _startHistory];
    }
    return self;
}

- (void)dealloc
{
    [self close];
    [m_pane setDelegate:nil];
    [m_waveform setDelegate:nil];
    [(HostContentView*)[m_window contentView] setDelegate:nil];
    [m_window release];
    [m_savedSettings release];
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

- (WaveformView*)waveform
{
    return m_waveform;
}

- (const TrimPlan&)plan
{
    return m_plan;
}

- (NSString*)positionText
{
    return [m_position stringValue];
}

- (NSString*)resultText
{
    return [m_result stringValue];
}

- (void)setRecentFiles:(RecentFiles*)files
{
    m_recentFiles = files;
}

- (void)close
{
    if (m_effect == nullptr) {
        return;
    }
    [m_window makeFirstResponder:nil]; // what is being typed counts
    [self saveSettings];
    m_listener.reset();
    [m_pane closeEditor];
    m_effect.reset();
}

// ---- recording

- (std::string)showRecording:(std::shared_ptr<const Recording>)recording
{
    [m_window makeFirstResponder:nil];
    [self saveSettings];
    [m_title setStringValue:fromUtf8(displayName(*recording))];
    [m_details setStringValue:fromUtf8(describeRecording(*recording))];
    [m_window setTitle:[NSString stringWithFormat:@"%@ — Tarvel", [m_title stringValue]]];
    m_engine = std::make_shared<const TrimEngine>(recording);
    [m_waveform setEngine:m_engine];
    m_effect->setRecording(recording);
    std::string problem = [self _restoreSettingsOf:*recording];
    [self _openEditor]; // an editor reads the length of the material only when it opens
    [self _startHistory];
    [self _say:fromUtf8(problem)];
    [self _remember:recording->path];
    return problem;
}

- (void)_remember:(const std::string&)path
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (m_recentFiles != nullptr && !path.empty() && !error) {
        m_recentFiles->add(absolute.lexically_normal().string());
    }
}

- (std::string)openFile:(const std::string&)path
{
    const ReadResult result = readAudioFile(path);
    if (result.recording == nullptr) {
        return result.problem;
    }
    const std::string problem = [self showRecording:result.recording];
    return result.warning.empty() ? problem : result.warning;
}

- (void)openFileForUser:(const std::string&)path
{
    const std::string message = [self openFile:path];
    if (!message.empty()) {
        NSRunAlertPanel(@"Open", @"%@", @"OK", nil, nil, fromUtf8(message));
        [self _takeKeyboardBack];
    }
}

- (void)openDocument:(id)sender
{
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    if ([panel runModalForTypes:nil] == NSOKButton) {
        [self openFileForUser:[[panel filename] fileSystemRepresentation]];
    }
    [self _takeKeyboardBack];
}

// From a panel that has closed. Not every window manager hands it on.
- (void)_takeKeyboardBack
{
    [m_window makeKeyAndOrderFront:nil];
}

- (void)contentViewDidReceiveFile:(const std::string&)path
{
    [self openFileForUser:path];
}

- (void)exportDocument:(id)sender
{
    if (m_engine == nullptr) {
        return;
    }
    [m_window makeFirstResponder:nil]; // what is being typed counts
    [self _replan];
    const std::string path = exportResult(m_engine, m_plan);
    [self _takeKeyboardBack];
    if (!path.empty()) {
        [self _say:fromUtf8("Exported to " + quotedPath(path))];
    }
}

// ---- settings beside the recording

- (std::string)_restoreSettingsOf:(const Recording&)recording
{
    std::string problem;
    if (!recording.path.empty()) {
        problem = readSettings(settingsPath(recording.path), *m_effect, m_music);
    }
    // Settings that nobody changes are not written.
    [m_savedSettings release];
    m_savedSettings = [settingsData(*m_effect, m_music) retain];
    return problem;
}

// Not while a control or a menu has the mouse: the default mode runs when it has let go.
- (void)_saveSoon
{
    [self _cancelSaving];
    [self performSelector:@selector(saveSettings) withObject:nil afterDelay:kSaveSeconds];
}

- (void)_cancelSaving
{
    [NSObject cancelPreviousPerformRequestsWithTarget:self
                                             selector:@selector(saveSettings)
                                               object:nil];
}

- (void)saveSettings
{
    [self _cancelSaving];
    if (m_engine == nullptr || m_engine->recording().path.empty()) {
        return;
    }
    NSData* const data = settingsData(*m_effect, m_music);
    if ([data isEqualToData:m_savedSettings]) {
        return;
    }
    const std::string problem = writeSettings(settingsPath(m_engine->recording().path), data);
    if (!problem.empty()) {
        [self _say:fromUtf8(problem)];
    }
    // Also where it failed: the same settings are not tried again.
    [m_savedSettings release];
    m_savedSettings = [data retain];
}

// ---- what the user changes

- (void)_hear:(const AudioUnitEvent&)event value:(AudioUnitParameterValue)value
{
    const AudioUnitParameterID parameter = event.mArgument.mParameter.mParameterID;
    switch (event.mEventType) {
    case kAudioUnitEvent_BeginParameterChangeGesture:
        m_history.begin(parameter);
        break;
    case kAudioUnitEvent_EndParameterChangeGesture:
        m_history.end(parameter);
        break;
    case kAudioUnitEvent_ParameterValueChange:
        m_history.change(parameter, value);
        [self _replan];
        break;
    default:
        [self _followStyle];
        break;
    }
    [self _updateButtons];
    if (m_engine != nullptr) {
        [self _saveSoon];
    }
}

- (void)_startHistory
{
    EditHistory::Values values{};
    for (UInt32 parameter = 0; parameter < kParameterCount; ++parameter) {
        AudioUnitGetParameter(m_effect.get(), parameter, kAudioUnitScope_Global, 0,
                              &values[parameter]);
    }
    m_history.reset(values);
    m_planned.reset();
    [self _replan];
    [self _followStyle];
    [self _updateButtons];
}

// The plan follows the effect's present settings, whichever of them was heard of.
- (void)_replan
{
    const TrimSettings settings = m_effect->settings();
    if (m_engine == nullptr || m_planned == settings) {
        return;
    }
    m_planned = settings;
    m_plan = m_engine->plan(settings);
    [m_waveform setPlan:m_plan settings:settings];
    [self _showResult];
}

- (void)_apply:(EditHistory::Assignment)assignment
{
    const AudioUnitParameter parameter{m_effect.get(), assignment.parameter, kAudioUnitScope_Global,
                                       0};
    AUParameterSet(nullptr, nullptr, &parameter, assignment.value, 0);
    [self _replan];
    [self _updateButtons];
}

- (void)undoEdit:(id)sender
{
    [m_window makeFirstResponder:nil];
    if (m_history.canUndo()) {
        [self _apply:m_history.undo()];
    }
}

- (void)redoEdit:(id)sender
{
    if (m_history.canRedo()) {
        [self _apply:m_history.redo()];
    }
}

- (void)_updateButtons
{
    [m_undo setEnabled:m_history.canUndo()];
    [m_redo setEnabled:m_history.canRedo()];
    [m_export setEnabled:m_engine != nullptr];
}

- (BOOL)validateMenuItem:(NSMenuItem*)item
{
    const SEL action = [item action];
    if (sel_isEqual(action, @selector(undoEdit:))) {
        const bool can = m_history.canUndo();
        [item setTitle:can ? [NSString stringWithFormat:@"Undo %s",
                                                        parameterName(m_history.undoParameter())]
                           : @"Undo"];
        return can;
    }
    if (sel_isEqual(action, @selector(redoEdit:))) {
        const bool can = m_history.canRedo();
        [item setTitle:can ? [NSString stringWithFormat:@"Redo %s",
                                                        parameterName(m_history.redoParameter())]
                           : @"Redo"];
        return can;
    }
    return !sel_isEqual(action, @selector(exportDocument:)) || m_engine != nullptr;
}

// ---- tempo and time signature

- (const HostMusic&)music
{
    return m_music;
}

- (void)setMusic:(const HostMusic&)music
{
    m_music = music;
    [self _openEditor];
    [self _followStyle];
    [self saveSettings];
}

- (void)editMusic:(id)sender
{
    const std::optional<HostMusic> music = askForMusic(m_music);
    [self _takeKeyboardBack];
    if (music) {
        [self setMusic:*music];
    }
}

// ---- positions

- (PositionStyle)_style
{
    PositionStyle style;
    UInt32 size = sizeof style.format;
    AudioUnitGetProperty(m_effect.get(), kTimeFormatProperty, kAudioUnitScope_Global, 0,
                         &style.format, &size);
    if (m_engine != nullptr) {
        style.sampleRate = m_engine->recording().sampleRate;
    }
    style.tempo = m_music.tempo;
    style.beatsPerMeasure = static_cast<unsigned>(m_music.numerator);
    return style;
}

- (void)_followStyle
{
    [m_waveform setPositionStyle:[self _style]];
    [self waveformViewDidMoveCursor:m_waveform];
    [self _showResult];
}

- (void)waveformViewDidMoveCursor:(WaveformView*)view
{
    const std::optional<std::uint64_t> cursor = [view cursor];
    [m_position setTextColor:look::text()];
    [m_position setStringValue:cursor ? fromUtf8(positionText(*cursor, [self _style])) : @""];
}

- (void)_showResult
{
    if (m_engine == nullptr) {
        return;
    }
    PositionStyle style = [self _style];
    style.isLength = true;
    const std::string kept = positionText(m_plan.frames(), style);
    const std::string all = positionText(m_engine->recording().frames(), style);
    const std::size_t regions = m_plan.regions.size();
    [m_result setStringValue:[NSString stringWithFormat:@"Kept %s of %s  ·  %zu %s", kept.c_str(),
                                                        all.c_str(), regions,
                                                        regions == 1 ? "region" : "regions"]];
}

// A message stays until the pointer moves over the waveform.
- (void)_say:(NSString*)message
{
    [m_position setTextColor:look::warning()];
    [m_position setStringValue:message];
}

// ---- layout: header, waveform and status line take what the editor below leaves

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
    HostContentView* const view = [[[HostContentView alloc] initWithFrame:content] autorelease];
    [view setDelegate:self];
    [m_window setContentView:view];
    [self _addLabels];
    [self _addButtons];
    [self _addPanes];
    [m_window setInitialFirstResponder:view]; // else a button would begin with the keyboard
}

- (CGFloat)_heightAbovePane
{
    return kHeaderHeight + kWaveformHeight + kStatusHeight;
}

- (void)_addLabels
{
    NSView* const content = [m_window contentView];
    const NSRect bounds = [content bounds];
    const CGFloat width = NSWidth(bounds) - 2 * kMargin;
    const CGFloat top = NSMaxY(bounds);

    m_title = makeLabel(NSMakeRect(kMargin, top - kTitleDrop, width / 2, kLabelHeight),
                        [NSFont boldSystemFontOfSize:14], look::text());
    m_details = makeLabel(NSMakeRect(kMargin, top - kDetailsDrop, width / 2 + 20, kLabelHeight),
                          [NSFont systemFontOfSize:11], look::faintText());
    for (NSTextField* label : {m_title, m_details}) {
        [label setAutoresizingMask:NSViewMinYMargin | NSViewWidthSizable];
        [content addSubview:label];
    }
    [m_title setStringValue:@"No recording"];

    const CGFloat half = std::floor(width / 2);
    m_position = makeLabel(NSMakeRect(kMargin, 0, half, kLabelHeight), [NSFont systemFontOfSize:12],
                           look::text());
    m_result = makeLabel(NSMakeRect(kMargin + half, 0, half, kLabelHeight),
                         [NSFont systemFontOfSize:12], look::faintText());
    [m_result setAlignment:NSRightTextAlignment];
    [content addSubview:m_position];
    [content addSubview:m_result];
}

- (void)_addButtons
{
    NSView* const content = [m_window contentView];
    HostButton* const open = [HostButton buttonWithTitle:@"Open…"
                                                  action:@selector(openDocument:)
                                                  target:self];
    m_export = [HostButton buttonWithTitle:@"Export…"
                                    action:@selector(exportDocument:)
                                    target:self];
    m_undo = [HostButton buttonWithTitle:@"Undo" action:@selector(undoEdit:) target:self];
    m_redo = [HostButton buttonWithTitle:@"Redo" action:@selector(redoEdit:) target:self];
    CGFloat right = NSMaxX([content bounds]) - kMargin;
    for (HostButton* button : {m_export, open, m_redo, m_undo}) {
        right -= NSWidth([button frame]);
        [button setFrameOrigin:NSMakePoint(right, NSMaxY([content bounds]) - kButtonDrop)];
        [button setAutoresizingMask:NSViewMinYMargin | NSViewMinXMargin];
        [content addSubview:button];
        right -= kButtonGap;
    }
}

- (void)_addPanes
{
    NSView* const content = [m_window contentView];
    const NSRect bounds = [content bounds];
    m_waveform = [[[WaveformView alloc]
        initWithFrame:NSMakeRect(kMargin, NSMaxY(bounds) - kHeaderHeight - kWaveformHeight,
                                 NSWidth(bounds) - 2 * kMargin, kWaveformHeight)] autorelease];
    [m_waveform setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [m_waveform setDelegate:self];
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
    const CGFloat above = kHeaderHeight + NSHeight([m_waveform frame]) + kStatusHeight;
    const CGFloat narrowest = std::max(size.width, kPlaceholderSize.width);
    // A window that the user has made wider stays so.
    const CGFloat width = std::max(narrowest, NSWidth([[m_window contentView] frame]));
    [m_window setContentMinSize:NSMakeSize(narrowest, size.height + kHeaderHeight +
                                                          kSmallestWaveform + kStatusHeight)];
    [m_window setContentSize:NSMakeSize(width, size.height + above)];
    [self _placeAbovePane:size];
}

- (void)_placeAbovePane:(NSSize)paneSize
{
    const NSRect bounds = [[m_window contentView] bounds];
    const CGFloat bottom = paneSize.height + kStatusHeight;
    const CGFloat width = NSWidth(bounds) - 2 * kMargin;
    [m_pane setFrameOrigin:NSMakePoint(std::floor((NSWidth(bounds) - paneSize.width) / 2), 0)];
    [m_waveform
        setFrame:NSMakeRect(kMargin, bottom, width, NSMaxY(bounds) - kHeaderHeight - bottom)];
    const CGFloat half = std::floor(width / 2);
    const CGFloat labelBottom = paneSize.height + 2;
    [m_position setFrame:NSMakeRect(kMargin, labelBottom, half, kLabelHeight)];
    [m_result setFrame:NSMakeRect(kMargin + half, labelBottom, width - half, kLabelHeight)];
    [m_position setAutoresizingMask:NSViewMaxYMargin | NSViewMaxXMargin];
    [m_result setAutoresizingMask:NSViewMaxYMargin | NSViewWidthSizable];
    [[m_window contentView] setNeedsDisplay:YES];
}

@end
