#include "fs/XeFileSystemTrashPlatform.h"

#include "fs/NoThrow.h"

namespace XeFileSystem {

// The empty path would stand for the working folder.
XeResult moveFileToTrash(wchar_t const* path)
{
    return noThrow(kXeGeneralFailure, [&] {
        const bool named = path != nullptr && *path != L'\0';
        return named ? _moveItemToTrash(path) : kXeGeneralFailure;
    });
}

XeResult moveFolderToTrash(wchar_t const* path) { return moveFileToTrash(path); }

} // namespace XeFileSystem
