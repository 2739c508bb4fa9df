#pragma once

#include "XeResult.h"
#include "XeString.h"

#include <cstddef>
#include <cstdio>
#include <memory>

namespace boost::iostreams {
class mapped_file;
} // namespace boost::iostreams

/// How a file is opened. Filled by the caller, read by XeFile and XeMappedFile, which put `create`
/// and `readOnly` right in the record itself: `newFileSize` > 0 sets `create`, and `create` clears
/// `readOnly`.
struct _xeAttrib {
    const wchar_t* path = nullptr; ///< kept until the attributes are taken; null is the empty path
    bool readOnly = false;
    bool create = false;       ///< create or truncate the file; XeFile makes its folder first
    bool text = false;         ///< "t" rather than "b" in the mode string
    long long length = 0;      ///< bytes to map, 0 for all to the end; XeMappedFile only
    long long offset = 0;      ///< start in bytes: XeFile seeks there, XeMappedFile maps from there
    long long newFileSize = 0; ///< bytes; XeFile seeks there before closing, XeMappedFile makes a
                               ///< new file of that size
};

/// A file over a stream of the C library.
///
/// Nothing throws; what cannot be had for want of memory counts as a failed operation. Counts that
/// are unsigned have all bits set for "no stream is open". The destructor closes. Errors of
/// buffered writing come late: a full disk may show in flush() only, and Close() does not tell it.
/// Between reading and writing one stream calls seek() or flush() (C standard, 7.21.5.3).
///
/// Each object is for one thread at a time. [any], blocks on the file.
class XeFile {
public:
    /// Closed, without path and mode.
    XeFile() = default;

    /// Takes the attributes; does not open.
    explicit XeFile(_xeAttrib& attributes);

    /// Takes over an open stream (a FILE*), as attach() does.
    explicit XeFile(void* stream);
    ~XeFile();

    /// A closed file with the other's attributes.
    XeFile(const XeFile& other);

    /// Takes the other's attributes. The stream of this object is forgotten without being closed,
    /// so assign to closed objects only.
    XeFile& operator=(const XeFile& other);

    /// Takes path, `create` (as the caller has set it), `offset` and `newFileSize`, and builds the
    /// mode string. Does not open; an open stream stays.
    void setOpenAttrib(_xeAttrib& attributes);

    /// Puts the record right as described there and makes the mode string of it: "r" for
    /// `readOnly`; otherwise "w+" with `create`, "r+" for a file that is there and "a+" for one
    /// that is not; then "t" or "b".
    static _XeString<char> buildCRTOpenStr(_xeAttrib& attributes); // {path, create} -> "w+b"

    /// Takes over an open stream (a FILE*), which Close() closes.
    /// @return  0; kXeGeneralFailure when a stream is held already, which stays.
    XeResult attach(void* stream);

    /// Opens with the stored attributes, closing first what was open; then seeks to `offset`. With
    /// `create` the folder is made first, but not for a `create` that only `newFileSize` has set.
    /// The system opens a folder for reading too; nothing can be read from it.
    /// @return  0; kXeOpenFailed; or the failure of createFolder().
    XeResult Open();

    /// Closes, takes the attributes and opens.
    XeResult Open(_xeAttrib& attributes);

    /// Seeks to `newFileSize` when that is above 0 (which alone makes no file longer), flushes,
    /// closes and forgets the path.
    /// @return  0, whatever happened.
    int Close();

    /// Makes the folder of the path unless it is there. A path without folder lies in the working
    /// folder, which is.
    /// @return  0, or the failure of XeFileSystem::createFolder.
    XeResult createFolder();

    /// Moves to `offset` bytes from the start, the present position or the end (`whence` as for
    /// fseek). @return  0, or -1.
    int seek(int whence, long long offset) const;

    /// Present position in bytes, or -1.
    long long curFilePos() const;

    /// Reads or writes bytes. @return  Bytes done; fewer at the end of the file and on errors.
    unsigned long read(void* buffer, unsigned long bytes) const;
    unsigned long write(const void* buffer, unsigned long bytes) const;

    /// Reads text: UTF-32, or UTF-16 of which each pair of surrogates becomes one character, both
    /// in the byte order of the machine and without byte-order mark. The text ends at the first
    /// zero, or after the units that were there.
    ///
    /// A high surrogate without its low one becomes one '_', together with the unit behind it. A
    /// low surrogate alone is kept.
    ///
    /// @param text   Left alone when no stream is open.
    /// @param count  Units to read: 4 bytes each, or 2 for UTF-16. May exceed what the file has.
    /// @return       Bytes read, those after a zero and of an incomplete unit included; all bits
    ///               set when memory does not suffice for the text, which is empty then.
    unsigned long read(_XeString<wchar_t>& text, unsigned long count, bool utf16) const;

    /// Writes text, units as for reading. UTF-16 has no form for characters above 0x10FFFF.
    /// @param writeNull  Adds one unit of zero.
    /// @return           Bytes written; nothing follows a short write.
    unsigned long write(const _XeString<wchar_t>& text, bool writeNull, bool utf16) const;

    /// Writes a terminated text without its terminator: as UTF-32, as UTF-8, and as it is. Null
    /// counts as empty. @return  Bytes written.
    unsigned long writeString(const wchar_t* text) const;
    unsigned long writeStringA(const wchar_t* text) const;
    unsigned long writeStringA(const char* text) const;

    /// Hands what is buffered to the system. @return  0; EOF on failure; -1 without stream.
    int flush() const;

    /// The stream, null when closed. Stays owned by this object.
    std::FILE* getHandle() const { return m_stream; }
    bool isOpen() const { return m_stream != nullptr; }

private:
    void _closeStream();

    std::FILE* m_stream = nullptr; // owned
    _XeString<wchar_t> m_path;
    _XeString<char> m_mode;
    bool m_create = false;
    long long m_offset = 0;
    long long m_newFileSize = 0;
};

/// A file, or a window of it, in memory.
///
/// The window starts at any byte; what the system wants aligned is arranged inside. It lies wholly
/// in the file when it is opened; a file that another program cuts short afterwards faults, as
/// every mapping does. Nothing throws; the destructor closes. Each object is for one thread at a
/// time. [any], opening blocks on the file.
class XeMappedFile {
public:
    XeMappedFile();

    /// Takes the attributes; does not open.
    explicit XeMappedFile(_xeAttrib& attributes);
    ~XeMappedFile();
    XeMappedFile(const XeMappedFile&) = delete;
    XeMappedFile& operator=(const XeMappedFile&) = delete;

    /// Takes the attributes for the next Open(). An open mapping stays as it is.
    void setOpenAttrib(_xeAttrib& attributes);

    /// Maps the file, for reading and writing unless the attributes say read only. Only
    /// `newFileSize` makes a file: it is made, or emptied, with its blocks reserved, so that
    /// writing cannot hit a full disk. When they cannot be, a file that was not there is not there
    /// afterwards.
    /// @return  0; kXeUnexpected when a mapping is open, or no attributes were set;
    ///          kXeGeneralFailure for all else: no regular file, no right, no room, or a window
    ///          that is empty or not wholly in the file.
    XeResult Open();

    /// setOpenAttrib(), then Open().
    XeResult Open(_xeAttrib& attributes);

    /// Ends the mapping. What was written reaches the file in the system's own time.
    /// @return  0; 1 when nothing was open.
    int Close();

    bool isOpen() const;

    /// Bytes from the requested offset to the end of the window; 0 when closed.
    std::size_t size() const;

    /// The byte at the requested offset; null when closed or mapped read only.
    char* data() const;

    /// The same for reading; null when closed.
    const char* const_data() const;

private:
    struct Parameters;

    void _map();

    std::unique_ptr<Parameters> m_parameters; // absent until attributes are set
    std::unique_ptr<boost::iostreams::mapped_file> m_mapping;
    _XeString<wchar_t> m_path;
    long long m_delta = 0; // bytes of the open mapping before the requested offset
};
