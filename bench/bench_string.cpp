// Formatting and conversion of text beside what they stand on: the bare C library, the bare codecvt
// facet, and memcpy as the floor. Ours comes last in each group; its counters `vs_<peer>` are its
// time divided by the peer's in the same run.

#include "XeString.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

namespace {

constexpr std::size_t kTextBytes = 1024;

std::string repeated(const std::string& phrase)
{
    std::string text;
    while (text.size() + phrase.size() <= kTextBytes) {
        text += phrase;
    }
    return text.append(kTextBytes - text.size(), '.');
}

/// A text of 1 KiB of UTF-8, and the same text wide.
struct Text {
    explicit Text(const std::string& phrase) : narrow(repeated(phrase))
    {
        xeassign(wide, narrow.c_str());
    }

    std::string narrow;
    std::wstring wide;
};

const Text& ascii()
{
    static const Text text("Recordings/2024-05-17/Take 12 - Piano.wav; ");
    return text;
}

// Characters of one to four bytes.
const Text& mixed()
{
    static const Text text("Pr\xC3\xA9lude \xE2\x82\xAC"
                           "5 \xD0\x91\xD0\xB0\xD1\x85 \xF0\x9F\x8E\xB5; ");
    return text;
}

/// Processor seconds of one call, by group and name.
std::map<std::string, std::map<std::string, double>> g_seconds;

/// Registers "<group>/<name>", which times `work` and compares it with the rows of its group that
/// ran before.
template <typename Work>
void addRow(const std::string& group, const std::string& name, Work work)
{
    benchmark::RegisterBenchmark((group + '/' + name).c_str(), [=](benchmark::State& state) {
        const std::clock_t start = std::clock();
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
        const double each = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC /
                            static_cast<double>(state.iterations());
        for (const auto& [peer, peerSeconds] : g_seconds[group]) {
            if (peer != name) {
                state.counters["vs_" + peer] = each / peerSeconds;
            }
        }
        g_seconds[group][name] = each;
    });
}

void addFormat(const std::string& size, const std::string& narrow, const std::wstring& wide)
{
    addRow("format_wide_" + size, "vswprintf", [&wide] {
        wchar_t buffer[2 * kTextBytes];
        benchmark::DoNotOptimize(
            std::swprintf(buffer, std::size(buffer), L"%ls %d %.3f", wide.c_str(), 42, 0.5));
    });
    addRow("format_wide_" + size, "format", [&wide] {
        static _XeString<wchar_t> out;
        benchmark::DoNotOptimize(out.format(L"%ls %d %.3f", wide.c_str(), 42, 0.5));
    });
    addRow("format_narrow_" + size, "vsnprintf", [&narrow] {
        char buffer[2 * kTextBytes];
        benchmark::DoNotOptimize(
            std::snprintf(buffer, std::size(buffer), "%s %d %.3f", narrow.c_str(), 42, 0.5));
    });
    addRow("format_narrow_" + size, "format", [&narrow] {
        static _XeString<char> out;
        benchmark::DoNotOptimize(out.format("%s %d %.3f", narrow.c_str(), 42, 0.5));
    });
}

void addToWide(const std::string& group, const Text& text)
{
    static wchar_t buffer[kTextBytes + 1];
    addRow(group, "memcpy",
           [&text] { std::memcpy(buffer, text.wide.data(), text.wide.size() * sizeof(wchar_t)); });
    addRow(group, "mbstowcs", [&text] {
        benchmark::DoNotOptimize(std::mbstowcs(buffer, text.narrow.c_str(), kTextBytes));
    });
    addRow(group, "facet", [&text] {
        std::mbstate_t state{};
        const char* next = nullptr;
        wchar_t* end = nullptr;
        const char* const from = text.narrow.data();
        benchmark::DoNotOptimize(xenon::get_facet().in(state, from, from + kTextBytes, next, buffer,
                                                       buffer + kTextBytes, end));
    });
    addRow(group, "StdConvert", [&text] {
        StdConvert(buffer, kTextBytes, text.narrow.data(), static_cast<int>(kTextBytes));
    });
}

void addToNarrow(const std::string& group, const Text& text)
{
    static char buffer[kTextBytes + 1];
    addRow(group, "memcpy", [&text] { std::memcpy(buffer, text.narrow.data(), kTextBytes); });
    addRow(group, "wcstombs", [&text] {
        benchmark::DoNotOptimize(std::wcstombs(buffer, text.wide.c_str(), kTextBytes));
    });
    addRow(group, "facet", [&text] {
        std::mbstate_t state{};
        const wchar_t* next = nullptr;
        char* end = nullptr;
        const wchar_t* const from = text.wide.data();
        benchmark::DoNotOptimize(xenon::get_facet().out(state, from, from + text.wide.size(), next,
                                                        buffer, buffer + kTextBytes, end));
    });
    addRow(group, "StdConvert", [&text] {
        StdConvert(buffer, kTextBytes, text.wide.data(), static_cast<int>(text.wide.size()));
    });
}

// Before main(), which runs what is registered.
[[maybe_unused]] const bool g_registered = [] {
    static const std::string kShortNarrow = "Take 12";
    static const std::wstring kShortWide = L"Take 12";
    addFormat("short", kShortNarrow, kShortWide);
    addFormat("1KiB", ascii().narrow, ascii().wide);
    addToWide("to_wide_ascii", ascii());
    addToWide("to_wide_mixed", mixed());
    addToNarrow("to_narrow_ascii", ascii());
    addToNarrow("to_narrow_mixed", mixed());
    return true;
}();

} // namespace
