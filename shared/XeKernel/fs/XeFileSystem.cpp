#include "XeFileSystem.h"

#include "core/XeNativePath.h"

#include <boost/filesystem/operations.hpp>

#include <exception>
#include <vector>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using bfs::file_type;

/// The type of what a path leads to, links followed; an error for a path that names nothing.
file_type _typeOf(wchar_t const* path) noexcept
{
    try {
        const auto bytes = xenon::path::toNative(path == nullptr ? L"" : path);
        boost::system::error_code error;
        return bytes ? bfs::status(*bytes, error).type() : file_type::status_error;
    } catch (const std::exception&) {
        return file_type::status_error;
    }
}

/// The missing levels of a path, the deepest first. A "." (from a '/' at the end) and a ".." are no
/// levels of their own.
std::vector<bfs::path> _missingLevels(bfs::path path)
{
    std::vector<bfs::path> levels;
    boost::system::error_code error;
    for (; !path.empty() && bfs::status(path, error).type() == file_type::file_not_found;
         path = path.parent_path()) {
        if (!path.filename_is_dot() && !path.filename_is_dot_dot()) {
            levels.push_back(path);
        }
    }
    return levels;
}

/// Makes the levels from the last to the first; all of them or none.
bool _createLevels(std::vector<bfs::path> levels)
{
    std::vector<bfs::path> made;
    boost::system::error_code error;
    for (; !levels.empty() && !error; levels.pop_back()) {
        if (bfs::create_directory(levels.back(), error)) {
            made.push_back(levels.back());
        }
    }
    const bool whole = !error;
    for (; !whole && !made.empty(); made.pop_back()) {
        bfs::remove(made.back(), error);
    }
    return whole;
}

} // namespace

bool isFilePresent(wchar_t const* path) { return _typeOf(path) == file_type::regular_file; }

bool isFilePresent(_XeString<wchar_t> const& path) { return isFilePresent(path.c_str()); }

bool isFolderPresent(wchar_t const* path) { return _typeOf(path) == file_type::directory_file; }

bool isFolderPresent(_XeString<wchar_t> const& path) { return isFolderPresent(path.c_str()); }

XeResult createFolder(wchar_t const* path)
{
    try {
        const auto bytes = xenon::path::toNative(path == nullptr ? L"" : path);
        const bool made = bytes && _createLevels(_missingLevels(*bytes));
        return made && isFolderPresent(path) ? kXeOk : kXeFileOperationFailed;
    } catch (const std::exception&) {
        return kXeFileOperationFailed;
    }
}

} // namespace XeFileSystem
