#import "EditorTest.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

namespace {

using editor_test::EditorTest;
using editor_test::ivar;
using editor_test::OpenEditor;
using testing::ElementsAreArray;
using testing::HasSubstr;

class View : public EditorTest {};

struct OutletRow {
    const char* name;
    const char* className;
    const char* action; // null: sends none
};

// In the order in which the view declares them.
constexpr OutletRow kOutlets[] = {
    // clang-format off
    { "functionPopupButton",    "XePopUpButton",    "functionChanged:" },
    { "gainUnitsButtons",       "XeRadioMatrix",    "gainUnitsChanged:" },
    { "attackTextField",        "XeThresholdField", "attackChanged:" },
    { "attackSlider",           "XeSlider",         "attackChanged:" },
    { "releaseTextField",       "XeThresholdField", "releaseChanged:" },
    { "releaseSlider",          "XeSlider",         "releaseChanged:" },
    { "fadeInTypePopupButton",  "CurvePopUpButton", "fadeInTypeChanged:" },
    { "fadeInLengthTextField",  "LengthTimeField",  "fadeInLengthChanged:" },
    { "fadeInLengthStepper",    "XeStepper",        "fadeInLengthChanged:" },
    { "fadeOutTypePopupButton", "CurvePopUpButton", "fadeOutTypeChanged:" },
    { "fadeOutLengthTextField", "LengthTimeField",  "fadeOutLengthChanged:" },
    { "fadeOutLengthStepper",   "XeStepper",        "fadeOutLengthChanged:" },
    { "minSilenceLabel",        "XeLabel",          nullptr },
    { "minSilenceTextField",    "LengthTimeField",  "minSilenceChanged:" },
    { "minSilenceStepper",      "XeStepper",        "minSilenceChanged:" },
    { "cropStartLabel",         "XeLabel",          nullptr },
    { "cropStartTextField",     "LengthTimeField",  "cropStartChanged:" },
    { "cropStartStepper",       "XeStepper",        "cropStartChanged:" },
    { "cropLengthLabel",        "XeLabel",          nullptr },
    { "cropLengthTextField",    "LengthTimeField",  "cropLengthChanged:" },
    { "cropLengthStepper",      "XeStepper",        "cropLengthChanged:" },
    // clang-format on
};

constexpr const char* kOwnFields[] = {"mAU",
                                      "mParameter",
                                      "mEventListener",
                                      "mFunctionStrings",
                                      "mSampleRate",
                                      "mInputLength",
                                      "mTimeFormat",
                                      "mAutoPreflight",
                                      "mPreflightDirty",
                                      "mParamSetter",
                                      "mBackgroundColor"};

TEST_F(View, DeclaresItsFieldsInOrder)
{
    std::vector<std::string> expected;
    for (const OutletRow& row : kOutlets) {
        expected.emplace_back(row.name);
    }
    expected.insert(expected.end(), std::begin(kOwnFields), std::end(kOwnFields));

    open();
    unsigned count = 0;
    Ivar* const fields = class_copyIvarList(object_getClass(editor().view()), &count);
    std::vector<std::string> names;
    for (unsigned i = 0; i < count; ++i) {
        names.emplace_back(ivar_getName(fields[i]));
    }
    std::free(fields);
    EXPECT_THAT(names, ElementsAreArray(expected));
}

TEST_F(View, HasEveryOutletAndActionConnected)
{
    const OpenEditor& editor = open();
    for (const OutletRow& row : kOutlets) {
        SCOPED_TRACE(row.name);
        NSControl* const control = editor.outlet(row.name);
        EXPECT_STREQ([[control className] UTF8String], row.className);
        EXPECT_EQ([control superview], editor.view());
        if (row.action == nullptr) {
            EXPECT_TRUE([control action] == nullptr);
            continue;
        }
        EXPECT_STREQ([NSStringFromSelector([control action]) UTF8String], row.action);
        EXPECT_EQ([control target], editor.view());
    }
}

NSButton* helpButton(NSView* view)
{
    for (NSControl* control in [view subviews]) {
        if (sel_isEqual([control action], @selector(helpButtonClicked:))) {
            return (NSButton*)control;
        }
    }
    return nil;
}

TEST_F(View, HasOneHelpButtonConnected)
{
    NSButton* const button = helpButton(open().view());
    ASSERT_NE(button, nil);
    EXPECT_STREQ([[button className] UTF8String], "XeButton");
    EXPECT_EQ([button target], editor().view());
}

TEST_F(View, ExplainsEachControlInAToolTip)
{
    const OpenEditor& editor = open();
    for (const OutletRow& row : kOutlets) {
        if (row.action != nullptr) {
            NSView* const control = editor.outlet(row.name);
            EXPECT_GT([[control toolTip] length], 10u) << row.name;
        }
    }
    EXPECT_GT([[helpButton(editor.view()) toolTip] length], 10u);
}

TEST_F(View, HasOneSizeAndNoAutoresizing)
{
    TarvelCocoaView* const view = open().view();
    EXPECT_EQ([view autoresizingMask], 0u);
    EXPECT_TRUE([view postsFrameChangedNotifications]);
    for (NSView* control in [view subviews]) {
        EXPECT_EQ([control autoresizingMask], 0u);
        EXPECT_TRUE(NSContainsRect([view bounds], [control frame]));
    }
}

// On GNUstep a matrix with a cell that can be selected takes the window's field editor on a click,
// and ends its editing once more when it goes; by then the window may be gone.
TEST_F(View, TheUnitCellsAreNotForEditing)
{
    NSMatrix* const units = open().outlet("gainUnitsButtons");
    @autoreleasepool {
        ASSERT_EQ([[units cells] count], 2u);
        for (NSCell* cell in [units cells]) {
            EXPECT_FALSE([cell isSelectable]);
            EXPECT_FALSE([cell isEditable]);
        }
    }
}

bool isPopulated(NSRect rect) { return rect.size.width > 0 && rect.size.height > 0; }

TEST_F(View, LetsNoTwoControlsOverlap)
{
    NSArray* const controls = [open().view() subviews];
    for (NSUInteger i = 0; i < [controls count]; ++i) {
        for (NSUInteger j = i + 1; j < [controls count]; ++j) {
            NSControl* const first = [controls objectAtIndex:i];
            NSControl* const second = [controls objectAtIndex:j];
            EXPECT_FALSE(isPopulated(NSIntersectionRect([first frame], [second frame])))
                << [[first description] UTF8String] << " and " << [[second description] UTF8String];
        }
    }
}

TEST_F(View, ClipsNoLabel)
{
    const NSArray* const controls = [open().view() subviews];
    for (NSControl* control in controls) {
        if ([[control className] isEqualToString:@"XeLabel"]) {
            EXPECT_LE([[control cell] cellSize].width, [control frame].size.width)
                << [[control stringValue] UTF8String];
        }
    }
}

// --- drawing -------------------------------------------------------------------------------------

TEST_F(View, PaintsItsPatternBehindTheControls)
{
    TarvelCocoaView* const view = open().view();
    NSColor* const color = ivar<NSColor*>(view, "mBackgroundColor");
    ASSERT_NE(color, nil);
    NSImage* const pattern = [color patternImage];
    EXPECT_TRUE([pattern isValid]);

    const std::string path = testing::TempDir() + "editor_test-background.png";
    ASSERT_TRUE(editor_test::savePicture(view, path));
    NSBitmapImageRep* const picture = [NSBitmapImageRep
        imageRepWithData:[NSData
                             dataWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]]];
    // A strip at the left edge, where no control is: dark, and not of one colour.
    CGFloat darkest = 1;
    CGFloat lightest = 0;
    for (NSInteger y = 0; y < 32; ++y) {
        for (NSInteger x = 0; x < 8; ++x) {
            const CGFloat level = [[picture colorAtX:x y:y] greenComponent];
            darkest = std::min(darkest, level);
            lightest = std::max(lightest, level);
        }
    }
    EXPECT_LT(lightest, 0.25);
    EXPECT_GT(lightest, darkest);
    std::remove(path.c_str());
}

// --- localisation --------------------------------------------------------------------------------

// Counted since the bundle was loaded, so the test means the same alone and among others.
TEST_F(View, LocalisesOncePerProcess)
{
    open();
    EXPECT_EQ(editor_test::localisationCount(), 1);
    const OpenEditor second(&effect());
    [second.view() setAU:&effect()];
    EXPECT_EQ(editor_test::localisationCount(), 1);
}

TEST_F(View, BringsTheTableOfItsTexts)
{
    NSBundle* const bundle = editor_test::editorBundle();
    EXPECT_STREQ([[bundle bundleIdentifier] UTF8String], "audio.vanta.tarvel.view");
    EXPECT_NE([NSBundle bundleWithIdentifier:@"audio.vanta.tarvel.view"], nil);
    NSString* const path = [bundle pathForResource:@"Localizable" ofType:@"strings"];
    ASSERT_NE(path, nil);
    NSDictionary* const table = [NSDictionary dictionaryWithContentsOfFile:path];
    EXPECT_NE([table objectForKey:@"Some view-only string"], nil);
}

// --- life ----------------------------------------------------------------------------------------

TEST_F(View, ThatWasNeverBoundGoesQuietly)
{
    editor_test::AssertionRecorder assertions;
    open();
    log().take();
    @autoreleasepool {
        NSView* const unbound = [[object_getClass(editor().view()) alloc] init];
        [unbound release];
    }
    EXPECT_THAT(assertions.take(), testing::IsEmpty());
    EXPECT_THAT(log().take(), testing::IsEmpty());
}

TEST_F(View, StaysBoundOutsideOfAWindow)
{
    OpenEditor& editor = open();
    [editor.view() removeFromSuperview];
    automateAndDeliver(kTarvelParam_AttackThreshold, -11);
    EXPECT_EQ(editor.doubleValue("attackSlider"), -11);
    [[editor.window() contentView] addSubview:editor.view()];
    automateAndDeliver(kTarvelParam_AttackThreshold, -12);
    EXPECT_EQ(editor.doubleValue("attackSlider"), -12);
}

TEST_F(View, GivesBackEveryReferenceWhenItGoes)
{
    open().close();
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

TEST_F(View, OutlivesItsEffect)
{
    editor_test::AssertionRecorder assertions;
    @autoreleasepool {
        auto gone = std::make_unique<TarvelEffect>();
        OpenEditor editor(gone.get());
        const AudioUnitParameter attack{gone.get(), kTarvelParam_AttackThreshold,
                                        kAudioUnitScope_Global, 0};
        AUParameterSet(nullptr, nullptr, &attack, -5, 0);
        gone.reset();
        deliver();
        editor.type("attackTextField", @"-12");
        editor.click("gainUnitsButtons", 0.4);
        editor.click("fadeInLengthStepper", 0.5, 0.75);
        deliver();
    }
    EXPECT_THAT(assertions.take(), testing::IsEmpty());
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u);
}

TEST_F(View, TwoOfOneEffectShowTheSame)
{
    OpenEditor& first = open();
    const OpenEditor second(&effect());
    first.choose("functionPopupButton", 2);
    first.type("attackTextField", @"-33");
    deliver();
    EXPECT_EQ(second.title("functionPopupButton"), "Crop");
    EXPECT_EQ(second.doubleValue("attackSlider"), -33);
    EXPECT_EQ(first.doubleValue("attackSlider"), -33);
    EXPECT_TRUE(second.enabled("cropStartTextField"));
}

} // namespace
