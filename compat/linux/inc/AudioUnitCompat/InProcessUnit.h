#pragma once

#include <AudioUnit/AudioUnit.h>

/// Base of every audio unit that lives in this process. An `AudioUnit` handle is a pointer to one.
///
/// The client calls (`AudioUnitGetProperty` and its family) look the handle up among the live
/// units and hand over to the virtual functions below, so a call on a unit that is already gone
/// gives kAudio_ParamError instead of a fault. Construction makes a unit live, destruction ends
/// that and forgets its property listeners; registrations of event listeners on it just fall
/// silent. No other thread may be inside a call on the unit when its destruction begins.
///
/// The client calls make the checks that are the same for every unit, as their comments in
/// <AudioUnit/AUComponent.h> say. Property functions are called on the thread of the client, which
/// is no audio thread; the two parameter functions on any thread, so an implementation keeps its
/// parameter values in atomics.
struct __attribute__((visibility("default"))) ComponentInstanceRecord {
    ComponentInstanceRecord();
    virtual ~ComponentInstanceRecord();
    ComponentInstanceRecord(const ComponentInstanceRecord&) = delete;
    ComponentInstanceRecord& operator=(const ComponentInstanceRecord&) = delete;

    /// Tells size and writability of a property. Neither pointer is null.
    virtual OSStatus getPropertyInfo(AudioUnitPropertyID property, AudioUnitScope scope,
                                     AudioUnitElement element, UInt32* outSize,
                                     Boolean* outWritable) = 0;

    /// Writes the value of a property. The caller has checked that `outData` holds at least the
    /// size told by getPropertyInfo(). Objects written are owned by the caller (+1).
    virtual OSStatus getProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                                 AudioUnitElement element, void* outData) = 0;

    /// Stores the value of a property; objects are retained or copied. The caller has checked that
    /// it is writable and that `size` is the size told by getPropertyInfo(); null and 0 remove the
    /// value. Announces it with propertyChanged() where the property's rule says so.
    virtual OSStatus setProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                                 AudioUnitElement element, const void* data, UInt32 size) = 0;

    virtual OSStatus getParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                  AudioUnitElement element, AudioUnitParameterValue* outValue) = 0;

    virtual OSStatus setParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                  AudioUnitElement element, AudioUnitParameterValue value,
                                  UInt32 bufferOffsetInFrames) = 0;

    /// Calls every property listener of `property` on the calling thread, and lets the event
    /// listeners know. Any thread but an audio thread.
    void propertyChanged(AudioUnitPropertyID property, AudioUnitScope scope,
                         AudioUnitElement element);
};
