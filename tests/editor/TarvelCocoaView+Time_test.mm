#import "ControlRecorder.h"
#import "EditorTest.h"

namespace {

using editor_test::ControlRecorder;
using editor_test::EditorTest;
using editor_test::ivar;
using editor_test::OpenEditor;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr UInt32 kSamples = 0;
constexpr UInt32 kSmpte25 = 9;

struct LengthRow {
    UInt32 parameter;
    const char* field;
    const char* stepper;
};

constexpr LengthRow kLengths[] = {
    // clang-format off
    { 4, "fadeInLengthTextField",  "fadeInLengthStepper" },
    { 6, "fadeOutLengthTextField", "fadeOutLengthStepper" },
    { 7, "minSilenceTextField",    "minSilenceStepper" },
    { 8, "cropStartTextField",     "cropStartStepper" },
    { 9, "cropLengthTextField",    "cropLengthStepper" },
    // clang-format on
};

class Time : public EditorTest {
protected:
    /// Puts the effect into a mode that uses the length.
    void enable(const LengthRow& length)
    {
        automateAndDeliver(kTarvelParam_Function, length.parameter == 7 ? 1 : 2);
    }

    void showSamples()
    {
        setTimeFormat(kSamples);
        deliver();
        log().take();
    }
};

// --- milliseconds to samples ---------------------------------------------------------------------

struct ShownRow {
    double rate;
    float ms;
    long long samples;
};

constexpr ShownRow kShown[] = {
    {44100, 1000, 44100},         {44100, 1, 44}, {48000, 1, 48}, {44100, 0, 0},
    {192000, 3600000, 691200000},
};

TEST_F(Time, ALengthShowsInWholeSamplesInBothControls)
{
    OpenEditor& editor = open();
    for (const ShownRow& row : kShown) {
        SCOPED_TRACE(testing::Message() << row.ms << " ms at " << row.rate << " Hz");
        effect().setInputLength(1000000000);
        effect().setSampleRate(row.rate);
        [editor.view() setAU:&effect()];
        // From 100 ms the minimum silence is in its range too.
        for (const LengthRow& length : kLengths) {
            SCOPED_TRACE(length.field);
            automateAndDeliver(length.parameter, row.ms);
            EXPECT_EQ(editor.samples(length.field), row.samples);
            if (length.parameter != 7 || row.ms >= 100) {
                EXPECT_EQ(editor.samples(length.stepper), row.samples);
            }
        }
    }
}

TEST_F(Time, TheTextFieldIsSetBeforeItsStepper)
{
    OpenEditor& editor = open();
    ControlRecorder recorder(editor, {"cropStartTextField", "cropStartStepper"});
    automateAndDeliver(kTarvelParam_CropStart, 1000);
    EXPECT_THAT(recorder.take(), ElementsAre("cropStartTextField setObjectValue: 44100",
                                             "cropStartStepper setIntegerValue: 44100"));
}

// --- samples to milliseconds ---------------------------------------------------------------------

TEST_F(Time, ATypedLengthIsWrittenInMilliseconds)
{
    OpenEditor& editor = open();
    showSamples();
    for (const LengthRow& length : kLengths) {
        SCOPED_TRACE(length.field);
        enable(length);
        automateAndDeliver(length.parameter, 500);
        editor.type(length.field, @"44100");
        EXPECT_THAT(log().take(), ElementsAreArray(write(length.parameter, 1000, length.field)));
        // The partner follows the event, not the typing.
        EXPECT_EQ(editor.samples(length.stepper), 22050);
        deliver();
        EXPECT_EQ(editor.samples(length.stepper), 44100);
    }
}

TEST_F(Time, AStepperWritesAndTheTextFollowsTheEvent)
{
    OpenEditor& editor = open();
    showSamples();
    for (const LengthRow& length : kLengths) {
        SCOPED_TRACE(length.stepper);
        enable(length);
        automateAndDeliver(length.parameter, 1000);
        editor.click(length.stepper, 0.5, 0.75);
        EXPECT_EQ(editor.samples(length.stepper), 44101);
        EXPECT_EQ(editor.samples(length.field), 44100);
        EXPECT_THAT(
            log().take(),
            ElementsAreArray(write(length.parameter, static_cast<float>(44101 * 1000.0 / 44100.0),
                                   length.stepper)));
        deliver();
        // 44101 samples do not survive a single-precision count of milliseconds exactly.
        EXPECT_NEAR(editor.samples(length.field), 44101, 1);
        editor.click(length.stepper, 0.5, 0.25);
        EXPECT_NEAR(editor.samples(length.stepper), 44100, 1);
        log().take();
        deliver();
    }
}

TEST_F(Time, TheSampleRateOfTheMomentConverts)
{
    OpenEditor& editor = open();
    effect().setSampleRate(96000);
    deliver();
    showSamples();
    editor.type("fadeInLengthTextField", @"48000");
    EXPECT_EQ(parameter(kTarvelParam_FadeInLength), 500);
}

TEST_F(Time, WithoutASampleRateNothingIsWritten)
{
    probe().inject({"AudioUnitGetProperty", kAudioUnitProperty_SampleRate, 0, -10879});
    OpenEditor& editor = open();
    EXPECT_EQ(ivar<Float64>(editor.view(), "mSampleRate"), 0);
    [editor.view() _lengthChangedForParam:4 fromObject:editor.outlet("fadeInLengthTextField")];
    EXPECT_THAT(log().take(), IsEmpty());
}

// --- ranges and steps ----------------------------------------------------------------------------

TEST_F(Time, AppliesRateAndFormatThenRangesInOrder)
{
    OpenEditor& editor = open();
    effect().setInputLength(1000000);
    std::vector<std::string> names;
    std::vector<std::string> expected;
    for (const LengthRow& length : kLengths) {
        const std::string field = length.field;
        names.insert(names.end(), {field, length.stepper});
        expected.insert(expected.end(),
                        {field + " setFrameAndSampleRate: 44100", field + " setFormat: 9"});
    }
    expected.emplace_back("fadeInLengthTextField getIncrement");
    const auto addRange = [&expected](const std::string& stepper, const std::string& minimum) {
        expected.insert(expected.end(),
                        {stepper + " setMinValue: " + minimum, stepper + " setMaxValue: 1000000",
                         stepper + " setIncrement: 1764"}); // 44100 / 25
    };
    for (const int i : {0, 1, 3, 4}) {
        addRange(kLengths[i].stepper, "0");
    }
    expected.insert(expected.end(), {"minSilenceTextField setMinValue: 4410",
                                     "minSilenceTextField setMaxValue: 1000000"});
    addRange("minSilenceStepper", "4410");

    setTimeFormat(kSmpte25);
    [editor.view() setAU:&effect()];
    ControlRecorder recorder(editor, names);
    [editor.view() _updateTimeControls];
    EXPECT_THAT(recorder.take(), ElementsAreArray(expected));
}

struct RangeRow {
    double rate;
    UInt64 inputLength;
    double longest;
    double shortestSilence;
};

constexpr RangeRow kRanges[] = {
    {48000, 0, 172800000, 4800},
    {44100, 0, 158760000, 4410},
    {44100, 123456, 123456, 4410},
    {11025, 5000000000, 5000000000, 1102}, // beyond 32 bits
};

TEST_F(Time, TheMaterialLimitsTheSteppersOrOneHourDoes)
{
    for (const RangeRow& row : kRanges) {
        SCOPED_TRACE(testing::Message() << row.inputLength << " samples at " << row.rate << " Hz");
        effect().setSampleRate(row.rate);
        effect().setInputLength(row.inputLength);
        const OpenEditor editor(&effect());
        for (const LengthRow& length : kLengths) {
            NSStepper* const stepper = editor.outlet(length.stepper);
            EXPECT_EQ([stepper maxValue], row.longest);
            EXPECT_EQ([stepper minValue], length.parameter == 7 ? row.shortestSilence : 0);
        }
    }
}

TEST_F(Time, OnlyTheMinimumSilenceFieldHasLimits)
{
    OpenEditor& editor = open();
    effect().setInputLength(100000);
    [editor.view() setAU:&effect()];
    showSamples();
    automateAndDeliver(kTarvelParam_Function, 1);
    editor.type("fadeInLengthTextField", @"441000"); // longer than the material
    EXPECT_EQ(parameter(kTarvelParam_FadeInLength), 10000);
    editor.type("minSilenceTextField", @"441");
    EXPECT_EQ(parameter(kTarvelParam_MinSilence), 100);
    editor.type("minSilenceTextField", @"441000");
    EXPECT_EQ(parameter(kTarvelParam_MinSilence), static_cast<float>(100000 * 1000.0 / 44100));
}

// --- the format menu -----------------------------------------------------------------------------

NSMenuItem* formatItem(const OpenEditor& editor, NSInteger format)
{
    NSMenu* const menu = [editor.outlet("cropStartTextField") menu];
    return (NSMenuItem*)[menu itemWithTag:format];
}

void chooseFormat(const OpenEditor& editor, NSInteger format)
{
    NSMenu* const menu = [editor.outlet("cropStartTextField") menu];
    [menu performActionForItemAtIndex:[menu indexOfItem:formatItem(editor, format)]];
}

TEST_F(Time, ChoosingAFormatWritesItOnceAndShowsItWhenTheEffectAnnouncesIt)
{
    OpenEditor& editor = open();
    ControlRecorder recorder(editor, {"fadeInLengthTextField"});
    chooseFormat(editor, kSmpte25);
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitSetProperty 9000 global/0 size 4"));
    UInt32 stored = 0;
    effect().getProperty(kTarvelProperty_TimeFormat, kAudioUnitScope_Global, 0, &stored);
    EXPECT_EQ(stored, kSmpte25);
    // The run at once still has the format of before.
    EXPECT_THAT(recorder.take({"setFormat", "setFrameAndSampleRate"}),
                ElementsAre("fadeInLengthTextField setFrameAndSampleRate: 44100",
                            "fadeInLengthTextField setFormat: 1"));
    deliver();
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 9000 global/0 size 4"));
    EXPECT_THAT(recorder.take({"setFormat"}), ElementsAre("fadeInLengthTextField setFormat: 9"));
}

TEST_F(Time, AFormatTheEffectRefusesChangesNothing)
{
    editor_test::AssertionRecorder assertions;
    OpenEditor& editor = open();
    fail("AudioUnitSetProperty");
    chooseFormat(editor, kSmpte25);
    deliver();
    EXPECT_EQ(ivar<UInt32>(editor.view(), "mTimeFormat"), 1u);
    EXPECT_THAT(assertions.take(), IsEmpty());
}

TEST_F(Time, TheTickFollowsTheFadeInFieldsFormat)
{
    OpenEditor& editor = open();
    NSMenu* const menu = [editor.outlet("cropStartTextField") menu];
    for (const UInt32 format : {9U, 0U, 8U, 1U}) {
        SCOPED_TRACE(format);
        setTimeFormat(format);
        deliver();
        [menu update];
        for (NSMenuItem* item in [menu itemArray]) {
            if ([item isSeparatorItem]) {
                continue;
            }
            EXPECT_EQ([item state] == NSOnState, [item tag] == static_cast<NSInteger>(format));
            EXPECT_TRUE([item isEnabled]);
        }
    }
}

TEST_F(Time, OtherItemsAreLeftAlone)
{
    OpenEditor& editor = open();
    NSMenuItem* const other = [[[NSMenuItem alloc] initWithTitle:@"Other"
                                                          action:@selector(copy:)
                                                   keyEquivalent:@""] autorelease];
    [other setTag:1]; // the format in use
    [other setState:NSMixedState];
    EXPECT_TRUE([editor.view() validateUserInterfaceItem:(id)other]);
    EXPECT_EQ([other state], NSMixedState);
}

} // namespace

// An item that has an action and a tag but no state.
@interface StatelessItem : NSObject
@end

@implementation StatelessItem
- (SEL)action
{
    return @selector(onFormatMenuAction:);
}
- (NSInteger)tag
{
    return 1;
}
@end

namespace {

TEST_F(Time, AnItemWithoutAStateIsLeftAlone)
{
    StatelessItem* const item = [[[StatelessItem alloc] init] autorelease];
    EXPECT_TRUE([open().view() validateUserInterfaceItem:(id)item]);
}

TEST_F(Time, OnlyTheLow32BitsOfTheTagCount)
{
    OpenEditor& editor = open();
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"Wide"
                                                         action:@selector(onFormatMenuAction:)
                                                  keyEquivalent:@""] autorelease];
    [item setTag:(NSInteger{1} << 32) | kSmpte25];
    [editor.view() onFormatMenuAction:item];
    deliver();
    EXPECT_EQ(ivar<UInt32>(editor.view(), "mTimeFormat"), kSmpte25);
}

} // namespace
