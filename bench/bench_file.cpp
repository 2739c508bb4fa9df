// 256 MiB written and read through XeFile and XeMappedFile beside write(2) and read(2) with the
// same buffer, and UTF-16 text beside ICU's conversion and fwrite. The file lies in the system's
// temporary folder and stays in memory there, so what is compared is the processor's work. Ours
// comes last in each group.

#include "XeFile.h"

#include "ComparedRows.h"

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kFileBytes = 256u << 20;

/// The file that all rows write and read, removed at the end.
class BenchFile {
public:
    BenchFile()
    {
        const int descriptor = mkstemp(narrow.data());
        close(descriptor);
        wide.assign(narrow.begin(), narrow.end());
    }
    ~BenchFile() { unlink(narrow.c_str()); }

    std::string narrow = std::filesystem::temp_directory_path() / "tarvel-bench-XXXXXX";
    std::wstring wide;
};

const BenchFile& benchFile()
{
    static const BenchFile file;
    return file;
}

void require(bool condition, const char* what)
{
    if (!condition) {
        std::perror(what);
        std::exit(1);
    }
}

_xeAttrib attributes()
{
    _xeAttrib attributes;
    attributes.path = benchFile().wide.c_str();
    return attributes;
}

_xeAttrib readOnly()
{
    _xeAttrib record = attributes();
    record.readOnly = true;
    return record;
}

/// Calls `put(buffer, bytes)` until all of the file has been handed over.
template <typename Put>
void produce(const std::vector<char>& buffer, Put put)
{
    for (std::size_t done = 0; done < kFileBytes; done += buffer.size()) {
        require(static_cast<std::size_t>(put(buffer.data(), buffer.size())) == buffer.size(),
                "write");
    }
}

/// Calls `get(buffer, bytes)` until all of the file is there, and looks at all of it.
template <typename Get>
void consume(std::vector<char>& buffer, Get get)
{
    for (std::size_t done = 0; done < kFileBytes; done += buffer.size()) {
        require(static_cast<std::size_t>(get(buffer.data(), buffer.size())) == buffer.size(),
                "read");
        benchmark::DoNotOptimize(std::accumulate(buffer.begin(), buffer.end(), 0u));
    }
}

void addWriting(const std::string& group, std::size_t bufferBytes)
{
    const std::vector<char> buffer(bufferBytes, 'x');
    addComparedRow(group, "write(2)", [=] {
        const int file = open(benchFile().narrow.c_str(), O_RDWR | O_TRUNC | O_CLOEXEC);
        produce(buffer, [=](const char* bytes, std::size_t n) { return write(file, bytes, n); });
        close(file);
    });
    addComparedRow(group, "XeFile", [=] {
        _xeAttrib record = attributes();
        record.create = true;
        XeFile file;
        require(file.Open(record) == 0, "open");
        produce(buffer, [&](const char* bytes, std::size_t n) { return file.write(bytes, n); });
    });
    addComparedRow(group, "XeMappedFile", [=] {
        _xeAttrib record = attributes();
        record.newFileSize = kFileBytes;
        XeMappedFile file;
        require(file.Open(record) == 0, "map");
        char* position = file.data();
        produce(buffer, [&](const char* bytes, std::size_t n) {
            std::memcpy(position, bytes, n);
            position += n;
            return n;
        });
    });
}

void addReading(const std::string& group, std::size_t bufferBytes)
{
    const auto buffer = std::make_shared<std::vector<char>>(bufferBytes);
    addComparedRow(group, "read(2)", [=] {
        const int file = open(benchFile().narrow.c_str(), O_RDONLY | O_CLOEXEC);
        consume(*buffer, [=](char* bytes, std::size_t n) { return read(file, bytes, n); });
        close(file);
    });
    addComparedRow(group, "XeFile", [=] {
        _xeAttrib record = readOnly();
        XeFile file;
        require(file.Open(record) == 0, "open");
        consume(*buffer, [&](char* bytes, std::size_t n) { return file.read(bytes, n); });
    });
    addComparedRow(group, "XeMappedFile", [] {
        _xeAttrib record = readOnly();
        XeMappedFile file;
        require(file.Open(record) == 0, "map");
        const char* const bytes = file.const_data();
        benchmark::DoNotOptimize(std::accumulate(bytes, bytes + file.size(), 0u));
    });
}

/// A text of a million characters, every `pairEvery`th of which needs two units.
_XeString<wchar_t> longText(std::size_t pairEvery)
{
    _XeString<wchar_t> text(1u << 20, L'a');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] =
            static_cast<wchar_t>(i % pairEvery == pairEvery - 1 ? 0x1F600 : 0x100 + i % 0x4000);
    }
    return text;
}

/// Into the void, so that the conversion shows.
void addText(const std::string& group, std::size_t pairEvery)
{
    const auto text = longText(pairEvery);
    addComparedRow(group, "icu+fwrite", [=] {
        static std::FILE* const file = std::fopen("/dev/null", "wb");
        static std::vector<char16_t> units(2 * text.size());
        std::int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF32(units.data(), static_cast<std::int32_t>(units.size()), &length,
                       reinterpret_cast<const UChar32*>(text.data()),
                       static_cast<std::int32_t>(text.size()), &error);
        require(U_SUCCESS(error), "icu");
        std::fwrite(units.data(), sizeof(char16_t), static_cast<std::size_t>(length), file);
    });
    addComparedRow(group, "XeFile", [=] {
        static XeFile file(static_cast<void*>(std::fopen("/dev/null", "wb")));
        require(file.write(text, false, true) >= 2 * text.size(), "write");
    });
}

// Before main(), which runs what is registered.
[[maybe_unused]] const bool g_registered = [] {
    addWriting("write_64k", 64u << 10);
    addWriting("write_512", 512);
    addReading("read_64k", 64u << 10);
    addReading("read_512", 512);
    addText("utf16_plain", 2u << 20); // beyond its end
    addText("utf16_mixed", 16);
    return true;
}();

} // namespace
