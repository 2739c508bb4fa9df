#pragma once

#include "BatchOptions.h"

#include <ostream>

namespace host {

/// Exit status of the program.
enum BatchStatus {
    kBatchDone = 0,
    kBatchFailed = 1,   // a file, at least
    kBatchWrongUse = 2, // nothing was touched
};

/// Applies the effect to files, one after another, without a window or a display. [any]
///
/// Each result is written into the output folder under the name of its file, with the same
/// promises as exportFile(); WAV, FLAC and AIFF stay what they are, other kinds become WAV and get
/// its ending. Nothing that exists is replaced, so that two files of one name cannot become one. A
/// file that fails is told in one sentence, and the others are still done. One that ends before its
/// header says has failed too.
///
/// @param options  Without a problem, and not asking for help.
/// @param out      A line for every file that was done, flushed; with its kept parts in a dry run.
/// @param err      A line for every file that was not.
BatchStatus runBatch(const BatchOptions& options, std::ostream& out, std::ostream& err);

} // namespace host
