#pragma once

#include "XePosFmt.h"
#include "host/effect/TrimSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

/// What the user asks of a batch on the command line. Paths may be any bytes. Lengths stay texts,
/// since how many frames they are depends on the rate of each file.
struct BatchOptions {
    bool help = false;
    bool dryRun = false;
    std::string outputFolder; // empty only for a dry run
    std::optional<_zqposfmt_format> format;
    TrimSettings settings; // all but the lengths that follow
    std::optional<std::string> fadeIn;
    std::optional<std::string> fadeOut;
    std::optional<std::string> minSilence;
    std::optional<std::string> cropStart;
    std::optional<std::string> cropLength;
    std::vector<std::string> files;
};

/// Options, or what is wrong with them.
struct ParsedBatchOptions {
    BatchOptions options;
    std::string problem; // one sentence; empty when there is none
};

/// Whether a command line asks for a batch: --batch before any "--".
bool asksForBatch(const std::vector<std::string>& words);

/// Looks at no file. Of an option that comes twice, the last counts.
/// @param words  The command line without the program's name, --batch anywhere among the options.
ParsedBatchOptions parseBatchOptions(const std::vector<std::string>& words);

/// The effect's settings for files of a rate.
/// @param options     Without a problem.
/// @param sampleRate  Hz, 1 or more.
TrimSettings settingsFor(const BatchOptions& options, unsigned sampleRate);

/// How to call a batch, several lines.
std::string batchUsage();

} // namespace host
