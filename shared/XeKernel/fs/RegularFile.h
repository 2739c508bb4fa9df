#pragma once

#include "fs/Descriptor.h"

/// Opens a regular file, links followed; what has come to the path in its place is not waited for.
/// Whoever knows that no such file may be there looks first: merely to open a pipe ends the wait of
/// a process at its other end, and some devices begin to work. Throws nothing. [any]
///
/// @param flags  As for open(2). Child processes do not inherit the descriptor.
/// @param mode   Rights of a new file, less what the process's umask takes.
/// @return       None when it does not open or is no regular file.
Descriptor openRegularFile(const char* path, int flags, mode_t mode = 0);
