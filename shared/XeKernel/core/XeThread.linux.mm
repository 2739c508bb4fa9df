#ifndef __linux__
#error "for Linux only"
#endif

#include "XeThread.h"

#include "core/XeThreadPlatform.h"

#include "XeSafeCRT.h"

#import <Foundation/Foundation.h>

#include <pthread.h>

#include <cstring>

namespace {

constexpr std::size_t kLongestName = 15; // bytes, pthread_setname_np(3)

bool _isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

} // namespace

void _callWithPool(void (*function)(void*), void* argument)
{
    const BOOL registered = GSRegisterCurrentThread();
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    function(argument);
    [pool release];
    if (registered) {
        GSUnregisterCurrentThread();
    }
}

// A longer name is refused as a whole, so the tail is cut, before a character rather than in it.
void XeThread::SetName(const char* name)
{
    if (name == nullptr) {
        return;
    }
    char shortName[kLongestName + 1] = {};
    std::size_t length = strnlen(name, kLongestName + 1);
    if (length > kLongestName) {
        length = kLongestName;
        while (length > 0 && _isContinuation(name[length])) {
            --length;
        }
    }
    std::memcpy(shortName, name, length);
    pthread_setname_np(pthread_self(), shortName);
}
