// The product as a user has it: the window, the editor's bundle, mouse and keys of the X server.

#import "GuiTest.h"
#import "UserHand.h"
#import "host/app/HelpWindow.h"
#import "host/app/HostApplication.h"

#import <GNUstepGUI/GSTheme.h>

#include "SoundFiles.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>

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

// Actions of controls that the test knows by their outlets alone, and of a menu's item.
@interface NSObject (Actions)
- (void)helpButtonClicked:(id)sender;
- (void)clearRecentDocuments:(id)sender;
@end

namespace {

constexpr int kRate = 48000; // of the sample

class EndToEnd : public testing::Test {
protected:
    // One application for all tests, as it is one in a process, with a list of recent files of
    // their own.
    static void SetUpTestSuite()
    {
        if (gui_test::hasDisplay()) {
            s_data = std::make_unique<TemporaryFolder>();
            setenv("XDG_DATA_HOME", s_data->path("").c_str(), 1);
            s_application = [HostApplication prepare];
            user_hand::recordEvents();
            [s_application setDelegate:nil]; // it would end with its last window
        }
    }

    static void TearDownTestSuite() { s_data.reset(); }

    void SetUp() override
    {
        REQUIRE_DISPLAY();
        // A test that was ended before may have left a button down.
        ASSERT_TRUE(xdotool("mouseup 1 mouseup 3"));
        std::filesystem::copy_file(SAMPLE_RECORDING, take);
        openWindow();
    }

    void TearDown() override
    {
        if (HasFailure()) {
            user_hand::tellEvents();
        }
        if (host != nil) {
            closeWindow();
        }
    }

    void openWindow()
    {
        host = [[HostWindow alloc] initWithBundle:EDITOR_BUNDLE factory:"TarvelCocoaViewFactory"];
        [s_application setHostWindow:host];
        NSWindow* const window = [host window];
        [window makeKeyAndOrderFront:nil];
        // Done by the launch of an application, whose windows are there by then.
        [[GSTheme theme] updateAllWindowsWithMenu:[NSApp mainMenu]];
        [window setFrameTopLeftPoint:NSMakePoint(60, NSHeight([[window screen] frame]) - 10)];
        ASSERT_TRUE(gui_test::pumpUntil([window] { return [window isKeyWindow]; }));
    }

    void closeWindow()
    {
        [host close];
        [[host window] close];
        [s_application setHostWindow:nil];
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
        ASSERT_TRUE(gui_test::pumpUntil([&] { return [control(outlet) isEnabled]; }));
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

    /// A key for the host's window. A panel that has just gone gives the keyboard back a little
    /// later.
    bool keyToWindow(const std::string& name)
    {
        return gui_test::pumpUntil([&] { return [[host window] isKeyWindow]; }) && key(name);
    }

    /// Types the name of a file into the file panel as soon as that is there.
    void typeIntoPanel(const std::string& path)
    {
        whenever([] { return [[NSApp modalWindow] isKeyWindow]; },
                 [path] {
                     user_hand::start("key super+a type --delay 8 --args 1 " + path +
                                      " key Return");
                 });
    }

    /// Answers the file panel that `keys` brings up with the name of a file.
    void answerPanel(const std::string& keys, const std::string& path)
    {
        typeIntoPanel(path);
        ASSERT_TRUE(keyToWindow(keys));
        ASSERT_TRUE(gui_test::pumpUntil([] { return [NSApp modalWindow] == nil; }, 10));
    }

    /// Types into the panel of tempo and time signature, until that has gone.
    void answerMusicPanel(const std::string& words)
    {
        whenever([] { return [[NSApp modalWindow] isKeyWindow]; },
                 [words] { user_hand::start(words); });
        bool wasThere = false;
        whenever([] { return [NSApp modalWindow] != nil; }, [&wasThere] { wasThere = true; });
        ASSERT_TRUE(keyToWindow("super+t"));
        ASSERT_TRUE(
            gui_test::pumpUntil([&] { return wasThere && [NSApp modalWindow] == nil; }, 10));
    }

    /// The text that is being edited in a panel, or nil.
    static NSText* panelText()
    {
        id const responder = [[NSApp modalWindow] firstResponder];
        return [responder isKindOfClass:[NSText class]] ? responder : nil;
    }
    static std::string typedIntoPanel()
    {
        return panelText() != nil ? [[panelText() string] UTF8String] : "";
    }

    static NSMenuItem* recentItem()
    {
        NSMenu* const file = [[[NSApp mainMenu] itemWithTitle:@"File"] submenu];
        return (NSMenuItem*)[file itemWithTitle:@"Open Recent"];
    }

    /// Titles of the items; a separator's is empty.
    static std::vector<std::string> recentTitles()
    {
        std::vector<std::string> titles;
        for (NSMenuItem* item in [[recentItem() submenu] itemArray]) {
            titles.emplace_back([item isSeparatorItem] ? "" : [[item title] UTF8String]);
        }
        return titles;
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

    static std::unique_ptr<TemporaryFolder> s_data;
    static HostApplication* s_application;
    TemporaryFolder folder;
    std::string take = folder.path("take.flac");
    HostWindow* host = nil;
};

std::unique_ptr<TemporaryFolder> EndToEnd::s_data;
HostApplication* EndToEnd::s_application = nil;

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

TEST_F(EndToEnd, EveryFormatOfTheMenuIsShownAndTypedBack)
{
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

TEST_F(EndToEnd, FormatAndFunctionAreChosenWithTheKeyboard)
{
    ASSERT_EQ([host openFile:take], "");
    NSMenu* const formats = [control("fadeInLengthTextField") menu];
    const NSInteger shown = [formats indexOfItemWithTag:format()];
    ASSERT_TRUE(user_hand::click(control("fadeInLengthTextField")));
    ASSERT_TRUE(gui_test::pumpUntil(
        [&] { return [control("fadeInLengthTextField") currentEditor] != nil; }));
    whenever([formats] { return user_hand::isOpen(formats); },
             [] { user_hand::start("key Down key Down key Return"); });
    ASSERT_TRUE(key("shift+F10"));
    EXPECT_TRUE(gui_test::pumpUntil([&] {
        return !user_hand::isOpen(formats) && [formats indexOfItemWithTag:format()] > shown;
    }));

    // A menu that a click has opened.
    NSMenu* const functions = [control("functionPopupButton") menu];
    whenever([functions] { return user_hand::isOpen(functions); },
             [] { user_hand::start("key End key Return"); });
    ASSERT_TRUE(user_hand::click(control("functionPopupButton")));
    constexpr int kLastFunction = 3;
    EXPECT_TRUE(becomes(kFunctionParameter, kLastFunction));
    EXPECT_FALSE(user_hand::isOpen(functions));
    // Shown once the effect has answered.
    const auto showsLast = [&] {
        return [control("functionPopupButton") indexOfSelectedItem] == kLastFunction;
    };
    EXPECT_TRUE(gui_test::pumpUntil(showsLast));

    whenever([functions] { return user_hand::isOpen(functions); },
             [] { user_hand::start("key Home key Escape"); });
    ASSERT_TRUE(user_hand::click(control("functionPopupButton")));
    EXPECT_TRUE(gui_test::pumpUntil([functions] { return !user_hand::isOpen(functions); }));
    EXPECT_EQ(parameter(kFunctionParameter), kLastFunction);
    EXPECT_TRUE(gui_test::pumpUntil(showsLast));
}

TEST_F(EndToEnd, TickOfAMenuIsSeenOnItsDarkGround)
{
    NSMenuItem* const item = [[[NSMenuItem alloc] init] autorelease];
    NSImage* const tick = [item onStateImage];
    const NSRect place = {NSZeroPoint, [tick size]};
    NSImage* const ground = [[[NSImage alloc] initWithSize:place.size] autorelease];
    [ground lockFocus];
    [[[GSTheme theme] menuBackgroundColor] set];
    NSRectFill(place);
    [tick compositeToPoint:NSZeroPoint operation:NSCompositeSourceOver];
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:place] autorelease];
    [ground unlockFocus];
    double brightest = 0;
    for (NSInteger y = 0; y < [pixels pixelsHigh]; ++y) {
        for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
            NSColor* const color =
                [[pixels colorAtX:x y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
            brightest = std::max(brightest, double{[color brightnessComponent]});
        }
    }
    EXPECT_GT(brightest, 0.7);
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

TEST_F(EndToEnd, ExportAsksBeforeItReplacesAFile)
{
    ASSERT_EQ([host openFile:take], "");
    const std::string target = folder.write("result.wav", "old");
    bool asked = false;
    const auto isAsking = [] { return user_hand::panelButton("Replace") != nil; };

    // No: the question goes, and the file panel stays until it is cancelled too.
    typeIntoPanel(target);
    whenever(isAsking, [&asked] {
        asked = true;
        user_hand::clickPanelButtonWhenShown("Cancel");
        whenever(
            [] {
                return [[NSApp modalWindow] isKindOfClass:[NSSavePanel class]] &&
                       [[NSApp modalWindow] isKeyWindow];
            },
            [] { user_hand::start("key Escape"); });
    });
    ASSERT_TRUE(keyToWindow("super+e"));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return asked && [NSApp modalWindow] == nil; }, 10));
    EXPECT_EQ(TemporaryFolder::contents(target), "old");

    // Yes.
    asked = false;
    typeIntoPanel(target);
    whenever(isAsking, [&asked] {
        asked = true;
        user_hand::clickPanelButtonWhenShown("Replace");
    });
    ASSERT_TRUE(keyToWindow("super+e"));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return asked && [NSApp modalWindow] == nil; }, 10));
    ASSERT_TRUE(gui_test::pumpUntil([&] { return TemporaryFolder::contents(target) != "old"; }));
    EXPECT_EQ(readSound<int>(target).rate, kRate);
    EXPECT_THAT(folder.names(), testing::Not(testing::Contains(testing::HasSubstr("result.wav."))));
}

TEST_F(EndToEnd, RecentRecordingIsOpenedFromTheMenuAndTheListCleared)
{
    const std::string other = folder.path("other.flac");
    std::filesystem::copy_file(take, other);
    // Those of other tests. The list is never empty before, so that its end can be waited for.
    ASSERT_EQ([host openFile:take], "");
    [NSApp sendAction:@selector(clearRecentDocuments:) to:nil from:nil];
    ASSERT_TRUE(gui_test::pumpUntil([&] { return recentTitles().empty(); }));
    ASSERT_EQ([host openFile:take], "");
    ASSERT_EQ([host openFile:other], "");
    ASSERT_TRUE([[[host window] title] isEqual:@"other.flac — Tarvel"]);

    ASSERT_TRUE(user_hand::chooseFromMenuBar({"File", "Open Recent", take}));
    EXPECT_TRUE(
        gui_test::pumpUntil([&] { return [[[host window] title] isEqual:@"take.flac — Tarvel"]; }));
    EXPECT_THAT(recentTitles(), testing::ElementsAre(take, other, "", "Clear List"));

    ASSERT_TRUE(user_hand::chooseFromMenuBar({"File", "Open Recent", "Clear List"}));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return recentTitles().empty(); }));
    EXPECT_FALSE([recentItem() isEnabled]);
    EXPECT_TRUE([[[host window] title] isEqual:@"take.flac — Tarvel"]);
}

TEST_F(EndToEnd, RecentRecordingThatIsGoneIsToldAndLeavesTheList)
{
    const std::string other = folder.path("other.flac");
    std::filesystem::copy_file(take, other);
    ASSERT_EQ([host openFile:other], "");
    ASSERT_EQ([host openFile:take], "");
    std::filesystem::remove(other);
    bool told = false;
    whenever([] { return user_hand::panelButton("OK") != nil; },
             [&told] {
                 told = true;
                 user_hand::clickPanelButtonWhenShown("OK");
             });
    ASSERT_TRUE(user_hand::chooseFromMenuBar({"File", "Open Recent", other}));
    EXPECT_TRUE(gui_test::pumpUntil([&] { return told && [NSApp modalWindow] == nil; }));
    EXPECT_THAT(recentTitles(), testing::Not(testing::Contains(other)));
    EXPECT_TRUE([[[host window] title] isEqual:@"take.flac — Tarvel"]);
}

TEST_F(EndToEnd, TempoAndSignatureAreTypedIntoTheirPanel)
{
    ASSERT_EQ([host openFile:take], "");
    chooseFormat("fadeInLengthTextField", zqposfmt_measures);
    answerMusicPanel("key super+a type --args 1 60 key Tab type --args 1 3/4 key Return");
    EXPECT_EQ([host music].tempo, 60);
    EXPECT_EQ([host music].numerator, 3);
    EXPECT_EQ([host music].denominator, 4u);

    // The editor counts with it: three seconds are one measure.
    ASSERT_TRUE(pickFromPopUp(control("functionPopupButton"), 2));
    ASSERT_TRUE(becomes(kFunctionParameter, 2));
    typeInto("cropStartTextField", "2:1.0");
    EXPECT_TRUE(becomes(kCropStartParameter, 3000)) << shown("cropStartTextField");
}

TEST_F(EndToEnd, TempoPanelLeavesEverythingWhenItIsCancelled)
{
    ASSERT_EQ([host openFile:take], "");
    answerMusicPanel("key super+a type --args 1 60 key Escape");
    EXPECT_EQ([host music].tempo, 120);
    user_hand::clickPanelButtonWhenShown("Cancel");
    ASSERT_TRUE(keyToWindow("super+t"));
    EXPECT_TRUE(gui_test::pumpUntil([] { return [NSApp modalWindow] == nil; }));
    EXPECT_EQ([host music].tempo, 120);
    EXPECT_FALSE(std::filesystem::exists(take + ".tarvel"));
}

// What makes no sense stays in the panel to be corrected.
TEST_F(EndToEnd, TempoPanelKeepsAskingUntilTheValuesMakeSense)
{
    ASSERT_EQ([host openFile:take], "");
    bool corrected = false;
    whenever(
        [] {
            return typedIntoPanel() == "fast" &&
                   NSEqualRanges([panelText() selectedRange], NSMakeRange(0, 4));
        },
        [&corrected] {
            corrected = true;
            user_hand::start("type 90.5");
        });
    whenever([] { return typedIntoPanel() == "90.5"; },
             [] { user_hand::clickPanelButtonWhenShown("Set"); });
    answerMusicPanel("key super+a type --args 1 fast key Return");
    EXPECT_TRUE(corrected);
    EXPECT_EQ([host music].tempo, 90.5);
    EXPECT_EQ([host music].numerator, 4);
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
    ASSERT_TRUE(pickFromPopUp(control("functionPopupButton"), 2));
    ASSERT_TRUE(becomes(kFunctionParameter, 2));
    chooseFormat("fadeInLengthTextField", zqposfmt_smpte_24);
    answerMusicPanel("key super+a type --args 1 75 key Tab type --args 1 6/8 key Return");
    typeInto("cropStartTextField", "00:00:01:06");
    ASSERT_TRUE(becomes(kCropStartParameter, 1250));
    closeWindow();
    EXPECT_TRUE(std::filesystem::exists(take + ".tarvel"));

    openWindow();
    ASSERT_EQ([host openFile:take], "");
    EXPECT_EQ(parameter(kAttackThresholdParameter), dragged);
    EXPECT_TRUE(gui_test::pumpUntil([&] {
        return std::abs([control("attackSlider") doubleValue] - double{dragged}) < 1e-6 &&
               format() == zqposfmt_smpte_24;
    }));
    EXPECT_EQ([host music].tempo, 75);
    EXPECT_EQ([host music].numerator, 6);
    EXPECT_EQ([host music].denominator, 8u);
    EXPECT_EQ([control("functionPopupButton") indexOfSelectedItem], 2);
    EXPECT_TRUE([control("cropStartTextField") isEnabled]);
    EXPECT_TRUE(shows("cropStartTextField", "00:00:01:06"));
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
    HelpWindow* const help = [s_application valueForKey:@"m_help"];
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
