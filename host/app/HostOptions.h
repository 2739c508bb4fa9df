#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

/// What the user asks of tarvel-host on its command line. Paths may be any bytes.
struct HostOptions {
    bool help = false;
    std::optional<std::string> snapshot; // picture to write instead of staying open
    std::optional<std::string> bundle;   // editor to open instead of the one beside the program
    std::optional<std::string> recording;
    double scale = 1.0; // pixels a point, 0.5 to 4
};

/// Options, or what is wrong with them.
struct ParsedOptions {
    HostOptions options;
    std::string problem; // one sentence; empty when there is none
};

/// @param words  The command line without the program's name.
ParsedOptions parseOptions(const std::vector<std::string>& words);

/// How to call the program, with a window and for a batch; several lines.
std::string usage();

} // namespace host
