#pragma once

#include "host/effect/TrimEngine.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace host {

/// Kinds of file that can be written.
enum class ExportContainer { Wav, Flac, Aiff };
inline constexpr unsigned kExportContainerCount = 3;

/// Ending of a container's file names: ".wav".
const char* extensionOf(ExportContainer container);

/// Container that a file name asks for by its ending, in any case: "a.wav", "a.WAVE", "a.flac",
/// "a.aif", "a.aiff", "a.aifc". None for every other name.
std::optional<ExportContainer> containerForName(const std::string& path);

/// Container of the file that a recording was read from; none when it is not one of the three.
std::optional<ExportContainer> containerOf(const Recording& recording);

/// What a file of the container is written as: container and sample type as libsndfile knows them.
///
/// Whole samples keep their depth and floating-point samples stay what they are. FLAC holds whole
/// samples of at most 24 bits, so larger and floating-point ones are rounded to 24. A coded source
/// without a depth (Vorbis, MP3) becomes floating point, one that is coded telephony or ADPCM 16
/// bits. WAV changes to RF64, its form for large files, where its sizes of 32 bits end.
///
/// @param sourceFormat  Recording::fileFormat.
/// @param samples       Frames times channels of the result.
int exportFormat(ExportContainer container, int sourceFormat, std::uint64_t samples);

/// The sentence for a plan without a kept region.
std::string whyNothingIsKept(const Recording& recording);

/// What to write, and where.
struct ExportRequest {
    std::string target; // any bytes but zero
    ExportContainer container = ExportContainer::Wav;
    bool overwrite = false; // whether a file of that name may be replaced
};

enum class ExportStatus {
    Done,
    Cancelled,
    NothingKept,    // the plan is empty
    TargetIsSource, // also by another name of the same file
    TargetExists,   // and may not be overwritten; asking again with `overwrite` replaces it
    Failed,         // anything else
};

struct ExportResult {
    ExportStatus status = ExportStatus::Done;
    std::string problem; // one sentence for the user, in valid UTF-8; empty when done
};

/// Told how far an export is; false cancels it. Called on the exporting thread after every block
/// (about a second), the last time before the file gets its name.
using ExportProgress = std::function<bool(std::uint64_t framesDone, std::uint64_t framesTotal)>;

/// Writes the result of a plan as a file, at the source's rate, channel count and bit depth.
/// Blocks until the file is on the disk. [any]
///
/// The file appears under its name only when it is whole and flushed: whatever fails, and also
/// when the process is killed, the name has what it had before. The source is never written to.
///
/// Samples outside of fades are bit for bit those of the source wherever the container holds its
/// sample type. Samples in fades are rounded to nearest. Where a recording's samples are larger
/// than those in memory (32 bits and double precision), they are read from the source again; a
/// source that has changed since is a failure. Levels above full scale are clipped where whole
/// samples are written, and what is no number becomes silence.
///
/// @param plan      Of that engine.
/// @param progress  May be empty.
ExportResult exportFile(const TrimEngine& engine, const TrimPlan& plan,
                        const ExportRequest& request, const ExportProgress& progress = {});

} // namespace host
