#import "ExportPanel.h"

#import "HostButton.h"
#import "HostLook.h"
#import "RecordingText.h"
#import "host/effect/AudioFile.h"

#include <XeFileSystem.h>
#include <XeNativePath.h>
#include <XePath.h>
#include <XeStringUtil.h>

#include <atomic>
#include <chrono>
#include <future>

namespace host {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(150);
constexpr NSTimeInterval kBarSeconds = 1.0 / 30;
const NSSize kPanelSize = {360, 96};
constexpr CGFloat kMargin = 16;
constexpr CGFloat kBarHeight = 6;

NSString* fromUtf8(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

/// Shared by the exporting thread and the panel.
struct Progress {
    std::atomic<double> done{0}; // 0 to 1
    std::atomic<bool> cancelled{false};
};

} // namespace

} // namespace host

using namespace host;

/// A bar that fills from the left.
@interface ExportBar : NSView {
@public
    double done;
}
@end

@implementation ExportBar

- (void)drawRect:(NSRect)dirtyRect
{
    NSRect bounds = [self bounds];
    const CGFloat radius = NSHeight(bounds) / 2;
    [look::well() set];
    [[NSBezierPath bezierPathWithRoundedRect:bounds xRadius:radius yRadius:radius] fill];
    bounds.size.width = std::max(NSHeight(bounds), NSWidth(bounds) * done);
    [look::accent() set];
    [[NSBezierPath bezierPathWithRoundedRect:bounds xRadius:radius yRadius:radius] fill];
}

@end

@interface ExportProgressPanel : NSObject {
@public
    std::shared_ptr<Progress> progress;
    std::future<ExportResult>* result; // not owned
@private
    NSPanel* m_panel; // owned
    ExportBar* m_bar; // owned by the panel
}
- (void)run;
@end

@implementation ExportProgressPanel

- (void)dealloc
{
    [m_panel close];
    [m_panel release];
    [super dealloc];
}

- (void)run
{
    [self _makePanel];
    NSTimer* const timer = [NSTimer timerWithTimeInterval:kBarSeconds
                                                   target:self
                                                 selector:@selector(_look:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    [NSApp runModalForWindow:m_panel];
    [timer invalidate];
    [m_panel orderOut:nil];
}

- (void)_makePanel
{
    m_panel =
        [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, kPanelSize.width, kPanelSize.height)
                                   styleMask:NSTitledWindowMask
                                     backing:NSBackingStoreBuffered
                                       defer:NO];
    [m_panel setReleasedWhenClosed:NO];
    [m_panel setTitle:@"Exporting"];
    [m_panel setBackgroundColor:look::background()];
    [m_panel center];
    NSView* const content = [m_panel contentView];
    m_bar = [[[ExportBar alloc]
        initWithFrame:NSMakeRect(kMargin, kPanelSize.height - kMargin - 2 * kBarHeight,
                                 kPanelSize.width - 2 * kMargin, kBarHeight)] autorelease];
    [content addSubview:m_bar];
    HostButton* const cancel = [HostButton buttonWithTitle:@"Cancel"
                                                    action:@selector(_cancel:)
                                                    target:self];
    [cancel setKeyEquivalent:@"\x1b"];
    [cancel
        setFrameOrigin:NSMakePoint(kPanelSize.width - kMargin - NSWidth([cancel frame]), kMargin)];
    [content addSubview:cancel];
}

- (void)_look:(NSTimer*)timer
{
    m_bar->done = progress->done;
    [m_bar setNeedsDisplay:YES];
    if (result->wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
        [NSApp stopModal];
        [self _wakeModalLoop];
    }
}

// The loop looks whether it was stopped only when an event has come.
- (void)_wakeModalLoop
{
    NSEvent* const event = [NSEvent otherEventWithType:NSApplicationDefined
                                              location:NSZeroPoint
                                         modifierFlags:0
                                             timestamp:0
                                          windowNumber:[m_panel windowNumber]
                                               context:nil
                                               subtype:0
                                                 data1:0
                                                 data2:0];
    [NSApp postEvent:event atStart:NO];
}

- (void)_cancel:(id)sender
{
    progress->cancelled = true;
}

@end

namespace host {

std::string exportName(const Recording& recording)
{
    _XeString<wchar_t> name;
    xeassign(name, displayName(recording).c_str());
    _XeString<char> stem;
    xeassign(stem, xenon::path::GetFilenameWithoutExtension(name).c_str());
    return stem + " trimmed" + extensionOf(containerOf(recording).value_or(ExportContainer::Wav));
}

ExportResult exportWithProgress(const std::shared_ptr<const TrimEngine>& engine,
                                const TrimPlan& plan, const ExportRequest& request)
{
    const auto progress = std::make_shared<Progress>();
    std::future<ExportResult> result =
        std::async(std::launch::async, [engine, plan, request, progress] {
            return exportFile(*engine, plan, request,
                              [&progress = *progress](std::uint64_t done, std::uint64_t total) {
                                  progress.done =
                                      static_cast<double>(done) / static_cast<double>(total);
                                  return !progress.cancelled;
                              });
        });
    if (result.wait_for(kPatience) != std::future_status::ready) {
        ExportProgressPanel* const panel = [[[ExportProgressPanel alloc] init] autorelease];
        panel->progress = progress;
        panel->result = &result;
        [panel run];
    }
    return result.get();
}

std::string exportResult(const std::shared_ptr<const TrimEngine>& engine, const TrimPlan& plan)
{
    NSSavePanel* const panel = [NSSavePanel savePanel];
    [panel setTitle:@"Export"];
    NSString* const name = fromUtf8(exportName(engine->recording()));
    NSString* const folder = [[NSFileManager defaultManager]
        stringWithFileSystemRepresentation:engine->recording().path.c_str()
                                    length:engine->recording().path.size()];
    if ([panel runModalForDirectory:[folder stringByDeletingLastPathComponent]
                               file:name] != NSOKButton) {
        return "";
    }
    ExportRequest request;
    request.target = [[panel filename] fileSystemRepresentation];
    const std::optional<ExportContainer> container = containerForName(request.target);
    if (!container) {
        NSRunAlertPanel(@"Export", @"The name must end in .wav, .flac or .aiff.", @"OK", nil, nil);
        return "";
    }
    request.container = *container;
    // The panel has asked about a file that was there when the user chose its name.
    request.overwrite = XeFileSystem::isFilePresent(xenon::path::fromNative(request.target));
    const ExportResult result = exportWithProgress(engine, plan, request);
    if (result.status == ExportStatus::Done) {
        return request.target;
    }
    if (result.status != ExportStatus::Cancelled) {
        NSRunAlertPanel(@"Export", @"%@", @"OK", nil, nil, fromUtf8(result.problem));
    }
    return "";
}

} // namespace host
