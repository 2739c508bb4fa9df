#pragma once

#include <CoreFoundation/CFBase.h>

typedef UInt32 CFStringEncoding;

// Those without LE or BE are in the order of the machine.
enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0c000100,
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1c000100
};

typedef CFIndex CFStringNormalizationForm;

enum : CFStringNormalizationForm {
    kCFStringNormalizationFormD = 0,  // canonical decomposition
    kCFStringNormalizationFormKD = 1, // compatibility decomposition
    kCFStringNormalizationFormC = 2,  // canonical composition
    kCFStringNormalizationFormKC = 3  // compatibility composition
};

CF_EXTERN_C_BEGIN

/// The constant behind CFSTR() in plain C++: one string for each text, made at its first use and
/// never freed. `text` is UTF-8.
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

/// A constant string from a literal. Never released.
#ifdef __OBJC__
#define CFSTR(literal) ((CFStringRef) @"" literal)
#else
#define CFSTR(literal) __CFStringMakeConstantString("" literal)
#endif

/// Makes a string from encoded bytes. Strict: bytes that are not valid in the encoding give null,
/// in UTF-32 and UTF-16 also a lone surrogate, a value above 0x10FFFF or half a unit at the end.
/// The LE and BE encodings keep a byte-order mark as a character; UTF-8 loses one at the start.
///
/// @param bytes     May be null when `byteCount` is 0.
/// @param isExternalRepresentation  True when the bytes of a plain UTF-16 or UTF-32 encoding may
///                  begin with a byte-order mark, which then gives their order.
/// @return Owned by the caller; null for bytes or an encoding that cannot be read.
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                              CFIndex byteCount, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);

/// Like CFStringCreateWithBytes(); the bytes are copied all the same.
/// @param contentsDeallocator  kCFAllocatorNull leaves `bytes` with the caller. Any other hands
///                             them over: they are freed with free() once a string was made.
CF_EXPORT CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                                    CFIndex byteCount, CFStringEncoding encoding,
                                                    Boolean isExternalRepresentation,
                                                    CFAllocatorRef contentsDeallocator);

/// A copy that can be changed. Owned by the caller. `maxLength` is not enforced.
CF_EXPORT CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength,
                                                       CFStringRef string);

/// Length in UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/// The UTF-16 unit at `index`, which must be inside the string.
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);

/// Encodes a range of the string, character by character, until the buffer is full or a character
/// cannot be converted. Never splits a character, never writes a terminator.
///
/// @param range       In UTF-16 units; must lie inside the string. A surrogate whose other half
///                    is outside the range counts as a lone one.
/// @param lossByte    Replaces a character that the encoding does not have, in UTF-32 as one unit
///                    of that value. 0 stops there. Only UTF-16 has lone surrogates, which a string
///                    may contain after it was cut.
/// @param isExternalRepresentation  True writes a byte-order mark first, with plain UTF-16 and
///                    UTF-32 only.
/// @param buffer      Null writes nothing and counts the bytes that would be needed.
/// @param maxBufferLength  Bytes. Encoding stops before the first character that does not fit
///                    whole; shorter ones after it are not tried. Ignored without a buffer.
/// @param usedBufferLength  Receives the bytes written or needed; may be null.
/// @return UTF-16 units consumed, a surrogate pair counting 2. 0 for an encoding other than ASCII,
///         UTF-8, UTF-16 and UTF-32.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                                   CFIndex maxBufferLength, CFIndex* usedBufferLength);

/// The text as a terminated C string, where that is quick to have: only for text of nothing but
/// ASCII characters, in an encoding that contains ASCII, on a thread with an autorelease pool.
/// Everything else gives null, and the caller takes CFStringGetBytes().
/// @return Valid until the calling thread's autorelease pool is drained.
CF_EXPORT const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);

/// Normalises the string in place (Unicode UAX #15). A form not named above changes nothing, and a
/// text with a lone surrogate stays as it is.
CF_EXPORT void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);

/// Writes the bytes that name a file of that name or path, terminated: UTF-8. Names are kept as
/// they are composed (macOS decomposes them: a Linux name is its bytes and is never rewritten).
/// @return False, with undefined buffer contents, when it does not fit in `maxBufferLength` bytes
///         with its terminator, or when the text contains a zero or a lone surrogate.
CF_EXPORT Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer,
                                                      CFIndex maxBufferLength);

/// Bytes that are enough for CFStringGetFileSystemRepresentation(), terminator included:
/// 3n + 1 for n units of ASCII text, else 9n + 1.
CF_EXPORT CFIndex CFStringGetMaximumSizeOfFileSystemRepresentation(CFStringRef string);

CF_EXTERN_C_END
