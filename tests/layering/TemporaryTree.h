#pragma once

#include <filesystem>
#include <map>
#include <string>

/// A folder with files of the test's own, removed with its object.
class TemporaryTree {
public:
    /// @param files  Contents by path below the folder.
    explicit TemporaryTree(const std::map<std::string, std::string>& files = {});
    ~TemporaryTree();

    TemporaryTree(const TemporaryTree&) = delete;
    TemporaryTree& operator=(const TemporaryTree&) = delete;

    const std::filesystem::path& root() const { return m_root; }

    /// Writes a file below the folder and returns its whole path.
    std::filesystem::path write(const std::string& path, const std::string& contents) const;

private:
    std::filesystem::path m_root;
};
