#include "XeFileSystem.h"

#include "XeNetStream.h"
#include "fs/LocalCopy.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

namespace XeFileSystem {
namespace {

using xenon::network::XeNetOStream;
using xenon::network::XeNetStream;

/// Whatever of the two a stream is, true when its file is open.
template <typename NetStream, typename Stream>
bool _isOpen(const std::shared_ptr<Stream>& stream)
{
    const auto* const net = dynamic_cast<const NetStream*>(stream.get());
    return net != nullptr ? net->is_open() : stream != nullptr && stream->good();
}

/// Closes a stream of either kind; true when all that went through it is where it belongs.
template <typename NetStream, typename FileStream, typename Stream>
bool _close(Stream& stream, const RemoteVolume& volume)
{
    if (auto* const net = dynamic_cast<NetStream*>(&stream)) {
        return volume.ended(net->close()) >= 0;
    }
    if (auto* const file = dynamic_cast<FileStream*>(&stream)) {
        file->close(); // flushes
    }
    return stream.good();
}

/// Moves all bytes of one buffer to the other; true when those were as many as there should be.
bool _moveBytes(std::streambuf& from, std::streambuf& to, long long size)
{
    constexpr long long kBlockBytes = 1 << 20;
    std::vector<char> block(static_cast<std::size_t>(std::clamp(size, 1LL, kBlockBytes)));
    const auto capacity = static_cast<std::streamsize>(block.size());
    long long moved = 0;
    while (const std::streamsize count = from.sgetn(block.data(), capacity)) {
        if (to.sputn(block.data(), count) != count) {
            return false;
        }
        moved += count;
    }
    return moved == size;
}

/// Deletes a file that was begun, unless it was finished.
class Unfinished {
public:
    explicit Unfinished(wchar_t const* path) : m_path(path) {}
    ~Unfinished()
    {
        if (m_path != nullptr) {
            deleteFile(m_path);
        }
    }
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    void finish() { m_path = nullptr; }

private:
    wchar_t const* m_path;
};

/// A copy of which at least one side is remote.
class StreamedCopy {
public:
    StreamedCopy(wchar_t const* source, const RemoteVolume& from, wchar_t const* destination,
                 const RemoteVolume& to)
        : m_source(givenText(source)), m_from(from), m_destination(givenText(destination)), m_to(to)
    {
    }

    XeResult run(bool failIfExists) const
    {
        const bool there = isFilePresent(m_destination);
        if (there && (failIfExists || _isCopyOfItself())) {
            return kXeGeneralFailure;
        }
        long long size = 0;
        if (getFileSize(m_source, size) < 0 || (!there && _isBlocked())) {
            return kXeFileOperationFailed;
        }
        const auto in = openIStream(m_source);
        if (!_isOpen<XeNetStream<char>>(in)) {
            return kXeFileOperationFailed;
        }
        const XeResult deleted = there ? deleteFile(m_destination) : kXeOk;
        return deleted < 0 ? deleted : _write(*in, size);
    }

private:
    /// A remote knows no identity of a file but its path.
    bool _isCopyOfItself() const
    {
        return (m_from == m_to && std::wstring_view(m_source) == m_destination) ||
               FileStatus::of(nativePath(m_source))
                   .isSameAs(FileStatus::of(nativePath(m_destination)));
    }

    /// True for what is there locally and no file: it is neither opened nor overwritten.
    bool _isBlocked() const
    {
        return !m_to && !FileStatus::ofLink(nativePath(m_destination)).isMissing();
    }

    XeResult _write(std::istream& in, long long size) const
    {
        std::optional<Unfinished> unfinished; // outlives the stream: an open file is not deleted
        if (!m_to) {
            unfinished.emplace(m_destination); // may be there though no stream came of it
        }
        const auto out = openOStream(m_destination);
        if (!_isOpen<XeNetOStream<char>>(out)) {
            return kXeFileOperationFailed;
        }
        if (m_to) {
            unfinished.emplace(m_destination);
        }
        const bool moved = _moveBytes(*in.rdbuf(), *out->rdbuf(), size);
        const bool read = _close<XeNetStream<char>, std::ifstream>(in, m_from);
        const bool written = _close<XeNetOStream<char>, std::ofstream>(*out, m_to);
        if (!moved || !read || !written) {
            return kXeFileOperationFailed;
        }
        unfinished->finish();
        return kXeOk;
    }

    wchar_t const* m_source;
    const RemoteVolume& m_from;
    wchar_t const* m_destination;
    const RemoteVolume& m_to;
};

} // namespace

XeResult copyFile(wchar_t const* source, wchar_t const* destination, bool failIfExists)
{
    return noThrow(kXeFileOperationFailed, [&] {
        const RemoteVolume from(source);
        const RemoteVolume to(destination);
        if (from || to) {
            return StreamedCopy(source, from, destination, to).run(failIfExists);
        }
        const std::string path = nativePath(source);
        return copyLocalFile(path, FileStatus::of(path), nativePath(destination), failIfExists);
    });
}

} // namespace XeFileSystem
