#include "XeFileSystem.h"

#include "MemoryFileSystem.h"
#include "TemporaryFolder.h"
#include "WidePath.h"
#include "fs/XeFileSystemVolumesPlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr auto kFailure = static_cast<XeResult>(0x80000008);

_XeString<wchar_t> mountPointOf(const fs::path& path)
{
    _XeString<wchar_t> mountPoint;
    EXPECT_EQ(XeFileSystem::getVolumeMountPoint(wide(path), mountPoint), 0);
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
    const _XeString<wchar_t> loop = wide(folder / "loop");
    for (const _XeString<wchar_t>& path : {loop, _XeString<wchar_t>(L"/\xD800"), {}}) {
        _XeString<wchar_t> mountPoint = L"before";
        EXPECT_EQ(XeFileSystem::getVolumeMountPoint(path, mountPoint), kFailure);
        EXPECT_EQ(mountPoint, L"before");
    }
}

// The name is the mount path of the volume with its separator; the text alone counts.
TEST(VolumeName, IsCutBehindTheNameBelowVolumes)
{
    const struct {
        const wchar_t* path;
        const wchar_t* name;
    } rows[] = {
        {L"/Volumes/My Disk/folder/a.wav", L"/Volumes/My Disk/"},
        {L"/Volumes/My Disk/", L"/Volumes/My Disk/"},
        {L"/Volumes/My Disk", L"/Volumes/My Disk"}, // no further separator: the whole path
        {L"/Volumes//a", L"/Volumes//"},
        {L"/Volumes/", L"/Volumes/"},
        {L"/Volumes", L"/"},
        {L"/VolumesX/a", L"/"},
        {L"/volumes/a/b", L"/"},
        {L"/Users/ann/a.wav", L"/"},
        {L"/", L"/"},
        {L"//a", L"/"},
        {L"folder/a/b", L"folder/"},
        {L"a.wav", L"a.wav"},
        {L"", L""},
    };
    for (const auto& row : rows) {
        _XeString<wchar_t> name = L"before";
        EXPECT_EQ(XeFileSystem::getVolumeName(row.path, name), 0);
        EXPECT_EQ(name, row.name) << row.path;
    }
    _XeString<wchar_t> name = L"before";
    EXPECT_EQ(XeFileSystem::getVolumeName(nullptr, name), 0);
    EXPECT_EQ(name, L"");
}

TEST(VolumeName, MayReplaceThePathsOwnText)
{
    _XeString<wchar_t> path = L"/Volumes/Disk/a";
    EXPECT_EQ(XeFileSystem::getVolumeName(path.c_str(), path), 0);
    EXPECT_EQ(path, L"/Volumes/Disk/");
}

const wchar_t* const kNoSuchPaths[] = {L"/no such folder/a", L"", L"/\xD800", nullptr};

TEST(VolumeOfNoPath, HasNoFormat)
{
    for (const wchar_t* path : kNoSuchPaths) {
        auto format = static_cast<EFileSystem>(77);
        EXPECT_EQ(XeFileSystem::getFileSystemFormat(path, format), kFailure);
        EXPECT_EQ(format, 77);
    }
}

TEST(VolumeOfNoPath, HasNoTypeName)
{
    for (const wchar_t* path : kNoSuchPaths) {
        std::string name = "before";
        EXPECT_EQ(XeFileSystem::_getFileSystemName(path, name), kFailure);
        EXPECT_EQ(name, "");
    }
}

TEST(VolumeOfNoPath, HasTheMediaTypeUnknown)
{
    for (const wchar_t* path : kNoSuchPaths) {
        auto type = static_cast<EVolumeMediaType>(77);
        EXPECT_EQ(XeFileSystem::getVolumeMediaType(path, type), kFailure);
        EXPECT_EQ(type, 255);
    }
}

TEST(VolumeOfNoPath, HasNothingElse)
{
    for (const wchar_t* path : {L"", L"/\xD800"}) {
        unsigned long long free = 77;
        unsigned long long total = 78;
        EXPECT_EQ(XeFileSystem::getVolumeSpace(path, free, total), kFailure);
        EXPECT_EQ(free, 77U);
        EXPECT_EQ(total, 78U);
        EXPECT_EQ(XeFileSystem::getFreeSpace(path), 0U);
        bool writable = true;
        EXPECT_EQ(XeFileSystem::isVolumeWritable(path, writable), kFailure);
        EXPECT_TRUE(writable);
        EXPECT_FALSE(XeFileSystem::isSeekableVolume(path));
        _XeString<wchar_t> text = L"before";
        EXPECT_EQ(XeFileSystem::getDisplayName(path, text), kFailure);
        EXPECT_EQ(XeFileSystem::mountableShareVolume(path, text), kFailure);
        EXPECT_EQ(text, L"before");
    }
    EXPECT_EQ(XeFileSystem::getFreeSpace(nullptr), 0U);
}

/// A mount point of a remote volume that the system knows nothing of, and one that is a folder.
class RemoteFormat : public testing::Test {
protected:
    const TemporaryFolder m_folder;
    const _XeString<wchar_t> m_local = wide(m_folder.path());
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_unknown{L"/no such volume", m_remote};
    const RemoteMount m_known{m_local, m_remote};
};

TEST_F(RemoteFormat, IsElevenWhereTheSystemHasNoAnswer)
{
    for (const wchar_t* path : {L"/no such volume", L"/no such volume/a/b"}) {
        auto format = static_cast<EFileSystem>(77);
        EXPECT_EQ(XeFileSystem::getFileSystemFormat(path, format), 0);
        EXPECT_EQ(format, 11);
    }
    auto format = static_cast<EFileSystem>(77);
    EXPECT_EQ(XeFileSystem::getFileSystemFormat((m_local + L"/absent").c_str(), format), 0);
    EXPECT_EQ(format, 11);
    EXPECT_TRUE(m_remote->calls.empty());
}

TEST_F(RemoteFormat, IsTheSystemsWhereThatHasOne)
{
    auto format = static_cast<EFileSystem>(77);
    EXPECT_EQ(XeFileSystem::getFileSystemFormat(m_local.c_str(), format), 0);
    EXPECT_NE(format, 11);
}

TEST_F(RemoteFormat, CannotBeReadAtAnyPosition)
{
    EXPECT_FALSE(XeFileSystem::isSeekableVolume(L"/no such volume/a"));
    EXPECT_FALSE(XeFileSystem::isSeekableVolume(m_local));
}

TEST(VolumeOfAFolder, CanBeReadAtAnyPosition)
{
    const TemporaryFolder folder;
    const auto path = wide(folder.path());
    EXPECT_TRUE(XeFileSystem::isSeekableVolume(path));
    EXPECT_TRUE(XeFileSystem::isSeekableVolume(path + L"/not there yet"));
}

TEST(VolumeOfAFolder, HasSpace)
{
    const TemporaryFolder folder;
    const auto path = wide(folder.path());
    for (const _XeString<wchar_t>& item : {path, _XeString<wchar_t>(path + L"/not there/yet")}) {
        unsigned long long free = 0;
        unsigned long long total = 0;
        EXPECT_EQ(XeFileSystem::getVolumeSpace(item.c_str(), free, total), 0);
        const fs::space_info space = fs::space(folder.path());
        EXPECT_EQ(total, space.capacity);
        EXPECT_NEAR(static_cast<double>(free), static_cast<double>(space.available), 1e9);
        EXPECT_NEAR(static_cast<double>(XeFileSystem::getFreeSpace(item.c_str())),
                    static_cast<double>(free), 1e9);
        bool writable = false;
        EXPECT_EQ(XeFileSystem::isVolumeWritable(item, writable), 0);
        EXPECT_TRUE(writable);
    }
}

TEST(Volumes, OfNoKindAreNone)
{
    std::vector<_XeString<wchar_t>> volumes = {L"before"};
    XeFileSystem::GetVolumes(volumes, 0);
    EXPECT_TRUE(volumes.empty());
    XeFileSystem::GetVolumes(volumes, ~7U);
    EXPECT_TRUE(volumes.empty());
}

TEST(Volumes, OfAllKindsHoldTheRootOnceAndEachOfThemHasOneKind)
{
    std::vector<_XeString<wchar_t>> all;
    XeFileSystem::GetVolumes(all, 7);
    EXPECT_EQ(std::count(all.begin(), all.end(), L"/"), 1);
    std::size_t count = 0;
    for (const unsigned filter : {1U, 2U, 4U}) {
        std::vector<_XeString<wchar_t>> some;
        XeFileSystem::GetVolumes(some, filter);
        count += some.size();
    }
    EXPECT_EQ(count, all.size());
}

TEST(SubVolumes, DoNotHoldThePathItself)
{
    std::vector<_XeString<wchar_t>> volumes = {L"before"};
    EXPECT_EQ(XeFileSystem::getSubVolumes(L"/", volumes), 0);
    EXPECT_EQ(std::count(volumes.begin(), volumes.end(), L"/"), 0);
}

TEST(SubVolumes, OfAFolderWithoutVolumesAreNone)
{
    const TemporaryFolder folder;
    for (const auto& path : {folder.path("absent"), folder.path().string()}) {
        std::vector<_XeString<wchar_t>> volumes = {L"before"};
        EXPECT_EQ(XeFileSystem::getSubVolumes(wide(path), volumes), 0);
        EXPECT_TRUE(volumes.empty());
    }
}

} // namespace
