// How long a change of the settings takes on ten minutes of stereo at 48 kHz. The floor is one
// pass over all samples, which is what analysis without the kept peaks would have to make at
// least.

#include "BenchRecording.h"
#include "host/effect/TrimEngine.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>

using namespace host;

namespace {

const TrimEngine& engine()
{
    static const TrimEngine engine(bench::tenMinutesOfStereo());
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
    std::vector<float> block(std::size_t{4096} * engine().recording().channels);
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
