#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Calls `function(argument)` inside @try. Returns 1 when an Objective-C exception ended it, with
/// "name: reason" in `text` (cut at `capacity` bytes, terminator included), else 0. C++ exceptions
/// pass through.
int XeTry(void (*function)(void*), void* argument, char* text, size_t capacity);

#ifdef __cplusplus
}
#endif
