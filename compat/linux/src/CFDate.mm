#include <CoreFoundation/CFDate.h>

#import <Foundation/Foundation.h>

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) { return [NSDate timeIntervalSinceReferenceDate]; }
