#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemFoldersPlatform.h"

#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"

#import <Foundation/Foundation.h>

namespace XeFileSystem {
namespace {

struct FolderRow {
    ESysFolder folder;
    NSSearchPathDirectory directory;
    NSSearchPathDomainMask domain;
};

// clang-format off
constexpr FolderRow kFolders[] = {
    {kSysFolderUserApplicationSupport,  NSApplicationSupportDirectory, NSUserDomainMask},
    {kSysFolderLocalApplicationSupport, NSApplicationSupportDirectory, NSLocalDomainMask},
    {kSysFolderUserDocuments,           NSDocumentDirectory,           NSUserDomainMask},
    {kSysFolderUserApplications,        NSApplicationDirectory,        NSUserDomainMask},
    {kSysFolderUserLibrary,             NSLibraryDirectory,            NSUserDomainMask},
    {kSysFolderLocalLibrary,            NSLibraryDirectory,            NSLocalDomainMask},
    {kSysFolderSystemLibrary,           NSLibraryDirectory,            NSSystemDomainMask},
    {kSysFolderUserSavedState,          NSLibraryDirectory,            NSUserDomainMask},
    {kSysFolderUserCaches,              NSCachesDirectory,             NSUserDomainMask},
    {kSysFolderUserPreferences,         NSLibraryDirectory,            NSUserDomainMask},
    {kSysFolderUserMovies,              NSMoviesDirectory,             NSUserDomainMask},
    {kSysFolderUserPictures,            NSPicturesDirectory,           NSUserDomainMask},
};
// clang-format on

XeResult _give(_XeString<wchar_t>& out, NSString* text)
{
    if ([text length] == 0) {
        return kXeGeneralFailure;
    }
    out = _wideText(text);
    return kXeOk;
}

} // namespace

XeResult _findSysFolder(_XeString<wchar_t>& out, ESysFolder folder)
{
    const FolderRow* const row = _rowOf(kFolders, folder);
    if (row == nullptr) {
        return kXeInvalidArgument;
    }
    @autoreleasepool {
        NSArray* const paths =
            NSSearchPathForDirectoriesInDomains(row->directory, row->domain, YES);
        if ([paths count] == 0) {
            return kXeGeneralFailure;
        }
        return _give(out, [[paths objectAtIndex:0] stringByAppendingString:@"/"]);
    }
}

XeResult _getExecutablePath(_XeString<wchar_t>& out)
{
    @autoreleasepool {
        return _give(out, [[NSBundle mainBundle] executablePath]);
    }
}

XeResult _getExecutableFolder(_XeString<wchar_t>& out)
{
    @autoreleasepool {
        return _give(out,
                     [[[NSBundle mainBundle] executablePath] stringByDeletingLastPathComponent]);
    }
}

XeResult _getResourceFolder(_XeString<wchar_t>& out)
{
    @autoreleasepool {
        return _give(out, [[NSBundle mainBundle] resourcePath]);
    }
}

XeResult _getExecutableName(_XeString<wchar_t>& out)
{
    @autoreleasepool {
        return _give(out, [[[NSBundle mainBundle] executablePath] lastPathComponent]);
    }
}

} // namespace XeFileSystem
