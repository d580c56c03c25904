// What goes wrong around a pane, at every bad moment.

#include "Tests/Source/PaneFixture.h"

namespace
{

class PaneFaults : public PaneFixture
{
protected:
    void pick()
    {
        fake.processTable.add(4711, "ScreenCapture");
        showWithPadAndSlab();
        ASSERT_TRUE(choose("Pad"));
    }
    /// Every timer and delayed perform that a pane can have is pending.
    void makeEverythingPending()
    {
        pick();
        pane->checkForConnectionError(nullptr);
        pane->setConnectErrorCheckTimer(
            fake.runLoop.scheduledTimer(farview::Duration(15), false, pane,
                                        [this] { pane->checkForConnectionError(nullptr); }));
        leave({"Pad", "Slab"});
        serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    }
};

TEST_F(PaneFaults, OffRightAfterAPickLeavesAPopUpThatSaysOff)
{
    pick();
    after(0.1);
    pane->offTextPressed(nullptr);
    EXPECT_EQ(status(), "Off");
    EXPECT_FALSE(popUpIsEnabled());
    after(0.2);
    EXPECT_TRUE(spinnerShows()) << "a pending spinner is not called off";
    after(15);
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(popUpWidth(), fullWidth);
    EXPECT_EQ(status(), "Off");
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: Off");
    EXPECT_TRUE(warningShows()) << "the check goes on and tells that nothing came of the pick";
}

TEST_F(PaneFaults, OffAndOnInQuickSuccessionEndsOn)
{
    pick();
    const auto launches = fake.workspace.launches().size();
    for (int time = 0; time < 5; ++time) {
        pane->offTextPressed(nullptr);
        pane->onTextPressed(nullptr);
    }
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(status(), "On");
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(stored(kCurrentState), farview::PropertyList(1));
    EXPECT_EQ(posts(kTerminateScreenServer).size(), 5u);
    EXPECT_EQ(fake.workspace.launches().size(), launches + 5);
    EXPECT_TRUE(popUpIsEnabled());
}

TEST_F(PaneFaults, AClockThatJumpsNeitherHastensNorDelaysTheError)
{
    pick();
    fake.runLoop.jumpWallClock(farview::Duration(3600));
    after(14);
    EXPECT_FALSE(warningShows());
    fake.runLoop.jumpWallClock(farview::Duration(-7200));
    after(1.1);
    EXPECT_TRUE(warningShows());
}

TEST_F(PaneFaults, ASuspendedComputerGivesTheServerItsFifteenSecondsAwake)
{
    pick();
    after(5);
    fake.runLoop.suspend(farview::Duration(3600));
    after(9);
    EXPECT_FALSE(warningShows());
    serverConnectedTo("pad.local");
    after(60);
    EXPECT_FALSE(warningShows());
}

TEST_F(PaneFaults, ADeviceRenamedWhileSelectedStandsInTheBackgroundUnderItsOldName)
{
    showConnectedToPad();
    fake.discovery.remove({"Pad"});
    fake.discovery.announce({device("Tablet", "pad.local")});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(menuTitles(),
              (Texts{noDevice, "Slab", "Tablet", connectToOther, "Pad (in background)"}));
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Slab", "Tablet", connectToOther}));
    EXPECT_EQ(selectedTitle(), "Tablet");
}

TEST_F(PaneFaults, ADeviceThatLeavesWhileItIsAskedForEndsInTheError)
{
    pick();
    fake.discovery.remove({"Pad"});
    after(1);
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Slab", connectToOther}));
    after(15);
    EXPECT_TRUE(warningShows());
    EXPECT_FALSE(spinnerShows());
}

TEST_F(PaneFaults, AnEntryOfAnOldMenuCanStillBeChosenWithoutHarm)
{
    showWithPad();
    const auto old = entry("Pad");
    leave({"Pad"});
    ASSERT_TRUE(old->canBeChosen());
    pane->takeVirtualScreenFrom(old.get());
    EXPECT_EQ(posts(kConnectServerToHost).size(), 1u) << "the device may well still answer";
}

TEST_F(PaneFaults, AnOpenMenuOutlivesThePane)
{
    showWithPad();
    const auto popUp = pane->virtualScreenSelectionPopup();
    const auto old = entry("Pad");
    pane.reset();
    EXPECT_FALSE(old->canBeChosen());
    popUp->choose(old);
    EXPECT_TRUE(posts(kConnectServerToHost).empty());
}

TEST_F(PaneFaults, HiddenWhileEverythingIsPendingItHearsNothingAndItsTimersEnd)
{
    makeEverythingPending();
    hide();
    const auto before = status();
    serverConnectedTo("pad.local");
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    after(120);
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(status(), before);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
    EXPECT_EQ(pane->connectErrorMessageTimer().lock(), nullptr);
    show();
    EXPECT_FALSE(warningShows()) << "the next showing starts with the normal text";
}

TEST_F(PaneFaults, DestroyedWhileEverythingIsPendingNothingFires)
{
    makeEverythingPending();
    const auto label = pane->instructionsLabel();
    const auto spinner = pane->waitingForServerIndicator();
    pane.reset();
    const bool spun = !spinner->isHidden();
    const auto text = label->stringValue();
    fake.distributedNotificationCenter.forgetPosts();
    after(120);
    EXPECT_EQ(!spinner->isHidden(), spun);
    EXPECT_EQ(label->stringValue(), text);
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
    EXPECT_EQ(fake.runLoop.pendingCount(), 0u);
}

TEST_F(PaneFaults, DestroyedRightAfterAPickItsOwnPostReachesNobody)
{
    pick();
    pane.reset();
    fake.runLoop.runUntilIdle();
    after(30);
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), 0u);
}

TEST_F(PaneFaults, DestroyedWhileDevicesAreResolvedNothingFires)
{
    showWithState(1);
    auto slow = device("Slow", "slow.local");
    slow.resolve.outcome = farview::FakeResolve::Outcome::never;
    announce({slow, device("Pad", "pad.local")});
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther})) << "the batch waits";
    fake.discovery.remove({"Pad"});
    fake.discovery.announce({device("New", "new.local")});
    pane.reset();
    fake.distributedNotificationCenter.forgetPosts();
    after(30);
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
}

TEST_F(PaneFaults, HiddenAndShownWhileDevicesAreResolvedTheyAreListed)
{
    showWithState(1);
    auto slow = device("Slow", "slow.local");
    slow.resolve.outcome = farview::FakeResolve::Outcome::never;
    announce({slow});
    hide();
    after(1);
    show();
    after(6);
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Slow", connectToOther}));
}

TEST_F(PaneFaults, PickedThenHiddenTheErrorIsThereOnlyUntilTheNextShowing)
{
    pick();
    fake.runLoop.runUntilIdle();
    hide();
    after(16);
    EXPECT_TRUE(warningShows());
    after(5);
    show();
    EXPECT_FALSE(warningShows());
}

TEST_F(PaneFaults, PickedThenHiddenAndShownAgainTheAnswerToTheQuerySelects)
{
    pick();
    fake.runLoop.runUntilIdle();
    hide();
    serverConnectedTo("pad.local");
    show();
    after(1);
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    EXPECT_EQ(selectedTitle(), "Pad");
    after(30);
    EXPECT_FALSE(warningShows()) << "the answer called the check off";
}

TEST_F(PaneFaults, AFullDiskLosesNoListAndPostsNoStorm)
{
    setStored(kAutoConnectDevices, farview::PropertyList::Array{"B"});
    fake.fileManager.putPropertyList(pane->seenDevicesFilename(),
                                     farview::PropertyList::Array{"C"});
    showWithState(1);
    fake.preferences.setWritesFail(true);
    fake.fileManager.setWritesFail(true);
    fake.distributedNotificationCenter.forgetPosts();
    announce({device("Pad", "pad.local")});
    after(5);
    EXPECT_LE(fake.distributedNotificationCenter.posts().size(), 20u);
    EXPECT_EQ(seenDevices(), (Texts{"C"}));
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Pad", connectToOther}));
}

TEST_F(PaneFaults, AMenuOfFiveHundredDevicesShowsTheLastOne)
{
    showWithState(1);
    std::vector<farview::FakeDevice> many;
    farview::PropertyList::Array chosen;
    for (int index = 0; index < 500; ++index) {
        const std::string number = std::to_string(index);
        many.push_back(device("Device " + number, "host" + number + ".local"));
        chosen.push_back("Device " + number);
    }
    setStored(kAutoConnectDevices, chosen);
    announce(many);
    serverConnectedTo("host499.local");
    ASSERT_EQ(menuTitles().size(), 502u);
    EXPECT_EQ(selectedTitle(), "Device 499");
}

} // namespace
