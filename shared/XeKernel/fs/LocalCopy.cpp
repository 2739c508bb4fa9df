#include "fs/LocalCopy.h"

#include "XeSafeCRT.h"
#include "fs/RegularFile.h"

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

// The file is opened here and copied by the name of its descriptor, since copy_file would wait at a
// pipe that has come to the path meanwhile.
XeResult copyToNewFile(const std::string& source, const std::string& destination)
{
    const Descriptor file = openRegularFile(source.c_str(), O_RDONLY);
    if (!file) {
        return kXeFileOperationFailed;
    }
    boost::system::error_code error;
    bfs::copy_file("/dev/fd/" + std::to_string(file.get()), destination, bfs::copy_options::none,
                   error);
    if (!error) {
        return kXeOk;
    }
    // What has come to that path meanwhile is not ours.
    if (error != boost::system::errc::file_exists) {
        boost::system::error_code ignored;
        bfs::remove(destination, ignored);
    }
    return kXeFileOperationFailed;
}
