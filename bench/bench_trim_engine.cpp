// How long a change of the settings takes on ten minutes of stereo at 48 kHz. The floor is one
// pass over all samples, which is what analysis without the kept peaks would have to make at
// least.

#include "host/effect/TrimEngine.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

using namespace host;

namespace {

constexpr unsigned kRate = 48000;
constexpr unsigned kChannels = 2;
constexpr unsigned kSeconds = 600;

/// Two seconds of tone, one of faint noise, and so on.
std::shared_ptr<const Recording> makeRecording()
{
    auto recording = std::make_shared<Recording>();
    recording->sampleRate = kRate;
    recording->channels = kChannels;
    recording->samples.resize(std::size_t{kRate} * kSeconds * kChannels);
    std::minstd_rand random(1);
    std::uniform_real_distribution<double> noise(-0.0003, 0.0003);
    for (std::size_t i = 0; i < recording->samples.size(); ++i) {
        const double seconds = static_cast<double>(i / kChannels) / kRate;
        const double level = std::fmod(seconds, 3.0) < 2.0 ? 0.3 : 0.0;
        recording->samples[i] =
            static_cast<float>(level * std::sin(seconds * 2000) + noise(random));
    }
    return recording;
}

const TrimEngine& engine()
{
    static const TrimEngine engine(makeRecording());
    return engine;
}

/// A plan for one threshold after another, as when its slider is dragged.
void plan(benchmark::State& state, FunctionMode function, float minSilenceMs)
{
    TrimSettings settings;
    settings.function = function;
    settings.minSilenceMs = minSilenceMs;
    const TrimEngine& measured = engine();
    float step = 0;
    for (auto _ : state) {
        step = step > 20 ? 0 : step + 0.1F;
        settings.attackThresholdDb = settings.releaseThresholdDb = -55 + step;
        benchmark::DoNotOptimize(measured.plan(settings));
    }
}

void floorOneReadOfAllSamples(benchmark::State& state)
{
    const std::vector<float>& samples = engine().recording().samples;
    for (auto _ : state) {
        float loudest = 0;
        for (const float sample : samples) {
            loudest = std::max(loudest, std::fabs(sample));
        }
        benchmark::DoNotOptimize(loudest);
    }
}

void takePeaksOnce(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PeakTable(engine().recording()));
    }
}

void renderAll(benchmark::State& state)
{
    TrimSettings settings;
    settings.function = FunctionMode::RemoveSilence;
    const TrimPlan plan = engine().plan(settings);
    std::vector<float> block(std::size_t{4096} * kChannels);
    for (auto _ : state) {
        std::uint64_t done = 0;
        while (const auto got = engine().render(plan, done, 4096, block.data())) {
            done += got;
        }
        benchmark::DoNotOptimize(done);
    }
}

} // namespace

BENCHMARK(floorOneReadOfAllSamples)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, trimStartAndEnd, FunctionMode::TrimStartAndEnd, 500.0F)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, removeSilence500ms, FunctionMode::RemoveSilence, 500.0F)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, removeSilence1ms, FunctionMode::RemoveSilence, 1.0F)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(takePeaksOnce)->Unit(benchmark::kMillisecond);
BENCHMARK(renderAll)->Unit(benchmark::kMillisecond);
