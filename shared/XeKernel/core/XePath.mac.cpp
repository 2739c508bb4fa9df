#ifndef __APPLE__
#error "for macOS only"
#endif

#include "core/XePathPlatform.h"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace xenon::normalize {
namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

template <typename Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

} // namespace

_XeString<wchar_t> _normalize(const _XeString<wchar_t>& text, form target)
{
    const Owned<CFStringRef> source(CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
        static_cast<CFIndex>(text.size() * sizeof(wchar_t)), kCFStringEncodingUTF32LE, false));
    if (source == nullptr) {
        return {};
    }
    const Owned<CFMutableStringRef> copy(
        CFStringCreateMutableCopy(kCFAllocatorDefault, 0, source.get()));
    if (copy == nullptr) {
        return {};
    }
    CFStringNormalize(copy.get(), static_cast<CFStringNormalizationForm>(target));

    // The conversion says how many elements there are; their values are the UTF-16 units.
    const CFIndex length = CFStringGetLength(copy.get());
    _XeString<wchar_t> units(static_cast<std::size_t>(length) + 1, L'\0');
    const CFIndex count =
        CFStringGetBytes(copy.get(), CFRangeMake(0, length), kCFStringEncodingUTF32LE, '?', false,
                         reinterpret_cast<UInt8*>(units.data()),
                         length * static_cast<CFIndex>(sizeof(wchar_t)), nullptr);
    for (CFIndex i = 0; i < count; ++i) {
        units[static_cast<std::size_t>(i)] = CFStringGetCharacterAtIndex(copy.get(), i);
    }
    units.resize(static_cast<std::size_t>(count));
    return units;
}

} // namespace xenon::normalize
