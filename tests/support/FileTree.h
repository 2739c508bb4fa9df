#pragma once

#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>

/// A temporary folder to act on, and what it holds at a moment.
class FileTree : public TemporaryFolder {
public:
    FileTree() {} // lets a constant one be made without further words

    /// Path of an item as text of the kernel.
    _XeString<wchar_t> wide(const std::string& name) const
    {
        return xenon::path::fromNative(path(name));
    }

    std::filesystem::path makeFolder(const std::string& name) const
    {
        std::filesystem::create_directories(*this / name);
        return *this / name;
    }
    std::filesystem::path makeLink(const std::string& name,
                                   const std::filesystem::path& target) const
    {
        std::filesystem::create_symlink(target, *this / name);
        return *this / name;
    }
    std::filesystem::path makePipe(const std::string& name) const
    {
        EXPECT_EQ(mkfifo(path(name).c_str(), 0600), 0);
        return *this / name;
    }

    /// A line for each item below `folder` (all by default), by the path from there: its rights and
    /// a file's bytes, a link's target. Pipes and devices are not opened; what may not be read is
    /// left out.
    static std::map<std::string, std::string> itemsOf(const std::filesystem::path& folder)
    {
        std::map<std::string, std::string> items;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 folder, std::filesystem::directory_options::skip_permission_denied)) {
            items[entry.path().lexically_relative(folder)] = _describe(entry);
        }
        return items;
    }
    std::map<std::string, std::string> items() const { return itemsOf(path()); }

private:
    static std::string _describe(const std::filesystem::directory_entry& entry)
    {
        const auto status = entry.symlink_status();
        const std::string rights = std::to_string(static_cast<unsigned>(status.permissions()));
        switch (status.type()) {
        case std::filesystem::file_type::directory:
            return "folder " + rights;
        case std::filesystem::file_type::regular:
            return "file " + rights + ' ' + contents(entry.path());
        case std::filesystem::file_type::symlink:
            return "link " + read_symlink(entry.path()).string();
        default:
            return "special " + rights;
        }
    }
};
