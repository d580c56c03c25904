#include "Platform/Desktop/Screens/X11/WindowKeeper.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/PrivateWindows.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

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
const Manager xfwm{"Xfwm", {"dbus-run-session", "--", "xfwm4", "--compositor=off"}};
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
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry.has_value(); }));
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
        for (const auto& state : states)
            mWindows.setState(window, state, flag);
        ASSERT_TRUE(waitUntil([&] {
            const auto now = mWindows.states(window);
            return std::includes(now.begin(), now.end(), states.begin(), states.end()) == flag;
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

TEST_P(WindowsOn, GoBackAsTheyWere)
{
    for (const States& states :
         {maximised, {"MAXIMIZED_VERT"}, {"MAXIMIZED_HORZ"}, {"FULLSCREEN"}}) {
        const auto window = mWindows.open(home);
        place(window, home);
        set(window, states);
        runLoopFor(std::chrono::milliseconds(100));
        const auto before = seen(window);
        appear();
        set(window, states, false);
        place(window, away);
        set(window, {"FULLSCREEN"});
        disappear();
        EXPECT_TRUE(waitUntil([&] { return seen(window) == before; }))
            << seen(window) << " and not " << before;
        mWindows.close(window);
    }
}

} // namespace
INSTANTIATE_TEST_SUITE_P(, WindowsOn, testing::Values(openbox, xfwm, metacity, kwin),
                         [](const auto& test) { return test.param.name; });
} // namespace farview
