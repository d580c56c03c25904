#include "Applications/ScreenCapture/ConfirmedDevices.h"

#include "Platform/Fake/FakePreferences.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

class ConfirmedDevicesTest : public testing::Test
{
protected:
    void store(PropertyList value)
    {
        preferences.writeAsAnotherProcess(ConfirmedDevices::key, std::move(value),
                                          ConfirmedDevices::domain);
    }

    FakePreferences preferences;
    ConfirmedDevices devices{preferences};
};

TEST_F(ConfirmedDevicesTest, AreNoneAtFirst)
{
    EXPECT_FALSE(devices.contains("Desk", "desk.local"));
    EXPECT_EQ(preferences.setCount(), 0) << "asking writes nothing";
}

TEST_F(ConfirmedDevicesTest, AreKnownByNameAndHostTogether)
{
    devices.confirm("Desk", "desk.local");
    EXPECT_TRUE(devices.contains("Desk", "desk.local"));
    EXPECT_FALSE(devices.contains("Desk", "stranger.local"));
    EXPECT_FALSE(devices.contains("Sofa", "desk.local"));
}

TEST_F(ConfirmedDevicesTest, AreStoredAtOnceAndOutliveTheServer)
{
    devices.confirm("Desk", "desk.local");
    EXPECT_FALSE(preferences.hasPending(ConfirmedDevices::domain));
    ASSERT_TRUE(preferences.storedValue("confirmedDevices", "com.quillon.ScreenCapture"));
    EXPECT_TRUE(ConfirmedDevices(preferences).contains("Desk", "desk.local"));
}

TEST_F(ConfirmedDevicesTest, AreWrittenOnlyWhenSomethingChanges)
{
    devices.confirm("Desk", "desk.local");
    devices.confirm("Desk", "desk.local");
    EXPECT_EQ(preferences.writeCount(), 1);
}

TEST_F(ConfirmedDevicesTest, FollowANameToItsNewHost)
{
    devices.confirm("Desk", "desk.local");
    devices.confirm("Desk", "desk-2.local");
    EXPECT_TRUE(devices.contains("Desk", "desk-2.local"));
    EXPECT_FALSE(devices.contains("Desk", "desk.local"));
}

TEST_F(ConfirmedDevicesTest, ForgetTheOldestBeyondTheirNumber)
{
    for (std::size_t index = 0; index <= ConfirmedDevices::mostDevices; ++index)
        devices.confirm("Device " + std::to_string(index), "host.local");
    EXPECT_FALSE(devices.contains("Device 0", "host.local"));
    EXPECT_TRUE(devices.contains("Device 1", "host.local"));
    EXPECT_TRUE(
        devices.contains("Device " + std::to_string(ConfirmedDevices::mostDevices), "host.local"));
}

TEST_F(ConfirmedDevicesTest, SurviveAStoreThatHoldsSomethingElse)
{
    for (const PropertyList& odd :
         {PropertyList("text"), PropertyList(7),
          PropertyList(PropertyList::Array{
              7, "Desk", PropertyList::Array{}, PropertyList::Dictionary{{"DeviceName", 1}},
              PropertyList::Dictionary{{"HostName", "desk.local"}}})}) {
        store(odd);
        EXPECT_FALSE(devices.contains("Desk", "desk.local"));
        devices.confirm("Desk", "desk.local");
        EXPECT_TRUE(devices.contains("Desk", "desk.local"));
    }
}

TEST_F(ConfirmedDevicesTest, HoldWhileTheDiskIsFullAndAreStoredLater)
{
    preferences.setWritesFail(true);
    devices.confirm("Desk", "desk.local");
    EXPECT_TRUE(devices.contains("Desk", "desk.local"));
    preferences.setWritesFail(false);
    devices.confirm("Sofa", "sofa.local");
    EXPECT_FALSE(preferences.hasPending(ConfirmedDevices::domain));
    EXPECT_TRUE(ConfirmedDevices(preferences).contains("Desk", "desk.local"));
}

} // namespace
