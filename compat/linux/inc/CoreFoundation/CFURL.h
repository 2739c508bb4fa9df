#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// Makes a file URL from the bytes of a path. Owned by the caller.
/// @param buffer       UTF-8, not terminated.
/// @param isDirectory  True ends the URL's path with a slash.
/// @return Null for bytes that are not UTF-8 and for an empty path.
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const UInt8* buffer, CFIndex length,
                                                           Boolean isDirectory);

/// Writes the path of a file URL, UTF-8 and terminated, without a slash at its end.
/// @param resolveAgainstBase  True makes a relative URL absolute first.
/// @return False when it is no file URL or does not fit.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8* buffer, CFIndex maxBufferLength);

CF_EXTERN_C_END
