#include "Applications/Device/DeviceNames.h"

#include <gtest/gtest.h>

using namespace farview;

TEST(DeviceNames, MakeAHostNameReadable)
{
    EXPECT_EQ(readableDeviceName("living-room"), "Living Room");
    EXPECT_EQ(readableDeviceName("studio_pc.example.org"), "Studio Pc");
    EXPECT_EQ(readableDeviceName("X1"), "X1");
    EXPECT_EQ(readableDeviceName("--a--b--"), "A B");
}

TEST(DeviceNames, HaveANameForAComputerWithoutOne)
{
    EXPECT_EQ(readableDeviceName(""), "Computer");
    EXPECT_EQ(readableDeviceName("---"), "Computer");
    EXPECT_EQ(readableDeviceName(".local"), "Computer");
}

TEST(DeviceNames, StayWithinWhatCanBeAnnounced)
{
    EXPECT_TRUE(isDeviceName(readableDeviceName(std::string(300, 'a'))));
    EXPECT_TRUE(isHostLabel(ownDeviceHostName(std::string(300, 'a'), "id", "name")));
    EXPECT_TRUE(isHostLabel(ownDeviceHostName("", "id", "name")));
    EXPECT_TRUE(isHostLabel(ownDeviceHostName("-Böse Maus-", "id", "name")));
}

TEST(DeviceNames, GiveTheDeviceAHostNameOfItsOwn)
{
    const std::string own = ownDeviceHostName("Studio.local", "machine", "Studio");
    EXPECT_TRUE(own.starts_with("studio-")) << own;
    EXPECT_EQ(own, ownDeviceHostName("Studio.local", "machine", "Studio")) << "stable";
    EXPECT_NE(own, ownDeviceHostName("Studio.local", "machine", "Desk")) << "of the device";
    EXPECT_NE(own, ownDeviceHostName("Studio.local", "other", "Studio")) << "of the machine";
}

TEST(DeviceNames, KnowWhatCanBeAnnounced)
{
    EXPECT_TRUE(isDeviceName("Büro 5"));
    EXPECT_TRUE(isDeviceName(std::string(63, 'x')));
    EXPECT_FALSE(isDeviceName(""));
    EXPECT_FALSE(isDeviceName(std::string(64, 'x')));
    EXPECT_FALSE(isDeviceName("a\nb"));
    EXPECT_FALSE(isDeviceName("\xFF"));
}

TEST(DeviceNames, KnowWhatAHostLabelIs)
{
    EXPECT_TRUE(isHostLabel("desk-7"));
    EXPECT_TRUE(isHostLabel("7"));
    EXPECT_FALSE(isHostLabel(""));
    EXPECT_FALSE(isHostLabel("-desk"));
    EXPECT_FALSE(isHostLabel("desk-"));
    EXPECT_FALSE(isHostLabel("desk.local"));
    EXPECT_FALSE(isHostLabel("schöner"));
    EXPECT_FALSE(isHostLabel(std::string(64, 'x')));
}
