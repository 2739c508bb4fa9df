#include <CoreFoundation/CFBase.h>

#import <Foundation/Foundation.h>

#include <cassert>

const CFAllocatorRef kCFAllocatorDefault = nullptr;

// Never looked into, only compared: any address of its own will do.
static const char kNullAllocator = 0;
const CFAllocatorRef kCFAllocatorNull = reinterpret_cast<CFAllocatorRef>(&kNullAllocator);

CFTypeRef CFRetain(CFTypeRef cf)
{
    assert(cf != nullptr && "CFRetain of null");
    return [static_cast<id>(const_cast<void*>(cf)) retain];
}

void CFRelease(CFTypeRef cf)
{
    assert(cf != nullptr && "CFRelease of null");
    [static_cast<id>(const_cast<void*>(cf)) release];
}
