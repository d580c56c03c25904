#include "Applications/Doctor/DevicesProbe.h"

#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Platform/Fake/FakePlatform.h"
#include "Platform/Fake/FakePreferences.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTcpServer>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = DeviceAnswer::Kind;

namespace
{

class DevicesProbeTest : public testing::Test
{
protected:
    void start()
    {
        probe = std::make_shared<DevicesProbe>(fake.discovery, fake.runLoop, DevicesProbe::Times{});
        probe->start([this](std::vector<DeviceFact> found, std::size_t others) {
            ++endings;
            devices = std::move(found);
            more = others;
        });
    }
    /// Both clocks go on until the probe has ended: the network's answers come by the real one.
    bool ends()
    {
        return waitUntil([this] {
            fake.runLoop.advance(Duration(0.1));
            return endings > 0;
        });
    }
    void examine()
    {
        start();
        ASSERT_TRUE(ends());
    }
    FakeDevice device(const std::string& name, std::vector<Endpoint> endpoints = {})
    {
        FakeDevice made{name, name + ".local"};
        made.endpoints = std::move(endpoints);
        return made;
    }

    FakePlatform fake;
    std::shared_ptr<DevicesProbe> probe;
    std::vector<DeviceFact> devices;
    std::size_t more = 0;
    int endings = 0;
};

TEST_F(DevicesProbeTest, EndsAfterItsSearchWhenNothingIsThere)
{
    start();
    fake.runLoop.advance(Duration(2.9));
    EXPECT_EQ(endings, 0);
    fake.runLoop.advance(Duration(0.2));
    EXPECT_EQ(endings, 1);
    EXPECT_THAT(devices, IsEmpty());
}

TEST_F(DevicesProbeTest, AsksEachDeviceItSees)
{
    QTcpServer mute;
    ASSERT_TRUE(mute.listen(QHostAddress::LocalHost, 0));
    fake.discovery.announce(
        {device("Mute", {{"127.0.0.1", mute.serverPort(), 0}}), device("Lost")});
    examine();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[0].name, "Mute");
    EXPECT_EQ(devices[0].hostName, "Mute.local");
    ASSERT_TRUE(devices[0].answer);
    EXPECT_EQ(devices[0].answer->kind, Kind::silent);
    ASSERT_TRUE(devices[1].answer);
    EXPECT_EQ(devices[1].answer->kind, Kind::noAddress);
}

TEST_F(DevicesProbeTest, TellsADeviceThatDoesNotResolve)
{
    auto dead = device("Dead");
    dead.resolve.outcome = FakeResolve::Outcome::never;
    fake.discovery.announce({dead});
    examine();
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_FALSE(devices[0].hostName);
    EXPECT_FALSE(devices[0].answer);
}

TEST_F(DevicesProbeTest, ReadsWhetherADeviceSaysThatItIsInUse)
{
    auto busy = device("Busy");
    busy.TXTRecord = {{kFVEConnectionStateKey, Data::fromText("Connected")}};
    fake.discovery.announce({busy});
    examine();
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_TRUE(devices[0].isInUse);
}

TEST_F(DevicesProbeTest, ForgetsADeviceThatSaysGoodbye)
{
    auto slow = device("Slow");
    slow.resolve.outcome = FakeResolve::Outcome::never;
    fake.discovery.announce({slow});
    start();
    fake.runLoop.advance(Duration(0.5));
    fake.discovery.remove({"Slow"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(devices, IsEmpty());
}

TEST_F(DevicesProbeTest, CountsDevicesBeyondItsBound)
{
    std::vector<FakeDevice> crowd;
    for (std::size_t i = 0; i < DevicesProbe::mostDevices + 5; ++i)
        crowd.push_back(device("Desk " + std::to_string(i)));
    fake.discovery.announce(crowd);
    examine();
    EXPECT_EQ(devices.size(), DevicesProbe::mostDevices);
    EXPECT_EQ(more, 5u);
}

TEST_F(DevicesProbeTest, MayBeDroppedWhileItAsks)
{
    QTcpServer mute;
    ASSERT_TRUE(mute.listen(QHostAddress::LocalHost, 0));
    fake.discovery.announce({device("Mute", {{"127.0.0.1", mute.serverPort(), 0}})});
    start();
    ASSERT_TRUE(waitUntil([&] {
        fake.runLoop.advance(Duration(0.1));
        return mute.hasPendingConnections();
    }));
    probe.reset();
    runLoopFor(std::chrono::milliseconds(50));
    fake.runLoop.advance(Duration(20));
    EXPECT_EQ(endings, 0);
}

TEST_F(DevicesProbeTest, KnowsRememberedDevicesEachOnce)
{
    TemporaryFolder folder;
    const auto seen = folder.write("SeenDevices.plist", R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><array><string>Tablet</string><integer>7</integer><string>Desk</string></array></plist>)");
    fake.preferences.setAppValue(kAutoConnectDevices,
                                 PropertyList(PropertyList::Array{"Desk", true}), kApplicationID);
    EXPECT_THAT(rememberedDevices(fake.platform(), seen), ElementsAre("Desk", "Tablet"));
    EXPECT_THAT(rememberedDevices(fake.platform(), folder.path("none")), ElementsAre("Desk"));
    EXPECT_THAT(rememberedDevices(fake.platform(), folder.write("broken", "<plist>")),
                ElementsAre("Desk"));
}

} // namespace
