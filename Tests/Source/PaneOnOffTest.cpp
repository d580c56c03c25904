// Showing and hiding, on and off, and what other programs store meanwhile.

#include "Tests/Source/PaneFixture.h"

#include "Source/FVEConnectToOtherSheetController.h"

#include <cmath>

namespace
{

class PaneOnOff : public PaneFixture
{
protected:
    int launchesOf(const std::string& name) const
    {
        int count = 0;
        for (const auto& launch : fake.workspace.launches())
            count += launch.path.ends_with("/" + name + ".app") ? 1 : 0;
        return count;
    }
    int serverLaunches() const { return launchesOf("ScreenCapture"); }
    std::size_t registrations() const
    {
        return fake.distributedNotificationCenter.registrationCount() +
               fake.notificationCenter.registrationCount();
    }
    std::optional<farview::PropertyList> storedState() const { return stored(kCurrentState); }
};

TEST_F(PaneOnOff, FirstShowingOpensTheSettingsAndLaterOnesTheFirstTab)
{
    loadAndShow();
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Settings");
    EXPECT_EQ(stored(kOpenPrefsInSettingsPane), farview::PropertyList(false));
    hide();
    show();
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Main");
    hide();
    setStored(kOpenPrefsInSettingsPane, true);
    show();
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Settings");
}

TEST_F(PaneOnOff, OnWhileOnOnlyHidesTheProgress)
{
    showWithState(1);
    const int launches = serverLaunches();
    pane->showWaitingSpinner();
    fake.distributedNotificationCenter.forgetPosts();
    pane->onTextPressed(nullptr);
    EXPECT_EQ(serverLaunches(), launches);
    EXPECT_FALSE(spinnerShows());
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
}

TEST_F(PaneOnOff, OffWhileOffOnlyHidesTheProgress)
{
    showWithState(0);
    pane->showWaitingSpinner();
    fake.distributedNotificationCenter.forgetPosts();
    pane->offTextPressed(nullptr);
    EXPECT_FALSE(spinnerShows());
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
    EXPECT_TRUE(popUpIsEnabled()) << "nothing refreshes the display";
}

TEST_F(PaneOnOff, OnFromOffAndFromTroubleStartsTheServer)
{
    for (const long state : {0L, 2L}) {
        newPane();
        showWithState(state);
        const int launches = serverLaunches();
        pane->onTextPressed(nullptr);
        EXPECT_EQ(storedState(), farview::PropertyList(1)) << state;
        EXPECT_EQ(switchState(), 1) << state;
        EXPECT_EQ(serverLaunches(), launches + 1) << state;
        EXPECT_EQ(status(), "On") << state;
    }
}

TEST_F(PaneOnOff, OffFromOnAndFromTroubleAsksTheServerToQuit)
{
    for (const long state : {1L, 2L}) {
        newPane();
        showWithState(state);
        fake.distributedNotificationCenter.forgetPosts();
        pane->offTextPressed(nullptr);
        EXPECT_EQ(storedState(), farview::PropertyList(0)) << state;
        EXPECT_EQ(switchState(), 0) << state;
        ASSERT_EQ(posts(kTerminateScreenServer).size(), 1u) << state;
        EXPECT_EQ(posts(kTerminateScreenServer)[0], (Post{kTerminateScreenServer, "", {}, 3u}));
        EXPECT_EQ(posts(kTerminateMenuExtra).size(), 0u) << "the status item is left alone";
        EXPECT_EQ(status(), "Off") << state;
    }
}

TEST_F(PaneOnOff, OffForgetsTheDeviceAndKeepsTheAddress)
{
    showConnectedToPad();
    pane->setConnectedToOtherDevice(true);
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    pane->offTextPressed(nullptr);
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_TRUE(pane->connectedToOtherDevice());
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), "10.0.0.5");
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "pad.local");
}

TEST_F(PaneOnOff, TheSwitchItselfTurnsOnAndOff)
{
    showWithState(0);
    pane->onOffSwitch()->slider()->moveRight(nullptr);
    EXPECT_EQ(storedState(), farview::PropertyList(1));
    pane->onOffSwitch()->slider()->moveLeft(nullptr);
    EXPECT_EQ(storedState(), farview::PropertyList(0));
}

TEST_F(PaneOnOff, AnySwitchValueButOneIsOff)
{
    for (const double value : {0.0, 0.5, 0.999, std::nan("")}) {
        newPane();
        showWithState(1);
        const auto slider = pane->onOffSwitch()->slider();
        slider->setDoubleValue(value, false);
        pane->onOffSwitchPressed(slider.get());
        EXPECT_EQ(storedState(), farview::PropertyList(0)) << value;
    }
}

TEST_F(PaneOnOff, TheViewAroundTheSliderMayBeTheSenderToo)
{
    showWithState(0);
    pane->onOffSwitch()->setState(1, false);
    pane->onOffSliderPressed(pane->onOffSwitch().get());
    EXPECT_EQ(storedState(), farview::PropertyList(1));
    pane->onOffSliderPressed(nullptr);
    EXPECT_EQ(storedState(), farview::PropertyList(0)) << "a sender without a value is off";
}

TEST_F(PaneOnOff, ShowingWhileOnLaunchesTheServerEachTime)
{
    showWithState(1);
    EXPECT_EQ(serverLaunches(), 1);
    const auto& launch = fake.workspace.launches().front();
    EXPECT_EQ(launch.options, 0x10300u);
    EXPECT_EQ(launch.path,
              "/opt/Farview Preferences.prefPane/Contents/Resources/ScreenCapture.app");
    hide();
    show();
    EXPECT_EQ(serverLaunches(), 2);
}

TEST_F(PaneOnOff, ShowingWhileOffOrInTroubleLaunchesNoServer)
{
    showWithState(2);
    hide();
    setStored(kCurrentState, 0);
    show();
    EXPECT_EQ(serverLaunches(), 0);
}

TEST_F(PaneOnOff, TheStatusItemStartsOnlyWhenItIsWanted)
{
    setStored(kShowInMenuBar, false);
    showWithState(0);
    EXPECT_EQ(launchesOf("FarviewStatusItem"), 0);
    hide();
    setStored(kShowInMenuBar, true);
    show();
    EXPECT_EQ(launchesOf("FarviewStatusItem"), 1);
}

TEST_F(PaneOnOff, AStateStoredElsewhereMovesTheSwitchAndStartsAndStopsNothing)
{
    showWithState(1);
    const int launches = serverLaunches();
    changeElsewhere(kCurrentState, 0);
    EXPECT_EQ(switchState(), 0);
    EXPECT_EQ(status(), "Off");
    EXPECT_EQ(posts(kTerminateScreenServer).size(), 0u);
    changeElsewhere(kCurrentState, 2);
    EXPECT_EQ(switchState(), 1);
    changeElsewhere(kCurrentState, 0);
    changeElsewhere(kCurrentState, 1);
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(serverLaunches(), launches);
}

TEST_F(PaneOnOff, TheHiDPIBoxIsDisabledBefore10_7WhateverTheSettingSays)
{
    fake.systemVersion.setVersion(10, 6, 8);
    fake.preferences.writeAsAnotherProcess("DisplayResolutionEnabled", true,
                                           "com.apple.windowserver", farview::PreferencesUser::any,
                                           farview::PreferencesHost::current);
    loadAndShow();
    EXPECT_FALSE(pane->enableHiDPIResolutions()->isEnabled());
    EXPECT_EQ(pane->enableHiDPIResolutions()->state(), 1);
    hide();
    fake.systemVersion.setVersion(10, 7, 0);
    show();
    EXPECT_TRUE(pane->enableHiDPIResolutions()->isEnabled());
}

TEST_F(PaneOnOff, WithoutAccessibilityWindowsAreNotMovedBack)
{
    setStored(kAutoMoveWindowsBackOption, true);
    showWithState(1);
    EXPECT_EQ(pane->autoMoveWindowsBack()->state(), 0);
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), farview::PropertyList(false));
}

TEST_F(PaneOnOff, ObserversExistOnlyWhileShown)
{
    load();
    EXPECT_EQ(registrations(), 0u);
    show();
    EXPECT_EQ(fake.distributedNotificationCenter.registrationCount(), 10u);
    EXPECT_EQ(fake.notificationCenter.registrationCount(), 5u);
    hide();
    EXPECT_EQ(registrations(), 0u);
    show();
    EXPECT_EQ(registrations(), 15u);
    pane.reset();
    EXPECT_EQ(registrations(), 0u);
}

TEST_F(PaneOnOff, EachShowingMakesABrowserAndTheEarlierOneGoesOnSearching)
{
    showWithState(1);
    const auto first = pane->bonjourBrowser();
    EXPECT_TRUE(first->monitorTXTRecordUpdates());
    EXPECT_EQ(QLNBonjourBrowser::bonjourServiceName(), "_qlexvscreen._udp");
    hide();
    EXPECT_EQ(pane->bonjourBrowser(), first) << "kept while hidden";
    show();
    EXPECT_NE(pane->bonjourBrowser(), first);
    const auto browsers = fake.discovery.browsers();
    ASSERT_EQ(browsers.size(), 2u);
    EXPECT_TRUE(browsers[0]->isSearching());
    EXPECT_TRUE(browsers[1]->isSearching());
}

TEST_F(PaneOnOff, TwoHundredShowingsLeaveNothingBehind)
{
    showWithState(1);
    const auto registered = registrations();
    for (int showing = 0; showing < 200; ++showing) {
        hide();
        show();
    }
    EXPECT_EQ(registrations(), registered);
    EXPECT_LE(fake.discovery.browsers().size(), 5u);
    EXPECT_LE(fake.runLoop.pendingCount(), 3u)
        << "the watchdog, a browser's last wait, and what this showing does about updates";
    announce({device("Pad", "pad.local")});
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Pad", connectToOther}));
}

TEST_F(PaneOnOff, ADeviceThatDiedSilentlyIsLookedAtAgainAtTheNextShowing)
{
    showWithPad();
    hide();
    fake.discovery.kill("Pad");
    const int before = fake.discovery.checkAgainCount();
    show();
    EXPECT_EQ(fake.discovery.checkAgainCount(), before + 1);
    after(6);
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther}));
}

TEST_F(PaneOnOff, ResourcesAreFoundInTheBundle)
{
    load();
    const std::string folder = "/opt/Farview Preferences.prefPane/Contents/Resources/";
    EXPECT_EQ(pane->screenServerApplication()->path(), folder + "ScreenCapture.app");
    EXPECT_EQ(pane->statusItemApplication()->path(), folder + "FarviewStatusItem.app");
    EXPECT_EQ(pane->documentation()->path(), folder + "Farview Documentation.pdf");
    EXPECT_EQ(pane->installerURL()->absoluteString(), "https://example.org/install");
    EXPECT_EQ(pane->displayResolutionsOnURL()->path(), folder + "com.quillon.displayresolutionson");
    EXPECT_EQ(pane->displayResolutionsOffURL()->path(),
              folder + "com.quillon.displayresolutionsoff");
    EXPECT_EQ(pane->versionNumberLabel()->stringValue(), "1.2 (15644)");
    EXPECT_NE(pane->connectToOtherSheetController(), nullptr);
}

TEST_F(PaneOnOff, MissingResourcesAreSurvived)
{
    fake.bundles.remove("/opt/Farview Preferences.prefPane");
    bundle = fake.bundles.add("/opt/Farview Preferences.prefPane");
    newPane();
    showWithState(1);
    EXPECT_TRUE(pane->screenServerApplication().has_value()) << "made without a check";
    EXPECT_EQ(pane->screenServerApplication()->path(), "");
    EXPECT_EQ(pane->displayResolutionsOnURL(), std::nullopt);
    EXPECT_EQ(pane->displayResolutionsOffURL(), std::nullopt);
    EXPECT_EQ(pane->installerURL(), std::nullopt);
    EXPECT_EQ(pane->versionNumberLabel()->stringValue(), "(null) (15644)");
    EXPECT_TRUE(fake.log.contains("Cannot start"));
    pane->reinstallDriversPressed(nullptr);
    EXPECT_TRUE(fake.workspace.opened().empty());
    EXPECT_EQ(status(), "On");
}

TEST_F(PaneOnOff, AfterTheBusReturnedSettingsAreReadAndTheConnectionIsAskedFor)
{
    showWithState(1);
    fake.distributedNotificationCenter.disconnect();
    setStored(kCurrentState, 0);
    fake.distributedNotificationCenter.forgetPosts();
    fake.distributedNotificationCenter.reconnect();
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(switchState(), 0);
    EXPECT_EQ(status(), "Off");
    EXPECT_EQ(posts(kQueryRequestForConnectedHost).size(), 1u);
    hide();
    fake.distributedNotificationCenter.forgetPosts();
    fake.distributedNotificationCenter.reconnect();
    fake.runLoop.runUntilIdle();
    EXPECT_TRUE(posts(kQueryRequestForConnectedHost).empty()) << "a hidden pane asks when shown";
}

TEST_F(PaneOnOff, ActivationOfTheApplicationIsHeardAndChangesNothing)
{
    showWithState(1);
    fake.distributedNotificationCenter.forgetPosts();
    fake.notificationCenter.postNotificationName("NSApplicationDidBecomeActiveNotification",
                                                 fake.application.get(), {});
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
    EXPECT_EQ(status(), "On");
}

TEST_F(PaneOnOff, ClosedBeforeItWasEverShownItLosesNoStoredList)
{
    setStored(kAutoConnectDevices, farview::PropertyList::Array{"B", "A"});
    fake.fileManager.putPropertyList(pane->seenDevicesFilename(),
                                     farview::PropertyList::Array{"C"});
    load();
    hide();
    pane.reset();
    EXPECT_EQ(stored(kAutoConnectDevices),
              farview::PropertyList(farview::PropertyList::Array{"B", "A"}));
    EXPECT_TRUE(fake.fileManager.writes().empty());
}

TEST_F(PaneOnOff, DestroyedWithoutEverBeingLoadedItDoesNothing)
{
    pane.reset();
    EXPECT_TRUE(fake.distributedNotificationCenter.posts().empty());
    EXPECT_EQ(fake.preferences.setCount(), 0);
}

} // namespace
