#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// The mode of an idle run loop; equal to NSDefaultRunLoopMode.
CF_EXPORT const CFRunLoopMode kCFRunLoopDefaultMode;

/// Stands for the default, event-tracking and modal-panel modes together. A run loop cannot run in
/// it, and GNUstep does not expand it: only functions that say so take it.
CF_EXPORT const CFRunLoopMode kCFRunLoopCommonModes;

/// The run loop of the calling thread, made when it has none yet. Borrowed; lives as long as the
/// thread.
CF_EXPORT CFRunLoopRef CFRunLoopGetCurrent(void);

/// The run loop of the main thread. Borrowed. On another thread only once the main thread has used
/// its own, as every application has: GNUstep makes one that does not work when it is asked for
/// elsewhere first.
CF_EXPORT CFRunLoopRef CFRunLoopGetMain(void);

CF_EXTERN_C_END
