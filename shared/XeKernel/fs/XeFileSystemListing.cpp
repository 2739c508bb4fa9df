#include "XeFileSystem.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "core/XeFilePlatform.h"
#include "fs/FolderReader.h"
#include "fs/ListedPath.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RemoteVolume.h"
#include "fs/Wildcard.h"
#include "fs/XeFileSystemItemsPlatform.h"
#include "fs/XeFileSystemListingPlatform.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

_XeString<wchar_t> listedPath(std::wstring_view folder, std::wstring_view name)
{
    _XeString<wchar_t> path;
    path.reserve(folder.size() + 1 + name.size());
    path = folder;
    if (!folder.ends_with(L'/')) {
        path += L'/';
    }
    path += name;
    return path;
}

_XeString<wchar_t> listedPath(std::wstring_view folder, std::string_view name)
{
    return listedPath(folder, xenon::path::fromNative(name));
}

namespace XeFileSystem {
namespace {

using Path = _XeString<wchar_t>;
using Paths = std::vector<Path>;
using AttributedPaths = std::vector<std::pair<Path, tFileAtrribute>>;
using Links = FolderReader::Links;
using xenon::network::IFileSystem;

/// Fills a list of its own, since the path may be a text in `out`, and keeps what `list` has found
/// before a failure.
template <typename Out, typename List>
XeResult _listInto(Out& out, List list)
{
    Out found;
    const XeResult result = noThrow(kXeGeneralFailure, [&] { return list(found); });
    out = std::move(found);
    return result;
}

/// Calls `take(entry, reader)` for each entry of a local folder.
/// @return  False when not all could be read. One below the folder that is listed may be gone by
///          now, which is no failure.
template <typename Take>
bool _readFolder(const Path& folder, Links links, Take take)
{
    const auto bytes = _systemPath(folder);
    FolderReader reader(bytes ? bytes->c_str() : "", links);
    for (FolderEntry entry; reader.next(entry);) {
        take(entry, reader);
    }
    return reader.error() == 0 || (links == Links::refused && reader.isMissing());
}

bool _isHidden(const FolderReader& folder, const FolderEntry& entry)
{
    return isHiddenName(entry.name) || _hasHiddenMark(folder, entry);
}

// Sub-folders ---------------------------------------------------------------------------------

bool _addSubFolders(const Path& folder, Links links, Paths& out)
{
    return _readFolder(folder, links, [&](const FolderEntry& entry, const FolderReader&) {
        if (entry.type == EntryType::folder) {
            out.push_back(listedPath(folder, entry.name));
        }
    });
}

/// Adds each folder before those that it holds.
XeResult _listSubFolders(const Path& path, bool recursive, Paths& out)
{
    bool whole = _addSubFolders(path, Links::followed, out);
    for (std::size_t i = 0; recursive && i < out.size(); ++i) {
        const Path folder = out[i]; // the list grows
        whole = _addSubFolders(folder, Links::refused, out) && whole;
    }
    return whole ? kXeOk : kXeGeneralFailure;
}

// Files ---------------------------------------------------------------------------------------

/// What a listing by name looks for.
struct Wanted {
    Path pattern;
    bool folders;
    bool hidden;

    bool hasType(EntryType type) const
    {
        return type == EntryType::file || (folders && type == EntryType::folder);
    }
    /// Links may lead to what is wanted.
    bool mayHaveType(EntryType type) const { return hasType(type) || type == EntryType::link; }

    bool hasName(std::wstring_view name) const
    {
        return pattern.empty() || matchesWildcard(name, pattern);
    }
};

std::wstring_view _nameIn(std::wstring_view path) { return path.substr(path.rfind(L'/') + 1); }

/// Adds what is wanted of a folder.
/// @param below  Receives the folders in it, unless null.
bool _addWanted(const Path& folder, Links links, const Wanted& wanted, Paths& out, Paths* below)
{
    return _readFolder(folder, links, [&](const FolderEntry& entry, FolderReader& reader) {
        if (!wanted.hidden && _isHidden(reader, entry)) {
            return;
        }
        Path path = listedPath(folder, entry.name);
        if (below != nullptr && entry.type == EntryType::folder) {
            below->push_back(path);
        }
        if (wanted.mayHaveType(entry.type) && wanted.hasName(_nameIn(path)) &&
            wanted.hasType(reader.typeBehind(entry))) {
            out.push_back(std::move(path));
        }
    });
}

XeResult _listWanted(const Path& path, const Wanted& wanted, Paths& out, bool recursive)
{
    Paths below;
    Paths* const folders = recursive ? &below : nullptr;
    bool whole = _addWanted(path, Links::followed, wanted, out, folders);
    for (std::size_t i = 0; i < below.size(); ++i) {
        const Path folder = std::move(below[i]); // the list grows
        whole = _addWanted(folder, Links::refused, wanted, out, folders) && whole;
    }
    return whole ? kXeOk : kXeGeneralFailure;
}

// What a browser shows ------------------------------------------------------------------------

XeResult _listRemoteFolders(const RemoteVolume& remote, const Path& path, Paths& out)
{
    std::vector<IFileSystem::Entry> entries;
    const XeResult result = remote.call(&IFileSystem::list, path, entries);
    for (const auto& [name, isFolder] : entries) {
        if (isFolder && !name.starts_with(L'.')) {
            out.push_back(listedPath(path, name));
        }
    }
    return result;
}

XeResult _getBrowsableContentsInFolder(const Path& path, Paths& out, bool filesOnly)
{
    return _browseFolder(path, filesOnly,
                         [&](const _BrowsedItem& item) { out.push_back(std::move(item.path)); });
}

/// What has disappeared since it was listed is left out, which is no failure.
XeResult _getBrowsableFilesWithAttribute(const Path& path, AttributedPaths& out)
{
    bool whole = true;
    const XeResult result = _browseFolder(path, true, [&](const _BrowsedItem& item) {
        tFileAtrribute attribute;
        if (_readAttribute(item.folder, item.name, attribute)) {
            out.emplace_back(std::move(item.path), attribute);
        } else {
            whole = whole && (errno == ENOENT || errno == ENOTDIR);
        }
    });
    return whole ? result : kXeGeneralFailure;
}

} // namespace

XeResult getBrowsableSubFolders(wchar_t const* path, Paths& out)
{
    return _listInto(out, [&](Paths& found) {
        if (const RemoteVolume remote(path); remote) {
            return _listRemoteFolders(remote, givenText(path), found);
        }
        return _getBrowsableContentsInFolder(givenText(path), found, false);
    });
}

XeResult getBrowsableSubFoldersNative(wchar_t const* path, Paths& out)
{
    return _listInto(out, [&](Paths& found) {
        return _getBrowsableContentsInFolder(givenText(path), found, false);
    });
}

XeResult getBrowsableFilesInFolder(wchar_t const* path, Paths& out)
{
    return _listInto(out, [&](Paths& found) {
        return _getBrowsableContentsInFolder(givenText(path), found, true);
    });
}

XeResult
getBrowsableFilesWithAttribute(wchar_t const* path,
                               std::vector<std::pair<_XeString<wchar_t>, tFileAtrribute>>& out)
{
    return _listInto(out, [&](AttributedPaths& found) {
        return _getBrowsableFilesWithAttribute(givenText(path), found);
    });
}

XeResult getFilesInFolder(wchar_t const* path, wchar_t const* pattern, bool recursive, Paths& out,
                          bool includeHidden)
{
    return _listInto(out, [&](Paths& found) {
        const Wanted wanted{givenText(pattern), false, includeHidden};
        return _listWanted(givenText(path), wanted, found, recursive);
    });
}

XeResult getFilesAndFoldersInFolder(wchar_t const* path, wchar_t const* pattern, Paths& out)
{
    return _listInto(out, [&](Paths& found) {
        return _listWanted(givenText(path), {givenText(pattern), true, false}, found, false);
    });
}

XeResult getSubFolders(wchar_t const* path, bool recursive, Paths& out)
{
    const XeResult result = _listInto(
        out, [&](Paths& found) { return _listSubFolders(givenText(path), recursive, found); });
    std::reverse(out.begin(), out.end());
    return result;
}

} // namespace XeFileSystem
