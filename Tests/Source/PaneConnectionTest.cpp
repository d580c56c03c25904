// Following a connection: reports of the server, the spinner, the error and the watchdog.

#include "Tests/Source/PaneFixture.h"

namespace
{

constexpr const char* normalText =
    "When you select a device, the screen will go blue as the system adds a new screen.";
constexpr const char* errorText =
    "There was a problem connecting to a device.  Farview could not talk to the screen device.  "
    "Disable the Firewall in System Preferences->Security and try again.  Please contact technical "
    "support for more information.";

class PaneConnection : public PaneFixture
{
protected:
    /// The server's process, so that the watchdog leaves the switch on.
    void serverRuns() { fake.processTable.add(4711, "ScreenCapture"); }

    void showWithTwoDevices()
    {
        serverRuns();
        showWithPadAndSlab();
    }

    void pickPad()
    {
        showWithTwoDevices();
        ASSERT_TRUE(choose("Pad"));
    }

    /// A server that has just begun, and was asked for nothing since.
    void serverBegins()
    {
        serverPosts(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
    }
    int requests() const
    {
        return fake.distributedNotificationCenter.countOf(kConnectServerToHost);
    }

    std::string help() const { return pane->connectionHelpLabel()->stringValue(); }
    std::string selectedName() const
    {
        return pane->selectedNetService() ? pane->selectedNetService()->name() : "";
    }
};

// The feedback the user gets, state by state.

TEST_F(PaneConnection, IdleShowsAFullPopUpAndNoSpinner)
{
    showWithTwoDevices();
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_EQ(popUpWidth(), fullWidth);
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
}

TEST_F(PaneConnection, RequestingShowsANarrowDisabledPopUpAndTheSpinnerAQuarterSecondLater)
{
    showWithTwoDevices();
    pane->checkForConnectionError(nullptr);
    ASSERT_TRUE(choose("Pad"));
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_EQ(popUpWidth(), reducedWidth);
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->frame(),
              (farview::Rect{{10, 20}, {reducedWidth, 26}}));
    EXPECT_TRUE(pane->virtualScreenSelectionPopup()->frameChangeIsAnimated());
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
    after(0.24);
    EXPECT_FALSE(spinnerShows());
    after(0.02);
    EXPECT_TRUE(spinnerShows());
    EXPECT_TRUE(pane->waitingForServerIndicator()->isAnimating());
    EXPECT_TRUE(pane->waitingForServerIndicator()->usesThreadedAnimation());
}

TEST_F(PaneConnection, TheEchoOfTheRequestEnablesThePopUpWhichStaysNarrow)
{
    pickPad();
    EXPECT_FALSE(popUpIsEnabled()) << "never inside the post";
    fake.runLoop.runUntilIdle();
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_EQ(popUpWidth(), reducedWidth);
    EXPECT_EQ(selectedTitle(), noDevice) << "the display was refreshed";
    after(0.3);
    EXPECT_TRUE(spinnerShows()) << "the pending spinner is not called off";
}

TEST_F(PaneConnection, ConnectedHidesTheSpinnerAndSelectsTheDevice)
{
    showWithTwoDevices();
    ASSERT_TRUE(choose("Slab"));
    after(1);
    serverConnectedTo("slab.local");
    EXPECT_EQ(selectedName(), "Slab");
    EXPECT_EQ(selectedTitle(), "Slab");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "slab.local");
    EXPECT_FALSE(spinnerShows());
    EXPECT_FALSE(pane->waitingForServerIndicator()->isAnimating());
    EXPECT_FALSE(pane->waitingForServerIndicator()->usesThreadedAnimation());
    EXPECT_EQ(popUpWidth(), fullWidth);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
    EXPECT_EQ(pane->spinningForServerTimer().lock(), nullptr);
    after(30);
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
}

TEST_F(PaneConnection, ConnectedBeforeTheSpinnerAppearedItStillAppearsAndGoesWithItsSafetyTimer)
{
    pickPad();
    serverConnectedTo("pad.local");
    EXPECT_EQ(popUpWidth(), reducedWidth);
    EXPECT_TRUE(popUpIsEnabled());
    after(0.3);
    EXPECT_TRUE(spinnerShows());
    after(15);
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(popUpWidth(), fullWidth);
    EXPECT_FALSE(warningShows()) << "the error check was called off";
}

TEST_F(PaneConnection, AServerThatBeginsAfterTheChoiceIsAskedAgain)
{
    pickPad();
    after(1);
    ASSERT_EQ(requests(), 1);
    serverBegins();
    ASSERT_EQ(requests(), 2);
    const auto repeated =
        fake.distributedNotificationCenter.postsNamed(kConnectServerToHost).back();
    EXPECT_EQ(repeated.userInfo.at(kConnectToHostNameKey), "pad.local");
    after(0.3);
    EXPECT_TRUE(spinnerShows()) << "the echo takes it down, and it comes back";
    after(13.5);
    EXPECT_FALSE(warningShows());
    after(0.3);
    EXPECT_TRUE(warningShows()) << "fifteen seconds count from the choice";
}

TEST_F(PaneConnection, AServerThatBeginsIsAskedAgainOnlyOnce)
{
    pickPad();
    serverBegins();
    serverBegins();
    EXPECT_EQ(requests(), 2);
    ASSERT_TRUE(choose("Slab"));
    serverBegins();
    EXPECT_EQ(requests(), 4) << "a new choice is a new request";
}

TEST_F(PaneConnection, AServerThatBeginsIsAskedForNothingThatIsSettled)
{
    showWithTwoDevices();
    serverBegins();
    EXPECT_EQ(requests(), 0) << "nothing was chosen";
    ASSERT_TRUE(choose("Pad"));
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(requests(), 1) << "this server heard it";
    serverConnectedTo("pad.local");
    serverBegins();
    EXPECT_EQ(requests(), 1) << "connected";
    ASSERT_TRUE(choose("Slab"));
    serverPosts(kRequestingErrorMsgFromPrefPane);
    serverBegins();
    EXPECT_EQ(requests(), 2) << "failed";
    ASSERT_TRUE(choose("Slab"));
    pane->takeNoVirtualScreenFrom(nullptr);
    serverBegins();
    EXPECT_EQ(requests(), 3) << "no device is wanted any more";
    ASSERT_TRUE(choose("Slab"));
    pane->offTextPressed(nullptr);
    pane->onTextPressed(nullptr);
    serverBegins();
    EXPECT_EQ(requests(), 4) << "switched off";
}

TEST_F(PaneConnection, AServerThatBeginsIsAskedForNothingThatWasSwitchedOffElsewhere)
{
    pickPad();
    changeElsewhere(kCurrentState, std::int64_t{0});
    changeElsewhere(kCurrentState, std::int64_t{1});
    serverBegins();
    EXPECT_EQ(requests(), 1);
}

TEST_F(PaneConnection, AServerThatBeginsIsAskedForNothingThatSomebodyElseReplaced)
{
    pickPad();
    serverPosts(kConnectServerToHost, {{kConnectToHostNameKey, "slab.local"}});
    const int before = requests();
    serverBegins();
    EXPECT_EQ(requests(), before);
}

TEST_F(PaneConnection, AServerThatBeginsIsToldOnceMoreThatNoDeviceIsWanted)
{
    showConnectedToPad();
    pane->takeNoVirtualScreenFrom(nullptr);
    serverBegins();
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 2u);
    serverBegins();
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 2u);
    pane->takeNoVirtualScreenFrom(nullptr);
    serverPosts(kServerDisconnectedFromDevice);
    serverBegins();
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 3u) << "it was heard";
}

TEST_F(PaneConnection, NoAnswerWithinFifteenSecondsShowsTheError)
{
    pickPad();
    after(14.9);
    EXPECT_FALSE(warningShows());
    after(0.2);
    EXPECT_TRUE(warningShows());
    EXPECT_EQ(instructions(), errorText);
    EXPECT_NE(pane->connectErrorMessageTimer().lock(), nullptr);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
    EXPECT_EQ(selectedName(), "") << "the selection is not changed";
    EXPECT_FALSE(spinnerShows()) << "taken down by its own timer of the same length";
}

TEST_F(PaneConnection, BesideTheErrorStandsWhereThisComputersFirewallIs)
{
    fake.firewall.setState({farview::FirewallKind::ufw, true, true});
    showWithTwoDevices();
    EXPECT_EQ(help(), "");
    EXPECT_TRUE(pane->connectionDiagnoseButton()->isHidden());
    serverPosts(kRequestingErrorMsgFromPrefPane);
    EXPECT_EQ(instructions(), errorText) << "the fixed text stays as it is";
    EXPECT_TRUE(help().starts_with("The firewall of this computer is set in the program Gufw."))
        << help();
    EXPECT_NE(help().find("TCP port 6001"), std::string::npos) << help();
    EXPECT_FALSE(pane->connectionDiagnoseButton()->isHidden());
}

TEST_F(PaneConnection, TheHelpStaysAndGoesWithTheError)
{
    showWithTwoDevices();
    serverPosts(kRequestingErrorMsgFromPrefPane);
    const auto said = help();
    EXPECT_TRUE(said.starts_with("A firewall may be in the way")) << said;
    after(4);
    pane->updateUI();
    EXPECT_EQ(help(), said);
    after(2);
    pane->updateUI();
    EXPECT_EQ(help(), "");
    EXPECT_TRUE(pane->connectionDiagnoseButton()->isHidden());
    serverPosts(kRequestingErrorMsgFromPrefPane);
    EXPECT_EQ(help(), said);
    ASSERT_TRUE(choose("Pad"));
    EXPECT_EQ(help(), "") << "a new attempt begins without the old complaint";
}

TEST_F(PaneConnection, TheHelpNamesThePortOfTheDeviceThatWasAskedFor)
{
    auto other = device("Board", "board.local");
    other.endpoints = {{"192.168.1.30", 7123, 0}};
    showWithTwoDevices();
    announce({other});
    ASSERT_TRUE(choose("Board"));
    after(16);
    EXPECT_NE(help().find("TCP port 7123"), std::string::npos) << help();
}

TEST_F(PaneConnection, AnErrorAskedForByTheServerShowsAtOnceAndLeavesTheSpinner)
{
    pickPad();
    after(1);
    serverPosts(kRequestingErrorMsgFromPrefPane);
    EXPECT_TRUE(warningShows());
    EXPECT_EQ(instructions(), errorText);
    EXPECT_TRUE(spinnerShows());
    EXPECT_EQ(popUpWidth(), reducedWidth);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr) << "told once";
    after(14.5);
    EXPECT_FALSE(spinnerShows());
}

TEST_F(PaneConnection, TheErrorStaysUntilTheFirstRefreshAfterItsFiveSeconds)
{
    showWithTwoDevices();
    serverPosts(kRequestingErrorMsgFromPrefPane);
    after(4.9);
    pane->updateUI();
    EXPECT_EQ(instructions(), errorText);
    EXPECT_TRUE(warningShows());
    after(0.2);
    EXPECT_EQ(pane->connectErrorMessageTimer().lock(), nullptr);
    EXPECT_EQ(instructions(), errorText) << "the end of the hold touches nothing";
    pane->updateUI();
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
}

TEST_F(PaneConnection, ASecondErrorHoldsForFiveSecondsOfItsOwn)
{
    showWithTwoDevices();
    pane->checkForConnectionError(nullptr);
    after(4);
    pane->checkForConnectionError(nullptr);
    after(4);
    pane->updateUI();
    EXPECT_EQ(instructions(), errorText);
    after(2);
    pane->updateUI();
    EXPECT_EQ(instructions(), normalText);
}

TEST_F(PaneConnection, PickingAgainClearsTheErrorTextButNotItsHold)
{
    showWithTwoDevices();
    pane->checkForConnectionError(nullptr);
    ASSERT_TRUE(choose("Pad"));
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
    EXPECT_NE(pane->connectErrorMessageTimer().lock(), nullptr);
}

TEST_F(PaneConnection, PickingAnotherDeviceStartsTheFifteenSecondsAnew)
{
    pickPad();
    after(10);
    ASSERT_TRUE(choose("Slab"));
    after(10);
    EXPECT_FALSE(warningShows());
    after(5.1);
    EXPECT_TRUE(warningShows());
}

TEST_F(PaneConnection, HidingTheProgressWithoutASpinnerOnlyEnablesThePopUp)
{
    showWithTwoDevices();
    pane->virtualScreenSelectionPopup()->setEnabled(false);
    pane->virtualScreenSelectionPopup()->setFrame({{10, 20}, {reducedWidth, 26}}, false);
    pane->setSpinningForServerTimer(
        fake.runLoop.scheduledTimer(farview::Duration(15), false, pane, [] {}));
    pane->hideProgressIndicator();
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_EQ(popUpWidth(), reducedWidth);
    EXPECT_NE(pane->spinningForServerTimer().lock(), nullptr);
}

TEST_F(PaneConnection, AFailedConnectLooksAgainAtSilentDevices)
{
    showWithTwoDevices();
    const int before = fake.discovery.checkAgainCount();
    pane->checkForConnectionError(nullptr);
    EXPECT_EQ(fake.discovery.checkAgainCount(), before + 1);
}

// What the server reports.

TEST_F(PaneConnection, AReportOfAnUnknownHostOnlyRefreshesTheDisplay)
{
    showConnectedToPad();
    pane->statusLabel()->setStringValue("stale");
    serverConnectedTo("stranger.local");
    EXPECT_EQ(selectedName(), "Pad");
    EXPECT_EQ(status(), "On");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "pad.local");
}

TEST_F(PaneConnection, AReportOfAnUnknownHostWhileNothingIsSelectedStoresNothing)
{
    showWithTwoDevices();
    serverConnectedTo("stranger.local");
    EXPECT_EQ(selectedName(), "");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "");
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(PaneConnection, AReportWithoutAUsableNameMatchesNoDevice)
{
    showConnectedToPad();
    auto nameless = device("Nameless", "");
    announce({nameless});
    pane->setConnectedToOtherDevice(true);
    serverPosts(kServerConnectedToDevice);
    EXPECT_FALSE(pane->connectedToOtherDevice());
    EXPECT_EQ(selectedName(), "Pad");
    serverPosts(kServerConnectedToDevice, {{"DeviceName", ""}});
    EXPECT_EQ(selectedName(), "Pad");
}

TEST_F(PaneConnection, OfTwoServicesOfOneHostTheFirstIsTaken)
{
    showWithState(1);
    announce({device("First", "same.local"), device("Second", "same.local")});
    serverConnectedTo("same.local");
    EXPECT_EQ(selectedName(), "First");
    EXPECT_EQ(selectedTitle(), "First");
}

TEST_F(PaneConnection, OfTwoServicesOfOneNameTheReportedHostIsTaken)
{
    showWithState(1);
    announce({device("Twin", "a.local"), device("Twin", "b.local")});
    serverConnectedTo("b.local");
    ASSERT_NE(pane->selectedNetService(), nullptr);
    EXPECT_EQ(pane->selectedNetService()->hostName(), "b.local");
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Twin", "Twin", connectToOther}));
}

TEST_F(PaneConnection, ADisconnectionForgetsTheDeviceAndKeepsTheStoredOne)
{
    showConnectedToPad();
    pane->setConnectedToOtherDevice(true);
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(selectedName(), "");
    EXPECT_FALSE(pane->connectedToOtherDevice());
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.5");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "pad.local");
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(PaneConnection, ByAddressTheStoredAddressWinsAndIsRememberedAsTyped)
{
    showWithState(1);
    setStored(kCurrentVirtualScreenDeviceName, "10.0.0.5");
    pane->setConnectedToOtherDeviceIPString("10.0.0.9");
    serverConnectedTo("Other");
    EXPECT_TRUE(pane->connectedToOtherDevice());
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.5");
    EXPECT_EQ(storedText(kLastOtherDeviceName), "10.0.0.5");
}

TEST_F(PaneConnection, ByAddressTheKnownAddressIsStoredWhenNoneWas)
{
    showWithState(1);
    setStored(kCurrentVirtualScreenDeviceName, "pad.local");
    pane->setConnectedToOtherDeviceIPString("fe80::1");
    serverConnectedTo("Other");
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "fe80::1");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "fe80::1");
}

TEST_F(PaneConnection, ByAddressTheReportedAddressIsTakenWhenNoneIsKnown)
{
    showWithState(1);
    serverConnectedTo("Other");
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "192.168.1.20");
    EXPECT_EQ(selectedTitle(), "192.168.1.20");
    EXPECT_TRUE(popUpIsEnabled()) << "connected by address counts as a device in sight";
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "");
}

TEST_F(PaneConnection, ByAddressNeitherSpinnerNorCheckEnd)
{
    pickPad();
    after(1);
    serverConnectedTo("Other");
    EXPECT_TRUE(spinnerShows());
    EXPECT_NE(pane->connectErrorCheckTimer().lock(), nullptr);
    after(14.5);
    EXPECT_TRUE(warningShows());
}

TEST_F(PaneConnection, AQueryResultWithoutNameIsIgnored)
{
    showConnectedToPad();
    pane->statusLabel()->setStringValue("untouched");
    serverPosts(kQueryResultForConnectedHost);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", ""}});
    EXPECT_EQ(status(), "untouched");
    EXPECT_EQ(selectedName(), "Pad");
}

TEST_F(PaneConnection, AQueryResultThatComesBeforeTheDevicesIsTriedEveryTwoSeconds)
{
    showWithState(1);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    after(20);
    EXPECT_EQ(selectedName(), "");
    announce({device("Pad", "pad.local")});
    EXPECT_EQ(selectedName(), "");
    after(2);
    EXPECT_EQ(selectedName(), "Pad");
    const auto pending = fake.runLoop.pendingCount();
    after(4);
    EXPECT_LE(fake.runLoop.pendingCount(), pending) << "no further try";
}

TEST_F(PaneConnection, AQueryResultOfAConnectionByAddressNeedsNoDevices)
{
    showWithState(1);
    serverPosts(kQueryResultForConnectedHost,
                {{"DeviceName", "Other"}, {"DeviceAddress", "10.0.0.7"}});
    EXPECT_TRUE(pane->connectedToOtherDevice());
    EXPECT_EQ(selectedTitle(), "10.0.0.7");
}

TEST_F(PaneConnection, OverlongForeignTextsAreIgnoredWithOneLineInTheLog)
{
    showConnectedToPad();
    const std::string tooLong(1 << 20, 'x');
    const auto lines = fake.log.lines().size();
    serverPosts(kServerConnectedToDevice, {{"DeviceName", "Other"}, {"DeviceAddress", tooLong}});
    EXPECT_EQ(fake.log.lines().size(), lines + 1);
    EXPECT_LT(fake.log.lines().back().message.size(), 200u);
    EXPECT_FALSE(pane->connectedToOtherDevice());
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", tooLong}});
    EXPECT_EQ(fake.log.lines().size(), lines + 2);
    EXPECT_EQ(selectedName(), "Pad");
}

TEST_F(PaneConnection, AFloodOfEarlyQueryResultsIsBounded)
{
    showWithState(1);
    const auto pending = fake.runLoop.pendingCount();
    for (int count = 0; count < 1000; ++count)
        serverPosts(kQueryResultForConnectedHost, {{"DeviceName", std::to_string(count)}});
    EXPECT_LE(fake.runLoop.pendingCount(), pending + 64);
    announce({device("Pad", "pad.local")});
    after(5);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    EXPECT_EQ(selectedName(), "Pad");
}

TEST_F(PaneConnection, AnotherPanelsRequestIsHeardToo)
{
    showWithTwoDevices();
    pane->virtualScreenSelectionPopup()->setEnabled(false);
    serverPosts(kConnectServerToHost, {{"connectToHostName", "pad.local"}});
    EXPECT_TRUE(popUpIsEnabled());
}

TEST_F(PaneConnection, TheReservedNameOfAResponseIsNotListenedTo)
{
    showWithTwoDevices();
    pane->virtualScreenSelectionPopup()->setEnabled(false);
    serverPosts(kServerRespondedToConnectRequest);
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_FALSE(fake.distributedNotificationCenter.isObserved(kServerRespondedToConnectRequest));
}

// Which names reach which handler.

TEST_F(PaneConnection, EveryRegisteredNameReachesItsHandler)
{
    showWithTwoDevices();
    for (const char* name :
         {kFVEPrefsDidChangeNotification, kConnectServerToHost, kQueryResultForConnectedHost,
          kServerConnectedToDevice, kServerDisconnectedFromDevice, kRequestingErrorMsgFromPrefPane})
        EXPECT_TRUE(fake.distributedNotificationCenter.isObserved(name)) << name;
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "slab.local"}});
    EXPECT_EQ(selectedName(), "Slab");
    serverConnectedTo("pad.local");
    EXPECT_EQ(selectedName(), "Pad");
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(selectedName(), "");
}

TEST_F(PaneConnection, TheTwoNamesThatASheetTakesOverCanBeSwapped)
{
    showWithTwoDevices();
    auto& center = fake.distributedNotificationCenter;
    for (const char* name : {kQueryResultForConnectedHost, kServerConnectedToDevice})
        center.removeObserver(std::weak_ptr<void>(pane), name, "");
    serverConnectedTo("pad.local");
    EXPECT_EQ(selectedName(), "");
    center.addObserver(pane, farview::performing(pane, {"serverConnectedToDeviceNotification:"}),
                       kServerConnectedToDevice, "");
    serverConnectedTo("pad.local");
    EXPECT_EQ(selectedName(), "Pad");
}

// The watchdog.

TEST_F(PaneConnection, TheWatchdogTurnsTheSwitchOffWhenNoServerRuns)
{
    showWithState(1);
    after(9.9);
    EXPECT_EQ(switchState(), 1);
    fake.distributedNotificationCenter.forgetPosts();
    after(0.2);
    EXPECT_EQ(switchState(), 0);
    EXPECT_EQ(pane->onOffSwitch()->slider()->doubleValue(), 0.0) << "without an animation";
    EXPECT_EQ(stored(kCurrentState), farview::PropertyList(1)) << "nothing is stored";
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
}

TEST_F(PaneConnection, TheWatchdogTurnsTheSwitchOnWhenAServerRuns)
{
    showWithState(0);
    serverRuns();
    after(10.1);
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(stored(kCurrentState), farview::PropertyList(0));
    EXPECT_TRUE(fake.workspace.launches().empty() ||
                fake.workspace.launches().front().path.find("ScreenCapture") == std::string::npos);
}

TEST_F(PaneConnection, TheWatchdogLeavesASwitchInStepAlone)
{
    showWithTwoDevices();
    after(60);
    EXPECT_EQ(switchState(), 1);
    fake.processTable.clear();
    changeElsewhere(kCurrentState, 0);
    after(60);
    EXPECT_EQ(switchState(), 0);
}

TEST_F(PaneConnection, TheWatchdogLeavesTheSwitchAloneWhenTheLookUpFails)
{
    showWithState(1);
    fake.processTable.setSizeError(5);
    after(30);
    EXPECT_EQ(switchState(), 1);
    fake.processTable.setSizeError(0);
    for (int pid = 1; pid <= 11; ++pid)
        fake.processTable.add(pid, "ScreenCapture");
    changeElsewhere(kCurrentState, 0);
    after(30);
    EXPECT_EQ(switchState(), 0) << "more than the buffer holds is a failure of the look-up";
}

TEST_F(PaneConnection, TheWatchdogRunsWhileThePaneIsHidden)
{
    showWithState(1);
    hide();
    after(10.1);
    EXPECT_EQ(switchState(), 0);
}

// Timers.

TEST_F(PaneConnection, ATimerSetterEndsTheTimerBefore)
{
    load();
    const auto timer = [this] {
        return fake.runLoop.scheduledTimer(farview::Duration(100), false, pane, [] {});
    };
    const auto first = timer();
    const auto second = timer();
    pane->setConnectErrorCheckTimer(first);
    pane->setConnectErrorCheckTimer(first);
    EXPECT_TRUE(first->isValid()) << "the timer already held stays";
    pane->setConnectErrorCheckTimer(second);
    EXPECT_FALSE(first->isValid());
    EXPECT_TRUE(second->isValid());
    pane->setConnectErrorCheckTimer({});
    EXPECT_FALSE(second->isValid());
    pane->setConnectErrorCheckTimer({});
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
}

} // namespace
