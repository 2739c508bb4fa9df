#pragma once

#include <AudioUnit/AudioUnit.h>

#include <cstddef>
#include <iterator>

/// The effect's parameters. All are 32-bit floats of the global scope, element 0.
enum : AudioUnitParameterID {
    kTarvelParam_Function = 0,         // index of the function mode
    kTarvelParam_AttackThreshold = 1,  // dB, -60 to 0; -60 means minus infinity
    kTarvelParam_ReleaseThreshold = 2, // dB, -60 to 0; -60 means minus infinity
    kTarvelParam_FadeInType = 3,       // curve code
    kTarvelParam_FadeInLength = 4,     // ms
    kTarvelParam_FadeOutType = 5,      // curve code
    kTarvelParam_FadeOutLength = 6,    // ms
    kTarvelParam_MinSilence = 7,       // ms
    kTarvelParam_CropStart = 8,        // ms
    kTarvelParam_CropLength = 9,       // ms
    kTarvelParam_Count = 10
};

/// Every parameter, in the order in which the editor registers for them and reads them.
constexpr AudioUnitParameterID kTarvelParameterIds[] = {
    kTarvelParam_Function,      kTarvelParam_AttackThreshold, kTarvelParam_ReleaseThreshold,
    kTarvelParam_FadeInType,    kTarvelParam_FadeInLength,    kTarvelParam_FadeOutType,
    kTarvelParam_FadeOutLength, kTarvelParam_MinSilence,      kTarvelParam_CropStart,
    kTarvelParam_CropLength,
};

/// True when row i of the table is parameter i, so that an ID is also an index.
consteval bool tarvelParameterIdsAreIndices()
{
    for (AudioUnitParameterID id = 0; id < std::size(kTarvelParameterIds); ++id) {
        if (kTarvelParameterIds[id] != id) {
            return false;
        }
    }
    return std::size(kTarvelParameterIds) == kTarvelParam_Count;
}
static_assert(tarvelParameterIdsAreIndices());

/// The effect's own properties, all of the global scope, element 0.
enum : AudioUnitPropertyID {
    kTarvelProperty_InputLength = 3020,    // UInt64, samples; 0 = unknown; read only
    kTarvelProperty_TimeFormat = 9000,     // UInt32, a _zqposfmt_format; kept with the state
    kTarvelProperty_AutoPreflight = 64000, // UInt32
    kTarvelProperty_PreflightDirty = 64001 // UInt32
};

/// The function modes to which the editor attaches behaviour. Every other mode uses neither the
/// minimum silence nor the crop lengths.
enum : int { kTarvelFunction_UsesMinSilence = 1, kTarvelFunction_UsesCrop = 2 };
