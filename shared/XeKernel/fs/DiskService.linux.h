#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <string>

/// The desktop's disk service, UDisks2 on the system bus, which does for ordinary users what takes
/// the rights of root. Where it does not run every call fails at once. Nothing is asked of the
/// user. [any]
namespace diskService {

/// Unmounts the file system that is mounted at a path and ejects its medium where the drive can.
/// Waits for both, as long as it takes.
/// @param mountPoint  Bytes.
/// @return            True when both succeeded.
bool eject(const std::string& mountPoint);

} // namespace diskService
