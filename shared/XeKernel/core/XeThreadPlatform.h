#pragma once

/// Calls `function(argument)` on a worker thread with a pool that releases the Cocoa objects it
/// makes.
void _callWithPool(void (*function)(void*), void* argument);
