#ifndef __APPLE__
#error "for macOS only"
#endif

#include "core/XeFilePlatform.h"

#include "XeSafeCRT.h"

#include <CoreFoundation/CoreFoundation.h>

#include <unistd.h>

#include <cstdlib>
#include <cwchar>

std::FILE* _fopenSystem(const wchar_t* path, const char* mode)
{
    const CFStringRef string =
        CFStringCreateWithBytesNoCopy(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path),
                                      static_cast<CFIndex>(std::wcslen(path) * sizeof *path),
                                      kCFStringEncodingUTF32LE, false, kCFAllocatorNull);
    if (string == nullptr) {
        return nullptr;
    }
    const CFIndex capacity = CFStringGetMaximumSizeOfFileSystemRepresentation(string);
    auto* const bytes = static_cast<char*>(std::malloc(static_cast<std::size_t>(capacity)));
    const bool filled =
        bytes != nullptr && CFStringGetFileSystemRepresentation(string, bytes, capacity);
    CFRelease(string);
    std::FILE* const stream = filled ? std::fopen(bytes, mode) : nullptr;
    std::free(bytes);
    return stream;
}

bool _setNewFileSize(int descriptor, long long size) { return ftruncate(descriptor, size) == 0; }
