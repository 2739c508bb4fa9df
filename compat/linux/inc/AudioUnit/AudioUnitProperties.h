#pragma once

#include <AudioUnit/AUComponent.h>
#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

enum : AudioUnitScope {
    kAudioUnitScope_Global = 0,
    kAudioUnitScope_Input = 1,
    kAudioUnitScope_Output = 2,
    kAudioUnitScope_Group = 3,
    kAudioUnitScope_Part = 4,
    kAudioUnitScope_Note = 5,
    kAudioUnitScope_Layer = 6,
    kAudioUnitScope_LayerItem = 7
};

// Value type and scope of each. Private properties of a unit begin at 64000.
enum : AudioUnitPropertyID {
    kAudioUnitProperty_ClassInfo = 0,              // CFPropertyListRef, global
    kAudioUnitProperty_SampleRate = 2,             // Float64, input and output
    kAudioUnitProperty_ParameterList = 3,          // AudioUnitParameterID[]
    kAudioUnitProperty_ParameterInfo = 4,          // AudioUnitParameterInfo; element = parameter
    kAudioUnitProperty_StreamFormat = 8,           // AudioStreamBasicDescription, in and output
    kAudioUnitProperty_ElementCount = 11,          // UInt32
    kAudioUnitProperty_Latency = 12,               // Float64, seconds
    kAudioUnitProperty_MaximumFramesPerSlice = 14, // UInt32
    kAudioUnitProperty_ParameterValueStrings = 16, // CFArrayRef; element = parameter
    kAudioUnitProperty_TailTime = 20,              // Float64, seconds
    kAudioUnitProperty_BypassEffect = 21,          // UInt32
    kAudioUnitProperty_FactoryPresets = 24,        // CFArrayRef of AUPreset*
    kAudioUnitProperty_HostCallbacks = 27,         // HostCallbackInfo, global
    kAudioUnitProperty_CocoaUI = 31,               // AudioUnitCocoaViewInfo, global
    kAudioUnitProperty_ParameterStringFromValue = 33,
    kAudioUnitProperty_PresentPreset = 36, // AUPreset, global
    kAudioUnitProperty_ParameterValueFromString = 38
};

typedef UInt32 AudioUnitParameterUnit;

enum : AudioUnitParameterUnit {
    kAudioUnitParameterUnit_Generic = 0,
    kAudioUnitParameterUnit_Indexed = 1,
    kAudioUnitParameterUnit_Boolean = 2,
    kAudioUnitParameterUnit_Percent = 3,
    kAudioUnitParameterUnit_Seconds = 4,
    kAudioUnitParameterUnit_SampleFrames = 5,
    kAudioUnitParameterUnit_Hertz = 8,
    kAudioUnitParameterUnit_Decibels = 13,
    kAudioUnitParameterUnit_LinearGain = 14,
    kAudioUnitParameterUnit_Milliseconds = 24,
    kAudioUnitParameterUnit_CustomUnit = 26
};

typedef UInt32 AudioUnitParameterOptions;

enum : AudioUnitParameterOptions {
    kAudioUnitParameterFlag_CFNameRelease = 1U << 4, // the caller releases the name strings
    kAudioUnitParameterFlag_OmitFromPresets = 1U << 13,
    kAudioUnitParameterFlag_MeterReadOnly = 1U << 15,
    kAudioUnitParameterFlag_HasClump = 1U << 20,
    kAudioUnitParameterFlag_ValuesHaveStrings = 1U << 21,
    kAudioUnitParameterFlag_DisplayLogarithmic = 1U << 22,
    kAudioUnitParameterFlag_IsHighResolution = 1U << 23,
    kAudioUnitParameterFlag_NonRealTime = 1U << 24,
    kAudioUnitParameterFlag_CanRamp = 1U << 25,
    kAudioUnitParameterFlag_ExpertMode = 1U << 26,
    kAudioUnitParameterFlag_HasCFNameString = 1U << 27,
    kAudioUnitParameterFlag_IsGlobalMeta = 1U << 28,
    kAudioUnitParameterFlag_IsElementMeta = 1U << 29,
    kAudioUnitParameterFlag_IsReadable = 1U << 30,
    kAudioUnitParameterFlag_IsWritable = 1U << 31
};

/// What a parameter is. Without the flag CFNameRelease both strings are borrowed from the unit.
typedef struct AudioUnitParameterInfo {
    char name[52];        // not used, zero
    CFStringRef unitName; // of a custom unit
    UInt32 clumpID;
    CFStringRef cfNameString;
    AudioUnitParameterUnit unit;
    AudioUnitParameterValue minValue;
    AudioUnitParameterValue maxValue;
    AudioUnitParameterValue defaultValue;
    AudioUnitParameterOptions flags;
} AudioUnitParameterInfo;

/// A factory preset; the user's own settings have a negative number.
typedef struct AUPreset {
    SInt32 presetNumber;
    CFStringRef presetName;
} AUPreset;

/// Where a unit's editor is: the bundle and the names of its factory classes, as many as the
/// property's size has room for.
typedef struct AudioUnitCocoaViewInfo {
    CFURLRef mCocoaAUViewBundleLocation;
    CFStringRef mCocoaAUViewClass[1];
} AudioUnitCocoaViewInfo;

// What a host tells about its transport. Any output may be null; a host may answer outside of
// rendering with kAudioUnitErr_CannotDoInCurrentContext and write nothing.

typedef OSStatus (*HostCallback_GetBeatAndTempo)(void* hostUserData, Float64* outCurrentBeat,
                                                 Float64* outCurrentTempo);

typedef OSStatus (*HostCallback_GetMusicalTimeLocation)(void* hostUserData,
                                                        UInt32* outDeltaSampleOffsetToNextBeat,
                                                        Float32* outTimeSig_Numerator,
                                                        UInt32* outTimeSig_Denominator,
                                                        Float64* outCurrentMeasureDownBeat);

typedef OSStatus (*HostCallback_GetTransportState)(void* hostUserData, Boolean* outIsPlaying,
                                                   Boolean* outTransportStateChanged,
                                                   Float64* outCurrentSampleInTimeLine,
                                                   Boolean* outIsCycling,
                                                   Float64* outCycleStartBeat,
                                                   Float64* outCycleEndBeat);

typedef OSStatus (*HostCallback_GetTransportState2)(
    void* hostUserData, Boolean* outIsPlaying, Boolean* outIsRecording,
    Boolean* outTransportStateChanged, Float64* outCurrentSampleInTimeLine, Boolean* outIsCycling,
    Float64* outCycleStartBeat, Float64* outCycleEndBeat);

/// A null function means that the host does not answer that question.
typedef struct HostCallbackInfo {
    void* hostUserData;
    HostCallback_GetBeatAndTempo beatAndTempoProc;
    HostCallback_GetMusicalTimeLocation musicalTimeLocationProc;
    HostCallback_GetTransportState transportStateProc;
    HostCallback_GetTransportState2 transportStateProc2;
} HostCallbackInfo;

static_assert(sizeof(AudioUnitParameterInfo) == 104);
static_assert(sizeof(AUPreset) == 16);
static_assert(sizeof(AudioUnitCocoaViewInfo) == 16);
static_assert(sizeof(HostCallbackInfo) == 40);

// Keys of the dictionary that is the ClassInfo property.
#define kAUPresetVersionKey "version"
#define kAUPresetTypeKey "type"
#define kAUPresetSubtypeKey "subtype"
#define kAUPresetManufacturerKey "manufacturer"
#define kAUPresetDataKey "data"
#define kAUPresetNameKey "name"
#define kAUPresetNumberKey "preset-number"
