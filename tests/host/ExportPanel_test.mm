#import "host/app/ExportPanel.h"

#import "GuiTest.h"

#include "SoundFiles.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace host;
using testing::ElementsAre;

/// Clicks the button of the one panel that comes up.
@interface PanelClicker : NSObject {
@public
    bool clicked;
}
@end

@implementation PanelClicker

- (void)look:(NSTimer*)timer
{
    NSWindow* const panel = [NSApp modalWindow];
    if (panel == nil || clicked) {
        return;
    }
    clicked = true;
    for (NSView* view in [[panel contentView] subviews]) {
        if ([view isKindOfClass:[NSButton class]]) {
            [(NSButton*)view performClick:nil];
        }
    }
}

@end

namespace {

std::shared_ptr<Recording> silence(std::uint64_t frames)
{
    auto recording = std::make_shared<Recording>();
    recording->path = "/audio/long.wav";
    recording->fileFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    recording->bitDepth = 16;
    recording->sampleRate = 48000;
    recording->channels = 2;
    recording->samples.resize(frames * 2);
    return recording;
}

TrimPlan everything(const TrimEngine& engine)
{
    TrimPlan plan;
    plan.regions = {{.first = 0, .end = engine.recording().frames()}};
    return plan;
}

TEST(ExportName, KeepsTheKindOfFileWhereItCan)
{
    Recording recording;
    recording.path = "/audio/take.one.wav";
    recording.fileFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    EXPECT_EQ(exportName(recording), "take.one trimmed.wav");
    recording.fileFormat = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    EXPECT_EQ(exportName(recording), "take.one trimmed.flac");
    recording.fileFormat = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    EXPECT_EQ(exportName(recording), "take.one trimmed.wav");
}

TEST(ExportWithProgress, WritesTheFile)
{
    REQUIRE_DISPLAY();
    const TemporaryFolder folder;
    const auto engine = std::make_shared<const TrimEngine>(silence(1000));
    const ExportResult result =
        exportWithProgress(engine, everything(*engine), {.target = folder.path("a.wav")});
    EXPECT_EQ(result.status, ExportStatus::Done) << result.problem;
    EXPECT_EQ(readSound<int>(folder.path("a.wav")).samples.size(), 2000u);
}

TEST(ExportWithProgress, CancelLeavesNothingBehind)
{
    REQUIRE_DISPLAY();
    const TemporaryFolder folder;
    PanelClicker* const clicker = [[[PanelClicker alloc] init] autorelease];
    NSTimer* const timer = [NSTimer timerWithTimeInterval:0.005
                                                   target:clicker
                                                 selector:@selector(look:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
    // Long enough that no machine is done before the panel comes.
    const auto engine = std::make_shared<const TrimEngine>(silence(48000 * 60 * 10));
    const ExportResult result =
        exportWithProgress(engine, everything(*engine),
                           {.target = folder.path("a.flac"), .container = ExportContainer::Flac});
    [timer invalidate];
    EXPECT_TRUE(clicker->clicked);
    EXPECT_EQ(result.status, ExportStatus::Cancelled);
    EXPECT_THAT(folder.names(), ElementsAre());
}

} // namespace
