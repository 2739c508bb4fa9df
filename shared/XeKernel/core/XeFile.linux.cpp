#ifndef __linux__
#error "for Linux only"
#endif

#include "core/XeFilePlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"

#include <fcntl.h>

#include <cerrno>
#include <string>

std::optional<std::string> _systemPath(std::wstring_view path)
{
    return xenon::path::toNative(path);
}

std::FILE* _fopenSystem(const wchar_t* path, const char* mode)
{
    const auto bytes = _systemPath(path);
    return bytes ? std::fopen(bytes->c_str(), (std::string(mode) + 'e').c_str()) : nullptr;
}

bool _setNewFileSize(int descriptor, long long size)
{
    int error = EINTR;
    while (error == EINTR) {
        error = posix_fallocate(descriptor, 0, size);
    }
    return error == 0;
}
