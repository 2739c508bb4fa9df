#ifndef __APPLE__
#error "for macOS only"
#endif

#include "XeDevice.h"

#include "XeSafeCRT.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/XeDevicePlatform.h"

#import <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>
#include <DiskArbitration/DiskArbitration.h>
#include <IOKit/IOKitLib.h>
#include <mach/mach_error.h>
#include <sys/mount.h>
#include <sys/param.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

// The File Manager is the only interface that tells a volume's device and ejects synchronously.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace XeDevice {
namespace {

/// Owner of an object that a Create or Copy function has given; null for none.
template <typename Reference>
class Owned {
public:
    explicit Owned(Reference object) : m_object(object) {}
    ~Owned()
    {
        if (m_object != nullptr) {
            CFRelease(m_object);
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    explicit operator bool() const { return m_object != nullptr; }
    Reference get() const { return m_object; }

private:
    const Reference m_object;
};

/// Owner of a port to an object of I/O Kit; 0 for none.
class Port {
public:
    explicit Port(io_object_t object) : m_object(object) {}
    ~Port()
    {
        if (m_object != 0) {
            IOObjectRelease(m_object);
        }
    }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    explicit operator bool() const { return m_object != 0; }
    io_object_t get() const { return m_object; }

private:
    const io_object_t m_object;
};

/// The File Manager's number of the volume that holds a path.
std::optional<FSVolumeRefNum> _volumeOf(const std::optional<std::string>& path)
{
    FSRef item;
    FSCatalogInfo info;
    if (!path ||
        FSPathMakeRef(reinterpret_cast<const UInt8*>(path->c_str()), &item, nullptr) != noErr ||
        FSGetCatalogInfo(&item, kFSCatInfoVolume, &info, nullptr, nullptr, nullptr) != noErr) {
        return std::nullopt;
    }
    return info.volume;
}

/// Empty for a volume without a device.
std::string _deviceOf(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer parameters{};
    constexpr int kFirstVersionWithDevice = 4;
    if (FSGetVolumeParms(volume, &parameters, sizeof parameters) != noErr ||
        parameters.vMVersion < kFirstVersionWithDevice || parameters.vMDeviceID == nullptr) {
        return {};
    }
    return static_cast<const char*>(parameters.vMDeviceID);
}

XeResult _getBSDName(wchar_t const* path, std::string& bsdName)
{
    bsdName.clear();
    const auto volume = _volumeOf(localPath(path));
    bsdName = volume ? _deviceOf(*volume) : std::string();
    return bsdName.empty() ? kXeGeneralFailure : kXeOk;
}

std::string _text(CFDictionaryRef description, CFStringRef key)
{
    NSString* const text = [(NSDictionary*)description objectForKey:(NSString*)key];
    const char* const bytes = [text UTF8String];
    return bytes == nullptr ? std::string() : bytes;
}

/// The media type of a reader of the product family that is the device.
std::optional<EVolumeMediaType> _readerTypeOf(const std::string& bsdName)
{
    const Owned session(DASessionCreate(kCFAllocatorDefault));
    const Owned disk(
        session ? DADiskCreateFromBSDName(kCFAllocatorDefault, session.get(), bsdName.c_str())
                : nullptr);
    const Owned description(disk ? DADiskCopyDescription(disk.get()) : nullptr);
    return description ? _readerType(_text(description.get(), kDADiskDescriptionDeviceVendorKey),
                                     _text(description.get(), kDADiskDescriptionDeviceModelKey))
                       : std::nullopt;
}

XeResult _getUSBDeviceType(wchar_t const* path, EVolumeMediaType& type)
{
    @autoreleasepool {
        std::string bsdName;
        const auto volume = _volumeOf(localPath(path));
        if (volume && _getBSDName(path, bsdName) >= 0) {
            type = _readerTypeOf(bsdName).value_or(type);
        }
        return volume ? kXeOk : kXeGeneralFailure;
    }
}

/// True for a path on which a volume is mounted, not one inside it nor a link.
bool _isMountPoint(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    struct statfs volume;
    return path != "/" && statfs(path.c_str(), &volume) == 0 && path == volume.f_mntonname;
}

XeResult _ejectVolume(const std::optional<std::string>& path)
{
    const auto volume = path && _isMountPoint(*path) ? _volumeOf(path) : std::nullopt;
    return volume && FSEjectVolumeSync(*volume, 0, nullptr) == noErr ? kXeOk : kXeGeneralFailure;
}

[[noreturn]] void _throwText(kern_return_t error)
{
    throw std::logic_error(mach_error_string(error));
}

/// Copies the hardware address of an interface's controller; false when it has none.
bool _copyAddress(io_object_t interface, std::array<unsigned char, 6>& address)
{
    io_object_t parent = 0;
    IORegistryEntryGetParentEntry(interface, "IOService", &parent);
    const Port controller(parent);
    const Owned property(controller ? IORegistryEntryCreateCFProperty(controller.get(),
                                                                      CFSTR("IOMACAddress"),
                                                                      kCFAllocatorDefault, 0)
                                    : nullptr);
    NSData* const bytes = (NSData*)property.get();
    if (![bytes isKindOfClass:[NSData class]] || [bytes length] < address.size()) {
        return false;
    }
    [bytes getBytes:address.data() length:address.size()];
    return true;
}

} // namespace

XeResult getBSDName(wchar_t const* path, std::string& bsdName)
{
    return noThrow(kXeGeneralFailure, [&] { return _getBSDName(path, bsdName); });
}

XeResult getUSBDeviceType(wchar_t const* path, EVolumeMediaType& type)
{
    return noThrow(kXeGeneralFailure, [&] { return _getUSBDeviceType(path, type); });
}

XeResult ejectVolume(_XeString<wchar_t> const& mountPoint)
{
    return noThrow(kXeGeneralFailure, [&] { return _ejectVolume(localPath(mountPoint.c_str())); });
}

// Of the Ethernet interfaces the machine's own one carries the mark of the primary one.
void findNetworkInterfaces(unsigned int* iterator)
{
    static_assert(std::is_same_v<io_iterator_t, unsigned int>);
    @autoreleasepool {
        *iterator = 0;
        const CFMutableDictionaryRef matching = IOServiceMatching("IOEthernetInterface");
        if (matching == nullptr) {
            _throwText(KERN_RESOURCE_SHORTAGE);
        }
        NSDictionary* const primary =
            [NSDictionary dictionaryWithObject:[NSNumber numberWithBool:YES]
                                        forKey:@"IOPrimaryInterface"];
        [(NSMutableDictionary*)matching setObject:primary forKey:@"IOPropertyMatch"];
        // Takes the dictionary over.
        const kern_return_t error = IOServiceGetMatchingServices(0, matching, iterator);
        if (error != KERN_SUCCESS) {
            _throwText(error);
        }
    }
}

XeResult getMacAddress(std::array<unsigned char, 6>& address)
{
    @autoreleasepool {
        unsigned int found = 0;
        findNetworkInterfaces(&found);
        const Port interfaces(found);
        while (const Port interface{IOIteratorNext(interfaces.get())}) {
            if (_copyAddress(interface.get(), address)) {
                return kXeOk;
            }
        }
        return kXeGeneralFailure;
    }
}

} // namespace XeDevice
