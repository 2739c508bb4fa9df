#include <CoreFoundation/CFBundle.h>

#include <CoreFoundation/CFString.h>

#import <Foundation/Foundation.h>

static NSString* _string(CFStringRef string)
{
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(string));
}

static NSString* _orIfEmpty(NSString* string, NSString* substitute)
{
    return [string length] > 0 ? string : substitute;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef bundleId)
{
    @autoreleasepool {
        return reinterpret_cast<CFBundleRef>([NSBundle bundleWithIdentifier:_string(bundleId)]);
    }
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef table)
{
    @autoreleasepool {
        NSString* text = value != nullptr ? _string(value) : @"";
        if (key != nullptr) {
            text = [reinterpret_cast<NSBundle*>(bundle)
                localizedStringForKey:_string(key)
                                value:_orIfEmpty(text, _string(key))
                                table:_orIfEmpty(_string(table), @"Localizable")];
        }
        return reinterpret_cast<CFStringRef>([text copy]);
    }
}
