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
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string path = std::filesystem::temp_directory_path() / "tarvel-test-XXXXXX";
        EXPECT_NE(mkdtemp(path.data()), nullptr) << path;
        m_path = path;
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
        if (error) {
            unlock(m_path);
            std::filesystem::remove_all(m_path, error);
        }
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The folder, or an entry of it. Names are bytes.
    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Names of everything in the folder or in one below it, hidden files too, in order.
    std::vector<std::string> names(const std::string& below = "") const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path / below)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /// Writes a file of the folder; its path.
    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    /// Gives the owner all rights to the folders at and below a path, so that they can be removed.
    static void unlock(const std::filesystem::path& folder)
    {
        std::error_code error;
        std::filesystem::permissions(folder, std::filesystem::perms(0700), error);
        for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
            if (entry.symlink_status(error).type() == std::filesystem::file_type::directory) {
                unlock(entry.path());
            }
        }
    }

    static std::string contents(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};
