#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

/// A disk whose contents are a file, which needs the rights of root and a loop device.
class LoopDevice {
public:
    /// @param image  Made, 16 MiB large.
    /// @param make   Command that makes a file system in the image, whose path is added.
    LoopDevice(const std::filesystem::path& image, const std::string& make)
    {
        const std::string file = " '" + image.string() + "'";
        const std::string command = "{ truncate -s 16M" + file + " && " + make + file +
                                    "; } >/dev/null 2>&1 && losetup --find --show" + file +
                                    " 2>/dev/null";
        if (FILE* const output = geteuid() == 0 ? popen(command.c_str(), "re") : nullptr) {
            char node[64] = {};
            if (std::fgets(node, sizeof node, output) != nullptr) {
                m_node = node;
                m_node.erase(m_node.find('\n'));
            }
            pclose(output);
        }
    }
    ~LoopDevice()
    {
        if (!m_node.empty()) {
            [[maybe_unused]] const int status = std::system(("losetup -d " + m_node).c_str());
        }
    }
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    explicit operator bool() const { return !m_node.empty(); }
    static const char* reason() { return "no rights, no loop device or no tool for the format"; }
    const std::string& node() const { return m_node; } ///< "/dev/loop0"

private:
    std::string m_node;
};

/// A volume mounted over a folder, until it goes out of scope or is unmounted.
class MountedFolder {
public:
    /// @param type  Null for a bind mount.
    MountedFolder(const std::string& source, std::filesystem::path folder, const char* type,
                  unsigned long flags = 0, const char* options = nullptr)
        : m_folder(std::move(folder))
    {
        std::filesystem::create_directories(m_folder);
        m_mounted = mount(source.c_str(), m_folder.c_str(), type, flags, options) == 0;
    }
    ~MountedFolder()
    {
        if (m_mounted) {
            umount2(m_folder.c_str(), MNT_DETACH);
        }
    }
    MountedFolder(const MountedFolder&) = delete;
    MountedFolder& operator=(const MountedFolder&) = delete;

    explicit operator bool() const { return m_mounted; }

private:
    std::filesystem::path m_folder;
    bool m_mounted = false;
};
