#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/VolumeMountPoint.h"

#include "XeSafeCRT.h"
#include "core/XeNativePath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>

namespace XeFileSystem {
namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};

void _toParent(std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    path.resize(slash == 0 ? 1 : slash == std::string::npos ? 0 : slash);
}

/// The path without links, or that of its nearest parent that exists; empty when there is none.
std::string _resolved(std::string path)
{
    while (!path.empty()) {
        const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
        if (real != nullptr) {
            return real.get();
        }
        if (errno != ENOENT || path == "/") {
            return {};
        }
        _toParent(path);
    }
    return {};
}

/// The mark is there since Linux 5.8 (statx(2)); before, only "/" answers.
bool _isMountPoint(const std::string& path)
{
    struct statx status {};
    return path == "/" || (statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, 0, &status) == 0 &&
                           (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0);
}

} // namespace

XeResult getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint)
{
    std::string bytes = _resolved(xenon::path::toNative(path).value_or(std::string()));
    if (bytes.empty()) {
        return kXeGeneralFailure;
    }
    while (!_isMountPoint(bytes)) {
        _toParent(bytes);
    }
    mountPoint = xenon::path::fromNative(bytes);
    return kXeOk;
}

} // namespace XeFileSystem
