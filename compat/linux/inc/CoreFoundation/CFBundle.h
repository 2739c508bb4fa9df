#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// The bundle with that identifier, borrowed; null while no bundle object of it exists in the
/// process. [main]
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleId);

/// Looks a text up in a .strings table of the bundle, in the user's language. [main]
/// @param key    Null gives `value`, or the empty string without one.
/// @param value  Result for a key that the table does not have; null or empty gives the key.
/// @param table  Name without extension; null or empty means "Localizable".
/// @return Owned by the caller, never null.
CF_EXPORT CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key,
                                                  CFStringRef value, CFStringRef table);

CF_EXTERN_C_END
