// The sheet when things happen that its user did not ask for.

#include "Tests/Source/SheetFixture.h"

#include <fstream>
#include <regex>
#include <set>

namespace
{

using Sheet = FVEConnectToOtherSheetController;

class ConnectToOtherSheetFaults : public SheetFixture
{
protected:
    void reportOther() { serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}}); }
};

TEST_F(ConnectToOtherSheetFaults, OneDismissalIsPendingAtMost)
{
    openAndConnectTo("10.0.0.5");
    reportOther();
    const auto pending = fake.runLoop.pendingCount();
    reportOther();
    serverConnectedTo("pad.local");
    EXPECT_EQ(fake.runLoop.pendingCount(), pending);
    after(0.6);
    EXPECT_FALSE(isOpen());
}

TEST_F(ConnectToOtherSheetFaults, ADismissalOfAnEarlierShowingDoesNotCloseTheNext)
{
    openAndConnectTo("10.0.0.5");
    reportOther();
    after(0.3);
    pressCancel();
    pane->takeNoVirtualScreenFrom(nullptr);
    open();
    after(0.4);
    EXPECT_TRUE(isOpen());
    reportOther();
    after(0.6);
    EXPECT_FALSE(isOpen());
}

TEST_F(ConnectToOtherSheetFaults, AClosedSheetIgnoresEverything)
{
    openAndConnectTo("10.0.0.5");
    pressCancel();
    const auto registrations = fake.distributedNotificationCenter.registrationCount();
    sheet().dismissSheetWithButton(1);
    sheet().okButtonPressed(nullptr);
    sheet().cancelButtonPressed(nullptr);
    sheet().connectionAttemptTimoutTimerOperation(nullptr);
    sheet().serverConnectedToDeviceNotification(
        farview::Notification(kServerConnectedToDevice, nullptr, {}));
    after(1);
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 0);
    EXPECT_EQ(requests().size(), 1u);
    EXPECT_NE(okTitle(), "Retry");
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), registrations);
}

TEST_F(ConnectToOtherSheetFaults, ASheetThatWasNeverOpenIgnoresEverything)
{
    load();
    sheet().dismissSheetWithButton(1);
    sheet().okButtonPressed(nullptr);
    sheet().cancelButtonPressed(nullptr);
    sheet().connectionAttemptTimoutTimerOperation(nullptr);
    EXPECT_EQ(sheet().otherDevicePanel(), nullptr);
    EXPECT_TRUE(requests().empty());
}

TEST_F(ConnectToOtherSheetFaults, RetryPressedWhileALateReportClosesItLeavesNoTimeOutBehind)
{
    openAndConnectTo("10.0.0.5");
    after(120);
    serverConnectedTo("pad.local");
    ASSERT_TRUE(okIsEnabled());
    pressOK();
    after(0.6);
    ASSERT_FALSE(isOpen());
    EXPECT_FALSE(isWaiting());
    setStored(kLastOtherDeviceName, "10.0.0.9");
    after(300);
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.9");
}

TEST_F(ConnectToOtherSheetFaults, TheServerDiesWhileItWaits)
{
    fake.processTable.add(4711, "ScreenCapture");
    openAndConnectTo("10.0.0.5");
    fake.processTable.remove(4711);
    serverPosts(kServerDisconnectedFromDevice);
    after(20);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(switchState(), 0) << "the watchdog goes on";
    EXPECT_EQ(progress(), "Connecting...");
    after(101);
    EXPECT_EQ(okTitle(), "Retry");
    pressCancel();
    EXPECT_TRUE(paneHearsTheServer());
}

TEST_F(ConnectToOtherSheetFaults, AServerThatBeginsIsAskedForTheAddressAndNotForTheDeviceBefore)
{
    showWithPad();
    ASSERT_TRUE(choose("Pad"));
    fake.runLoop.runUntilIdle();
    openAndConnectTo("10.0.0.5");
    const auto serverBegins = [this] {
        serverPosts(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
    };
    serverBegins();
    EXPECT_EQ(posts(kConnectServerToHost).size(), 1u);
    EXPECT_EQ(requests().size(), 2u);
    pressCancel();
    openAndConnectTo("10.0.0.5");
    pressCancel();
    serverBegins();
    EXPECT_EQ(requests().size(), 3u) << "taken back";
}

TEST_F(ConnectToOtherSheetFaults, DevicesComeAndGoWhileItIsOpen)
{
    open();
    type("10.0.0.5");
    announce({device("Pad", "pad.local")});
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(sheet().otherTextField()->stringValue(), "10.0.0.5");
    EXPECT_NE(entry("Pad"), nullptr);
    leave({"Pad"});
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(okIsEnabled());
}

TEST_F(ConnectToOtherSheetFaults, SwitchedOffElsewhereItStaysUntilItIsCancelled)
{
    openAndConnectTo("10.0.0.5");
    changeElsewhere(kCurrentState, std::int64_t{0});
    EXPECT_EQ(status(), "Off");
    EXPECT_TRUE(isOpen());
    pressCancel();
    EXPECT_FALSE(isOpen());
}

TEST_F(ConnectToOtherSheetFaults, HidingThePaneEndsItAsCancelDoes)
{
    openAndConnectTo("10.0.0.5");
    hide();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 0);
    EXPECT_FALSE(isWaiting());
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), 0u);
    EXPECT_FALSE(paneHearsTheServer());
    show();
    EXPECT_TRUE(paneHearsTheServer());
    EXPECT_FALSE(isOpen());
}

TEST_F(ConnectToOtherSheetFaults, HiddenBetweenAReportAndTheDismissalNothingIsRegistered)
{
    openAndConnectTo("10.0.0.5");
    reportOther();
    hide();
    after(1);
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), 0u);
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 0);
}

TEST_F(ConnectToOtherSheetFaults, APaneThatIsNotOnShowIsNotRegisteredByADismissal)
{
    showWithState(1);
    hide();
    sheet().showConnectToOtherSheet(nullptr);
    ASSERT_TRUE(isOpen());
    pressCancel();
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), 0u);
}

TEST_F(ConnectToOtherSheetFaults, ThePaneIsDestroyedWhileItWaits)
{
    openAndConnectTo("10.0.0.5");
    const std::weak_ptr<Sheet> controller = pane->connectToOtherSheetController();
    pane.reset();
    EXPECT_TRUE(controller.expired()) << "nothing keeps it";
    fake.distributedNotificationCenter.postFromAnotherProcess(kServerConnectedToDevice,
                                                              {{"DeviceName", "Other"}});
    after(300);
    EXPECT_FALSE(fake.log.contains("Timed out waiting to connect."));
}

TEST_F(ConnectToOtherSheetFaults, ThePaneIsDestroyedBeforeTheDismissal)
{
    openAndConnectTo("10.0.0.5");
    reportOther();
    const auto controller = pane->connectToOtherSheetController();
    const std::weak_ptr<FVEPreferencePane> weak = pane;
    pane.reset();
    EXPECT_TRUE(weak.expired()) << "the sheet does not keep the pane";
    after(1);
    EXPECT_FALSE(controller->isOpen());
    EXPECT_EQ(controller->otherDevicePanel()->returnCode(), 1);
}

TEST_F(ConnectToOtherSheetFaults, WithoutItsInterfaceFileThePaneGoesOn)
{
    loader->isBroken = true;
    showWithState(1);
    ASSERT_TRUE(choose(connectToOther));
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_TRUE(fake.log.contains("the file is broken"));
    EXPECT_TRUE(paneHearsTheServer());
    loader->isBroken = false;
    sheet().showConnectToOtherSheet(nullptr);
    EXPECT_TRUE(isOpen()) << "it can be tried again";
}

TEST_F(ConnectToOtherSheetFaults, WithoutALoaderThePaneGoesOn)
{
    pane->setInterfaceLoader(nullptr);
    showWithState(1);
    ASSERT_TRUE(choose(connectToOther));
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_TRUE(paneHearsTheServer());
}

TEST_F(ConnectToOtherSheetFaults, AnOverlongReportIsNotTakenForAConnection)
{
    openAndConnectTo("10.0.0.5");
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other" + std::string(1'000'000, 'x')}});
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_FALSE(pane->connectedToOtherDevice());
}

TEST_F(ConnectToOtherSheetFaults, AHundredRoundsLeaveNothingBehind)
{
    showWithState(1);
    const auto distributed = fake.distributedNotificationCenter.registrationCount();
    const auto local = fake.notificationCenter.registrationCount();
    const auto pending = fake.runLoop.pendingCount();
    for (int round = 0; round < 100; ++round) {
        openAndConnectTo("10.0.0.5");
        pressCancel();
    }
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), distributed);
    EXPECT_EQ(fake.notificationCenter.registrationCount(), local);
    EXPECT_EQ(fake.runLoop.pendingCount(), pending);
}

// The interface file itself, as text: the real loader has tests of its own.

std::string interfaceFile()
{
    std::ifstream file(std::string(FARVIEW_SOURCE_DIR) + "/PaneBundle/ConnectToOtherSheet.ui");
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(ConnectToOtherSheetFaults, TheInterfaceFileHasEachOutletAndSendsKnownActions)
{
    load();
    const auto file = interfaceFile();
    ASSERT_FALSE(file.empty());
    const std::set<std::string> names = {"otherDevicePanel", "otherTextField",
                                         "connectToOtherExplanationText", "connectToOtherOKButton",
                                         "connectToOtherProgress"};
    ASSERT_EQ(sheet().outlets().size(), names.size());
    for (const auto& outlet : sheet().outlets()) {
        EXPECT_TRUE(names.contains(std::string(outlet.name))) << outlet.name;
        EXPECT_NE(file.find("name=\"" + std::string(outlet.name) + "\""), std::string::npos);
    }
    static const std::regex action("name=\"action\"[^>]*><string[^>]*>([^<]+)</string>");
    std::set<std::string> sent;
    for (std::sregex_iterator match(file.begin(), file.end(), action), end; match != end; ++match)
        sent.insert((*match)[1]);
    EXPECT_EQ(sent, (std::set<std::string>{"okButtonPressed:", "cancelButtonPressed:"}));
}

} // namespace
