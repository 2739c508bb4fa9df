#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemArchivesPlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/ChildProcess.linux.h"

#include <string>

namespace XeFileSystem {

int _runTool(const std::vector<_XeString<wchar_t>>& arguments, const _XeString<wchar_t>& folder)
{
    std::vector<std::string> texts;
    for (const _XeString<wchar_t>& argument : arguments) {
        const auto bytes = xenon::path::toNative(argument);
        if (!bytes) {
            return -1;
        }
        texts.push_back(*bytes);
    }
    const auto workingFolder = xenon::path::toNative(folder);
    return workingFolder && !workingFolder->empty() ? runChildProcess(texts, *workingFolder) : -1;
}

_XeString<wchar_t> _programFolder()
{
    _XeString<wchar_t> folder;
    getExecutableFolder(folder);
    return folder;
}

} // namespace XeFileSystem
