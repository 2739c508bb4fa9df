#include <CoreFoundation/CFRunLoop.h>

#include <CoreFoundation/CFString.h>

#import <Foundation/Foundation.h>

// GNUstep's own constant has its name as its text; a test compares the two.
const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("NSDefaultRunLoopMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFRunLoopRef CFRunLoopGetCurrent(void)
{
    @autoreleasepool {
        return reinterpret_cast<CFRunLoopRef>([NSRunLoop currentRunLoop]);
    }
}

CFRunLoopRef CFRunLoopGetMain(void)
{
    @autoreleasepool {
        return reinterpret_cast<CFRunLoopRef>([NSRunLoop mainRunLoop]);
    }
}
