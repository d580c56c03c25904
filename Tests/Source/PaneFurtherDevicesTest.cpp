// The devices that are used beside the first one, and who may type.

#include "Common/PairedPeers.h"
#include "Source/FurtherDevicesTable.h"
#include "Tests/Source/PaneFixture.h"

#include <gmock/gmock.h>

namespace
{

using farview::FurtherDevice;
using farview::PairedPeers;
using farview::ScreenReport;
using farview::WindowKeeping;
using testing::ElementsAre;
using testing::IsEmpty;
using Is = FurtherDevice::State;

ScreenReport shownScreen()
{
    return {.state = ScreenReport::State::shown,
            .width = 1920,
            .height = 1200,
            .windows = WindowKeeping::byFarview,
            .monitor = farview::pixelRect(0, 0, 1920, 1200)};
}

class PaneFurtherDevices : public PaneFixture
{
protected:
    const std::string padKey = std::string(64, 'a');
    const std::string slabKey = std::string(64, 'b');

    void SetUp() override
    {
        PairedPeers peers(fake.preferences, PairedPeers::devices);
        peers.add({padKey, "Pad", {}, {}});
        peers.add({slabKey, "Slab", {}, {}});
    }
    /// "Pad" is connected with its key, "Slab" is in sight.
    void showPadAndSlab()
    {
        showWithPadAndSlab();
        connectToPad();
        fake.distributedNotificationCenter.forgetPosts();
    }
    void connectToPad()
    {
        serverPosts(kServerConnectedToDevice, {{kDeviceNameKey, "pad.local"},
                                               {kDeviceAddressKey, "192.168.1.20"},
                                               {kDeviceKeyKey, padKey}});
    }
    void serverUses(const std::vector<FurtherDevice>& devices)
    {
        serverPosts(kServerFurtherDevicesDidChange,
                    {{kFurtherDevicesKey, textOfFurtherDevices(devices)}});
    }
    void serverUsesSlab(const ScreenReport& screen = shownScreen())
    {
        serverUses({{"slab.local", "Slab", Is::connected, screen, slabKey}});
    }
    void serverReports(const ScreenReport& report)
    {
        serverPosts(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    }
    farview::TableView& table() const { return *pane->furtherDevicesTable(); }
    farview::CellValue cell(const char* column, int row) const
    {
        return table().dataSource().lock()->objectValueForTableColumn(table(), column, row);
    }
    void tick(const char* column, int row, bool flag)
    {
        table().dataSource().lock()->setObjectValue(table(), flag, column, row);
        fake.runLoop.runUntilIdle();
    }
    /// Each row as it is seen: "[x] Slab, 1920 × 1200, [ ]"; none when there is no table.
    Texts list() const
    {
        Texts rows;
        const int count = table().dataSource().lock()->numberOfRowsInTableView(table());
        EXPECT_EQ(table().isHidden(), count == 0);
        for (int row = 0; row < count; ++row) {
            std::string text = seen(cell(kFurtherDevicesTableAlsoUse, row)) + ' ' +
                               seen(cell(kFurtherDevicesTableDeviceName, row));
            for (const char* column : {kFurtherDevicesTableState, kFurtherDevicesTableMayType}) {
                if (const auto more = seen(cell(column, row)); !more.empty())
                    text += ", " + more;
            }
            rows.push_back(text);
        }
        return rows;
    }
    static std::string seen(const farview::CellValue& value)
    {
        if (const auto* flag = std::get_if<bool>(&value))
            return *flag ? "[x]" : "[ ]";
        const auto* text = std::get_if<std::string>(&value);
        return text ? *text : std::string();
    }
    bool padMayType() const { return pane->connection().mayType(padKey); }
    bool boxShows() const { return !pane->mayTypeBox()->isHidden(); }
    std::string typing() const
    {
        return pane->typingLabel()->isHidden() ? "" : pane->typingLabel()->stringValue();
    }
    std::string windowsHint() const
    {
        return pane->windowsHintLabel()->isHidden() ? "" : pane->windowsHintLabel()->stringValue();
    }
};

TEST_F(PaneFurtherDevices, AreOfferedOnlyBesideADeviceAndWhileThereAreAny)
{
    showWithPadAndSlab();
    EXPECT_THAT(list(), IsEmpty());
    connectToPad();
    EXPECT_THAT(list(), ElementsAre("[ ] Slab"));
    leave({"Slab"});
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(PaneFurtherDevices, AreNotOfferedInUseByOthersNorWhileFarviewIsOff)
{
    showPadAndSlab();
    announce({device("Desk", "desk.local", "Connected")});
    EXPECT_THAT(list(), ElementsAre("[ ] Slab"));
    changeElsewhere(kCurrentState, 0);
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_FALSE(boxShows());
}

TEST_F(PaneFurtherDevices, ATickAsksTheServerAndTheListShowsWhatItAnswers)
{
    showPadAndSlab();
    tick(kFurtherDevicesTableAlsoUse, 0, true);
    EXPECT_THAT(
        posts(kAlsoConnectToHost),
        ElementsAre(Post{kAlsoConnectToHost, "", {{kConnectToHostNameKey, "slab.local"}}, 3}));
    EXPECT_THAT(list(), ElementsAre("[ ] Slab")) << "nobody has answered";
    serverUses({{"slab.local", "Slab", Is::connecting}});
    EXPECT_THAT(list(), ElementsAre("[x] Slab, Connecting…"));
    serverUsesSlab();
    EXPECT_THAT(list(), ElementsAre("[x] Slab, 1920 × 1200, [ ]"));
    tick(kFurtherDevicesTableAlsoUse, 0, false);
    EXPECT_THAT(posts(kDisconnectFurtherDevice),
                ElementsAre(Post{
                    kDisconnectFurtherDevice, "", {{kConnectToHostNameKey, "slab.local"}}, 3}));
    serverUses({});
    EXPECT_THAT(list(), ElementsAre("[ ] Slab"));
}

TEST_F(PaneFurtherDevices, TheMenuGoesOnChoosingOneDevice)
{
    showPadAndSlab();
    serverUsesSlab();
    EXPECT_EQ(selectedTitle(), "Pad");
    EXPECT_EQ(stored(kCurrentVirtualScreenDeviceName), farview::PropertyList("pad.local"));
    EXPECT_THAT(menuTitles(), ElementsAre(noDevice, "Pad", "Slab", connectToOther));
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(selectedTitle(), noDevice);
    EXPECT_THAT(list(), ElementsAre("[x] Slab, 1920 × 1200, [ ]")) << "it can still be left";
}

TEST_F(PaneFurtherDevices, AServerThatBeginsUsesNone)
{
    showPadAndSlab();
    serverUsesSlab();
    serverPosts(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(PaneFurtherDevices, OneThatCouldNotBeReachedCanBeTriedAgain)
{
    showPadAndSlab();
    serverUses({{"slab.local", "Slab", Is::failed}});
    EXPECT_THAT(list(), ElementsAre("[ ] Slab, Not reached"));
    tick(kFurtherDevicesTableAlsoUse, 0, true);
    EXPECT_EQ(posts(kAlsoConnectToHost).size(), 1u);
}

TEST_F(PaneFurtherDevices, OneWithoutAPictureSaysWhy)
{
    showPadAndSlab();
    serverUsesSlab({.state = ScreenReport::State::missing,
                    .obstacle = farview::ScreenObstacle::noSpareOutput});
    EXPECT_THAT(list(), ElementsAre("[x] Slab, No picture, [ ]"));
    const auto source = table().dataSource().lock();
    EXPECT_NE(source->remarkOnRow(table(), 0), "");
    EXPECT_EQ(source->remarkOnRow(table(), 1), "") << "there is no such row";
    tick(kFurtherDevicesTableAlsoUse, 1, true);
    EXPECT_THAT(posts(kAlsoConnectToHost), IsEmpty());
}

TEST_F(PaneFurtherDevices, MayTypeOnlyOnceTheUserAllowsItForThatVeryDevice)
{
    showPadAndSlab();
    serverUsesSlab();
    tick(kFurtherDevicesTableMayType, 0, true);
    EXPECT_THAT(list(), ElementsAre("[x] Slab, 1920 × 1200, [x]"));
    EXPECT_TRUE(pane->connection().mayType(slabKey));
    EXPECT_FALSE(padMayType());
    EXPECT_EQ(posts(kPairedDevicesDidChange).size(), 1u);
    tick(kFurtherDevicesTableMayType, 0, false);
    EXPECT_THAT(list(), ElementsAre("[x] Slab, 1920 × 1200, [ ]"));
}

TEST_F(PaneFurtherDevices, TheFirstOneHasABoxForThat)
{
    showWithPadAndSlab();
    EXPECT_FALSE(boxShows());
    connectToPad();
    ASSERT_TRUE(boxShows());
    EXPECT_EQ(pane->mayTypeCheckbox()->state(), 0);
    pane->mayTypeCheckbox()->setTarget(pane);
    pane->mayTypeCheckbox()->setAction({"mayTypePressed:"});
    pane->mayTypeCheckbox()->performClick(nullptr);
    fake.runLoop.runUntilIdle();
    EXPECT_TRUE(padMayType());
    EXPECT_EQ(pane->mayTypeCheckbox()->state(), 1);
    PairedPeers(fake.preferences, PairedPeers::devices).letType("Pad", false);
    serverPosts(kPairedDevicesDidChange);
    EXPECT_EQ(pane->mayTypeCheckbox()->state(), 0) << "another program took it back";
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_FALSE(boxShows());
}

TEST_F(PaneFurtherDevices, NobodyIsAskedAboutTypingWhileInputIsNotUsed)
{
    showPadAndSlab();
    serverUsesSlab();
    changeElsewhere(kEnableTouchDisplayOption, false);
    EXPECT_FALSE(boxShows());
    EXPECT_THAT(list(), ElementsAre("[x] Slab, 1920 × 1200"));
}

TEST_F(PaneFurtherDevices, WhoIsTypingIsShownWhileThatIsSo)
{
    showPadAndSlab();
    EXPECT_EQ(typing(), "");
    auto report = shownScreen();
    report.isTyping = true;
    serverReports(report);
    EXPECT_EQ(typing(), "Pad is typing");
    serverUsesSlab(report);
    EXPECT_EQ(typing(), "Pad is typing\nSlab is typing");
    serverReports(shownScreen());
    serverUsesSlab();
    EXPECT_EQ(typing(), "");
}

TEST_F(PaneFurtherDevices, TheOptionForWindowsSaysWhenTheUserHasNoSay)
{
    showPadAndSlab();
    EXPECT_EQ(windowsHint(), "");
    auto report = shownScreen();
    report.windows = WindowKeeping::desktop;
    serverReports(report);
    EXPECT_EQ(windowsHint(), "Your desktop does this by itself.");
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(windowsHint(), "Your desktop does this by itself.");
    serverReports({.state = ScreenReport::State::coming});
    EXPECT_EQ(windowsHint(), "Your desktop does this by itself.") << "nothing new is known";
    serverReports(shownScreen());
    EXPECT_EQ(windowsHint(), "");
}

TEST_F(PaneFurtherDevices, AllTickedOnesAreConnectedToOnceTheUserWantsThat)
{
    loadAndShow();
    pane->autoConnectAll()->setTarget(pane);
    pane->autoConnectAll()->setAction({"autoConnectAllPressed:"});
    pane->autoConnect()->performClick(nullptr);
    EXPECT_FALSE(pane->autoConnectAll()->isEnabled()) << "there is no auto-connection";
    pane->autoConnect()->performClick(nullptr);
    ASSERT_TRUE(pane->autoConnectAll()->isEnabled());
    pane->autoConnectAll()->performClick(nullptr);
    EXPECT_TRUE(FVEPreferences::sharedAppPrefs().autoConnectAllDevices());
    pane->autoConnectAll()->performClick(nullptr);
    EXPECT_FALSE(FVEPreferences::sharedAppPrefs().autoConnectAllDevices());
    changeElsewhere(kAutoConnectAllDevices, true);
    EXPECT_EQ(pane->autoConnectAll()->state(), 1);
    newPane();
    load();
    EXPECT_EQ(pane->autoConnectAll()->state(), 1);
}

} // namespace
