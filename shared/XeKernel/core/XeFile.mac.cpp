#ifndef __APPLE__
#error "for macOS only"
#endif

#include "core/XeFilePlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"

#include <CoreFoundation/CoreFoundation.h>

#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

// Bytes that are no UTF-8 have no character of CoreFoundation's.
std::optional<std::string> _systemPath(std::wstring_view path)
{
    struct Release {
        void operator()(CFStringRef string) const { CFRelease(string); }
    };
    const std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release> string(
        CFStringCreateWithBytesNoCopy(kCFAllocatorDefault,
                                      reinterpret_cast<const UInt8*>(path.data()),
                                      static_cast<CFIndex>(path.size() * sizeof(wchar_t)),
                                      kCFStringEncodingUTF32LE, false, kCFAllocatorNull));
    if (string == nullptr) {
        return xenon::path::toNative(path);
    }
    const CFIndex capacity = CFStringGetMaximumSizeOfFileSystemRepresentation(string.get());
    std::string bytes(static_cast<std::size_t>(capacity), '\0');
    if (!CFStringGetFileSystemRepresentation(string.get(), bytes.data(), capacity)) {
        return std::nullopt;
    }
    bytes.resize(std::strlen(bytes.c_str()));
    return bytes;
}

std::FILE* _fopenSystem(const wchar_t* path, const char* mode)
{
    const auto bytes = _systemPath(path);
    return bytes ? std::fopen(bytes->c_str(), mode) : nullptr;
}

bool _setNewFileSize(int descriptor, long long size) { return ftruncate(descriptor, size) == 0; }
