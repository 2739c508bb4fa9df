#include "fs/XeDevicePlatform.h"

#include <algorithm>
#include <string>

namespace XeDevice {
namespace {

// clang-format off
/// The readers by what they say of themselves, which is at most 8 and 16 characters long (SCSI
/// INQUIRY).
constexpr struct { std::string_view vendor; std::string_view model; EVolumeMediaType type; }
    kReaders[] = {
    {"VANTA", "Card Reader",      kVolumeCardReader},
    {"VANTA", "Card Reader Pro",  kVolumeCardReader},
    {"VANTA", "Multi Reader",     kVolumeMultiCardReader},
    {"VANTA", "Multi Reader 4",   kVolumeMultiCardReader},
    {"VANTA", "Disc Drive",       kVolumeDiscDrive},
};
// clang-format on

std::string _plain(std::string_view text)
{
    std::string plain(text);
    std::replace(plain.begin(), plain.end(), '_', ' ');
    plain.erase(plain.find_last_not_of(' ') + 1);
    return plain;
}

} // namespace

std::optional<EVolumeMediaType> _readerType(std::string_view vendor, std::string_view model)
{
    const auto* const found =
        std::find_if(std::begin(kReaders), std::end(kReaders), [&](const auto& reader) {
            return _plain(vendor) == reader.vendor && _plain(model) == reader.model;
        });
    return found == std::end(kReaders) ? std::nullopt : std::optional(found->type);
}

} // namespace XeDevice
