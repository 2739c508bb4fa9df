#pragma once

#include "XeFileSystem.h"
#include "XeResult.h"
#include "XeString.h"

#include <array>
#include <string>

/// What only the devices under the volumes know. Everything may block on the system; nothing but
/// what says so throws. [any]
namespace XeDevice {

/// Tells the system's name of the device that holds a volume: "disk2s1" on macOS, "sdb1" on Linux.
/// @return  0; kXeGeneralFailure when the volume has no device (in memory, network) or cannot be
///          looked up. `bsdName` is empty then.
XeResult getBSDName(wchar_t const* path, std::string& bsdName);

/// Refines the media type of a volume when it sits in one of the readers of the product family,
/// told by its vendor and model; else leaves `type` alone.
/// @return  0; kXeGeneralFailure only when the path cannot be looked up.
XeResult getUSBDeviceType(wchar_t const* path, EVolumeMediaType& type);

/// Unmounts the volume mounted at a path and ejects its medium where it has one. Waits for it,
/// without asking the user. On Linux it is the desktop's disk service that ejects, for volumes that
/// this process has no right to unmount itself.
/// @param mountPoint  Exactly the mount point: a path inside the volume, a link to it and "/" are
///                    refused.
/// @return            0; kXeGeneralFailure when the system refuses, as for a volume in use.
XeResult ejectVolume(_XeString<wchar_t> const& mountPoint);

/// Starts looking for network interfaces with a hardware address.
/// @param iterator  Receives what getMacAddress goes through: on macOS an iterator of I/O Kit's,
///                  which the caller releases; on Linux the number of the interface whose address
///                  that gives, 0 when there is none.
/// @throws std::logic_error  with the system's error text when they cannot be listed.
void findNetworkInterfaces(unsigned int* iterator);

/// Gives the hardware address of the machine's first Ethernet interface, real ones before virtual.
/// @return  0; kXeGeneralFailure when there is none, which leaves `address` alone.
/// @throws std::logic_error  as findNetworkInterfaces.
XeResult getMacAddress(std::array<unsigned char, 6>& address);

} // namespace XeDevice
