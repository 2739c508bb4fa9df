#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/MountTable.linux.h"

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Where the facts about devices come from. Texts that are not known are empty.
struct DeviceSources {
    std::string sysfs; ///< Folder of sysfs(5).
    std::string (*udevProperty)(dev_t device, const char* name);
    std::string (*blkidTag)(const std::string& node, const char* tag); ///< "TYPE", "LABEL"
};

/// The system's own: sysfs, the database of udev(7), and libblkid, which looks at the medium where
/// this user may read it and knows by heart what it has seen before.
extern const DeviceSources kSystemDevices;

/// The block device under a volume. [any]
class BlockDevice {
public:
    /// @param sources  Kept, not copied; must outlive the device.
    /// @return         Nothing for a volume without one: in memory, an overlay, a network share.
    static std::optional<BlockDevice> find(const Mount& mount,
                                           const DeviceSources& sources = kSystemDevices);

    /// The kernel's name: "sdb1", "dm-0".
    std::string name() const { return m_folder.filename(); }

    /// True for a medium that can be taken out and for a drive that can: USB, memory cards,
    /// drives behind a port for external ones. Counts for what lies on such a drive too, as an
    /// encrypted volume.
    bool isRemovable() const;

    /// True for a drive that the system's rules name so.
    bool isEjectable() const;

    /// Of the drive, as it tells them itself; perhaps with blanks at the end or '_' for blanks.
    std::string vendor() const { return _driveText("ID_VENDOR", "vendor"); }
    std::string model() const { return _driveText("ID_MODEL", "model"); }

    /// Type of the file system on it, as "exfat".
    std::string fileSystemType() const;

    /// Name that the user gave the file system on it.
    std::string label() const;

private:
    using Path = std::filesystem::path;

    BlockDevice(const DeviceSources& sources, dev_t number, std::string node, Path folder);
    std::string _driveText(const char* property, const char* attribute) const;

    const DeviceSources* m_sources;
    dev_t m_number;
    std::string m_node;         // in /dev
    Path m_folder;              // in sysfs
    std::vector<Path> m_drives; // the whole disks that it lies on
};
