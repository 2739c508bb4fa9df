// Copying and deleting beside cp and rm: 2,000 small files, and one of 1 GiB. All contenders run in
// every round, each in another place of the order, since what the disk has still to write from one
// slows the next. The counters are the medians in milliseconds, and `vs_<peer>` our median divided
// by the peer's. To start a peer takes a shell and a process: "nothing" is that alone.
//
// The files lie in the system's temporary folder, and in memory where /dev/shm is.

#include "XeFileSystem.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "bench_copy: %s failed\n", what);
        std::exit(1);
    }
}

/// A folder of its own below another, removed at the end.
class Place {
public:
    explicit Place(const fs::path& below)
    {
        std::string name = below / "tarvel-bench-XXXXXX";
        require(mkdtemp(name.data()) != nullptr, "mkdtemp");
        m_path = name;
    }
    ~Place() { fs::remove_all(m_path); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    std::string operator/(const char* name) const { return m_path / name; }

private:
    fs::path m_path;
};

void makeSmallFiles(const std::string& folder)
{
    fs::create_directory(folder);
    const std::string bytes(4096, 's');
    for (int i = 0; i < 2000; ++i) {
        std::ofstream(folder + '/' + std::to_string(i)) << bytes;
    }
}

void makeLargeFile(const std::string& path)
{
    const std::string block(1 << 20, 'l');
    std::ofstream file(path, std::ios::binary);
    for (int i = 0; i < 1024; ++i) {
        file << block;
    }
    require(file.flush().good(), "writing 1 GiB");
}

void run(const std::string& command)
{
    require(std::system(command.c_str()) == 0, command.c_str());
}

std::wstring wide(const std::string& path) { return {path.begin(), path.end()}; }

struct Contender {
    std::string name;
    std::function<void()> work;
};

const Contender kNothing = {"nothing", [] { run("true"); }};

double millisecondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

/// @param prepare  Before each, not timed.
/// @param ours     The last contender.
void compete(benchmark::State& state, const std::vector<Contender>& contenders,
             const std::function<void()>& prepare, std::size_t rounds)
{
    std::vector<std::vector<double>> times(contenders.size());
    for (auto _ : state) {
        for (std::size_t round = 0; round < rounds; ++round) {
            for (std::size_t i = 0; i < contenders.size(); ++i) {
                const std::size_t turn = (round + i) % contenders.size();
                prepare();
                sync();
                times[turn].push_back(millisecondsOf(contenders[turn].work));
            }
        }
    }
    const double ours = median(times.back());
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        const double theirs = median(times[i]);
        state.counters[contenders[i].name] = theirs;
        if (i + 1 < contenders.size() && contenders[i].name != kNothing.name) {
            state.counters["vs_" + contenders[i].name] = ours / theirs;
        }
    }
}

void copySmall(benchmark::State& state, const fs::path& below)
{
    const Place place(below);
    const std::string from = place / "from";
    const std::string to = place / "to";
    makeSmallFiles(from);
    compete(
        state,
        {kNothing,
         {"cp", [&] { run("cp -r " + from + ' ' + to); }},
         {"copyFolder",
          [&] {
              require(XeFileSystem::copyFolder(wide(from).c_str(), wide(to).c_str(), kCopyMerge) ==
                          0,
                      "copyFolder");
          }}},
        [&] { fs::remove_all(to); }, 9);
}

void copyLarge(benchmark::State& state, const fs::path& below)
{
    const Place place(below);
    const std::string from = place / "from";
    const std::string to = place / "to";
    makeLargeFile(from);
    compete(
        state,
        {{"cp", [&] { run("cp " + from + ' ' + to); }},
         {"copyFile",
          [&] {
              require(XeFileSystem::copyFile(wide(from).c_str(), wide(to).c_str(), false) == 0,
                      "copyFile");
          }}},
        [&] { fs::remove(to); }, 8);
}

void deleteSmall(benchmark::State& state, const fs::path& below)
{
    const Place place(below);
    const std::string folder = place / "folder";
    compete(
        state,
        {kNothing,
         {"rm", [&] { run("rm -rf " + folder); }},
         {"deleteFolder",
          [&] {
              require(XeFileSystem::deleteFolder(wide(folder).c_str(), false) == 0, "deleteFolder");
          }}},
        [&] {
            fs::remove_all(folder);
            makeSmallFiles(folder);
        },
        9);
}

[[maybe_unused]] const bool g_registered = [] {
    using Benchmark = void (*)(benchmark::State&, const fs::path&);
    const std::pair<const char*, Benchmark> rows[] = {
        {"copy_2000_small", copySmall},
        {"delete_2000_small", deleteSmall},
        {"copy_1GiB", copyLarge},
    };
    std::vector<std::pair<std::string, fs::path>> places = {{"disk", fs::temp_directory_path()}};
    if (fs::is_directory("/dev/shm")) {
        places.emplace_back("memory", "/dev/shm");
    }
    for (const auto& [name, function] : rows) {
        for (const auto& [where, path] : places) {
            benchmark::RegisterBenchmark((std::string(name) + '/' + where).c_str(), function, path)
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
    }
    return true;
}();

} // namespace
