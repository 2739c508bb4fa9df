// Streams over a remote file system beside a plain file stream over the same file, with memcpy as
// the floor. The remote reads and writes the file with one system call per block, so what differs
// is the streams. Ours comes last in each group; its counters `vs_<peer>` are its time divided by
// the peer's in the same run.

#include "ComparedRows.h"
#include "StreamsOnlyFileSystem.h"
#include "XeNetStream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using xenon::network::XeNetOStream;
using xenon::network::XeNetStream;

constexpr std::size_t kFileBytes = 256u << 20;
constexpr std::size_t kPieceBytes = 64u << 10; // what the reader of a stream asks for at a time

/// One file of the temporary folder, as a remote.
class FileRemote : public StreamsOnlyFileSystem {
public:
    explicit FileRemote(std::string file) : m_file(std::move(file)) {}

    XeResult getFileSize(const Path&, std::int64_t& size) override
    {
        size = kFileBytes;
        return kXeOk;
    }
    XeResult openRead(const Path&, Handle& handle, bool) override
    {
        return opened(open(m_file.c_str(), O_RDONLY), handle);
    }
    XeResult read(Handle handle, void* buffer, int length, int& count) override
    {
        count = static_cast<int>(
            ::read(static_cast<int>(handle), buffer, static_cast<std::size_t>(length)));
        return count < 0 ? kXeGeneralFailure : kXeOk;
    }
    XeResult closeRead(Handle handle, int) override { return closeWrite(handle); }
    XeResult openWrite(const Path&, Handle& handle, bool) override
    {
        return opened(open(m_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), handle);
    }
    XeResult write(Handle handle, const void* data, int length, int& count) override
    {
        count = static_cast<int>(
            ::write(static_cast<int>(handle), data, static_cast<std::size_t>(length)));
        return count < 0 ? kXeGeneralFailure : kXeOk;
    }
    XeResult closeWrite(Handle handle) override
    {
        return close(static_cast<int>(handle)) == 0 ? kXeOk : kXeGeneralFailure;
    }

private:
    static XeResult opened(int descriptor, Handle& handle)
    {
        handle = static_cast<Handle>(descriptor);
        return descriptor < 0 ? kXeGeneralFailure : kXeOk;
    }

    std::string m_file;
};

/// The file, removed at the end.
struct BenchFile {
    BenchFile()
    {
        char name[] = "/tmp/tarvel-bench-XXXXXX";
        close(mkstemp(name));
        path = name;
        std::ofstream(path, std::ios::binary).write(data.data(), kFileBytes);
    }
    ~BenchFile() { std::remove(path.c_str()); }

    std::vector<char> data = std::vector<char>(kFileBytes, 'x');
    std::string path;
};

BenchFile& file()
{
    static BenchFile file;
    return file;
}

void failWhen(bool failed)
{
    if (failed) {
        std::fputs("bench_netstream: a transfer failed\n", stderr);
        std::exit(1);
    }
}

std::vector<char>& piece()
{
    static std::vector<char> piece(kPieceBytes);
    return piece;
}

void copyPieces()
{
    for (std::size_t at = 0; at < kFileBytes; at += kPieceBytes) {
        std::memcpy(piece().data(), file().data.data() + at, kPieceBytes);
        benchmark::ClobberMemory();
    }
}

void readAll(std::istream& stream)
{
    std::size_t total = 0;
    while (stream.read(piece().data(), kPieceBytes)) {
        total += kPieceBytes;
    }
    failWhen(total != kFileBytes);
}

void writeAll(std::ostream& stream)
{
    for (std::size_t at = 0; at < kFileBytes; at += kPieceBytes) {
        stream.write(file().data.data() + at, kPieceBytes);
    }
    failWhen(!stream);
}

void readWithSystemCalls()
{
    static std::vector<char> block(16u << 20);
    const int descriptor = open(file().path.c_str(), O_RDONLY);
    while (read(descriptor, block.data(), block.size()) > 0) {
    }
    close(descriptor);
}

[[maybe_unused]] const bool g_registered = [] {
    file(); // written before anything is timed
    addComparedRow("read_256MiB", "memcpy", copyPieces);
    addComparedRow("read_256MiB", "read2", readWithSystemCalls);
    addComparedRow("read_256MiB", "ifstream", [] {
        std::ifstream stream(file().path, std::ios::binary);
        readAll(stream);
    });
    addComparedRow("read_256MiB", "XeNetStream", [] {
        XeNetStream<char> stream(std::make_shared<FileRemote>(file().path), L"/m/f", false);
        readAll(stream);
        failWhen(stream.close() < 0);
    });
    addComparedRow("write_256MiB", "memcpy", copyPieces);
    addComparedRow("write_256MiB", "ofstream", [] {
        std::ofstream stream(file().path, std::ios::binary);
        writeAll(stream);
    });
    addComparedRow("write_256MiB", "XeNetOStream", [] {
        XeNetOStream<char> stream(std::make_shared<FileRemote>(file().path), L"/m/f", false);
        writeAll(stream);
        failWhen(stream.close() < 0);
    });
    return true;
}();

} // namespace
