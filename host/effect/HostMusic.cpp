#include "HostMusic.h"

namespace host {

namespace {

/// Callers leave out the outputs that they do not want.
template <typename T, typename Value>
void put(T* output, Value value)
{
    if (output != nullptr) {
        *output = value;
    }
}

OSStatus beatAndTempo(void* userData, Float64* beat, Float64* tempo)
{
    const auto& music = *static_cast<const HostMusic*>(userData);
    if (music.result == noErr) {
        put(beat, 0.0);
        put(tempo, music.tempo);
    }
    return music.result;
}

OSStatus musicalTimeLocation(void* userData, UInt32* deltaToNextBeat, Float32* numerator,
                             UInt32* denominator, Float64* measureDownBeat)
{
    const auto& music = *static_cast<const HostMusic*>(userData);
    if (music.result == noErr) {
        put(deltaToNextBeat, 0U);
        put(numerator, music.numerator);
        put(denominator, music.denominator);
        put(measureDownBeat, 0.0);
    }
    return music.result;
}

} // namespace

HostCallbackInfo HostMusic::callbacks()
{
    HostCallbackInfo info{};
    info.hostUserData = this;
    info.beatAndTempoProc = beatAndTempo;
    info.musicalTimeLocationProc = musicalTimeLocation;
    return info;
}

} // namespace host
