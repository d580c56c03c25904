// The orders that others depend on. Each test looks, at the moment of one step, whether the step
// that must come first was done.

#include "Tests/Source/PaneFixture.h"

#include <functional>

namespace
{

using farview::Change;
using farview::Subscription;

class PaneOrder : public PaneFixture
{
protected:
    /// Calls `look` within each post of that name.
    Subscription atPost(const char* name, std::function<void()> look)
    {
        return fake.distributedNotificationCenter.observePosts([=, this](const Post& post) {
            if (post.name == name)
                lookNow(look);
        });
    }
    Subscription atLaunch(std::function<void()> look)
    {
        return fake.workspace.observeLaunches([=, this](const auto&) { lookNow(look); });
    }
    Subscription atChange(farview::View& view, std::function<void()> look)
    {
        return view.observe([=, this](Change) { lookNow(look); });
    }
    void lookNow(const std::function<void()>& look)
    {
        ++looks;
        look();
    }
    bool hears(const char* name) const
    {
        return fake.distributedNotificationCenter.isObserved(name);
    }

    ~PaneOrder() override { EXPECT_GT(looks, 0) << "the moment never came"; }

    int looks = 0;
};

TEST_F(PaneOrder, TheServersReportsAreListenedForBeforeTheServerIsAsked)
{
    load();
    const auto asked = atPost(kQueryRequestForConnectedHost, [&] {
        for (const char* report :
             {kQueryResultForConnectedHost, kServerConnectedToDevice, kServerDisconnectedFromDevice,
              kRequestingErrorMsgFromPrefPane, kConnectServerToHost})
            EXPECT_TRUE(hears(report)) << report;
    });
    show();
}

TEST_F(PaneOrder, MissingDefaultsAreWrittenBeforeTheDisplayIsRefreshed)
{
    load();
    const auto shown =
        atChange(*pane->statusLabel(), [&] { EXPECT_TRUE(stored(kAutoUpdateOption).has_value()); });
    pane->willSelect();
}

TEST_F(PaneOrder, TheFirstShowingIsOverBeforeTheSettingsAreTurnedTo)
{
    setStored(kOpenPrefsInSettingsPane, true);
    load();
    const auto turned = atChange(*pane->tabView(), [&] {
        EXPECT_EQ(stored(kOpenPrefsInSettingsPane), farview::PropertyList(false));
    });
    show();
}

TEST_F(PaneOrder, OnIsStoredAndShownBeforeTheServerIsLaunchedThatReadsIt)
{
    showWithState(0);
    const auto launched = atLaunch([&] {
        EXPECT_EQ(stored(kCurrentState), farview::PropertyList(1));
        EXPECT_EQ(switchState(), 1);
    });
    pane->onTextPressed(nullptr);
}

TEST_F(PaneOrder, OffIsStoredAndShownBeforeTheServerIsAskedToQuit)
{
    showWithState(1);
    const auto asked = atPost(kTerminateScreenServer, [&] {
        EXPECT_EQ(stored(kCurrentState), farview::PropertyList(0));
        EXPECT_EQ(switchState(), 0);
    });
    pane->offTextPressed(nullptr);
}

TEST_F(PaneOrder, AChangeElsewhereIsReadBeforeItIsShown)
{
    showWithState(1);
    setStored(kCurrentState, 0);
    const auto readings = fake.preferences.synchronizations().size();
    const auto shown = atChange(*pane->onOffSwitch()->slider(), [&] {
        EXPECT_GT(fake.preferences.synchronizations().size(), readings);
    });
    pane->prefsChanged({kFVEPrefsDidChangeNotification, nullptr, {}});
}

TEST_F(PaneOrder, AnOldErrorIsGoneAndTheCheckBegunBeforeTheServerIsAskedToConnect)
{
    showWithPad();
    pane->instructionsLabel()->setStringValue("some error");
    const auto asked = atPost(kConnectServerToHost, [&] {
        EXPECT_NE(instructions(), "some error");
        EXPECT_FALSE(popUpIsEnabled());
        EXPECT_FALSE(pane->connectErrorCheckTimer().expired());
    });
    ASSERT_TRUE(choose("Pad"));
}

TEST_F(PaneOrder, ADeviceIsForgottenBeforeTheServerIsAskedToLeaveIt)
{
    showConnectedToPad();
    const auto asked = atPost(kDisconnectCurrentServerFromHost, [&] {
        EXPECT_EQ(pane->selectedNetService(), nullptr);
        EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "");
    });
    ASSERT_TRUE(choose(noDevice));
}

TEST_F(PaneOrder, AHiddenPaneListensNoMoreWhenItStoresItsList)
{
    loadAndShow();
    const auto stored = atPost(kFVEPrefsDidChangeNotification,
                               [&] { EXPECT_FALSE(hears(kFVEPrefsDidChangeNotification)); });
    pane->willUnselect();
}

TEST_F(PaneOrder, AtItsEndItListensNoMoreWhenItLetsGoOfItsControls)
{
    loadAndShow();
    const auto letGo = [&](auto* control) {
        lookNow([&] { EXPECT_FALSE(hears(kServerConnectedToDevice)); });
        delete control;
    };
    pane->setTabView(std::shared_ptr<farview::TabView>(new farview::TabView, letGo));
    const std::weak_ptr<QLNBonjourBrowser> browser = pane->bonjourBrowser();
    const auto watchdog = pane->watchdogTimer();
    pane.reset();
    EXPECT_TRUE(browser.expired());
    EXPECT_TRUE(watchdog.expired());
}

} // namespace
