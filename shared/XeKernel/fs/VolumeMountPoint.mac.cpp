#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/VolumeMountPoint.h"

#include "XeSafeCRT.h"
#include "core/XeNativePath.h"

#include <sys/mount.h>
#include <sys/param.h>

#include <cerrno>
#include <string>

namespace XeFileSystem {

XeResult getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint)
{
    std::string bytes = xenon::path::toNative(path).value_or(std::string());
    while (!bytes.empty()) {
        struct statfs volume;
        if (statfs(bytes.c_str(), &volume) == 0) {
            mountPoint = xenon::path::fromNative(volume.f_mntonname);
            return kXeOk;
        }
        if (errno != ENOENT || bytes == "/") {
            return kXeGeneralFailure;
        }
        const std::size_t slash = bytes.find_last_of('/');
        bytes.resize(slash == 0 ? 1 : slash == std::string::npos ? 0 : slash);
    }
    return kXeGeneralFailure;
}

} // namespace XeFileSystem
