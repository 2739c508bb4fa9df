#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <sys/stat.h>

#include <string>

/// Finds the name under which a folder keeps an item: `asked`, where an entry is called exactly so.
/// On file systems that do not tell letter cases apart it may be another, that of the entry that is
/// the item, or of one that differs from `asked` in letter case only.
/// @param folder  Bytes.
/// @param item    As lstat(2) gives it for the asked name.
/// @return        Empty when there is none, or the folder cannot be read. [any]
std::string storedName(const std::string& folder, const std::string& asked,
                       const struct stat& item);
