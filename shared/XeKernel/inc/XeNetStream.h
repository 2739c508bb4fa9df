#pragma once

#include "IFileSystem.h"
#include "XeResult.h"
#include "XeString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

/// Standard streams over files of a remote file system, in blocks of 16 MiB.
///
/// A standard stream cannot tell the end of a file from a remote that stopped answering. Whoever
/// has to know asks close(), or compares what arrived with the file's size. Templates in the manner
/// of the standard streams, supplied for `char`. One stream is used by one thread at a time; every
/// operation may block on the remote. [any]
namespace xenon::network {

/// Bytes that both stream buffers hold, and the most that one remote call moves.
inline constexpr std::size_t kNetBlockBytes = 0x1000000;

/// Reads a remote file. The file is as long as it was when the buffer was made.
///
/// A file of up to 16 MiB arrives with one remote read. The remote handle is closed as soon as the
/// last byte is there. Positions count from the start of the file; a seek inside the block that is
/// held costs nothing. Any other seek is carried out by the next read, and since a remote handle
/// only reads on, going back opens the file anew and what lies before the target is read and
/// dropped.
template <typename T, typename Traits = std::char_traits<T>>
class XeNetStreamBuf : public std::basic_streambuf<T, Traits> {
    static_assert(sizeof(T) == 1, "remote files are bytes");

public:
    using typename std::basic_streambuf<T, Traits>::int_type;
    using typename std::basic_streambuf<T, Traits>::off_type;
    using typename std::basic_streambuf<T, Traits>::pos_type;

    /// Asks for the file's size and opens it. When that fails every read is at the end at once.
    /// @param fileSystem  Kept while the buffer lives. Null fails like a file that does not open.
    /// @param exclusive   Passed on to IFileSystem::openRead.
    XeNetStreamBuf(std::shared_ptr<IFileSystem> fileSystem, _XeString<wchar_t> path,
                   bool exclusive);

    /// Closes the remote handle if it is open.
    ~XeNetStreamBuf() override;
    XeNetStreamBuf(const XeNetStreamBuf&) = delete;
    XeNetStreamBuf& operator=(const XeNetStreamBuf&) = delete;

    /// True when the file was opened, until close().
    bool is_open() const { return m_opened; }

    /// Closes the file; further reads are at the end.
    /// @return  kXeOk when no remote call has failed so far; else the first failure, which is
    ///          kXeGeneralFailure for a file that ended before its size or was not open.
    XeResult close();

protected:
    /// A position from the start stops at the file's size, and is refused when negative; from the
    /// end or the present position it is clamped to the file.
    /// @return  The new position; -1 when refused, when `which` asks for no input, or when not
    ///          open.
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

    /// Nothing to do; 0.
    int sync() override;

    /// Reads the next block. A failed read is the end; the next attempt opens the file anew.
    int_type underflow() override;

    /// Accepts a character and drops it: the file is not written.
    int_type overflow(int_type c) override;

private:
    void _fill();
    int _read(std::int64_t limit);
    bool _reachPosition();
    void _moveTo(std::int64_t target);
    void _closeHandle();
    XeResult _remember(XeResult result);

    std::shared_ptr<IFileSystem> m_fileSystem;
    std::vector<std::uint8_t> m_buffer;
    _XeString<wchar_t> m_path;
    std::int64_t m_fileSize = 0;
    std::int64_t m_bytesRead = 0; // position of the get area's end
    IFileSystem::Handle m_handle{};
    bool m_opened = false;
    bool m_exclusive;
    bool m_handleOpen = true;        // once opened: the handle waits to be closed
    std::int64_t m_handleAt = 0;     // what the handle reads next; differs after a seek
    XeResult m_firstFailure = kXeOk; // of all remote calls
};

/// Writes a remote file, in as few calls as the remote accepts.
///
/// 16 MiB and a little large, so it belongs on the heap. What is written is gathered until the
/// buffer is full, flushed, closed or destroyed. When a flush fails, what the remote has not taken
/// stays in the buffer and the next flush offers it again.
template <typename T, typename Traits = std::char_traits<T>>
class XeNetOStreamBuf : public std::basic_streambuf<T, Traits> {
    static_assert(sizeof(T) == 1, "remote files are bytes");

public:
    using typename std::basic_streambuf<T, Traits>::int_type;

    /// Opens the file. When that fails every flush fails.
    /// @param fileSystem  Kept while the buffer lives. Null fails like a file that does not open.
    /// @param exclusive   Passed on to IFileSystem::openWrite.
    XeNetOStreamBuf(std::shared_ptr<IFileSystem> fileSystem, _XeString<wchar_t> path,
                    bool exclusive);

    /// Flushes and closes, as close() does. Failures are lost: call close() to learn of them.
    ~XeNetOStreamBuf() override;
    XeNetOStreamBuf(const XeNetOStreamBuf&) = delete;
    XeNetOStreamBuf& operator=(const XeNetOStreamBuf&) = delete;

    /// True when the file was opened, until close().
    bool is_open() const { return m_opened; }

    /// Sends what is left and closes the file, which happens also when sending fails.
    /// @return  kXeOk when everything written since the opening is on the remote; else the result
    ///          of the call that failed, or kXeGeneralFailure when the file was not open.
    XeResult close();

protected:
    /// Sends what is pending.
    /// @return  0 on success. -1 when the remote refused; when not open; and when nothing is
    ///          pending, so a second flush in a row marks a standard stream as bad though nothing
    ///          is lost.
    int sync() override;

    /// Takes `c` and sends the full buffer. After a failed send `c` is still in the buffer, except
    /// when there was no room for it.
    int_type overflow(int_type c) override;

private:
    XeResult _send();
    void _keepFrom(const T* next);
    void _setPending(std::size_t count);
    void _put(T c);

    std::shared_ptr<IFileSystem> m_fileSystem;
    _XeString<wchar_t> m_path;
    IFileSystem::Handle m_handle{};
    std::array<T, kNetBlockBytes> m_buffer; // the last element is spare, for overflow()
    bool m_exclusive;
    bool m_opened = false;
};

/// Input stream over a remote file. Owns its buffer.
template <typename T, typename Traits = std::char_traits<T>>
class XeNetStream : public std::basic_istream<T, Traits> {
public:
    /// Opens the file, as XeNetStreamBuf does. The stream starts good also when that failed: see
    /// is_open().
    XeNetStream(std::shared_ptr<IFileSystem> fileSystem, _XeString<wchar_t> path, bool exclusive);

    bool is_open() const { return m_buffer->is_open(); }

    /// XeNetStreamBuf::close: tells whether all that was read really came from the file.
    XeResult close() { return m_buffer->close(); }

private:
    std::unique_ptr<XeNetStreamBuf<T, Traits>> m_buffer;
};

/// Output stream over a remote file. Owns its buffer.
template <typename T, typename Traits = std::char_traits<T>>
class XeNetOStream : public std::basic_ostream<T, Traits> {
public:
    /// Opens the file, as XeNetOStreamBuf does. The stream starts good also when that failed: see
    /// is_open().
    XeNetOStream(std::shared_ptr<IFileSystem> fileSystem, _XeString<wchar_t> path, bool exclusive);

    bool is_open() const { return m_buffer->is_open(); }

    /// XeNetOStreamBuf::close: tells whether all that was written has arrived.
    XeResult close() { return m_buffer->close(); }

private:
    std::unique_ptr<XeNetOStreamBuf<T, Traits>> m_buffer;
};

extern template class XeNetStreamBuf<char>;
extern template class XeNetOStreamBuf<char>;
extern template class XeNetStream<char>;
extern template class XeNetOStream<char>;

} // namespace xenon::network
