// The boxes and buttons of the settings tab, and the updater's question.

#include "Tests/Controls/FakeAlerts.h"
#include "Tests/Source/PaneFixture.h"

namespace
{

using farview::PropertyList;

class PaneOptions : public PaneFixture
{
protected:
    /// A click on a box that is wired as the interface file wires it.
    void click(const std::shared_ptr<farview::Button>& button, std::string_view action)
    {
        button->setTarget(pane);
        button->setAction({action});
        button->performClick(nullptr);
    }
    std::size_t statusItemLaunches() const
    {
        std::size_t count = 0;
        for (const auto& launch : fake.workspace.launches())
            count += launch.path.ends_with("FarviewStatusItem.app") ? 1 : 0;
        return count;
    }
};

TEST_F(PaneOptions, TheStatusItemIsStoredBeforeItIsStoppedOrStarted)
{
    showWithState(1);
    fake.distributedNotificationCenter.forgetPosts();
    click(pane->menuExtraCheckbox(), "menuExtraCheckboxPressed:");
    EXPECT_EQ(stored(kShowInMenuBar), PropertyList(false));
    const auto& all = fake.distributedNotificationCenter.posts();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].name, kFVEPrefsWillChangeNotification);
    EXPECT_EQ(all[1].name, kFVEPrefsDidChangeNotification);
    EXPECT_EQ(all[2], (Post{kTerminateMenuExtra, "", {}, 3u}));
    const auto launches = statusItemLaunches();
    click(pane->menuExtraCheckbox(), "menuExtraCheckboxPressed:");
    EXPECT_EQ(stored(kShowInMenuBar), PropertyList(true));
    EXPECT_EQ(statusItemLaunches(), launches + 1);
}

TEST_F(PaneOptions, TouchAndRetinaAreStored)
{
    showWithState(1);
    click(pane->enableTouchDisplay(), "enableTouchDisplayPressed:");
    click(pane->enableRetinaResolutions(), "enableRetinaPressed:");
    EXPECT_EQ(stored(kEnableTouchDisplayOption), PropertyList(false));
    EXPECT_EQ(stored(kEnableRetinaDisplayOption), PropertyList(false));
    click(pane->enableTouchDisplay(), "enableTouchDisplayPressed:");
    click(pane->enableRetinaResolutions(), "enableRetinaPressed:");
    EXPECT_EQ(stored(kEnableTouchDisplayOption), PropertyList(true));
    EXPECT_EQ(stored(kEnableRetinaDisplayOption), PropertyList(true));
}

TEST_F(PaneOptions, TheStartAtLoginIsTheEntryAndNoSetting)
{
    showWithState(1);
    EXPECT_EQ(pane->startAtLoginCheckbox()->state(), 0);
    const int sets = fake.preferences.setCount();
    click(pane->startAtLoginCheckbox(), "startAtLoginPressed:");
    EXPECT_EQ(pane->startAtLoginCheckbox()->state(), 1);
    const farview::LoginItem::Command command = {
        pane->statusItemApplication()->path() + "/Contents/Linux/FarviewStatusItem", "--at-login"};
    EXPECT_EQ(fake.loginItem.command(), command);
    click(pane->startAtLoginCheckbox(), "startAtLoginPressed:");
    EXPECT_EQ(fake.loginItem.command(), std::nullopt);
    EXPECT_EQ(fake.preferences.setCount(), sets);
}

TEST_F(PaneOptions, TheStartAtLoginIsShownAsItIsWheneverThePanelOpens)
{
    fake.loginItem.enable({"/somewhere"});
    showWithState(1);
    EXPECT_EQ(pane->startAtLoginCheckbox()->state(), 1);
    hide();
    fake.loginItem.disable();
    show();
    EXPECT_EQ(pane->startAtLoginCheckbox()->state(), 0);
}

TEST_F(PaneOptions, AStartAtLoginThatCannotBeStoredLeavesTheBoxAsItWas)
{
    showWithState(1);
    fake.loginItem.setFails(true);
    click(pane->startAtLoginCheckbox(), "startAtLoginPressed:");
    EXPECT_EQ(pane->startAtLoginCheckbox()->state(), 0);
}

TEST_F(PaneOptions, MovingWindowsBackIsStoredWhereAccessibilityIsOn)
{
    fake.accessibility.setEnabled(true);
    setStored(kAutoMoveWindowsBackOption, false);
    showWithState(1);
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(true));
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(false));
}

TEST_F(PaneOptions, WhoeverCannotBeAskedForAccessibilityHasDeclined)
{
    showWithState(1);
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(pane->autoMoveWindowsBack()->state(), 0);
    EXPECT_TRUE(fake.workspace.opened().empty());
}

/// Accessibility is off and the pane can ask for it.
class AskingForAccessibility : public PaneOptions
{
protected:
    AskingForAccessibility()
    {
        pane->setAlertPresenter(alerts);
        showWithState(1);
    }
    void tick() { click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:"); }
    int box() const { return pane->autoMoveWindowsBack()->state(); }
    void installAccessibilityPane() { fake.fileManager.addFile(accessibilityPane); }

    static constexpr const char* accessibilityPane =
        "/usr/lib/farview/PreferencePanes/UniversalAccessPref.prefPane";
    std::shared_ptr<FakeAlerts> alerts = std::make_shared<FakeAlerts>();
};

TEST_F(AskingForAccessibility, TickingShowsTheAlertOnThePanesWindowAndStoresNothing)
{
    const int sets = fake.preferences.setCount();
    const auto linesBefore = fake.log.lines().size();
    tick();
    ASSERT_TRUE(alerts->isUp());
    const auto& alert = alerts->shown.at(0);
    EXPECT_EQ(alert.messageText, "This Feature Requires Accessibility");
    EXPECT_EQ(alert.informativeText,
              "To enable this feature, please enable access for assistive devices.");
    EXPECT_EQ(alert.buttons, (Texts{"OK", "Cancel"}));
    EXPECT_EQ(alert.style, farview::Alert::Style::warning);
    EXPECT_EQ(alerts->shownOn, pane->tabView());
    EXPECT_EQ(fake.preferences.setCount(), sets);
    EXPECT_EQ(fake.log.lines().size(), linesBefore);
}

TEST_F(AskingForAccessibility, EitherAnswerUnticksTheBoxAndKeepsTheStoredOption)
{
    installAccessibilityPane();
    const int sets = fake.preferences.setCount();
    for (const int answer : {1000, 1001}) {
        tick();
        EXPECT_EQ(box(), 1);
        alerts->answer(answer);
        EXPECT_EQ(box(), 0);
        EXPECT_FALSE(alerts->isUp());
    }
    EXPECT_EQ(alerts->shown.size(), 2u);
    EXPECT_EQ(fake.preferences.setCount(), sets);
}

TEST_F(AskingForAccessibility, OnlyOKOpensTheAccessibilityPane)
{
    installAccessibilityPane();
    tick();
    alerts->answer(1001);
    EXPECT_TRUE(fake.workspace.opened().empty());
    tick();
    alerts->answer(1000);
    ASSERT_EQ(fake.workspace.opened().size(), 1u);
    EXPECT_EQ(fake.workspace.opened()[0].path(), accessibilityPane);
}

TEST_F(AskingForAccessibility, WhereThatPaneIsMissingNothingOpens)
{
    tick();
    alerts->answer(1000);
    EXPECT_TRUE(fake.workspace.opened().empty());
    EXPECT_EQ(box(), 0);
}

TEST_F(AskingForAccessibility, UntickingNeverAsks)
{
    for (const bool enabled : {true, false}) {
        fake.accessibility.setEnabled(enabled);
        pane->autoMoveWindowsBack()->setState(1);
        tick();
        EXPECT_EQ(box(), 0);
        EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(false));
    }
    EXPECT_TRUE(alerts->shown.empty());
}

TEST_F(AskingForAccessibility, TickedAgainOnceAccessibilityIsOnItIsStored)
{
    tick();
    alerts->answer(1000);
    fake.accessibility.setEnabled(true);
    tick();
    EXPECT_EQ(alerts->shown.size(), 1u);
    EXPECT_EQ(box(), 1);
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(true));
}

TEST_F(AskingForAccessibility, APaneThatLeavesTheScreenTakesTheAlertAlongAsCancelDoes)
{
    tick();
    hide();
    EXPECT_FALSE(alerts->isUp());
    EXPECT_EQ(box(), 0);
    EXPECT_TRUE(fake.workspace.opened().empty());
    pane->autoMoveWindowsBack()->setState(1);
    hide();
    EXPECT_EQ(box(), 1) << "without an alert the box is left alone";
}

TEST_F(AskingForAccessibility, APaneThatIsDestroyedTakesTheAlertAlong)
{
    tick();
    pane.reset();
    EXPECT_FALSE(alerts->isUp());
}

TEST_F(PaneOptions, HelpAndReinstallOpenTheirDocuments)
{
    showWithState(1);
    pane->helpPressed(nullptr);
    pane->reinstallDriversPressed(nullptr);
    ASSERT_EQ(fake.workspace.opened().size(), 2u);
    EXPECT_EQ(fake.workspace.opened()[0], *pane->documentation());
    EXPECT_EQ(fake.workspace.opened()[1].absoluteString(), "https://example.org/install");
}

TEST_F(PaneOptions, WithoutAnInstallerAddressOrAManualNothingOpens)
{
    showWithState(1);
    pane->setInstallerURL(std::nullopt);
    pane->setDocumentation(std::nullopt);
    pane->helpPressed(nullptr);
    pane->reinstallDriversPressed(nullptr);
    EXPECT_TRUE(fake.workspace.opened().empty());
}

TEST_F(PaneOptions, BeforeAnUpdateServerAndStatusItemAreAskedToQuit)
{
    showWithState(1);
    fake.distributedNotificationCenter.forgetPosts();
    pane->willInstallUpdate(nullptr, nullptr);
    const auto& all = fake.distributedNotificationCenter.posts();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].name, kTerminateScreenServer);
    EXPECT_EQ(all[1].name, kTerminateMenuExtra);
}

} // namespace
