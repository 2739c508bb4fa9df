#include "fs/XeFileSystemListing.linux.h"

#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

bool isBundle(std::string_view name)
{
    return name.ends_with(".bundle") || name == "AVCHD" || name == "PRIVATE" || name == "Avchd";
}

class PackageListing : public testing::Test {
protected:
    std::vector<std::string> listed(bool filesOnly) const
    {
        std::vector<std::string> names;
        const auto path = xenon::path::fromNative(m_folder.path().native());
        const auto take = [&](const XeFileSystem::_BrowsedItem& item) {
            EXPECT_EQ(fs::path(xenon::path::toNative(item.path).value()).filename(), item.name);
            names.emplace_back(item.name);
        };
        EXPECT_EQ(XeFileSystem::browseFolder(path, filesOnly, isBundle, take), 0);
        return names;
    }

    const TemporaryFolder m_folder;
};

TEST_F(PackageListing, PackagesAreNeitherFoldersNorFiles)
{
    fs::create_directories(m_folder / "one.bundle/contents");
    fs::create_directory(m_folder / "folder");
    m_folder.write("file.bundle", "x");
    EXPECT_THAT(listed(false), testing::ElementsAre("folder"));
    EXPECT_THAT(listed(true), testing::ElementsAre("file.bundle"));
}

TEST_F(PackageListing, CameraFoldersStayFoldersUnderExactlyTheirNames)
{
    for (const char* name : {"AVCHD", "PRIVATE", "Avchd"}) {
        fs::create_directory(m_folder / name);
    }
    EXPECT_THAT(listed(false), testing::UnorderedElementsAre("AVCHD", "PRIVATE"));
    EXPECT_THAT(listed(true), testing::IsEmpty());
}

TEST_F(PackageListing, LinkToAPackageIsNotOne)
{
    fs::create_directory(m_folder / "one.bundle");
    fs::create_symlink("one.bundle", m_folder / "link.bundle");
    EXPECT_THAT(listed(false), testing::ElementsAre("link.bundle"));
}

} // namespace
