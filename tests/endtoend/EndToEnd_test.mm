// The product as a user has it: the window, the editor's bundle, mouse and keys of the X server.

#import "GuiTest.h"
#import "UserHand.h"
#import "host/app/HelpWindow.h"
#import "host/app/HostMenu.h"
#import "host/app/HostWindow.h"

#include "SoundFiles.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

using namespace host;
using user_hand::at;
using user_hand::key;
using user_hand::pickFromContextMenu;
using user_hand::pickFromPopUp;
using user_hand::whenever;
using user_hand::xdotool;

/// A place from which a file can be dragged with the mouse.
@interface FileSource : NSView {
@public
    NSString* path;
    NSDragOperation result;
}
@end

@implementation FileSource

- (void)mouseDown:(NSEvent*)event
{
    NSPasteboard* const board = [NSPasteboard pasteboardWithName:NSDragPboard];
    [board declareTypes:@[ NSFilenamesPboardType ] owner:nil];
    [board setPropertyList:@[ path ] forType:NSFilenamesPboardType];
    NSImage* const image = [[[NSImage alloc] initWithSize:NSMakeSize(8, 8)] autorelease];
    [image lockFocus];
    NSRectFill(NSMakeRect(0, 0, 8, 8));
    [image unlockFocus];
    [self dragImage:image
                 at:NSZeroPoint
             offset:NSZeroSize
              event:event
         pasteboard:board
             source:self
          slideBack:NO];
}

- (NSDragOperation)draggingSourceOperationMaskForLocal:(BOOL)isLocal
{
    return NSDragOperationCopy;
}

@end

// What the test asks of controls that it knows by their outlets alone.
@interface NSObject (EditorControls)
- (void)helpButtonClicked:(id)sender;
@end

namespace {

constexpr int kRate = 48000; // of the sample

class EndToEnd : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        std::filesystem::copy_file(SAMPLE_RECORDING, take);
        installMainMenu();
        openWindow();
    }

    void TearDown() override
    {
        if (host != nil) {
            closeWindow();
        }
    }

    void openWindow()
    {
        host = [[HostWindow alloc] initWithBundle:EDITOR_BUNDLE factory:"TarvelCocoaViewFactory"];
        [NSApp setDelegate:host];
        NSWindow* const window = [host window];
        [window makeKeyAndOrderFront:nil];
        [window setFrameTopLeftPoint:NSMakePoint(60, NSHeight([[window screen] frame]) - 10)];
        ASSERT_TRUE(gui_test::pumpUntil([window] { return [window isKeyWindow]; }));
    }

    void closeWindow()
    {
        [NSApp setDelegate:nil];
        [host close];
        [[host window] close];
        [host release];
        host = nil;
    }

    /// A control of the editor by the name of its outlet.
    id control(const char* outlet) const
    {
        NSView* const editor = [[host editorPane] editor];
        return [editor valueForKey:[NSString stringWithUTF8String:outlet]];
    }

    /// Display format of the length fields.
    UInt32 format() const
    {
        return [[control("fadeInLengthTextField") valueForKey:@"format"] unsignedIntValue];
    }

    float parameter(AudioUnitParameterID id) const
    {
        AudioUnitParameterValue value = 0;
        AudioUnitGetParameter([host effect], id, kAudioUnitScope_Global, 0, &value);
        return value;
    }

    bool becomes(AudioUnitParameterID id, float value) const
    {
        return gui_test::pumpUntil([&] { return parameter(id) == value; });
    }

    std::string shown(const char* outlet) const
    {
        NSTextField* const field = control(outlet);
        NSText* const editor = [field currentEditor];
        return [editor != nil ? [editor string] : [field stringValue] UTF8String];
    }

    bool shows(const char* outlet, const std::string& text) const
    {
        return gui_test::pumpUntil([&] { return shown(outlet) == text; });
    }

    /// Replaces the text of a field.
    void typeInto(const char* outlet, const std::string& text)
    {
        ASSERT_TRUE(user_hand::click(control(outlet)));
        ASSERT_TRUE(gui_test::pumpUntil([&] { return [control(outlet) currentEditor] != nil; }));
        ASSERT_TRUE(key("super+a"));
        ASSERT_TRUE(user_hand::type(text));
        ASSERT_TRUE(key("Return"));
    }

    void chooseFormat(const char* outlet, UInt32 format)
    {
        NSMenu* const menu = [control(outlet) menu];
        ASSERT_TRUE(pickFromContextMenu(control(outlet), menu, [menu indexOfItemWithTag:format]));
        ASSERT_TRUE(gui_test::pumpUntil([&] { return this->format() == format; }));
    }

    /// Answers the file panel that `keys` brings up with the name of a file. The panel takes the
    /// first Return as the end of a path.
    void answerPanel(const std::string& keys, const std::string& path)
    {
        whenever([] { return [[NSApp modalWindow] isKeyWindow]; },
                 [path] {
                     user_hand::start("key super+a type --delay 8 --args 1 " + path +
                                      " key Return sleep 0.3 key Return");
                 });
        ASSERT_TRUE(key(keys));
        ASSERT_TRUE(gui_test::pumpUntil([] { return [NSApp modalWindow] == nil; }, 10));
    }

    /// Moves the pointer there as a hand does, not in one jump.
    bool moveOverWaveform(double x)
    {
        return xdotool("mousemove " + at([host waveform], x, 0.5) + " sleep 0.05 mousemove " +
                       at([host waveform], x, 0.4) + " sleep 0.05 mousemove " +
                       at([host waveform], x, 0.3));
    }

    bool dragSlider(const char* outlet, double from, double to)
    {
        return user_hand::drag(control(outlet), NSMakePoint(from, 0.5), NSMakePoint(to, 0.5));
    }

    TemporaryFolder folder;
    std::string take = folder.path("take.flac");
    HostWindow* host = nil;
};

/// Keeps a stretch of whole samples and fades it linearly, one sample after the other.
std::vector<double> slowCrop(const SoundContents<int>& source, std::size_t first, std::size_t end,
                             std::size_t fadeIn, std::size_t fadeOut)
{
    std::vector<double> out;
    for (std::size_t frame = first; frame < end; ++frame) {
        double gain = 1;
        if (frame - first < fadeIn) {
            gain *= static_cast<double>(frame - first) / static_cast<double>(fadeIn);
        }
        if (end - 1 - frame < fadeOut) {
            gain *= static_cast<double>(end - 1 - frame) / static_cast<double>(fadeOut);
        }
        for (int channel = 0; channel < source.channels; ++channel) {
            out.push_back(gain * source.samples[frame * static_cast<std::size_t>(source.channels) +
                                                static_cast<std::size_t>(channel)]);
        }
    }
    return out;
}

TEST_F(EndToEnd, OpensTrimsAndExports)
{
    ASSERT_EQ([host openFile:take], "");
    ASSERT_TRUE([[[host window] title] isEqual:@"take.flac — Tarvel"]);

    const TrimPlan before = [host plan];
    ASSERT_TRUE(dragSlider("attackSlider", 0.2, 0.75));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return parameter(kAttackThresholdParameter) > -30; }));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return [host plan] != before; }));

    ASSERT_TRUE(pickFromPopUp(control("functionPopupButton"), 2));
    ASSERT_TRUE(becomes(kFunctionParameter, 2));
    chooseFormat("fadeInLengthTextField", zqposfmt_smpte_25);
    typeInto("cropStartTextField", "00:00:01:05");
    ASSERT_TRUE(becomes(kCropStartParameter, 1200));
    chooseFormat("fadeInLengthTextField", zqposfmt_samples);
    EXPECT_TRUE(shows("cropStartTextField", "57600"));
    ASSERT_TRUE(gui_test::pumpUntil(
        [&] { return [host plan].regions.size() == 1 && [host plan].regions[0].first == 57600; }));

    const std::string target = folder.path("result.wav");
    answerPanel("super+e", target);
    ASSERT_TRUE(gui_test::pumpUntil([&] { return std::filesystem::exists(target); }));

    const auto source = readSound<int>(take);
    const auto result = readSound<int>(target);
    const std::size_t frames = source.samples.size() / 2;
    const std::size_t fadeIn = kRate * 5 / 1000;
    const std::size_t fadeOut = kRate * 50 / 1000;
    const std::vector<double> expected = slowCrop(source, 57600, frames, fadeIn, fadeOut);
    EXPECT_EQ(result.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(result.rate, kRate);
    EXPECT_EQ(result.channels, 2);
    ASSERT_EQ(result.samples.size(), expected.size());
    constexpr double kStep = 65536; // one of 16 bits, in the upper bits of an int
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const bool inFade = i / 2 < fadeIn || expected.size() / 2 - 1 - i / 2 < fadeOut;
        if (inFade) {
            ASSERT_NEAR(result.samples[i], expected[i], 0.502 * kStep) << i;
        } else {
            ASSERT_EQ(result.samples[i], source.samples[57600 * 2 + i]) << i;
        }
    }
}

// Some sixty clicks: too many for a platform that misses the release of one in a hundred.
TEST_F(EndToEnd, EveryFormatOfTheMenuIsShownAndTypedBack)
{
    if (std::getenv("TARVEL_MANY_CLICKS") == nullptr) {
        GTEST_SKIP() << "the platform would miss the end of a click; TARVEL_MANY_CLICKS=1 tries";
    }
    ASSERT_EQ([host openFile:take], "");
    ASSERT_TRUE(pickFromPopUp(control("functionPopupButton"), 2));
    ASSERT_TRUE(becomes(kFunctionParameter, 2));
    // The shortest time that is a whole number of every format's parts.
    chooseFormat("fadeInLengthTextField", zqposfmt_samples);
    typeInto("cropStartTextField", "48048000");
    ASSERT_TRUE(becomes(kCropStartParameter, 1001000));
    int formats = 0;
    NSMenu* const menu = [control("fadeInLengthTextField") menu];
    for (NSInteger index = 0; index < [menu numberOfItems]; ++index) {
        if ([[menu itemAtIndex:index] isSeparatorItem]) {
            continue;
        }
        const auto format = static_cast<UInt32>([[menu itemAtIndex:index] tag]);
        SCOPED_TRACE([[[menu itemAtIndex:index] title] UTF8String]);
        if (format != this->format()) {
            chooseFormat("fadeInLengthTextField", format);
        }
        const std::string text = shown("cropStartTextField");
        typeInto("cropStartTextField", "0");
        ASSERT_TRUE(becomes(kCropStartParameter, 0));
        typeInto("cropStartTextField", text);
        EXPECT_TRUE(becomes(kCropStartParameter, 1001000)) << text;
        EXPECT_TRUE(shows("cropStartTextField", text));
        EXPECT_EQ([[control("cropStartTextField") objectValue] longLongValue], 48048000);
        ++formats;
    }
    EXPECT_EQ(formats, 14);
}

TEST_F(EndToEnd, GesturesAreUndoneAndRedoneByKeys)
{
    ASSERT_EQ([host openFile:take], "");
    const TrimPlan before = [host plan];
    ASSERT_TRUE(dragSlider("attackSlider", 0.2, 0.8));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return [host plan] != before; }));
    const float dragged = parameter(kAttackThresholdParameter);
    typeInto("fadeOutLengthTextField", "1.5");
    ASSERT_TRUE(becomes(kFadeOutLengthParameter, 1500));
    NSMenuItem* const undo = [[[[NSApp mainMenu] itemWithTitle:@"Edit"] submenu] itemAtIndex:0];
    ASSERT_TRUE(gui_test::pumpUntil([&] { return [host validateMenuItem:undo]; }));

    ASSERT_TRUE(key("super+z"));
    EXPECT_TRUE(becomes(kFadeOutLengthParameter, 50));
    ASSERT_TRUE(key("super+z"));
    EXPECT_TRUE(becomes(kAttackThresholdParameter, -48));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return [host plan] == before; }));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return [control("attackSlider") doubleValue] == -48; }));
    EXPECT_FALSE([host validateMenuItem:undo]);

    ASSERT_TRUE(key("super+shift+z"));
    EXPECT_TRUE(becomes(kAttackThresholdParameter, dragged));
    ASSERT_TRUE(key("super+shift+z"));
    EXPECT_TRUE(becomes(kFadeOutLengthParameter, 1500));
}

TEST_F(EndToEnd, WaveformFollowsWhileASliderIsDragged)
{
    ASSERT_EQ([host openFile:take], "");
    const TrimPlan before = [host plan];
    NSView* const slider = control("attackSlider");
    bool changedDuringDrag = false;
    whenever([&] { return [host plan] != before; },
             [&] {
                 changedDuringDrag = true;
                 user_hand::start("mouseup 1");
             });
    ASSERT_TRUE(xdotool("mousemove " + at(slider, 0.2, 0.5) + " mousedown 1 sleep 0.05 mousemove " +
                        at(slider, 0.85, 0.5)));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return changedDuringDrag; }));
}

TEST_F(EndToEnd, PointerReadsPositionsInTheChosenFormat)
{
    ASSERT_EQ([host openFile:take], "");
    ASSERT_TRUE(moveOverWaveform(0.5));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return [[host positionText] hasPrefix:@"00:00:03.1"]; }));
    chooseFormat("fadeInLengthTextField", zqposfmt_smpte_25);
    ASSERT_TRUE(moveOverWaveform(0.25));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return [[host positionText] hasPrefix:@"00:00:01:1"]; }))
        << [[host positionText] UTF8String];
}

TEST_F(EndToEnd, SettingsComeBackWithTheRecording)
{
    ASSERT_EQ([host openFile:take], "");
    ASSERT_TRUE(dragSlider("attackSlider", 0.2, 0.6));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return parameter(kAttackThresholdParameter) > -40; }));
    const float dragged = parameter(kAttackThresholdParameter);
    chooseFormat("fadeInLengthTextField", zqposfmt_smpte_24);
    closeWindow();
    EXPECT_TRUE(std::filesystem::exists(take + ".tarvel"));

    openWindow();
    ASSERT_EQ([host openFile:take], "");
    EXPECT_EQ(parameter(kAttackThresholdParameter), dragged);
    EXPECT_TRUE(gui_test::pumpUntil([&] {
        return std::abs([control("attackSlider") doubleValue] - double{dragged}) < 1e-6 &&
               format() == zqposfmt_smpte_24;
    }));
    EXPECT_TRUE(shows("fadeOutLengthTextField", "00:00:00:01"));
}

TEST_F(EndToEnd, DamagedSettingsAreToldAndIgnored)
{
    folder.write("take.flac.tarvel", "damaged");
    EXPECT_EQ([host openFile:take],
              "The settings \"" + take + ".tarvel\" cannot be read and are ignored.");
    EXPECT_EQ(parameter(kAttackThresholdParameter), -48);
    EXPECT_TRUE([[[host window] title] isEqual:@"take.flac — Tarvel"]);
}

TEST_F(EndToEnd, FileDroppedOnTheWindowOpens)
{
    NSWindow* const window = gui_test::makeWindow(NSMakeSize(60, 60));
    [window setFrameOrigin:NSMakePoint(1000, 200)];
    FileSource* const source =
        [[[FileSource alloc] initWithFrame:NSMakeRect(0, 0, 60, 60)] autorelease];
    source->path = [NSString stringWithUTF8String:take.c_str()];
    [[window contentView] addSubview:source];
    std::string words = "mousemove " + at(source, 0.5, 0.5) + " mousedown 1 sleep 0.1";
    for (const double x : {0.9, 0.7, 0.5, 0.45}) {
        words += " mousemove " + at([host waveform], x, 0.5) + " sleep 0.1";
    }
    EXPECT_TRUE(xdotool(words + " mouseup 1"));
    EXPECT_TRUE(
        gui_test::pumpUntil([&] { return [[[host window] title] isEqual:@"take.flac — Tarvel"]; }));
    [window close];
    [window release];
}

TEST_F(EndToEnd, HelpButtonOpensTheEditorsPage)
{
    HelpWindow* const help = [[[HelpWindow alloc] init] autorelease];
    NSView* button = nil;
    for (NSView* view in [[[host editorPane] editor] subviews]) {
        if ([view isKindOfClass:[NSButton class]] &&
            sel_isEqual([(NSButton*)view action], @selector(helpButtonClicked:))) {
            button = view;
        }
    }
    ASSERT_NE(button, nil);
    ASSERT_TRUE(user_hand::click(button));
    EXPECT_TRUE(gui_test::pumpUntil([help] { return [[help window] isVisible]; }));
    EXPECT_EQ([help topic], 11);
    [[help window] close];
}

} // namespace
