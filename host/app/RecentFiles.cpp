#include "RecentFiles.h"

#include "PendingFile.h"

#include <XeFileSystem.h>
#include <XeNativePath.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace host {

namespace {

// Ends each path: the one byte that no path holds.
constexpr char kEnd = '\0';

constexpr wchar_t kAppName[] = L"Tarvel";
constexpr char kListName[] = "recent-files";

} // namespace

std::string RecentFiles::defaultPath()
{
    _XeString<wchar_t> folder;
    const XeResult result = XeFileSystem::getSysAppFolder(folder, kSysFolderUserApplicationSupport,
                                                          kAppName, false, false, 0, 0, nullptr);
    return result < 0 ? "" : xenon::path::toNative(folder).value() + kListName;
}

RecentFiles::RecentFiles(std::string listPath) : m_listPath(std::move(listPath))
{
    const auto list = XeFileSystem::openIStream(xenon::path::fromNative(m_listPath));
    std::string path;
    while (m_paths.size() < kMost && std::getline(*list, path, kEnd)) {
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
    const std::string folder = m_listPath.substr(0, m_listPath.rfind('/') + 1);
    XeFileSystem::createFolder(xenon::path::fromNative(folder).c_str());
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
