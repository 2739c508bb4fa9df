#pragma once

#include <AudioUnit/AudioUnit.h>

namespace audiounit_compat {

/// AudioUnitSetParameter() without the probe.
OSStatus setParameter(const AudioUnitParameter& parameter, AudioUnitParameterValue value,
                      UInt32 bufferOffsetInFrames);

} // namespace audiounit_compat
