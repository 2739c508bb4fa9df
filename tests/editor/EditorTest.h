#pragma once

#import "GuiTest.h"
#import "OpenEditor.h"

#include "host/effect/EffectProbe.h"
#include "host/effect/TarvelEffect.h"

#include <AudioUnitCompat/Testing.h>

#include <gmock/gmock.h>

#include <cstdio>
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
        if (m_pool != nil) {
            [m_pool drain];
            EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u) << "a view is still alive";
        }
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
              "releaseTextField", "releaseSlider", "fadeInTypePopupButton", "fadeInLengthTextField",
              "fadeInLengthStepper", "fadeOutTypePopupButton", "fadeOutLengthTextField",
              "fadeOutLengthStepper", "minSilenceTextField", "minSilenceStepper",
              "cropStartTextField", "cropStartStepper", "cropLengthTextField",
              "cropLengthStepper"}) {
            log().name(editor.outlet(outlet), outlet);
        }
    }

    OpenEditor& editor() { return *m_editor; }
    TarvelEffect& effect() { return *m_effect; }
    host::EffectProbe& probe() { return *m_probe; }
    host::CallLog& log() { return m_probe->log(); }

    /// Makes calls fail: of one function (empty: of all), for one ID or all, every time or the
    /// nth time from now on.
    void fail(const char* function, std::optional<UInt32> id = {}, int nth = 0)
    {
        m_probe->inject({function, id, nth});
    }

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

    /// Stores a display format in the effect, as another client does.
    void setTimeFormat(UInt32 format)
    {
        m_effect->setProperty(kTarvelProperty_TimeFormat, kAudioUnitScope_Global, 0, &format,
                              sizeof format);
    }

    void automateAndDeliver(AudioUnitParameterID id, float value)
    {
        automate(id, value);
        deliver();
        log().take();
    }

    /// The calls of one write: a gesture round the value.
    static std::vector<std::string> write(UInt32 id, float value, const std::string& sender)
    {
        char number[32];
        std::snprintf(number, sizeof number, "%g", value);
        const std::string address = std::to_string(id) + " global/0";
        const std::string object = " object " + sender;
        return {"AUEventListenerNotify listener 1 begin-gesture " + address + object,
                "AUParameterSet listener 1 " + address + " value " + number + object,
                "AUEventListenerNotify listener 1 end-gesture " + address + object};
    }

    std::optional<audiounit_compat::FakeClock> m_clock;

private:
    NSAutoreleasePool* m_pool = nil;
    std::optional<host::EffectProbe> m_probe;
    std::unique_ptr<TarvelEffect> m_effect;
    std::optional<OpenEditor> m_editor;
};

} // namespace editor_test
