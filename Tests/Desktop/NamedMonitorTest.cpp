#include "Platform/Desktop/Screens/X11/NamedMonitor.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <utility>

namespace farview
{
namespace
{

/// A server on which every output is on.
class NamedMonitorTest : public testing::Test
{
protected:
    NamedMonitorTest()
    {
        for (std::size_t index = 1; index < mOthers.outputs().size(); ++index)
            mOthers.show(index, 0, 0);
    }
    std::string described() { return describedScreens(mServer.display()); }
    void open(const char* windowManager)
    {
        mOthers.beWindowManager(windowManager);
        mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 1200}, mListener);
        waitUntil([&] { return mListener->geometry || mListener->end; });
    }
    bool pointerReaches(int x, int y)
    {
        mOthers.movePointer(x, y);
        return waitUntil([&] {
            return mScreen->cursor().position() ==
                   pixelPoint(x - mListener->geometry->area.x, y - mListener->geometry->area.y);
        });
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
    QtRunLoop mLoop;
    X11VirtualScreens mScreens{mLoop, FARVIEW_MONITOR_WATCHER};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST(NamedMonitor, OnlyWindowManagersThatFollowItGetOne)
{
    for (const auto& [name, expected] :
         {std::pair("Openbox", true), std::pair("Metacity", true), std::pair("KWin", false),
          std::pair("Xfwm4", false), std::pair("GNOME Shell", false), std::pair("", false)})
        EXPECT_EQ(followsNamedMonitors(name), expected) << name;
}

TEST_F(NamedMonitorTest, IsMadeWhereNoOutputIsLeft)
{
    open("Openbox");
    ASSERT_TRUE(mListener->geometry);
    EXPECT_EQ(mListener->geometry->corner(), pixelPoint(1920, 0));
    EXPECT_EQ(mListener->geometry->width, 1024);
    EXPECT_EQ(mListener->geometry->height, 1200);
    EXPECT_EQ(mOthers.screen(), (ScreenArranger::Area{0, 0, 2944, 1200}));
    EXPECT_TRUE(pointerReaches(2500, 1150));
}

TEST_F(NamedMonitorTest, IsNotMadeForAWindowManagerThatWouldLoseWindowsThere)
{
    const auto before = described();
    open("KWin");
    EXPECT_EQ(mListener->end, ScreenObstacle::noSpareOutput);
    EXPECT_EQ(described(), before);
}

TEST_F(NamedMonitorTest, RemovalLeavesEverythingAsItWas)
{
    mOthers.setScreenSize(1920, 1080);
    const auto before = described();
    open("Metacity");
    mScreen->resize(600, 400);
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry->width == 600; }));
    EXPECT_EQ(mOthers.screen(), (ScreenArranger::Area{0, 0, 2520, 1080}));
    mScreen->place(pixelPoint(0, 1080));
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry->corner() == pixelPoint(0, 1080); }));
    mScreen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(NamedMonitorTest, AScreenThatOthersShrinkGrowsAgain)
{
    open("Openbox");
    mOthers.setScreenSize(1920, 1080);
    EXPECT_TRUE(waitUntil([&] {
        return mOthers.screen() == ScreenArranger::Area{0, 0, 2944, 1200};
    }));
    EXPECT_TRUE(pointerReaches(2500, 1150));
}

} // namespace
} // namespace farview
