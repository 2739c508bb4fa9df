#pragma once

#include "XeResult.h"
#include "XeString.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace xenon::network {

/// A remote file system, as its client implements it and registers it for a mount point with
/// XeFileSystem::addMountPointContext, under kind `kRemoteVolumeContext`.
///
/// Paths are the local ones, below the mount point. Every operation gives kXeOk, or a negative
/// result that reaches the caller of the kernel unchanged; kXeRemoteVolumeGone says that the whole
/// volume is lost. Operations may block, and must end by themselves when the remote does not
/// answer: nobody above them keeps a time limit. They throw nothing. One handle is used by one
/// thread at a time; different handles and paths by any number of threads. [any]
class IFileSystem {
public:
    /// An open file, in the file system's own terms. Not looked at.
    using Handle = std::uint64_t;

    /// Name of an entry and whether it is a folder.
    using Entry = std::pair<_XeString<wchar_t>, bool>;

    virtual ~IFileSystem() = default;

    /// Tells the size of a file in bytes. A failure says that there is no such file.
    virtual XeResult getFileSize(const _XeString<wchar_t>& path, std::int64_t& size) = 0;

    /// Opens a file for reading from its first byte. A handle that was given out is closed once.
    /// @param exclusive  The reader asks that nobody writes the file meanwhile. A wish: a file
    ///                   system without such locks opens all the same.
    virtual XeResult openRead(const _XeString<wchar_t>& path, Handle& handle, bool exclusive) = 0;

    /// Reads the next bytes.
    /// @param length  Room in `buffer`, 1 and more.
    /// @param count   Bytes read, at most `length`; 0 only at the end of the file.
    virtual XeResult read(Handle handle, void* buffer, int length, int& count) = 0;

    /// Closes a handle of openRead, which is void afterwards whatever the result.
    /// @param flags  0.
    virtual XeResult closeRead(Handle handle, int flags) = 0;

    /// Opens a file for writing; an existing one is emptied. A handle that was given out is closed
    /// once.
    /// @param exclusive  The writer asks that nobody else opens the file meanwhile; a wish too.
    virtual XeResult openWrite(const _XeString<wchar_t>& path, Handle& handle, bool exclusive) = 0;

    /// Appends bytes. Taking none of them, or more than there are, counts as a failure.
    /// @param length  Bytes in `data`, 1 and more.
    /// @param count   Bytes taken, 1 to `length`; the rest is offered again.
    virtual XeResult write(Handle handle, const void* data, int length, int& count) = 0;

    /// Closes a handle of openWrite, which is void afterwards. Success says that all that was
    /// written is safe on the remote.
    virtual XeResult closeWrite(Handle handle) = 0;

    /// Creates a folder. An existing one is a success.
    virtual XeResult createFolder(const _XeString<wchar_t>& path) = 0;

    /// Turns a file name into one that the remote accepts.
    virtual XeResult strictFileName(const _XeString<wchar_t>& name,
                                    _XeString<wchar_t>& strictName) = 0;

    /// Lists a folder's entries, without "." and "..", in any order.
    virtual XeResult list(const _XeString<wchar_t>& path, std::vector<Entry>& entries) = 0;

    /// Deletes a file.
    virtual XeResult deleteFile(const _XeString<wchar_t>& path) = 0;

    /// Deletes a folder with all its contents.
    virtual XeResult deleteFolder(const _XeString<wchar_t>& path) = 0;

    /// Renames a file or folder within the volume.
    virtual XeResult rename(const _XeString<wchar_t>& from, const _XeString<wchar_t>& to) = 0;

    /// Tells whether a folder has no entries.
    virtual XeResult isFolderEmpty(const _XeString<wchar_t>& path, bool& empty) = 0;
};

} // namespace xenon::network
