#ifndef __APPLE__
#error "for macOS only"
#endif

#include "fs/XeFileSystemItemsPlatform.h"

#include "XeSafeCRT.h"
#include "fs/FoundationText.mac.h"
#include "fs/LocalItem.h"

#import <Foundation/Foundation.h>

#include <sys/stat.h>
#include <unistd.h>

namespace XeFileSystem {
namespace {

static_assert(UF_IMMUTABLE == 2);

tFileTime _time(const struct timespec& time)
{
    return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
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

// A file system that does not keep the time of creation gives zero for it.
bool _getTimes(wchar_t const* path, _ItemTimes& times)
{
    const auto bytes = localPath(path);
    struct stat status;
    if (!bytes || stat(bytes->c_str(), &status) != 0) {
        return false;
    }
    times.modified = _time(status.st_mtimespec);
    const tFileTime created = _time(status.st_birthtimespec);
    times.created = created == tFileTime{} ? times.modified : created;
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
