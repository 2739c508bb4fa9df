// Folders of 20,000 entries through the listings, beside readdir of the same folder and the
// standard library's iterator. What a browser shows has to be readable, which the file system tells
// only entry by entry: "readdir+faccessat" is the floor of those. The folders lie in the system's
// temporary folder and are in memory after the first round, so what is compared is the processor's
// work. Ours comes last in each group.

#include "XeFileSystem.h"

#include "ComparedRows.h"

#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Path = _XeString<wchar_t>;

constexpr int kEntries = 20000;

void require(bool condition, const char* what)
{
    if (!condition) {
        std::perror(what);
        std::exit(1);
    }
}

/// A folder of files and one of folders, removed at the end.
class BenchFolders {
public:
    BenchFolders()
    {
        std::string name = fs::temp_directory_path() / "tarvel-bench-XXXXXX";
        require(mkdtemp(name.data()) != nullptr, "mkdtemp");
        m_path = name;
        fs::create_directory(files());
        fs::create_directory(folders());
        std::ofstream(m_path / "file");
        for (int i = 0; i < kEntries; ++i) { // links are the fastest to make
            const std::string entry = "take " + std::to_string(100000 + i);
            fs::create_hard_link(m_path / "file", files() / (entry + ".wav"));
            require(mkdir((folders() / entry).c_str(), 0777) == 0, "mkdir");
        }
    }
    ~BenchFolders()
    {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
    BenchFolders(const BenchFolders&) = delete;
    BenchFolders& operator=(const BenchFolders&) = delete;

    fs::path files() const { return m_path / "files"; }
    fs::path folders() const { return m_path / "folders"; }

private:
    fs::path m_path;
};

const BenchFolders& benchFolders()
{
    static const BenchFolders folders;
    return folders;
}

using Which = fs::path (BenchFolders::*)() const;

/// Reads a folder to its end; how many entries `counts`.
template <typename Counts>
void readFolder(Which which, Counts counts)
{
    const std::string path = (benchFolders().*which)();
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    int count = 0;
    while (const dirent* const entry = readdir(folder.get())) {
        count += entry->d_name[0] != '.' && counts(dirfd(folder.get()), *entry) ? 1 : 0;
    }
    require(count == kEntries, "readdir");
}

template <typename List>
void addListing(const std::string& group, const std::string& name, Which which, List list)
{
    addComparedRow(group, name, [=] {
        const std::string path = (benchFolders().*which)();
        const Path wide(path.begin(), path.end());
        decltype(list(wide.c_str())) out = list(wide.c_str());
        require(out.size() == kEntries, name.c_str());
        benchmark::DoNotOptimize(out.data());
    });
}

/// `list(path, out)` with a list of paths.
template <typename Out = std::vector<Path>, typename List>
auto returning(List list)
{
    return [=](const wchar_t* path) {
        Out out;
        require(list(path, out) == 0, "listing");
        return out;
    };
}

void addReaddir(const std::string& group, Which which)
{
    addComparedRow(group, "readdir",
                   [=] { readFolder(which, [](int, const dirent&) { return true; }); });
}

void addReaddirAndAccess(const std::string& group, Which which)
{
    addComparedRow(group, "readdir+faccessat", [=] {
        readFolder(which, [](int folder, const dirent& entry) {
            return faccessat(folder, entry.d_name, R_OK, AT_EACCESS) == 0;
        });
    });
}

/// The floor of a listing with attributes.
void addReaddirAccessAndStatus(const std::string& group, Which which)
{
    addComparedRow(group, "readdir+faccessat+fstatat", [=] {
        readFolder(which, [](int folder, const dirent& entry) {
            struct stat status {};
            return faccessat(folder, entry.d_name, R_OK, AT_EACCESS) == 0 &&
                   fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
        });
    });
}

/// With what the listing tells: the paths of one kind of entry.
void addIterator(const std::string& group, Which which, bool (fs::directory_entry::*isKind)() const)
{
    addComparedRow(group, "std", [=] {
        std::vector<fs::path> out;
        for (const auto& entry : fs::directory_iterator((benchFolders().*which)())) {
            if ((entry.*isKind)()) {
                out.push_back(entry.path());
            }
        }
        require(out.size() == kEntries, "directory_iterator");
        benchmark::DoNotOptimize(out.data());
    });
}

void addFiles()
{
    using namespace XeFileSystem;
    const Which files = &BenchFolders::files;
    addReaddir("files", files);
    addIterator("files", files, &fs::directory_entry::is_regular_file);
    addListing("files", "getFilesInFolder", files, returning([](auto path, auto& out) {
                   return getFilesInFolder(path, L"", false, out, false);
               }));
    addListing("files", "getFilesInFolder_pattern", files, returning([](auto path, auto& out) {
                   return getFilesInFolder(path, L"*.wav", false, out, false);
               }));
    addReaddirAndAccess("browsable_files", files);
    addListing(
        "browsable_files", "getBrowsableFilesInFolder", files,
        returning([](auto path, auto& out) { return getBrowsableFilesInFolder(path, out); }));
    addReaddirAccessAndStatus("browsable_files", files);
    addListing("browsable_files", "getBrowsableFilesWithAttribute", files,
               returning<std::vector<std::pair<Path, tFileAtrribute>>>(
                   [](auto path, auto& out) { return getBrowsableFilesWithAttribute(path, out); }));
}

void addFolders()
{
    using namespace XeFileSystem;
    const Which folders = &BenchFolders::folders;
    addReaddir("folders", folders);
    addIterator("folders", folders, &fs::directory_entry::is_directory);
    addListing("folders", "getSubFolders", folders,
               returning([](auto path, auto& out) { return getSubFolders(path, false, out); }));
    addReaddirAndAccess("browsable_folders", folders);
    addListing("browsable_folders", "getBrowsableSubFolders", folders,
               returning([](auto path, auto& out) { return getBrowsableSubFolders(path, out); }));
}

// Before main(), which runs what is registered.
[[maybe_unused]] const bool g_registered = [] {
    benchFolders(); // not within the first row
    addFiles();
    addFolders();
    return true;
}();

} // namespace
