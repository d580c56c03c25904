// The order in which the pane does things over its life, read from a journal.

#include "Tests/Source/JournalPlatform.h"
#include "Tests/Source/PaneFixture.h"

#include <algorithm>

namespace
{

class PaneOrder : public PaneFixture
{
protected:
    PaneOrder()
    {
        newPane(journalPlatform.platform());
        EXPECT_TRUE(pane->initWithBundle(journalPlatform.bundle(bundle)));
        // Everything stored, so that no default is written and announced in between.
        setStored(kCurrentState, 1);
        setStored(kCurrentVirtualScreenDeviceName, "");
        setStored(kAutoConnectDevices, farview::PropertyList::Array{});
        for (const char* key : {kShowInMenuBar, kAutoUpdateOption, kAutoMoveWindowsBackOption,
                                kEnableTouchDisplayOption, kEnableRetinaDisplayOption})
            setStored(key, true);
        setStored(kAutoConnectOption, false);
        setStored(kOpenPrefsInSettingsPane, false);
    }

    ~PaneOrder() override { pane.reset(); }

    /// From now on every change of that control leaves a line.
    void watch(const std::string& name, farview::View& view)
    {
        watches.push_back(view.observe([this, name](farview::Change) { journal.add(name); }));
    }

    void watchControls()
    {
        watch("onOffSwitch", *pane->onOffSwitch()->slider());
        watch("autoMoveWindowsBack", *pane->autoMoveWindowsBack());
        watch("enableTouchDisplay", *pane->enableTouchDisplay());
        watch("autoConnect", *pane->autoConnect());
        watch("autoConnectTable", *pane->autoConnectTable());
        watch("versionNumberLabel", *pane->versionNumberLabel());
        watch("tabView", *pane->tabView());
        watch("enableHiDPIResolutions", *pane->enableHiDPIResolutions());
        watch("enableRetinaResolutions", *pane->enableRetinaResolutions());
        watch("statusLabel", *pane->statusLabel());
    }

    /// The journal without repetitions of a line right after itself.
    Texts lines() const
    {
        Texts once;
        for (const auto& line : journal.lines()) {
            if (once.empty() || once.back() != line)
                once.push_back(line);
        }
        return once;
    }

    Journal journal;
    JournalPlatform journalPlatform{fake, journal};
    farview::Platform::Scope journalScope{journalPlatform.platform()};
    std::vector<farview::Subscription> watches;
};

TEST_F(PaneOrder, InitialisingTouchesNothing)
{
    EXPECT_EQ(lines(), Texts{});
    EXPECT_EQ(pane->mainNibName(), "PreferencePane");
    EXPECT_EQ(pane->screenServerApplication(), std::nullopt);
    EXPECT_FALSE(pane->initWithBundle(nullptr));
}

TEST_F(PaneOrder, LoadingGoesThroughItsSteps)
{
    watchControls();
    load();
    EXPECT_EQ(lines(),
              (Texts{"look up IOService:/IOResources/QLExGFX", "onOffSwitch", "autoMoveWindowsBack",
                     "enableTouchDisplay", "autoConnectTable", "resource ScreenCapture|app",
                     "resource FarviewStatusItem|app", "resource Farview Documentation|pdf",
                     "info QLNInstallerURL", "resource com.quillon.displayresolutionson|",
                     "resource com.quillon.displayresolutionsoff|", "info CFBundleVersion",
                     "versionNumberLabel", "timer 10 repeating", "info incompatibleModels"}));
}

TEST_F(PaneOrder, ShowingGoesThroughItsSteps)
{
    load();
    pane->tabView()->selectTabViewItemWithIdentifier("Settings");
    fake.preferences.writeAsAnotherProcess("DisplayResolutionEnabled", true,
                                           "com.apple.windowserver", farview::PreferencesUser::any,
                                           farview::PreferencesHost::current);
    watchControls();
    journal.forget();
    pane->willSelect();
    const std::string activation = "local observe NSApplicationDidBecomeActiveNotification of one "
                                   "object";
    EXPECT_EQ(journal.lines(), (Texts{"distributed observe FVEPrefsDidChangeNotification",
                                      "distributed observe ConnectServerToHost",
                                      "distributed observe QueryResultForConnectedHost",
                                      "distributed observe ServerConnectedToDevice",
                                      "distributed observe ServerDisconnectedFromDevice",
                                      "distributed observe RequestingErrorMsgFromPrefPane",
                                      activation,
                                      activation,
                                      "local observe kQLNBonjourBrowserDidAddService",
                                      "local observe kQLNBonjourBrowserDidRemoveService",
                                      "local observe kQLNBonjourBrowserDidUpdateService",
                                      "tabView",
                                      "enableHiDPIResolutions",
                                      "enableRetinaResolutions",
                                      "make browser",
                                      "statusLabel",
                                      "launch ScreenCapture.app",
                                      "launch FarviewStatusItem.app",
                                      "post QueryRequestForConnectedHost 2",
                                      "timer 3"}));
}

TEST_F(PaneOrder, TheFirstShowingForgetsItsFlagBeforeItTurnsToTheSettings)
{
    setStored(kOpenPrefsInSettingsPane, true);
    load();
    watchControls();
    journal.forget();
    pane->willSelect();
    const auto done = lines();
    const auto flag = std::find(done.begin(), done.end(), "set openPrefsInSettingsPane");
    const auto tab = std::find(done.begin(), done.end(), "tabView");
    const auto browser = std::find(done.begin(), done.end(), "make browser");
    ASSERT_NE(flag, done.end());
    EXPECT_LT(flag, tab);
    EXPECT_LT(tab, browser);
    EXPECT_NE(browser, done.end());
}

TEST_F(PaneOrder, MissingDefaultsAreWrittenAfterTheBrowserIsMadeAndBeforeTheDisplay)
{
    load();
    fake.preferences.writeAsAnotherProcess(kAutoUpdateOption, std::nullopt, kApplicationID);
    watchControls();
    journal.forget();
    pane->willSelect();
    const auto done = lines();
    const auto browser = std::find(done.begin(), done.end(), "make browser");
    const auto defaults = std::find(done.begin(), done.end(), "set autoUpdateOption");
    const auto display = std::find(done.begin(), done.end(), "statusLabel");
    EXPECT_LT(browser, defaults);
    EXPECT_LT(defaults, display);
    EXPECT_NE(display, done.end());
}

TEST_F(PaneOrder, EnteringActivatesThenBuildsTheListThenChecksAccess)
{
    load();
    pane->willSelect();
    watch("autoMoveWindowsBack", *pane->autoMoveWindowsBack());
    journal.forget();
    pane->didSelect();
    const auto done = lines();
    ASSERT_GE(done.size(), 4u);
    EXPECT_EQ(Texts(done.begin(), done.begin() + 4),
              (Texts{"activate 3", "read " + pane->seenDevicesFilename(), "autoMoveWindowsBack",
                     "set autoMoveWindowsBackOption"}));
}

TEST_F(PaneOrder, EnteringWithAccessLeavesTheOptionAlone)
{
    fake.accessibility.setEnabled(true);
    load();
    pane->willSelect();
    journal.forget();
    pane->didSelect();
    EXPECT_EQ(lines(), (Texts{"activate 3", "read " + pane->seenDevicesFilename()}));
    EXPECT_EQ(pane->autoMoveWindowsBack()->state(), 1);
}

TEST_F(PaneOrder, LeavingRemovesObserversThenWritesTheList)
{
    load();
    pane->willSelect();
    pane->didSelect();
    journal.forget();
    pane->willUnselect();
    const auto done = lines();
    ASSERT_GE(done.size(), 5u);
    EXPECT_EQ(Texts(done.begin(), done.begin() + 5),
              (Texts{"local remove all", "distributed remove all",
                     "create folder " + FVEPreferencePane::applicationSupportFolder(),
                     "write " + pane->seenDevicesFilename(), "set autoConnectDevices"}));
}

TEST_F(PaneOrder, TurningOnStoresThenMovesTheSwitchThenLaunches)
{
    setStored(kCurrentState, 0);
    load();
    pane->willSelect();
    watchControls();
    journal.forget();
    pane->onTextPressed(nullptr);
    EXPECT_EQ(lines(), (Texts{"set currentState", "post FVEPrefsWillChangeNotification 3",
                              "synchronize", "post FVEPrefsDidChangeNotification 3", "onOffSwitch",
                              "launch ScreenCapture.app", "statusLabel"}));
}

TEST_F(PaneOrder, TurningOffStoresThenMovesTheSwitchThenAsksTheServerToQuit)
{
    load();
    pane->willSelect();
    watchControls();
    journal.forget();
    pane->offTextPressed(nullptr);
    EXPECT_EQ(lines(), (Texts{"set currentState", "post FVEPrefsWillChangeNotification 3",
                              "synchronize", "post FVEPrefsDidChangeNotification 3", "onOffSwitch",
                              "post TerminateScreenServer 3", "statusLabel"}));
}

TEST_F(PaneOrder, AChangeElsewhereIsReadBeforeItIsShown)
{
    load();
    pane->willSelect();
    setStored(kCurrentState, 0);
    watchControls();
    journal.forget();
    pane->prefsChanged({kFVEPrefsDidChangeNotification, nullptr, {}});
    EXPECT_EQ(lines(), (Texts{"synchronize", "onOffSwitch", "statusLabel"}));
}

TEST_F(PaneOrder, ANewDeviceIsAskedForThenShownThenListedThenStored)
{
    load();
    pane->willSelect();
    pane->didSelect();
    fake.runLoop.runUntilIdle();
    watch("popup", *pane->virtualScreenSelectionPopup());
    journal.forget();
    pane->virtualScreensDidChange({"", nullptr, {}});
    const auto done = lines();
    ASSERT_GE(done.size(), 6u);
    EXPECT_EQ(Texts(done.begin(), done.begin() + 6),
              (Texts{"post QueryRequestForConnectedHost 2", "popup",
                     "read " + pane->seenDevicesFilename(),
                     "create folder " + FVEPreferencePane::applicationSupportFolder(),
                     "write " + pane->seenDevicesFilename(), "set autoConnectDevices"}));
}

TEST_F(PaneOrder, PickingADeviceClearsTheErrorThenSpinsThenArmsTheCheckThenPosts)
{
    load();
    pane->willSelect();
    announce({device("Pad", "pad.local")});
    pane->instructionsLabel()->setStringValue("some error");
    watch("instructions", *pane->instructionsLabel());
    watch("popup", *pane->virtualScreenSelectionPopup());
    journal.forget();
    pane->takeVirtualScreenFrom(entry("Pad").get());
    EXPECT_EQ(journal.lines(), (Texts{"instructions", "popup", "perform after 250 ms", "popup",
                                      "timer 15", "timer 15", "post ConnectServerToHost 3"}));
}

TEST_F(PaneOrder, ChoosingNoDeviceForgetsThenStoresThenPostsThenShows)
{
    showConnectedToPad();
    watch("statusLabel", *pane->statusLabel());
    watch("popup", *pane->virtualScreenSelectionPopup());
    journal.forget();
    pane->takeNoVirtualScreenFrom(nullptr);
    EXPECT_EQ(lines(),
              (Texts{"set currentVirtualScreenDeviceName", "post FVEPrefsWillChangeNotification 3",
                     "synchronize", "post FVEPrefsDidChangeNotification 3",
                     "post DisconnectCurrentServerFromHost 3", "popup"}));
}

TEST_F(PaneOrder, ReleasingEndsObserversThenLetsGoOfEverythingInOrder)
{
    load();
    pane->willSelect();
    pane->didSelect();
    // Controls whose end leaves a line; the pane holds the last reference to each.
    const auto last = [this](const char* name, auto* control) {
        return std::shared_ptr<std::remove_pointer_t<decltype(control)>>(control,
                                                                         [this, name](auto* dead) {
                                                                             journal.add(name);
                                                                             delete dead;
                                                                         });
    };
    pane->setOffTextButton(last("offTextButton", new FVEChiseledTextButton));
    pane->setOnTextButton(last("onTextButton", new FVEChiseledTextButton));
    pane->setTabView(last("tabView", new farview::TabView));
    pane->setAutoConnect(last("autoConnect", new farview::Button));
    pane->setAutoConnectTable(last("autoConnectTable", new farview::TableView));
    pane->setInstructionsLabel(last("instructionsLabel", new farview::TextField));
    pane->setWarningImage(last("warningImage", new farview::ImageView));
    pane->setVersionNumberLabel(last("versionNumberLabel", new farview::TextField));
    pane->setReinstallDriversButton(last("reinstallDriversButton", new farview::Button));
    const std::weak_ptr<QLNBonjourBrowser> browser = pane->bonjourBrowser();
    const auto watchdog = pane->watchdogTimer();
    journal.forget();
    pane.reset();
    EXPECT_EQ(lines(),
              (Texts{"local remove all", "distributed remove all", "offTextButton", "onTextButton",
                     "tabView", "autoConnect", "autoConnectTable", "instructionsLabel",
                     "warningImage", "versionNumberLabel", "reinstallDriversButton"}));
    EXPECT_TRUE(browser.expired());
    EXPECT_TRUE(watchdog.expired());
}

} // namespace
