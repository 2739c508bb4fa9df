#pragma once

#include <CoreFoundation/CFBase.h>

/// How an array holds its values. Only kCFTypeArrayCallBacks exists: values are objects.
typedef struct CFArrayCallBacks {
    CFIndex version;
} CFArrayCallBacks;

CF_EXTERN_C_BEGIN

/// Values are retained by the array and released with it.
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

/// Makes an array of the first `count` of `values`. Owned by the caller.
/// @param values     Objects, none of them null; may itself be null when `count` is 0.
/// @param callBacks  &kCFTypeArrayCallBacks; anything else gives null.
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                   const CFArrayCallBacks* callBacks);

CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);

/// The value at `index`, which must be inside the array. Borrowed from the array.
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CF_EXTERN_C_END
