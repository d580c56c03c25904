// The sheet for connecting by address: its states, in the order in which a user meets them.

#include "Tests/Source/SheetFixture.h"

#include <algorithm>

namespace
{

using farview::Change;
using Sheet = FVEConnectToOtherSheetController;

class ConnectToOtherSheet : public SheetFixture
{
};

// Opening

TEST_F(ConnectToOtherSheet, OpensOnThePanesWindowAndIsLoadedOnFirstUse)
{
    showWithState(1);
    EXPECT_TRUE(loader->loaded.empty());
    EXPECT_EQ(sheet().otherDevicePanel(), nullptr);
    open();
    EXPECT_EQ(loader->loaded, Texts{"ConnectToOtherSheet"});
    EXPECT_EQ(sheet().otherDevicePanel()->sheetParent(), pane->tabView());
    pressCancel();
    open();
    EXPECT_EQ(loader->loaded.size(), 1u);
}

TEST_F(ConnectToOtherSheet, EditingBeginsWithAnEmptyFieldOKDisabledAndAHiddenProgressLine)
{
    open();
    EXPECT_EQ(sheet().otherTextField()->stringValue(), "");
    EXPECT_FALSE(okIsEnabled());
    EXPECT_EQ(okTitle(), "OK");
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_FALSE(progressShows());
    EXPECT_EQ(progressRole(), Role::normal);
}

TEST_F(ConnectToOtherSheet, TheLastAddressIsOfferedAndSelected)
{
    setStored(kLastOtherDeviceName, "10.0.0.5");
    open();
    pressCancel();
    std::vector<Change> changes;
    const auto watch =
        sheet().otherTextField()->observe([&](Change change) { changes.push_back(change); });
    open();
    EXPECT_EQ(sheet().otherTextField()->stringValue(), "10.0.0.5");
    EXPECT_TRUE(okIsEnabled());
    EXPECT_EQ(std::count(changes.begin(), changes.end(), Change::textSelection), 1);
}

TEST_F(ConnectToOtherSheet, AnEmptyFieldIsNotSelected)
{
    open();
    pressCancel();
    bool selected = false;
    const auto watch = sheet().otherTextField()->observe(
        [&](Change change) { selected |= change == Change::textSelection; });
    open();
    EXPECT_FALSE(selected);
}

TEST_F(ConnectToOtherSheet, ALastAddressThatIsNoneLeavesOKDisabled)
{
    setStored(kLastOtherDeviceName, "10.0.0.");
    open();
    EXPECT_EQ(sheet().otherTextField()->stringValue(), "10.0.0.");
    EXPECT_FALSE(okIsEnabled());
}

TEST_F(ConnectToOtherSheet, OpeningItWhileItIsOpenChangesNothing)
{
    open();
    type("10.0.0.5");
    const auto registrations = fake.distributedNotificationCenter.registrationCount();
    sheet().showConnectToOtherSheet(nullptr);
    EXPECT_EQ(sheet().otherTextField()->stringValue(), "10.0.0.5");
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), registrations);
}

// Editing

TEST_F(ConnectToOtherSheet, OKIsEnabledExactlyForACompleteAddress)
{
    open();
    type("10.0.0.");
    EXPECT_FALSE(okIsEnabled());
    type("10.0.0.5");
    EXPECT_TRUE(okIsEnabled());
    type("10.0.0.5 ");
    EXPECT_FALSE(okIsEnabled());
    type("::1");
    EXPECT_TRUE(okIsEnabled());
    type("");
    EXPECT_FALSE(okIsEnabled());
}

TEST_F(ConnectToOtherSheet, AChangeOfTheTextEmptiesTheProgressLineAndLeavesItWhereItIs)
{
    open();
    type("10.0.0.");
    EXPECT_EQ(progress(), "");
    EXPECT_FALSE(progressShows());
    type("10.0.0.5");
    pressOK();
    type("10.0.0.51");
    EXPECT_EQ(progress(), "");
    EXPECT_TRUE(progressShows());
    EXPECT_EQ(progressRole(), Role::normal);
}

TEST_F(ConnectToOtherSheet, TypingIsAnnouncedWithinTheProcessByTheField)
{
    open();
    int announced = 0;
    const auto listener = std::make_shared<int>();
    fake.notificationCenter.addObserver(
        listener, [&](const farview::Notification&) { ++announced; },
        "NSControlTextDidChangeNotification", sheet().otherTextField().get());
    type("1");
    EXPECT_EQ(announced, 1);
    sheet().otherTextField()->setStringValue("2");
    EXPECT_EQ(announced, 1) << "only what the user types";
}

TEST_F(ConnectToOtherSheet, ATextTypedElsewhereIsNotItsBusiness)
{
    open();
    const farview::TextField stranger;
    fake.notificationCenter.postNotificationName("NSControlTextDidChangeNotification", &stranger,
                                                 {});
    EXPECT_EQ(progress(), "Connecting...");
}

// Connecting

TEST_F(ConnectToOtherSheet, OKAsksTheServerAndWaits)
{
    open();
    pane->setConnectedToOtherDevice(true);
    type("10.0.0.5");
    pressOK();
    EXPECT_FALSE(okIsEnabled());
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_TRUE(progressShows());
    EXPECT_EQ(progressRole(), Role::normal);
    EXPECT_FALSE(pane->connectedToOtherDevice());
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.5");
    EXPECT_EQ(
        requests(),
        (std::vector<Post>{{kConnectServerToTicket, "", {{"connectUsingTicket", "10.0.0.5"}}, 3}}));
    EXPECT_TRUE(isWaiting());
    EXPECT_TRUE(isOpen());
}

TEST_F(ConnectToOtherSheet, OKOnAnInvalidAddressOnlyClearsTheRed)
{
    openAndConnectTo("10.0.0.5");
    after(120);
    ASSERT_EQ(progressRole(), Role::error);
    sheet().otherTextField()->setStringValue("10.0.0.");
    sheet().okButtonPressed(nullptr);
    EXPECT_EQ(progressRole(), Role::normal);
    EXPECT_EQ(progress(), "Could not connect...");
    EXPECT_EQ(requests().size(), 1u);
    EXPECT_FALSE(isWaiting());
    sheet().otherTextField()->setStringValue("");
    sheet().okButtonPressed(nullptr);
    EXPECT_EQ(requests().size(), 1u);
}

TEST_F(ConnectToOtherSheet, AfterTwoMinutesItOffersToRetry)
{
    openAndConnectTo("10.0.0.5");
    after(119.9);
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_EQ(okTitle(), "OK");
    EXPECT_FALSE(okIsEnabled());
    EXPECT_EQ(storedText(kLastOtherDeviceName).value_or(""), "");
    after(0.2);
    EXPECT_EQ(progress(), "Could not connect...");
    EXPECT_EQ(progressRole(), Role::error);
    EXPECT_TRUE(progressShows());
    EXPECT_EQ(okTitle(), "Retry");
    EXPECT_TRUE(okIsEnabled());
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.5");
    EXPECT_FALSE(isWaiting());
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(fake.log.contains("Timed out waiting to connect."));
}

TEST_F(ConnectToOtherSheet, AServerThatCannotReachTheAddressEndsTheWaitAtOnce)
{
    openAndConnectTo("10.0.0.5");
    serverPosts(kRequestingErrorMsgFromPrefPane);
    EXPECT_EQ(progress(), "Could not connect...");
    EXPECT_EQ(progressRole(), Role::error);
    EXPECT_EQ(okTitle(), "Retry");
    EXPECT_TRUE(okIsEnabled());
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.5");
    EXPECT_FALSE(isWaiting());
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(fake.log.contains("Timed out waiting to connect."));
    pressOK();
    EXPECT_EQ(requests().size(), 2u);
    EXPECT_TRUE(isWaiting());
}

TEST_F(ConnectToOtherSheet, AFailureWhileItDoesNotWaitIsNotItsBusiness)
{
    open();
    type("10.0.0.5");
    serverPosts(kRequestingErrorMsgFromPrefPane);
    EXPECT_EQ(progress(), "");
    EXPECT_EQ(okTitle(), "OK");
    EXPECT_EQ(storedText(kLastOtherDeviceName), "");
}

TEST_F(ConnectToOtherSheet, TheTimeOutComesOnce)
{
    openAndConnectTo("10.0.0.5");
    after(120);
    type("10.0.0.6");
    after(600);
    EXPECT_EQ(progress(), "");
    EXPECT_EQ(okTitle(), "OK");
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.5");
}

TEST_F(ConnectToOtherSheet, AnEmptyFieldIsNotRememberedAtTheTimeOut)
{
    setStored(kLastOtherDeviceName, "10.0.0.9");
    openAndConnectTo("10.0.0.5");
    type("");
    after(120);
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.9");
    EXPECT_EQ(okTitle(), "Retry");
}

TEST_F(ConnectToOtherSheet, EditingAfterATimeOutBringsOKBackAndClearsTheRedLine)
{
    openAndConnectTo("10.0.0.5");
    after(120);
    ASSERT_EQ(okTitle(), "Retry");
    type("10.0.0.");
    EXPECT_EQ(okTitle(), "OK");
    EXPECT_FALSE(okIsEnabled());
    EXPECT_EQ(progress(), "");
    EXPECT_EQ(progressRole(), Role::normal);
}

TEST_F(ConnectToOtherSheet, RetryAsksAgainAndWaitsAnotherTwoMinutes)
{
    openAndConnectTo("10.0.0.5");
    after(120);
    pressOK();
    EXPECT_EQ(requests().size(), 2u);
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_EQ(progressRole(), Role::normal);
    EXPECT_FALSE(okIsEnabled());
    after(119);
    EXPECT_EQ(progress(), "Connecting...");
    after(2);
    EXPECT_EQ(progress(), "Could not connect...");
}

TEST_F(ConnectToOtherSheet, AnotherAddressTypedWhileConnectingStartsTheTwoMinutesAnew)
{
    openAndConnectTo("10.0.0.5");
    after(100);
    type("10.0.0.6");
    pressOK();
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.6");
    after(100);
    EXPECT_EQ(progress(), "Connecting...");
    after(21);
    EXPECT_EQ(progress(), "Could not connect...");
}

// Connected

TEST_F(ConnectToOtherSheet, AConnectionByAddressIsShownStoredAndClosesItHalfASecondLater)
{
    openAndConnectTo("10.0.0.5");
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}, {"DeviceAddress", "10.0.0.5"}});
    EXPECT_EQ(progress(), "Connected...");
    EXPECT_FALSE(okIsEnabled()) << "unchanged";
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "10.0.0.5");
    EXPECT_TRUE(pane->connectedToOtherDevice());
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.5");
    EXPECT_EQ(selectedTitle(), "10.0.0.5");
    EXPECT_FALSE(isWaiting());
    after(0.4);
    EXPECT_TRUE(isOpen());
    after(0.2);
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(sheet().otherDevicePanel()->isSheet());
    EXPECT_FALSE(sheet().otherDevicePanel()->isVisible());
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 1);
    EXPECT_EQ(selectedTitle(), "10.0.0.5");
}

TEST_F(ConnectToOtherSheet, ADevicesReportClosesItWithoutSayingConnectedAndIsNotPassedOn)
{
    showWithPad();
    openAndConnectTo("10.0.0.5");
    serverConnectedTo("pad.local");
    EXPECT_EQ(progress(), "Connecting...");
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_FALSE(isWaiting());
    after(0.6);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 1);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    ASSERT_NE(pane->selectedNetService(), nullptr) << "the server's next answer tells the pane";
    EXPECT_EQ(pane->selectedNetService()->name(), "Pad");
}

TEST_F(ConnectToOtherSheet, AReportWithoutANameClosesItToo)
{
    open();
    serverPosts(kServerConnectedToDevice);
    EXPECT_EQ(progress(), "Connecting...");
    after(0.6);
    EXPECT_FALSE(isOpen());
}

TEST_F(ConnectToOtherSheet, AnAddressThatNobodyHereAskedForIsShownAndTheDeviceBeforeIsForgotten)
{
    setStored(kCurrentVirtualScreenDeviceName, "10.0.0.5");
    open();
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}, {"DeviceAddress", "10.0.0.7"}});
    EXPECT_EQ(progress(), "Connected...");
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.7");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "")
        << "no address here is stored as none";
    EXPECT_EQ(storedText(kLastOtherDeviceName), "");
}

TEST_F(ConnectToOtherSheet, AnAddressThatSomebodyElseAskedForReplacesTheOneBefore)
{
    showWithState(1);
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    open();
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}, {"DeviceAddress", "10.0.0.7"}});
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.7");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "10.0.0.7");
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.7");
    EXPECT_EQ(selectedTitle(), "10.0.0.7");
}

TEST_F(ConnectToOtherSheet, AReportWhoseAddressIsNoneLeavesTheAddressThatWasAskedFor)
{
    openAndConnectTo("10.0.0.5");
    serverPosts(kServerConnectedToDevice,
                {{"DeviceName", "Other"}, {"DeviceAddress", "pad.local"}});
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.5");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "10.0.0.5");
}

// Closed

TEST_F(ConnectToOtherSheet, OnlyTheSheetHearsTheServerWhileItIsUpAndThePaneAgainAfterwards)
{
    showWithState(1);
    ASSERT_TRUE(paneHearsTheServer());
    pane->takeNoVirtualScreenFrom(nullptr);
    open();
    pane->setConnectedToOtherDevice(false);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "Other"}});
    EXPECT_FALSE(pane->connectedToOtherDevice());
    pressCancel();
    EXPECT_TRUE(paneHearsTheServer());
}

TEST_F(ConnectToOtherSheet, AfterAConnectionThePaneHearsTheServerAgain)
{
    openAndConnectTo("10.0.0.5");
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}});
    after(0.6);
    ASSERT_FALSE(isOpen());
    EXPECT_TRUE(paneHearsTheServer());
}

TEST_F(ConnectToOtherSheet, ARoundOfTheSheetLeavesEveryRegistrationAsItWas)
{
    showWithState(1);
    const auto distributed = fake.distributedNotificationCenter.registrationCount();
    const auto local = fake.notificationCenter.registrationCount();
    open();
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), distributed - 1);
    EXPECT_EQ(fake.notificationCenter.registrationCount(), local + 1);
    pressCancel();
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), distributed);
    EXPECT_EQ(fake.notificationCenter.registrationCount(), local);
}

TEST_F(ConnectToOtherSheet, CancelClosesItAndShowsWhatIsInForce)
{
    open();
    auto& popUp = *pane->virtualScreenSelectionPopup();
    popUp.selectItemAtIndex(popUp.menu()->numberOfItems() - 1);
    ASSERT_EQ(selectedTitle(), connectToOther);
    pressCancel();
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(sheet().otherDevicePanel()->isVisible());
    EXPECT_EQ(sheet().otherDevicePanel()->returnCode(), 0);
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(ConnectToOtherSheet, CancelWhileConnectingCallsTheTimeOutOff)
{
    openAndConnectTo("10.0.0.5");
    pressCancel();
    after(300);
    EXPECT_NE(progress(), "Could not connect...");
    EXPECT_FALSE(fake.log.contains("Timed out waiting to connect."));
    EXPECT_EQ(storedText(kLastOtherDeviceName).value_or(""), "");
}

TEST_F(ConnectToOtherSheet, EveryNameThatOthersCallIsAnswered)
{
    load();
    for (const char* name : {"showConnectToOtherSheet:", "okButtonPressed:", "cancelButtonPressed:",
                             "ipAddresTextDidChange:", "serverConnectedToDeviceNotification:",
                             "connectionAttemptTimoutTimerOperation:"})
        EXPECT_TRUE(sheet().respondsTo({name})) << name;
    EXPECT_FALSE(sheet().respondsTo({"dismiss:"}));
    EXPECT_FALSE(sheet().perform({"dismiss:"}, nullptr));
}

} // namespace
