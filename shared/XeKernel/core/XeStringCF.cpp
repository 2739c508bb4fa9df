#include "XeString.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>
#include <memory>

namespace {

struct Free {
    void operator()(char* buffer) const { std::free(buffer); }
};

} // namespace

template <XeStringCharacter T>
_XeString<T>::_XeString(const __CFString* text) requires std::same_as<T, char>
{
    if (text == nullptr) {
        return;
    }
    if (const char* const direct = CFStringGetCStringPtr(text, kCFStringEncodingUTF8)) {
        this->assign(direct);
        return;
    }
    const CFIndex length = CFStringGetLength(text);
    const std::unique_ptr<char, Free> buffer(
        static_cast<char*>(std::malloc(static_cast<std::size_t>(length) + 1)));
    if (!buffer) {
        return;
    }
    CFIndex used = 0;
    CFStringGetBytes(text, CFRangeMake(0, length), kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(buffer.get()), length, &used);
    this->assign(buffer.get(), static_cast<std::size_t>(used));
}

template _XeString<char>::_XeString(const __CFString* text);
