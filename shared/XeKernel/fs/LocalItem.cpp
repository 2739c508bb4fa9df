#include "fs/LocalItem.h"

#include "XeSafeCRT.h"
#include "core/XeFilePlatform.h"

#include <boost/filesystem/operations.hpp>

namespace bfs = boost::filesystem;

std::optional<std::string> localPath(wchar_t const* path)
{
    if (path == nullptr || *path == L'\0') {
        return std::nullopt;
    }
    return _systemPath(path);
}

bfs::file_type localType(wchar_t const* path)
{
    const auto bytes = localPath(path);
    boost::system::error_code error;
    return bytes ? bfs::status(*bytes, error).type() : bfs::file_type::status_error;
}

std::optional<std::int64_t> localSize(wchar_t const* path)
{
    const auto bytes = localPath(path);
    boost::system::error_code error;
    const auto size = bytes ? bfs::file_size(*bytes, error) : 0;
    return bytes && !error ? std::optional(static_cast<std::int64_t>(size)) : std::nullopt;
}
