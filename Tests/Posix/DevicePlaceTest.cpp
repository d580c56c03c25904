#include "Platform/Posix/Registry/DevicePlace.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(DevicePlace, AKindWithANumberSitsThere)
{
    EXPECT_EQ(devicePlace("PNP0C0F:02"), (DevicePlace{"PNP0C0F", "02"}));
    EXPECT_EQ(devicePlace("LNXSYSTM:00"), (DevicePlace{"LNXSYSTM", "00"}));
    EXPECT_EQ(devicePlace("pci0000:7f"), (DevicePlace{"pci0000", "7f"}));
}

TEST(DevicePlace, ANodeOfTheDeviceTreeSitsAtItsAddress)
{
    EXPECT_EQ(devicePlace("40003000.serial"), (DevicePlace{"serial", "40003000"}));
    EXPECT_EQ(devicePlace("fe201000.serial-bus"), (DevicePlace{"serial-bus", "fe201000"}));
}

TEST(DevicePlace, APCIFunctionSitsWhereItsAddressSays)
{
    EXPECT_EQ(devicePlace("0000:00:1f.2"), (DevicePlace{"pci", "0000:00:1f.2"}));
    EXPECT_EQ(devicePlace("10000:e1:00.0"), (DevicePlace{"pci", "10000:e1:00.0"}));
}

TEST(DevicePlace, AnyOtherFolderIsTheNameOfADeviceWithoutAPlace)
{
    for (const char* folder : {"",
                               ":",
                               ".",
                               "platform",
                               "cpu0",
                               "1-1.2:1.0",
                               "usb1",
                               "i2c-0",
                               "0:0:0:0",
                               "pci0000:",
                               ":00",
                               "input3::capslock",
                               "serial8250.0",
                               "eth0.100",
                               "abc.serial",
                               "40003000.",
                               "0000:00:1g.2",
                               "0000:00:1f-2",
                               "000:00:1f.2",
                               "0000:00:1f.2:pcie001",
                               "00:00",
                               "a:b:c"})
        EXPECT_EQ(devicePlace(folder), (DevicePlace{folder, std::nullopt})) << folder;
}

} // namespace
} // namespace farview
