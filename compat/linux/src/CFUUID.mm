#include <CoreFoundation/CFUUID.h>

#import <Foundation/Foundation.h>

#include <sys/random.h>

// NSUUID's own random identifiers lack the version and variant bits of RFC 4122.
CFUUIDRef CFUUIDCreate(CFAllocatorRef)
{
    unsigned char bytes[16];
    if (getentropy(bytes, sizeof bytes) != 0) {
        return nullptr;
    }
    bytes[6] = (bytes[6] & 0x0F) | 0x40; // version 4
    bytes[8] = (bytes[8] & 0x3F) | 0x80; // variant 1
    return reinterpret_cast<CFUUIDRef>([[NSUUID alloc] initWithUUIDBytes:bytes]);
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid)
{
    @autoreleasepool {
        auto* const object = reinterpret_cast<NSUUID*>(const_cast<__CFUUID*>(uuid));
        return reinterpret_cast<CFStringRef>([[[object UUIDString] uppercaseString] copy]);
    }
}
