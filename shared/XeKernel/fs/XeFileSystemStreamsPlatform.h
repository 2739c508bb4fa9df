#pragma once

#include <fstream>
#include <ios>

/// Makes an open file the one that a buffer reads or writes.
/// @param buffer      Closed.
/// @param descriptor  Owned by the buffer from here on; closed when it does not take it.
/// @param mode        What the descriptor was opened for.
/// @return            True on success. Throws std::bad_alloc.
bool _attach(std::filebuf& buffer, int descriptor, std::ios::openmode mode);
