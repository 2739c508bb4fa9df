#include <AudioToolbox/AudioToolbox.h>
#include <AudioUnit/AudioUnit.h>
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// The layout is an agreement between binaries, so it holds when this file compiles.

#define EXPECT_FIELD(record, field, offset) static_assert(offsetof(record, field) == (offset))

static_assert(sizeof(UInt32) == 4 && sizeof(SInt32) == 4 && sizeof(OSStatus) == 4);
static_assert(sizeof(UInt64) == 8 && sizeof(Float32) == 4 && sizeof(Float64) == 8);
static_assert(sizeof(Boolean) == 1 && sizeof(UniChar) == 2);
static_assert(std::is_same_v<CFIndex, long> && std::is_same_v<Boolean, unsigned char>);
static_assert(std::is_same_v<AudioUnitParameterValue, Float32>);
static_assert(std::is_same_v<AUEventListenerRef, AUParameterListenerRef>);
static_assert(std::is_same_v<AudioUnit, ComponentInstanceRecord*>);

static_assert(sizeof(AudioUnitParameter) == 24);
EXPECT_FIELD(AudioUnitParameter, mAudioUnit, 0);
EXPECT_FIELD(AudioUnitParameter, mParameterID, 8);
EXPECT_FIELD(AudioUnitParameter, mScope, 12);
EXPECT_FIELD(AudioUnitParameter, mElement, 16);

static_assert(sizeof(AudioUnitProperty) == 24);
EXPECT_FIELD(AudioUnitProperty, mAudioUnit, 0);
EXPECT_FIELD(AudioUnitProperty, mPropertyID, 8);
EXPECT_FIELD(AudioUnitProperty, mScope, 12);
EXPECT_FIELD(AudioUnitProperty, mElement, 16);

static_assert(sizeof(AudioUnitEvent) == 32);
EXPECT_FIELD(AudioUnitEvent, mEventType, 0);
EXPECT_FIELD(AudioUnitEvent, mArgument, 8);

static_assert(sizeof(AudioStreamBasicDescription) == 40);
EXPECT_FIELD(AudioStreamBasicDescription, mSampleRate, 0);
EXPECT_FIELD(AudioStreamBasicDescription, mFormatID, 8);
EXPECT_FIELD(AudioStreamBasicDescription, mFormatFlags, 12);
EXPECT_FIELD(AudioStreamBasicDescription, mBytesPerPacket, 16);
EXPECT_FIELD(AudioStreamBasicDescription, mFramesPerPacket, 20);
EXPECT_FIELD(AudioStreamBasicDescription, mBytesPerFrame, 24);
EXPECT_FIELD(AudioStreamBasicDescription, mChannelsPerFrame, 28);
EXPECT_FIELD(AudioStreamBasicDescription, mBitsPerChannel, 32);
EXPECT_FIELD(AudioStreamBasicDescription, mReserved, 36);

static_assert(sizeof(HostCallbackInfo) == 40);
EXPECT_FIELD(HostCallbackInfo, hostUserData, 0);
EXPECT_FIELD(HostCallbackInfo, beatAndTempoProc, 8);
EXPECT_FIELD(HostCallbackInfo, musicalTimeLocationProc, 16);
EXPECT_FIELD(HostCallbackInfo, transportStateProc, 24);
EXPECT_FIELD(HostCallbackInfo, transportStateProc2, 32);

static_assert(sizeof(AudioUnitParameterInfo) == 104);
EXPECT_FIELD(AudioUnitParameterInfo, name, 0);
EXPECT_FIELD(AudioUnitParameterInfo, unitName, 56);
EXPECT_FIELD(AudioUnitParameterInfo, clumpID, 64);
EXPECT_FIELD(AudioUnitParameterInfo, cfNameString, 72);
EXPECT_FIELD(AudioUnitParameterInfo, unit, 80);
EXPECT_FIELD(AudioUnitParameterInfo, minValue, 84);
EXPECT_FIELD(AudioUnitParameterInfo, maxValue, 88);
EXPECT_FIELD(AudioUnitParameterInfo, defaultValue, 92);
EXPECT_FIELD(AudioUnitParameterInfo, flags, 96);

static_assert(sizeof(AUPreset) == 16);
EXPECT_FIELD(AUPreset, presetNumber, 0);
EXPECT_FIELD(AUPreset, presetName, 8);

static_assert(sizeof(AudioUnitCocoaViewInfo) == 16);
EXPECT_FIELD(AudioUnitCocoaViewInfo, mCocoaAUViewBundleLocation, 0);
EXPECT_FIELD(AudioUnitCocoaViewInfo, mCocoaAUViewClass, 8);

namespace {

struct ConstantRow {
    const char* name;
    long long value;
    long long expected;
};

#define ROW(name, expected)                                                                        \
    {                                                                                              \
#name, name, expected                                                                      \
    }

const ConstantRow kConstants[] = {
    ROW(kAudioUnitEvent_ParameterValueChange, 0),
    ROW(kAudioUnitEvent_BeginParameterChangeGesture, 1),
    ROW(kAudioUnitEvent_EndParameterChangeGesture, 2),
    ROW(kAudioUnitEvent_PropertyChange, 3),
    ROW(kAUParameterListener_AnyParameter, 0xFFFFFFFF),

    ROW(kAudioUnitScope_Global, 0),
    ROW(kAudioUnitScope_Input, 1),
    ROW(kAudioUnitScope_Output, 2),
    ROW(kAudioUnitScope_Group, 3),
    ROW(kAudioUnitScope_Part, 4),
    ROW(kAudioUnitScope_Note, 5),
    ROW(kAudioUnitScope_Layer, 6),
    ROW(kAudioUnitScope_LayerItem, 7),

    ROW(kAudioUnitProperty_ClassInfo, 0),
    ROW(kAudioUnitProperty_SampleRate, 2),
    ROW(kAudioUnitProperty_ParameterList, 3),
    ROW(kAudioUnitProperty_ParameterInfo, 4),
    ROW(kAudioUnitProperty_StreamFormat, 8),
    ROW(kAudioUnitProperty_ElementCount, 11),
    ROW(kAudioUnitProperty_Latency, 12),
    ROW(kAudioUnitProperty_MaximumFramesPerSlice, 14),
    ROW(kAudioUnitProperty_ParameterValueStrings, 16),
    ROW(kAudioUnitProperty_TailTime, 20),
    ROW(kAudioUnitProperty_BypassEffect, 21),
    ROW(kAudioUnitProperty_FactoryPresets, 24),
    ROW(kAudioUnitProperty_HostCallbacks, 27),
    ROW(kAudioUnitProperty_CocoaUI, 31),
    ROW(kAudioUnitProperty_ParameterStringFromValue, 33),
    ROW(kAudioUnitProperty_PresentPreset, 36),
    ROW(kAudioUnitProperty_ParameterValueFromString, 38),

    ROW(noErr, 0),
    ROW(kAudio_ParamError, -50),
    ROW(kAudioUnitErr_InvalidProperty, -10879),
    ROW(kAudioUnitErr_InvalidParameter, -10878),
    ROW(kAudioUnitErr_InvalidElement, -10877),
    ROW(kAudioUnitErr_NoConnection, -10876),
    ROW(kAudioUnitErr_FailedInitialization, -10875),
    ROW(kAudioUnitErr_TooManyFramesToProcess, -10874),
    ROW(kAudioUnitErr_FormatNotSupported, -10868),
    ROW(kAudioUnitErr_Uninitialized, -10867),
    ROW(kAudioUnitErr_InvalidScope, -10866),
    ROW(kAudioUnitErr_PropertyNotWritable, -10865),
    ROW(kAudioUnitErr_CannotDoInCurrentContext, -10863),
    ROW(kAudioUnitErr_InvalidPropertyValue, -10851),
    ROW(kAudioUnitErr_PropertyNotInUse, -10850),
    ROW(kAudioUnitErr_Initialized, -10849),
    ROW(kAudioUnitErr_Unauthorized, -10847),
    ROW(kAudioUnitErr_InvalidParameterValue, -66743),

    ROW(kAudioUnitParameterUnit_Generic, 0),
    ROW(kAudioUnitParameterUnit_Indexed, 1),
    ROW(kAudioUnitParameterUnit_Boolean, 2),
    ROW(kAudioUnitParameterUnit_Percent, 3),
    ROW(kAudioUnitParameterUnit_Seconds, 4),
    ROW(kAudioUnitParameterUnit_SampleFrames, 5),
    ROW(kAudioUnitParameterUnit_Hertz, 8),
    ROW(kAudioUnitParameterUnit_Decibels, 13),
    ROW(kAudioUnitParameterUnit_LinearGain, 14),
    ROW(kAudioUnitParameterUnit_Milliseconds, 24),
    ROW(kAudioUnitParameterUnit_CustomUnit, 26),

    ROW(kAudioUnitParameterFlag_CFNameRelease, 0x10),
    ROW(kAudioUnitParameterFlag_OmitFromPresets, 0x2000),
    ROW(kAudioUnitParameterFlag_MeterReadOnly, 0x8000),
    ROW(kAudioUnitParameterFlag_HasClump, 0x100000),
    ROW(kAudioUnitParameterFlag_ValuesHaveStrings, 0x200000),
    ROW(kAudioUnitParameterFlag_DisplayLogarithmic, 0x400000),
    ROW(kAudioUnitParameterFlag_IsHighResolution, 0x800000),
    ROW(kAudioUnitParameterFlag_NonRealTime, 0x1000000),
    ROW(kAudioUnitParameterFlag_CanRamp, 0x2000000),
    ROW(kAudioUnitParameterFlag_ExpertMode, 0x4000000),
    ROW(kAudioUnitParameterFlag_HasCFNameString, 0x8000000),
    ROW(kAudioUnitParameterFlag_IsGlobalMeta, 0x10000000),
    ROW(kAudioUnitParameterFlag_IsElementMeta, 0x20000000),
    ROW(kAudioUnitParameterFlag_IsReadable, 0x40000000),
    ROW(kAudioUnitParameterFlag_IsWritable, 0x80000000),

    ROW(kCFStringEncodingMacRoman, 0),
    ROW(kCFStringEncodingASCII, 0x0600),
    ROW(kCFStringEncodingUTF8, 0x08000100),
    ROW(kCFStringEncodingUTF16, 0x0100),
    ROW(kCFStringEncodingUTF16BE, 0x10000100),
    ROW(kCFStringEncodingUTF16LE, 0x14000100),
    ROW(kCFStringEncodingUTF32, 0x0c000100),
    ROW(kCFStringEncodingUTF32BE, 0x18000100),
    ROW(kCFStringEncodingUTF32LE, 0x1c000100),
    ROW(kCFStringNormalizationFormD, 0),
    ROW(kCFStringNormalizationFormKD, 1),
    ROW(kCFStringNormalizationFormC, 2),
    ROW(kCFStringNormalizationFormKC, 3),
};

TEST(AudioUnitRecords, ConstantsHaveTheirPublishedValues)
{
    for (const ConstantRow& row : kConstants) {
        EXPECT_EQ(row.value, row.expected) << row.name;
    }
}

} // namespace
