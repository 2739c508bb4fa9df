#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

/// A file being written that nobody sees under its name before it is whole.
///
///     PendingFile file("/music/take.wav");
///     file.write(bytes.data(), bytes.size());
///     file.finish(false);
///
/// It has no name at all meanwhile (open(2), O_TMPFILE), so that nothing is left behind, not even
/// when the process is killed. On file systems without such files it has a hidden name in the same
/// folder, which is removed unless the process is killed.
///
/// Every function that fails keeps the reason of the first failure, and what follows fails too.
class PendingFile {
public:
    enum class Naming { NamelessWherePossible, Hidden };

    /// @param path    The name to be, any bytes but zero. Its folder must exist.
    /// @param naming  Hidden does everywhere what is done where nameless files are missing.
    explicit PendingFile(std::string path, Naming naming = Naming::NamelessWherePossible);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /// errno of the first failure; 0 when there was none. EEXIST from finish() means that the name
    /// is taken.
    int error() const { return m_error; }

    /// Writes at the current place. False when not all could be written.
    bool write(const void* bytes, std::size_t size);

    /// Reads at the current place; bytes read.
    std::size_t read(void* bytes, std::size_t size);

    /// As lseek(2); the new place, -1 when it fails.
    std::int64_t seek(std::int64_t offset, int whence);

    /// Bytes of the file so far.
    std::int64_t size();

    /// Flushes the file to the disk and gives it its name, in one step. Called once, last.
    /// @param overwrite  Whether a file of that name is replaced.
    bool finish(bool overwrite);

private:
    bool fail();
    bool open(Naming naming);
    bool publish(bool overwrite);
    bool moveToName(bool overwrite);
    std::string unusedName() const;

    std::string m_path;
    std::string m_folder;
    std::string m_temporary; // name until finish(); empty while there is none
    int m_descriptor = -1;
    int m_error = 0;
};

} // namespace host
