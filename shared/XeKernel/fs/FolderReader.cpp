#include "fs/FolderReader.h"

#include "XeSafeCRT.h"
#include "fs/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

/// An answer of the system that no entry is there, or a link leads nowhere.
bool _isAbsence(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

/// "." and "..".
bool _isDots(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

EntryType _typeOfMode(mode_t mode)
{
    return S_ISREG(mode)   ? EntryType::file
           : S_ISDIR(mode) ? EntryType::folder
           : S_ISLNK(mode) ? EntryType::link
                           : EntryType::other;
}

} // namespace

FolderReader::FolderReader(const char* path, Links links)
{
    const int noLink = links == Links::refused ? O_NOFOLLOW : 0;
    Descriptor folder(openDescriptor(path, O_RDONLY | O_DIRECTORY | noLink));
    m_folder.reset(folder ? fdopendir(folder.get()) : nullptr);
    if (m_folder != nullptr) {
        folder.release();
    } else {
        m_error = errno;
    }
}

bool FolderReader::isMissing() const { return m_folder == nullptr && _isAbsence(m_error); }

int FolderReader::descriptor() const { return dirfd(m_folder.get()); }

bool FolderReader::next(FolderEntry& entry)
{
    while (m_folder != nullptr) {
        errno = 0;
        const dirent* const read = readdir(m_folder.get());
        if (read == nullptr && errno == EINTR) {
            continue;
        }
        if (read == nullptr) {
            _remember(errno);
            return false;
        }
        const auto type = _isDots(read->d_name) ? std::nullopt : _typeOf(*read);
        if (type) {
            entry = {read->d_name, *type};
            return true;
        }
    }
    return false;
}

EntryType FolderReader::typeBehind(const FolderEntry& entry)
{
    return entry.type == EntryType::link ? _lookUp(entry.name, 0).value_or(EntryType::link)
                                         : entry.type;
}

std::optional<EntryType> FolderReader::_typeOf(const dirent& entry)
{
    switch (entry.d_type) {
    case DT_REG:
        return EntryType::file;
    case DT_DIR:
        return EntryType::folder;
    case DT_LNK:
        return EntryType::link;
    case DT_UNKNOWN:
        return _lookUp(entry.d_name, AT_SYMLINK_NOFOLLOW);
    default:
        return EntryType::other;
    }
}

std::optional<EntryType> FolderReader::_lookUp(const char* name, int flags)
{
    struct stat status {};
    if (fstatat(descriptor(), name, &status, flags) == 0) {
        return _typeOfMode(status.st_mode);
    }
    if (!_isAbsence(errno)) {
        _remember(errno);
    }
    return std::nullopt;
}

void FolderReader::_remember(int error)
{
    if (m_error == 0) {
        m_error = error;
    }
}
