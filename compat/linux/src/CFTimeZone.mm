#include <CoreFoundation/CFTimeZone.h>

#import <Foundation/Foundation.h>

CFTimeZoneRef CFTimeZoneCopySystem(void)
{
    @autoreleasepool {
        NSTimeZone* zone = [NSTimeZone systemTimeZone];
        if (zone == nil) {
            zone = [NSTimeZone timeZoneForSecondsFromGMT:0];
        }
        return reinterpret_cast<CFTimeZoneRef>([zone retain]);
    }
}

CFTimeInterval CFTimeZoneGetSecondsFromGMT(CFTimeZoneRef timeZone, CFAbsoluteTime at)
{
    @autoreleasepool {
        auto* const zone = reinterpret_cast<NSTimeZone*>(const_cast<__CFTimeZone*>(timeZone));
        return [zone secondsFromGMTForDate:[NSDate dateWithTimeIntervalSinceReferenceDate:at]];
    }
}
