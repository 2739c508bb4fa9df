#include "XeNetStream.h"

#include "XeSafeCRT.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace xenon::network {
namespace {

/// A transfer has to move something, and no more than it was asked for.
XeResult _checked(XeResult result, int count, int length)
{
    return result < 0 || (count >= 1 && count <= length) ? result : kXeGeneralFailure;
}

} // namespace

// Input ---------------------------------------------------------------------------------------

template <typename T, typename Traits>
XeNetStreamBuf<T, Traits>::XeNetStreamBuf(std::shared_ptr<IFileSystem> fileSystem,
                                          _XeString<wchar_t> path, bool exclusive)
    : m_fileSystem(std::move(fileSystem)), m_path(std::move(path)), m_exclusive(exclusive)
{
    if (m_fileSystem != nullptr) {
        std::int64_t size = 0;
        if (_remember(m_fileSystem->getFileSize(m_path, size)) >= 0) {
            m_fileSize = std::max<std::int64_t>(size, 0);
            m_buffer.resize(std::min(static_cast<std::size_t>(m_fileSize), kNetBlockBytes));
        }
        m_opened = _remember(m_fileSystem->openRead(m_path, m_handle, m_exclusive)) >= 0;
    }
    if (m_buffer.empty()) {
        m_buffer.resize(1);
    }
}

template <typename T, typename Traits>
XeNetStreamBuf<T, Traits>::~XeNetStreamBuf()
{
    close();
}

template <typename T, typename Traits>
XeResult XeNetStreamBuf<T, Traits>::close()
{
    if (!m_opened) {
        _remember(kXeGeneralFailure);
    } else {
        _closeHandle();
        m_opened = false;
        this->setg(nullptr, nullptr, nullptr);
    }
    return m_firstFailure;
}

template <typename T, typename Traits>
XeResult XeNetStreamBuf<T, Traits>::_remember(XeResult result)
{
    if (m_firstFailure >= 0 && result < 0) {
        m_firstFailure = result;
    }
    return result;
}

template <typename T, typename Traits>
void XeNetStreamBuf<T, Traits>::_closeHandle()
{
    if (std::exchange(m_handleOpen, false)) {
        _remember(m_fileSystem->closeRead(m_handle, 0));
    }
}

/// Reads into the front of the buffer. After a failure nobody knows where the handle stands, so it
/// is closed and the next attempt starts with a new one.
template <typename T, typename Traits>
int XeNetStreamBuf<T, Traits>::_read(std::int64_t limit)
{
    const auto length =
        static_cast<int>(std::min(limit, static_cast<std::int64_t>(m_buffer.size())));
    int count = 0;
    const XeResult result = m_fileSystem->read(m_handle, m_buffer.data(), length, count);
    if (_remember(_checked(result, count, length)) < 0) {
        _closeHandle();
        return 0;
    }
    m_handleAt += count;
    return count;
}

/// Brings the handle to where the get area ends.
template <typename T, typename Traits>
bool XeNetStreamBuf<T, Traits>::_reachPosition()
{
    if (m_handleAt > m_bytesRead) {
        _closeHandle();
    }
    if (!m_handleOpen) {
        if (_remember(m_fileSystem->openRead(m_path, m_handle, m_exclusive)) < 0) {
            return false;
        }
        m_handleOpen = true;
        m_handleAt = 0;
    }
    while (m_handleAt < m_bytesRead) {
        if (_read(m_bytesRead - m_handleAt) == 0) {
            return false;
        }
    }
    return true;
}

template <typename T, typename Traits>
void XeNetStreamBuf<T, Traits>::_fill()
{
    T* const start = reinterpret_cast<T*>(m_buffer.data());
    this->setg(start, start, start);
    if (!_reachPosition()) {
        return;
    }
    // What a file has grown by meanwhile is not part of the stream.
    const std::int64_t count =
        std::min<std::int64_t>(_read(kNetBlockBytes), m_fileSize - m_bytesRead);
    this->setg(start, start, start + count);
    m_bytesRead += count;
    if (m_bytesRead == m_fileSize) {
        _closeHandle();
    }
}

template <typename T, typename Traits>
auto XeNetStreamBuf<T, Traits>::underflow() -> int_type
{
    if (!m_opened) {
        return Traits::eof();
    }
    if (this->gptr() == this->egptr() && m_bytesRead < m_fileSize) {
        _fill();
    }
    return this->gptr() == this->egptr() ? Traits::eof() : Traits::to_int_type(*this->gptr());
}

template <typename T, typename Traits>
auto XeNetStreamBuf<T, Traits>::overflow(int_type c) -> int_type
{
    return m_opened ? c : Traits::eof();
}

template <typename T, typename Traits>
int XeNetStreamBuf<T, Traits>::sync()
{
    return 0;
}

template <typename T, typename Traits>
auto XeNetStreamBuf<T, Traits>::seekoff(off_type offset, std::ios_base::seekdir direction,
                                        std::ios_base::openmode which) -> pos_type
{
    const bool fromStart = direction == std::ios_base::beg;
    if (!m_opened || (which & std::ios_base::in) == 0 || (fromStart && offset < 0)) {
        return pos_type(off_type(-1));
    }
    const std::int64_t current = m_bytesRead - (this->egptr() - this->gptr());
    const std::int64_t origin = fromStart                         ? 0
                                : direction == std::ios_base::cur ? current
                                                                  : m_fileSize;
    const std::int64_t target =
        origin + std::clamp<std::int64_t>(offset, -origin, m_fileSize - origin);
    _moveTo(target);
    return pos_type(target);
}

template <typename T, typename Traits>
auto XeNetStreamBuf<T, Traits>::seekpos(pos_type position, std::ios_base::openmode which)
    -> pos_type
{
    return seekoff(off_type(position), std::ios_base::beg, which);
}

template <typename T, typename Traits>
void XeNetStreamBuf<T, Traits>::_moveTo(std::int64_t target)
{
    const std::int64_t held = this->egptr() - this->eback();
    if (target >= m_bytesRead - held && target <= m_bytesRead) {
        this->setg(this->eback(), this->egptr() - (m_bytesRead - target), this->egptr());
    } else {
        this->setg(this->eback(), this->eback(), this->eback());
        m_bytesRead = target;
    }
}

// Output --------------------------------------------------------------------------------------

// The 16 MiB are not zeroed.
template <typename T, typename Traits>
XeNetOStreamBuf<T, Traits>::XeNetOStreamBuf(std::shared_ptr<IFileSystem> fileSystem,
                                            _XeString<wchar_t> path, bool exclusive)
    : m_fileSystem(std::move(fileSystem)), m_path(std::move(path)), m_exclusive(exclusive)
{
    this->setp(m_buffer.begin(), m_buffer.end() - 1);
    m_opened =
        m_fileSystem != nullptr && m_fileSystem->openWrite(m_path, m_handle, m_exclusive) >= 0;
}

template <typename T, typename Traits>
XeNetOStreamBuf<T, Traits>::~XeNetOStreamBuf()
{
    close();
}

template <typename T, typename Traits>
XeResult XeNetOStreamBuf<T, Traits>::close()
{
    if (!std::exchange(m_opened, false)) {
        return kXeGeneralFailure;
    }
    const XeResult sent = _send();
    const XeResult closed = m_fileSystem->closeWrite(m_handle);
    return sent < 0 ? sent : std::min(closed, kXeOk);
}

template <typename T, typename Traits>
XeResult XeNetOStreamBuf<T, Traits>::_send()
{
    const T* next = this->pbase();
    XeResult result = kXeOk;
    while (next != this->pptr() && result >= 0) {
        const int length = static_cast<int>(this->pptr() - next);
        int count = 0;
        result = _checked(m_fileSystem->write(m_handle, next, length, count), count, length);
        next += result < 0 ? 0 : count;
    }
    _keepFrom(next);
    return result;
}

/// Moves what was not sent to the buffer's front.
template <typename T, typename Traits>
void XeNetOStreamBuf<T, Traits>::_keepFrom(const T* next)
{
    const auto count = static_cast<std::size_t>(this->pptr() - next);
    if (next != this->pbase()) {
        Traits::move(m_buffer.begin(), next, count);
    }
    _setPending(count);
}

/// The put area leaves the spare element out, unless that is taken too: the standard's own
/// functions must never see a put pointer behind the put area.
template <typename T, typename Traits>
void XeNetOStreamBuf<T, Traits>::_setPending(std::size_t count)
{
    this->setp(m_buffer.begin(), m_buffer.end() - (count == m_buffer.size() ? 0 : 1));
    this->pbump(static_cast<int>(count));
}

template <typename T, typename Traits>
void XeNetOStreamBuf<T, Traits>::_put(T c)
{
    *this->pptr() = c;
    _setPending(static_cast<std::size_t>(this->pptr() - this->pbase()) + 1);
}

template <typename T, typename Traits>
int XeNetOStreamBuf<T, Traits>::sync()
{
    return m_opened && this->pptr() != this->pbase() && _send() >= 0 ? 0 : -1;
}

template <typename T, typename Traits>
auto XeNetOStreamBuf<T, Traits>::overflow(int_type c) -> int_type
{
    if (Traits::eq_int_type(c, Traits::eof())) {
        return Traits::eof();
    }
    const bool room = this->pptr() != m_buffer.end();
    if (room) {
        _put(Traits::to_char_type(c));
    }
    if (sync() != 0) {
        return Traits::eof();
    }
    if (!room) {
        _put(Traits::to_char_type(c));
    }
    return c;
}

// Streams -------------------------------------------------------------------------------------

template <typename T, typename Traits>
XeNetStream<T, Traits>::XeNetStream(std::shared_ptr<IFileSystem> fileSystem,
                                    _XeString<wchar_t> path, bool exclusive)
    : std::basic_istream<T, Traits>(nullptr),
      m_buffer(std::make_unique<XeNetStreamBuf<T, Traits>>(std::move(fileSystem), std::move(path),
                                                           exclusive))
{
    this->rdbuf(m_buffer.get());
}

template <typename T, typename Traits>
XeNetOStream<T, Traits>::XeNetOStream(std::shared_ptr<IFileSystem> fileSystem,
                                      _XeString<wchar_t> path, bool exclusive)
    : std::basic_ostream<T, Traits>(nullptr),
      m_buffer(std::make_unique<XeNetOStreamBuf<T, Traits>>(std::move(fileSystem), std::move(path),
                                                            exclusive))
{
    this->rdbuf(m_buffer.get());
}

template class XeNetStreamBuf<char>;
template class XeNetOStreamBuf<char>;
template class XeNetStream<char>;
template class XeNetOStream<char>;

} // namespace xenon::network
