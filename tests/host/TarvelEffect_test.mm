#import "host/effect/TarvelEffect.h"

#import <AudioToolbox/AudioToolbox.h>
#import <Foundation/Foundation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr AudioUnitScope kGlobal = kAudioUnitScope_Global;
constexpr AudioUnitScope kInput = kAudioUnitScope_Input;
constexpr AudioUnitScope kOutput = kAudioUnitScope_Output;

constexpr AudioUnitPropertyID kAllProperties[] = {0,  2,  3,    4,    8,     16,   27,
                                                  31, 36, 3020, 9000, 64000, 64001};

template <typename Value>
OSStatus get(AudioUnit unit, AudioUnitPropertyID property, Value& value,
             AudioUnitScope scope = kGlobal, AudioUnitElement element = 0)
{
    UInt32 size = sizeof value;
    return AudioUnitGetProperty(unit, property, scope, element, &value, &size);
}

template <typename Value>
Value valueOf(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope = kGlobal,
              AudioUnitElement element = 0)
{
    Value value{};
    EXPECT_EQ(get(unit, property, value, scope, element), noErr) << "property " << property;
    return value;
}

template <typename Value>
OSStatus set(AudioUnit unit, AudioUnitPropertyID property, const Value& value,
             AudioUnitScope scope = kGlobal, AudioUnitElement element = 0)
{
    return AudioUnitSetProperty(unit, property, scope, element, &value, sizeof value);
}

AudioUnitParameterValue parameter(AudioUnit unit, AudioUnitParameterID id)
{
    AudioUnitParameterValue value = NAN;
    EXPECT_EQ(AudioUnitGetParameter(unit, id, kGlobal, 0, &value), noErr);
    return value;
}

/// Every announcement of a unit as "property scope/element".
class Announcements {
public:
    explicit Announcements(AudioUnit unit) : m_unit(unit)
    {
        for (const AudioUnitPropertyID property : kAllProperties) {
            AudioUnitAddPropertyListener(unit, property, hear, this);
        }
    }
    ~Announcements()
    {
        for (const AudioUnitPropertyID property : kAllProperties) {
            AudioUnitRemovePropertyListenerWithUserData(m_unit, property, hear, this);
        }
    }

    std::vector<std::string> take() { return std::exchange(m_heard, {}); }

private:
    static void hear(void* self, AudioUnit, AudioUnitPropertyID property, AudioUnitScope scope,
                     AudioUnitElement element)
    {
        static_cast<Announcements*>(self)->m_heard.push_back(
            std::to_string(property) + " " + std::to_string(scope) + "/" + std::to_string(element));
    }

    AudioUnit m_unit;
    std::vector<std::string> m_heard;
};

std::shared_ptr<const Recording> recordingOf(unsigned rate, unsigned channels, std::size_t frames)
{
    auto recording = std::make_shared<Recording>();
    recording->sampleRate = rate;
    recording->channels = channels;
    recording->samples.resize(frames * channels);
    return recording;
}

class TarvelEffectTest : public testing::Test {
protected:
    TarvelEffectTest() : m_pool([[NSAutoreleasePool alloc] init]) {}
    ~TarvelEffectTest() override { [m_pool drain]; }

    TarvelEffect effect;
    AudioUnit const unit = &effect;

private:
    NSAutoreleasePool* m_pool;
};

} // namespace

// ---- parameters

TEST_F(TarvelEffectTest, ListsItsTenParameters)
{
    UInt32 ids[10] = {};
    ASSERT_EQ(get(unit, kAudioUnitProperty_ParameterList, ids), noErr);
    EXPECT_THAT(ids, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST_F(TarvelEffectTest, TellsNameUnitRangeAndDefaultOfEachParameter)
{
    struct Row {
        const char* name;
        AudioUnitParameterUnit unit;
        float minimum, maximum, initial;
        bool strings;
    };
    // clang-format off
    const Row rows[] = {
        { "Function",          kAudioUnitParameterUnit_Indexed,        0,        3,   0, true },
        { "Attack Threshold",  kAudioUnitParameterUnit_Decibels,     -60,        0, -48, false },
        { "Release Threshold", kAudioUnitParameterUnit_Decibels,     -60,        0, -48, false },
        { "Fade-In Curve",     kAudioUnitParameterUnit_Indexed,        0,        4,   0, false },
        { "Fade-In Length",    kAudioUnitParameterUnit_Milliseconds,   0,    60000,   5, false },
        { "Fade-Out Curve",    kAudioUnitParameterUnit_Indexed,        0,        4,   0, false },
        { "Fade-Out Length",   kAudioUnitParameterUnit_Milliseconds,   0,    60000,  50, false },
        { "Minimum Silence",   kAudioUnitParameterUnit_Milliseconds,   0,    60000, 500, false },
        { "Crop Start",        kAudioUnitParameterUnit_Milliseconds,   0, 86400000,   0, false },
        { "Crop Length",       kAudioUnitParameterUnit_Milliseconds,   0, 86400000, 60000, false },
    };
    // clang-format on
    for (UInt32 id = 0; id < 10; ++id) {
        SCOPED_TRACE(id);
        const auto info =
            valueOf<AudioUnitParameterInfo>(unit, kAudioUnitProperty_ParameterInfo, kGlobal, id);
        EXPECT_STREQ([(NSString*)info.cfNameString UTF8String], rows[id].name);
        EXPECT_EQ(info.name[0], '\0');
        EXPECT_EQ(info.unit, rows[id].unit);
        EXPECT_EQ(info.minValue, rows[id].minimum);
        EXPECT_EQ(info.maxValue, rows[id].maximum);
        EXPECT_EQ(info.defaultValue, rows[id].initial);
        EXPECT_EQ(info.flags,
                  (1U << 30 | 1U << 31 | 1U << 27 | 1U << 4) | (rows[id].strings ? 1U << 21 : 0U));
        EXPECT_EQ(parameter(unit, id), rows[id].initial);
        CFRelease(info.cfNameString);
    }
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST_F(TarvelEffectTest, NamesTheFunctionModes)
{
    const auto names = valueOf<CFArrayRef>(unit, kAudioUnitProperty_ParameterValueStrings);
    NSArray* const expected = @[ @"Trim Start and End", @"Remove Silence", @"Crop", @"Fades Only" ];
    EXPECT_TRUE([expected isEqual:(NSArray*)names]);
    CFRelease(names);
}

TEST_F(TarvelEffectTest, OtherParametersHaveNoValueStrings)
{
    for (UInt32 id = 1; id < 10; ++id) {
        CFArrayRef names = nullptr;
        EXPECT_EQ(get(unit, kAudioUnitProperty_ParameterValueStrings, names, kGlobal, id), -10879);
        EXPECT_EQ(names, nullptr);
    }
}

TEST_F(TarvelEffectTest, ValueStringsCanBeTakenAway)
{
    effect.setValueStringsOffered(false);
    CFArrayRef names = nullptr;
    EXPECT_EQ(get(unit, kAudioUnitProperty_ParameterValueStrings, names), -10879);
    EXPECT_EQ(names, nullptr);
    effect.setValueStringsOffered(true);
    ASSERT_EQ(get(unit, kAudioUnitProperty_ParameterValueStrings, names), noErr);
    CFRelease(names);
}

TEST_F(TarvelEffectTest, ParameterValuesAreKeptAsGiven)
{
    for (const float value : {-20.0F, 12.0F, -90.0F, 0.1F}) {
        EXPECT_EQ(AudioUnitSetParameter(unit, 1, kGlobal, 0, value, 0), noErr);
        EXPECT_EQ(parameter(unit, 1), value);
    }
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kGlobal, 0, NAN, 0), -66743);
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kGlobal, 0, INFINITY, 0), -66743);
    EXPECT_EQ(parameter(unit, 1), 0.1F);
}

TEST_F(TarvelEffectTest, ParametersOutsideOfTheListAreRefused)
{
    float value = 7;
    EXPECT_EQ(AudioUnitGetParameter(unit, 10, kGlobal, 0, &value), -10878);
    EXPECT_EQ(AudioUnitGetParameter(unit, 1, kOutput, 0, &value), -10866);
    EXPECT_EQ(AudioUnitGetParameter(unit, 1, kGlobal, 1, &value), -10877);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(AudioUnitSetParameter(unit, 0xFFFFFFFF, kGlobal, 0, 0, 0), -10878);
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kInput, 0, 0, 0), -10866);
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kGlobal, 3, 0, 0), -10877);
}

TEST_F(TarvelEffectTest, SettingAParameterAnnouncesNothing)
{
    Announcements heard(unit);
    EXPECT_EQ(AudioUnitSetParameter(unit, 1, kGlobal, 0, -20, 0), noErr);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(TarvelEffectTest, SettingsAreItsParameters)
{
    EXPECT_EQ(effect.settings(), TrimSettings{});
    const float values[10] = {2, -30, -40, 4, 11, 3, 22, 33, 44, 55};
    for (UInt32 id = 0; id < 10; ++id) {
        AudioUnitSetParameter(unit, id, kGlobal, 0, values[id], 0);
    }
    const TrimSettings expected{FunctionMode::Crop,
                                -30,
                                -40,
                                FadeCurve::SCurve,
                                11,
                                FadeCurve::Exponential,
                                22,
                                33,
                                44,
                                55};
    EXPECT_EQ(effect.settings(), expected);
}

TEST_F(TarvelEffectTest, CodesOutsideTheirListReadAsTheNearest)
{
    struct Row {
        float value;
        FunctionMode mode;
    };
    for (const Row& row : {Row{-3, FunctionMode::TrimStartAndEnd}, Row{2.9F, FunctionMode::Crop},
                           Row{1e9F, FunctionMode::FadesOnly}}) {
        AudioUnitSetParameter(unit, 0, kGlobal, 0, row.value, 0);
        EXPECT_EQ(effect.settings().function, row.mode) << row.value;
    }
    AudioUnitSetParameter(unit, 3, kGlobal, 0, 5, 0);
    EXPECT_EQ(effect.settings().fadeInCurve, FadeCurve::SCurve);
}

// ---- property addresses

TEST_F(TarvelEffectTest, TellsSizeAndWritabilityOfEveryProperty)
{
    struct Row {
        AudioUnitPropertyID property;
        UInt32 size;
        bool writable;
    };
    // clang-format off
    const Row rows[] = {
        { 0, 8, true },   { 2, 8, true },    { 3, 40, false },  { 4, 104, false },  { 8, 40, true },     { 16, 8, false },   { 27, 40, true },
        { 31, 16, false }, { 36, 16, true }, { 3020, 8, false }, { 9000, 4, true }, { 64000, 4, true }, { 64001, 4, true },
    };
    // clang-format on
    effect.setViewBundle("/x.bundle", {"One"});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.property);
        UInt32 size = 0;
        Boolean writable = 2;
        ASSERT_EQ(AudioUnitGetPropertyInfo(unit, row.property, kGlobal, 0, &size, &writable),
                  noErr);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(writable, row.writable ? 1 : 0);
    }
}

TEST_F(TarvelEffectTest, RefusesUnknownPropertiesScopesAndElements)
{
    struct Row {
        AudioUnitPropertyID property;
        AudioUnitScope scope;
        AudioUnitElement element;
        OSStatus expected;
    };
    const Row rows[] = {
        {1, kGlobal, 0, -10879},    {64002, kGlobal, 0, -10879}, {31, kGlobal, 0, -10879},
        {9000, kOutput, 0, -10866}, {3020, kInput, 0, -10866},   {2, 3, 0, -10866},
        {8, 0xFFFFFFFF, 0, -10866}, {9000, kGlobal, 1, -10877},  {8, kOutput, 1, -10877},
        {4, kGlobal, 10, -10878},   {16, kGlobal, 10, -10878},   {1, 77, 88, -10879},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.property << " " << row.scope << "/" << row.element);
        char data[128] = "untouched";
        UInt32 size = sizeof data;
        EXPECT_EQ(AudioUnitGetProperty(unit, row.property, row.scope, row.element, data, &size),
                  row.expected);
        EXPECT_STREQ(data, "untouched");
        EXPECT_EQ(AudioUnitSetProperty(unit, row.property, row.scope, row.element, data, 4),
                  row.expected);
    }
}

TEST_F(TarvelEffectTest, ReadOnlyPropertiesCannotBeWritten)
{
    effect.setViewBundle("/x.bundle", {"One"});
    const char data[128] = {};
    for (const AudioUnitPropertyID property : {3, 4, 16, 31, 3020}) {
        EXPECT_EQ(AudioUnitSetProperty(unit, property, kGlobal, 0, data, 8), -10865) << property;
    }
}

TEST_F(TarvelEffectTest, OnlyTheCallbacksCanBeRemoved)
{
    Announcements heard(unit);
    for (const AudioUnitPropertyID property : {0, 2, 8, 36, 9000, 64000, 64001}) {
        EXPECT_EQ(AudioUnitSetProperty(unit, property, kGlobal, 0, nullptr, 0), -10851) << property;
    }
    HostMusic music;
    set(unit, kAudioUnitProperty_HostCallbacks, music.callbacks());
    EXPECT_EQ(AudioUnitSetProperty(unit, kAudioUnitProperty_HostCallbacks, kGlobal, 0, nullptr, 0),
              noErr);
    EXPECT_EQ(valueOf<HostCallbackInfo>(unit, 27).hostUserData, nullptr);
    EXPECT_THAT(heard.take(), ElementsAre("27 0/0", "27 0/0"));
}

// ---- private properties

TEST_F(TarvelEffectTest, PrivatePropertiesAreAnnouncedAtEverySet)
{
    for (const AudioUnitPropertyID property : {9000U, 64000U, 64001U}) {
        SCOPED_TRACE(property);
        Announcements heard(unit);
        EXPECT_EQ(set(unit, property, UInt32{7}), noErr);
        EXPECT_EQ(set(unit, property, UInt32{7}), noErr);
        EXPECT_EQ(valueOf<UInt32>(unit, property), 7U);
        const std::string once = std::to_string(property) + " 0/0";
        EXPECT_THAT(heard.take(), ElementsAre(once, once));
    }
}

TEST_F(TarvelEffectTest, WrongSizeIsRefusedWithoutAnnouncement)
{
    Announcements heard(unit);
    for (const AudioUnitPropertyID property : {2U, 8U, 9000U, 64000U, 64001U}) {
        EXPECT_EQ(set(unit, property, UInt16{1}), -10851) << property;
    }
    EXPECT_THAT(heard.take(), IsEmpty());
    EXPECT_EQ(valueOf<UInt32>(unit, 9000), 1U);
}

TEST_F(TarvelEffectTest, PropertiesMayBeSetOnAnotherThread)
{
    std::thread([this] { set(unit, 9000, UInt32{12}); }).join();
    EXPECT_EQ(valueOf<UInt32>(unit, 9000), 12U);
}

TEST_F(TarvelEffectTest, InputLengthIsThatOfTheRecording)
{
    Announcements heard(unit);
    EXPECT_EQ(valueOf<UInt64>(unit, kInputLengthProperty), 0U);
    effect.setRecording(recordingOf(44100, 2, 1234));
    EXPECT_EQ(valueOf<UInt64>(unit, kInputLengthProperty), 1234U);
    EXPECT_THAT(heard.take(), ElementsAre("3020 0/0"));
    effect.setInputLength(5'000'000'000);
    EXPECT_EQ(valueOf<UInt64>(unit, kInputLengthProperty), 5'000'000'000U);
    effect.setRecording(nullptr);
    EXPECT_EQ(valueOf<UInt64>(unit, kInputLengthProperty), 0U);
    EXPECT_EQ(effect.recording(), nullptr);
}

// ---- sample rate and stream format

TEST_F(TarvelEffectTest, RateAndFormatAreOneOnEverySide)
{
    effect.setRecording(recordingOf(96000, 6, 10));
    for (const AudioUnitScope scope : {kGlobal, kInput, kOutput}) {
        EXPECT_EQ(valueOf<Float64>(unit, 2, scope), 96000.0);
        const auto format = valueOf<AudioStreamBasicDescription>(unit, 8, scope);
        EXPECT_EQ(format.mSampleRate, 96000.0);
        EXPECT_EQ(format.mFormatID, 0x6C70636DU);
        EXPECT_EQ(format.mFormatFlags, 41U);
        EXPECT_EQ(format.mBytesPerPacket, 4U);
        EXPECT_EQ(format.mFramesPerPacket, 1U);
        EXPECT_EQ(format.mBytesPerFrame, 4U);
        EXPECT_EQ(format.mChannelsPerFrame, 6U);
        EXPECT_EQ(format.mBitsPerChannel, 32U);
    }
}

TEST_F(TarvelEffectTest, WritingTheRateAnnouncesTheFormatOnOutputScopeOnly)
{
    Announcements heard(unit);
    for (const AudioUnitScope scope : {kGlobal, kInput, kOutput}) {
        SCOPED_TRACE(scope);
        EXPECT_EQ(set(unit, 2, Float64{48000}, scope), noErr);
        EXPECT_EQ(valueOf<Float64>(unit, 2), 48000.0);
        EXPECT_THAT(heard.take(), ElementsAre("8 2/0"));
    }
}

TEST_F(TarvelEffectTest, RateMustBeAPositiveNumber)
{
    Announcements heard(unit);
    for (const double rate :
         {0.0, -44100.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
        EXPECT_EQ(set(unit, 2, rate), -10851) << rate;
    }
    EXPECT_EQ(valueOf<Float64>(unit, 2), 44100.0);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(TarvelEffectTest, FormatIsAnnouncedOnlyWhenItDiffers)
{
    Announcements heard(unit);
    auto format = valueOf<AudioStreamBasicDescription>(unit, 8);
    EXPECT_EQ(set(unit, 8, format, kOutput), noErr);
    EXPECT_THAT(heard.take(), IsEmpty());
    format.mSampleRate = 192000;
    EXPECT_EQ(set(unit, 8, format, kGlobal), noErr);
    EXPECT_THAT(heard.take(), ElementsAre("8 2/0"));
    format.mChannelsPerFrame = 1;
    EXPECT_EQ(set(unit, 8, format, kInput), noErr);
    EXPECT_THAT(heard.take(), ElementsAre("8 2/0"));
    EXPECT_EQ(valueOf<Float64>(unit, 2), 192000.0);
}

TEST_F(TarvelEffectTest, FormatsItCannotHaveAreRefused)
{
    const auto supported = valueOf<AudioStreamBasicDescription>(unit, 8);
    const auto refused = [&](auto change) {
        AudioStreamBasicDescription format = supported;
        change(format);
        return set(unit, 8, format) == -10868;
    };
    using Format = AudioStreamBasicDescription;
    EXPECT_TRUE(refused([](Format& format) { format.mSampleRate = 0; }));
    EXPECT_TRUE(refused([](Format& format) { format.mSampleRate = NAN; }));
    EXPECT_TRUE(refused([](Format& format) { format.mChannelsPerFrame = 0; }));
    EXPECT_TRUE(refused([](Format& format) { format.mFormatID = 0; }));
    EXPECT_TRUE(refused([](Format& format) { format.mFormatFlags = 9; }));
    EXPECT_TRUE(refused([](Format& format) { format.mBitsPerChannel = 16; }));
}

TEST_F(TarvelEffectTest, RecordingAnnouncesItsFormatWhenThatDiffers)
{
    Announcements heard(unit);
    effect.setRecording(recordingOf(44100, 2, 10)); // as it was from the start
    EXPECT_THAT(heard.take(), ElementsAre("3020 0/0"));
    effect.setRecording(recordingOf(48000, 2, 10));
    EXPECT_THAT(heard.take(), ElementsAre("8 2/0", "3020 0/0"));
}

TEST_F(TarvelEffectTest, OwnerMayReportTheSameRateAgain)
{
    Announcements heard(unit);
    effect.setSampleRate(44100);
    EXPECT_THAT(heard.take(), ElementsAre("8 2/0"));
}

// ---- host callbacks

TEST_F(TarvelEffectTest, CallbacksAreKeptAndAnnouncedWhenTheyDiffer)
{
    Announcements heard(unit);
    HostMusic music;
    const HostCallbackInfo callbacks = music.callbacks();
    EXPECT_EQ(valueOf<HostCallbackInfo>(unit, 27).beatAndTempoProc, nullptr);
    EXPECT_EQ(set(unit, 27, callbacks), noErr);
    EXPECT_EQ(set(unit, 27, callbacks), noErr);
    EXPECT_THAT(heard.take(), ElementsAre("27 0/0"));
    const auto kept = valueOf<HostCallbackInfo>(unit, 27);
    EXPECT_EQ(std::memcmp(&kept, &callbacks, sizeof kept), 0);
}

TEST_F(TarvelEffectTest, ShorterCallbackRecordIsFilledWithZeros)
{
    HostMusic music;
    HostCallbackInfo callbacks = music.callbacks();
    set(unit, 27, callbacks);
    EXPECT_EQ(AudioUnitSetProperty(unit, 27, kGlobal, 0, &callbacks, 16), noErr);
    const auto kept = valueOf<HostCallbackInfo>(unit, 27);
    EXPECT_EQ(kept.hostUserData, &music);
    EXPECT_EQ(kept.beatAndTempoProc, callbacks.beatAndTempoProc);
    EXPECT_EQ(kept.musicalTimeLocationProc, nullptr);
}

// ---- view

TEST_F(TarvelEffectTest, ViewInfoHasTheBundleAndEveryClass)
{
    effect.setViewBundle("/opt/caf\xC3\xA9/Some View.bundle", {"First", "Second", "Third"});
    UInt32 size = 0;
    ASSERT_EQ(AudioUnitGetPropertyInfo(unit, 31, kGlobal, 0, &size, nullptr), noErr);
    ASSERT_EQ(size, 32U);
    CFTypeRef members[4] = {};
    ASSERT_EQ(get(unit, 31, members), noErr);
    EXPECT_STREQ([[(NSURL*)members[0] path] UTF8String], "/opt/caf\xC3\xA9/Some View.bundle");
    EXPECT_TRUE([(NSString*)members[1] isEqual:@"First"]);
    EXPECT_TRUE([(NSString*)members[3] isEqual:@"Third"]);
    EXPECT_EQ(effect.outstandingReferences(), 4U);
    for (CFTypeRef const member : members) {
        CFRelease(member);
    }
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST_F(TarvelEffectTest, BundlePathThatIsNoTextIsNoView)
{
    effect.setViewBundle("/tmp/\xE9.bundle", {"First"});
    CFTypeRef members[2] = {};
    UInt32 size = sizeof members;
    EXPECT_EQ(AudioUnitGetProperty(unit, 31, kGlobal, 0, members, &size), -10851);
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

// ---- references

TEST_F(TarvelEffectTest, CountsReferencesThatClientsHold)
{
    const auto first = valueOf<CFArrayRef>(unit, 16);
    const auto second = valueOf<CFArrayRef>(unit, 16);
    EXPECT_NE(first, second);
    EXPECT_EQ(effect.outstandingReferences(), 2U);
    CFRetain(first);
    EXPECT_EQ(effect.outstandingReferences(), 3U);
    CFRelease(first);
    CFRelease(first);
    EXPECT_EQ(effect.outstandingReferences(), 1U);
    CFRelease(second);
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST_F(TarvelEffectTest, ObjectsOutliveTheEffect)
{
    auto* const other = new TarvelEffect;
    const auto names = valueOf<CFArrayRef>(other, 16);
    delete other;
    EXPECT_EQ([(NSArray*)names count], 4U);
    CFRelease(names);
}

// ---- presets and state

TEST_F(TarvelEffectTest, PresentPresetIsTheUsersOwn)
{
    Announcements heard(unit);
    auto preset = valueOf<AUPreset>(unit, 36);
    EXPECT_EQ(preset.presetNumber, -1);
    EXPECT_TRUE([(NSString*)preset.presetName isEqual:@"Untitled"]);
    CFRelease(preset.presetName);

    EXPECT_EQ(set(unit, 36, AUPreset{-1, (CFStringRef) @"Dialogue"}), noErr);
    EXPECT_THAT(heard.take(), ElementsAre("36 0/0"));
    preset = valueOf<AUPreset>(unit, 36);
    EXPECT_TRUE([(NSString*)preset.presetName isEqual:@"Dialogue"]);
    CFRelease(preset.presetName);

    EXPECT_EQ(set(unit, 36, AUPreset{0, (CFStringRef) @"Factory"}), -10851);
    EXPECT_EQ(set(unit, 36, AUPreset{-1, nullptr}), -10851);
    const unichar loneSurrogate = 0xD800;
    NSString* const noText = [NSString stringWithCharacters:&loneSurrogate length:1];
    EXPECT_EQ(set(unit, 36, AUPreset{-1, (CFStringRef)noText}), -10851);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(TarvelEffectTest, StateHoldsTheDocumentedKeys)
{
    set(unit, 9000, UInt32{12});
    const auto state = valueOf<CFTypeRef>(unit, 0);
    NSDictionary* const keys = (NSDictionary*)state;
    EXPECT_EQ([[keys objectForKey:@"version"] intValue], 0);
    EXPECT_EQ([[keys objectForKey:@"type"] unsignedIntValue], 0x61756678U);
    EXPECT_EQ([[keys objectForKey:@"subtype"] unsignedIntValue], 0x54726D31U);
    EXPECT_EQ([[keys objectForKey:@"manufacturer"] unsignedIntValue], 0x566E7461U);
    EXPECT_TRUE([[keys objectForKey:@"name"] isEqual:@"Untitled"]);
    EXPECT_EQ([[keys objectForKey:@"data"] length], 12U + 10 * 8);
    EXPECT_EQ([[keys objectForKey:@"time-format"] intValue], 12);
    EXPECT_EQ([[keys objectForKey:@"auto-preflight"] intValue], 0);
    CFRelease(state);
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST_F(TarvelEffectTest, StateComesBackWholeWithParametersSilent)
{
    for (UInt32 id = 0; id < 10; ++id) {
        AudioUnitSetParameter(unit, id, kGlobal, 0, 1.5F * static_cast<float>(id), 0);
    }
    set(unit, 9000, UInt32{12});
    set(unit, 64000, UInt32{1});
    set(unit, 36, AUPreset{-1, (CFStringRef) @"Dialogue"});
    const auto state = valueOf<CFTypeRef>(unit, 0);

    TarvelEffect other;
    Announcements heard(&other);
    EXPECT_EQ(set(&other, 0, state), noErr);
    CFRelease(state);
    EXPECT_EQ(effect.outstandingReferences(), 0U);
    for (UInt32 id = 0; id < 10; ++id) {
        EXPECT_EQ(parameter(&other, id), 1.5F * static_cast<float>(id));
    }
    EXPECT_EQ(valueOf<UInt32>(&other, 9000), 12U);
    EXPECT_EQ(valueOf<UInt32>(&other, 64000), 1U);
    const auto preset = valueOf<AUPreset>(&other, 36);
    EXPECT_TRUE([(NSString*)preset.presetName isEqual:@"Dialogue"]);
    CFRelease(preset.presetName);
    EXPECT_THAT(heard.take(), ElementsAre("9000 0/0", "64000 0/0", "36 0/0"));
}

namespace {

/// State of a fresh effect with one entry exchanged; nil takes it out. Autoreleased.
NSMutableDictionary* stateWith(AudioUnit unit, NSString* key, id value)
{
    const auto state = valueOf<CFTypeRef>(unit, 0);
    NSMutableDictionary* const changed = [[(NSDictionary*)state mutableCopy] autorelease];
    CFRelease(state);
    if (value != nil) {
        [changed setObject:value forKey:key];
    } else {
        [changed removeObjectForKey:key];
    }
    return changed;
}

NSData* parameterData(std::initializer_list<UInt8> bytes)
{
    return [NSData dataWithBytes:bytes.begin() length:bytes.size()];
}

} // namespace

TEST_F(TarvelEffectTest, StateOfAnotherEffectIsRefusedAndChangesNothing)
{
    AudioUnitSetParameter(unit, 1, kGlobal, 0, -12, 0);
    Announcements heard(unit);
    TarvelEffect fresh;
    struct Row {
        NSString* key;
        id value;
    };
    const Row rows[] = {
        {@"version", @(1)}, {@"version", nil},       {@"subtype", @(1)},
        {@"subtype", nil},  {@"manufacturer", @(1)}, {@"manufacturer", @"text"},
        {@"data", nil},     {@"data", @"text"},      {@"data", parameterData({0, 0, 0})},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE([[row.key description] UTF8String]);
        EXPECT_EQ(set(unit, 0, (CFTypeRef)stateWith(&fresh, row.key, row.value)), -10851);
    }
    EXPECT_EQ(set(unit, 0, (CFTypeRef) @"text"), -10851);
    EXPECT_EQ(set(unit, 0, CFTypeRef{nullptr}), -10851);
    EXPECT_EQ(parameter(unit, 1), -12.0F);
    EXPECT_THAT(heard.take(), IsEmpty());
}

TEST_F(TarvelEffectTest, TypeOfASavedStateDoesNotMatter)
{
    EXPECT_EQ(set(unit, 0, (CFTypeRef)stateWith(unit, @"type", @(1))), noErr);
    EXPECT_EQ(set(unit, 0, (CFTypeRef)stateWith(unit, @"type", nil)), noErr);
}

TEST_F(TarvelEffectTest, StateWithoutTheEffectsOwnKeysLeavesThemAlone)
{
    set(unit, 9000, UInt32{12});
    NSMutableDictionary* const state = stateWith(unit, @"time-format", nil);
    [state removeObjectForKey:@"auto-preflight"];
    Announcements heard(unit);
    EXPECT_EQ(set(unit, 0, (CFTypeRef)state), noErr);
    EXPECT_EQ(valueOf<UInt32>(unit, 9000), 12U);
    EXPECT_THAT(heard.take(), ElementsAre("36 0/0"));
}

TEST_F(TarvelEffectTest, UnknownParametersOfASavedStateAreIgnored)
{
    NSData* const data = parameterData({0, 0, 0, 0,  0,    0,    0, 0, 0, 0, 0, 2, //
                                        0, 0, 0, 9,  0x42, 0xC8, 0, 0,             // 9 is 100
                                        0, 0, 0, 10, 0x42, 0xC8, 0, 0});
    EXPECT_EQ(set(unit, 0, (CFTypeRef)stateWith(unit, @"data", data)), noErr);
    EXPECT_EQ(parameter(unit, 9), 100.0F);
    EXPECT_EQ(parameter(unit, 8), 0.0F);
}
