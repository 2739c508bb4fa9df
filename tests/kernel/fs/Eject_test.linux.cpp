#include "fs/Eject.linux.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <string>

namespace {

std::string g_called;   // ways in order, by their first letter
std::string g_succeeds; // the way that does

bool way(char letter)
{
    g_called += letter;
    return g_succeeds == std::string(1, letter);
}

constexpr EjectWays kWays = {
    [](const Mount&) { return way('f'); },
    [](const Mount&) { return way('r'); },
    [](const Mount&) { return way('d'); },
};

/// Ways that were tried, and the result behind them.
std::string eject(const Mount& mount, const char* succeeds)
{
    g_called.clear();
    g_succeeds = succeeds;
    const bool ejected = ejectMount(mount, kWays);
    return g_called + (ejected ? "+" : "-");
}

Mount fuseMount(unsigned user)
{
    Mount mount;
    mount.point = "/mnt/x";
    mount.type = "fuse.sshfs";
    mount.superOptions = "rw,user_id=" + std::to_string(user) + ",group_id=5";
    return mount;
}

TEST(EjectMount, TriesTheWaysInOrderUntilOneSucceeds)
{
    const Mount mount = fuseMount(geteuid());
    EXPECT_EQ(eject(mount, "f"), "f+");
    EXPECT_EQ(eject(mount, "r"), "fr+");
    EXPECT_EQ(eject(mount, "d"), "frd+");
    EXPECT_EQ(eject(mount, ""), "frd-");
}

TEST(EjectMount, TriesTheUsersWayOnlyForItsOwnFuseMounts)
{
    Mount disk = fuseMount(geteuid());
    disk.type = "ext4";
    EXPECT_EQ(eject(disk, "f"), "rd-");
    EXPECT_EQ(eject(fuseMount(geteuid() + 1), "f"), "rd-");
}

TEST(EjectMount, NeverTouchesTheRoot)
{
    Mount root = fuseMount(geteuid());
    root.point = "/";
    for (const char* way : {"f", "r", "d"}) {
        EXPECT_EQ(eject(root, way), "-");
    }
}

TEST(FuseMount, IsOfTheUserThatItNames)
{
    Mount mount = fuseMount(1000);
    for (const char* type : {"fuse", "fuseblk", "fuse.x"}) {
        mount.type = type;
        EXPECT_TRUE(isFuseMountOf(mount, 1000));
        EXPECT_FALSE(isFuseMountOf(mount, 100));
        EXPECT_FALSE(isFuseMountOf(mount, 0));
    }
    mount.type = "fusectl";
    EXPECT_FALSE(isFuseMountOf(mount, 1000));
    mount = fuseMount(1000);
    mount.superOptions = "rw";
    EXPECT_FALSE(isFuseMountOf(mount, 0));
}

} // namespace
