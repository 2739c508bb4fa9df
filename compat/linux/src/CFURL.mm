#include <CoreFoundation/CFURL.h>

#import <Foundation/Foundation.h>

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
        if (path == nullptr || static_cast<CFIndex>(std::strlen(path)) >= maxBufferLength) {
            return false;
        }
        std::strcpy(reinterpret_cast<char*>(buffer), path);
        return true;
    }
}
