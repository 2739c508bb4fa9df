#include "EffectLog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

using audiounit_compat::Call;

OSStatus EffectStub::getPropertyInfo(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, UInt32*,
                                     Boolean*)
{
    return kAudioUnitErr_InvalidProperty;
}

OSStatus EffectStub::getProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, void*)
{
    return kAudioUnitErr_InvalidProperty;
}

OSStatus EffectStub::setProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, const void*,
                                 UInt32)
{
    return kAudioUnitErr_InvalidProperty;
}

OSStatus EffectStub::getParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                  AudioUnitElement element, AudioUnitParameterValue* outValue)
{
    *outValue = m_values[{parameter, scope, element}];
    return 0;
}

OSStatus EffectStub::setParameter(AudioUnitParameterID parameter, AudioUnitScope scope,
                                  AudioUnitElement element, AudioUnitParameterValue value, UInt32)
{
    m_values[{parameter, scope, element}] = value;
    return 0;
}

const char* eventTypeText(AudioUnitEventType type)
{
    const char* const texts[] = {"value-change", "begin-gesture", "end-gesture", "property-change"};
    return type < std::size(texts) ? texts[type] : "unknown";
}

std::string valueText(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g", std::round(value * 1000) / 1000);
    return text;
}

void registerParameter(AUEventListenerRef listener, void* object, AudioUnit unit,
                       AudioUnitParameterID parameter)
{
    for (const AudioUnitEventType type :
         {kAudioUnitEvent_ParameterValueChange, kAudioUnitEvent_BeginParameterChangeGesture,
          kAudioUnitEvent_EndParameterChangeGesture}) {
        AudioUnitEvent event{};
        event.mEventType = type;
        event.mArgument.mParameter = {unit, parameter, kAudioUnitScope_Global, 0};
        EXPECT_EQ(AUEventListenerAddEventType(listener, object, &event), 0);
    }
}

static void hearNothing(void*, void*, const AudioUnitEvent*, UInt64, AudioUnitParameterValue) {}

EffectLog::EffectLog(void* view, AUEventListenerProc proc)
{
    EXPECT_EQ(AUEventListenerCreate(proc != nullptr ? proc : hearNothing, view, nullptr, nullptr,
                                    0.05f, 0.05f, &m_listener),
              0);
    for (const AudioUnitParameterID parameter : {1u, 2u}) {
        registerParameter(m_listener, view, &m_effect, parameter);
    }
    setCallProbe(this);
}

EffectLog::~EffectLog()
{
    audiounit_compat::setCallProbe(nullptr);
    AUListenerDispose(m_listener);
}

std::vector<std::string> EffectLog::take() { return std::exchange(m_lines, {}); }

std::string EffectLog::describe(const Call& call) const
{
    const bool isNotice = std::strcmp(call.function, "AUEventListenerNotify") == 0;
    std::string line = call.function;
    if (isNotice) {
        line += std::string(" ") + eventTypeText(call.eventType);
    }
    line += " " + std::to_string(call.id);
    if (!isNotice) {
        line += " " + valueText(call.value);
    }
    if (call.scope != 0 || call.element != 0) {
        line += " scope " + std::to_string(call.scope);
        line += " element " + std::to_string(call.element);
    }
    if (call.unit != &m_effect) {
        line += " of another effect";
    }
    if (std::strcmp(call.function, "AudioUnitSetParameter") == 0) {
        return line;
    }
    const auto sender = m_names.find(call.object);
    line += " from " + (sender != m_names.end()  ? sender->second
                        : call.object == nullptr ? std::string("nobody")
                                                 : std::string("a stranger"));
    return call.listener == m_listener ? line : line + " with another listener";
}

OSStatus EffectLog::willCall(const Call& call)
{
    for (const char* const writing :
         {"AUEventListenerNotify", "AUParameterSet", "AudioUnitSetParameter"}) {
        if (std::strcmp(call.function, writing) == 0) {
            m_lines.push_back(describe(call));
            return m_result;
        }
    }
    return 0;
}
