#import "MusicPanel.h"

#import "HostButton.h"
#import "HostLook.h"
#import "SettingsFile.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <charconv>
#include <string>

namespace host {

namespace {

constexpr CGFloat kMargin = 16;
constexpr CGFloat kRowHeight = 24;
constexpr CGFloat kRowGap = 10;
constexpr CGFloat kLabelWidth = 110;
const NSSize kPanelSize = {300, 132};

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<double> readNumber(std::string text)
{
    text = trimmed(text);
    std::replace(text.begin(), text.end(), ',', '.');
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

} // namespace

std::optional<HostMusic> readMusic(const std::string& tempo, const std::string& signature)
{
    const std::size_t slash = signature.find('/');
    if (slash == std::string::npos) {
        return std::nullopt;
    }
    const std::optional<double> beats = readNumber(tempo);
    const std::optional<double> numerator = readNumber(signature.substr(0, slash));
    const std::optional<double> denominator = readNumber(signature.substr(slash + 1));
    if (!beats || !numerator || !denominator || !isTempo(*beats) ||
        !isTimeSignature(*numerator, *denominator)) {
        return std::nullopt;
    }
    HostMusic music;
    music.tempo = *beats;
    music.numerator = static_cast<Float32>(*numerator);
    music.denominator = static_cast<UInt32>(*denominator);
    return music;
}

} // namespace host

using namespace host;

@interface MusicPanelController : NSObject {
@public
    NSPanel* panel; // owned
    NSTextField* tempo;
    NSTextField* signature;
    std::optional<HostMusic> music;
}
- (id)initWithMusic:(const HostMusic&)present;
@end

@implementation MusicPanelController

- (id)initWithMusic:(const HostMusic&)present
{
    self = [super init];
    if (self == nil) {
        return nil;
    }
    panel =
        [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, kPanelSize.width, kPanelSize.height)
                                   styleMask:NSTitledWindowMask
                                     backing:NSBackingStoreBuffered
                                       defer:NO];
    [panel setReleasedWhenClosed:NO];
    [panel setTitle:@"Tempo and Time Signature"];
    [panel setBackgroundColor:look::background()];
    tempo = [self _addField:@"Tempo, BPM"
                       text:[NSString stringWithFormat:@"%g", present.tempo]
                        row:0];
    signature = [self _addField:@"Time signature"
                           text:[NSString stringWithFormat:@"%g/%u", double{present.numerator},
                                                           unsigned{present.denominator}]
                            row:1];
    [self _addButtons];
    [tempo setNextKeyView:signature];
    [signature setNextKeyView:tempo];
    [panel setInitialFirstResponder:tempo];
    [panel center];
    return self;
}

- (void)dealloc
{
    [panel close];
    [panel release];
    [super dealloc];
}

- (NSTextField*)_addField:(NSString*)title text:(NSString*)text row:(int)row
{
    const CGFloat y = kPanelSize.height - kMargin - kRowHeight - row * (kRowHeight + kRowGap);
    NSTextField* const label = [[[NSTextField alloc]
        initWithFrame:NSMakeRect(kMargin, y - 4, kLabelWidth, kRowHeight)] autorelease];
    [label setStringValue:title];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label setTextColor:look::text()];
    [[panel contentView] addSubview:label];
    const CGFloat x = kMargin + kLabelWidth;
    NSTextField* const field = [[[NSTextField alloc]
        initWithFrame:NSMakeRect(x, y, kPanelSize.width - kMargin - x, kRowHeight)] autorelease];
    [field setStringValue:text];
    [field setTextColor:look::text()];
    [field setBackgroundColor:look::well()];
    [[field cell] setSendsActionOnEndEditing:NO];
    [field setTarget:self];
    [field setAction:@selector(accept:)];
    [[panel contentView] addSubview:field];
    return field;
}

- (void)_addButtons
{
    CGFloat right = kPanelSize.width - kMargin;
    HostButton* const set = [HostButton buttonWithTitle:@"Set"
                                                 action:@selector(accept:)
                                                 target:self];
    HostButton* const cancel = [HostButton buttonWithTitle:@"Cancel"
                                                    action:@selector(cancel:)
                                                    target:self];
    [cancel setKeyEquivalent:@"\x1b"];
    for (HostButton* button : {set, cancel}) {
        right -= NSWidth([button frame]);
        [button setFrameOrigin:NSMakePoint(right, kMargin)];
        right -= 8;
        [[panel contentView] addSubview:button];
    }
}

- (void)accept:(id)sender
{
    [panel makeFirstResponder:nil]; // what is being typed counts
    music = readMusic([[tempo stringValue] UTF8String], [[signature stringValue] UTF8String]);
    if (!music) {
        NSBeep();
        [tempo selectText:nil];
        return;
    }
    [NSApp stopModal];
}

- (void)cancel:(id)sender
{
    [NSApp stopModal];
}

@end

namespace host {

std::optional<HostMusic> askForMusic(const HostMusic& present)
{
    MusicPanelController* const controller =
        [[[MusicPanelController alloc] initWithMusic:present] autorelease];
    [NSApp runModalForWindow:controller->panel];
    [controller->panel orderOut:nil];
    return controller->music;
}

} // namespace host
