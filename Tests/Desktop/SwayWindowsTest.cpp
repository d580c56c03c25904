#include "Platform/Desktop/Screens/Wlroots/SwayWindows.h"

#include "Tests/Desktop/SwayScene.h"
#include "Tests/Support/ScreenPainter.h"

#include <QJsonDocument>

#include <algorithm>
#include <sstream>

namespace farview
{
namespace
{

/// A user with a monitor and a window, and a monitor of ours, HEADLESS-2 at first.
class SwayWindowsTest : public SwayScene
{
protected:
    SwayWindowsTest()
    {
        mPainter.openWindow("Letter", 300, 200);
        EXPECT_TRUE(waitUntil([&] { return !windows().empty(); }));
    }
    std::vector<SwayWindow> windows() { return tree().windows; }
    SwayTree tree() { return swayTreeIn(QJsonDocument(mOthers.tree())); }
    /// Where the window is, in words.
    std::string window()
    {
        const auto all = windows();
        if (all.size() != 1)
            return std::to_string(all.size()) + " windows";
        const auto& stand = all.front().stand;
        std::ostringstream words;
        words << all.front().output << " " << stand.workspace;
        if (stand.isFloating)
            words << " floating " << stand.corner.x << "," << stand.corner.y;
        if (stand.isFull)
            words << " full";
        return words.str();
    }
    bool isWindow(const std::string& place)
    {
        return waitUntil([&] { return window() == place; });
    }
    /// What the user does with it.
    void user(const std::string& command)
    {
        ASSERT_TRUE(mOthers.run("[title=Letter] " + command)) << command;
    }
    /// Waits until we have noted where it came from.
    bool isNoted(bool flag = true)
    {
        return waitUntil([&] {
            const auto all = windows();
            return !all.empty() && (all.front().note && all.front().note->isThere) == flag;
        });
    }
    void remove()
    {
        mScreen.reset();
        ASSERT_TRUE(
            waitUntil([&] { return mOthers.layout().find("1024x600") == std::string::npos; }));
    }
    /// The name of the monitor that is ours now.
    std::string ours()
    {
        return PrivateSway::canRemoveOutputs() && mTimes > 1 ? "HEADLESS-3" : "HEADLESS-2";
    }
    void openAgain()
    {
        ++mTimes;
        open();
    }

    ScreenPainter mPainter;
    int mTimes = 1;
};

TEST_F(SwayWindowsTest, AFloatingWindowGoesBackToItsPlaceAndReturnsWithTheMonitor)
{
    user("floating enable");
    user("move absolute position 100 80");
    ASSERT_TRUE(isWindow("HEADLESS-1 1 floating 100,80"));
    open();
    EXPECT_EQ(mScreen->windowKeeping(), WindowKeeping::byFarview);
    user("move container to output HEADLESS-2");
    user("move absolute position 1500 40");
    ASSERT_TRUE(isWindow("HEADLESS-2 2 floating 1500,40"));
    ASSERT_TRUE(isNoted());
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 1 floating 100,80"));
    openAgain();
    EXPECT_TRUE(isWindow(ours() + " 2 floating 1500,40"));
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 1 floating 100,80"));
}

TEST_F(SwayWindowsTest, ATiledWindowGoesBackToItsWorkspaceAndReturns)
{
    user("move container to workspace 'my \"odd\" 7'");
    ASSERT_TRUE(mOthers.run("workspace 'my \"odd\" 7'"));
    ASSERT_TRUE(isWindow("HEADLESS-1 my \"odd\" 7"));
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 my \"odd\" 7"));
    openAgain();
    EXPECT_TRUE(waitUntil([&] { return window().starts_with(ours()); })) << window();
}

TEST_F(SwayWindowsTest, AWindowThatWasMadeFloatingThereIsTiledAgainAtHome)
{
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    user("floating enable");
    user("fullscreen enable");
    ASSERT_TRUE(waitUntil([&] { return window().ends_with(" full"); }));
    runLoopFor(std::chrono::milliseconds(50));
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 1"));
    openAgain();
    EXPECT_TRUE(waitUntil([&] {
        return window().starts_with(ours()) && window().ends_with(" full");
    })) << window();
}

TEST_F(SwayWindowsTest, AFullWindowIsFullAgainAtHome)
{
    user("fullscreen enable");
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 1 full"));
}

TEST_F(SwayWindowsTest, AWindowThatUsersMoveMeanwhileStaysWhereItIs)
{
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    remove();
    ASSERT_TRUE(isWindow("HEADLESS-1 1"));
    user("move container to workspace 5");
    openAgain();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(window(), "HEADLESS-1 5");
}

TEST_F(SwayWindowsTest, AWindowThatUsersTakeBackIsForgotten)
{
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    user("move container to workspace 1");
    ASSERT_TRUE(isNoted(false));
    remove();
    openAgain();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(window(), "HEADLESS-1 1");
}

TEST_F(SwayWindowsTest, WhereTheUserDoesNotWantItWindowsOnlyComeIntoSight)
{
    user("move container to workspace 5");
    open();
    mScreen->setKeepsWindows(false);
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(waitUntil([&] { return window().starts_with("HEADLESS-2"); }));
    remove();
    EXPECT_TRUE(isWindow("HEADLESS-1 1"));
    openAgain();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(window(), "HEADLESS-1 1");
}

TEST_F(SwayWindowsTest, TheKeyboardGoesBackWithTheWindows)
{
    open();
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(mOthers.run("focus output HEADLESS-2"));
    ASSERT_TRUE(isNoted());
    EXPECT_EQ(tree().focusedOutput, "HEADLESS-2");
    remove();
    EXPECT_TRUE(waitUntil([&] { return tree().focusedOutput == "HEADLESS-1"; }));
}

TEST_F(SwayWindowsTest, WindowsOfAKilledProgramsMonitorGoHomeAtTheNextStart)
{
    user("floating enable");
    user("move absolute position 100 80");
    ChildProcess holder({FARVIEW_MONITOR_HOLDER});
    ASSERT_TRUE(waitUntil([&] { return mOthers.outputs().size() == 2; }));
    runLoopFor(std::chrono::milliseconds(100));
    user("move container to output HEADLESS-2");
    ASSERT_TRUE(isNoted());
    holder.kill();
    const auto target = std::make_shared<int>();
    mScreens.availability(target, [](auto&) {});
    EXPECT_TRUE(isWindow("HEADLESS-1 1 floating 100,80"));
}

} // namespace
} // namespace farview
