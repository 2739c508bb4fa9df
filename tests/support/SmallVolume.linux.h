#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

/// A volume in memory over a folder, which needs the rights of root to mount.
class SmallVolume {
public:
    /// @param options  As for mount(8), "size=64k".
    SmallVolume(std::filesystem::path folder, const char* options) : m_folder(std::move(folder))
    {
        std::filesystem::create_directories(m_folder);
        m_mounted = mount("none", m_folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options) == 0;
        m_error = errno;
    }
    ~SmallVolume()
    {
        if (m_mounted) {
            umount2(m_folder.c_str(), MNT_DETACH);
        }
    }
    SmallVolume(const SmallVolume&) = delete;
    SmallVolume& operator=(const SmallVolume&) = delete;

    explicit operator bool() const { return m_mounted; }
    const char* reason() const { return std::strerror(m_error); }
    std::filesystem::path operator/(const std::string& name) const { return m_folder / name; }

    bool makeReadOnly() const
    {
        return mount("none", m_folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    std::filesystem::path m_folder;
    bool m_mounted;
    int m_error;
};
