#pragma once

#include <CoreFoundation/CFBase.h>

typedef double CFTimeInterval;         // seconds
typedef CFTimeInterval CFAbsoluteTime; // seconds since 2001-01-01 00:00:00 GMT

CF_EXTERN_C_BEGIN

/// The present time of the system clock, which may be set back.
CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

CF_EXTERN_C_END
