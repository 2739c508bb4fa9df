#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemTrashPlatform.h"

#include "XeSafeCRT.h"
#include "fs/LocalItem.h"

#include <gio/gio.h>

#include <memory>

namespace XeFileSystem {

// The local file system is named, since the default one may talk to a service of the desktop.
XeResult _moveItemToTrash(wchar_t const* path)
{
    struct Release {
        void operator()(GFile* file) const { g_object_unref(file); }
    };
    const auto bytes = localPath(path);
    if (!bytes) {
        return kXeGeneralFailure;
    }
    const std::unique_ptr<GFile, Release> file(
        g_vfs_get_file_for_path(g_vfs_get_local(), bytes->c_str()));
    return g_file_trash(file.get(), nullptr, nullptr) ? kXeOk : kXeGeneralFailure;
}

} // namespace XeFileSystem
