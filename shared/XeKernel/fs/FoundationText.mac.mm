#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/FoundationText.mac.h"

#include "XeSafeCRT.h"

#include <cstring>

// Wide characters are 32-bit code points in the byte order of the machine, which is little-endian
// on every system the product runs on.
static_assert(sizeof(wchar_t) == 4);

NSString* _foundationText(std::wstring_view text)
{
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size() * sizeof(wchar_t)
                                   encoding:NSUTF32LittleEndianStringEncoding] autorelease];
}

_XeString<wchar_t> _wideText(NSString* text)
{
    NSData* const data = [text dataUsingEncoding:NSUTF32LittleEndianStringEncoding];
    _XeString<wchar_t> wide([data length] / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), [data bytes], wide.size() * sizeof(wchar_t));
    return wide;
}
