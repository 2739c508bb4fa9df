#include "fs/BlockDevice.linux.h"

#include "XeSafeCRT.h"

#include <blkid.h>
#include <libudev.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string_view>

namespace fs = std::filesystem;

namespace {

struct Release {
    void operator()(blkid_struct_probe* probe) const { blkid_free_probe(probe); }
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
    void operator()(char* text) const { std::free(text); }
};

std::string _text(const char* text) { return text == nullptr ? std::string() : text; }

std::string _udevProperty(dev_t number, const char* name)
{
    const std::unique_ptr<udev, Release> context(udev_new());
    const std::unique_ptr<udev_device, Release> device(
        context == nullptr ? nullptr : udev_device_new_from_devnum(context.get(), 'b', number));
    return device == nullptr ? std::string()
                             : _text(udev_device_get_property_value(device.get(), name));
}

/// What the medium says; empty where this user may not read it.
std::string _probe(const std::string& node, const char* tag)
{
    const std::unique_ptr<blkid_struct_probe, Release> probe(
        blkid_new_probe_from_filename(node.c_str()));
    const char* value = nullptr;
    if (probe == nullptr ||
        blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_TYPE | BLKID_SUBLKS_LABEL) !=
            0 ||
        blkid_do_safeprobe(probe.get()) != 0 ||
        blkid_probe_lookup_value(probe.get(), tag, &value, nullptr) != 0) {
        return {};
    }
    return _text(value);
}

// The cache comes second: for two seconds it holds to the medium that was in the drive before.
std::string _blkidTag(const std::string& node, const char* tag)
{
    const std::string probed = _probe(node, tag);
    const std::unique_ptr<char, Release> cached(
        probed.empty() ? blkid_get_tag_value(nullptr, tag, node.c_str()) : nullptr);
    return probed.empty() ? _text(cached.get()) : probed;
}

/// First line of an attribute's file.
std::string _attribute(const fs::path& file)
{
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

/// Mounts of btrfs and some others tell a number that no device has; their source does.
dev_t _numberOf(const Mount& mount, const DeviceSources& sources)
{
    if (major(mount.device) != 0) {
        return mount.device;
    }
    struct stat status {};
    if (!mount.source.starts_with('/')) {
        return 0;
    }
    if (stat(mount.source.c_str(), &status) == 0 && S_ISBLK(status.st_mode)) {
        return status.st_rdev;
    }
    // A container may have the disk's mount without its node.
    const auto name = fs::path(mount.source).filename();
    const std::string number = _attribute(fs::path(sources.sysfs) / "class/block" / name / "dev");
    const std::size_t colon = number.find(':');
    return colon == std::string::npos
               ? 0
               : makedev(static_cast<unsigned>(std::atoi(number.c_str())),
                         static_cast<unsigned>(std::atoi(number.c_str() + colon + 1)));
}

/// Adds the whole disks that a device lies on: itself, the disk of a partition, those under a
/// mapped device.
void _addDrives(const fs::path& device, std::vector<fs::path>& drives)
{
    std::error_code error;
    const bool isPartition = fs::exists(device / "partition", error);
    const fs::path disk = isPartition ? device.parent_path() : device;
    const std::size_t before = drives.size();
    for (const auto& entry : fs::directory_iterator(disk / "slaves", error)) {
        const fs::path below = fs::canonical(entry.path(), error);
        if (!error) {
            _addDrives(below, drives);
        }
    }
    if (drives.size() == before) {
        drives.push_back(disk);
    }
}

/// True for a device in sysfs that can be pulled, and all that hangs on it with it. Soldered memory
/// is an "MMC" on the bus of the cards; ports for external devices are marked by the firmware.
bool _canBePulled(const fs::path& device)
{
    std::error_code error;
    const fs::path bus = fs::read_symlink(device / "subsystem", error).filename();
    return bus == "usb" || bus == "memstick" ||
           (bus == "mmc" && _attribute(device / "type") != "MMC") ||
           _attribute(device / "removable") == "removable";
}

bool _isRemovable(const fs::path& disk, const fs::path& sysfs)
{
    if (_attribute(disk / "removable") == "1") {
        return true;
    }
    std::error_code error;
    fs::path device = fs::canonical(disk / "device", error);
    while (!error && device != sysfs && device.has_relative_path()) {
        if (_canBePulled(device)) {
            return true;
        }
        device = device.parent_path();
    }
    return false;
}

/// Undoes the escapes that udev writes in labels: "\x20" for a blank.
std::string _unescaped(std::string_view text)
{
    constexpr std::size_t kEscapeLength = 4;
    std::string plain;
    while (!text.empty()) {
        const bool escaped = text.starts_with("\\x") && text.size() >= kEscapeLength;
        plain += escaped ? static_cast<char>(
                               std::strtol(std::string(text.substr(2, 2)).c_str(), nullptr, 16))
                         : text.front();
        text.remove_prefix(escaped ? kEscapeLength : 1);
    }
    return plain;
}

} // namespace

const DeviceSources kSystemDevices = {"/sys", _udevProperty, _blkidTag};

std::optional<BlockDevice> BlockDevice::find(const Mount& mount, const DeviceSources& sources)
{
    const dev_t number = _numberOf(mount, sources);
    const std::string name = std::to_string(major(number)) + ':' + std::to_string(minor(number));
    std::error_code error;
    fs::path folder = fs::canonical(fs::path(sources.sysfs) / "dev/block" / name, error);
    return error ? std::nullopt
                 : std::optional(BlockDevice(sources, number, mount.source, std::move(folder)));
}

BlockDevice::BlockDevice(const DeviceSources& sources, dev_t number, std::string node, Path folder)
    : m_sources(&sources), m_number(number), m_node(std::move(node)), m_folder(std::move(folder))
{
    _addDrives(m_folder, m_drives);
}

bool BlockDevice::isRemovable() const
{
    std::error_code error;
    const Path sysfs = fs::canonical(m_sources->sysfs, error);
    return std::any_of(m_drives.begin(), m_drives.end(),
                       [&](const Path& disk) { return _isRemovable(disk, sysfs); });
}

bool BlockDevice::isEjectable() const
{
    return m_sources->udevProperty(m_number, "ID_DRIVE_EJECTABLE") == "1";
}

std::string BlockDevice::_driveText(const char* property, const char* attribute) const
{
    const std::string text = m_sources->udevProperty(m_number, property);
    return text.empty() ? _attribute(m_drives.front() / "device" / attribute) : text;
}

std::string BlockDevice::fileSystemType() const
{
    const std::string type = m_sources->udevProperty(m_number, "ID_FS_TYPE");
    return type.empty() ? m_sources->blkidTag(m_node, "TYPE") : type;
}

std::string BlockDevice::label() const
{
    const std::string label = m_sources->udevProperty(m_number, "ID_FS_LABEL_ENC");
    return label.empty() ? m_sources->blkidTag(m_node, "LABEL") : _unescaped(label);
}
