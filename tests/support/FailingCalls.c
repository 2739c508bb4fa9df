#define _GNU_SOURCE

#include "FailingCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

static struct FailingCallPlan s_plan;
static atomic_bool s_armed;
static atomic_ulong s_counted;

EXPORT void armFailingCalls(const struct FailingCallPlan* plan)
{
    s_armed = false;
    s_plan = *plan;
    s_counted = 0;
    s_armed = true;
}

EXPORT unsigned long disarmFailingCalls(void)
{
    s_armed = false;
    return s_counted;
}

/// Counts a call of a group and tells whether it is one that was chosen.
static bool _isChosen(unsigned group)
{
    if (!s_armed || (s_plan.functions & group) == 0) {
        return false;
    }
    const unsigned long number = ++s_counted;
    const bool chosen =
        s_plan.nth != 0 && (number == s_plan.nth || (s_plan.onwards && number > s_plan.nth));
    if (chosen && s_plan.mode == kFailMeanwhile) {
        s_armed = false;
        s_plan.meanwhile();
        s_armed = true;
    }
    return chosen;
}

static bool _fails(unsigned group)
{
    const bool fails = _isChosen(group) && s_plan.mode == kFailWithError;
    if (fails) {
        errno = s_plan.error;
    }
    return fails;
}

/// For calls that move bytes: true when it fails, else `*count` is what it may move.
static bool _failsOrShortens(unsigned group, size_t* count)
{
    const bool chosen = _isChosen(group);
    if (chosen && s_plan.mode == kFailShort) {
        *count = (*count + 1) / 2;
    }
    const bool fails = chosen && s_plan.mode == kFailWithError;
    if (fails) {
        errno = s_plan.error;
    }
    return fails;
}

/// Declares `next`, the function that the program would call without this library.
#define FIND_NEXT(type, name, parameters)                                                          \
    static type(*next) parameters;                                                                 \
    if (next == NULL) {                                                                            \
        *(void**)&next = dlsym(RTLD_NEXT, #name);                                                  \
    }

/// A function that fails by not being called.
#define WRAP(group, type, failure, name, parameters, arguments)                                    \
    EXPORT type name parameters                                                                    \
    {                                                                                              \
        FIND_NEXT(type, name, parameters)                                                          \
        return _fails(group) ? (failure) : next arguments;                                         \
    }

/// One that is called first and then says that it has failed.
#define WRAP_AFTERWARDS(group, type, failure, name, parameters, arguments)                         \
    EXPORT type name parameters                                                                    \
    {                                                                                              \
        FIND_NEXT(type, name, parameters)                                                          \
        const type result = next arguments;                                                        \
        return _fails(group) ? (failure) : result;                                                 \
    }

/// One that gives the error as its result.
#define WRAP_RESULT(group, name, parameters, arguments)                                            \
    EXPORT int name parameters                                                                     \
    {                                                                                              \
        FIND_NEXT(int, name, parameters)                                                           \
        return _fails(group) ? s_plan.error : next arguments;                                      \
    }

/// One that moves `count` bytes.
#define WRAP_MOVE(group, name, parameters, arguments)                                              \
    EXPORT ssize_t name parameters                                                                 \
    {                                                                                              \
        FIND_NEXT(ssize_t, name, parameters)                                                       \
        return _failsOrShortens(group, &count) ? -1 : next arguments;                              \
    }

/// One that moves bytes from or to several places. A short one moves a part of the first.
#define WRAP_VECTOR(group, name, parameters, arguments)                                            \
    EXPORT ssize_t name parameters                                                                 \
    {                                                                                              \
        FIND_NEXT(ssize_t, name, parameters)                                                       \
        while (parts > 1 && vector->iov_len == 0) {                                                \
            ++vector;                                                                              \
            --parts;                                                                               \
        }                                                                                          \
        struct iovec first = parts > 0 ? *vector : (struct iovec){0};                              \
        const size_t wanted = first.iov_len;                                                       \
        if (_failsOrShortens(group, &first.iov_len)) {                                             \
            return -1;                                                                             \
        }                                                                                          \
        if (first.iov_len != wanted) {                                                             \
            vector = &first;                                                                       \
            parts = 1;                                                                             \
        }                                                                                          \
        return next arguments;                                                                     \
    }

/// One that opens a file and has the mode as an argument only where it makes one.
#define WRAP_OPEN(name, parameters, arguments)                                                     \
    EXPORT int name parameters                                                                     \
    {                                                                                              \
        FIND_NEXT(int, name, parameters)                                                           \
        mode_t mode = 0;                                                                           \
        if (__OPEN_NEEDS_MODE(flags)) {                                                            \
            va_list list;                                                                          \
            va_start(list, flags);                                                                 \
            mode = va_arg(list, mode_t);                                                           \
            va_end(list);                                                                          \
        }                                                                                          \
        return _fails(kFailOpen) ? -1 : next arguments;                                            \
    }

// The compiler takes a function of the fortified library for one of its own.
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int folder, const char* path, int flags);
int __openat64_2(int folder, const char* path, int flags);

// clang-format off
WRAP_OPEN(open,     (const char* path, int flags, ...),             (path, flags, mode))
WRAP_OPEN(open64,   (const char* path, int flags, ...),             (path, flags, mode))
WRAP_OPEN(openat,   (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
WRAP_OPEN(openat64, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
WRAP(kFailOpen, int, -1, __open_2,     (const char* path, int flags),             (path, flags))
WRAP(kFailOpen, int, -1, __open64_2,   (const char* path, int flags),             (path, flags))
WRAP(kFailOpen, int, -1, __openat_2,   (int folder, const char* path, int flags), (folder, path, flags))
WRAP(kFailOpen, int, -1, __openat64_2, (int folder, const char* path, int flags), (folder, path, flags))
WRAP(kFailOpen, FILE*, NULL, fopen,    (const char* path, const char* mode), (path, mode))
WRAP(kFailOpen, FILE*, NULL, fopen64,  (const char* path, const char* mode), (path, mode))
WRAP(kFailOpen, DIR*, NULL, opendir,   (const char* path), (path))

WRAP_AFTERWARDS(kFailClose, int, -1,  close,  (int descriptor), (descriptor))
WRAP_AFTERWARDS(kFailClose, int, EOF, fclose, (FILE* stream),   (stream))

WRAP_MOVE(kFailRead,  read,     (int from, void* bytes, size_t count),                    (from, bytes, count))
WRAP_MOVE(kFailRead,  pread,    (int from, void* bytes, size_t count, off_t at),          (from, bytes, count, at))
WRAP_MOVE(kFailRead,  pread64,  (int from, void* bytes, size_t count, off64_t at),        (from, bytes, count, at))
WRAP_VECTOR(kFailRead, readv,   (int from, const struct iovec* vector, int parts),        (from, vector, parts))
WRAP_MOVE(kFailWrite, write,    (int to, const void* bytes, size_t count),                (to, bytes, count))
WRAP_MOVE(kFailWrite, pwrite,   (int to, const void* bytes, size_t count, off_t at),      (to, bytes, count, at))
WRAP_MOVE(kFailWrite, pwrite64, (int to, const void* bytes, size_t count, off64_t at),    (to, bytes, count, at))
WRAP_VECTOR(kFailWrite, writev, (int to, const struct iovec* vector, int parts),          (to, vector, parts))
WRAP_MOVE(kFailCopy,  copy_file_range,
          (int from, off64_t* fromAt, int to, off64_t* toAt, size_t count, unsigned flags),
          (from, fromAt, to, toAt, count, flags))
WRAP_MOVE(kFailCopy,  sendfile,   (int to, int from, off_t* at, size_t count),   (to, from, at, count))
WRAP_MOVE(kFailCopy,  sendfile64, (int to, int from, off64_t* at, size_t count), (to, from, at, count))

WRAP(kFailSize, int, -1, truncate,      (const char* path, off_t size),   (path, size))
WRAP(kFailSize, int, -1, truncate64,    (const char* path, off64_t size), (path, size))
WRAP(kFailSize, int, -1, ftruncate,     (int descriptor, off_t size),     (descriptor, size))
WRAP(kFailSize, int, -1, ftruncate64,   (int descriptor, off64_t size),   (descriptor, size))
WRAP_RESULT(kFailSize, posix_fallocate,   (int descriptor, off_t at, off_t size),     (descriptor, at, size))
WRAP_RESULT(kFailSize, posix_fallocate64, (int descriptor, off64_t at, off64_t size), (descriptor, at, size))
WRAP(kFailSync, int, -1, fsync,     (int descriptor), (descriptor))
WRAP(kFailSync, int, -1, fdatasync, (int descriptor), (descriptor))

WRAP(kFailAdopt, FILE*, NULL, fdopen,   (int descriptor, const char* mode), (descriptor, mode))
WRAP(kFailAdopt, DIR*, NULL, fdopendir, (int descriptor), (descriptor))

WRAP(kFailStat, int, -1, stat,      (const char* path, struct stat* status),     (path, status))
WRAP(kFailStat, int, -1, stat64,    (const char* path, struct stat64* status),   (path, status))
WRAP(kFailStat, int, -1, lstat,     (const char* path, struct stat* status),     (path, status))
WRAP(kFailStat, int, -1, lstat64,   (const char* path, struct stat64* status),   (path, status))
WRAP(kFailStat, int, -1, fstat,     (int descriptor, struct stat* status),       (descriptor, status))
WRAP(kFailStat, int, -1, fstat64,   (int descriptor, struct stat64* status),     (descriptor, status))
WRAP(kFailStat, int, -1, fstatat,   (int folder, const char* path, struct stat* status, int flags),
     (folder, path, status, flags))
WRAP(kFailStat, int, -1, fstatat64, (int folder, const char* path, struct stat64* status, int flags),
     (folder, path, status, flags))
WRAP(kFailStat, int, -1, statx,
     (int folder, const char* path, int flags, unsigned mask, struct statx* status),
     (folder, path, flags, mask, status))
WRAP(kFailStatVolume, int, -1, statfs,     (const char* path, struct statfs* status),     (path, status))
WRAP(kFailStatVolume, int, -1, statfs64,   (const char* path, struct statfs64* status),   (path, status))
WRAP(kFailStatVolume, int, -1, fstatfs,    (int descriptor, struct statfs* status),       (descriptor, status))
WRAP(kFailStatVolume, int, -1, fstatfs64,  (int descriptor, struct statfs64* status),     (descriptor, status))
WRAP(kFailStatVolume, int, -1, statvfs,    (const char* path, struct statvfs* status),    (path, status))
WRAP(kFailStatVolume, int, -1, statvfs64,  (const char* path, struct statvfs64* status),  (path, status))
WRAP(kFailStatVolume, int, -1, fstatvfs,   (int descriptor, struct statvfs* status),      (descriptor, status))
WRAP(kFailStatVolume, int, -1, fstatvfs64, (int descriptor, struct statvfs64* status),    (descriptor, status))
WRAP(kFailAccess, int, -1, access,    (const char* path, int rights), (path, rights))
WRAP(kFailAccess, int, -1, faccessat, (int folder, const char* path, int rights, int flags),
     (folder, path, rights, flags))
WRAP(kFailResolve, ssize_t, -1, readlink,   (const char* path, char* target, size_t room), (path, target, room))
WRAP(kFailResolve, ssize_t, -1, readlinkat, (int folder, const char* path, char* target, size_t room),
     (folder, path, target, room))
WRAP(kFailResolve, char*, NULL, realpath,   (const char* path, char* resolved), (path, resolved))

WRAP(kFailMakeFolder, int, -1, mkdir,     (const char* path, mode_t mode),             (path, mode))
WRAP(kFailMakeFolder, int, -1, mkdirat,   (int folder, const char* path, mode_t mode), (folder, path, mode))
WRAP(kFailRemoveFolder, int, -1, rmdir,   (const char* path), (path))
WRAP(kFailUnlink, int, -1, unlink,        (const char* path), (path))
WRAP(kFailUnlink, int, -1, remove,        (const char* path), (path))
WRAP((flags & AT_REMOVEDIR) != 0 ? kFailRemoveFolder : kFailUnlink, int, -1,
     unlinkat,  (int folder, const char* path, int flags), (folder, path, flags))
WRAP(kFailRename, int, -1, rename,    (const char* from, const char* to), (from, to))
WRAP(kFailRename, int, -1, renameat,  (int fromFolder, const char* from, int toFolder, const char* to),
     (fromFolder, from, toFolder, to))
WRAP(kFailRename, int, -1, renameat2,
     (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags),
     (fromFolder, from, toFolder, to, flags))
WRAP(kFailLink, int, -1, link,    (const char* from, const char* to), (from, to))
WRAP(kFailLink, int, -1, linkat,
     (int fromFolder, const char* from, int toFolder, const char* to, int flags),
     (fromFolder, from, toFolder, to, flags))
WRAP(kFailSymlink, int, -1, symlink,   (const char* target, const char* path), (target, path))
WRAP(kFailSymlink, int, -1, symlinkat, (const char* target, int folder, const char* path),
     (target, folder, path))
WRAP(kFailMode, int, -1, chmod,    (const char* path, mode_t mode), (path, mode))
WRAP(kFailMode, int, -1, fchmod,   (int descriptor, mode_t mode),   (descriptor, mode))
WRAP(kFailMode, int, -1, fchmodat, (int folder, const char* path, mode_t mode, int flags),
     (folder, path, mode, flags))
WRAP(kFailTimes, int, -1, utimensat,
     (int folder, const char* path, const struct timespec times[2], int flags),
     (folder, path, times, flags))
WRAP(kFailTimes, int, -1, futimens, (int descriptor, const struct timespec times[2]), (descriptor, times))

WRAP_RESULT(kFailSpawn, posix_spawn,
    (pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
     const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]),
    (child, path, actions, attributes, arguments, environment))
WRAP_RESULT(kFailSpawn, posix_spawnp,
    (pid_t* child, const char* name, const posix_spawn_file_actions_t* actions,
     const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]),
    (child, name, actions, attributes, arguments, environment))
WRAP(kFailWait, pid_t, -1, waitpid, (pid_t child, int* status, int options), (child, status, options))
// clang-format on

EXPORT struct dirent* readdir(DIR* folder)
{
    FIND_NEXT(struct dirent*, readdir, (DIR*))
    const bool chosen = _isChosen(kFailReadFolder);
    if (chosen && s_plan.mode == kFailWithError) {
        errno = s_plan.error;
        return NULL;
    }
    static struct dirent* before; // of the one folder that is read under such a plan
    if (chosen && s_plan.mode == kFailRepeat && before != NULL) {
        return before;
    }
    struct dirent* const entry = next(folder);
    before = entry;
    if (chosen && s_plan.mode == kFailUntyped && entry != NULL) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}

// The same type under two names.
EXPORT struct dirent64* readdir64(DIR* folder) { return (struct dirent64*)readdir(folder); }

EXPORT int ioctl(int descriptor, unsigned long request, ...)
{
    FIND_NEXT(int, ioctl, (int, unsigned long, ...))
    va_list list;
    va_start(list, request);
    void* const argument = va_arg(list, void*);
    va_end(list);
    return _fails(kFailFlags) ? -1 : next(descriptor, request, argument);
}

static unsigned _groupOf(long number)
{
    switch (number) {
    case SYS_openat:
        return kFailOpen;
    case SYS_statx:
        return kFailStat;
    case SYS_copy_file_range:
        return kFailCopy;
    case SYS_renameat2:
        return kFailRename;
    default:
        return 0;
    }
}

/// Some libraries make calls that are younger than they are by number.
EXPORT long syscall(long number, ...)
{
    FIND_NEXT(long, syscall, (long, ...))
    long a[6];
    va_list list;
    va_start(list, number);
    for (int i = 0; i < 6; ++i) {
        a[i] = va_arg(list, long);
    }
    va_end(list);
    size_t count = number == SYS_copy_file_range ? (size_t)a[4] : 0;
    if (_failsOrShortens(_groupOf(number), &count)) {
        return -1;
    }
    if (number == SYS_copy_file_range) {
        a[4] = (long)count;
    }
    return next(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

// The C library's own names for its heap; dlsym takes memory itself. A sanitizer has another heap.
#ifndef FAILING_CALLS_WITHOUT_MEMORY
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);

EXPORT void* malloc(size_t size) { return _fails(kFailMemory) ? NULL : __libc_malloc(size); }

EXPORT void* calloc(size_t count, size_t size)
{
    return _fails(kFailMemory) ? NULL : __libc_calloc(count, size);
}

EXPORT void* realloc(void* memory, size_t size)
{
    return _fails(kFailMemory) ? NULL : __libc_realloc(memory, size);
}
#endif
