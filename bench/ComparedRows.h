#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <map>
#include <string>

/// What a row counts: the processor's seconds, which other programs disturb less, or the seconds on
/// the wall, where work waits for something.
struct ProcessorTime {
    static constexpr bool kReal = false;
    static double now() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }
};
struct WallTime {
    static constexpr bool kReal = true;
    static double now()
    {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double>(time).count();
    }
};

/// Seconds of one call, by group and name.
inline std::map<std::string, std::map<std::string, double>> g_secondsOfRows;

/// Registers the benchmark "<group>/<name>", which times `work`. Its counters `vs_<peer>` are its
/// time divided by that of the rows of its group that ran before, in the same run.
template <typename Clock = ProcessorTime, typename Work>
void addComparedRow(const std::string& group, const std::string& name, Work work)
{
    auto* const row =
        benchmark::RegisterBenchmark((group + '/' + name).c_str(), [=](benchmark::State& state) {
            const double start = Clock::now();
            for (auto _ : state) {
                work();
                benchmark::ClobberMemory();
            }
            const double each = (Clock::now() - start) / static_cast<double>(state.iterations());
            for (const auto& [peer, peerSeconds] : g_secondsOfRows[group]) {
                if (peer != name) {
                    state.counters["vs_" + peer] = each / peerSeconds;
                }
            }
            g_secondsOfRows[group][name] = each;
        });
    if (Clock::kReal) {
        row->UseRealTime();
    }
}
