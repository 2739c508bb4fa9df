#include "fs/RemoteVolume.h"

#include "XeDevice.h"
#include "XeFileSystem.h"
#include "XeFileSystemManager.h"

namespace {

std::shared_ptr<void> _contextOf(const _XeString<wchar_t>& path)
{
    std::shared_ptr<void> context;
    int kind = 0;
    const bool found = XeFileSystem::getMountPointContext(path, context, kind) == kXeOk;
    return found && kind == kRemoteVolumeContext ? context : nullptr;
}

} // namespace

RemoteVolume::RemoteVolume(_XeString<wchar_t> path)
    : m_path(std::move(path)),
      m_fileSystem(std::static_pointer_cast<xenon::network::IFileSystem>(_contextOf(m_path)))
{
}

XeResult RemoteVolume::ended(XeResult result) const
{
    _XeString<wchar_t> mountPoint;
    // A context may stand for a folder on which nothing is mounted (any more). The volume around it
    // is not the one that is gone.
    if (result == kXeRemoteVolumeGone &&
        XeFileSystem::getVolumeMountPoint(m_path, mountPoint) == kXeOk &&
        _contextOf(mountPoint) == m_fileSystem) {
        XeDevice::ejectVolume(mountPoint);
    }
    return result;
}
