#pragma once

#include <benchmark/benchmark.h>

#include <ctime>
#include <map>
#include <string>

/// Processor seconds of one call, by group and name.
inline std::map<std::string, std::map<std::string, double>> g_secondsOfRows;

/// Registers the benchmark "<group>/<name>", which times `work`. Its counters `vs_<peer>` are its
/// time divided by that of the rows of its group that ran before, in the same run.
template <typename Work>
void addComparedRow(const std::string& group, const std::string& name, Work work)
{
    benchmark::RegisterBenchmark((group + '/' + name).c_str(), [=](benchmark::State& state) {
        const std::clock_t start = std::clock();
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
        const double each = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC /
                            static_cast<double>(state.iterations());
        for (const auto& [peer, peerSeconds] : g_secondsOfRows[group]) {
            if (peer != name) {
                state.counters["vs_" + peer] = each / peerSeconds;
            }
        }
        g_secondsOfRows[group][name] = each;
    });
}
