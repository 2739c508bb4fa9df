#include <AudioToolbox/AudioToolbox.h>
#include <AudioUnitCompat/InProcessUnit.h>
#include <AudioUnitCompat/Testing.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <memory>
#include <vector>

// What one parameter change costs the thread that makes it, beside the bare virtual call to the
// unit, and what the delivering thread pays for a window full of changes.

namespace {

class Unit : public ComponentInstanceRecord {
public:
    OSStatus getPropertyInfo(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, UInt32*,
                             Boolean*) override
    {
        return kAudioUnitErr_InvalidProperty;
    }
    OSStatus getProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, void*) override
    {
        return kAudioUnitErr_InvalidProperty;
    }
    OSStatus setProperty(AudioUnitPropertyID, AudioUnitScope, AudioUnitElement, const void*,
                         UInt32) override
    {
        return kAudioUnitErr_InvalidProperty;
    }
    OSStatus getParameter(AudioUnitParameterID, AudioUnitScope, AudioUnitElement,
                          AudioUnitParameterValue* outValue) override
    {
        *outValue = m_value.load(std::memory_order_relaxed);
        return noErr;
    }
    OSStatus setParameter(AudioUnitParameterID, AudioUnitScope, AudioUnitElement,
                          AudioUnitParameterValue value, UInt32) override
    {
        m_value.store(value, std::memory_order_relaxed);
        return noErr;
    }

private:
    std::atomic<AudioUnitParameterValue> m_value{0};
};

void _hear(void* userData, void*, const AudioUnitEvent*, UInt64, AudioUnitParameterValue)
{
    ++*static_cast<std::size_t*>(userData);
}

// A listener registered as an editor registers it: ten parameters and four properties.
class Listener {
public:
    Listener(AudioUnit unit, Float32 interval, Float32 granularity)
    {
        AUEventListenerCreate(_hear, &heard, nullptr, nullptr, interval, granularity, &m_listener);
        AudioUnitEvent event{};
        for (AudioUnitParameterID parameter = 0; parameter < 10; ++parameter) {
            event.mArgument.mParameter = {unit, parameter, kAudioUnitScope_Global, 0};
            AUEventListenerAddEventType(m_listener, this, &event);
        }
        event.mEventType = kAudioUnitEvent_PropertyChange;
        for (const AudioUnitPropertyID property : {64000U, 64001U, 9000U, 8U}) {
            event.mArgument.mProperty = {unit, property, kAudioUnitScope_Global, 0};
            AUEventListenerAddEventType(m_listener, this, &event);
        }
    }
    ~Listener() { AUListenerDispose(m_listener); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::size_t heard = 0;

private:
    AUEventListenerRef m_listener = nullptr;
};

void bareSetParameter(benchmark::State& state)
{
    Unit unit;
    AudioUnit handle = &unit;
    benchmark::DoNotOptimize(handle);
    for (auto _ : state) {
        handle->setParameter(4, kAudioUnitScope_Global, 0, 1, 0);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(bareSetParameter);

void audioUnitSetParameter(benchmark::State& state)
{
    Unit unit;
    for (auto _ : state) {
        AudioUnitSetParameter(&unit, 4, kAudioUnitScope_Global, 0, 1, 0);
    }
}
BENCHMARK(audioUnitSetParameter);

// Argument: listeners, each of them hearing the change. Every 500 changes, a window at 10,000
// changes a second, the queue is emptied outside the time measured.
void parameterSet(benchmark::State& state)
{
    Unit unit;
    std::vector<std::unique_ptr<Listener>> listeners;
    for (int count = 0; count < state.range(0); ++count) {
        listeners.push_back(std::make_unique<Listener>(&unit, 0.05F, 0.05F));
    }
    const AudioUnitParameter parameter{&unit, 4, kAudioUnitScope_Global, 0};
    int waiting = 0;
    for (auto _ : state) {
        AUParameterSet(nullptr, nullptr, &parameter, 1, 0);
        if (++waiting == 500) {
            state.PauseTiming();
            audiounit_compat::deliverAll();
            waiting = 0;
            state.ResumeTiming();
        }
    }
}
BENCHMARK(parameterSet)->Arg(0)->Arg(1)->Arg(4);

// The first event after a delivery arms the timer: the dearest call there is.
void parameterSetThatArmsTheTimer(benchmark::State& state)
{
    Unit unit;
    const Listener listener(&unit, 0.05F, 0.05F);
    const AudioUnitParameter parameter{&unit, 4, kAudioUnitScope_Global, 0};
    for (auto _ : state) {
        AUParameterSet(nullptr, nullptr, &parameter, 1, 0);
        state.PauseTiming();
        audiounit_compat::deliverAll();
        state.ResumeTiming();
    }
}
BENCHMARK(parameterSetThatArmsTheTimer);

// 10,000 changes of one parameter made, merged and delivered. Argument: 1 when the window of each
// change reaches to the next, so that one is delivered; 0 when all are.
void tenThousandChanges(benchmark::State& state)
{
    Unit unit;
    Listener listener(&unit, 0.05F, state.range(0) != 0 ? 0.05F : 0.0F);
    const AudioUnitParameter parameter{&unit, 4, kAudioUnitScope_Global, 0};
    for (auto _ : state) {
        for (int change = 0; change < 10'000; ++change) {
            AUParameterSet(nullptr, nullptr, &parameter, static_cast<float>(change), 0);
        }
        audiounit_compat::deliverAll();
    }
    state.SetItemsProcessed(state.iterations() * 10'000);
    state.counters["delivered"] =
        static_cast<double>(listener.heard) / static_cast<double>(state.iterations());
}
BENCHMARK(tenThousandChanges)->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);

// The delivering thread's share alone: 500 changes, one window at 10,000 a second.
void deliverOneWindow(benchmark::State& state)
{
    Unit unit;
    const Listener listener(&unit, 0.05F, 0.05F);
    const AudioUnitParameter parameter{&unit, 4, kAudioUnitScope_Global, 0};
    for (auto _ : state) {
        state.PauseTiming();
        for (int change = 0; change < 500; ++change) {
            AUParameterSet(nullptr, nullptr, &parameter, static_cast<float>(change), 0);
        }
        state.ResumeTiming();
        audiounit_compat::deliverAll();
    }
}
BENCHMARK(deliverOneWindow)->Unit(benchmark::kMicrosecond);

} // namespace
