// What the card says of the connected device's monitor, and the picture of the screens.

#include "Common/Rules/DeviceScreen.h"
#include "Tests/Source/PaneFixture.h"

namespace
{

using farview::PixelRect;
using farview::pixelRect;
using farview::PropertyList;
using farview::RememberedScreen;
using farview::ScreenObstacle;
using farview::ScreenReport;
using farview::ScreenSide;
using farview::ScreenWay;

const ScreenReport shownOnTheRight{.state = ScreenReport::State::shown,
                                   .width = 1920,
                                   .height = 1200,
                                   .rate = 60,
                                   .monitor = pixelRect(1280, 0, 1920, 1200),
                                   .screens = {pixelRect(0, 0, 1280, 1024)}};

class PaneScreen : public PaneFixture
{
protected:
    void serverReports(const ScreenReport& report)
    {
        serverPosts(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    }
    void serverReports(ScreenObstacle obstacle)
    {
        serverReports(ScreenReport{.state = ScreenReport::State::missing, .obstacle = obstacle});
    }
    void showConnectedToPadWith(const ScreenReport& report)
    {
        showConnectedToPad();
        serverReports(report);
    }
    bool placeShows() const { return !pane->screenPlaceBox()->isHidden(); }
    bool diagnoseShows() const { return !pane->screenDiagnoseButton()->isHidden(); }
    /// The map as the interface file wires it, moved by the user.
    void place(ScreenSide side)
    {
        pane->screenMap()->setTarget(pane);
        pane->screenMap()->setAction({"screenPlaced:"});
        pane->screenMap()->userChose(side);
        fake.runLoop.runUntilIdle();
    }
    static RememberedScreen remembered(const std::string& device)
    {
        return rememberedScreen(FVEPreferences::sharedAppPrefs().deviceScreen(device));
    }
    static void remember(const std::string& device, const RememberedScreen& screen)
    {
        FVEPreferences::sharedAppPrefs().setDeviceScreen(device, storedScreen(screen));
    }
};

TEST_F(PaneScreen, SaysNothingOfItBeforeTheServerDoes)
{
    showConnectedToPad();
    EXPECT_EQ(hint(), "Connected to Pad");
    EXPECT_FALSE(placeShows());
    EXPECT_FALSE(diagnoseShows());
}

TEST_F(PaneScreen, SaysWhatItIsAndShowsWhere)
{
    showConnectedToPadWith(shownOnTheRight);
    EXPECT_EQ(hint(), "Connected to Pad\n1920 × 1200 at 60 Hz, to the right of your main display");
    ASSERT_TRUE(placeShows());
    EXPECT_EQ(pane->screenMap()->monitor(), shownOnTheRight.monitor);
    EXPECT_EQ(pane->screenMap()->screens(), shownOnTheRight.screens);
    EXPECT_EQ(pane->screenMap()->stringValue(),
              "Place of the device's screen: to the right of your main display");
    EXPECT_FALSE(diagnoseShows());
}

TEST_F(PaneScreen, FollowsItWhileItIsShown)
{
    showConnectedToPadWith({.state = ScreenReport::State::coming});
    EXPECT_EQ(hint(), "Connected to Pad\nThe device's screen is being added to your desktop…");
    EXPECT_FALSE(placeShows());
    serverReports(shownOnTheRight);
    EXPECT_TRUE(placeShows());
    auto moved = shownOnTheRight;
    moved.monitor = pixelRect(-1920, 0, 1920, 1200);
    serverReports(moved);
    EXPECT_EQ(pane->screenMap()->monitor(), moved.monitor);
    EXPECT_NE(hint().find("to the left"), std::string::npos) << hint();
}

TEST_F(PaneScreen, ForgetsItWithTheConnection)
{
    showConnectedToPadWith(shownOnTheRight);
    serverPosts(kServerDisconnectedFromDevice);
    EXPECT_EQ(hint(), "");
    EXPECT_FALSE(placeShows());
    serverConnectedTo("slab.local");
    EXPECT_EQ(hint(), "Connected to Slab");
    EXPECT_FALSE(placeShows());
}

TEST_F(PaneScreen, SaysNothingOfItWhileFarviewIsOff)
{
    showConnectedToPadWith(shownOnTheRight);
    changeElsewhere(kCurrentState, 0);
    EXPECT_EQ(hint(), "");
    EXPECT_FALSE(placeShows());
}

TEST_F(PaneScreen, SaysWhatIsInItsWayAndWhatToDoLiveAndOffersTheDiagnosisWhereItHelps)
{
    showConnectedToPad();
    serverReports(ScreenObstacle::locked);
    EXPECT_EQ(hint(), "Connected to Pad\nThere is no picture while the screen of this computer is "
                      "locked.\nIt comes back by itself after unlocking.");
    EXPECT_FALSE(diagnoseShows());
    serverReports(ScreenObstacle::noSpareOutput);
    EXPECT_TRUE(diagnoseShows());
    EXPECT_FALSE(placeShows());
    serverReports(shownOnTheRight);
    EXPECT_FALSE(diagnoseShows());
    EXPECT_TRUE(placeShows());
}

TEST_F(PaneScreen, SaysBeforeADeviceIsTriedWhatWouldBeInItsWay)
{
    showWithPad();
    serverPosts(kServerDisconnectedFromDevice);
    const std::string before = hint();
    serverReports(
        {.state = ScreenReport::State::impossible, .obstacle = ScreenObstacle::protocolMissing});
    EXPECT_EQ(hint(), (before.empty() ? "" : before + "\n") +
                          "This desktop lacks what Farview adds a screen with.\n"
                          "Log in to GNOME or sway on Wayland instead: they can add screens.");
    EXPECT_TRUE(diagnoseShows());
    changeElsewhere(kCurrentState, 0);
    EXPECT_EQ(hint(), "");
    EXPECT_FALSE(diagnoseShows());
}

TEST_F(PaneScreen, SaysBeforeADeviceIsTriedWhatTheDesktopLacks)
{
    showWithPad();
    const std::string before = hint();
    serverReports(ScreenReport{.state = ScreenReport::State::possible, .way = ScreenWay::gnome});
    EXPECT_EQ(hint(), before) << "nothing";
    EXPECT_EQ(pane->windowsHintLabel()->stringValue(), "Your desktop does this by itself.");
    serverReports(ScreenReport{.state = ScreenReport::State::possible, .way = ScreenWay::hyprland});
    EXPECT_EQ(hint(),
              (before.empty() ? "" : before + "\n") +
                  "Only one finger at a time gets through to this desktop, as its pointer.");
    EXPECT_EQ(pane->windowsHintLabel()->stringValue(),
              "Your desktop lets no program move windows.");
    EXPECT_FALSE(diagnoseShows());
}

TEST_F(PaneScreen, SaysThatADeviceShowsNoPictureAndTakesNonsenseForThat)
{
    showConnectedToPadWith({});
    EXPECT_EQ(hint(), "Connected to Pad\nThis device shows no picture.");
    serverReports(shownOnTheRight);
    serverPosts(kServerScreenDidChange, {{kScreenReportKey, "shown 0 -1 x"}});
    EXPECT_EQ(hint(), "Connected to Pad\nThis device shows no picture.");
    serverPosts(kServerScreenDidChange);
    EXPECT_FALSE(placeShows());
}

TEST_F(PaneScreen, SaysThatTheDesktopCannotEnlargeItWhereTheUserWantsThat)
{
    showConnectedToPad();
    pane->enableHiDPIResolutions()->setState(1);
    serverReports(shownOnTheRight);
    EXPECT_NE(hint().find("cannot enlarge"), std::string::npos) << hint();
    remember("pad.local", {.width = 1920, .height = 1200, .scale = 1});
    serverReports(shownOnTheRight);
    EXPECT_EQ(hint().find("cannot enlarge"), std::string::npos)
        << "the user chose that scale: " << hint();
}

TEST_F(PaneScreen, StoresTheChosenPlaceAndKeepsWhatElseIsRemembered)
{
    const RememberedScreen before{
        .width = 1280, .height = 800, .scale = 2, .device = {2560, 1600, 2}};
    remember("pad.local", before);
    remember("slab.local", {.side = ScreenSide::below});
    showConnectedToPadWith(shownOnTheRight);
    place(ScreenSide::above);
    auto after = before;
    after.side = ScreenSide::above;
    EXPECT_EQ(remembered("pad.local"), after);
    EXPECT_EQ(remembered("slab.local").side, ScreenSide::below);
}

TEST_F(PaneScreen, ShowsTheReportedPlaceWhateverWasChosen)
{
    showConnectedToPadWith(shownOnTheRight);
    place(ScreenSide::left);
    EXPECT_EQ(pane->screenMap()->monitor(), shownOnTheRight.monitor);
    EXPECT_EQ(remembered("pad.local").side, ScreenSide::left);
    pane->screenMap()->userTookBack();
    EXPECT_EQ(remembered("pad.local").side, ScreenSide::right);
}

TEST_F(PaneScreen, RemembersAConnectionByAddressByItsAddress)
{
    showWithPad();
    serverPosts(kServerConnectedToDevice,
                {{kDeviceNameKey, kOtherDeviceName}, {kDeviceAddressKey, "10.0.0.5"}});
    serverReports(shownOnTheRight);
    EXPECT_NE(hint().find("1920"), std::string::npos) << hint();
    place(ScreenSide::below);
    EXPECT_EQ(remembered("10.0.0.5").side, ScreenSide::below);
}

TEST_F(PaneScreen, AMoveThatComesAfterTheConnectionIsForgotten)
{
    showConnectedToPadWith(shownOnTheRight);
    serverPosts(kServerDisconnectedFromDevice);
    place(ScreenSide::left);
    EXPECT_FALSE(stored(kDeviceScreens));
}

} // namespace
