#include "fs/StoredName.linux.h"

#include "XeNativePath.h"
#include "XePath.h"

#include <dirent.h>
#include <fcntl.h>

#include <memory>

namespace {

struct Close {
    void operator()(DIR* stream) const { closedir(stream); }
};

bool _isItem(int folder, const char* name, const struct stat& item)
{
    struct stat status {};
    return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           status.st_dev == item.st_dev && status.st_ino == item.st_ino;
}

} // namespace

// Entries are looked up only where none has the name. Where the file system is a program, each
// spelling of a name may count as an item of its own; then the letters decide.
std::string storedName(const std::string& folder, const std::string& asked, const struct stat& item)
{
    const std::unique_ptr<DIR, Close> stream(opendir(folder.c_str()));
    if (stream == nullptr) {
        return {};
    }
    while (const dirent* const entry = readdir(stream.get())) {
        if (asked == entry->d_name) {
            return asked;
        }
    }
    rewinddir(stream.get());
    const _XeString<wchar_t> wide = xenon::path::fromNative(asked);
    std::string sameLetters;
    while (const dirent* const entry = readdir(stream.get())) {
        if (_isItem(dirfd(stream.get()), entry->d_name, item)) {
            return entry->d_name;
        }
        if (xenon::path::PreferredCompare(xenon::path::fromNative(entry->d_name), wide) == 0) {
            sameLetters = entry->d_name;
        }
    }
    return sameLetters;
}
