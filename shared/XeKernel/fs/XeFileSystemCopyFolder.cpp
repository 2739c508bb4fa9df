#include "XeFileSystem.h"

#include "XeNativePath.h"
#include "fs/FileStatus.h"
#include "fs/LocalCopy.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"

#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using xenon::network::IFileSystem;

/// A folder on one side of a copy.
struct Place {
    explicit Place(std::string path)
        : native(std::move(path)), text(xenon::path::fromNative(native)), volume(text.c_str())
    {
    }

    std::string operator/(const std::string& name) const
    {
        return native + (native.ends_with('/') ? "" : "/") + name;
    }

    std::string native;
    _XeString<wchar_t> text;
    RemoteVolume volume;
};

/// Without the '/' at its end, so that names can be added. The bytes spell the text exactly: it may
/// be that of a remote volume.
std::optional<Place> _placeOf(wchar_t const* path)
{
    auto native = path == nullptr || *path == L'\0' ? std::nullopt : xenon::path::toNative(path);
    while (native && native->size() > 1 && native->ends_with('/')) {
        native->pop_back();
    }
    return native ? std::optional<Place>(*std::move(native)) : std::nullopt;
}

/// Tells whether `folder` is where a path leads or one of the folders above that; nothing when one
/// of them cannot be looked up.
std::optional<bool> _leadsInto(const std::string& path, const FileStatus& folder)
{
    boost::system::error_code error;
    bfs::path real = bfs::weakly_canonical(bfs::absolute(path, error), error);
    if (error || real.empty()) {
        return std::nullopt;
    }
    for (; !real.empty(); real = real.parent_path()) {
        const FileStatus at = FileStatus::of(real.native());
        if (at.isSameAs(folder)) {
            return true;
        }
        if (!at.isFolder() && !at.isMissing()) {
            return std::nullopt;
        }
    }
    return false;
}

/// The same told by the text alone, for folders of which the local system knows nothing.
bool _liesInside(const std::string& path, const std::string& folder)
{
    const std::string inner = bfs::path(path).lexically_normal().native();
    const std::string outer = bfs::path(folder).lexically_normal().native();
    return inner == outer || inner.starts_with(outer.ends_with('/') ? outer : outer + '/');
}

/// False for what would lead out of the folder that lists it.
bool _isName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == name.npos;
}

/// A source folder that is being copied, and the one around it.
struct Level {
    FileStatus status;
    const Level* above;
    bool toNew; // into a folder that the copy has made
};

struct Entry {
    std::string name;
    bool remoteFolder;
};

class FolderCopy {
public:
    explicit FolderCopy(ECopyOption option) : m_failIfExists(option == kCopyFailIfExists) {}

    XeResult run(const Place& source, const Place& destination)
    {
        return _copyFolder(source, destination, nullptr, true);
    }

private:
    /// @param mayMeet  The source may hold the destination, because its path came from outside.
    XeResult _copyFolder(const Place& source, const Place& destination, const Level* above,
                         bool mayMeet)
    {
        const bool there = _isPresent(destination, _statusOf(destination));
        const Level level{_statusOf(source), above, !there};
        if (!_isPresent(source, level.status)) {
            return kXeSourceFolderMissing;
        }
        if (there && m_failIfExists) {
            return kXeGeneralFailure;
        }
        const bool met = level.status.isSameAs(m_destination) ||
                         ((mayMeet || there) && _wouldMeet(source, level.status, destination));
        if (met || (!there && !_create(destination, source, level.status))) {
            return kXeGeneralFailure;
        }
        if (above == nullptr) {
            m_destination = _statusOf(destination);
        }
        const auto entries = source.volume ? _remoteEntries(source) : _localEntries(source);
        if (!entries && !there) {
            deleteFolder(destination.text.c_str(), true);
        }
        return entries ? _copyEntries(source, *entries, destination, level)
                       : kXeFileOperationFailed;
    }

    static FileStatus _statusOf(const Place& place)
    {
        return place.volume ? FileStatus() : FileStatus::of(place.native);
    }

    static bool _isPresent(const Place& place, const FileStatus& status)
    {
        return place.volume ? isFolderPresent(place.text) : status.isFolder();
    }

    /// True when the copy would come to copy what it has made.
    static bool _wouldMeet(const Place& source, const FileStatus& from, const Place& destination)
    {
        return source.volume || destination.volume
                   ? _liesInside(destination.native, source.native)
                   : _leadsInto(destination.native, from).value_or(true);
    }

    /// Makes one level. Who may not look into the source may not look into its copy either; its
    /// owner can fill it.
    static bool _create(const Place& place, const Place& source, const FileStatus& from)
    {
        if (place.volume) {
            return place.volume.call(&IFileSystem::createFolder, place.text) >= 0;
        }
        const mode_t rights = source.volume ? ACCESSPERMS : from.rights() | S_IRWXU;
        return mkdir(place.native.c_str(), rights) == 0;
    }

    XeResult _copyEntries(const Place& source, const std::vector<Entry>& entries,
                          const Place& destination, const Level& level)
    {
        XeResult result = kXeOk;
        for (auto entry = entries.begin(); result >= 0 && entry != entries.end(); ++entry) {
            result = !_isName(entry->name) ? kXeFileOperationFailed
                     : source.volume       ? _copyRemoteEntry(source, *entry, destination, level)
                                           : _copyEntry(source, *entry, destination, level);
        }
        return result;
    }

    /// Read at once, so that a folder deep down finds none of those above it open.
    static std::optional<std::vector<Entry>> _localEntries(const Place& folder)
    {
        std::vector<Entry> entries;
        boost::system::error_code error;
        for (bfs::directory_iterator entry(folder.native, error), end; !error && entry != end;
             entry.increment(error)) {
            entries.push_back({entry->path().filename().native(), false});
        }
        return error ? std::nullopt : std::optional(std::move(entries));
    }

    static std::optional<std::vector<Entry>> _remoteEntries(const Place& folder)
    {
        std::vector<IFileSystem::Entry> listed;
        if (folder.volume.call(&IFileSystem::list, folder.text, listed) < 0) {
            return std::nullopt;
        }
        std::vector<Entry> entries;
        entries.reserve(listed.size());
        for (const auto& [name, isFolder] : listed) {
            entries.push_back({xenon::path::toNative(name).value_or(std::string()), isFolder});
        }
        return entries;
    }

    XeResult _copyRemoteEntry(const Place& source, const Entry& entry, const Place& destination,
                              const Level& level)
    {
        const std::string from = source / entry.name;
        const std::string to = destination / entry.name;
        return entry.remoteFolder ? _copyFolder(Place(from), Place(to), &level, false)
                                  : _copyStreamed(from, to);
    }

    XeResult _copyEntry(const Place& source, const Entry& entry, const Place& destination,
                        const Level& level)
    {
        const std::string from = source / entry.name;
        const std::string to = destination / entry.name;
        const FileStatus status = FileStatus::of(from);
        if (status.isFolder()) {
            return _copySubFolder(source, Place(from), status, Place(to), level);
        }
        if (!status.isFile()) {
            return kXeFileOperationFailed;
        }
        if (destination.volume) {
            return _copyStreamed(from, to);
        }
        return level.toNew ? copyToNewFile(from, to)
                           : copyLocalFile(from, status, to, m_failIfExists);
    }

    /// @param status  What `folder`, an entry of `source`, leads to.
    XeResult _copySubFolder(const Place& source, const Place& folder, const FileStatus& status,
                            const Place& destination, const Level& level)
    {
        const FileStatus entry = FileStatus::ofLink(folder.native);
        if (entry.isFolder()) {
            return _copyFolder(folder, destination, &level, false);
        }
        const auto up = entry.isLink() ? _leadsUp(source, status, level) : std::nullopt;
        return !up   ? kXeFileOperationFailed
               : *up ? kXeOk
                     : _copyFolder(folder, destination, &level, true);
    }

    XeResult _copyStreamed(const std::string& source, const std::string& destination) const
    {
        return copyFile(xenon::path::fromNative(source).c_str(),
                        xenon::path::fromNative(destination).c_str(), m_failIfExists);
    }

    /// Tells whether a link in `source` leads to a folder above it, by its real path or by the
    /// links that the copy came through.
    static std::optional<bool> _leadsUp(const Place& source, const FileStatus& target,
                                        const Level& level)
    {
        const Level* at = &level;
        while (at != nullptr && !at->status.isSameAs(target)) {
            at = at->above;
        }
        return at != nullptr ? true : _leadsInto(source.native, target);
    }

    const bool m_failIfExists;
    FileStatus m_destination; // of the first level, if it is local
};

} // namespace

XeResult copyFolder(wchar_t const* source, wchar_t const* destination, ECopyOption option)
{
    return noThrow(kXeFileOperationFailed, [&] {
        const auto from = _placeOf(source);
        const auto to = _placeOf(destination);
        if (!from || !to) {
            return from && isFolderPresent(source) ? kXeGeneralFailure : kXeSourceFolderMissing;
        }
        return FolderCopy(option).run(*from, *to);
    });
}

} // namespace XeFileSystem
