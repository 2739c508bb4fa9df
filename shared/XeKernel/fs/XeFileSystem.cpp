#include "XeFileSystem.h"

#include "core/XeNativePath.h"

#include <boost/filesystem/operations.hpp>

#include <exception>

namespace XeFileSystem {
namespace {

using boost::filesystem::file_type;

/// The type of what a path leads to, links followed; an error for a path that names nothing.
file_type _typeOf(wchar_t const* path) noexcept
{
    try {
        const auto bytes = xenon::path::toNative(path == nullptr ? L"" : path);
        boost::system::error_code error;
        return bytes ? boost::filesystem::status(*bytes, error).type() : file_type::status_error;
    } catch (const std::exception&) {
        return file_type::status_error;
    }
}

} // namespace

bool isFilePresent(wchar_t const* path) { return _typeOf(path) == file_type::regular_file; }

bool isFilePresent(_XeString<wchar_t> const& path) { return isFilePresent(path.c_str()); }

bool isFolderPresent(wchar_t const* path) { return _typeOf(path) == file_type::directory_file; }

bool isFolderPresent(_XeString<wchar_t> const& path) { return isFolderPresent(path.c_str()); }

} // namespace XeFileSystem
