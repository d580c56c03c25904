// The device menu: its entries, and what choosing one does.

#include "Tests/Source/PaneFixture.h"

namespace
{

using farview::Object;
using farview::Represented;

class PaneMenu : public PaneFixture
{
protected:
    struct Row {
        std::string title;
        std::string_view action;
        bool hasTarget;
        bool enabled;
        int state;
        int tag;
        Represented represented;
    };

    void expectEntries(const std::vector<Row>& rows)
    {
        const auto menu = pane->createVirtualScreensMenu();
        ASSERT_EQ(menu->items().size(), rows.size());
        for (std::size_t index = 0; index < rows.size(); ++index) {
            const auto& item = *menu->items()[index];
            const auto& row = rows[index];
            EXPECT_EQ(item.title, row.title);
            EXPECT_EQ(item.action.name, row.action) << row.title;
            EXPECT_EQ(item.target.lock() != nullptr, row.hasTarget) << row.title;
            EXPECT_EQ(item.enabled, row.enabled) << row.title;
            EXPECT_EQ(item.state, row.state) << row.title;
            EXPECT_EQ(item.tag, row.tag) << row.title;
            EXPECT_EQ(item.representedObject, row.represented) << row.title;
        }
    }

    Row noDeviceRow(bool enabled = true) const
    {
        return {noDevice, "takeNoVirtualScreenFrom:", enabled, enabled, 0, 2112, {}};
    }
    Row deviceRow(const std::string& name, bool free = true) const
    {
        return {name,
                "takeVirtualScreenFrom:",
                free,
                free,
                0,
                0,
                std::shared_ptr<Object>(listed(name))};
    }
    Row connectToOtherRow() const
    {
        return {connectToOther, "takeVirtualOtherDeviceScreenFrom:", true, false, 0, 0, {}};
    }
    Row inBackgroundRow(const std::string& name) const
    {
        return {name + " (in background)", "", false, false, 1, 0, {}};
    }

    int connectRequests() const { return static_cast<int>(posts(kConnectServerToHost).size()); }
};

TEST_F(PaneMenu, HasTwoEntriesWhenThereIsNothing)
{
    showWithState(1);
    expectEntries({noDeviceRow(), connectToOtherRow()});
    EXPECT_TRUE(entry(connectToOther)->canBeChosen()) << "its target answers, so it opens";
}

TEST_F(PaneMenu, ListsDevicesInOrderWithBusyOnesWithoutTarget)
{
    showWithState(1);
    announce({device("Slab", "slab.local"), device("Pad", "pad.local", "Connected"),
              device("Board", "board.local", "None")});
    expectEntries({noDeviceRow(), deviceRow("Slab"), deviceRow("Pad", false), deviceRow("Board"),
                   connectToOtherRow()});
}

TEST_F(PaneMenu, RecordsThatSayNothingUsefulCountAsFree)
{
    showWithState(1);
    farview::FakeDevice silent{"Silent", "a.local"};
    farview::FakeDevice strange = device("Strange", "b.local", "connected");
    farview::FakeDevice brief = device("Brief", "c.local", "C");
    farview::FakeDevice binary{"Binary", "d.local"};
    binary.rawTXTRecord = farview::Data{{255, 0, 1, 2, 254, 'C', 'o', 'n'}};
    farview::FakeDevice huge = device("Huge", "e.local", std::string(60000, 'x'));
    announce({silent, strange, brief, binary, huge});
    for (const char* name : {"Silent", "Strange", "Brief", "Binary", "Huge"})
        EXPECT_TRUE(entry(name) && entry(name)->enabled) << name;
}

TEST_F(PaneMenu, ASelectedDeviceThatLeftStandsInTheBackground)
{
    showConnectedToPad();
    leave({"Pad"});
    expectEntries({noDeviceRow(), deviceRow("Slab"), connectToOtherRow(), inBackgroundRow("Pad")});
    EXPECT_FALSE(entry("Pad (in background)")->canBeChosen());
    EXPECT_EQ(selectedTitle(), noDevice) << "as installing the menu left it";
}

TEST_F(PaneMenu, AConnectionByAddressStandsCheckedAboveConnectToOther)
{
    showWithPad();
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    serverConnectedTo("Other");
    expectEntries({noDeviceRow(),
                   deviceRow("Pad"),
                   {"10.0.0.5", "takeVirtualScreenFrom:", true, true, 1, 0, "10.0.0.5"},
                   connectToOtherRow()});
}

TEST_F(PaneMenu, AConnectionByAnEmptyAddressHasNoEntry)
{
    showWithState(1);
    pane->setConnectedToOtherDevice(true);
    pane->setConnectedToOtherDeviceIPString("");
    expectEntries({noDeviceRow(), connectToOtherRow()});
    pane->setConnectedToOtherDeviceIPString(std::nullopt);
    expectEntries({noDeviceRow(), connectToOtherRow()});
    pane->updateUI();
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(PaneMenu, NoDeviceCannotBeChosenWhileAutoConnectionWouldUndoIt)
{
    setStored(kAutoConnectDevices, farview::PropertyList::Array{"Pad"});
    showConnectedToPad();
    EXPECT_FALSE(pane->determineIfNoDevicesSelectedEnabled());
    expectEntries({noDeviceRow(false), deviceRow("Pad"), deviceRow("Slab"), connectToOtherRow()});
    EXPECT_FALSE(choose(noDevice));
    changeElsewhere(kAutoConnectOption, false);
    EXPECT_TRUE(pane->determineIfNoDevicesSelectedEnabled());
    EXPECT_TRUE(choose(noDevice));
}

TEST_F(PaneMenu, ARecordThatTurnsBusyDisablesItsEntryAtOnce)
{
    showWithPadAndSlab();
    fake.discovery.setTXTRecord("Slab", {{"ConnState", farview::Data::fromText("Connected")}});
    after(1);
    EXPECT_FALSE(entry("Slab")->canBeChosen());
    EXPECT_TRUE(entry("Pad")->canBeChosen());
    fake.discovery.setTXTRecord("Slab", {});
    after(1);
    EXPECT_TRUE(entry("Slab")->canBeChosen());
}

TEST_F(PaneMenu, PickingADevicePostsItsHostName)
{
    showWithPad();
    ASSERT_TRUE(choose("Pad"));
    ASSERT_EQ(connectRequests(), 1);
    EXPECT_EQ(posts(kConnectServerToHost)[0],
              (Post{kConnectServerToHost, "", {{"connectToHostName", "pad.local"}}, 3u}));
    EXPECT_EQ(pane->selectedNetService(), nullptr) << "selected only once the server says so";
    EXPECT_NE(pane->connectErrorCheckTimer().lock(), nullptr);
}

TEST_F(PaneMenu, PickingTheDeviceInForceDoesNothing)
{
    showConnectedToPad();
    fake.distributedNotificationCenter.forgetPosts();
    ASSERT_TRUE(choose("Pad"));
    EXPECT_EQ(connectRequests(), 0);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
    EXPECT_TRUE(popUpIsEnabled());
}

TEST_F(PaneMenu, PickingAnEqualDeviceOfALaterBrowserDoesNothing)
{
    showConnectedToPad();
    hide();
    show();
    ASSERT_NE(listed("Pad"), pane->selectedNetService());
    fake.distributedNotificationCenter.forgetPosts();
    ASSERT_TRUE(choose("Pad"));
    EXPECT_EQ(connectRequests(), 0) << "same name, type and domain";
}

TEST_F(PaneMenu, PickingAnAddressDoesNothing)
{
    showWithState(1);
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    serverConnectedTo("Other");
    const auto stale = entry("10.0.0.5");
    ASSERT_TRUE(choose("10.0.0.5"));
    pane->setConnectedToOtherDeviceIPString("10.0.0.6");
    pane->takeVirtualScreenFrom(stale.get());
    EXPECT_EQ(connectRequests(), 0);
    EXPECT_EQ(pane->connectErrorCheckTimer().lock(), nullptr);
    EXPECT_TRUE(popUpIsEnabled());
}

TEST_F(PaneMenu, PickingADeviceWithoutHostNameSpinsAndFailsLater)
{
    showWithState(1);
    auto lost = device("Lost", "lost.local");
    lost.resolve.outcome = farview::FakeResolve::Outcome::fails;
    announce({lost});
    ASSERT_TRUE(choose("Lost"));
    EXPECT_EQ(connectRequests(), 0);
    EXPECT_FALSE(popUpIsEnabled());
    after(0.3);
    EXPECT_TRUE(spinnerShows());
    after(15);
    EXPECT_TRUE(warningShows());
    pane->setSelectedNetService(listed("Lost"));
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "");
}

TEST_F(PaneMenu, AnythingButAnEntryIsNoSenderOfAPick)
{
    showWithPad();
    pane->takeVirtualScreenFrom(nullptr);
    pane->takeVirtualScreenFrom(pane->autoConnect().get());
    pane->takeVirtualOtherDeviceScreenFrom(nullptr);
    pane->takeVirtualOtherDeviceScreenFrom(pane->autoConnect().get());
    EXPECT_EQ(connectRequests(), 0);
    EXPECT_TRUE(popUpIsEnabled());
}

TEST_F(PaneMenu, ChoosingNoDeviceForgetsEverythingAndTellsTheServer)
{
    setStored(kAutoConnectOption, false);
    showConnectedToPad();
    pane->setConnectedToOtherDevice(true);
    pane->setConnectedToOtherDeviceIPString("10.0.0.5");
    ASSERT_TRUE(choose(noDevice));
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_FALSE(pane->connectedToOtherDevice());
    EXPECT_EQ(pane->connectedToOtherDeviceIPString(), std::nullopt);
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "");
    ASSERT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 1u);
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost)[0],
              (Post{kDisconnectCurrentServerFromHost, "", {}, 3u}));
    EXPECT_EQ(selectedTitle(), noDevice);
}

TEST_F(PaneMenu, ChoosingNoDeviceActsEvenWhenNothingWasConnected)
{
    showWithState(1);
    ASSERT_TRUE(choose(noDevice));
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 1u);
}

TEST_F(PaneMenu, SelectingStoresTheHostNameAndForgettingLeavesIt)
{
    showWithPad();
    pane->setSelectedNetService(listed("Pad"));
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "pad.local");
    const int sets = fake.preferences.setCount();
    pane->setSelectedNetService(listed("Pad"));
    EXPECT_EQ(fake.preferences.setCount(), sets) << "the object already held";
    pane->setSelectedNetService(nullptr);
    EXPECT_EQ(storedText(kCurrentVirtualScreenDeviceName), "pad.local");
    EXPECT_EQ(fake.preferences.setCount(), sets);
}

TEST_F(PaneMenu, ANewDeviceMakesThePaneAskAgainAndRemembersIt)
{
    showWithState(1);
    fake.distributedNotificationCenter.forgetPosts();
    announce({device("Pad", "pad.local")});
    EXPECT_EQ(posts(kQueryRequestForConnectedHost).size(), 1u);
    EXPECT_EQ(rows(), (Texts{"Pad"}));
    EXPECT_EQ(seenDevices(), (Texts{"Pad"}));
}

TEST_F(PaneMenu, ADeviceThatLeavesIsNoReasonToAskAgain)
{
    showWithPad();
    fake.distributedNotificationCenter.forgetPosts();
    leave({"Pad"});
    EXPECT_TRUE(posts(kQueryRequestForConnectedHost).empty());
    EXPECT_EQ(menuTitles(), (Texts{noDevice, connectToOther}));
    EXPECT_EQ(rows(), (Texts{"Pad"})) << "remembered";
}

TEST_F(PaneMenu, HostileNamesAreShownAsTheyAre)
{
    showWithState(1);
    const std::string markup = "<b>&Pad</b>";
    const std::string control = "a\tb\x01\n";
    const std::string longest(63, 'x');
    announce({device("", "empty.local"), device(markup, "m.local"), device(control, "c.local"),
              device(longest, "l.local"), device("No device selected", "n.local")});
    EXPECT_EQ(menuTitles(),
              (Texts{noDevice, "", markup, control, longest, noDevice, connectToOther}));
    EXPECT_EQ(selectedTitle(), noDevice);
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->indexOfSelectedItem(), 0);
}

TEST_F(PaneMenu, ANewShowingMayListTheConnectedDeviceTwiceUntilTheServerAnswers)
{
    showConnectedToPad();
    hide();
    show();
    expectEntries({noDeviceRow(), deviceRow("Pad"), deviceRow("Slab"), connectToOtherRow(),
                   inBackgroundRow("Pad")});
    EXPECT_EQ(selectedTitle(), "Pad") << "found by equality";
    serverPosts(kQueryResultForConnectedHost, {{"DeviceName", "pad.local"}});
    EXPECT_EQ(menuTitles(), (Texts{noDevice, "Pad", "Slab", connectToOther}));
}

} // namespace
