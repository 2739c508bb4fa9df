#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <optional>
#include <string>
#include <string_view>

/// The user's folders by the desktop's conventions: the XDG Base Directory Specification and
/// xdg-user-dirs. All paths are bytes, absolute and without '/' at the end. The environment is read
/// at each call. Like getenv(3), these must not run while another thread changes it. [any]
namespace userFolders {

/// The folder that an environment variable names, else one below home.
/// @return  Empty without a home folder.
std::string baseFolder(const char* variable, std::string_view belowHome);

/// The folder that the user's user-dirs.dirs names, else one below home.
/// @param name  "DOCUMENTS", "VIDEOS", ...
std::string namedFolder(std::string_view name, std::string_view belowHome);

/// What the text of a user-dirs.dirs file says of a folder; nothing when it has no valid line for
/// it, or one that says that there is none: home itself.
std::optional<std::string> entryOf(std::string_view text, std::string_view name,
                                   const std::string& home);

} // namespace userFolders
