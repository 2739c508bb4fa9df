#pragma once

#import <AppKit/AppKit.h>

#include <string>

namespace host {

/// Writes what the window shows, its menu included, as a PNG of its pixels. The window must be on
/// a screen; it is drawn first where it needs to be.
/// @param path  Any bytes; an existing file is replaced.
/// @return      The problem as one sentence, or an empty text. [main]
std::string writeSnapshot(NSWindow* window, const std::string& path);

} // namespace host
