#import "ControlRecorder.h"
#import "EditorTest.h"
#import "XeTry.h"

#include "host/effect/HostMusic.h"

#include <utility>

namespace {

using editor_test::AssertionRecorder;
using editor_test::ControlRecorder;
using editor_test::EditorTest;
using editor_test::ivar;
using editor_test::OpenEditor;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

// Display formats as the effect stores them.
constexpr UInt32 kFrames = 4;
constexpr UInt32 kSmpte25 = 9;
constexpr UInt32 kSmpte24 = 10;

const char* const kLengthFields[] = {"fadeInLengthTextField", "fadeOutLengthTextField",
                                     "minSilenceTextField", "cropStartTextField",
                                     "cropLengthTextField"};

class Binding : public EditorTest {
protected:
    void rebind()
    {
        log().take();
        [editor().view() setAU:&effect()];
    }

    void send(UInt32 eventType, UInt32 number, float value)
    {
        AudioUnitEvent event{};
        event.mEventType = eventType;
        event.mArgument.mParameter = {&effect(), number, kAudioUnitScope_Global, 0};
        TarvelCocoaView* const view = editor().view();
        [view _eventListener:nil event:&event value:value];
    }

    void sendProperty(AudioUnitPropertyID property, float value = 0)
    {
        send(kAudioUnitEvent_PropertyChange, property, value);
    }

    void setSampleRateSilently(Float64 rate)
    {
        effect().setSampleRate(rate);
        deliver();
        log().take();
    }
};

// --- the order of the host's calls ---------------------------------------------------------------

Lines registering(const std::string& listener, const std::string& object)
{
    Lines lines{"AUEventListenerCreate interval 0.05 granularity 0.05"};
    const std::string add = "AUEventListenerAddEventType " + listener + " ";
    for (const char* event :
         {"value-change 0 global/0", "value-change 1 global/0", "value-change 2 global/0",
          "value-change 3 global/0", "value-change 4 global/0", "value-change 5 global/0",
          "value-change 6 global/0", "value-change 7 global/0", "value-change 8 global/0",
          "value-change 9 global/0", "property-change 64000 global/0",
          "property-change 64001 global/0", "property-change 9000 global/0",
          "property-change 8 output/0"}) {
        lines.push_back(add + event + " object " + object);
    }
    return lines;
}

const Lines kReadLengths = {"AudioUnitGetParameter 4 global/0", "AudioUnitGetParameter 6 global/0",
                            "AudioUnitGetParameter 7 global/0", "AudioUnitGetParameter 8 global/0",
                            "AudioUnitGetParameter 9 global/0"};

Lines synchronising(bool rateIsNew)
{
    Lines lines{"AudioUnitGetProperty 16 global/0 size 8",
                "AudioUnitGetProperty 27 global/0 size 40",
                "AudioUnitGetProperty 2 global/0 size 8"};
    if (rateIsNew) {
        lines.insert(lines.end(), kReadLengths.begin(), kReadLengths.end());
    }
    for (const char* line :
         {"AudioUnitGetProperty 3020 global/0 size 8", "AudioUnitGetProperty 9000 global/0 size 4",
          "AudioUnitGetProperty 64000 global/0 size 4",
          "AudioUnitGetProperty 64001 global/0 size 4", "AudioUnitGetParameter 0 global/0",
          "AudioUnitGetParameter 1 global/0", "AudioUnitGetParameter 2 global/0",
          "AudioUnitGetParameter 3 global/0", "AudioUnitGetParameter 4 global/0",
          "AudioUnitGetParameter 5 global/0", "AudioUnitGetParameter 6 global/0",
          "AudioUnitGetParameter 7 global/0", "AudioUnitGetParameter 8 global/0",
          "AudioUnitGetParameter 9 global/0"}) {
        lines.emplace_back(line);
    }
    return lines;
}

Lines operator+(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(Binding, RegistersThenReadsTheWholeState)
{
    log().take();
    const OpenEditor editor(&effect());
    EXPECT_THAT(log().take(),
                ElementsAreArray(registering("listener 1", "#1") + synchronising(true)));
}

TEST_F(Binding, AgainDisposesTheFirstListenerBeforeMakingTheSecond)
{
    open();
    rebind();
    EXPECT_THAT(log().take(),
                ElementsAreArray(Lines{"AUListenerDispose listener 1"} +
                                 registering("listener 2", "view") + synchronising(false)));
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 1u);
}

TEST_F(Binding, ToAnotherEffectMovesEveryRegistration)
{
    OpenEditor& editor = open();
    TarvelEffect other;
    [editor.view() setAU:&other];
    automateAndDeliver(kTarvelParam_AttackThreshold, -20);
    EXPECT_EQ(editor.doubleValue("attackSlider"), -48);

    const AudioUnitParameter attack{&other, kTarvelParam_AttackThreshold, kAudioUnitScope_Global,
                                    0};
    AUParameterSet(nullptr, nullptr, &attack, -30, 0);
    deliver();
    EXPECT_EQ(editor.doubleValue("attackSlider"), -30);
    editor.close();
}

TEST_F(Binding, ClosingDisposesTheListenerAndCallsNothingElse)
{
    open().close();
    EXPECT_THAT(log().take(), ElementsAre("AUListenerDispose listener 1"));
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u);
    EXPECT_EQ(audiounit_compat::livePropertyListenerCount(), 0u);
}

TEST_F(Binding, FillsTheParameterRecords)
{
    open();
    struct Records {
        AudioUnitParameter all[10];
    };
    const auto [records] = ivar<Records>(editor().view(), "mParameter");
    for (UInt32 id = 0; id < 10; ++id) {
        SCOPED_TRACE(id);
        EXPECT_EQ(records[id].mAudioUnit, &effect());
        EXPECT_EQ(records[id].mParameterID, id);
        EXPECT_EQ(records[id].mScope, kAudioUnitScope_Global);
        EXPECT_EQ(records[id].mElement, 0u);
    }
}

// --- failed calls --------------------------------------------------------------------------------

const char* const kCreateFailed = "[TarvelCocoaView _addListeners] AUEventListenerCreate()";
const char* const kAddFailed = "[TarvelCocoaView _addListeners] AUEventListenerAddEventType()";
const char* const kDisposeFailed = "[TarvelCocoaView _removeListeners] AUListenerDispose()";
const char* const kReadFailed = "[TarvelCocoaView synchronizeUIWithParameterValues] (x.1)";

TEST_F(Binding, AFailedListenerIsAnAssertionAndBindingGoesOn)
{
    AssertionRecorder assertions;
    fail("AUEventListenerCreate");
    const OpenEditor editor(&effect());
    // Without a listener each of the fourteen registrations fails too.
    EXPECT_THAT(assertions.take(), ElementsAreArray(Lines{kCreateFailed} + Lines(14, kAddFailed)));
    EXPECT_EQ(editor.doubleValue("attackSlider"), -48);
}

TEST_F(Binding, AnAssertionNamesTheMethodTheViewAndTheSource)
{
    open();
    AssertionRecorder assertions;
    const auto expectNames = [&](const char* method) {
        SCOPED_TRACE(method);
        const std::vector<editor_test::Failure> failures = assertions.takeFailures();
        ASSERT_EQ(failures.size(), 1u);
        EXPECT_EQ(failures[0].method, method);
        EXPECT_EQ(failures[0].file, "TarvelCocoaView+Binding.mm");
        EXPECT_EQ(failures[0].object, editor().view());
    };
    fail("AUEventListenerAddEventType", {}, 3);
    rebind();
    expectNames("_addListeners");
    fail("AudioUnitGetParameter", {}, 3);
    rebind();
    expectNames("_synchronizeUIWithParameterValues");
    const auto listener = ivar<AUEventListenerRef>(editor().view(), "mEventListener");
    fail("AUListenerDispose", {}, 1);
    rebind();
    expectNames("_removeListeners");
    EXPECT_EQ(AUListenerDispose(listener), noErr);
}

// The platform's own handler raises. The half-bound view goes with the host's pool.
TEST_F(Binding, WithThePlatformsHandlerAFailureEndsOpeningWithAnException)
{
    fail("AUEventListenerAddEventType", {}, 5);
    char text[500] = "";
    @autoreleasepool {
        const auto openOne = [](void* unit) {
            [editor_test::newFactory() uiViewForAudioUnit:(AudioUnit)unit withSize:NSZeroSize];
        };
        EXPECT_EQ(XeTry(openOne, &effect(), text, sizeof text), 1);
        EXPECT_EQ(audiounit_compat::liveListenerCount(), 1u);
    }
    EXPECT_THAT(text, testing::StartsWith("NSInternalInconsistencyException: "));
    EXPECT_THAT(text, testing::HasSubstr(kAddFailed));
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u);
}

TEST_F(Binding, EachFailedRegistrationIsAnAssertionAndBindingGoesOn)
{
    for (int nth = 1; nth <= 14; ++nth) {
        SCOPED_TRACE(nth);
        AssertionRecorder assertions;
        probe().clearFaults();
        fail("AUEventListenerAddEventType", {}, nth);
        log().take();
        const OpenEditor editor(&effect());
        EXPECT_THAT(assertions.take(), ElementsAre(kAddFailed));
        EXPECT_EQ(log().take().size(), (registering("", "") + synchronising(true)).size());
    }
}

TEST_F(Binding, EachUnreadableParameterIsAnAssertionAndShowsZero)
{
    for (UInt32 id = 0; id < 10; ++id) {
        SCOPED_TRACE(id);
        AssertionRecorder assertions;
        probe().clearFaults();
        // The lengths are read once before, when the sample rate becomes known; that read may
        // fail without a word.
        fail("AudioUnitGetParameter", id);
        const OpenEditor editor(&effect());
        EXPECT_THAT(assertions.take(), ElementsAre(kReadFailed));
    }
}

TEST_F(Binding, AFailedDisposalIsAnAssertionAndClosingGoesOn)
{
    AssertionRecorder assertions;
    open();
    const auto listener = ivar<AUEventListenerRef>(editor().view(), "mEventListener");
    fail("AUListenerDispose", {}, 1);
    editor().close();
    EXPECT_THAT(assertions.take(), ElementsAre(kDisposeFailed));
    EXPECT_EQ(AUListenerDispose(listener), noErr); // it outlived its view
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

TEST_F(Binding, AFailedDisposalDoesNotStopBindingAgain)
{
    AssertionRecorder assertions;
    open();
    const auto listener = ivar<AUEventListenerRef>(editor().view(), "mEventListener");
    fail("AUListenerDispose", {}, 1);
    rebind();
    EXPECT_THAT(assertions.take(), ElementsAre(kDisposeFailed));
    EXPECT_THAT(log().take(),
                ElementsAreArray(Lines{"AUListenerDispose listener 1 -> -10879"} +
                                 registering("listener 2", "view") + synchronising(false)));
    EXPECT_EQ(AUListenerDispose(listener), noErr);
}

TEST_F(Binding, UnreadablePropertiesAreNoAssertionAndKeepWhatWasThere)
{
    effect().setSampleRate(48000);
    effect().setInputLength(777);
    open();
    AssertionRecorder assertions;
    fail("AudioUnitGetProperty");
    rebind();
    EXPECT_THAT(assertions.take(), IsEmpty());
    EXPECT_EQ(ivar<Float64>(editor().view(), "mSampleRate"), 48000);
    EXPECT_EQ(ivar<UInt64>(editor().view(), "mInputLength"), 777u);
}

TEST_F(Binding, LengthReadsOfARateChangeAreNotChecked)
{
    open();
    AssertionRecorder assertions;
    fail("AudioUnitGetParameter");
    effect().setSampleRate(96000);
    deliver();
    EXPECT_THAT(assertions.take(), IsEmpty());
}

TEST_F(Binding, SurvivesAnEffectThatFailsEveryCall)
{
    AssertionRecorder assertions;
    fail("");
    {
        OpenEditor editor(&effect());
        EXPECT_THAT(assertions.take(),
                    ElementsAreArray(Lines{kCreateFailed} + Lines(14, kAddFailed) +
                                     Lines(10, kReadFailed)));
        editor.type("fadeInLengthTextField", @"100");
        editor.type("attackTextField", @"-12");
        editor.click("fadeOutLengthStepper", 0.5, 0.75);
    }
    EXPECT_THAT(assertions.take(), IsEmpty()); // no listener, nothing to dispose
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

// --- what is shown after binding -----------------------------------------------------------------

TEST_F(Binding, NamesTheFunctionModesInTheEffectsOrder)
{
    NSPopUpButton* const button = open().outlet("functionPopupButton");
    ASSERT_EQ([button numberOfItems], 4);
    const char* const names[] = {"Trim Start and End", "Remove Silence", "Crop", "Fades Only"};
    for (int mode = 0; mode < 4; ++mode) {
        EXPECT_STREQ([[button itemTitleAtIndex:mode] UTF8String], names[mode]);
    }
}

TEST_F(Binding, AgainNamesTheFunctionModesOnce)
{
    open();
    rebind();
    EXPECT_EQ([editor().outlet("functionPopupButton") numberOfItems], 4);
    EXPECT_EQ(effect().outstandingReferences(), 1u); // one array, that of the present binding
}

TEST_F(Binding, WithoutValueStringsLeavesThePopUpEmpty)
{
    effect().setValueStringsOffered(false);
    OpenEditor& editor = open();
    EXPECT_EQ([editor.outlet("functionPopupButton") numberOfItems], 0);
    automateAndDeliver(kTarvelParam_Function, 1);
    EXPECT_EQ([editor.outlet("functionPopupButton") numberOfItems], 0);
    EXPECT_TRUE(editor.enabled("minSilenceTextField"));
}

TEST_F(Binding, AnEffectThatStopsNamingItsModesEmptiesThePopUp)
{
    open();
    effect().setValueStringsOffered(false);
    rebind();
    EXPECT_EQ([editor().outlet("functionPopupButton") numberOfItems], 0);
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

TEST_F(Binding, ShowsEveryParameter)
{
    effect().setSampleRate(48000);
    const float values[] = {2, -12.5F, -30, 3, 250, 1, 125, 700, 1500, 2000};
    for (UInt32 id = 0; id < 10; ++id) {
        automate(id, values[id]);
    }
    OpenEditor& editor = open();
    EXPECT_EQ(editor.title("functionPopupButton"), "Crop");
    EXPECT_EQ(editor.doubleValue("attackSlider"), -12.5);
    EXPECT_EQ(editor.doubleValue("attackTextField"), -12.5);
    EXPECT_EQ(editor.doubleValue("releaseSlider"), -30);
    EXPECT_EQ(editor.doubleValue("releaseTextField"), -30);
    EXPECT_EQ(editor.curve("fadeInTypePopupButton"), 3);
    EXPECT_EQ(editor.curve("fadeOutTypePopupButton"), 1);
    const std::pair<const char*, long long> lengths[] = {
        {"fadeInLength", 12000}, {"fadeOutLength", 6000}, {"minSilence", 33600},
        {"cropStart", 72000},    {"cropLength", 96000},
    };
    for (const auto& [name, samples] : lengths) {
        SCOPED_TRACE(name);
        EXPECT_EQ(editor.samples((std::string(name) + "TextField").c_str()), samples);
        EXPECT_EQ(editor.samples((std::string(name) + "Stepper").c_str()), samples);
    }
}

TEST_F(Binding, SetsTheThresholdSlidersRange)
{
    OpenEditor& editor = open();
    for (const char* name : {"attackSlider", "releaseSlider"}) {
        SCOPED_TRACE(name);
        NSSlider* const slider = editor.outlet(name);
        [slider setMinValue:-1];
        [slider setMaxValue:1];
        [slider setAltIncrementValue:7];
    }
    ControlRecorder recorder(editor, {"attackSlider", "releaseSlider"});
    rebind();
    EXPECT_THAT(recorder.take({"setM", "setAlt"}),
                ElementsAre("attackSlider setMaxValue: 0", "attackSlider setMinValue: -60",
                            "attackSlider setAltIncrementValue: 0.1",
                            "releaseSlider setMaxValue: 0", "releaseSlider setMinValue: -60",
                            "releaseSlider setAltIncrementValue: 0.1"));
}

TEST_F(Binding, GivesBothFormattersTheInfinitySymbol)
{
    OpenEditor& editor = open();
    for (const char* name : {"attackTextField", "releaseTextField"}) {
        NSNumberFormatter* const formatter = [editor.outlet(name) formatter];
        EXPECT_STREQ([[formatter negativeInfinitySymbol] UTF8String], "-Inf.");
    }
}

// --- the length fields' format -------------------------------------------------------------------

Lines lengthFieldSetUp(const std::string& name, bool isLength)
{
    return {name + " setIsLength: " + (isLength ? "1" : "0"),
            name + " setFormat: 9",
            name + " setSampleRate: 48000",
            name + " setFrameRate: 25",
            name + " setTempo: 90.5",
            name + " setTimeSignature: 458760", // 7/8
            name + " setTicksPerBeat: 4",
            name + " setDefaultMenu: NSMenu"};
}

TEST_F(Binding, PreparesEachLengthFieldWithOneSharedMenu)
{
    open();
    host::HostMusic music{90.5, 7.0F, 8};
    const HostCallbackInfo callbacks = music.callbacks();
    ASSERT_EQ(effect().setProperty(kAudioUnitProperty_HostCallbacks, kAudioUnitScope_Global, 0,
                                   &callbacks, sizeof callbacks),
              noErr);
    setTimeFormat(kSmpte25);
    setSampleRateSilently(48000.9); // the format takes whole rates

    ControlRecorder recorder(editor(), {std::begin(kLengthFields), std::end(kLengthFields)});
    rebind();
    Lines expected = {"fadeInLengthTextField createDefaultMenuWithTarget: TarvelCocoaView"};
    for (const std::string name : kLengthFields) {
        expected = expected + lengthFieldSetUp(name, name != "cropStartTextField");
    }
    Lines lines = recorder.take();
    const auto first = std::find(lines.begin(), lines.end(), expected.front());
    ASSERT_NE(first, lines.end());
    lines.erase(lines.begin(), first);
    lines.resize(expected.size());
    EXPECT_THAT(lines, ElementsAreArray(expected));

    id const menu = [editor().outlet(kLengthFields[0]) menu];
    for (const char* name : kLengthFields) {
        EXPECT_EQ([editor().outlet(name) menu], menu);
    }
}

struct MusicShape {
    const char* what;
    bool offered;
    host::HostMusic music;
    const char* tempo;
    const char* signature;
};

const MusicShape kMusicShapes[] = {
    // clang-format off
    { "no callbacks",     false, {},                        "120",   "262148" },
    { "both",             true,  { 87.5, 3.0F, 8 },         "87.5",  "196616" },
    { "zero tempo",       true,  { 0.0, 3.0F, 4 },          "120",   "196612" },
    { "zero numerator",   true,  { 60.0, 0.0F, 8 },         "60",    "262148" },
    { "zero denominator", true,  { 60.0, 3.0F, 0 },         "60",    "262148" },
    { "odd numerator",    true,  { 60.0, 5.9F, 8 },         "60",    "327688" }, // 5/8
    { "silent failure",   true,  { 60.0, 3.0F, 8, -10863 }, "120",   "262148" },
    // clang-format on
};

TEST_F(Binding, TakesTempoAndTimeSignatureOnlyWhereTheHostTellsThem)
{
    open();
    for (MusicShape shape : kMusicShapes) {
        SCOPED_TRACE(shape.what);
        const HostCallbackInfo callbacks =
            shape.offered ? shape.music.callbacks() : HostCallbackInfo{};
        effect().setProperty(kAudioUnitProperty_HostCallbacks, kAudioUnitScope_Global, 0,
                             &callbacks, sizeof callbacks);
        ControlRecorder recorder(editor(), {"cropLengthTextField"});
        rebind();
        EXPECT_THAT(
            recorder.take({"setTempo", "setTimeSignature", "setTicks"}),
            ElementsAre("cropLengthTextField setTempo: " + std::string(shape.tempo),
                        "cropLengthTextField setTimeSignature: " + std::string(shape.signature),
                        "cropLengthTextField setTicksPerBeat: 4"));
    }
}

TEST_F(Binding, AHostThatFailsToTellItsCallbacksHasNone)
{
    open();
    host::HostMusic music{87.5, 3.0F, 8};
    const HostCallbackInfo callbacks = music.callbacks();
    effect().setProperty(kAudioUnitProperty_HostCallbacks, kAudioUnitScope_Global, 0, &callbacks,
                         sizeof callbacks);
    fail("AudioUnitGetProperty", kAudioUnitProperty_HostCallbacks);
    ControlRecorder recorder(editor(), {"cropLengthTextField"});
    rebind();
    EXPECT_THAT(recorder.take({"setTempo"}), ElementsAre("cropLengthTextField setTempo: 120"));
}

// What a type without a rate of its own shows is counted at 75 frames a second.
TEST_F(Binding, PreparesAFrameRateOf75)
{
    setTimeFormat(kFrames);
    open();
    ControlRecorder recorder(editor(), {"cropLengthTextField"});
    rebind();
    EXPECT_THAT(recorder.take({"setFrameRate"}),
                ElementsAre("cropLengthTextField setFrameRate: 75"));
}

// --- events --------------------------------------------------------------------------------------

TEST_F(Binding, ShowsAutomationOfEveryParameter)
{
    OpenEditor& editor = open();
    const float values[] = {2, -12.5F, -30, 3, 250, 1, 125, 700, 1500, 2000};
    for (UInt32 id = 0; id < 10; ++id) {
        automate(id, values[id]);
    }
    deliver();
    EXPECT_EQ(editor.title("functionPopupButton"), "Crop");
    EXPECT_EQ(editor.doubleValue("attackSlider"), -12.5);
    EXPECT_EQ(editor.doubleValue("releaseTextField"), -30);
    EXPECT_EQ(editor.curve("fadeInTypePopupButton"), 3);
    EXPECT_EQ(editor.samples("fadeInLengthTextField"), 11025);
    EXPECT_EQ(editor.curve("fadeOutTypePopupButton"), 1);
    EXPECT_EQ(editor.samples("fadeOutLengthStepper"), 5512);
    EXPECT_EQ(editor.samples("minSilenceTextField"), 30870);
    EXPECT_EQ(editor.samples("cropStartStepper"), 66150);
    EXPECT_EQ(editor.samples("cropLengthTextField"), 88200);
}

TEST_F(Binding, NoEventWritesAnything)
{
    open();
    for (UInt32 id = 0; id < 10; ++id) {
        send(kAudioUnitEvent_ParameterValueChange, id, 1);
    }
    for (const UInt32 id : {2U, 8U, 3020U, 9000U, 64000U, 64001U}) {
        sendProperty(id);
    }
    for (const std::string& line : log().take()) {
        EXPECT_THAT(line, testing::StartsWith("AudioUnitGetProperty "));
    }
}

TEST_F(Binding, ForeignParametersAndGesturesChangeNothing)
{
    open();
    ControlRecorder recorder(
        editor(),
        {"functionPopupButton", "attackTextField", "attackSlider", "releaseTextField",
         "releaseSlider", "fadeInTypePopupButton", "fadeInLengthTextField", "fadeInLengthStepper",
         "fadeOutTypePopupButton", "fadeOutLengthTextField", "fadeOutLengthStepper",
         "minSilenceTextField", "minSilenceStepper", "cropStartTextField", "cropStartStepper",
         "cropLengthTextField", "cropLengthStepper"});
    for (const UInt32 id : {10U, 11U, 3020U, 0xFFFFFFFFU}) {
        send(kAudioUnitEvent_ParameterValueChange, id, 1);
    }
    for (UInt32 id = 0; id < 10; ++id) {
        send(kAudioUnitEvent_BeginParameterChangeGesture, id, 1);
        send(kAudioUnitEvent_EndParameterChangeGesture, id, 1);
        send(4, id, 1);
    }
    for (const UInt32 property : {0U, 16U, 27U, 36U, 64002U}) {
        sendProperty(property, 1);
    }
    EXPECT_THAT(recorder.take(), IsEmpty());
    EXPECT_THAT(log().take(), IsEmpty());
}

TEST_F(Binding, TheSameRateAgainUpdatesTheTimeControlsAlone)
{
    open();
    ControlRecorder recorder(editor(), {"fadeInLengthTextField", "cropLengthStepper"});
    for (const UInt32 property : {kAudioUnitProperty_SampleRate, kAudioUnitProperty_StreamFormat}) {
        SCOPED_TRACE(property);
        sendProperty(property);
        EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 2 global/0 size 8"));
        EXPECT_THAT(recorder.take({"fadeInLengthTextField", "setMaxValue"}),
                    ElementsAre("fadeInLengthTextField setFrameAndSampleRate: 44100",
                                "fadeInLengthTextField setFormat: 1",
                                "fadeInLengthTextField getIncrement",
                                "cropLengthStepper setMaxValue: 158760000"));
    }
}

TEST_F(Binding, ANewRateRefreshesOnlyTheFadesFromTheirParameters)
{
    OpenEditor& editor = open();
    for (const UInt32 id : {4U, 6U, 7U, 8U, 9U}) {
        automate(id, 1000);
    }
    deliver();
    log().take();
    effect().setSampleRate(48000); // announced as a new stream format, with the value 0
    deliver();
    EXPECT_THAT(log().take(),
                ElementsAreArray(Lines{"AudioUnitGetProperty 2 global/0 size 8"} + kReadLengths));
    EXPECT_EQ(editor.samples("fadeInLengthTextField"), 48000);
    EXPECT_EQ(editor.samples("fadeInLengthStepper"), 48000);
    EXPECT_EQ(editor.samples("fadeOutLengthTextField"), 48000);
    EXPECT_EQ(editor.samples("fadeOutLengthStepper"), 48000);
    for (const char* name : {"minSilenceTextField", "cropStartTextField", "cropStartStepper",
                             "cropLengthTextField", "cropLengthStepper"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(editor.samples(name), 0);
    }
    EXPECT_EQ(parameter(kTarvelParam_CropLength), 1000);
}

TEST_F(Binding, ANewRateShowsTheOtherLengthsAtTheEventsOwnValue)
{
    OpenEditor& editor = open();
    setSampleRateSilently(48000);
    effect().setSampleRate(96000); // not delivered yet
    sendProperty(kAudioUnitProperty_StreamFormat, 500);
    EXPECT_EQ(editor.samples("minSilenceTextField"), 48000);
    EXPECT_EQ(editor.samples("cropStartTextField"), 48000);
    EXPECT_EQ(editor.samples("cropLengthStepper"), 48000);
    EXPECT_EQ(editor.samples("fadeInLengthTextField"), 480); // 5 ms
}

TEST_F(Binding, OneEventOfAnEffectsFormatArrivesOnTheOutputOnly)
{
    open();
    effect().propertyChanged(kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0);
    effect().propertyChanged(kAudioUnitProperty_StreamFormat, kAudioUnitScope_Global, 0);
    effect().propertyChanged(kAudioUnitProperty_SampleRate, kAudioUnitScope_Global, 0);
    effect().propertyChanged(kTarvelProperty_InputLength, kAudioUnitScope_Global, 0);
    deliver();
    EXPECT_THAT(log().take(), IsEmpty());
    effect().propertyChanged(kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output, 0);
    deliver();
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 2 global/0 size 8"));
}

TEST_F(Binding, InputLengthAndTimeFormatUpdateTheTimeControls)
{
    open();
    ControlRecorder recorder(editor(), {"fadeInLengthTextField", "cropLengthStepper"});
    effect().setInputLength(5000);
    sendProperty(kTarvelProperty_InputLength);
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 3020 global/0 size 8"));
    EXPECT_THAT(recorder.take({"setMaxValue"}), ElementsAre("cropLengthStepper setMaxValue: 5000"));

    setTimeFormat(kSmpte24);
    deliver();
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 9000 global/0 size 4"));
    EXPECT_THAT(recorder.take({"setFormat"}), ElementsAre("fadeInLengthTextField setFormat: 10"));
}

TEST_F(Binding, PreflightFlagsAreMirroredAndNothingElseHappens)
{
    OpenEditor& editor = open();
    ControlRecorder recorder(editor, {"fadeInLengthTextField", "cropLengthStepper"});
    const UInt32 flag = 7;
    effect().setProperty(kTarvelProperty_AutoPreflight, kAudioUnitScope_Global, 0, &flag,
                         sizeof flag);
    deliver();
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 64000 global/0 size 4"));
    effect().setProperty(kTarvelProperty_PreflightDirty, kAudioUnitScope_Global, 0, &flag,
                         sizeof flag);
    deliver();
    EXPECT_THAT(log().take(), ElementsAre("AudioUnitGetProperty 64001 global/0 size 4"));
    EXPECT_EQ(ivar<UInt32>(editor.view(), "mAutoPreflight"), 7u);
    EXPECT_EQ(ivar<UInt32>(editor.view(), "mPreflightDirty"), 7u);
    EXPECT_THAT(recorder.take(), IsEmpty());
}

// A failed read leaves the old format, and the time controls are updated all the same.
TEST_F(Binding, AnUnreadableFormatLeavesTheOldOne)
{
    open();
    fail("AudioUnitGetProperty", kTarvelProperty_TimeFormat);
    ControlRecorder recorder(editor(), {"fadeInLengthTextField"});
    sendProperty(kTarvelProperty_TimeFormat);
    EXPECT_THAT(recorder.take({"setFormat"}), ElementsAre("fadeInLengthTextField setFormat: 1"));
}

} // namespace
