#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemTrashPlatform.h"

#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"

#import <Foundation/Foundation.h>

namespace XeFileSystem {

XeResult _moveItemToTrash(wchar_t const* path)
{
    @autoreleasepool {
        NSURL* const item = [NSURL fileURLWithPath:_foundationText(path)];
        const BOOL moved = [[NSFileManager defaultManager] trashItemAtURL:item
                                                         resultingItemURL:nullptr
                                                                    error:nullptr];
        return moved ? kXeOk : kXeGeneralFailure;
    }
}

} // namespace XeFileSystem
