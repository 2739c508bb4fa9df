#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "fs/MountTable.linux.h"

#include <string>

/// The ways to unmount a volume. Each gives true when nothing is mounted there any more. [any]
struct EjectWays {
    bool (*asFuseUser)(const Mount&); ///< Only of a FUSE mount of this user.
    bool (*asRoot)(const Mount&);
    bool (*asDesktop)(const Mount&); ///< Ejects the medium too, where it has one.
};

/// The system's: fusermount3(1), umount2(2), the disk service on the system bus.
extern const EjectWays kEjectWays;

/// Tries the ways in this order, the first only where it fits, until one succeeds. The root of the
/// file system is never unmounted.
bool ejectMount(const Mount& mount, const EjectWays& ways = kEjectWays);

/// True for a FUSE mount that `user` has made.
bool isFuseMountOf(const Mount& mount, unsigned user);
