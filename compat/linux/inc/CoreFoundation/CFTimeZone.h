#pragma once

#include <CoreFoundation/CFDate.h>

CF_EXTERN_C_BEGIN

/// The time zone of the system, GMT when that cannot be told. Read once per process. Owned by the
/// caller.
CF_EXPORT CFTimeZoneRef CFTimeZoneCopySystem(void);

/// Seconds to add to GMT for local time at the moment `at`, its daylight saving included; east of
/// Greenwich is positive.
CF_EXPORT CFTimeInterval CFTimeZoneGetSecondsFromGMT(CFTimeZoneRef timeZone, CFAbsoluteTime at);

CF_EXTERN_C_END
