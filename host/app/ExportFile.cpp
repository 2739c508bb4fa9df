#include "ExportFile.h"

#include "PendingFile.h"
#include "host/effect/AudioFile.h"

#include <sndfile.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

namespace host {

namespace {

constexpr std::uint64_t kFramesPerBlock = 65536;
// Headers and padding beside the samples stay far below this.
constexpr std::uint64_t kMostHeaderBytes = 4096;
constexpr std::uint64_t kMostBytesOf32Bits = 0xFFFFFFFF;

struct ContainerRow {
    ExportContainer container;
    const char* name; // for people
    const char* extension;
    int format;
};

// clang-format off
constexpr ContainerRow kContainers[] = {
    { ExportContainer::Wav,  "WAV",  ".wav",  SF_FORMAT_WAV },
    { ExportContainer::Flac, "FLAC", ".flac", SF_FORMAT_FLAC },
    { ExportContainer::Aiff, "AIFF", ".aiff", SF_FORMAT_AIFF },
};

constexpr struct { std::string_view extension; ExportContainer container; } kExtensions[] = {
    { ".wav",  ExportContainer::Wav },  { ".wave", ExportContainer::Wav },
    { ".flac", ExportContainer::Flac },
    { ".aif",  ExportContainer::Aiff }, { ".aiff", ExportContainer::Aiff }, { ".aifc", ExportContainer::Aiff },
};

constexpr struct { int format; ExportContainer container; } kSourceContainers[] = {
    { SF_FORMAT_WAV,  ExportContainer::Wav },  { SF_FORMAT_WAVEX, ExportContainer::Wav }, { SF_FORMAT_RF64, ExportContainer::Wav },
    { SF_FORMAT_FLAC, ExportContainer::Flac }, { SF_FORMAT_AIFF,  ExportContainer::Aiff },
};

// What samples of a source become.
struct SampleRow {
    int source;
    int written[kExportContainerCount]; // by container
    bool exceedsFloat;                  // a float in memory does not hold every value
};

constexpr SampleRow kSamples[] = {
    // source                WAV                FLAC               AIFF              exceeds
    { SF_FORMAT_PCM_S8,    { SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_PCM_S8 }, false },
    { SF_FORMAT_PCM_U8,    { SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_PCM_S8 }, false },
    { SF_FORMAT_PCM_16,    { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_PCM_24,    { SF_FORMAT_PCM_24, SF_FORMAT_PCM_24, SF_FORMAT_PCM_24 }, false },
    { SF_FORMAT_PCM_32,    { SF_FORMAT_PCM_32, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32 }, true },
    { SF_FORMAT_DOUBLE,    { SF_FORMAT_DOUBLE, SF_FORMAT_PCM_24, SF_FORMAT_DOUBLE }, true },
    { SF_FORMAT_ALAC_16,   { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_ALAC_20,   { SF_FORMAT_PCM_24, SF_FORMAT_PCM_24, SF_FORMAT_PCM_24 }, false },
    { SF_FORMAT_ALAC_24,   { SF_FORMAT_PCM_24, SF_FORMAT_PCM_24, SF_FORMAT_PCM_24 }, false },
    { SF_FORMAT_ALAC_32,   { SF_FORMAT_PCM_32, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32 }, true },
    { SF_FORMAT_ULAW,      { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_ALAW,      { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_IMA_ADPCM, { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_MS_ADPCM,  { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
    { SF_FORMAT_GSM610,    { SF_FORMAT_PCM_16, SF_FORMAT_PCM_16, SF_FORMAT_PCM_16 }, false },
};

// Floating point, Vorbis, MP3 and what else has no depth of its own.
constexpr SampleRow kOtherSamples =
    { SF_FORMAT_FLOAT,     { SF_FORMAT_FLOAT,  SF_FORMAT_PCM_24, SF_FORMAT_FLOAT }, false };

constexpr struct { int format; unsigned bytes; bool whole; } kWritten[] = {
    { SF_FORMAT_PCM_S8, 1, true }, { SF_FORMAT_PCM_U8, 1, true },
    { SF_FORMAT_PCM_16, 2, true }, { SF_FORMAT_PCM_24, 3, true }, { SF_FORMAT_PCM_32, 4, true },
    { SF_FORMAT_FLOAT,  4, false }, { SF_FORMAT_DOUBLE, 8, false },
};
// clang-format on

constexpr bool containersAreInOrder()
{
    for (unsigned i = 0; i < kExportContainerCount; ++i) {
        if (kContainers[i].container != static_cast<ExportContainer>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(std::size(kContainers) == kExportContainerCount && containersAreInOrder());

const ContainerRow& rowOf(ExportContainer container)
{
    return kContainers[static_cast<unsigned>(container)];
}

const SampleRow& samplesOf(int fileFormat)
{
    const auto* const row =
        std::find_if(std::begin(kSamples), std::end(kSamples), [fileFormat](const SampleRow& each) {
            return each.source == (fileFormat & SF_FORMAT_SUBMASK);
        });
    return row == std::end(kSamples) ? kOtherSamples : *row;
}

const auto& writtenAs(int fileFormat)
{
    return *std::find_if(std::begin(kWritten), std::end(kWritten), [fileFormat](const auto& each) {
        return each.format == (fileFormat & SF_FORMAT_SUBMASK);
    });
}

bool isSameFile(const std::string& one, const std::string& other)
{
    struct stat a {};
    struct stat b {};
    return ::stat(one.c_str(), &a) == 0 && ::stat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

bool exists(const std::string& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

struct CloseSoundFile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

// ---- reading

/// The recording's samples without loss: from memory where a float holds them, else once more from
/// the file.
class Source {
public:
    explicit Source(const Recording& recording) : m_recording(recording)
    {
        if (!samplesOf(recording.fileFormat).exceedsFloat) {
            return;
        }
        SF_INFO info{};
        m_file.reset(sf_open(recording.path.c_str(), SFM_READ, &info));
        m_isRight = m_file != nullptr && info.format == recording.fileFormat &&
                    info.channels == static_cast<int>(recording.channels);
    }

    /// Copies frames of the recording. False when the file is no longer what it was.
    bool read(std::uint64_t first, std::uint64_t count, double* out)
    {
        const std::size_t size = count * m_recording.channels;
        const float* const known = &m_recording.samples[first * m_recording.channels];
        if (m_isRight && m_file == nullptr) {
            std::copy_n(known, size, out);
            return true;
        }
        const auto place = static_cast<sf_count_t>(first);
        const auto frames = static_cast<sf_count_t>(count);
        m_isRight = m_isRight && sf_seek(m_file.get(), place, SEEK_SET) == place &&
                    sf_readf_double(m_file.get(), out, frames) == frames &&
                    std::equal(out, out + size, known, isRoundedTo);
        return m_isRight;
    }

private:
    static bool isRoundedTo(double exact, float rounded)
    {
        return static_cast<float>(exact) == rounded || (std::isnan(exact) && std::isnan(rounded));
    }

    const Recording& m_recording;
    SoundFile m_file;
    bool m_isRight = true;
};

/// The result of a plan, from its first frame to its last.
class Rendering {
public:
    Rendering(const TrimEngine& engine, const TrimPlan& plan)
        : m_plan(plan), m_channels(engine.recording().channels), m_source(engine.recording())
    {
    }

    /// Fills `out` with the next frames, at most `room`; their number, 0 at the end.
    std::uint64_t next(double* out, std::uint64_t room)
    {
        std::uint64_t filled = 0;
        while (filled < room && m_region < m_plan.regions.size() && m_isReadable) {
            const KeptRegion& region = m_plan.regions[m_region];
            const std::uint64_t count = std::min(room - filled, region.frames() - m_offset);
            take(region, count, out + filled * m_channels);
            filled += count;
        }
        return filled;
    }

    /// False once the source could not be read.
    bool isReadable() const { return m_isReadable; }

private:
    void take(const KeptRegion& region, std::uint64_t count, double* out)
    {
        m_isReadable = m_source.read(region.first + m_offset, count, out);
        applyFades(m_plan, region, m_offset, count, m_channels, out);
        m_offset += count;
        if (m_offset == region.frames()) {
            m_offset = 0;
            ++m_region;
        }
    }

    const TrimPlan& m_plan;
    unsigned m_channels;
    Source m_source;
    std::size_t m_region = 0;
    std::uint64_t m_offset = 0; // within the region
    bool m_isReadable = true;
};

// ---- writing

// The encoder's view of the file. Failures stay in the file.
PendingFile& fileOf(void* user) { return *static_cast<PendingFile*>(user); }

SF_VIRTUAL_IO kFileAccess = {
    [](void* user) -> sf_count_t { return fileOf(user).size(); },
    [](sf_count_t offset, int whence, void* user) -> sf_count_t {
        return fileOf(user).seek(offset, whence);
    },
    [](void* bytes, sf_count_t size, void* user) -> sf_count_t {
        return static_cast<sf_count_t>(fileOf(user).read(bytes, static_cast<std::size_t>(size)));
    },
    [](const void* bytes, sf_count_t size, void* user) -> sf_count_t {
        return fileOf(user).write(bytes, static_cast<std::size_t>(size)) ? size : 0;
    },
    [](void* user) -> sf_count_t { return fileOf(user).seek(0, SEEK_CUR); },
};

/// A whole sample of so many bits in the upper bits of an int, rounded to nearest and clipped.
int wholeSample(double sample, double scale, int step)
{
    if (std::isnan(sample)) {
        return 0;
    }
    return static_cast<int>(std::lrint(std::clamp(sample * scale, -scale, scale - 1))) * step;
}

/// Encodes into the file. The encoder is done with it when this goes.
class Encoder {
public:
    Encoder(PendingFile& file, SF_INFO info)
        : m_channels(static_cast<unsigned>(info.channels)), m_whole(writtenAs(info.format).whole),
          m_bits(writtenAs(info.format).bytes * 8)
    {
        m_file.reset(sf_open_virtual(&kFileAccess, SFM_WRITE, &info, &file));
        // It holds the time of writing, by which equal results would differ.
        sf_command(m_file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    }

    bool isOpen() const { return m_file != nullptr; }

    bool write(const double* samples, std::uint64_t frames)
    {
        const auto count = static_cast<sf_count_t>(frames);
        if (!m_whole) {
            return sf_writef_double(m_file.get(), samples, count) == count;
        }
        const double scale = std::ldexp(1.0, static_cast<int>(m_bits) - 1);
        const int step = 1 << (32 - m_bits);
        m_words.resize(frames * m_channels);
        std::transform(samples, samples + m_words.size(), m_words.begin(),
                       [=](double sample) { return wholeSample(sample, scale, step); });
        return sf_writef_int(m_file.get(), m_words.data(), count) == count;
    }

private:
    unsigned m_channels;
    bool m_whole;
    unsigned m_bits;
    SoundFile m_file;
    std::vector<int> m_words;
};

// ---- the whole

ExportResult failure(ExportStatus status, const std::string& path, const std::string& rest)
{
    return {status, quotedPath(path) + " " + rest};
}

ExportResult systemFailure(const std::string& path, int error)
{
    return error == EEXIST
               ? failure(ExportStatus::TargetExists, path, "exists already.")
               : failure(ExportStatus::Failed, path,
                         std::string("cannot be written: ") + std::strerror(error) + ".");
}

class Export {
public:
    Export(const TrimEngine& engine, const TrimPlan& plan, const ExportRequest& request)
        : m_engine(engine), m_plan(plan), m_request(request), m_frames(plan.frames())
    {
        const Recording& recording = engine.recording();
        m_info.samplerate = static_cast<int>(recording.sampleRate);
        m_info.channels = static_cast<int>(recording.channels);
        m_info.format =
            exportFormat(request.container, recording.fileFormat, m_frames * recording.channels);
    }

    ExportResult run(const ExportProgress& progress)
    {
        ExportResult result = check();
        if (result.status != ExportStatus::Done) {
            return result;
        }
        PendingFile file(m_request.target);
        if (file.error() == 0) {
            result = encode(file, progress);
        }
        // What the disk says comes first: whatever the encoder says follows from it.
        if (file.error() != 0 ||
            (result.status == ExportStatus::Done && !file.finish(m_request.overwrite))) {
            return systemFailure(m_request.target, file.error());
        }
        return result;
    }

private:
    ExportResult check() const
    {
        const std::string& target = m_request.target;
        const Recording& recording = m_engine.recording();
        if (m_frames == 0) {
            return {ExportStatus::NothingKept, whyNothingIsKept(recording)};
        }
        if (isSameFile(recording.path, target)) {
            return failure(ExportStatus::TargetIsSource, target,
                           "is the recording itself, which is never overwritten.");
        }
        if (!m_request.overwrite && exists(target)) {
            return systemFailure(target, EEXIST);
        }
        if (!fitsContainer()) {
            return failure(ExportStatus::Failed, target,
                           std::string("cannot be written: ") + rowOf(m_request.container).name +
                               " does not hold " + std::to_string(recording.channels) +
                               " channels at " + std::to_string(recording.sampleRate) +
                               " Hz of this length.");
        }
        return {};
    }

    bool fitsContainer() const
    {
        const std::uint64_t bytes =
            m_frames * m_engine.recording().channels * writtenAs(m_info.format).bytes;
        return sf_format_check(&m_info) != 0 && (m_request.container != ExportContainer::Aiff ||
                                                 bytes + kMostHeaderBytes <= kMostBytesOf32Bits);
    }

    ExportResult encode(PendingFile& file, const ExportProgress& progress)
    {
        Encoder encoder(file, m_info);
        if (!encoder.isOpen()) {
            return failure(ExportStatus::Failed, m_request.target,
                           std::string("cannot be written: ") + sf_strerror(nullptr));
        }
        Rendering rendering(m_engine, m_plan);
        const std::uint64_t room = std::min(kFramesPerBlock, m_frames);
        std::vector<double> block(room * m_engine.recording().channels);
        std::uint64_t done = 0;
        while (const std::uint64_t count = rendering.next(block.data(), room)) {
            if (!rendering.isReadable()) {
                return failure(ExportStatus::Failed, m_engine.recording().path,
                               "has changed since it was opened.");
            }
            if (!encoder.write(block.data(), count)) {
                return failure(ExportStatus::Failed, m_request.target, "cannot be encoded.");
            }
            done += count;
            if (progress && !progress(done, m_frames)) {
                return failure(ExportStatus::Cancelled, m_request.target,
                               "was not written, as you cancelled it.");
            }
        }
        return {};
    }

    const TrimEngine& m_engine;
    const TrimPlan& m_plan;
    const ExportRequest& m_request;
    std::uint64_t m_frames;
    SF_INFO m_info{};
};

} // namespace

const char* extensionOf(ExportContainer container) { return rowOf(container).extension; }

std::optional<ExportContainer> containerForName(const std::string& path)
{
    const std::size_t dot = path.rfind('.');
    std::string extension = dot == std::string::npos ? "" : path.substr(dot);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    for (const auto& row : kExtensions) {
        if (row.extension == extension) {
            return row.container;
        }
    }
    return std::nullopt;
}

std::optional<ExportContainer> containerOf(const Recording& recording)
{
    for (const auto& row : kSourceContainers) {
        if (row.format == (recording.fileFormat & SF_FORMAT_TYPEMASK)) {
            return row.container;
        }
    }
    return std::nullopt;
}

int exportFormat(ExportContainer container, int sourceFormat, std::uint64_t samples)
{
    const int written = samplesOf(sourceFormat).written[static_cast<unsigned>(container)];
    const std::uint64_t bytes = samples * writtenAs(written).bytes;
    const bool isLarge = bytes + kMostHeaderBytes > kMostBytesOf32Bits;
    return container == ExportContainer::Wav && isLarge ? SF_FORMAT_RF64 | written
                                                        : rowOf(container).format | written;
}

std::string whyNothingIsKept(const Recording& recording)
{
    return quotedPath(recording.path) + " has nothing that these settings keep.";
}

ExportResult exportFile(const TrimEngine& engine, const TrimPlan& plan,
                        const ExportRequest& request, const ExportProgress& progress)
{
    return Export(engine, plan, request).run(progress);
}

} // namespace host
