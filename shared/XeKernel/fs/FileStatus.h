#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <string>

/// What one call of the system tells of an item at once: type, rights and identity. (Boost's
/// functions make a call for each.) Of an item that cannot be looked up nothing is true. [any]
class FileStatus {
public:
    FileStatus() = default;

    /// What a path leads to, links followed.
    static FileStatus of(const std::string& path) { return FileStatus(path, stat); }

    /// The item of that name itself, which may be a link.
    static FileStatus ofLink(const std::string& path) { return FileStatus(path, lstat); }

    /// Nothing is there. (An item that may not be looked at is not missing.)
    bool isMissing() const { return m_error == ENOENT; }

    bool isThere() const { return m_error == 0; }

    bool isFile() const { return _is(S_IFREG); }
    bool isFolder() const { return _is(S_IFDIR); }
    bool isLink() const { return _is(S_IFLNK); }

    /// Rights of owner, group and others.
    mode_t rights() const { return m_mode & ACCESSPERMS; }

    /// True for one item under two names.
    bool isSameAs(const FileStatus& other) const
    {
        return m_error == 0 && other.m_error == 0 && m_device == other.m_device &&
               m_inode == other.m_inode;
    }

private:
    FileStatus(const std::string& path, int (*look)(const char*, struct stat*))
    {
        struct stat status {};
        m_error = look(path.c_str(), &status) == 0 ? 0 : errno;
        m_mode = status.st_mode;
        m_device = status.st_dev;
        m_inode = status.st_ino;
    }

    bool _is(mode_t type) const { return m_error == 0 && (m_mode & S_IFMT) == type; }

    int m_error = ENOENT;
    mode_t m_mode = 0;
    dev_t m_device = 0;
    ino_t m_inode = 0;
};
