#include "PendingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace host {

namespace {

constexpr mode_t kAnybody = 0666; // less the umask

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// The file system has no files without a name, or the system does not know how to make one.
bool mustHaveName(int error) { return error == EOPNOTSUPP || error == EISDIR || error == EINVAL; }

// So that the new name is on the disk too. Not every file system and folder allows it.
void flushFolder(const std::string& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

PendingFile::PendingFile(std::string path, Naming naming)
    : m_path(std::move(path)), m_folder(folderOf(m_path))
{
    if (!open(naming)) {
        fail();
    }
}

PendingFile::~PendingFile()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        ::unlink(m_temporary.c_str());
    }
}

bool PendingFile::open(Naming naming)
{
    if (naming == Naming::NamelessWherePossible) {
        m_descriptor = ::open(m_folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kAnybody);
        if (m_descriptor >= 0 || !mustHaveName(errno)) {
            return m_descriptor >= 0;
        }
    }
    const std::string name = unusedName();
    m_descriptor = ::open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kAnybody);
    if (m_descriptor >= 0) {
        m_temporary = name;
    }
    return m_descriptor >= 0;
}

bool PendingFile::fail()
{
    if (m_error == 0) {
        m_error = errno != 0 ? errno : EIO;
    }
    return false;
}

/// A hidden name in the folder; no two of this process are equal.
std::string PendingFile::unusedName() const
{
    static std::atomic<unsigned> s_count = 0;
    return m_folder + "/.tarvel-" + std::to_string(::getpid()) + "-" + std::to_string(s_count++) +
           ".part";
}

bool PendingFile::write(const void* bytes, std::size_t size)
{
    const auto* next = static_cast<const char*>(bytes);
    while (m_error == 0 && size > 0) {
        const ssize_t written = ::write(m_descriptor, next, size);
        if (written < 0 && errno != EINTR) {
            return fail();
        }
        if (written > 0) {
            next += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return m_error == 0;
}

std::size_t PendingFile::read(void* bytes, std::size_t size)
{
    const ssize_t got = ::read(m_descriptor, bytes, size);
    if (got < 0) {
        fail();
        return 0;
    }
    return static_cast<std::size_t>(got);
}

std::int64_t PendingFile::seek(std::int64_t offset, int whence)
{
    const off_t place = ::lseek(m_descriptor, offset, whence);
    if (place < 0) {
        fail();
    }
    return place;
}

std::int64_t PendingFile::size()
{
    struct stat status {};
    if (::fstat(m_descriptor, &status) != 0) {
        fail();
        return -1;
    }
    return status.st_size;
}

bool PendingFile::finish(bool overwrite)
{
    if (m_error != 0) {
        return false;
    }
    if (::fsync(m_descriptor) != 0 || !publish(overwrite)) {
        return fail();
    }
    flushFolder(m_folder);
    return true;
}

/// Gives the file its name. False, with errno set, when it cannot have it.
bool PendingFile::publish(bool overwrite)
{
    if (m_temporary.empty()) {
        // Only a name can replace another one, so a file without one gets a hidden one first.
        const std::string name = overwrite ? unusedName() : m_path;
        const std::string self = "/proc/self/fd/" + std::to_string(m_descriptor);
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            return false;
        }
        if (!overwrite) {
            return true;
        }
        m_temporary = name;
    }
    if (!moveToName(overwrite)) {
        return false;
    }
    m_temporary.clear();
    return true;
}

/// Moves the hidden name to the name to be. False, with errno set, when that fails.
bool PendingFile::moveToName(bool overwrite)
{
    const char* const from = m_temporary.c_str();
    const char* const to = m_path.c_str();
    if (overwrite) {
        return ::rename(from, to) == 0;
    }
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Network file systems know no such move; a link does not replace either.
    const bool isUnknown = errno == EINVAL || errno == ENOSYS;
    return isUnknown && ::link(from, to) == 0 && ::unlink(from) == 0;
}

} // namespace host
