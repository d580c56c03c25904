#include "Tests/Source/PaneFixture.h"

namespace
{

constexpr const char* normalText =
    "When you select a device, the screen will go blue as the system adds a new screen.";
constexpr const char* driverText = "Driver not installed.  Please run the installer and restart "
                                   "your machine when requested to do so.";
constexpr const char* offSentence =
    "Farview is currently turned off. Turn it on to choose a device as a virtual screen.";
constexpr const char* onSentence =
    "Farview is currently on. Choose a device below to be a virtual screen.";

class PaneStatus : public PaneFixture
{
protected:
    void showWithoutDriver()
    {
        fake.registry.remove(driver);
        showWithState(1);
    }
};

TEST_F(PaneStatus, OffDisablesThePopUpAndShowsItInItsTitle)
{
    showWithState(0);
    EXPECT_EQ(status(), "Off");
    EXPECT_EQ(explanation(), offSentence);
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: Off");
    EXPECT_EQ(instructions(), normalText);
    EXPECT_FALSE(warningShows());
    EXPECT_FALSE(pane->onOffSwitch()->isHidden());
}

TEST_F(PaneStatus, OffNeitherRebuildsTheMenuNorSelects)
{
    showConnectedToPad();
    const auto menu = pane->virtualScreenSelectionPopup()->menu();
    changeElsewhere(kCurrentState, 0);
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->menu(), menu);
    EXPECT_EQ(selectedTitle(), "Pad");
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: Off");
}

TEST_F(PaneStatus, OnWithoutDevicesRebuildsTheMenuAndKeepsThePopUpAsItWas)
{
    showWithState(1);
    EXPECT_EQ(status(), "On");
    EXPECT_EQ(explanation(), onSentence);
    EXPECT_TRUE(popUpIsEnabled()) << "as the interface file had it";
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther}));
    EXPECT_EQ(instructions(), normalText);
}

TEST_F(PaneStatus, TurnedOnElsewhereWithoutDevicesThePopUpStaysDisabledWithItsTwoEntries)
{
    showWithState(0);
    changeElsewhere(kCurrentState, 1);
    EXPECT_EQ(status(), "On");
    EXPECT_EQ(explanation(), onSentence);
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther}));
}

TEST_F(PaneStatus, TurnedOnHereWithoutDevicesThePopUpCanBeOpened)
{
    showWithState(0);
    pane->onTextPressed(nullptr);
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_TRUE(entry(connectToOther)->canBeChosen());
}

TEST_F(PaneStatus, OnWithADeviceListedSelectsNoDevice)
{
    showWithState(1);
    pane->virtualScreenSelectionPopup()->setEnabled(false);
    announce({device("Pad", "pad.local")});
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Pad", connectToOther}));
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(PaneStatus, TroubleShowsAsAnErrorWhileTheSwitchIsOn)
{
    showWithState(2);
    EXPECT_EQ(status(), "Error");
    EXPECT_EQ(explanation(), "Farview is currently unable to perform as a screen extender. An "
                             "unknown error has occurred.");
    EXPECT_EQ(switchState(), 1);
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther}));
}

TEST_F(PaneStatus, ConnectionErrorTextSurvivesRefreshesWhileItIsOnShow)
{
    showConnectedToPad();
    pane->checkForConnectionError(nullptr);
    const auto errorText = instructions();
    ASSERT_NE(errorText, normalText);
    pane->updateUI();
    EXPECT_EQ(instructions(), errorText);
    EXPECT_TRUE(warningShows());

    changeElsewhere(kCurrentState, 0);
    EXPECT_EQ(status(), "Off") << "the status texts and the popup go on";
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_EQ(instructions(), errorText);
    EXPECT_TRUE(warningShows());
}

TEST_F(PaneStatus, WithoutDriverTheSwitchDisappearsAndTheErrorTellsWhy)
{
    showWithoutDriver();
    EXPECT_EQ(status(), "Error");
    EXPECT_EQ(explanation(), "Driver not installed.");
    EXPECT_EQ(instructions(), driverText);
    EXPECT_TRUE(warningShows());
    EXPECT_FALSE(pane->reinstallDriversButton()->isHidden());
    EXPECT_FALSE(popUpIsEnabled());
    EXPECT_TRUE(pane->offTextButton()->isHidden());
    EXPECT_TRUE(pane->onOffSwitch()->isHidden());
    EXPECT_TRUE(pane->onTextButton()->isHidden());
    EXPECT_FALSE(pane->offTextButton()->isEnabled());
    EXPECT_FALSE(pane->onOffSwitch()->isEnabled());
    EXPECT_FALSE(pane->onTextButton()->isEnabled());
    EXPECT_FALSE(pane->autoConnect()->isEnabled());
    EXPECT_FALSE(pane->menuExtraCheckbox()->isEnabled());
    EXPECT_FALSE(pane->enableTouchDisplay()->isEnabled());
    EXPECT_EQ(menuTitles(), Texts{}) << "the menu is not built";
}

TEST_F(PaneStatus, ADriverThatAppearsLaterChangesNothing)
{
    showWithoutDriver();
    fake.registry.publish("QLExGFX");
    hide();
    show();
    EXPECT_EQ(explanation(), "Driver not installed.");
}

TEST_F(PaneStatus, ADriverThatDisappearsLaterChangesNothing)
{
    showWithState(1);
    fake.registry.remove(driver);
    hide();
    show();
    EXPECT_EQ(status(), "On");
    EXPECT_TRUE(pane->reinstallDriversButton()->isHidden());
}

TEST_F(PaneStatus, ABusyDeviceThatIsTheCurrentChoiceIsEnabled)
{
    showConnectedToPad();
    fake.discovery.setTXTRecord("Pad", {{"ConnState", farview::Data::fromText("Connected")}});
    fake.discovery.setTXTRecord("Slab", {{"ConnState", farview::Data::fromText("Connected")}});
    after(1);
    EXPECT_EQ(selectedTitle(), "Pad");
    EXPECT_TRUE(entry("Pad")->enabled);
    EXPECT_TRUE(entry("Pad")->canBeChosen());
    EXPECT_FALSE(entry("Slab")->enabled);
    EXPECT_FALSE(entry("Slab")->canBeChosen());
    EXPECT_EQ(entry("Slab")->note, "In use") << "by somebody else";
    EXPECT_EQ(entry("Pad")->note, "") << "it is in use by us";
}

TEST_F(PaneStatus, BoxesFollowTheStoredSettings)
{
    showWithState(1);
    EXPECT_EQ(pane->menuExtraCheckbox()->state(), 1);
    EXPECT_EQ(pane->enableTouchDisplay()->state(), 1);
    changeElsewhere(kShowInMenuBar, false);
    changeElsewhere(kEnableTouchDisplayOption, false);
    EXPECT_EQ(pane->menuExtraCheckbox()->state(), 0);
    EXPECT_EQ(pane->enableTouchDisplay()->state(), 0);
}

TEST_F(PaneStatus, TextsAreLookedUpInTheBundle)
{
    bundle->setText("Off", "Aus");
    bundle->setText("Farview: Off", "Farview: aus");
    bundle->setText(normalText, "Bitte ein Gerät wählen.");
    showWithState(0);
    EXPECT_EQ(status(), "Aus");
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: aus");
    EXPECT_EQ(instructions(), "Bitte ein Gerät wählen.");
}

TEST_F(PaneStatus, HintTellsHowToGetADevice)
{
    showWithState(1);
    EXPECT_EQ(hint(), "No device yet? Start farview-device on another computer.");
    announce({device("Pad", "pad.local")});
    EXPECT_EQ(hint(), "");
}

TEST_F(PaneStatus, HintSpeaksOfFirewallsOnceNothingWasFoundForTenSeconds)
{
    showWithState(1);
    const auto first = hint();
    after(9.5);
    EXPECT_EQ(hint(), first);
    after(1);
    EXPECT_NE(hint().find("UDP port 5353"), std::string::npos) << hint();
    announce({device("Pad", "pad.local")});
    EXPECT_EQ(hint(), "");
}

TEST_F(PaneStatus, HintBeginsAnewWithEachSearch)
{
    showWithState(1);
    const auto first = hint();
    after(8);
    announce({device("Pad", "pad.local")});
    fake.discovery.remove({"Pad"});
    after(1);
    EXPECT_EQ(hint(), first);
    after(8);
    EXPECT_EQ(hint(), first) << "the time of the search before does not count";
    after(15);
    EXPECT_NE(hint(), first);
}

TEST_F(PaneStatus, HintOfAPaneThatIsGoneChangesNoMore)
{
    showWithState(1);
    const auto label = pane->deviceHintLabel();
    const auto last = label->stringValue();
    pane.reset();
    fake.discovery.setCondition(farview::DiscoveryCondition::unavailable);
    after(20);
    EXPECT_NE(last, "");
    EXPECT_EQ(label->stringValue(), last);
}

TEST_F(PaneStatus, HintIsEmptyWhileOffOrWithoutDriver)
{
    showWithState(0);
    EXPECT_EQ(hint(), "");
    newPane();
    showWithoutDriver();
    EXPECT_EQ(hint(), "");
}

TEST_F(PaneStatus, HintFollowsTheStateOfDiscovery)
{
    showWithState(1);
    const auto start = hint();
    fake.discovery.setCondition(farview::DiscoveryCondition::unavailable);
    fake.runLoop.runUntilIdle();
    const auto unavailable = hint();
    fake.discovery.setCondition(farview::DiscoveryCondition::refused);
    fake.runLoop.runUntilIdle();
    EXPECT_NE(unavailable, start);
    EXPECT_NE(hint(), unavailable);
    EXPECT_NE(hint(), start);
    fake.discovery.setCondition(farview::DiscoveryCondition::working);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(hint(), start);
}

} // namespace
