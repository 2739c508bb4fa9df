#pragma once

#include "IFileSystem.h"
#include "XeResult.h"
#include "XeString.h"

#include <memory>
#include <utility>

/// The remote volume that a path lies on, if any.
///
///     if (const RemoteVolume remote(path); remote) {
///         return remote.call(&IFileSystem::deleteFile, path);
///     }
///
/// Keeps the volume's IFileSystem while it lives. Throws what copying text throws. [any]
class RemoteVolume {
public:
    /// Looks the path up among the mount-point contexts; no disk is touched.
    explicit RemoteVolume(_XeString<wchar_t> path);

    /// The same of a text argument: null counts as the empty text, which lies on no volume.
    explicit RemoteVolume(wchar_t const* path)
        : RemoteVolume(_XeString<wchar_t>(path == nullptr ? L"" : path))
    {
    }

    explicit operator bool() const { return m_fileSystem != nullptr; }
    bool operator==(const RemoteVolume& other) const { return m_fileSystem == other.m_fileSystem; }
    const std::shared_ptr<xenon::network::IFileSystem>& fileSystem() const { return m_fileSystem; }

    /// Calls an operation and hands its result on, after `ended`.
    template <typename... Parameters, typename... Arguments>
    XeResult call(XeResult (xenon::network::IFileSystem::*operation)(Parameters...),
                  Arguments&&... arguments) const
    {
        return ended((m_fileSystem.get()->*operation)(std::forward<Arguments>(arguments)...));
    }

    /// Takes note of a result of the IFileSystem and returns it: when it tells that the volume is
    /// gone, its mount point is ejected.
    XeResult ended(XeResult result) const;

private:
    _XeString<wchar_t> m_path;
    std::shared_ptr<xenon::network::IFileSystem> m_fileSystem;
};
