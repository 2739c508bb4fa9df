#import "host/app/HostLook.h"
#import "host/app/HostWindow.h"
#import "host/app/Snapshot.h"

#import "GuiTest.h"
#import "WaveformPictures.h"

#include <filesystem>

using namespace host;
using namespace host_test;
namespace fs = std::filesystem;

namespace {

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
