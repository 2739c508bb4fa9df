#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// A new random identifier (version 4 of RFC 4122). Owned by the caller.
CF_EXPORT CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator);

/// Its text: 36 characters, upper-case hexadecimal digits in groups of 8-4-4-4-12. Owned by the
/// caller.
CF_EXPORT CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid);

CF_EXTERN_C_END
