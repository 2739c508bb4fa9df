#pragma once

// The scalar types of the framework headers and the root of the CoreFoundation objects.
//
// Every CoreFoundation reference here is a Foundation object: a CFStringRef is an NSString, a
// CFArrayRef an NSArray, a CFRunLoopRef an NSRunLoop. Objective-C++ code casts between the two;
// plain C++ sees opaque pointers. A function with Create or Copy in its name gives an object that
// the caller owns; any other result is borrowed.
//
// The headers are for C++, Objective-C and Objective-C++; GNUstep's Foundation.h includes them when
// it finds them.
//
// All functions may be called on any thread, with or without an autorelease pool. References
// passed in must not be null unless the function says so.

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif

#define CF_EXPORT extern __attribute__((visibility("default")))

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef unsigned long long UInt64;
typedef signed long long SInt64;
typedef float Float32;
typedef double Float64;
typedef SInt32 OSStatus;
typedef UInt32 OSType;  // four characters, the first in the highest byte
typedef UInt16 UniChar; // one UTF-16 unit

enum : OSStatus { noErr = 0 };

typedef long CFIndex;
typedef unsigned long CFOptionFlags;

/// A part of a string or array, in its units.
typedef struct CFRange {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    const CFRange range = {location, length};
    return range;
}

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef; // NSDictionary, NSArray, NSString, NSNumber or NSData
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;           // NSArray
typedef const struct __CFData* CFDataRef;             // NSData
typedef const struct __CFDictionary* CFDictionaryRef; // NSDictionary
typedef const struct __CFString* CFStringRef;         // NSString
typedef struct __CFString* CFMutableStringRef;        // NSMutableString
typedef const struct __CFTimeZone* CFTimeZoneRef;     // NSTimeZone
typedef const struct __CFURL* CFURLRef;               // NSURL
typedef const struct __CFUUID* CFUUIDRef;             // NSUUID
typedef struct __CFBundle* CFBundleRef;               // NSBundle
typedef struct __CFRunLoop* CFRunLoopRef;             // NSRunLoop
typedef CFStringRef CFRunLoopMode;

CF_EXTERN_C_BEGIN

/// The default allocator: malloc and free. Objects themselves always come from Foundation, so the
/// allocator argument of a Create function has no effect.
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;

/// As a deallocator: the bytes stay with the caller.
CF_EXPORT const CFAllocatorRef kCFAllocatorNull;

/// Adds a reference. Null is a fault, as on macOS: debug builds stop with a message, release builds
/// give null.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef cf);

/// Gives up a reference. Null is a fault: debug builds stop with a message, release builds go on.
CF_EXPORT void CFRelease(CFTypeRef cf);

CF_EXTERN_C_END
