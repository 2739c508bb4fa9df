#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemListingPlatform.h"

#include "XeSafeCRT.h"
#include "fs/BrowsableRules.h"
#include "fs/FoundationText.mac.h"

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace XeFileSystem {
namespace {

id _valueOf(NSURL* item, NSString* key)
{
    id value = nil;
    return [item getResourceValue:&value forKey:key error:nullptr] ? value : nil;
}

EntryType _typeOf(NSURL* item)
{
    NSString* const type = _valueOf(item, NSURLFileResourceTypeKey);
    return [type isEqualToString:NSURLFileResourceTypeRegular]        ? EntryType::file
           : [type isEqualToString:NSURLFileResourceTypeDirectory]    ? EntryType::folder
           : [type isEqualToString:NSURLFileResourceTypeSymbolicLink] ? EntryType::link
                                                                      : EntryType::other;
}

/// An entry as isBrowsable asks about it.
struct BrowsedEntry {
    NSURL* item;
    std::wstring_view name;
    EntryType type;

    bool isReadable() const { return [_valueOf(item, NSURLIsReadableKey) boolValue] != NO; }
    bool isPackage() const { return [_valueOf(item, NSURLIsPackageKey) boolValue] != NO; }
    bool leadsSomewhere() const
    {
        NSString* const target = [[item URLByResolvingSymlinksInPath] path];
        return [[NSFileManager defaultManager] fileExistsAtPath:target] != NO;
    }
};

bool _isListed(NSURL* item, bool filesOnly)
{
    const _XeString<wchar_t> name = _wideText([item lastPathComponent]);
    return isBrowsable(BrowsedEntry{item, name, _typeOf(item)}, filesOnly);
}

NSArray* _contentsOf(const _XeString<wchar_t>& path)
{
    NSURL* const folder = [[NSURL fileURLWithPath:_foundationText(path)
                                      isDirectory:YES] URLByResolvingSymlinksInPath];
    NSArray* const keys =
        [NSArray arrayWithObjects:NSURLFileResourceTypeKey, NSURLIsReadableKey, nil];
    return [[NSFileManager defaultManager]
          contentsOfDirectoryAtURL:folder
        includingPropertiesForKeys:keys
                           options:NSDirectoryEnumerationSkipsHiddenFiles |
                                   NSDirectoryEnumerationSkipsPackageDescendants
                             error:nullptr];
}

} // namespace

XeResult _browseFolder(_XeString<wchar_t> const& path, bool filesOnly, const _TakeBrowsed& take)
{
    // Foundation takes the empty path for that of the working folder.
    if (path.empty()) {
        return kXeGeneralFailure;
    }
    @autoreleasepool {
        NSArray* const contents = _contentsOf(path);
        NSMutableSet* const seen = [NSMutableSet set];
        for (NSURL* item in contents) {
            NSString* const itemPath = [item path];
            if (![seen containsObject:itemPath] && _isListed(item, filesOnly)) {
                _XeString<wchar_t> listed = _wideText(itemPath);
                take({listed, AT_FDCWD, [itemPath fileSystemRepresentation]});
            }
            [seen addObject:itemPath];
        }
        return contents != nil ? kXeOk : kXeGeneralFailure;
    }
}

bool _hasHiddenMark(const FolderReader& folder, const FolderEntry& entry)
{
    struct stat status;
    return fstatat(folder.descriptor(), entry.name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           (status.st_flags & UF_HIDDEN) != 0;
}

} // namespace XeFileSystem
