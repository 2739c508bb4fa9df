#pragma once

#include <dirent.h>

#include <memory>
#include <optional>

enum class EntryType { file, folder, link, other };

/// An entry of a folder, itself and not what it may be a link to.
struct FolderEntry {
    const char* name; // bytes; valid until the next entry is read
    EntryType type;
};

/// Reads a local folder entry by entry, without a look at the entries where the file system tells
/// their types in the folder itself. "." and ".." are left out, and so is what disappears
/// meanwhile. Throws nothing. One thread at a time. [any]
class FolderReader {
public:
    enum class Links { followed, refused };

    /// @param path   Bytes.
    /// @param links  Whether the path's last name may be that of a link to the folder.
    FolderReader(const char* path, Links links);

    /// False at the end of the folder, and after a failure.
    bool next(FolderEntry& entry);

    /// Type of what an entry leads to, links followed; `link` when it leads nowhere.
    EntryType typeBehind(const FolderEntry& entry);

    /// The folder, for the functions that take a name in one.
    int descriptor() const;

    /// The first failure as errno has it, 0 without any: the folder could not be opened, or not be
    /// read to its end, or the type of an entry not be told.
    int error() const { return m_error; }

    /// True when the folder, or one above it, was not there to be opened.
    bool isMissing() const;

private:
    struct Close {
        void operator()(DIR* folder) const { closedir(folder); }
    };

    std::optional<EntryType> _typeOf(const dirent& entry);
    std::optional<EntryType> _lookUp(const char* name, int flags);
    void _remember(int error);

    int m_error = 0;
    std::unique_ptr<DIR, Close> m_folder;
};
