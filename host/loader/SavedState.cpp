#include "SavedState.h"

#include <AudioToolbox/AudioToolbox.h>

namespace host {

CFTypeRef copyState(AudioUnit unit)
{
    CFTypeRef state = nullptr;
    UInt32 size = sizeof state;
    const OSStatus status = AudioUnitGetProperty(unit, kAudioUnitProperty_ClassInfo,
                                                 kAudioUnitScope_Global, 0, &state, &size);
    return status == noErr ? state : nullptr;
}

OSStatus restoreState(AudioUnit unit, CFTypeRef state)
{
    const OSStatus status = AudioUnitSetProperty(unit, kAudioUnitProperty_ClassInfo,
                                                 kAudioUnitScope_Global, 0, &state, sizeof state);
    if (status != noErr) {
        return status;
    }
    const AudioUnitParameter everything{unit, kAUParameterListener_AnyParameter,
                                        kAudioUnitScope_Global, 0};
    return AUParameterListenerNotify(nullptr, nullptr, &everything);
}

} // namespace host
