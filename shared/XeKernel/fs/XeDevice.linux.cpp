#ifndef __linux__
#error "for Linux only"
#endif

#include "XeDevice.h"

#include "XeSafeCRT.h"
#include "fs/BlockDevice.linux.h"
#include "fs/Eject.linux.h"
#include "fs/LocalItem.h"
#include "fs/NetworkInterfaces.linux.h"
#include "fs/NoThrow.h"
#include "fs/XeDevicePlatform.h"

#include <optional>
#include <string>

namespace XeDevice {
namespace {

std::optional<Mount> _mountOf(const std::string& path)
{
    const auto place = findPlace(path);
    return place ? findMount(*place) : std::nullopt;
}

bool _eject(const std::string& mountPoint)
{
    const auto mount = isMountPoint(mountPoint) ? _mountOf(mountPoint) : std::nullopt;
    return mount && ejectMount(*mount);
}

XeResult _getBSDName(const std::string& path, std::string& bsdName)
{
    bsdName.clear();
    const auto mount = _mountOf(path);
    const auto device = mount ? BlockDevice::find(*mount) : std::nullopt;
    bsdName = device ? device->name() : std::string();
    return device ? kXeOk : kXeGeneralFailure;
}

XeResult _getUSBDeviceType(const std::string& path, EVolumeMediaType& type)
{
    const auto mount = _mountOf(path);
    if (const auto device = mount ? BlockDevice::find(*mount) : std::nullopt) {
        type = _readerType(device->vendor(), device->model()).value_or(type);
    }
    return mount ? kXeOk : kXeGeneralFailure;
}

} // namespace

XeResult getBSDName(wchar_t const* path, std::string& bsdName)
{
    return noThrow(kXeGeneralFailure, [&] { return _getBSDName(nativePath(path), bsdName); });
}

XeResult getUSBDeviceType(wchar_t const* path, EVolumeMediaType& type)
{
    return noThrow(kXeGeneralFailure, [&] { return _getUSBDeviceType(nativePath(path), type); });
}

XeResult ejectVolume(_XeString<wchar_t> const& mountPoint)
{
    const bool ejected = noThrow(false, [&] { return _eject(nativePath(mountPoint.c_str())); });
    return ejected ? kXeOk : kXeGeneralFailure;
}

void findNetworkInterfaces(unsigned int* iterator)
{
    const auto interfaces = networkInterfaces();
    *iterator = interfaces.empty() ? 0 : interfaces.front().index;
}

XeResult getMacAddress(std::array<unsigned char, 6>& address)
{
    const auto interfaces = networkInterfaces();
    if (interfaces.empty()) {
        return kXeGeneralFailure;
    }
    address = interfaces.front().address;
    return kXeOk;
}

} // namespace XeDevice
