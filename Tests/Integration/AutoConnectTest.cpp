// Auto-connection of the real screen server to real devices, each a process.

#include "Common/FVEConstants.h"
#include "Tests/Integration/ServerAndDevice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

using namespace farview;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// Devices "Desk" and "Sofa" of the hosts "desk-7" and "sofa-7"; the first has the usual port.
class AutoConnect : public ServerAndDevice
{
protected:
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        preferences->setCurrentState(1);
        preferences->setAutoConnectDevices({"Desk", "Sofa"});
    }

    /// A device that was announced just now does not answer at once to who asks: this server has
    /// seen them all when the user makes the list.
    void startServerThatSeesThem()
    {
        preferences->setAutoConnectDevices({});
        startServer();
        runLoopFor(seconds(4));
        preferences->setAutoConnectDevices({"Desk", "Sofa"});
    }
    /// Whether the server is or becomes connected to that host, and to no other on the way.
    bool connectsTo(const std::string& hostName, milliseconds limit = seconds(15))
    {
        const bool heard = panel->hears(kServerConnectedToDevice, limit);
        return heard && panel->last(kServerConnectedToDevice)->deviceName == hostName;
    }
    std::uint16_t portOf(const std::string& name) const { return portIn(logOf(name)); }
};

TEST_F(AutoConnect, TakesTheSecondWhenTheFirstRefuses)
{
    startNamed("Desk", {"--refuse", "Closed for maintenance"});
    startNamed("Sofa");
    startServerThatSeesThem();
    EXPECT_TRUE(connectsTo("sofa-7.local")) << everything();
    EXPECT_THAT(text(logOf("Desk")), HasSubstr("Refused"));
    EXPECT_EQ(panel->last(kRequestingErrorMsgFromPrefPane), nullptr) << "nobody had asked";
}

TEST_F(AutoConnect, TakesTheSecondWhenTheFirstIsBusy)
{
    startNamed("Desk");
    startNamed("Sofa");
    ASSERT_NE(portOf("Desk"), 0) << everything();
    const auto first = occupyDevice(portOf("Desk"));
    startServer();
    EXPECT_TRUE(connectsTo("sofa-7.local")) << everything();
    EXPECT_THAT(text(logOf("Desk")), Not(HasSubstr("Refused"))) << "it was not even asked";

    // When the second one dies, the first is free by then.
    first->close({LinkGoodbyeCode::byUser, ""});
    ASSERT_TRUE(waitUntil([&] { return anotherHost->ended(); }));
    panel->reports.clear();
    devices["Sofa"]->kill();
    EXPECT_TRUE(connectsTo("desk-7.local")) << everything();
}

TEST_F(AutoConnect, TakesTheSecondWhenTheFirstDies)
{
    startNamed("Desk");
    startNamed("Sofa");
    startServerThatSeesThem();
    ASSERT_TRUE(connectsTo("desk-7.local")) << everything();
    EXPECT_THAT(text(logOf("Sofa")), Not(HasSubstr("Connected to the host")));
    panel->reports.clear();
    devices["Desk"]->kill();
    EXPECT_TRUE(connectsTo("sofa-7.local")) << everything();
    EXPECT_NE(panel->last(kServerDisconnectedFromDevice), nullptr);
    EXPECT_EQ(panel->last(kRequestingErrorMsgFromPrefPane), nullptr);
}

TEST_F(AutoConnect, ReturnsToADeviceThatWasRestarted)
{
    startNamed("Desk");
    startServer();
    ASSERT_TRUE(connectsTo("desk-7.local")) << everything();
    for (const int signal : {SIGTERM, SIGKILL}) {
        panel->reports.clear();
        devices["Desk"]->sendSignal(signal);
        ASSERT_TRUE(devices["Desk"]->waitForEnd());
        ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice, kNoticed)) << everything();
        startNamed("Desk");
        EXPECT_TRUE(connectsTo("desk-7.local", seconds(25))) << signal << everything();
    }
    EXPECT_EQ(panel->last(kRequestingErrorMsgFromPrefPane), nullptr);
}

TEST_F(AutoConnect, ReturnsToADeviceThatSlept)
{
    startNamed("Desk");
    startServer();
    ASSERT_TRUE(connectsTo("desk-7.local")) << everything();
    panel->reports.clear();
    devices["Desk"]->sendSignal(SIGSTOP);
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice, kNoticed)) << everything();
    runLoopFor(seconds(3));
    devices["Desk"]->sendSignal(SIGCONT);
    EXPECT_TRUE(connectsTo("desk-7.local", seconds(25))) << everything();
}

TEST_F(AutoConnect, LeavesADeviceAloneThatTheUserDisconnected)
{
    startNamed("Desk");
    startServer();
    ASSERT_TRUE(connectsTo("desk-7.local")) << everything();
    panel->reports.clear();
    panel->post(kDisconnectCurrentServerFromHost);
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice));
    runLoopFor(seconds(4)); // twice the first pause
    EXPECT_EQ(panel->last(kServerConnectedToDevice), nullptr) << everything();

    devices["Desk"]->sendSignal(SIGTERM);
    ASSERT_TRUE(devices["Desk"]->waitForEnd());
    runLoopFor(seconds(2)); // its goodbye
    startNamed("Desk");
    EXPECT_TRUE(connectsTo("desk-7.local")) << "it went and returned" << everything();
}

TEST_F(AutoConnect, ConnectsWhenADeviceIsTicked)
{
    preferences->setAutoConnectDevices({});
    startNamed("Desk");
    startServer();
    runLoopFor(seconds(3));
    ASSERT_EQ(panel->last(kServerConnectedToDevice), nullptr) << everything();
    preferences->setAutoConnectDevices({"Desk"});
    EXPECT_TRUE(connectsTo("desk-7.local")) << everything();
    EXPECT_TRUE(says("Desk", "these options: touch retina windows-move-back")) << everything();
}

} // namespace
