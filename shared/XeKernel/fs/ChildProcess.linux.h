#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <string>
#include <vector>

/// Runs a program to its end, without a terminal that it could ask: nothing to read, no output,
/// a session of its own, default signals, no descriptors of this process. Its environment is this
/// one's, but with LC_ALL=C.UTF-8 and without the options that zip and unzip take from it.
///
/// @param arguments      The program's absolute path first.
/// @param workingFolder  Bytes; empty for that of the caller.
/// @return               The exit status; -1 when it could not be started, was ended by a signal,
///                       or its end was not told because the process ignores its children. [any]
int runChildProcess(const std::vector<std::string>& arguments, const std::string& workingFolder);
