#include <CoreFoundation/CFURL.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstring>

static NSURL* _url(CFURLRef url) { return reinterpret_cast<NSURL*>(const_cast<__CFURL*>(url)); }

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* buffer,
                                                 CFIndex length, Boolean isDirectory)
{
    @autoreleasepool {
        NSString* const path = [[[NSString alloc] initWithBytes:buffer
                                                         length:length
                                                       encoding:NSUTF8StringEncoding] autorelease];
        if ([path length] == 0) {
            return nullptr;
        }
        return reinterpret_cast<CFURLRef>([[NSURL alloc] initFileURLWithPath:path
                                                                 isDirectory:isDirectory]);
    }
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex maxBufferLength)
{
    @autoreleasepool {
        NSURL* const whole = resolveAgainstBase ? [_url(url) absoluteURL] : _url(url);
        if (![whole isFileURL]) {
            return false;
        }
        const char* const path = [[whole path] UTF8String];
        const std::size_t size = path != nullptr ? std::strlen(path) + 1 : 0;
        if (path == nullptr ||
            size > static_cast<std::size_t>(std::max<CFIndex>(maxBufferLength, 0))) {
            return false;
        }
        std::memcpy(buffer, path, size);
        return true;
    }
}
