#include "fs/XeFileSystemFoldersPlatform.h"

#include "XeNativePath.h"
#include "fs/HomeFolder.h"
#include "fs/NoThrow.h"

#include <string_view>
#include <utility>

namespace XeFileSystem {
namespace {

constexpr wchar_t kSeparator[] = L"/";
constexpr wchar_t kVendor[] = L"VANTA";
constexpr wchar_t kVersionFormat[] = L"%d.%d%ls";
constexpr wchar_t kSavedStateExtension[] = L".savedState";

/// Folders in the user's library, which have no '/' at the end.
struct LibraryFolder {
    ESysFolder folder;
    const wchar_t* name;
};

constexpr LibraryFolder kLibraryFolders[] = {
    {kSysFolderUserSavedState, L"Saved Application State"},
    {kSysFolderUserPreferences, L"Preferences"},
};

const wchar_t* _nameInLibrary(ESysFolder folder)
{
    const LibraryFolder* const row = _rowOf(kLibraryFolders, folder);
    return row == nullptr ? nullptr : row->name;
}

bool _hasVendorFolder(ESysFolder folder)
{
    return folder == kSysFolderUserApplicationSupport ||
           folder == kSysFolderLocalApplicationSupport || folder == kSysFolderUserCaches;
}

XeResult _getHomeFolder(_XeString<wchar_t>& out)
{
    _XeString<wchar_t> home = xenon::path::fromNative(homeFolder());
    if (home.empty()) {
        return kXeGeneralFailure;
    }
    out = std::move(home);
    return kXeOk;
}

/// "<folder>/VANTA/App/2.1/" or what of it applies.
_XeString<wchar_t> _appFolder(_XeString<wchar_t> path, ESysFolder folder, std::wstring_view appName,
                              const _XeString<wchar_t>& version)
{
    if (!path.ends_with(kSeparator)) {
        path += kSeparator;
    }
    if (_hasVendorFolder(folder)) {
        path.append(kVendor).append(kSeparator);
    }
    path.append(appName).append(kSeparator).append(version);
    return path;
}

} // namespace

XeResult _getSysFolder(_XeString<wchar_t>& out, ESysFolder folder)
{
    if (folder == kSysFolderUserHome) {
        return _getHomeFolder(out);
    }
    _XeString<wchar_t> found;
    const XeResult result = _findSysFolder(found, folder);
    if (result < 0) {
        return result;
    }
    if (const wchar_t* const name = _nameInLibrary(folder)) {
        buildFileURL(found, found.c_str(), name);
    }
    out = std::move(found);
    return result;
}

XeResult _getSysAppFolder(_XeString<wchar_t>& out, ESysFolder folder, wchar_t const* appName,
                          bool create, bool appendVersion, int major, int minor)
{
    _XeString<wchar_t> path;
    const XeResult result = _getSysFolder(path, folder);
    if (result < 0) {
        return result;
    }
    if (appName == nullptr) {
        out = std::move(path);
        return result;
    }
    if (_nameInLibrary(folder) != nullptr) {
        buildFileURL(path, path.c_str(), appName);
        if (folder == kSysFolderUserSavedState) {
            appendToUrl(path, kSavedStateExtension, false);
        }
        out = std::move(path);
        return kXeOk;
    }
    _XeString<wchar_t> version;
    if (appendVersion) {
        version.format(kVersionFormat, major, minor, kSeparator);
    }
    out = _appFolder(std::move(path), folder, appName, version);
    return create ? createFolder(out.c_str()) : result;
}

XeResult getSysFolder(_XeString<wchar_t>& out, ESysFolder folder)
{
    return noThrow(kXeGeneralFailure, [&] { return _getSysFolder(out, folder); });
}

XeResult getSysAppFolder(_XeString<wchar_t>& out, ESysFolder folder, wchar_t const* appName,
                         bool create, bool appendVersion, int major, int minor, EXTENSION_INFO*)
{
    return noThrow(kXeGeneralFailure, [&] {
        return _getSysAppFolder(out, folder, appName, create, appendVersion, major, minor);
    });
}

bool isSysFolderHiddenByDefault(ESysFolder) { return true; }

XeResult getExecutablePath(_XeString<wchar_t>& out)
{
    return noThrow(kXeGeneralFailure, [&] { return _getExecutablePath(out); });
}

XeResult getExecutableFolder(_XeString<wchar_t>& out)
{
    return noThrow(kXeGeneralFailure, [&] { return _getExecutableFolder(out); });
}

XeResult getResourceFolder(_XeString<wchar_t>& out)
{
    return noThrow(kXeGeneralFailure, [&] { return _getResourceFolder(out); });
}

XeResult getExecutableName(_XeString<wchar_t>& out)
{
    return noThrow(kXeGeneralFailure, [&] { return _getExecutableName(out); });
}

} // namespace XeFileSystem
