#include "fs/NetworkInterfaces.linux.h"

#include "XeSafeCRT.h"

#include <linux/if_packet.h>
#include <net/if.h>
#include <net/if_arp.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <tuple>

namespace {

bool _hasHardware(const std::string& sysfs, const char* name)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::path(sysfs) / "class/net" / name / "device",
                                   error);
}

/// Nothing for an entry that is no Ethernet interface; the loopback's address is zero.
std::optional<NetworkInterface> _read(const ifaddrs& entry, const std::string& sysfs)
{
    if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_PACKET ||
        (entry.ifa_flags & IFF_LOOPBACK) != 0) {
        return std::nullopt;
    }
    sockaddr_ll link;
    std::memcpy(&link, entry.ifa_addr, sizeof link);
    NetworkInterface interface;
    if (link.sll_hatype != ARPHRD_ETHER || link.sll_halen != interface.address.size()) {
        return std::nullopt;
    }
    std::copy_n(link.sll_addr, interface.address.size(), interface.address.begin());
    if (interface.address == decltype(interface.address){}) {
        return std::nullopt;
    }
    interface.index = static_cast<unsigned>(link.sll_ifindex);
    interface.real = _hasHardware(sysfs, entry.ifa_name);
    return interface;
}

} // namespace

std::vector<NetworkInterface> networkInterfaces(int (*list)(ifaddrs**), void (*release)(ifaddrs*),
                                                const std::string& sysfs)
{
    ifaddrs* first = nullptr;
    if (list(&first) != 0) {
        throw std::logic_error(std::generic_category().message(errno));
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(first, release);
    std::vector<NetworkInterface> interfaces;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (const auto interface = _read(*entry, sysfs)) {
            interfaces.push_back(*interface);
        }
    }
    std::sort(interfaces.begin(), interfaces.end(),
              [](const NetworkInterface& a, const NetworkInterface& b) {
                  return std::tuple(!a.real, a.index) < std::tuple(!b.real, b.index);
              });
    return interfaces;
}
