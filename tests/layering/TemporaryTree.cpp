#include "TemporaryTree.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

TemporaryTree::TemporaryTree(const std::map<std::string, std::string>& files)
{
    std::string folder = (fs::temp_directory_path() / "layering-XXXXXX").string();
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    m_root = folder;
    for (const auto& [path, contents] : files) {
        write(path, contents);
    }
}

TemporaryTree::~TemporaryTree()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

fs::path TemporaryTree::write(const std::string& path, const std::string& contents) const
{
    const fs::path file = m_root / path;
    fs::create_directories(file.parent_path());
    std::ofstream(file) << contents;
    return file;
}
