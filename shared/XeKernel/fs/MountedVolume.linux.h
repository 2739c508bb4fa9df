#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/BlockDevice.linux.h"
#include "fs/MountTable.linux.h"
#include "fs/VolumeRules.h"

#include <string>
#include <vector>

/// What a mount says of its volume. [any]
namespace mountedVolume {

/// The type's name as macOS has it, where it has that type; else the kernel's own.
std::string typeName(const Mount& mount, const DeviceSources& devices = kSystemDevices);

/// True for a volume on another machine, also that of a virtual machine's host.
bool isNetwork(const Mount& mount);

XeFileSystem::VolumeTraits traits(const Mount& mount,
                                  const DeviceSources& devices = kSystemDevices);

/// The name of the volume's own, else that of its mount point; "/" for the root. Bytes.
std::string displayName(const Mount& mount, const DeviceSources& devices = kSystemDevices);

/// The URL of a network share; empty for other volumes and where the mount does not tell the
/// server.
std::string shareUrl(const Mount& mount);

/// The mounts on which a user can store files, in the table's order: no hidden ones, none that the
/// system keeps for itself.
std::vector<Mount> userMounts(const MountTable& table);

} // namespace mountedVolume
