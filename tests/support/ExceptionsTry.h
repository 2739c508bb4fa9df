#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// What happened in a frame of plain Objective-C.
typedef struct TryFrame {
    int catches;   // entries of @catch (NSException*)
    int cleanups;  // ends of a variable with a cleanup function
    int finallies; // entries of @finally
} TryFrame;

/// Calls `function(argument)` inside @try with @catch (NSException*), in a scope with a cleanup.
void callInsideCatch(void (*function)(void*), void* argument, TryFrame* frame);

/// Calls `function(argument)` inside @try with @finally.
///
/// clang makes @finally a handler of the Objective-C run time, and GNUstep's offers those to
/// Objective-C exceptions only: there a C++ exception goes past the clause without running it. What
/// has to happen on the way of both belongs into a cleanup or a destructor.
void callInsideFinally(void (*function)(void*), void* argument, TryFrame* frame);

#ifdef __cplusplus
}
#endif
