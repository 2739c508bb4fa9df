#pragma once

#include <CoreAudio/CoreAudioTypes.h>

/// An effect instance. The record is in <AudioUnitCompat/InProcessUnit.h>; clients see the handle.
typedef struct ComponentInstanceRecord* AudioUnit;

typedef UInt32 AudioUnitPropertyID;
typedef UInt32 AudioUnitParameterID;
typedef UInt32 AudioUnitScope;
typedef UInt32 AudioUnitElement;
typedef Float32 AudioUnitParameterValue;

enum : OSStatus {
    kAudioUnitErr_InvalidProperty = -10879,
    kAudioUnitErr_InvalidParameter = -10878,
    kAudioUnitErr_InvalidElement = -10877,
    kAudioUnitErr_NoConnection = -10876,
    kAudioUnitErr_FailedInitialization = -10875,
    kAudioUnitErr_TooManyFramesToProcess = -10874,
    kAudioUnitErr_FormatNotSupported = -10868,
    kAudioUnitErr_Uninitialized = -10867,
    kAudioUnitErr_InvalidScope = -10866,
    kAudioUnitErr_PropertyNotWritable = -10865,
    kAudioUnitErr_CannotDoInCurrentContext = -10863,
    kAudioUnitErr_InvalidPropertyValue = -10851,
    kAudioUnitErr_PropertyNotInUse = -10850,
    kAudioUnitErr_Initialized = -10849,
    kAudioUnitErr_Unauthorized = -10847,
    kAudioUnitErr_InvalidParameterValue = -66743
};

typedef UInt32 AudioUnitEventType;

enum : AudioUnitEventType {
    kAudioUnitEvent_ParameterValueChange = 0,
    kAudioUnitEvent_BeginParameterChangeGesture = 1,
    kAudioUnitEvent_EndParameterChangeGesture = 2,
    kAudioUnitEvent_PropertyChange = 3
};

/// One parameter of one unit. The tags of these records are part of their Objective-C type
/// encoding.
typedef struct AudioUnitParameter {
    AudioUnit mAudioUnit;
    AudioUnitParameterID mParameterID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
} AudioUnitParameter;

/// One property of one unit.
typedef struct AudioUnitProperty {
    AudioUnit mAudioUnit;
    AudioUnitPropertyID mPropertyID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
} AudioUnitProperty;

/// Called, on the thread that announces, for a change of the property in any scope and element.
typedef void (*AudioUnitPropertyListenerProc)(void* userData, AudioUnit unit,
                                              AudioUnitPropertyID property, AudioUnitScope scope,
                                              AudioUnitElement element);

// Every function below gives kAudio_ParamError for a handle that is no live unit, null included.
// The property functions lock and allocate. The two parameter functions do neither on their own
// part, so that an audio thread may call them.

CF_EXTERN_C_BEGIN

/// Tells the size in bytes of a property's value and whether it can be written.
/// @param outDataSize, outWritable  Either may be null. Untouched on failure.
CF_EXPORT OSStatus AudioUnitGetPropertyInfo(AudioUnit unit, AudioUnitPropertyID property,
                                            AudioUnitScope scope, AudioUnitElement element,
                                            UInt32* outDataSize, Boolean* outWritable);

/// Reads a property. Objects in the value belong to the caller.
///
/// @param outData     Null asks for the size only.
/// @param ioDataSize  In: bytes that fit in `outData`, not 0. Out: bytes of the value when more
///                    would have fitted. A buffer too short for the value receives its first bytes
///                    and the size stays.
/// @return kAudio_ParamError for a null or zero size. A property that the unit does not have in
///         that scope and element: the unit's error, data and size untouched. A value that cannot
///         be had: the unit's error, and the size is 0.
CF_EXPORT OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property,
                                        AudioUnitScope scope, AudioUnitElement element,
                                        void* outData, UInt32* ioDataSize);

/// Writes a property. Objects in the value stay with the caller; the unit takes its own reference.
///
/// @param data, size  Null and 0 together remove the value. Only one of them: kAudio_ParamError.
/// @return The unit's error for a property it does not have, kAudioUnitErr_PropertyNotWritable,
///         or kAudioUnitErr_InvalidPropertyValue for a size that is not the value's. The host
///         callbacks alone may have any size: a shorter record is filled up with zeros, a longer
///         one is cut.
CF_EXPORT OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property,
                                        AudioUnitScope scope, AudioUnitElement element,
                                        const void* data, UInt32 size);

/// Reads the present value of a parameter; in its own unit.
/// @param outValue  Not null (kAudio_ParamError). Untouched on failure.
CF_EXPORT OSStatus AudioUnitGetParameter(AudioUnit unit, AudioUnitParameterID parameter,
                                         AudioUnitScope scope, AudioUnitElement element,
                                         AudioUnitParameterValue* outValue);

/// Sets a parameter without telling anybody; AUParameterSet() tells the listeners too. The value is
/// not limited to the parameter's range.
/// @param bufferOffsetInFrames  When the value applies, counted from the start of the next buffer.
/// @return kAudioUnitErr_InvalidParameterValue for a value that is not finite, else the unit's.
CF_EXPORT OSStatus AudioUnitSetParameter(AudioUnit unit, AudioUnitParameterID parameter,
                                         AudioUnitScope scope, AudioUnitElement element,
                                         AudioUnitParameterValue value,
                                         UInt32 bufferOffsetInFrames);

/// Has `proc` called for every announcement of the property. Adding the same pair of function and
/// user data twice has it called twice.
/// @param userData  Passed to `proc`; must stay valid until removed or the unit is gone.
/// @return kAudio_ParamError for a null `proc`.
CF_EXPORT OSStatus AudioUnitAddPropertyListener(AudioUnit unit, AudioUnitPropertyID property,
                                                AudioUnitPropertyListenerProc proc, void* userData);

/// Takes away every registration of that property, function and user data. A call that another
/// thread has begun may still be under way. None registered is no error.
CF_EXPORT OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit unit,
                                                               AudioUnitPropertyID property,
                                                               AudioUnitPropertyListenerProc proc,
                                                               void* userData);

CF_EXTERN_C_END

static_assert(sizeof(AudioUnitParameter) == 24);
static_assert(sizeof(AudioUnitProperty) == 24);
