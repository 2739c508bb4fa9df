// A file system of the tests' own: shows a folder at another place, for reading.
//
//   mirror_fuse FOLDER [libfuse options] MOUNTPOINT
//
// Writes a byte to standard output once it is mounted.

#define FUSE_USE_VERSION 31
#include <fuse.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

std::string g_folder;

std::string _behind(const char* path) { return g_folder + path; }

int _result(int result) { return result < 0 ? -errno : 0; }

void* _mounted(fuse_conn_info*, fuse_config*)
{
    return write(STDOUT_FILENO, "m", 1) == 1 ? &g_folder : nullptr;
}

int _getattr(const char* path, struct stat* status, fuse_file_info*)
{
    return _result(lstat(_behind(path).c_str(), status));
}

int _readdir(const char* path, void* buffer, fuse_fill_dir_t add, off_t, fuse_file_info*,
             fuse_readdir_flags)
{
    DIR* const folder = opendir(_behind(path).c_str());
    if (folder == nullptr) {
        return -errno;
    }
    while (const dirent* const entry = readdir(folder)) {
        add(buffer, entry->d_name, nullptr, 0, fuse_fill_dir_flags{});
    }
    closedir(folder);
    return 0;
}

int _open(const char* path, fuse_file_info* file)
{
    const int descriptor = open(_behind(path).c_str(), O_RDONLY | O_CLOEXEC);
    file->fh = static_cast<std::uint64_t>(descriptor);
    return _result(descriptor);
}

int _read(const char*, char* buffer, size_t size, off_t offset, fuse_file_info* file)
{
    const ssize_t count = pread(static_cast<int>(file->fh), buffer, size, offset);
    return count < 0 ? -errno : static_cast<int>(count);
}

int _release(const char*, fuse_file_info* file) { return close(static_cast<int>(file->fh)); }

int _statfs(const char* path, struct statvfs* status)
{
    return _result(statvfs(_behind(path).c_str(), status));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        return 2;
    }
    g_folder = argv[1];
    argv[1] = argv[0];
    fuse_operations operations{};
    operations.init = _mounted;
    operations.getattr = _getattr;
    operations.readdir = _readdir;
    operations.open = _open;
    operations.read = _read;
    operations.release = _release;
    operations.statfs = _statfs;
    return fuse_main(argc - 1, argv + 1, &operations, nullptr);
}
