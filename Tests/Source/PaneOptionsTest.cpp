// The boxes and buttons of the settings tab, and the updater's question.

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

TEST_F(PaneOptions, MovingWindowsBackNeedsAccessibilityToBeTurnedOn)
{
    showWithState(1);
    ASSERT_EQ(pane->autoMoveWindowsBack()->state(), 0);
    const int sets = fake.preferences.setCount();
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(pane->autoMoveWindowsBack()->state(), 0);
    EXPECT_EQ(fake.preferences.setCount(), sets) << "nothing is stored";

    fake.accessibility.setEnabled(true);
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(true));
    fake.accessibility.setEnabled(false);
    click(pane->autoMoveWindowsBack(), "autoMoveWindowsBackPressed:");
    EXPECT_EQ(stored(kAutoMoveWindowsBackOption), PropertyList(false)) << "off needs nothing";
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

TEST_F(PaneOptions, AutomaticUpdatesAreStoredAndShown)
{
    setStored(kAutoUpdateOption, false);
    showWithState(1);
    EXPECT_EQ(pane->autoUpdateCheckbox()->state(), 0);
    click(pane->autoUpdateCheckbox(), "autoUpdatePressed:");
    EXPECT_EQ(stored(kAutoUpdateOption), PropertyList(true));
    pane->autoUpdatePressed(nullptr);
    EXPECT_EQ(stored(kAutoUpdateOption), PropertyList(true));
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
