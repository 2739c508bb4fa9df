#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

/// One mount of the process's name space, as proc_pid_mountinfo(5) tells it. Texts are bytes.
struct Mount {
    int id = 0;
    int parent = 0;   ///< Id of the mount that this one lies on.
    dev_t device = 0; ///< As stat(2) tells of its files; no disk's for btrfs, overlay and others.
    std::string root; ///< The folder of the file system that is mounted: "/", or another of a bind.
    std::string point;        ///< Where it is mounted.
    std::string type;         ///< "ext4", "fuse.sshfs"
    std::string source;       ///< A device, "server:/path", or any word.
    std::string options;      ///< Of this mount: "ro,nosuid"
    std::string superOptions; ///< Of the file system: "rw,user_id=1000"
};

/// What is mounted, at the moment of reading. [any]
class MountTable {
public:
    /// @param file  In the form of proc_pid_mountinfo(5).
    /// @return      Nothing when it cannot be read.
    static std::optional<MountTable> read(const std::string& file = "/proc/self/mountinfo");

    /// In the order they were mounted, hidden ones too.
    const std::vector<Mount>& mounts() const { return m_mounts; }

    /// Null when there is none.
    const Mount* find(int id) const;

    /// True when paths lead to it: no other mount lies over its root, nor over a folder above it.
    bool isVisible(const Mount& mount) const;

private:
    bool _isReachable(const Mount& mount) const;

    std::vector<Mount> m_mounts;
};

/// Where a path leads, links followed.
struct Place {
    std::string path; ///< Without links.
    int mountId = 0;
};

/// Finds the place of a path. Waits for no server, and finds the root of a volume whose server is
/// gone.
/// @param path  Bytes.
/// @return      Nothing for a path that cannot be looked up.
std::optional<Place> findPlace(const std::string& path);

/// The same, or that of the nearest parent when the path does not exist or when its volume does not
/// answer any more.
std::optional<Place> findNearestPlace(std::string path);

/// True when a volume is mounted at a path itself; a link to such a path is none.
bool isMountPoint(std::string path);

/// Where the volume of a place is mounted.
std::string mountPointOf(const Place& place);

/// The mount of a place; nothing when it has gone meanwhile.
std::optional<Mount> findMount(const Place& place);
