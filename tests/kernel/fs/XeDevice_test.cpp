#include "XeDevice.h"

#include "fs/XeDevicePlatform.h"

#include <gtest/gtest.h>

namespace {

constexpr auto kFailure = static_cast<XeResult>(0x80000008);

TEST(ReaderType, IsKnownByVendorAndModel)
{
    const struct {
        const char* vendor;
        const char* model;
        int type;
    } rows[] = {
        {"VANTA", "Card Reader", 16},      {"VANTA   ", "Card Reader Pro ", 16},
        {"VANTA", "Multi_Reader", 17},     {"VANTA", "Multi_Reader_4__", 17},
        {"VANTA", "Disc Drive      ", 18},
    };
    for (const auto& row : rows) {
        const auto type = XeDevice::_readerType(row.vendor, row.model);
        ASSERT_TRUE(type) << row.model;
        EXPECT_EQ(*type, row.type) << row.model;
    }
}

TEST(ReaderType, OthersHaveNone)
{
    EXPECT_FALSE(XeDevice::_readerType("", ""));
    EXPECT_FALSE(XeDevice::_readerType("Generic", "Card Reader"));
    EXPECT_FALSE(XeDevice::_readerType("VANTA", "Card"));
    EXPECT_FALSE(XeDevice::_readerType("VANTA", ""));
    EXPECT_FALSE(XeDevice::_readerType("vanta", "Card Reader"));
}

TEST(DeviceOfAVolume, ThatCannotBeLookedUpIsAFailure)
{
    for (const wchar_t* path :
         {L"/no such folder/file", L"", L"/\xD800", static_cast<const wchar_t*>(nullptr)}) {
        std::string name = "before";
        EXPECT_EQ(XeDevice::getBSDName(path, name), kFailure);
        EXPECT_EQ(name, "");
        auto type = static_cast<EVolumeMediaType>(7);
        EXPECT_EQ(XeDevice::getUSBDeviceType(path, type), kFailure);
        EXPECT_EQ(type, 7);
    }
}

TEST(EjectVolumeOfAText, ThatNamesNoFileFails)
{
    for (const wchar_t* path : {L"", L"/no such folder", L"/\xD800", L"relative"}) {
        EXPECT_EQ(XeDevice::ejectVolume(path), kFailure);
    }
}

} // namespace
