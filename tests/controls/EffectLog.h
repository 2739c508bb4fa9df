#pragma once

#include <AudioUnitCompat/InProcessUnit.h>
#include <AudioUnitCompat/Testing.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

/// An effect without properties that keeps every parameter it is given.
class EffectStub : public ComponentInstanceRecord {
public:
    using Address = std::tuple<AudioUnitParameterID, AudioUnitScope, AudioUnitElement>;

    const std::map<Address, Float32>& values() const { return m_values; }

    OSStatus getPropertyInfo(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, UInt32*,
                             Boolean*) override;
    OSStatus getProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, void*) override;
    OSStatus setProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, const void*,
                         UInt32) override;
    OSStatus getParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                          AudioUnitElement element, AudioUnitParameterValue* outValue) override;
    OSStatus setParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                          AudioUnitElement element, AudioUnitParameterValue value, UInt32) override;

private:
    std::map<Address, Float32> m_values;
};

/// An effect, an editor's listener, and every call that writes to the effect as a line of text:
///
///     AUEventListenerNotify begin-gesture 1 from attackSlider
///     AUParameterSet 1 -19 from attackSlider
///     AudioUnitSetParameter 1 -19 scope 2 element 3
///
/// Scope and element are written when they are not 0. A call that names another effect or sends
/// with another listener says so. Host time stands still while the log lives.
class EffectLog : public audiounit_compat::CallProbe {
public:
    /// @param view  The object of the listener's registrations: values and gestures of parameters
    ///              1 and 2.
    /// @param proc  Hears them; null for a listener that hears nothing.
    explicit EffectLog(void* view = nullptr, AUEventListenerProc proc = nullptr);
    ~EffectLog() override;

    void name(const void* object, const char* name) { m_names[object] = name; }
    void failCallsWith(OSStatus result) { m_result = result; }
    std::vector<std::string> take();

    EffectStub* effect() { return &m_effect; }
    AUEventListenerRef listener() const { return m_listener; }

    OSStatus willCall(const audiounit_compat::Call& call) override;

private:
    std::string describe(const audiounit_compat::Call& call) const;

    audiounit_compat::FakeClock m_clock;
    EffectStub m_effect;
    AUEventListenerRef m_listener = nullptr;
    std::map<const void*, std::string> m_names;
    std::vector<std::string> m_lines;
    OSStatus m_result = 0;
};

/// "begin-gesture", "end-gesture" or "value-change".
const char* eventTypeText(AudioUnitEventType type);

/// A parameter value to a thousandth: "-12.5".
std::string valueText(double value);

/// The registrations of a listener for values and gestures of one parameter.
void registerParameter(AUEventListenerRef listener, void* object, AudioUnit unit,
                       AudioUnitParameterID parameter);
