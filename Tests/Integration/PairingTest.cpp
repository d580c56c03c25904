// The real screen server and the real device meet for the first time.

#include "Tests/Integration/ServerAndDevice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

using namespace farview;
using testing::HasSubstr;
using testing::Not;
using State = PairingReport::State;

namespace
{

class Pairing : public ServerAndDevice
{
protected:
    Pairing() { areConfirmed = false; }

    void meet()
    {
        startDevice();
        startServer();
        ASSERT_TRUE(deviceSays("Announced"));
        choose();
    }
    /// The user picks the device, and both show digits.
    void choose()
    {
        panel->connectTo("desk-7.local");
        ASSERT_TRUE(says(State::comparing)) << serverLog() << deviceLog();
        digits = panel->pairing.digits;
        ASSERT_TRUE(deviceSays("Digits: " + groupedDigits(digits))) << deviceLog();
    }
    bool says(State state)
    {
        return waitUntil([&] { return panel->pairing.state == state; }, seconds(10));
    }
    void confirmHere() { panel->post(kConfirmDevice, {{kDigitsKey, digits}}); }
    void confirmThere() { panel->post(kAcceptComputer, {{kDigitsKey, digits}}); }
    void confirmOnBothSides()
    {
        confirmHere();
        confirmThere();
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
        panel->reports.clear();
    }
    std::size_t known(const char* domain) { return PairedPeers(*stored, domain).all().size(); }
    bool nobodyIsKnown()
    {
        return known(PairedPeers::devices) == 0 && known(PairedPeers::computers) == 0;
    }
    void leave()
    {
        panel->post(kDisconnectCurrentServerFromHost);
        ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice));
        ASSERT_TRUE(deviceSays("The host is gone"));
        panel->reports.clear();
    }

    std::string digits;
};

TEST_F(Pairing, ConnectsOnceBothUsersHaveSeenTheSameDigits)
{
    meet();
    EXPECT_EQ(panel->pairing.device, "Desk");
    EXPECT_TRUE(nobodyIsKnown());
    confirmHere();
    ASSERT_TRUE(says(State::confirmed));
    EXPECT_EQ(panel->last(kServerConnectedToDevice), nullptr);
    confirmThere();
    ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
    EXPECT_TRUE(says(State::none));
    EXPECT_TRUE(deviceSays("these options"));
    EXPECT_EQ(known(PairedPeers::devices), 1U);
    EXPECT_EQ(known(PairedPeers::computers), 1U);
}

TEST_F(Pairing, IsNotNeededASecondTime)
{
    meet();
    confirmOnBothSides();
    leave();
    panel->connectTo("desk-7.local");
    EXPECT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
    EXPECT_EQ(panel->pairing, PairingReport{});
}

TEST_F(Pairing, LeavesNothingBehindWhenTheUserSaysNoHere)
{
    meet();
    panel->post(kRefuseDevice, {{kDigitsKey, digits}});
    EXPECT_TRUE(says(State::none));
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog();
    EXPECT_EQ(panel->last(kRequestingErrorMsgFromPrefPane), nullptr) << "the user knows";
    EXPECT_THAT(deviceLog(), Not(HasSubstr("these options")));
    EXPECT_TRUE(nobodyIsKnown());
}

TEST_F(Pairing, SaysSoWhenTheDeviceGoesAwayMeanwhile)
{
    meet();
    device->kill();
    EXPECT_TRUE(says(State::notCompared));
    EXPECT_TRUE(panel->hears(kRequestingErrorMsgFromPrefPane));
    EXPECT_TRUE(nobodyIsKnown());
}

TEST_F(Pairing, StoresNothingWhenOnlyOneSideConfirmed)
{
    meet();
    confirmThere();
    ASSERT_TRUE(deviceSays("Confirm them at the computer"));
    server->sendSignal(SIGTERM);
    ASSERT_TRUE(serverEnded());
    EXPECT_TRUE(says(State::none)) << "its question went with it";
    EXPECT_TRUE(nobodyIsKnown());
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice));
    panel->reports.clear();
    startServer();
    choose();
}

TEST_F(Pairing, IsAskedForAgainByADeviceThatForgotTheComputer)
{
    meet();
    confirmOnBothSides();
    const auto computer = PairedPeers(*stored, PairedPeers::computers).all().front();
    PairedPeers(*stored, PairedPeers::computers).forget(computer.key);
    panel->post(kPairedDevicesDidChange);
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << deviceLog();
    EXPECT_TRUE(says(State::unconfirmed)) << "it is not asked about unasked" << serverLog();
    choose();
    confirmOnBothSides();
}

TEST_F(Pairing, LeavesADeviceThatTheUserForgets)
{
    meet();
    confirmOnBothSides();
    PairedPeers(*stored, PairedPeers::devices).forget("Desk");
    panel->post(kPairedDevicesDidChange);
    ASSERT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << serverLog();
    choose();
}

TEST_F(Pairing, NeverConnectsToADeviceThatWasSetUpAnewBeforeTheUserForgotTheOldOne)
{
    meet();
    confirmOnBothSides();
    leave();
    device->sendSignal(SIGTERM);
    ASSERT_TRUE(device->waitForEnd());
    std::filesystem::remove(ownKeyPath(PairedPeers::computers));
    const auto announced = text("device.log").rfind("Announced");
    startDevice();
    ASSERT_TRUE(
        waitUntil([&] { return text("device.log").rfind("Announced") > announced; }, seconds(10)));
    panel->connectTo("desk-7.local");
    ASSERT_TRUE(says(State::changed)) << serverLog() << deviceLog();
    EXPECT_TRUE(panel->hears(kRequestingErrorMsgFromPrefPane));
    PairedPeers(*stored, PairedPeers::devices).forget("Desk");
    panel->post(kPairedDevicesDidChange);
    choose();
    confirmOnBothSides();
}

TEST_F(Pairing, WorksByAddressAndKnowsTheDeviceByItsNameLater)
{
    startDevice();
    startServer();
    ASSERT_TRUE(deviceSays("Announced"));
    panel->connectToAddress("127.0.0.1");
    ASSERT_TRUE(says(State::comparing)) << serverLog();
    digits = panel->pairing.digits;
    confirmOnBothSides();
    leave();
    panel->connectTo("desk-7.local");
    EXPECT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog() << deviceLog();
    EXPECT_EQ(PairedPeers(*stored, PairedPeers::devices).all().front().name, "Desk");
}

TEST_F(Pairing, HasTheServerConnectByItselfFromThenOn)
{
    preferences->setCurrentState(1);
    preferences->setAutoConnectOption(true);
    preferences->setAutoConnectDevices({"Desk"});
    startDevice();
    startServer();
    ASSERT_TRUE(says(State::unconfirmed)) << serverLog();
    EXPECT_THAT(deviceLog(), Not(HasSubstr("Digits")));
    choose();
    confirmOnBothSides();
    panel->post(kTerminateScreenServer);
    ASSERT_TRUE(serverEnded());
    panel->reports.clear();
    server = start("ScreenCapture", {}, "server.log");
    EXPECT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog();
}

TEST_F(Pairing, NeedsAKeyThatNobodyElseMayRead)
{
    const std::string path = ownKeyPath(PairedPeers::devices);
    ASSERT_TRUE(ownKey(path).key);
    std::filesystem::permissions(path, std::filesystem::perms::group_read,
                                 std::filesystem::perm_options::add);
    startDevice();
    startServer();
    ASSERT_TRUE(deviceSays("Announced"));
    panel->connectTo("desk-7.local");
    ASSERT_TRUE(says(State::keyUnusable)) << serverLog();
    ASSERT_TRUE(panel->hears(kRequestingErrorMsgFromPrefPane));
    EXPECT_THAT(serverLog(), HasSubstr("Remove the file"));
    std::filesystem::permissions(path, std::filesystem::perms::group_read,
                                 std::filesystem::perm_options::remove);
    choose();
}

} // namespace
