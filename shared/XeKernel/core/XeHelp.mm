#include "XeHelp.h"

#include "XeSafeCRT.h"
#include "XeString.h"

#import <Foundation/Foundation.h>

#include <cstdint>

namespace {

constexpr std::int32_t kHomeTopic = -1;

const _XeString<wchar_t> kNotificationName(L"XeHelpNotification");

// Wide characters are 32-bit code points in the byte order of the machine, which is little-endian
// on every system the product runs on.
NSString* _platformString(const _XeString<wchar_t>& text)
{
    static_assert(sizeof(wchar_t) == 4);
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size() * sizeof(wchar_t)
                                   encoding:NSUTF32LittleEndianStringEncoding] autorelease];
}

} // namespace

void XeHelp::Goto(int topic, void* parent)
{
    @autoreleasepool {
        NSDictionary* const request = @{
            @"anchor" : @(topic),
            @"parent" : [NSValue valueWithPointer:parent],
        };
        [[NSNotificationCenter defaultCenter]
            postNotificationName:_platformString(kNotificationName)
                          object:nil
                        userInfo:request];
    }
}

void XeHelp::GotoHome() { Goto(kHomeTopic, nullptr); }
