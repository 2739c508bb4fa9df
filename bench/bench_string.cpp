// Formatting and conversion of text beside what they stand on: the bare C library, the bare codecvt
// facet, and memcpy as the floor. Ours comes last in each group; its counters `vs_<peer>` are its
// time divided by the peer's in the same run.

#include "XeString.h"

#include "ComparedRows.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
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

void addFormat(const std::string& size, const std::string& narrow, const std::wstring& wide)
{
    addComparedRow("format_wide_" + size, "vswprintf", [&wide] {
        wchar_t buffer[2 * kTextBytes];
        benchmark::DoNotOptimize(
            std::swprintf(buffer, std::size(buffer), L"%ls %d %.3f", wide.c_str(), 42, 0.5));
    });
    addComparedRow("format_wide_" + size, "format", [&wide] {
        static _XeString<wchar_t> out;
        benchmark::DoNotOptimize(out.format(L"%ls %d %.3f", wide.c_str(), 42, 0.5));
    });
    addComparedRow("format_narrow_" + size, "vsnprintf", [&narrow] {
        char buffer[2 * kTextBytes];
        benchmark::DoNotOptimize(
            std::snprintf(buffer, std::size(buffer), "%s %d %.3f", narrow.c_str(), 42, 0.5));
    });
    addComparedRow("format_narrow_" + size, "format", [&narrow] {
        static _XeString<char> out;
        benchmark::DoNotOptimize(out.format("%s %d %.3f", narrow.c_str(), 42, 0.5));
    });
}

void addToWide(const std::string& group, const Text& text)
{
    static wchar_t buffer[kTextBytes + 1];
    addComparedRow(group, "memcpy", [&text] {
        std::memcpy(buffer, text.wide.data(), text.wide.size() * sizeof(wchar_t));
    });
    addComparedRow(group, "mbstowcs", [&text] {
        benchmark::DoNotOptimize(std::mbstowcs(buffer, text.narrow.c_str(), kTextBytes));
    });
    addComparedRow(group, "facet", [&text] {
        std::mbstate_t state{};
        const char* next = nullptr;
        wchar_t* end = nullptr;
        const char* const from = text.narrow.data();
        benchmark::DoNotOptimize(xenon::get_facet().in(state, from, from + kTextBytes, next, buffer,
                                                       buffer + kTextBytes, end));
    });
    addComparedRow(group, "StdConvert", [&text] {
        StdConvert(buffer, kTextBytes, text.narrow.data(), static_cast<int>(kTextBytes));
    });
}

void addToNarrow(const std::string& group, const Text& text)
{
    static char buffer[kTextBytes + 1];
    addComparedRow(group, "memcpy",
                   [&text] { std::memcpy(buffer, text.narrow.data(), kTextBytes); });
    addComparedRow(group, "wcstombs", [&text] {
        benchmark::DoNotOptimize(std::wcstombs(buffer, text.wide.c_str(), kTextBytes));
    });
    addComparedRow(group, "facet", [&text] {
        std::mbstate_t state{};
        const wchar_t* next = nullptr;
        char* end = nullptr;
        const wchar_t* const from = text.wide.data();
        benchmark::DoNotOptimize(xenon::get_facet().out(state, from, from + text.wide.size(), next,
                                                        buffer, buffer + kTextBytes, end));
    });
    addComparedRow(group, "StdConvert", [&text] {
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
