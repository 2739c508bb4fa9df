#include "RecentFiles.h"

#include "PendingFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace host {

namespace fs = std::filesystem;

namespace {

// Ends each path: the one byte that no path holds.
constexpr char kEnd = '\0';

std::string environmentPath(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr && value[0] == '/' ? value : "";
}

} // namespace

std::string RecentFiles::defaultPath()
{
    const std::string data = environmentPath("XDG_DATA_HOME");
    if (!data.empty()) {
        return data + "/tarvel/recent-files";
    }
    const std::string home = environmentPath("HOME");
    return home.empty() ? "" : home + "/.local/share/tarvel/recent-files";
}

RecentFiles::RecentFiles(std::string listPath) : m_listPath(std::move(listPath))
{
    std::ifstream list(m_listPath, std::ios::binary);
    std::string path;
    while (m_paths.size() < kMost && std::getline(list, path, kEnd)) {
        if (!path.empty() && path[0] == '/') {
            m_paths.push_back(path);
        }
    }
}

void RecentFiles::add(const std::string& path)
{
    std::erase(m_paths, path);
    m_paths.insert(m_paths.begin(), path);
    m_paths.resize(std::min(m_paths.size(), kMost));
    changed();
}

void RecentFiles::remove(const std::string& path)
{
    if (std::erase(m_paths, path) > 0) {
        changed();
    }
}

void RecentFiles::clear()
{
    m_paths.clear();
    changed();
}

void RecentFiles::changed() const
{
    save();
    if (m_observer) {
        m_observer();
    }
}

void RecentFiles::save() const
{
    if (m_listPath.empty()) {
        return;
    }
    std::error_code error;
    fs::create_directories(fs::path(m_listPath).parent_path(), error);
    std::string bytes;
    for (const std::string& path : m_paths) {
        bytes += path + kEnd;
    }
    PendingFile file(m_listPath);
    if (file.write(bytes.data(), bytes.size())) {
        file.finish(true);
    }
}

} // namespace host
