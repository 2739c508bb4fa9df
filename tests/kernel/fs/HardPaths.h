#pragma once

#include "TemporaryFolder.h"
#include "XeNativePath.h"
#include "XeString.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// A folder with what functions that take a path stumble over.
class HardPaths {
public:
    using Text = _XeString<wchar_t>;

    /// What to call a path in messages, and the path.
    using Row = std::pair<const char*, Text>;

    HardPaths()
    {
        namespace fs = std::filesystem;
        m_folder.write("file", "PK\3\4 x");
        m_folder.write(kNotUtf8, "PK\3\4 x");
        fs::create_symlink("loop", m_folder / "loop");
        fs::create_symlink("nowhere", m_folder / "dangling");
        fs::create_directory(m_folder / "closed");
        m_folder.write("closed/file", "PK\3\4 x");
        fs::create_directory(m_folder / "closed/folder");
        EXPECT_EQ(mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
        fs::permissions(m_folder / "closed", fs::perms(0));
        fs::permissions(m_folder.path(), fs::perms(0755));
    }
    ~HardPaths()
    {
        std::error_code error;
        std::filesystem::permissions(m_folder / "closed", std::filesystem::perms(0700), error);
    }
    HardPaths(const HardPaths&) = delete;
    HardPaths& operator=(const HardPaths&) = delete;

    const TemporaryFolder& folder() const { return m_folder; }
    Text wide(const std::string& name) const
    {
        return xenon::path::fromNative(m_folder.path(name));
    }

    /// Paths that lead to no item, for anybody. The last two are links that are items themselves.
    std::vector<Row> leadingNowhere() const
    {
        return {
            {"empty", Text()},
            {"surrogate", wide("a") + L'\xD800'},
            {"beyond Unicode", wide("a") + static_cast<wchar_t>(0x110000)},
            {"name of 300 bytes", wide(std::string(300, 'x'))},
            {"path of 5000 bytes", wide(std::string(2500, '/') + std::string(2500, '.') + "/x")},
            {"absent", wide("absent")},
            {"below a file", wide("file/below")},
            {"a file with a separator", wide("file/")},
            {"below a loop", wide("loop/below")},
            {"loop", wide("loop")},
            {"dangling", wide("dangling")},
        };
    }

    /// Items that an ordinary user cannot reach.
    std::vector<Row> withoutRights() const
    {
        return {
            {"file in a closed folder", wide("closed/file")},
            {"folder in a closed folder", wide("closed/folder")},
        };
    }

    static constexpr char kNotUtf8[] = "not utf-8 \xE9\xFF";

private:
    const TemporaryFolder m_folder;
};
