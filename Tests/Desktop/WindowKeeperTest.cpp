#include "Platform/Desktop/Screens/X11/WindowKeeper.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/X11/MonitorThread.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/PrivateWindows.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace farview
{
namespace
{

using Area = ProgramWindows::Area;
using States = ProgramWindows::States;

const States maximised{"MAXIMIZED_HORZ", "MAXIMIZED_VERT"};

struct Manager {
    std::string name;
    std::vector<std::string> command;

    friend std::ostream& operator<<(std::ostream& out, const Manager& manager)
    {
        return out << manager.name;
    }
};

const Manager openbox{"Openbox", {"openbox"}};
/// Its settings come over a bus.
const Manager xfwm{"Xfwm", {"xfwm4", "--compositor=off"}};
const Manager metacity{"Metacity", {"metacity", "--no-composite"}};
const Manager kwin{"KWin", {"kwin_x11"}};

/// A user's screen of 1920x1080, and a monitor of 1600x1000 beside it.
class WindowKeeperTest : public testing::Test
{
protected:
    explicit WindowKeeperTest(const Manager& manager = openbox) : mManager(manager.command)
    {
        mOthers.showOnce(1);
    }
    void appear(int width = 1600, int height = 1000, bool keepsWindows = true)
    {
        *mListener = {};
        mScreen = mScreens.open(
            {.name = "Tablet", .width = width, .height = height, .keepsWindows = keepsWindows},
            mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry || mListener->end; }));
        ASSERT_TRUE(mListener->geometry) << int(*mListener->end);
        ASSERT_TRUE(waitUntil([&] { return mWindows.isScreenKnown(); }));
    }
    void disappear() { mScreen.reset(); }

    bool becomes(xcb_window_t window, const Area& area)
    {
        return waitUntil([&] { return mWindows.area(window) == area; });
    }
    void place(xcb_window_t window, const Area& area)
    {
        // A window manager may be busy with a new monitor, and not know it yet.
        ASSERT_TRUE(waitUntil([&] {
            mWindows.place(window, area);
            return waitUntil([&] { return mWindows.area(window) == area; },
                             std::chrono::milliseconds(200));
        })) << mWindows.area(window)
            << " and not " << area;
    }
    void set(xcb_window_t window, const States& states, bool flag = true)
    {
        const auto isSet = [&] {
            const auto now = mWindows.states(window);
            return std::includes(now.begin(), now.end(), states.begin(), states.end()) == flag;
        };
        ASSERT_TRUE(waitUntil([&] {
            mWindows.setStates(window, states, flag);
            return waitUntil(isSet, std::chrono::milliseconds(200));
        }));
    }
    bool isInSight(xcb_window_t window)
    {
        const auto area = mWindows.area(window);
        return area.width > 0 && area.x >= 0 && area.y >= 0 && area.x + area.width <= 1920 &&
               area.y + area.height <= 1080;
    }
    std::string seen(xcb_window_t window)
    {
        std::ostringstream text;
        text << mWindows.area(window);
        for (const auto& state : mWindows.states(window))
            text << " " << state;
        return text.str();
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
    PrivateWindowManager mManager;
    ProgramWindows mWindows;
    QtRunLoop mLoop;
    X11VirtualScreens mScreens{mLoop, FARVIEW_MONITOR_WATCHER};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

class WindowsOn : public WindowKeeperTest, public testing::WithParamInterface<Manager>
{
protected:
    WindowsOn() : WindowKeeperTest(GetParam()) {}
};

constexpr Area home{200, 150, 640, 400};
constexpr Area away{2100, 200, 700, 500};

TEST_P(WindowsOn, GoBackToWhereTheyWereAndReturn)
{
    const auto window = mWindows.open(home);
    place(window, home);
    for (int round = 0; round < 3; ++round) {
        appear();
        EXPECT_EQ(mScreen->windowKeeping(), WindowKeeping::byFarview);
        if (round == 0)
            place(window, away);
        EXPECT_TRUE(becomes(window, away)) << seen(window) << " in round " << round;
        disappear();
        EXPECT_TRUE(becomes(window, home)) << seen(window) << " in round " << round;
    }
}

/// Normal here and full screen there, and the other way round.
TEST_P(WindowsOn, AreAsTheyWereHereAndThere)
{
    const auto window = mWindows.open(home);
    place(window, home);
    for (const States& states :
         {maximised, {"MAXIMIZED_VERT"}, {"MAXIMIZED_HORZ"}, {"FULLSCREEN"}}) {
        set(window, states);
        runLoopFor(std::chrono::milliseconds(100));
        const auto before = seen(window);
        appear();
        set(window, states, false);
        place(window, away);
        disappear();
        ASSERT_TRUE(waitUntil([&] { return seen(window) == before; }))
            << seen(window) << " and not " << before;
        appear();
        ASSERT_TRUE(becomes(window, away)) << seen(window) << " before it was " << before;
        set(window, states);
        runLoopFor(std::chrono::milliseconds(100));
        const auto there = seen(window);
        disappear();
        ASSERT_TRUE(waitUntil([&] { return seen(window) == before; }))
            << seen(window) << " and not " << before;
        appear();
        ASSERT_TRUE(waitUntil([&] { return seen(window) == there; }))
            << seen(window) << " and not " << there;
        disappear();
        ASSERT_TRUE(waitUntil([&] { return seen(window) == before; })) << seen(window);
        set(window, states, false);
        EXPECT_TRUE(waitUntil([&] { return isInSight(window); })) << seen(window);
    }
}

TEST_P(WindowsOn, MoveWithoutBeingShownWhereTheyAreMinimisedOrOnAnotherWorkspace)
{
    const auto minimised = mWindows.open(home);
    const auto elsewhere = mWindows.open(home);
    place(minimised, home);
    place(elsewhere, home);
    appear();
    place(minimised, away);
    place(elsewhere, away);
    mWindows.minimise(minimised);
    mWindows.sendToWorkspace(elsewhere, 1);
    ASSERT_TRUE(waitUntil([&] {
        return mWindows.states(minimised).contains("HIDDEN") && mWindows.workspace(elsewhere) == 1;
    }));
    for (int round = 0; round < 2; ++round) {
        disappear();
        EXPECT_TRUE(becomes(minimised, home)) << seen(minimised);
        EXPECT_TRUE(becomes(elsewhere, home)) << seen(elsewhere);
        appear();
        EXPECT_TRUE(becomes(minimised, away)) << seen(minimised);
        EXPECT_TRUE(becomes(elsewhere, away)) << seen(elsewhere);
        EXPECT_TRUE(mWindows.states(minimised).contains("HIDDEN"));
        EXPECT_EQ(mWindows.workspace(elsewhere), 1U);
    }
}

TEST_P(WindowsOn, ThatWereMadeThereComeIntoSightAndReturn)
{
    // Openbox overlooks a monitor that comes while it starts: it must have taken a window.
    mWindows.open(home);
    appear();
    const auto window = mWindows.open(away);
    place(window, {3000, 700, 500, 250});
    disappear();
    EXPECT_TRUE(waitUntil([&] { return isInSight(window); })) << seen(window);
    appear();
    EXPECT_TRUE(becomes(window, {3000, 700, 500, 250})) << seen(window);
}

TEST_P(WindowsOn, AreNeitherMovedNorLostWhereTheUserDoesNotWantThemKept)
{
    const auto window = mWindows.open(home);
    const auto beside = mWindows.open(home);
    place(window, home);
    place(beside, home);
    appear(1600, 1000, false);
    place(window, {2900, 500, 600, 400});
    disappear();
    EXPECT_TRUE(waitUntil([&] { return isInSight(window); })) << seen(window);
    EXPECT_EQ(mWindows.area(beside), home);
}

TEST_P(WindowsOn, GoBackWhenTheServerWasKilled)
{
    const auto window = mWindows.open(home);
    place(window, home);
    const auto full = mWindows.open(home);
    place(full, home);
    ForkedProcess maker([] {
        const MonitorThread thread({.name = "Tablet", .width = 1600, .height = 1000},
                                   FARVIEW_MONITOR_WATCHER, [](const auto&) {});
        ::pause();
    });
    ASSERT_TRUE(
        waitUntil([&] { return mOthers.area(1).width == 1600 && mWindows.isScreenKnown(); }));
    place(window, away);
    place(full, away);
    set(full, {"FULLSCREEN"});
    ASSERT_TRUE(waitUntil([&] { return mWindows.hasNote(window) && mWindows.hasNote(full); }));
    maker.kill();
    EXPECT_TRUE(becomes(window, home)) << seen(window);
    EXPECT_TRUE(becomes(full, home)) << seen(full);
    EXPECT_EQ(mWindows.states(full), States{});
    EXPECT_TRUE(waitUntil([&] { return mOthers.area(1).width == 0; }));
    // KWin may move them once more.
    runLoopFor(std::chrono::milliseconds(1000));
    EXPECT_TRUE(becomes(window, home)) << seen(window);
    appear();
    EXPECT_TRUE(becomes(window, away)) << seen(window);
    EXPECT_TRUE(waitUntil([&] { return mWindows.states(full) == States{"FULLSCREEN"}; }));
}

TEST_P(WindowsOn, GoAlongWhereTheMonitorTurnsOrMoves)
{
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    place(window, {2700, 100, 700, 500});
    ASSERT_TRUE(waitUntil([&] { return mWindows.hasNote(window); }));
    mScreen->resize(1000, 1600);
    EXPECT_TRUE(waitUntil([&] {
        const auto area = mWindows.area(window);
        return area.x >= 1920 && area.x + area.width <= 2920;
    })) << seen(window);
    mScreen->place(pixelPoint(0, 1080));
    EXPECT_TRUE(waitUntil([&] {
        const auto area = mWindows.area(window);
        return area.x >= 0 && area.x + area.width <= 1000 && area.y >= 1080;
    })) << seen(window);
    disappear();
    EXPECT_TRUE(becomes(window, home)) << seen(window);
}

/// With windows of every kind on it and beside it.
TEST_P(WindowsOn, DoNotDriftInAHundredConnections)
{
    const std::vector<Area> places{
        {100, 100, 500, 300}, {60, 700, 400, 300}, {1300, 600, 600, 300}};
    std::vector<xcb_window_t> windows;
    for (const auto& area : places) {
        windows.push_back(mWindows.open(area));
        place(windows.back(), area);
    }
    const auto guest = mWindows.open(home);
    place(guest, home);
    const auto large = mWindows.open(home);
    set(large, maximised);
    appear();
    place(guest, away);
    set(large, maximised, false);
    place(large, {2300, 60, 900, 600});
    set(large, maximised);
    const auto state = [&] {
        std::string all;
        for (const auto window : windows)
            all += seen(window) + ", ";
        return all + seen(guest) + ", " + seen(large);
    };
    // Some say that a window is maximised before they do it.
    runLoopFor(std::chrono::milliseconds(200));
    const auto with = state();
    disappear();
    ASSERT_TRUE(becomes(guest, home)) << seen(guest);
    const auto without = state();
    for (int round = 1; round < 100; ++round) {
        appear();
        ASSERT_TRUE(waitUntil([&] { return state() == with; }))
            << state() << " and not " << with << " in round " << round;
        disappear();
        ASSERT_TRUE(waitUntil([&] { return state() == without; }))
            << state() << " and not " << without << " in round " << round;
    }
    for (std::size_t index = 0; index < places.size(); ++index)
        EXPECT_EQ(mWindows.area(windows[index]), places[index]);
}

TEST_F(WindowKeeperTest, WindowsThatTheUserMovedMeanwhileDoNotReturn)
{
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    place(window, away);
    disappear();
    ASSERT_TRUE(becomes(window, home));
    const Area chosen{300, 150, 640, 400};
    place(window, chosen);
    appear();
    runLoopFor(std::chrono::milliseconds(500));
    EXPECT_EQ(mWindows.area(window), chosen);
}

TEST_F(WindowKeeperTest, WindowsThatReachInAreBroughtIntoSightUnlessTheyDidSoBefore)
{
    const Area reaching{1500, 600, 600, 300};
    const auto before = mWindows.open(reaching);
    place(before, reaching);
    const auto later = mWindows.open(home);
    place(later, home);
    appear();
    place(later, {1500, 200, 600, 300});
    disappear();
    EXPECT_TRUE(becomes(later, {1319, 200, 600, 300})) << seen(later);
    EXPECT_EQ(mWindows.area(before), reaching);
}

TEST_F(WindowKeeperTest, APlaceOnTheWayThereIsNoHome)
{
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    mWindows.pressButton(true);
    place(window, {1200, 150, 640, 400});
    runLoopFor(std::chrono::milliseconds(400));
    place(window, away);
    mWindows.pressButton(false);
    disappear();
    EXPECT_TRUE(becomes(window, home)) << seen(window);
}

TEST_F(WindowKeeperTest, AnotherMonitorsWindowsAreNotItsOwn)
{
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    place(window, away);
    disappear();
    ASSERT_TRUE(becomes(window, home));
    const auto other = mScreens.open({.name = "Phone", .width = 1600, .height = 1000}, mListener);
    runLoopFor(std::chrono::milliseconds(600));
    EXPECT_EQ(mWindows.area(window), home);
}

TEST_F(WindowKeeperTest, DialogsMoveAndDocksStay)
{
    const auto dialog = mWindows.open(home, "DIALOG");
    place(dialog, home);
    const auto dock = mWindows.open({2000, 0, 300, 30}, "DOCK");
    const auto before = mWindows.area(dock);
    appear();
    place(dialog, away);
    disappear();
    EXPECT_TRUE(becomes(dialog, home)) << seen(dialog);
    EXPECT_EQ(mWindows.area(dock), before);
}

TEST_F(WindowKeeperTest, AWindowThatRefusesHoldsNobodyUp)
{
    const auto before = describedScreens(mServer.display());
    const auto stubborn = mWindows.open(home);
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    place(window, away);
    place(stubborn, away);
    std::atomic<bool> isOver = false;
    std::thread program([&] {
        ProgramWindows itself;
        while (!isOver)
            itself.moveItself(stubborn, away);
    });
    disappear();
    EXPECT_TRUE(becomes(window, home)) << seen(window);
    EXPECT_EQ(describedScreens(mServer.display()), before);
    isOver = true;
    program.join();
}

TEST_F(WindowKeeperTest, WindowsThatVanishMeanwhileDisturbNoOther)
{
    std::vector<xcb_window_t> vanishing;
    for (int index = 0; index < 12; ++index)
        vanishing.push_back(mWindows.open(home));
    const auto window = mWindows.open(home);
    place(window, home);
    appear();
    for (const auto each : vanishing)
        place(each, away);
    place(window, away);
    std::thread program([&] {
        for (const auto each : vanishing)
            mWindows.close(each);
    });
    disappear();
    program.join();
    EXPECT_TRUE(becomes(window, home)) << seen(window);
}

TEST_F(WindowKeeperTest, AWindowManagerThatDiesHoldsNobodyUp)
{
    const auto before = describedScreens(mServer.display());
    const auto window = mWindows.open(home);
    appear();
    place(window, away);
    mManager.process().kill();
    disappear();
    EXPECT_EQ(describedScreens(mServer.display()), before);
}

TEST_F(WindowKeeperTest, AWindowManagerThatStandsStillHoldsNobodyUp)
{
    const auto before = describedScreens(mServer.display());
    const auto window = mWindows.open(home);
    appear();
    place(window, away);
    mManager.process().sendSignal(SIGSTOP);
    disappear();
    EXPECT_EQ(describedScreens(mServer.display()), before);
}

TEST(WithoutAWindowManager, NobodyKeepsWindows)
{
    const PrivateXServer server;
    ScreenArranger(server.display()).showOnce(1);
    QtRunLoop loop;
    X11VirtualScreens screens(loop, FARVIEW_MONITOR_WATCHER);
    const auto listener = std::make_shared<ScreenListener>();
    const auto screen = screens.open({.name = "Tablet", .width = 800, .height = 600}, listener);
    ASSERT_TRUE(waitUntil([&] { return listener->geometry.has_value(); }));
    EXPECT_EQ(screen->windowKeeping(), WindowKeeping::nobody);
}

} // namespace
INSTANTIATE_TEST_SUITE_P(, WindowsOn, testing::Values(openbox, xfwm, metacity, kwin),
                         [](const auto& test) { return test.param.name; });
} // namespace farview
