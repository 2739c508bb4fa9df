#pragma once

#import "GuiTest.h"
#import "OpenEditor.h"

#include "host/effect/EffectProbe.h"
#include "host/effect/TarvelEffect.h"

#include <AudioUnitCompat/Testing.h>

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace editor_test {

/// A live effect of 44100 Hz and unknown length, every call to it logged, and a clock that stands
/// still: events wait until deliver().
class EditorTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_pool = [[NSAutoreleasePool alloc] init];
        m_clock.emplace();
        m_probe.emplace();
        m_effect = std::make_unique<TarvelEffect>();
    }

    void TearDown() override
    {
        m_editor.reset();
        m_effect.reset();
        m_probe.reset();
        m_clock.reset();
        [m_pool drain];
    }

    /// Opens the editor and names its parts in the log.
    OpenEditor& open()
    {
        m_editor.emplace(m_effect.get());
        log().take();
        name(*m_editor);
        return *m_editor;
    }

    void name(OpenEditor& editor)
    {
        log().name(editor.view(), "view");
        for (const char* outlet :
             {"functionPopupButton", "gainUnitsButtons", "attackTextField", "attackSlider",
              "releaseTextField", "releaseSlider", "fadeInTypePopupButton",
              "fadeInLengthTextField", "fadeInLengthStepper", "fadeOutTypePopupButton",
              "fadeOutLengthTextField", "fadeOutLengthStepper", "minSilenceTextField",
              "minSilenceStepper", "cropStartTextField", "cropStartStepper",
              "cropLengthTextField", "cropLengthStepper"}) {
            log().name(editor.outlet(outlet), outlet);
        }
    }

    OpenEditor& editor() { return *m_editor; }
    TarvelEffect& effect() { return *m_effect; }
    host::EffectProbe& probe() { return *m_probe; }
    host::CallLog& log() { return m_probe->log(); }

    /// Delivers every event that waits.
    static void deliver() { audiounit_compat::deliverAll(); }

    /// Value of a parameter as the effect holds it.
    float parameter(AudioUnitParameterID id)
    {
        AudioUnitParameterValue value = 0;
        m_effect->getParameter(id, kAudioUnitScope_Global, 0, &value);
        return value;
    }

    /// Writes a parameter as a host's automation does; the editor hears of it in deliver().
    void automate(AudioUnitParameterID id, float value)
    {
        const AudioUnitParameter parameter{m_effect.get(), id, kAudioUnitScope_Global, 0};
        AUParameterSet(nullptr, nullptr, &parameter, value, 0);
    }

    void automateAndDeliver(AudioUnitParameterID id, float value)
    {
        automate(id, value);
        deliver();
        log().take();
    }

    std::optional<audiounit_compat::FakeClock> m_clock;

private:
    NSAutoreleasePool* m_pool = nil;
    std::optional<host::EffectProbe> m_probe;
    std::unique_ptr<TarvelEffect> m_effect;
    std::optional<OpenEditor> m_editor;
};

} // namespace editor_test
