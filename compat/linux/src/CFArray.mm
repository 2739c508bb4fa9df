#include <CoreFoundation/CFArray.h>

#import <Foundation/Foundation.h>

const CFArrayCallBacks kCFTypeArrayCallBacks = {0};

static NSArray* _array(CFArrayRef array)
{
    return reinterpret_cast<NSArray*>(const_cast<__CFArray*>(array));
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks)
{
    if (callBacks != &kCFTypeArrayCallBacks || count < 0) {
        return nullptr;
    }
    auto* const objects = reinterpret_cast<const id*>(values);
    return reinterpret_cast<CFArrayRef>([[NSArray alloc] initWithObjects:objects count:count]);
}

CFIndex CFArrayGetCount(CFArrayRef array) { return static_cast<CFIndex>([_array(array) count]); }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    return [_array(array) objectAtIndex:index];
}
