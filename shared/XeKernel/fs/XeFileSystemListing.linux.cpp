#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/XeFileSystemListing.linux.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/BrowsableRules.h"
#include "fs/FolderReader.h"
#include "fs/ListedPath.h"
#include "fs/XeFileSystemListingPlatform.h"

#include <boost/unordered/unordered_flat_set.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace XeFileSystem {
namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};

/// An entry as isBrowsable asks about it.
struct BrowsedEntry {
    std::string_view name;
    EntryType type;
    int folder;
    PackageRule packageRule;

    /// By the rights that opening it takes. Of a link it is the target that is read.
    bool isReadable() const { return faccessat(folder, name.data(), R_OK, AT_EACCESS) == 0; }

    /// What can be read is there.
    bool leadsSomewhere() const { return true; }

    bool isPackage() const { return type == EntryType::folder && packageRule(name); }
};

bool _isNoPackage(std::string_view) { return false; }

/// A path without links; empty when it leads nowhere.
std::string _resolved(const _XeString<wchar_t>& path)
{
    const auto bytes = xenon::path::toNative(path);
    const std::unique_ptr<char, Free> real(bytes ? realpath(bytes->c_str(), nullptr) : nullptr);
    return real == nullptr ? std::string() : real.get();
}

} // namespace

XeResult browseFolder(_XeString<wchar_t> const& path, bool filesOnly, PackageRule isPackage,
                      const _TakeBrowsed& take)
{
    const std::string resolved = _resolved(path);
    const _XeString<wchar_t> folder = xenon::path::fromNative(resolved);
    FolderReader reader(resolved.c_str(), FolderReader::Links::followed);
    boost::unordered_flat_set<std::string> seen;
    for (FolderEntry entry; reader.next(entry);) {
        const BrowsedEntry browsed{entry.name, entry.type, reader.descriptor(), isPackage};
        // A folder that changes meanwhile may tell of an entry twice.
        if (!isHiddenName(browsed.name) && isBrowsable(browsed, filesOnly) &&
            seen.emplace(browsed.name).second) {
            _XeString<wchar_t> listed = listedPath(folder, browsed.name);
            take({listed, browsed.folder, entry.name});
        }
    }
    return reader.error() == 0 ? kXeOk : kXeGeneralFailure;
}

XeResult _browseFolder(_XeString<wchar_t> const& path, bool filesOnly, const _TakeBrowsed& take)
{
    return browseFolder(path, filesOnly, _isNoPackage, take);
}

bool _hasHiddenMark(const FolderReader&, const FolderEntry&) { return false; }

} // namespace XeFileSystem
