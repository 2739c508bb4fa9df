#include "fs/VolumeRules.h"

#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

namespace {

using namespace XeFileSystem;

TEST(VolumeFormat, EveryTypeNameHasItsNumber)
{
    const struct {
        const char* name;
        int format;
    } rows[] = {
        {"msdos", 2},      {"exfat", 3},         {"udf", 6},         {"hfs", 7},
        {"smbfs", 9},      {"afpfs", 9},         {"nfs", 10},        {"ufs", 12},
        {"vantadisc", 14}, {"vantacard", 15},    {"vantacardx", 15}, {"vantadiscdl", 17},
        {"vantapack", 19}, {"vantaarchive", 18},
    };
    for (const auto& row : rows) {
        const auto format = formatOfTypeName(row.name);
        ASSERT_TRUE(format) << row.name;
        EXPECT_EQ(*format, row.format) << row.name;
    }
}

TEST(VolumeFormat, OtherNamesHaveNone)
{
    for (const char* name : {"", "ext4", "apfs", "MSDOS", "nfs4", "hfs "}) {
        EXPECT_FALSE(formatOfTypeName(name)) << name;
    }
}

TEST(VolumeMediaType, FollowsFromTheTraits)
{
    // The bits of a row's number: internal, local, removable, ejectable.
    constexpr int kTypes[16] = {
        // not local, whatever else
        2,
        2,
        255,
        1,
        // removable
        2,
        2,
        0,
        0,
        // ejectable
        2,
        2,
        0,
        0,
        // both
        2,
        2,
        0,
        0,
    };
    for (unsigned bits = 0; bits < 16; ++bits) {
        const VolumeTraits traits = {(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0,
                                     (bits & 8) != 0};
        EXPECT_EQ(mediaTypeOf(traits), kTypes[bits]) << bits;
    }
}

TEST(VolumeMediaType, IsRefinedForLocalDisksAlone)
{
    for (const int type : {0, 1}) {
        EXPECT_TRUE(isRefinedByDevice(static_cast<EVolumeMediaType>(type))) << type;
    }
    for (const int type : {2, 16, 17, 18, 255}) {
        EXPECT_FALSE(isRefinedByDevice(static_cast<EVolumeMediaType>(type))) << type;
    }
}

TEST(VolumeFilter, SelectsByMediaType)
{
    const struct {
        int type;
        unsigned bit;
    } rows[] = {{0, 2}, {1, 1}, {2, 4}, {255, 1}, {16, 2}, {17, 2}, {18, 2}};
    for (const auto& row : rows) {
        EXPECT_EQ(filterBitOf(static_cast<EVolumeMediaType>(row.type)), row.bit) << row.type;
    }
}

class DiscStructure : public testing::Test {
protected:
    void addFile(const std::string& folder, const std::string& name) const
    {
        std::filesystem::create_directories(m_folder / folder);
        m_folder.write(folder + '/' + name, "");
    }
    bool holds() const
    {
        const auto path = xenon::path::fromNative(m_folder.path().native());
        EXPECT_EQ(holdsDiscStructure(path), holdsDiscStructure(path + L'/'));
        return holdsDiscStructure(path);
    }

    const TemporaryFolder m_folder;
};

TEST_F(DiscStructure, IsAFolderOfADiscWithItsIndex)
{
    for (const auto& [folder, index] : {std::pair("VIDEO_TS", "VIDEO_TS.IFO"),
                                        {"BDMV", "index.bdmv"},
                                        {"AUDIO_TS", "AUDIO_TS.IFO"}}) {
        EXPECT_FALSE(holds()) << folder;
        addFile(folder, index);
        EXPECT_TRUE(holds()) << folder;
        std::filesystem::remove_all(m_folder / folder);
    }
}

TEST_F(DiscStructure, IsNotMadeByTheFoldersNameAlone)
{
    addFile("VIDEO_TS", "notes.txt");
    addFile("backup/BDMV", "index.bdmv"); // not at the top
    EXPECT_FALSE(holds());
}

TEST(VolumePrefix, AStarStandsForOneName)
{
    const struct {
        const wchar_t* path;
        const wchar_t* pattern;
        std::size_t length;
    } rows[] = {
        {L"/mnt/disk/a", L"/mnt/", 5},
        {L"/mnt/", L"/mnt/", 5},
        {L"/mnt", L"/mnt/", 0},
        {L"/mntx/a", L"/mnt/", 0},
        {L"/media/ann/x", L"/media/*/", 11},
        {L"/media/ann/", L"/media/*/", 11},
        {L"/media/ann", L"/media/*/", 0},
        {L"/media//x", L"/media/*/", 0},
        {L"/media/", L"/media/*/", 0},
        {L"", L"/mnt/", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(prefixLength(row.path, row.pattern), row.length) << row.path;
    }
}

TEST(LastName, IsWhatStandsBehindTheLastSeparator)
{
    EXPECT_EQ(lastName(L"/a/b.wav"), L"b.wav");
    EXPECT_EQ(lastName(L"/a/b//"), L"b");
    EXPECT_EQ(lastName(L"b"), L"b");
    EXPECT_EQ(lastName(L"/"), L"/");
    EXPECT_EQ(lastName(L"///"), L"/");
    EXPECT_EQ(lastName(L""), L"");
}

} // namespace
