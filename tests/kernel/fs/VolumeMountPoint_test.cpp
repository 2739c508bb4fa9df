#include "fs/VolumeMountPoint.h"

#include "TemporaryFolder.h"
#include "core/XeNativePath.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

constexpr auto kFailure = static_cast<XeResult>(0x80000008);

_XeString<wchar_t> mountPointOf(const fs::path& path)
{
    _XeString<wchar_t> mountPoint;
    EXPECT_EQ(XeFileSystem::getVolumeMountPoint(xenon::path::fromNative(path.native()), mountPoint),
              0);
    return mountPoint;
}

TEST(VolumeMountPoint, TheRootIsItsOwn) { EXPECT_EQ(mountPointOf("/"), L"/"); }

// /dev is a volume of its own wherever these tests run.
TEST(VolumeMountPoint, AFolderOfAnotherVolumeHasThatOnes)
{
    EXPECT_EQ(mountPointOf("/dev"), L"/dev");
    EXPECT_EQ(mountPointOf("/dev/"), L"/dev");
    EXPECT_EQ(mountPointOf("/dev/null"), L"/dev");
}

TEST(VolumeMountPoint, LinksAreFollowed)
{
    const TemporaryFolder folder;
    fs::create_symlink("/dev/null", folder / "link");
    EXPECT_EQ(mountPointOf(folder / "link"), L"/dev");
}

TEST(VolumeMountPoint, WhatDoesNotExistLiesWhereItsParentLies)
{
    EXPECT_EQ(mountPointOf("/dev/absent/deeper/file"), L"/dev");
    EXPECT_EQ(mountPointOf("/absent on the root"), L"/");
}

TEST(VolumeMountPoint, PathsThatCannotBeLookedUpHaveNone)
{
    const TemporaryFolder folder;
    fs::create_symlink(folder / "loop", folder / "loop");
    const _XeString<wchar_t> loop = xenon::path::fromNative((folder / "loop").native());
    for (const _XeString<wchar_t>& path : {loop, _XeString<wchar_t>(L"/\xD800"), {}}) {
        _XeString<wchar_t> mountPoint = L"before";
        EXPECT_EQ(XeFileSystem::getVolumeMountPoint(path, mountPoint), kFailure);
        EXPECT_EQ(mountPoint, L"before");
    }
}

} // namespace
