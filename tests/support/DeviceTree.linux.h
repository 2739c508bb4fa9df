#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "TemporaryFolder.h"

#include <filesystem>
#include <string>

/// A folder that looks like sysfs(5) to who asks about devices.
class DeviceTree {
public:
    std::string path() const { return m_folder.path().string(); }

    /// Adds a folder below "devices", with those above it.
    /// @param bus  Name of its subsystem; none when empty.
    void addDevice(const std::string& device, const std::string& bus) const
    {
        namespace fs = std::filesystem;
        fs::create_directories(_of(device));
        if (!bus.empty()) {
            fs::create_directories(m_folder / "bus" / bus);
            fs::create_directory_symlink(m_folder / "bus" / bus, _of(device) / "subsystem");
        }
    }

    /// Adds a disk that hangs on a device, or a partition of a disk.
    /// @param number  "8:16"
    void addDisk(const std::string& device, const std::string& name,
                 const std::string& number) const
    {
        const std::string disk = device + "/block/" + name;
        _addBlock(disk, number);
        std::filesystem::create_directory_symlink(_of(device), _of(disk) / "device");
        setAttribute(disk, "removable", "0");
    }
    void addPartition(const std::string& disk, const std::string& name,
                      const std::string& number) const
    {
        _addBlock(disk + '/' + name, number);
        setAttribute(disk + '/' + name, "partition", "1");
    }

    /// Adds a disk without hardware of its own, that lies on others.
    void addMapped(const std::string& name, const std::string& number,
                   const std::string& below) const
    {
        const std::string disk = "virtual/block/" + name;
        _addBlock(disk, number);
        std::filesystem::create_directories(_of(disk) / "slaves");
        std::filesystem::create_directory_symlink(
            _of(below), _of(disk) / "slaves" / std::filesystem::path(below).filename());
    }

    void setAttribute(const std::string& device, const std::string& name,
                      const std::string& text) const
    {
        m_folder.write("devices/" + device + '/' + name, text + '\n');
    }

private:
    std::filesystem::path _of(const std::string& device) const
    {
        return m_folder / "devices" / device;
    }

    void _addBlock(const std::string& device, const std::string& number) const
    {
        namespace fs = std::filesystem;
        fs::create_directories(_of(device));
        setAttribute(device, "dev", number);
        fs::create_directories(m_folder / "dev/block");
        fs::create_directories(m_folder / "class/block");
        fs::create_directory_symlink(_of(device), m_folder / "dev/block" / number);
        fs::create_directory_symlink(_of(device),
                                     m_folder / "class/block" / fs::path(device).filename());
    }

    const TemporaryFolder m_folder;
};
