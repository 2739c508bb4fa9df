#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// The recordings opened last, kept in a file of the user's data folder. Paths may be any bytes but
/// zero and are kept as they are. [main]
class RecentFiles {
public:
    static constexpr std::size_t kMost = 10;

    /// The list in the application's folder of the user's data, "VANTA/Tarvel/recent-files" in
    /// ~/.local/share; see XeFileSystem::getSysAppFolder. Empty when there is no home folder.
    static std::string defaultPath();

    /// Reads the list. A file that is not there or not a list gives an empty one.
    /// @param listPath  Empty: the list is kept in memory only.
    explicit RecentFiles(std::string listPath);

    /// Has `observer` called after every change.
    void setObserver(std::function<void()> observer) { m_observer = std::move(observer); }

    /// Newest first.
    const std::vector<std::string>& paths() const { return m_paths; }

    /// Puts a path first, and writes the list. The oldest one is dropped when there are too many.
    /// A list that cannot be written is no error: the next start knows less.
    /// @param path  Absolute.
    void add(const std::string& path);

    /// Takes a path away, or all.
    void remove(const std::string& path);
    void clear();

private:
    void changed() const;
    void save() const;

    std::function<void()> m_observer;
    std::string m_listPath;
    std::vector<std::string> m_paths;
};

} // namespace host
