#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemFoldersPlatform.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/HomeFolder.h"
#include "fs/UserFolders.linux.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace XeFileSystem {
namespace {

enum class Root { UserData, UserCache, LocalData, SystemData, Documents, Videos, Pictures };

struct FolderRow {
    ESysFolder folder;
    Root root;
    std::string_view below; // added to the root, with '/' at its end
};

// clang-format off
constexpr FolderRow kFolders[] = {
    {kSysFolderUserApplicationSupport,  Root::UserData,   ""},
    {kSysFolderLocalApplicationSupport, Root::LocalData,  ""},
    {kSysFolderUserDocuments,           Root::Documents,  ""},
    {kSysFolderUserApplications,        Root::UserData,   "applications/"},
    {kSysFolderUserLibrary,             Root::UserData,   ""},
    {kSysFolderLocalLibrary,            Root::LocalData,  ""},
    {kSysFolderSystemLibrary,           Root::SystemData, ""},
    {kSysFolderUserSavedState,          Root::UserData,   ""},
    {kSysFolderUserCaches,              Root::UserCache,  ""},
    {kSysFolderUserPreferences,         Root::UserData,   ""},
    {kSysFolderUserMovies,              Root::Videos,     ""},
    {kSysFolderUserPictures,            Root::Pictures,   ""},
};
// clang-format on

/// Empty when the user has no home folder and names none.
std::string _rootFolder(Root root)
{
    switch (root) {
    case Root::UserData:
        return userFolders::baseFolder("XDG_DATA_HOME", ".local/share");
    case Root::UserCache:
        return userFolders::baseFolder("XDG_CACHE_HOME", ".cache");
    case Root::LocalData:
        return "/usr/local/share";
    case Root::SystemData:
        return "/usr/share";
    case Root::Documents:
        return userFolders::namedFolder("DOCUMENTS", "Documents");
    case Root::Videos:
        return userFolders::namedFolder("VIDEOS", "Videos");
    case Root::Pictures:
        return userFolders::namedFolder("PICTURES", "Pictures");
    }
    return {};
}

bool _isSameItem(const char* path, const struct stat& status)
{
    struct stat other {};
    return stat(path, &other) == 0 && other.st_dev == status.st_dev &&
           other.st_ino == status.st_ino;
}

/// The kernel marks the path of a program whose file is gone, or was replaced while it ran.
void _dropMark(std::string& path)
{
    constexpr std::string_view kMark = " (deleted)";

    struct stat running {};
    const bool marked = path.ends_with(kMark) && (stat("/proc/self/exe", &running) != 0 ||
                                                  !_isSameItem(path.c_str(), running));
    const std::string plain = path.substr(0, path.size() - (marked ? kMark.size() : 0));
    if (marked && access(plain.c_str(), F_OK) == 0) {
        path = plain;
    }
}

/// Path of the program's file in bytes; empty without /proc.
std::string _executable()
{
    constexpr std::size_t kMostBytes = 0x10000;

    std::string path(256, '\0');
    ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    while (length == static_cast<ssize_t>(path.size()) && path.size() < kMostBytes) {
        path.resize(2 * path.size());
        length = readlink("/proc/self/exe", path.data(), path.size());
    }
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    _dropMark(path);
    return path;
}

std::string _folderOf(const std::string& path)
{
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

std::string _resources(const std::string& executable)
{
    const std::string folder = _folderOf(executable);
    std::string resources = folder + (folder == "/" ? "" : "/") + "Resources";
    struct stat status {};
    const bool found = stat(resources.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return found ? resources : folder;
}

/// Gives what `part` makes of the program's path.
template <typename Part>
XeResult _partOfExecutable(_XeString<wchar_t>& out, Part part)
{
    const std::string path = _executable();
    if (!path.starts_with('/')) {
        return kXeGeneralFailure;
    }
    out = xenon::path::fromNative(part(path));
    return kXeOk;
}

} // namespace

XeResult _findSysFolder(_XeString<wchar_t>& out, ESysFolder folder)
{
    const FolderRow* const row = _rowOf(kFolders, folder);
    if (row == nullptr) {
        return kXeInvalidArgument;
    }
    std::string path = _rootFolder(row->root);
    if (path.empty()) {
        return kXeGeneralFailure;
    }
    path.append(path == "/" ? "" : "/").append(row->below);
    out = xenon::path::fromNative(path);
    return kXeOk;
}

XeResult _getExecutablePath(_XeString<wchar_t>& out)
{
    return _partOfExecutable(out, [](const std::string& path) { return path; });
}

XeResult _getExecutableFolder(_XeString<wchar_t>& out) { return _partOfExecutable(out, _folderOf); }

XeResult _getResourceFolder(_XeString<wchar_t>& out) { return _partOfExecutable(out, _resources); }

XeResult _getExecutableName(_XeString<wchar_t>& out)
{
    return _partOfExecutable(
        out, [](const std::string& path) { return path.substr(path.rfind('/') + 1); });
}

} // namespace XeFileSystem
