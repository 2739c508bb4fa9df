#include "XeFileSystem.h"

#include "XeNativePath.h"
#include "XeNetStream.h"
#include "XeSafeCRT.h"
#include "fs/NoThrow.h"
#include "fs/RegularFile.h"
#include "fs/RemoteVolume.h"
#include "fs/XeFileSystemStreamsPlatform.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>

namespace XeFileSystem {
namespace {

using xenon::network::XeNetOStream;
using xenon::network::XeNetStream;

// clang-format off
constexpr int kRead  = O_RDONLY;
constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
// clang-format on
constexpr mode_t kNewFileMode = 0666; // less the process's umask

/// False for what is there and no regular file. Merely to open a pipe ends the wait of a process at
/// its other end, and some devices begin to work.
bool _isForStreams(const char* path)
{
    struct stat status {};
    return stat(path, &status) != 0 || S_ISREG(status.st_mode);
}

/// Makes a regular file that of a closed buffer.
bool _openInto(std::filebuf& buffer, const char* path, int flags, std::ios::openmode mode)
{
    Descriptor file =
        _isForStreams(path) ? openRegularFile(path, flags, kNewFileMode) : Descriptor(-1);
    return file && _attach(buffer, file.release(), mode | std::ios::binary);
}

/// A standard file stream, whose own way to open a file would wait for pipes and hand the
/// descriptor down to child processes.
template <typename Stream>
std::shared_ptr<Stream> _openLocal(const _XeString<wchar_t>& path, int flags,
                                   std::ios::openmode mode)
{
    auto stream = std::make_shared<Stream>();
    const auto bytes = xenon::path::toNative(path);
    if (!bytes || !_openInto(*stream->rdbuf(), bytes->c_str(), flags, mode)) {
        stream->setstate(std::ios::failbit);
    }
    return stream;
}

} // namespace

std::shared_ptr<std::istream> openIStream(_XeString<wchar_t> const& path)
{
    using Stream = std::shared_ptr<std::istream>;
    return noThrow(Stream(), [&]() -> Stream {
        if (const RemoteVolume remote(path); remote) {
            return std::make_shared<XeNetStream<char>>(remote.fileSystem(), path, false);
        }
        return _openLocal<std::ifstream>(path, kRead, std::ios::in);
    });
}

std::shared_ptr<std::ostream> openOStream(_XeString<wchar_t> const& path)
{
    using Stream = std::shared_ptr<std::ostream>;
    return noThrow(Stream(), [&]() -> Stream {
        if (const RemoteVolume remote(path); remote) {
            return std::make_shared<XeNetOStream<char>>(remote.fileSystem(), path, false);
        }
        return _openLocal<std::ofstream>(path, kWrite, std::ios::out);
    });
}

} // namespace XeFileSystem
