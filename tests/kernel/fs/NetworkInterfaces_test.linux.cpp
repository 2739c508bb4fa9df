#include "fs/NetworkInterfaces.linux.h"

#include "TemporaryFolder.h"
#include "XeDevice.h"

#include <gtest/gtest.h>

#include <linux/if_packet.h>
#include <net/if.h>
#include <net/if_arp.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <stdexcept>

namespace {

using Address = std::array<unsigned char, 6>;

/// An entry of the list; the whole list is what the deque holds.
struct Entry {
    ifaddrs entry{};
    sockaddr_ll link{};
    std::string name;
};
std::deque<Entry> g_entries;
int g_released = 0;

Entry& add(const char* name, int index, Address address)
{
    Entry& added = g_entries.emplace_back();
    added.name = name;
    added.entry.ifa_name = added.name.data();
    added.entry.ifa_addr = reinterpret_cast<sockaddr*>(&added.link);
    added.link.sll_family = AF_PACKET;
    added.link.sll_ifindex = index;
    added.link.sll_hatype = ARPHRD_ETHER;
    added.link.sll_halen = 6;
    std::memcpy(added.link.sll_addr, address.data(), address.size());
    if (g_entries.size() > 1) {
        g_entries[g_entries.size() - 2].entry.ifa_next = &added.entry;
    }
    return added;
}

int list(ifaddrs** first)
{
    *first = g_entries.empty() ? nullptr : &g_entries.front().entry;
    return 0;
}
int fail(ifaddrs**)
{
    errno = EMFILE;
    return -1;
}
void release(ifaddrs*) { ++g_released; }

class NetworkInterfacesTest : public testing::Test {
protected:
    NetworkInterfacesTest()
    {
        g_entries.clear();
        g_released = 0;
    }
    void addHardware(const std::string& name) const
    {
        std::filesystem::create_directories(m_sysfs / ("class/net/" + name + "/device"));
    }
    std::vector<unsigned> indices() const
    {
        std::vector<unsigned> indices;
        for (const NetworkInterface& interface : networkInterfaces(list, release, m_sysfs.path())) {
            indices.push_back(interface.index);
        }
        return indices;
    }

    const TemporaryFolder m_sysfs;
};

TEST_F(NetworkInterfacesTest, PutsRealOnesFirstAndThenByNumber)
{
    add("docker0", 2, {2, 0x42, 0, 0, 0, 1});
    add("wlan0", 7, {0x10, 0, 0, 0, 0, 2});
    add("eth0", 5, {0x10, 0, 0, 0, 0, 3});
    add("br0", 1, {0x10, 0, 0, 0, 0, 4});
    addHardware("wlan0");
    addHardware("eth0");
    EXPECT_EQ(indices(), (std::vector{5U, 7U, 1U, 2U}));
    EXPECT_EQ(networkInterfaces(list, release, m_sysfs.path()).front().address,
              (Address{0x10, 0, 0, 0, 0, 3}));
}

TEST_F(NetworkInterfacesTest, LeavesOutWhatIsNoEthernet)
{
    add("lo", 1, {});
    add("lo2", 2, {1, 2, 3, 4, 5, 6}).entry.ifa_flags = IFF_LOOPBACK;
    add("tun0", 3, {1, 2, 3, 4, 5, 6}).link.sll_hatype = ARPHRD_NONE;
    add("ib0", 4, {1, 2, 3, 4, 5, 6}).link.sll_halen = 20;
    add("eth0", 5, {1, 2, 3, 4, 5, 6}).link.sll_family = AF_INET; // its other address
    add("ppp0", 6, {1, 2, 3, 4, 5, 6}).entry.ifa_addr = nullptr;
    EXPECT_EQ(indices(), std::vector<unsigned>());
}

TEST_F(NetworkInterfacesTest, ReleasesTheSystemsList)
{
    add("eth0", 5, {1, 2, 3, 4, 5, 6});
    indices();
    EXPECT_EQ(g_released, 1);
}

TEST_F(NetworkInterfacesTest, ThrowsTheSystemsTextWhenTheyCannotBeListed)
{
    try {
        networkInterfaces(fail, release, m_sysfs.path());
        FAIL() << "nothing thrown";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "Too many open files");
    }
    EXPECT_EQ(g_released, 0);
}

TEST(MacAddress, IsThatOfTheMachinesFirstInterface)
{
    const auto interfaces = networkInterfaces();
    unsigned first = 77;
    Address address = {9, 9, 9, 9, 9, 9};
    XeDevice::findNetworkInterfaces(&first);
    if (interfaces.empty()) {
        EXPECT_EQ(first, 0U);
        EXPECT_EQ(XeDevice::getMacAddress(address), static_cast<XeResult>(0x80000008));
        EXPECT_EQ(address, (Address{9, 9, 9, 9, 9, 9}));
    } else {
        EXPECT_EQ(first, interfaces.front().index);
        EXPECT_EQ(XeDevice::getMacAddress(address), 0);
        EXPECT_EQ(address, interfaces.front().address);
    }
}

} // namespace
