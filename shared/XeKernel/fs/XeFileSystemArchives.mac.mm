#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemArchivesPlatform.h"

#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"

#import <Foundation/Foundation.h>

#include <cstddef>

namespace XeFileSystem {

int _runTool(const std::vector<_XeString<wchar_t>>& arguments, const _XeString<wchar_t>& folder)
{
    @autoreleasepool {
        NSMutableArray* const texts = [NSMutableArray array];
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            [texts addObject:_foundationText(arguments[i])];
        }
        NSTask* const task = [[[NSTask alloc] init] autorelease];
        [task setLaunchPath:_foundationText(arguments.front())];
        [task setCurrentDirectoryPath:_foundationText(folder)];
        [task setArguments:texts];
        [task setStandardInput:[NSFileHandle fileHandleWithNullDevice]];
        [task launch];
        [task waitUntilExit];
        return [task terminationReason] == NSTaskTerminationReasonExit ? [task terminationStatus]
                                                                       : -1;
    }
}

_XeString<wchar_t> _programFolder()
{
    @autoreleasepool {
        return _wideText([[NSBundle mainBundle] bundlePath]);
    }
}

} // namespace XeFileSystem
