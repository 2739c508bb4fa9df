#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <ifaddrs.h>

#include <array>
#include <string>
#include <vector>

/// An Ethernet interface, wired or not, with its hardware address.
struct NetworkInterface {
    unsigned index = 0; ///< The kernel's number, from 1.
    bool real = false;  ///< Has hardware of its own: no bridge, no tunnel.
    std::array<unsigned char, 6> address{};
};

/// Lists the interfaces in the order of preference: real ones first, then by index. [any]
/// @param list     getifaddrs(3), or what stands in for it; freeifaddrs is called on the answer.
/// @param release  freeifaddrs.
/// @param sysfs    Folder of sysfs(5).
/// @throws std::logic_error  with the text of errno when `list` fails.
std::vector<NetworkInterface> networkInterfaces(int (*list)(ifaddrs**) = getifaddrs,
                                                void (*release)(ifaddrs*) = freeifaddrs,
                                                const std::string& sysfs = "/sys");
