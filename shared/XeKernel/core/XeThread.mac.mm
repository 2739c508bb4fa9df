#ifndef __APPLE__
#error "for macOS only"
#endif

#include "XeThread.h"

#include "core/XeThreadPlatform.h"

#include "XeSafeCRT.h"

#include <pthread.h>

extern "C" void* objc_autoreleasePoolPush(void);
extern "C" void objc_autoreleasePoolPop(void* pool);

void _callWithPool(void (*function)(void*), void* argument)
{
    void* const pool = objc_autoreleasePoolPush();
    function(argument);
    objc_autoreleasePoolPop(pool);
}

void XeThread::SetName(const char* name)
{
    if (name != nullptr) {
        pthread_setname_np(name);
    }
}
