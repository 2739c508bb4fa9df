#import "ControlRecorder.h"
#import "EditorTest.h"

#include <cmath>
#include <limits>

namespace {

using editor_test::ControlRecorder;
using editor_test::EditorTest;
using editor_test::OpenEditor;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class Controls : public EditorTest {
protected:
    void showPercent() { editor().click("gainUnitsButtons", 0.4); }
    void showDb() { editor().click("gainUnitsButtons", 0.05); }
};

// --- function mode -------------------------------------------------------------------------------

TEST_F(Controls, ChoosingAFunctionWritesItsIndex)
{
    OpenEditor& editor = open();
    for (const int mode : {2, 3, 1, 0}) {
        SCOPED_TRACE(mode);
        editor.choose("functionPopupButton", mode);
        EXPECT_THAT(log().take(), ElementsAreArray(write(0, mode, "functionPopupButton")));
        EXPECT_EQ(parameter(kTarvelParam_Function), mode);
    }
}

struct ModeRow {
    float value;
    const char* title;
    bool usesSilence;
    bool usesCrop;
};

constexpr ModeRow kModes[] = {
    {2, "Crop", false, true},
    {0, "Trim Start and End", false, false},
    {1, "Remove Silence", true, false},
    {3, "Fades Only", false, false},
    {1.9F, "Remove Silence", true, false}, // truncated
};

void expectUsed(const OpenEditor& editor, const std::string& name, bool used)
{
    SCOPED_TRACE(name);
    NSTextField* const label = editor.outlet((name + "Label").c_str());
    NSColor* const color = used ? [NSColor whiteColor] : [NSColor lightGrayColor];
    EXPECT_TRUE([[label textColor] isEqual:color]);
    for (const char* part : {"TextField", "Stepper"}) {
        NSControl* const control = editor.outlet((name + part).c_str());
        EXPECT_EQ([control isEnabled], used);
        EXPECT_FALSE([control isHidden]);
    }
    EXPECT_FALSE([label isHidden]);
}

TEST_F(Controls, EachModeEnablesOnlyTheLengthsItUses)
{
    OpenEditor& editor = open();
    for (const ModeRow& mode : kModes) {
        SCOPED_TRACE(mode.value);
        automateAndDeliver(kTarvelParam_Function, mode.value);
        EXPECT_EQ(editor.title("functionPopupButton"), mode.title);
        expectUsed(editor, "minSilence", mode.usesSilence);
        expectUsed(editor, "cropStart", mode.usesCrop);
        expectUsed(editor, "cropLength", mode.usesCrop);
        for (const char* name : {"fadeInLengthTextField", "fadeOutLengthStepper", "attackSlider",
                                 "releaseTextField", "fadeInTypePopupButton"}) {
            EXPECT_TRUE(editor.enabled(name));
        }
    }
}

TEST_F(Controls, TheOwnChoiceGreysOnlyWhenTheEventComesBack)
{
    OpenEditor& editor = open();
    editor.choose("functionPopupButton", 2);
    expectUsed(editor, "cropStart", false);
    deliver();
    expectUsed(editor, "cropStart", true);
}

// --- thresholds: shown ---------------------------------------------------------------------------

struct ThresholdRow {
    float db;
    double shownDb;
    double percent;
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr ThresholdRow kThresholds[] = {
    {-20, -20, 10}, {-60, -kInfinity, 0},      {-59.9F, -59.900001525878906, 0.101157927655},
    {0, 0, 100},    {-6, -6, 50.118723362727},
};

TEST_F(Controls, AThresholdShowsInTheChosenUnit)
{
    OpenEditor& editor = open();
    for (const bool percent : {false, true}) {
        SCOPED_TRACE(percent ? "percent" : "dB");
        percent ? showPercent() : showDb();
        for (const ThresholdRow& row : kThresholds) {
            SCOPED_TRACE(row.db);
            for (const UInt32 id : {kTarvelParam_AttackThreshold, kTarvelParam_ReleaseThreshold}) {
                const std::string name = id == kTarvelParam_AttackThreshold ? "attack" : "release";
                ControlRecorder recorder(editor, {name + "Slider", name + "TextField"});
                automateAndDeliver(id, row.db);
                EXPECT_FLOAT_EQ(editor.doubleValue((name + "Slider").c_str()), row.db);
                const std::vector<std::string> lines = recorder.take();
                ASSERT_EQ(lines.size(), 2u)
                    << testing::PrintToString(lines); // the slider first, then the text
                EXPECT_THAT(lines[0], testing::StartsWith(name + "Slider setDoubleValue: "));
                const std::string text = name + "TextField setDoubleValue: ";
                ASSERT_THAT(lines[1], testing::StartsWith(text));
                const double shown = std::stod(lines[1].substr(text.size()));
                if (percent) {
                    EXPECT_NEAR(shown, row.percent, 1e-6);
                } else if (std::isinf(row.shownDb)) {
                    EXPECT_EQ(shown, row.shownDb);
                } else {
                    EXPECT_NEAR(shown, row.shownDb, 1e-6);
                }
            }
        }
    }
}

TEST_F(Controls, TheLowestThresholdReadsMinusInfinityInDbAndZeroInPercent)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -60);
    EXPECT_EQ(editor.text("attackTextField"), "-Inf.");
    showPercent();
    EXPECT_EQ(std::stod(editor.text("attackTextField")), 0.0);
    showDb();
    EXPECT_EQ(editor.text("attackTextField"), "-Inf.");
    automateAndDeliver(kTarvelParam_AttackThreshold, -59.9F);
    EXPECT_NE(editor.text("attackTextField"), "-Inf.");
}

// --- gain units ----------------------------------------------------------------------------------

TEST_F(Controls, TheUnitIsChosenByRealClicksAndWritesNothing)
{
    OpenEditor& editor = open();
    EXPECT_EQ([editor.outlet("gainUnitsButtons") selectedColumn], 0);
    showPercent();
    EXPECT_EQ([editor.outlet("gainUnitsButtons") selectedColumn], 1);
    showDb();
    EXPECT_EQ([editor.outlet("gainUnitsButtons") selectedColumn], 0);
    EXPECT_THAT(log().take(), IsEmpty());
}

TEST_F(Controls, TheUnitSetsTheFieldsRanges)
{
    OpenEditor& editor = open();
    for (const bool percent : {true, false}) {
        SCOPED_TRACE(percent ? "percent" : "dB");
        ControlRecorder recorder(editor, {"attackTextField", "releaseTextField"});
        percent ? showPercent() : showDb();
        EXPECT_THAT(recorder.take({"setMinFinity"}),
                    ElementsAre(percent ? "attackTextField setMinFinity: 0"
                                        : "attackTextField setMinFinity: 1",
                                percent ? "releaseTextField setMinFinity: 0"
                                        : "releaseTextField setMinFinity: 1"));
        for (const char* name : {"attackTextField", "releaseTextField"}) {
            NSNumberFormatter* const formatter = [editor.outlet(name) formatter];
            EXPECT_EQ([(id)[formatter minimum] doubleValue], percent ? 0 : -60);
            EXPECT_EQ([(id)[formatter maximum] doubleValue], percent ? 100 : 0);
        }
    }
}

TEST_F(Controls, SwitchingTheUnitConvertsFromTheSliderNotFromTheText)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    [editor.outlet("attackTextField") setDoubleValue:-3];
    [editor.outlet("releaseSlider") setDoubleValue:-40];
    showPercent();
    EXPECT_NEAR(editor.doubleValue("attackTextField"), 10, 1e-6);
    EXPECT_NEAR(editor.doubleValue("releaseTextField"), 1, 1e-6);
}

// A threshold below the range stands at the slider's end, and that end is what is converted.
TEST_F(Controls, SwitchingTheUnitOfAThresholdBelowTheRangeShowsTheSlidersEnd)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -72);
    EXPECT_EQ(editor.doubleValue("attackSlider"), -60);
    showPercent();
    showDb();
    EXPECT_EQ(editor.text("attackTextField"), "-Inf.");
}

TEST_F(Controls, NoChosenUnitMeansPercent)
{
    OpenEditor& editor = open();
    NSMatrix* const units = editor.outlet("gainUnitsButtons");
    [units setAllowsEmptySelection:YES];
    [units deselectAllCells];
    ASSERT_EQ([units selectedColumn], -1);
    ControlRecorder recorder(editor, {"attackTextField"});
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    EXPECT_THAT(recorder.take(), ElementsAre("attackTextField setDoubleValue: 10"));
}

// --- thresholds: typed ---------------------------------------------------------------------------

struct TypedRow {
    bool percent;
    NSString* text;
    double db;
};

const TypedRow kTyped[] = {
    {false, @"-12", -12}, {false, @"-60", -60},   {false, @"0", 0},  {false, @"-33.5", -33.5},
    {true, @"0", -60},    {true, @"50", -6.0206}, {true, @"100", 0}, {true, @"10", -20},
};

TEST_F(Controls, ATypedThresholdIsWrittenInDb)
{
    OpenEditor& editor = open();
    for (const UInt32 id : {kTarvelParam_AttackThreshold, kTarvelParam_ReleaseThreshold}) {
        const std::string name = id == kTarvelParam_AttackThreshold ? "attack" : "release";
        const std::string field = name + "TextField";
        for (const TypedRow& row : kTyped) {
            SCOPED_TRACE(name + " " + [row.text UTF8String] + (row.percent ? " %" : " dB"));
            row.percent ? showPercent() : showDb();
            automateAndDeliver(id, -45);
            editor.type(field.c_str(), row.text);
            EXPECT_NEAR(parameter(id), row.db, 1e-4);
            EXPECT_THAT(log().take(), ElementsAreArray(write(id, parameter(id), field)));
            deliver();
            EXPECT_NEAR(editor.doubleValue((name + "Slider").c_str()), row.db, 1e-4);
        }
    }
}

TEST_F(Controls, ThresholdsFromOtherSendersAreTheSliders)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -25);
    automateAndDeliver(kTarvelParam_ReleaseThreshold, -35);
    [editor.outlet("attackTextField") setDoubleValue:-3];
    [editor.outlet("releaseTextField") setDoubleValue:-3];
    [editor.view() attackChanged:editor.outlet("releaseTextField")];
    [editor.view() releaseChanged:editor.outlet("attackTextField")];
    EXPECT_EQ(parameter(kTarvelParam_AttackThreshold), -25);
    EXPECT_EQ(parameter(kTarvelParam_ReleaseThreshold), -35);
}

TEST_F(Controls, TheSliderAlwaysWorksInDb)
{
    OpenEditor& editor = open();
    showPercent();
    [editor.window() makeFirstResponder:editor.outlet("attackSlider")];
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    const unichar up = NSUpArrowFunctionKey;
    gui_test::pressKey(editor.window(), [NSString stringWithCharacters:&up length:1],
                       NSFunctionKeyMask);
    // An attached slider's key step is a write without a gesture of its own.
    EXPECT_THAT(log().take(),
                ElementsAre("AUParameterSet listener 1 1 global/0 value -19 object attackSlider"));
}

TEST_F(Controls, ADragOfASliderIsOneGesture)
{
    OpenEditor& editor = open();
    for (const std::string name : {"attackSlider", "releaseSlider"}) {
        SCOPED_TRACE(name);
        const std::string id = name == "attackSlider" ? "1" : "2";
        gui_test::drag(editor.window(),
                       {editor.point(name.c_str(), 0.3, 0.5), editor.point(name.c_str(), 0.5, 0.5),
                        editor.point(name.c_str(), 0.7, 0.5)});
        const std::vector<std::string> lines = log().take();
        ASSERT_GE(lines.size(), 3u);
        const std::string notify = "AUEventListenerNotify listener 1 ";
        const std::string address = " " + id + " global/0 object " + name;
        EXPECT_EQ(lines.front(), notify + "begin-gesture" + address);
        EXPECT_EQ(lines.back(), notify + "end-gesture" + address);
        for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
            EXPECT_THAT(lines[i],
                        testing::StartsWith("AUParameterSet listener 1 " + id + " global/0 value"));
        }
        EXPECT_NEAR(editor.doubleValue(name.c_str()), -18, 3);
    }
}

TEST_F(Controls, ADoubleClickOnASliderRestoresItsDefault)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    [editor.outlet("attackSlider")
        mouseDown:gui_test::mouseEvent(editor.window(), NSLeftMouseDown,
                                       editor.point("attackSlider", 0.5, 0.5), 2)];
    EXPECT_THAT(log().take(),
                ElementsAre("AUParameterSet listener 1 1 global/0 value -48 object attackSlider"));
}

// --- curves --------------------------------------------------------------------------------------

TEST_F(Controls, AChosenCurveIsWrittenAsItsCode)
{
    OpenEditor& editor = open();
    const std::pair<const char*, UInt32> buttons[] = {
        {"fadeInTypePopupButton", kTarvelParam_FadeInType},
        {"fadeOutTypePopupButton", kTarvelParam_FadeOutType}};
    for (const auto& [name, id] : buttons) {
        SCOPED_TRACE(name);
        for (NSInteger item = [editor.outlet(name) numberOfItems] - 1; item >= 0; --item) {
            editor.choose(name, item);
            EXPECT_THAT(log().take(), ElementsAreArray(write(id, editor.curve(name), name)));
        }
    }
}

TEST_F(Controls, ACurveIsReadFromItsOwnButtonWhoeverSends)
{
    OpenEditor& editor = open();
    automateAndDeliver(kTarvelParam_FadeInType, 3);
    automateAndDeliver(kTarvelParam_FadeOutType, 1);
    [editor.view() fadeInTypeChanged:editor.outlet("fadeOutTypePopupButton")];
    EXPECT_THAT(log().take(), ElementsAreArray(write(3, 3, "fadeOutTypePopupButton")));
    [editor.view() fadeOutTypeChanged:editor.outlet("fadeInTypePopupButton")];
    EXPECT_THAT(log().take(), ElementsAreArray(write(5, 1, "fadeInTypePopupButton")));
}

TEST_F(Controls, ACurveEventSelectsTheCurve)
{
    OpenEditor& editor = open();
    for (const float code : {4.0F, 0.0F, 2.9F}) { // truncated
        automateAndDeliver(kTarvelParam_FadeInType, code);
        automateAndDeliver(kTarvelParam_FadeOutType, 4 - code);
        EXPECT_EQ(editor.curve("fadeInTypePopupButton"), static_cast<int>(code));
        EXPECT_EQ(editor.curve("fadeOutTypePopupButton"), static_cast<int>(4 - code));
    }
}

} // namespace

// --- help ----------------------------------------------------------------------------------------

@interface HelpListener : NSObject {
@public
    std::vector<NSNotification*> requests; // owned
}
@end

@implementation HelpListener

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    for (NSNotification* request : requests) {
        [request release];
    }
    [super dealloc];
}

- (void)helpRequested:(NSNotification*)request
{
    requests.push_back([request retain]);
}

@end

namespace {

TEST_F(Controls, TheHelpButtonAsksForItsPageOnce)
{
    OpenEditor& editor = open();
    HelpListener* const listener = [[[HelpListener alloc] init] autorelease];
    [[NSNotificationCenter defaultCenter] addObserver:listener
                                             selector:@selector(helpRequested:)
                                                 name:@"XeHelpNotification"
                                               object:nil];
    NSControl* button = nil;
    for (NSControl* control in [editor.view() subviews]) {
        if (sel_isEqual([control action], @selector(helpButtonClicked:))) {
            button = control;
        }
    }
    gui_test::drag(editor.window(), {gui_test::centerOf(button)});
    ASSERT_EQ(listener->requests.size(), 1u);
    NSDictionary* const info = [listener->requests[0] userInfo];
    EXPECT_EQ([[info objectForKey:@"anchor"] intValue], 11);
    EXPECT_EQ([[info objectForKey:@"parent"] pointerValue], nullptr);
    EXPECT_EQ([listener->requests[0] object], nil);
    EXPECT_THAT(log().take(), IsEmpty());
}

} // namespace
