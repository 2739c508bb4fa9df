#import "host/app/HostLook.h"
#import "host/app/HostWindow.h"
#import "host/app/Snapshot.h"

#import "GuiTest.h"

#include <filesystem>

using namespace host;
namespace fs = std::filesystem;

namespace {

/// A second at 1 kHz whose second half is as loud as can be.
std::shared_ptr<const Recording> halfLoud(unsigned channels)
{
    auto recording = std::make_shared<Recording>();
    recording->path = "/audio/half.wav";
    recording->format = "WAV (Microsoft)";
    recording->bitDepth = 16;
    recording->sampleRate = 1000;
    recording->channels = channels;
    recording->samples.resize(1000 * channels);
    for (std::size_t i = 500 * channels; i < recording->samples.size(); ++i) {
        recording->samples[i] = i / channels % 2 == 0 ? 1.0F : -1.0F;
    }
    return recording;
}

bool isColor(NSBitmapImageRep* image, NSInteger x, NSInteger y, NSColor* expected)
{
    NSColor* const color = [[image colorAtX:x
                                          y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return std::abs([color redComponent] - [expected redComponent]) < 0.02 &&
           std::abs([color greenComponent] - [expected greenComponent]) < 0.02 &&
           std::abs([color blueComponent] - [expected blueComponent]) < 0.02;
}

NSBitmapImageRep* pictureOf(NSView* view)
{
    [[view window] display];
    [view lockFocus];
    NSBitmapImageRep* const image =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return image;
}

class WaveformViewTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        window = gui_test::makeWindow(NSMakeSize(400, 200));
        view = [[[WaveformView alloc] initWithFrame:NSMakeRect(0, 0, 400, 200)] autorelease];
        [[window contentView] addSubview:view];
    }

    void TearDown() override
    {
        [window close];
        [window release];
    }

    NSWindow* window = nil;
    WaveformView* view = nil;
};

class HostWindowTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        host = [[HostWindow alloc] initWithBundle:TEST_VIEW_BUNDLE factory:"HostTestViewFactory"];
        [[host window] makeKeyAndOrderFront:nil];
        gui_test::pump(0.05);
    }

    void TearDown() override
    {
        [[host window] close];
        [host release];
    }

    NSSize contentSize() const { return [[[host window] contentView] frame].size; }

    HostWindow* host = nil;
};

} // namespace

TEST_F(WaveformViewTest, DrawsALaneForEachChannel)
{
    for (const unsigned channels : {1U, 2U, 6U}) {
        SCOPED_TRACE(channels);
        [view setEngine:std::make_shared<const TrimEngine>(halfLoud(channels))];
        NSBitmapImageRep* const image = pictureOf(view);
        for (unsigned channel = 0; channel < channels; ++channel) {
            const double lane = 200.0 / channels;
            const auto nearTop = static_cast<NSInteger>(lane * (channel + 0.2));
            EXPECT_TRUE(isColor(image, 100, nearTop, look::well()));
            EXPECT_TRUE(isColor(image, 300, nearTop, look::waveform()));
        }
    }
}

TEST_F(WaveformViewTest, SilenceIsALine)
{
    [view setEngine:std::make_shared<const TrimEngine>(halfLoud(1))];
    NSBitmapImageRep* const image = pictureOf(view);
    bool found = false;
    for (NSInteger y = 98; y <= 102; ++y) {
        found = found || isColor(image, 100, y, look::waveform());
    }
    EXPECT_TRUE(found);
}

TEST_F(WaveformViewTest, WithoutARecordingThereIsNoWaveform)
{
    NSBitmapImageRep* const image = pictureOf(view);
    EXPECT_TRUE(isColor(image, 20, 100, look::well()));
    EXPECT_TRUE(isColor(image, 300, 20, look::well()));
}

TEST_F(HostWindowTest, IsAsLargeAsItsEditorNeeds)
{
    ASSERT_NE([[host editorPane] editor], nil);
    EXPECT_GE(contentSize().width, 320);
    EXPECT_GE(contentSize().height, 200 + 60);
    NSView* const editor = [[host editorPane] editor];
    const NSSize before = contentSize();
    [editor setFrameSize:NSMakeSize(900, 300)];
    EXPECT_EQ(contentSize().width, 900);
    EXPECT_EQ(contentSize().height, before.height + 100);
    EXPECT_TRUE(NSEqualRects([[host editorPane] frame], NSMakeRect(0, 0, 900, 300)));
    EXPECT_TRUE(NSEqualSizes([editor frame].size, NSMakeSize(900, 300)));
}

TEST_F(HostWindowTest, HandsTheRecordingToTheEffectAndNamesIt)
{
    const auto recording = halfLoud(2);
    [host showRecording:recording];
    EXPECT_EQ([host effect]->recording(), recording);
    EXPECT_TRUE([[[host window] title] isEqual:@"half.wav — Tarvel"]);
    EXPECT_NE([[host editorPane] editor], nil);
}

TEST_F(HostWindowTest, TellsTheEffectItsTempo)
{
    HostCallbackInfo callbacks{};
    UInt32 size = sizeof callbacks;
    ASSERT_EQ(AudioUnitGetProperty([host effect], kAudioUnitProperty_HostCallbacks,
                                   kAudioUnitScope_Global, 0, &callbacks, &size),
              noErr);
    Float64 tempo = 0;
    ASSERT_NE(callbacks.beatAndTempoProc, nullptr);
    EXPECT_EQ(callbacks.beatAndTempoProc(callbacks.hostUserData, nullptr, &tempo), noErr);
    EXPECT_EQ(tempo, 120.0);
}

TEST_F(HostWindowTest, FileThatCannotBeOpenedLeavesTheRecording)
{
    const auto recording = halfLoud(1);
    [host showRecording:recording];
    EXPECT_EQ([host openFile:"/nowhere/gone.wav"], "\"/nowhere/gone.wav\" does not exist.");
    EXPECT_EQ([host effect]->recording(), recording);
    EXPECT_EQ([host openFile:SAMPLE_RECORDING], "");
    EXPECT_NE([host effect]->recording(), recording);
}

TEST_F(HostWindowTest, ClosesItsEditorBeforeTheEffect)
{
    [host close];
    EXPECT_EQ([[host editorPane] editor], nil);
    EXPECT_EQ([host effect], nullptr);
    [host close];
}

TEST_F(HostWindowTest, SnapshotIsAPictureOfTheWholeWindow)
{
    const std::string path = (fs::temp_directory_path() / "host-window-test.png").string();
    ASSERT_EQ(writeSnapshot([host window], path), "");
    NSBitmapImageRep* const image = [NSBitmapImageRep
        imageRepWithData:[NSData
                             dataWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]]];
    fs::remove(path);
    ASSERT_NE(image, nil);
    EXPECT_GE([image pixelsWide], contentSize().width);
    EXPECT_GE([image pixelsHigh], contentSize().height);
    EXPECT_TRUE(isColor(image, 4, [image pixelsHigh] - 4, look::background()));
}

TEST_F(HostWindowTest, SnapshotThatCannotBeWrittenIsReported)
{
    EXPECT_EQ(writeSnapshot([host window], "/nowhere/a.png"),
              "\"/nowhere/a.png\" cannot be written: No such file or directory.");
}
