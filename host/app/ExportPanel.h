#pragma once

#import <AppKit/AppKit.h>

#include "ExportFile.h"

#include <memory>
#include <string>

namespace host {

/// Name that an export of the recording is offered under: "take.wav" -> "take trimmed.wav". A
/// recording of a kind that cannot be written becomes a WAV file.
std::string exportName(const Recording& recording);

/// Asks where the result should go, asks before a file that is there already is replaced, and
/// writes it. Long work shows a bar and can be cancelled. Problems are shown to the user.
/// @return  Path of the file that was written; empty when there is none. [main]
std::string exportResult(const std::shared_ptr<const TrimEngine>& engine, const TrimPlan& plan);

/// Writes the result while a window with a bar and a Cancel button is shown; the window comes only
/// when the work takes longer than a moment. Waits for the end, delivering events. [main]
ExportResult exportWithProgress(const std::shared_ptr<const TrimEngine>& engine,
                                const TrimPlan& plan, const ExportRequest& request);

} // namespace host
