#include "AudioFile.h"

#include <sndfile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <string_view>

namespace host {

namespace {

constexpr sf_count_t kFramesPerRead = 65536;
// A header may promise any length; no more than this is set aside before samples really come.
constexpr std::size_t kMostSamplesReserved = std::size_t{1} << 28;

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor()
    {
        if (isOpen()) {
            ::close(m_descriptor);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

struct CloseSoundFile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

struct BitDepthRow {
    int subtype;
    unsigned bits;
};

// clang-format off
constexpr BitDepthRow kBitDepths[] = {
    { SF_FORMAT_PCM_S8,  8 },  { SF_FORMAT_PCM_U8, 8 },  { SF_FORMAT_PCM_16, 16 }, { SF_FORMAT_PCM_24, 24 },
    { SF_FORMAT_PCM_32, 32 },  { SF_FORMAT_FLOAT, 32 },  { SF_FORMAT_DOUBLE, 64 },
    { SF_FORMAT_ALAC_16, 16 }, { SF_FORMAT_ALAC_20, 20 }, { SF_FORMAT_ALAC_24, 24 }, { SF_FORMAT_ALAC_32, 32 },
};
// clang-format on

unsigned bitDepthOf(int subtype)
{
    const auto* const row =
        std::find_if(std::begin(kBitDepths), std::end(kBitDepths),
                     [subtype](const BitDepthRow& each) { return each.subtype == subtype; });
    return row == std::end(kBitDepths) ? 0 : row->bits;
}

/// The decoder's name for a container or sample type.
std::string nameOfFormat(int format)
{
    SF_FORMAT_INFO info{};
    info.format = format;
    const bool known =
        sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0 && info.name != nullptr;
    return known ? info.name : "unknown";
}

ReadResult failure(const std::string& path, const std::string& rest)
{
    return {nullptr, quotedPath(path) + " " + rest, ""};
}

/// Why the open descriptor cannot be an audio file; none when it may be one.
std::optional<std::string> whyNotAudio(const FileDescriptor& file)
{
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) {
        return std::string("cannot be read: ") + std::strerror(errno) + ".";
    }
    if (S_ISDIR(status.st_mode)) {
        return "is a folder, not an audio file.";
    }
    if (!S_ISREG(status.st_mode)) {
        return "is a device or a pipe, not an audio file.";
    }
    if (status.st_size == 0) {
        return "is empty.";
    }
    return std::nullopt;
}

/// Reads to the end of the file or to where it is damaged.
void readSamples(SNDFILE* file, const SF_INFO& info, std::vector<float>& samples)
{
    const auto channels = static_cast<std::size_t>(info.channels);
    const auto promised = static_cast<std::uint64_t>(std::max<sf_count_t>(info.frames, 0));
    samples.reserve(std::min<std::uint64_t>(promised, kMostSamplesReserved / channels) * channels);
    std::vector<float> block(static_cast<std::size_t>(kFramesPerRead) * channels);
    sf_count_t got = 0;
    while ((got = sf_readf_float(file, block.data(), kFramesPerRead)) > 0) {
        const auto count = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(got) * channels);
        samples.insert(samples.end(), block.begin(), block.begin() + count);
    }
}

/// Bytes that a WAV or AIFF file is shorter than its header says; 0 where it does not tell.
std::uint64_t missingBytes(const FileDescriptor& file)
{
    // A writer that cannot know the length puts a number that is about the largest.
    constexpr std::uint64_t kUnknown = 0x7FFF0000;
    constexpr std::uint64_t kOutside = 8; // bytes that are not counted, though some count them
    std::array<unsigned char, 8> head{};
    struct stat status {};
    if (::pread(file.get(), head.data(), head.size(), 0) != static_cast<ssize_t>(head.size()) ||
        ::fstat(file.get(), &status) != 0) {
        return 0;
    }
    const std::string_view name(reinterpret_cast<const char*>(head.data()), 4);
    const bool isLittle = name == "RIFF";
    if (!isLittle && name != "RIFX" && name != "FORM") {
        return 0;
    }
    std::uint64_t size = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        size = size << 8 | head[isLittle ? 7 - i : 4 + i];
    }
    const auto there = static_cast<std::uint64_t>(status.st_size);
    return size < kUnknown && size > there ? size + kOutside - there : 0;
}

/// What to say of a file that has fewer frames than its header promises, or "".
std::string shortfall(const Recording& recording, const SF_INFO& info, const FileDescriptor& file)
{
    // Of these kinds the decoder only tells what is there.
    if (const std::uint64_t missing = missingBytes(file)) {
        return quotedPath(recording.path) + " is damaged: its last " + std::to_string(missing) +
               " bytes are missing.";
    }
    const auto frames = static_cast<sf_count_t>(recording.frames());
    // Where the length cannot be told, the decoder gives the largest number.
    if (frames >= info.frames || info.frames == SF_COUNT_MAX) {
        return "";
    }
    return quotedPath(recording.path) + " is damaged: only the first " + std::to_string(frames) +
           " of " + std::to_string(info.frames) + " frames could be read.";
}

/// Decodes the whole file. Throws std::bad_alloc.
ReadResult decode(const std::string& path, const FileDescriptor& descriptor)
{
    SF_INFO info{};
    const SoundFile file(sf_open_fd(descriptor.get(), SFM_READ, &info, SF_FALSE));
    if (!file) {
        return failure(path, "is not an audio file that can be read here.");
    }
    const auto recording = std::make_shared<Recording>();
    recording->path = path;
    recording->format = nameOfFormat(info.format & SF_FORMAT_TYPEMASK);
    recording->encoding = nameOfFormat(info.format & SF_FORMAT_SUBMASK);
    recording->fileFormat = info.format;
    recording->bitDepth = bitDepthOf(info.format & SF_FORMAT_SUBMASK);
    recording->sampleRate = static_cast<unsigned>(info.samplerate);
    recording->channels = static_cast<unsigned>(info.channels);
    readSamples(file.get(), info, recording->samples);
    if (recording->samples.empty()) {
        return failure(path, "holds no sound.");
    }
    return {recording, "", shortfall(*recording, info, descriptor)};
}

/// Length of the printable UTF-8 character at the front of `text`; 0 when there is none.
std::size_t printableLength(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return lead >= 0x20 && lead != 0x7F ? 1 : 0;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Overlong forms, surrogates, and values past the last character (RFC 3629); C1 controls.
    const bool illFormed = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                           (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F);
    const bool control = lead == 0xC2 && byte(1) < 0xA0;
    return illFormed || control ? 0 : length;
}

} // namespace

std::string quotedPath(const std::string& path)
{
    std::string text = "\"";
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t length = printableLength(rest);
        if (length > 0) {
            text += rest.substr(0, length);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(rest[0]));
            text += escape;
        }
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text + "\"";
}

ReadResult readAudioFile(const std::string& path)
{
    // Without O_NONBLOCK opening a pipe would wait for its writer.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
        return errno == ENOENT
                   ? failure(path, "does not exist.")
                   : failure(path, std::string("cannot be read: ") + std::strerror(errno) + ".");
    }
    if (const auto reason = whyNotAudio(file)) {
        return failure(path, *reason);
    }
    try {
        return decode(path, file);
    } catch (const std::bad_alloc&) {
        return failure(path, "does not fit into memory.");
    }
}

} // namespace host
