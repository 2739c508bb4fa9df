#pragma once

#include "HostMusic.h"
#include "Recording.h"
#include "ReferenceLedger.h"
#include "TarvelProtocol.h"
#include "TrimSettings.h"

#include <AudioUnitCompat/InProcessUnit.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

/// The effect beside which the editor opens: it holds the recording, the ten parameters and the
/// properties of the editor's protocol.
///
/// Announcements, all made synchronously on the setting thread:
/// - the private properties (input length, time format, both preflight flags) at every successful
///   set, also of an equal value;
/// - the stream format and the host callbacks only when they differ from what was there;
/// - the stream format also at every write of the sample rate;
/// - restoring a saved state announces the present preset and, where the state holds them, time
///   format and preflight flag. Its parameters change silently: the restoring host tells
///   listeners with AnyParameter (see loader/SavedState.h).
///
/// There is one format for input and output, read on input, output or global scope and always
/// announced on output scope, element 0, where listeners look. Parameters are not clamped to
/// their range and never announced.
///
/// Parameters and scalar properties may be set and read on any thread. The recording, the
/// view bundle, the callbacks, the state and every property that hands out objects are [main].
class TarvelEffect final : public ComponentInstanceRecord {
public:
    TarvelEffect();

    /// Replaces the recording; null takes it away. Rate, channels and length follow it, announced
    /// as above. Parameters stay.
    void setRecording(std::shared_ptr<const host::Recording> recording);
    const std::shared_ptr<const host::Recording>& recording() const { return m_recording; }

    /// Present parameters; codes outside their list read as the nearest one in it.
    host::TrimSettings settings() const;

    /// Sets what the effect reports, without a recording. `hz` is finite and above 0.
    void setSampleRate(Float64 hz);
    void setInputLength(UInt64 samples);

    /// Where clients find the editor: path of a bundle and names of its view factory classes, in
    /// order of preference. Without a class name there is no such property.
    void setViewBundle(const std::string& path, std::vector<std::string> classNames);

    /// Off: the value strings of the function parameter fail as an unknown property.
    void setValueStringsOffered(bool offered) { m_valueStringsOffered = offered; }

    /// References to property values that clients have not released yet.
    std::size_t outstandingReferences() const { return m_ledger.outstanding(); }

    OSStatus getPropertyInfo(AudioUnitPropertyID property, AudioUnitScope scope,
                             AudioUnitElement element, UInt32* outSize,
                             Boolean* outWritable) override;
    OSStatus getProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                         AudioUnitElement element, void* outData) override;
    OSStatus setProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                         AudioUnitElement element, const void* data, UInt32 size) override;
    OSStatus getParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                          AudioUnitElement element, AudioUnitParameterValue* outValue) override;
    OSStatus setParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                          AudioUnitElement element, AudioUnitParameterValue value,
                          UInt32 bufferOffsetInFrames) override;

private:
    struct PropertyRow;
    static const PropertyRow kProperties[];

    OSStatus locate(AudioUnitPropertyID property, AudioUnitScope scope, AudioUnitElement element,
                    const PropertyRow*& outRow) const;
    bool isOffered(AudioUnitPropertyID property, AudioUnitElement element) const;
    OSStatus removeValue(const PropertyRow& row);
    void announce(AudioUnitPropertyID property);
    void announceFormat();
    AudioStreamBasicDescription format() const;
    void adoptFormat(Float64 sampleRate, UInt32 channels);
    void storeCallbacks(const HostCallbackInfo& callbacks);
    void restorePresetName(CFTypeRef name);

    // One reader and, where a property is writable, one writer for each row of the table. The
    // caller has checked address and size.
    OSStatus getClassInfo(AudioUnitElement element, void* outData);
    OSStatus setClassInfo(const void* data);
    OSStatus writeSampleRate(const void* data);
    OSStatus getParameterList(AudioUnitElement element, void* outData);
    OSStatus getParameterInfo(AudioUnitElement element, void* outData);
    OSStatus getStreamFormat(AudioUnitElement element, void* outData);
    OSStatus setStreamFormat(const void* data);
    OSStatus getValueStrings(AudioUnitElement element, void* outData);
    OSStatus getHostCallbacks(AudioUnitElement element, void* outData);
    OSStatus setHostCallbacks(const void* data);
    OSStatus getViewInfo(AudioUnitElement element, void* outData);
    OSStatus getPresentPreset(AudioUnitElement element, void* outData);
    OSStatus setPresentPreset(const void* data);
    template <auto Field>
    OSStatus getScalar(AudioUnitElement element, void* outData);
    template <auto Field, AudioUnitPropertyID Property>
    OSStatus setScalar(const void* data);

    std::array<std::atomic<AudioUnitParameterValue>, host::kParameterCount> m_parameters;
    std::atomic<Float64> m_sampleRate = 44100.0;
    std::atomic<UInt32> m_channels = 2;
    std::atomic<UInt64> m_inputLength = 0;
    std::atomic<UInt32> m_timeFormat = 1;
    std::atomic<UInt32> m_autoPreflight = 0;
    std::atomic<UInt32> m_preflightDirty = 0;
    std::atomic<bool> m_valueStringsOffered = true;
    HostCallbackInfo m_callbacks{};
    SInt32 m_presetNumber = -1;
    std::string m_presetName = "Untitled";
    std::string m_bundlePath;
    std::vector<std::string> m_viewClasses;
    std::shared_ptr<const host::Recording> m_recording;
    host::ReferenceLedger m_ledger;
};
