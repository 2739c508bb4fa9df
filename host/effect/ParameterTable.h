#pragma once

#include "TarvelProtocol.h"

namespace host {

/// What the effect tells of a parameter.
struct ParameterTraits {
    const char* name; // ASCII
    AudioUnitParameterID id;
    AudioUnitParameterUnit unit;
    AudioUnitParameterValue minimum;
    AudioUnitParameterValue maximum;
    AudioUnitParameterValue initial;
    bool hasValueStrings;
};

/// Row of a parameter; null when the effect has no such parameter.
const ParameterTraits* findParameter(AudioUnitParameterID id);

/// Name of a function mode, also shown as value string of the function parameter.
/// @param mode  Below kFunctionModeCount.
const char* functionModeName(unsigned mode);

} // namespace host
