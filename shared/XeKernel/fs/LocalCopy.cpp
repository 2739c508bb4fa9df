#include "fs/LocalCopy.h"

#include "XeSafeCRT.h"

#include <boost/filesystem/operations.hpp>

#include <fcntl.h>
#include <unistd.h>

namespace {

namespace bfs = boost::filesystem;

bool _isReadable(const std::string& path)
{
    return faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0;
}

} // namespace

XeResult copyLocalFile(const std::string& source, const FileStatus& from,
                       const std::string& destination, bool failIfExists)
{
    const FileStatus there = FileStatus::ofLink(destination);
    if (there.isMissing()) {
        return from.isFile() ? copyToNewFile(source, destination) : kXeFileOperationFailed;
    }
    const FileStatus to = there.isLink() ? FileStatus::of(destination) : there;
    if (to.isFile() && (failIfExists || to.isSameAs(from))) {
        return kXeGeneralFailure;
    }
    // Neither a folder nor a pipe nor a link that leads nowhere is overwritten, and no file is lost
    // to a source that cannot be read.
    if (!to.isFile() || !from.isFile() || !_isReadable(source)) {
        return kXeFileOperationFailed;
    }
    boost::system::error_code error;
    return bfs::remove(destination, error) ? copyToNewFile(source, destination) : kXeGeneralFailure;
}

XeResult copyToNewFile(const std::string& source, const std::string& destination)
{
    boost::system::error_code error;
    bfs::copy_file(source, destination, bfs::copy_options::none, error);
    if (!error) {
        return kXeOk;
    }
    // What has come to that path meanwhile is not ours, nor is anything there when the source could
    // not even be opened.
    if (error != boost::system::errc::file_exists && _isReadable(source)) {
        boost::system::error_code ignored;
        bfs::remove(destination, ignored);
    }
    return kXeFileOperationFailed;
}
