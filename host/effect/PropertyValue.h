#pragma once

#import <Foundation/Foundation.h>

#include <cstring>
#include <string>

/// Property values as they travel: raw bytes of no particular alignment, and fresh objects.
namespace host {

template <typename Value>
void put(void* outData, const Value& value)
{
    std::memcpy(outData, &value, sizeof value);
}

template <typename Value>
Value valueAt(const void* data)
{
    Value value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

/// A string that nobody else holds, so that its references can be counted. The caller owns it.
/// @param text  UTF-8.
inline NSString* newString(const std::string& text)
{
    return [[NSMutableString alloc] initWithUTF8String:text.c_str()];
}

/// Reads a string as UTF-8. False, with `outText` untouched, for anything that is no string or
/// cannot be written in UTF-8 (it has a lone surrogate).
inline bool readText(id object, std::string& outText)
{
    if (![object isKindOfClass:[NSString class]]) {
        return false;
    }
    NSData* const bytes = [(NSString*)object dataUsingEncoding:NSUTF8StringEncoding];
    if (bytes == nil) {
        return false;
    }
    outText.assign(static_cast<const char*>([bytes bytes]), [bytes length]);
    return true;
}

} // namespace host
