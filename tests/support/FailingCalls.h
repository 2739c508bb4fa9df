#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <stdbool.h>

// Calls of the C library that fail when a test wants them to. A program that links the library
// `failing_calls` before any other gets them in place of the real ones, for itself and for every
// library it uses, since each resolves its calls at run time; what the C library calls within
// itself is not reached.

#ifdef __cplusplus
extern "C" {
#endif

// clang-format off
/// Groups of functions. A call counts when its group is in the plan.
enum FailingCall {
    kFailOpen         = 1 << 0,   // open, openat, fopen, opendir
    kFailClose        = 1 << 1,   // close, fclose; they fail once the descriptor is closed
    kFailRead         = 1 << 2,   // read, pread, readv
    kFailWrite        = 1 << 3,   // write, pwrite, writev
    kFailCopy         = 1 << 4,   // copy_file_range, sendfile
    kFailSize         = 1 << 5,   // truncate, ftruncate, posix_fallocate
    kFailSync         = 1 << 6,   // fsync, fdatasync
    kFailAdopt        = 1 << 7,   // fdopen, fdopendir
    kFailReadFolder   = 1 << 8,   // readdir
    kFailStat         = 1 << 9,   // stat, lstat, fstat, fstatat, statx
    kFailStatVolume   = 1 << 10,  // statfs, fstatfs, statvfs, fstatvfs
    kFailAccess       = 1 << 11,  // access, faccessat
    kFailResolve      = 1 << 12,  // readlink, readlinkat, realpath
    kFailMakeFolder   = 1 << 13,  // mkdir, mkdirat
    kFailRemoveFolder = 1 << 14,  // rmdir, unlinkat of a folder
    kFailUnlink       = 1 << 15,  // unlink, unlinkat of anything else, remove
    kFailRename       = 1 << 16,  // rename, renameat, renameat2
    kFailLink         = 1 << 17,  // link, linkat
    kFailSymlink      = 1 << 18,  // symlink, symlinkat
    kFailMode         = 1 << 19,  // chmod, fchmod, fchmodat
    kFailTimes        = 1 << 20,  // utimensat, futimens
    kFailFlags        = 1 << 21,  // ioctl
    kFailSpawn        = 1 << 22,  // posix_spawn, posix_spawnp
    kFailWait         = 1 << 23,  // waitpid
    kFailMemory       = 1 << 24,  // malloc, calloc, realloc, and so operator new; not under a sanitizer
    kFailAll          = (1 << 24) - 1 // but memory
};

/// What happens to the call that was chosen.
enum FailingCallMode {
    kFailWithError,   // it does nothing and fails
    kFailShort,       // it moves half of what it was asked to; only kFailRead, kFailWrite, kFailCopy
    kFailUntyped,     // it does not tell the entry's type; only kFailReadFolder
    kFailRepeat,      // it tells of the entry before once more; only kFailReadFolder
    kFailMeanwhile    // it does what it should, but only after `meanwhile`
};
// clang-format on

struct FailingCallPlan {
    unsigned functions; // FailingCall bits
    unsigned long nth;  // of the calls of those functions, from 1; 0 only counts
    int error;          // errno, or the result of functions that give it so
    enum FailingCallMode mode;
    bool onwards;            // all calls after it too
    void (*meanwhile)(void); // what another program does before the call; its calls do not count
};

/// Counts calls from here on, those of all threads. One plan at a time.
void armFailingCalls(const struct FailingCallPlan* plan);

/// Ends the plan. Returns how many calls were counted.
unsigned long disarmFailingCalls(void);

#ifdef __cplusplus
}
#endif
