#include "fs/Eject.linux.h"

#include "XeSafeCRT.h"
#include "fs/ChildProcess.linux.h"
#include "fs/DiskService.linux.h"

#include <libmount.h>
#include <sys/mount.h>
#include <unistd.h>

#include <string_view>

namespace {

bool _unmountAsFuseUser(const Mount& mount)
{
    return runChildProcess({"/usr/bin/fusermount3", "-u", mount.point}, "/") == 0;
}

bool _unmountAsRoot(const Mount& mount)
{
    return umount2(mount.point.c_str(), UMOUNT_NOFOLLOW) == 0;
}

bool _ejectAsDesktop(const Mount& mount) { return diskService::eject(mount.point); }

} // namespace

const EjectWays kEjectWays = {_unmountAsFuseUser, _unmountAsRoot, _ejectAsDesktop};

bool isFuseMountOf(const Mount& mount, unsigned user)
{
    const std::string_view type = mount.type;
    char* owner = nullptr;
    std::size_t length = 0;
    return (type == "fuse" || type == "fuseblk" || type.starts_with("fuse.")) &&
           mnt_optstr_get_option(mount.superOptions.c_str(), "user_id", &owner, &length) == 0 &&
           std::string_view(owner, length) == std::to_string(user);
}

// Unmounting "/" would make it read-only (umount(2)).
bool ejectMount(const Mount& mount, const EjectWays& ways)
{
    if (mount.point == "/") {
        return false;
    }
    return (isFuseMountOf(mount, geteuid()) && ways.asFuseUser(mount)) || ways.asRoot(mount) ||
           ways.asDesktop(mount);
}
