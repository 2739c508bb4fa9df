#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// A new folder below the system's temporary folder, removed with all its contents at the end.
/// Names are bytes.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& name = "tarvel-test")
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / (name + "-XXXXXX")).string();
        EXPECT_NE(mkdtemp(pattern.data()), nullptr) << pattern;
        m_path = pattern;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The folder, or an entry of it.
    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Names of everything in a folder below this one, hidden files too, in order.
    std::vector<std::string> names(const std::string& folder = "") const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path(folder))) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    static std::string contents(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};
