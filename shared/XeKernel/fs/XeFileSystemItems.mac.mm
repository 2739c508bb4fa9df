#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemItemsPlatform.h"

#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"
#include "fs/LocalItem.h"

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace XeFileSystem {
namespace {

static_assert(UF_IMMUTABLE == 2);

tFileTime _time(const struct timespec& time)
{
    return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
}

// A file system that does not keep the time of creation gives zero for it.
_ItemTimes _timesOf(const struct stat& status)
{
    const tFileTime modified = _time(status.st_mtimespec);
    const tFileTime created = _time(status.st_birthtimespec);
    return {created == tFileTime{} ? modified : created, modified};
}

} // namespace

bool _isMarkedHidden(wchar_t const* path)
{
    const auto bytes = localPath(path);
    struct stat status;
    return bytes && lstat(bytes->c_str(), &status) == 0 && (status.st_flags & UF_HIDDEN) != 0;
}

bool _isFileLocked(wchar_t const* path)
{
    @autoreleasepool {
        NSDictionary* const attributes =
            [[NSFileManager defaultManager] attributesOfItemAtPath:_foundationText(path)
                                                             error:nullptr];
        return [[attributes objectForKey:NSFileImmutable] boolValue] != NO;
    }
}

bool _setLockFile(wchar_t const* path, bool lock)
{
    const auto bytes = localPath(path);
    struct stat status;
    if (!bytes || stat(bytes->c_str(), &status) != 0) {
        return false;
    }
    const auto flags = lock ? status.st_flags | UF_IMMUTABLE
                            : status.st_flags & ~static_cast<unsigned>(UF_IMMUTABLE);
    return chflags(bytes->c_str(), flags) == 0;
}

bool _getTimes(wchar_t const* path, _ItemTimes& times)
{
    const auto bytes = localPath(path);
    struct stat status;
    if (!bytes || stat(bytes->c_str(), &status) != 0) {
        return false;
    }
    times = _timesOf(status);
    return true;
}

// Foundation's immutable items are those that either the user or the system has made so.
bool _readStatus(int folder, const char* name, _ItemStatus& status)
{
    struct stat itself;
    if (fstatat(folder, name, &itself, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    struct stat found = itself;
    const bool link = S_ISLNK(itself.st_mode);
    if (link && fstatat(folder, name, &found, 0) != 0) {
        return false;
    }
    status = {.mode = found.st_mode,
              .size = found.st_size,
              .times = _timesOf(found),
              .link = link,
              .markedHidden = (itself.st_flags & UF_HIDDEN) != 0,
              .locked = (itself.st_flags & (UF_IMMUTABLE | SF_IMMUTABLE)) != 0};
    return true;
}

bool _getStrictFileName(wchar_t const* path, _XeString<wchar_t>& name)
{
    @autoreleasepool {
        NSString* const text = _foundationText(path);
        if ([text length] == 0 || ![[NSFileManager defaultManager] fileExistsAtPath:text]) {
            return false;
        }
        NSString* stored = nil;
        [[NSURL fileURLWithPath:text] getResourceValue:&stored forKey:NSURLNameKey error:nullptr];
        if ([stored length] == 0) {
            return false;
        }
        name = _wideText(stored);
        return true;
    }
}

} // namespace XeFileSystem
