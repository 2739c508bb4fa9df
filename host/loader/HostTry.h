#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Calls `function(context)`. Returns nil when it came back, or the description of the
/// Objective-C exception that ended it ("name: reason", autoreleased). C++ exceptions pass through.
NSString* HostTry(void (*function)(void*), void* context);

#ifdef __cplusplus
}
#endif
