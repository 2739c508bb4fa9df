#include "fs/MountedVolume.linux.h"

#include <libmount.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <string_view>

namespace mountedVolume {
namespace {

using std::string_view;

// clang-format off
/// The kernel's name of a type, with or without "fuse." in front, and that of macOS.
constexpr struct { string_view name; string_view known; } kTypeNames[] = {
    {"vfat",      "msdos"},
    {"msdos",     "msdos"},
    {"umsdos",    "msdos"},
    {"hfsplus",   "hfs"},
    {"cifs",      "smbfs"},
    {"smb3",      "smbfs"},
    {"smbnetfs",  "smbfs"},
    {"nfs4",      "nfs"},
    {"ltfs",      "ltfs"},
};

/// Types of the network that libmount does not count among them, and folders of a virtual
/// machine's host.
constexpr string_view kMoreNetworkTypes[] = {
    "afpfs",
    "beegfs",
    "ceph",
    "fuse.afpfs",
    "fuse.ceph",
    "fuse.gcsfuse",
    "fuse.glusterfs",
    "fuse.gvfsd-fuse",      // the shares that the desktop has mounted
    "fuse.rclone",
    "fuse.s3fs",
    "fuse.smbnetfs",
    "fuse.vmhgfs-fuse",
    "lustre",
    "prl_fs",
    "vboxsf",
    "virtiofs",
    "vmhgfs",
};

/// Folders in which the system mounts for itself, and those in them where it mounts for users.
constexpr string_view kSystemFolders[] = {"/boot", "/dev", "/efi", "/proc", "/run", "/snap", "/sys",
                                          "/var/lib", "/var/snap"};
constexpr string_view kUserFolders[]   = {"/run/media"};

/// Images that programs are kept in. They are read-only by nature and no medium.
constexpr string_view kImageTypes[] = {"cramfs", "erofs", "fuse.snapfuse", "squashfs"};
// clang-format on

template <typename Range>
bool _contains(const Range& texts, string_view text)
{
    return std::find(std::begin(texts), std::end(texts), text) != std::end(texts);
}

string_view _withoutFuse(string_view type)
{
    constexpr string_view kPrefix = "fuse.";
    return type.starts_with(kPrefix) ? type.substr(kPrefix.size()) : type;
}

bool _isAtOrBelow(string_view path, string_view folder)
{
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

template <typename Range>
bool _isAtOrBelowOne(const Range& folders, string_view path)
{
    return std::any_of(std::begin(folders), std::end(folders),
                       [&](string_view folder) { return _isAtOrBelow(path, folder); });
}

/// True for a single file over which another is mounted.
bool _isFile(const Mount& mount)
{
    struct statx status {};
    return mount.root != "/" &&
           statx(AT_FDCWD, mount.point.c_str(), AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, STATX_TYPE,
                 &status) == 0 &&
           !S_ISDIR(status.stx_mode);
}

/// The root counts whatever it is made of: an overlay where the system runs from a read-only image.
bool _isForUsers(const Mount& mount)
{
    if (mount.point == "/") {
        return true;
    }
    const bool atSystemPlace =
        _isAtOrBelowOne(kSystemFolders, mount.point) && !_isAtOrBelowOne(kUserFolders, mount.point);
    const bool pseudo = mnt_fstype_is_pseudofs(mount.type.c_str()) != 0 && !isNetwork(mount);
    return !atSystemPlace && !pseudo && !_contains(kImageTypes, mount.type) &&
           mount.type != "fuse.gvfsd-fuse" && !_isFile(mount);
}

/// The URL in a source, as file systems of their own kind have it: "curlftpfs#ftp://host/".
string_view _urlIn(string_view source)
{
    const std::size_t colon = source.find("://");
    std::size_t begin = colon == string_view::npos ? 0 : colon;
    while (begin > 0 && std::isalpha(static_cast<unsigned char>(source[begin - 1])) != 0) {
        --begin;
    }
    return colon == string_view::npos || begin == colon ? string_view() : source.substr(begin);
}

/// Bytes that are no part of a URL's host or path stand in it as "%20" (RFC 3986).
std::string _escaped(string_view bytes)
{
    constexpr string_view kPlain = "-._~!$&'()*+,;=:@/[]";
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string escaped;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 &&
            (std::isalnum(byte) != 0 || kPlain.find(character) != string_view::npos)) {
            escaped += character;
        } else {
            escaped += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
        }
    }
    return escaped;
}

/// "host:/path" and "[fe80::1]:/path" as a URL; a path that is relative lies in the user's home.
std::string _urlOfHostAndPath(string_view scheme, string_view source)
{
    const std::size_t bracket = source.find(']');
    const std::size_t colon = source.find(':', bracket == string_view::npos ? 0 : bracket);
    if (colon == 0 || colon == string_view::npos) {
        return {};
    }
    const string_view path = source.substr(colon + 1);
    return std::string(scheme) + _escaped(source.substr(0, colon)) +
           (path.starts_with('/') ? "" : "/") + _escaped(path);
}

} // namespace

std::string typeName(const Mount& mount, const DeviceSources& devices)
{
    const auto device = mount.type == "fuseblk" ? BlockDevice::find(mount, devices) : std::nullopt;
    const std::string onDevice = device ? device->fileSystemType() : std::string();
    const std::string& type = onDevice.empty() ? mount.type : onDevice;
    const string_view plain = _withoutFuse(type);
    for (const auto& row : kTypeNames) {
        if (plain == row.name) {
            return std::string(row.known);
        }
    }
    return XeFileSystem::formatOfTypeName(plain) ? std::string(plain) : type;
}

// What has a URL for its source comes from another machine, as WebDAV's plain "fuse" does.
bool isNetwork(const Mount& mount)
{
    return mnt_fstype_is_netfs(mount.type.c_str()) != 0 ||
           _contains(kMoreNetworkTypes, mount.type) || !_urlIn(mount.source).empty();
}

XeFileSystem::VolumeTraits traits(const Mount& mount, const DeviceSources& devices)
{
    XeFileSystem::VolumeTraits traits;
    traits.local = !isNetwork(mount);
    const auto device = traits.local ? BlockDevice::find(mount, devices) : std::nullopt;
    if (device) {
        traits.removable = device->isRemovable();
        traits.ejectable = device->isEjectable();
        traits.internal = !traits.removable && !traits.ejectable;
    }
    return traits;
}

// The label names all of the volume, not a folder of it that is mounted by itself.
std::string displayName(const Mount& mount, const DeviceSources& devices)
{
    const auto device = mount.root == "/" ? BlockDevice::find(mount, devices) : std::nullopt;
    const std::string label = device ? device->label() : std::string();
    if (!label.empty() || mount.point == "/") {
        return label.empty() ? mount.point : label;
    }
    return mount.point.substr(mount.point.find_last_of('/') + 1);
}

std::string shareUrl(const Mount& mount)
{
    if (!isNetwork(mount)) {
        return {};
    }
    if (const string_view url = _urlIn(mount.source); !url.empty()) {
        return std::string(url);
    }
    const std::string type = typeName(mount);
    if (type == "smbfs" && mount.source.starts_with("//")) {
        return "smb:" + _escaped(mount.source);
    }
    if (type == "nfs") {
        return _urlOfHostAndPath("nfs://", mount.source);
    }
    return type == "fuse.sshfs" ? _urlOfHostAndPath("sftp://", mount.source) : std::string();
}

std::vector<Mount> userMounts(const MountTable& table)
{
    std::vector<Mount> mounts;
    std::copy_if(table.mounts().begin(), table.mounts().end(), std::back_inserter(mounts),
                 [&](const Mount& mount) { return table.isVisible(mount) && _isForUsers(mount); });
    return mounts;
}

} // namespace mountedVolume
