// The effect as its users meet it: a file trimmed and written, beside sox doing the same trim on
// the same file; a change of the settings on ten minutes of stereo at 48 kHz; and what an open
// recording takes in memory.
//
// Programs are timed by the clock on the wall, with all they do: start, read, trim, write. Flushing
// to the disk is part of an export here and none of sox's, so sox also has a row with it.

#include "host/app/ExportFile.h"
#include "host/effect/AudioFile.h"
#include "host/effect/TrimEngine.h"

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace host;

namespace {

constexpr unsigned kRate = 48000;
constexpr unsigned kChannels = 2;
constexpr unsigned kSeconds = 600;
constexpr double kMegabyte = 1e6;

struct FileKind {
    const char* extension;
    int format;
    ExportContainer container;
};

// clang-format off
constexpr FileKind kKinds[] = {
    { ".wav",  SF_FORMAT_WAV | SF_FORMAT_PCM_16,  ExportContainer::Wav },
    { ".flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, ExportContainer::Flac },
    { ".aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, ExportContainer::Aiff },
};
// clang-format on

/// A folder for the files of this run.
const std::string& folder()
{
    static const struct Folder {
        std::string path;
        Folder()
        {
            std::string pattern =
                (std::filesystem::temp_directory_path() / "bench-effect-XXXXXX").string();
            path = mkdtemp(pattern.data());
        }
        ~Folder() { std::filesystem::remove_all(path); }
    } s_folder;
    return s_folder.path;
}

/// Ten minutes: faint noise, between 5 s and 5 s before the end two seconds of tone and one of
/// noise in turn.
std::vector<short> makeSamples()
{
    std::vector<short> samples(std::size_t{kRate} * kSeconds * kChannels);
    std::minstd_rand random(1);
    std::uniform_real_distribution<double> noise(-10, 10);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double seconds = static_cast<double>(i / kChannels) / kRate;
        const bool isInside = seconds > 5 && seconds < kSeconds - 5;
        const double level = isInside && std::fmod(seconds, 3.0) < 2.0 ? 10000 : 0;
        samples[i] = static_cast<short>(level * std::sin(seconds * 2000) + noise(random));
    }
    return samples;
}

std::string sourceOf(const FileKind& kind)
{
    const std::string path = folder() + "/source" + kind.extension;
    if (!std::filesystem::exists(path)) {
        static const std::vector<short> s_samples = makeSamples();
        SF_INFO info{};
        info.samplerate = kRate;
        info.channels = kChannels;
        info.format = kind.format;
        SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
        sf_write_short(file, s_samples.data(), static_cast<sf_count_t>(s_samples.size()));
        sf_close(file);
    }
    return path;
}

TrimSettings trimSettings()
{
    TrimSettings settings;
    settings.attackThresholdDb = settings.releaseThresholdDb = -40;
    settings.fadeInLengthMs = 5;
    settings.fadeOutLengthMs = 50;
    return settings;
}

/// Bytes of this process in memory.
double residentBytes()
{
    std::ifstream status("/proc/self/statm");
    double total = 0;
    double resident = 0;
    status >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// ---- a whole file

void trimFile(benchmark::State& state, const FileKind& kind)
{
    const std::string source = sourceOf(kind);
    const std::string target = folder() + "/trimmed" + kind.extension;
    for (auto _ : state) {
        const TrimEngine engine(readAudioFile(source).recording);
        const ExportResult result =
            exportFile(engine, engine.plan(trimSettings()), {target, kind.container, true});
        if (result.status != ExportStatus::Done) {
            state.SkipWithError(result.problem.c_str());
        }
    }
    state.counters["x_realtime"] =
        benchmark::Counter(static_cast<double>(kSeconds) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate);
}

/// The same trim: what is quieter than the threshold goes at both ends, the edges are faded.
void trimFileWithSox(benchmark::State& state, const FileKind& kind, bool isFlushed)
{
    if (std::system("command -v sox > /dev/null") != 0) {
        state.SkipWithError("sox is missing");
        return;
    }
    const std::string target = folder() + "/sox" + kind.extension;
    std::string command = "sox -D '" + sourceOf(kind) + "' '" + target +
                          "' silence 1 1s -40d reverse silence 1 1s -40d fade l 0.05 reverse "
                          "fade l 0.005";
    if (isFlushed) {
        command += " && sync '" + target + "'";
    }
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("sox failed");
        }
    }
    state.counters["x_realtime"] =
        benchmark::Counter(static_cast<double>(kSeconds) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate);
}

// ---- parts of it

const TrimEngine& openEngine()
{
    static const TrimEngine s_engine(readAudioFile(sourceOf(kKinds[0])).recording);
    return s_engine;
}

void openRecording(benchmark::State& state)
{
    const std::string source = sourceOf(kKinds[0]);
    for (auto _ : state) {
        const TrimEngine engine(readAudioFile(source).recording);
        benchmark::DoNotOptimize(&engine);
    }
}

/// One step of a slider that is dragged: another threshold, another plan.
void dragStep(benchmark::State& state, FunctionMode function)
{
    const TrimEngine& engine = openEngine();
    TrimSettings settings = trimSettings();
    settings.function = function;
    float step = 0;
    for (auto _ : state) {
        step = step > 50 ? 0 : step + 0.1F;
        settings.attackThresholdDb = settings.releaseThresholdDb = -59 + step;
        benchmark::DoNotOptimize(engine.plan(settings));
    }
}

/// What one open recording takes: its samples once, and their peaks.
void memoryOfARecording(benchmark::State& state)
{
    const std::string source = sourceOf(kKinds[0]);
    for (auto _ : state) {
        const double before = residentBytes();
        const TrimEngine engine(readAudioFile(source).recording);
        const double samples = static_cast<double>(engine.recording().samples.size()) * 4;
        state.counters["resident_MB"] = (residentBytes() - before) / kMegabyte;
        state.counters["samples_MB"] = samples / kMegabyte;
    }
}

} // namespace

// First, before other rows have filled the heap.
BENCHMARK(memoryOfARecording)->Iterations(1)->Unit(benchmark::kMillisecond);

#define TRIM_ROWS(name, kind)                                                                      \
    BENCHMARK_CAPTURE(trimFile, name, kKinds[kind])->UseRealTime()->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(trimFileWithSox, name, kKinds[kind], false)                                  \
        ->UseRealTime()                                                                            \
        ->Unit(benchmark::kMillisecond);                                                           \
    BENCHMARK_CAPTURE(trimFileWithSox, name##AndFlush, kKinds[kind], true)                         \
        ->UseRealTime()                                                                            \
        ->Unit(benchmark::kMillisecond)

TRIM_ROWS(wav16, 0);
TRIM_ROWS(flac16, 1);
TRIM_ROWS(aiff24, 2);

BENCHMARK(openRecording)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, trimStartAndEnd, FunctionMode::TrimStartAndEnd)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, removeSilence, FunctionMode::RemoveSilence)
    ->Unit(benchmark::kMillisecond);
