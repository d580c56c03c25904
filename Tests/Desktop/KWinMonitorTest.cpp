#include "Platform/Desktop/Screens/KWin/KWinMonitor.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/KWin/KWinVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Desktop/ScriptedKWin.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/PrivatePipeWire.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace farview
{
namespace
{

/// A monitor of a KWin that can make one, as the real one cannot without a graphics device. Its
/// pictures come through a real PipeWire.
class KWinMonitorTest : public testing::Test
{
protected:
    explicit KWinMonitorTest(const std::vector<PixelPoint>& corners = {PixelPoint{}})
        : mDesktop(corners)
    {
    }
    void open(int width = 800, int height = 500, double scale = 1)
    {
        mListener->frame = [this] { ++mFrames; };
        mScreen = mScreens.open(
            {.name = "Tablet", .width = width, .height = height, .scale = scale}, mListener);
    }
    bool appears()
    {
        return waitUntil([&] { return mListener->geometry || mListener->end; }) &&
               mListener->geometry;
    }
    bool shows(int width, std::uint32_t colour)
    {
        return waitUntil([&] {
            const auto frame =
                std::exchange(mFrames, 0) > 0 ? mScreen->frames().takeFrame() : std::nullopt;
            return frame && frame->view.width == width &&
                   frame->view.row(frame->view.height - 1)[width - 1] == colour;
        });
    }
    bool becomes(const std::string& outputs)
    {
        return waitUntil([&] { return mDesktop.outputs() == outputs; });
    }
    const ScreenGeometry& geometry() { return *mListener->geometry; }

    PrivateBus mSession;
    SessionBusScope mSessionScope{mSession.address()};
    PrivatePipeWire mPipeWire;
    ScriptedKWin mDesktop;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    KWinVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    int mFrames = 0;
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(KWinMonitorTest, AppearsBesideTheUsersScreenAndShowsItsPixels)
{
    open();
    EXPECT_FALSE(mListener->geometry);
    ASSERT_TRUE(appears());
    EXPECT_EQ(geometry(),
              (ScreenGeometry{
                  pixelRect(1000, 0, 800, 500), 800, 500, 1, 60, {pixelRect(0, 0, 1000, 600)}}));
    EXPECT_TRUE(shows(800, 0x204060));
    mDesktop.output("Virtual-Tablet").node->setColour(0xFF112233);
    EXPECT_TRUE(shows(800, 0x112233));
    EXPECT_EQ(mDesktop.outputs(), "User-0 0,0 1000x600 x1\nVirtual-Tablet 1000,0 800x500 x1\n");
}

TEST_F(KWinMonitorTest, GoesWithItsObject)
{
    open();
    ASSERT_TRUE(appears());
    mScreen.reset();
    EXPECT_TRUE(becomes("User-0 0,0 1000x600 x1\n"));
    EXPECT_FALSE(mListener->end);
}

TEST_F(KWinMonitorTest, IsScaledBeforeItAppears)
{
    open(800, 500, 2);
    ASSERT_TRUE(appears());
    EXPECT_EQ(geometry().scale, 2);
    EXPECT_EQ(geometry().area, pixelRect(1000, 0, 400, 250));
    EXPECT_EQ(geometry().width, 800);
    EXPECT_EQ(mListener->geometries.size(), 1U);
}

TEST_F(KWinMonitorTest, IsScaledAndPlacedWhileItIsOpen)
{
    open();
    ASSERT_TRUE(appears());
    mScreen->setScale(1.25);
    mScreen->place(pixelPoint(0, 600));
    EXPECT_TRUE(waitUntil([&] { return geometry().area == pixelRect(0, 600, 640, 400); }));
    EXPECT_EQ(geometry().scale, 1.25);
    mScreen->place(pixelPoint(-800, 0));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(mDesktop.outputs(), "User-0 0,0 1000x600 x1\nVirtual-Tablet 0,600 800x500 x1.25\n");
}

TEST_F(KWinMonitorTest, TakesAnotherSizeInItsPlace)
{
    open();
    ASSERT_TRUE(appears());
    mScreen->place(pixelPoint(0, 600));
    ASSERT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(0, 600); }));
    mScreen->resize(500, 800);
    ASSERT_TRUE(waitUntil([&] { return geometry().width == 500; }));
    EXPECT_EQ(geometry().area, pixelRect(0, 600, 500, 800));
    EXPECT_EQ(geometry().others, std::vector{pixelRect(0, 0, 1000, 600)});
    EXPECT_TRUE(shows(500, 0x204060));
    EXPECT_EQ(mDesktop.outputs(), "User-0 0,0 1000x600 x1\nVirtual-Tablet 2 0,600 500x800 x1\n");
    mScreen->resize(800, 500);
    ASSERT_TRUE(waitUntil([&] { return geometry().width == 800; }));
    EXPECT_TRUE(shows(800, 0x204060));
    EXPECT_EQ(mDesktop.outputs(), "User-0 0,0 1000x600 x1\nVirtual-Tablet 0,600 800x500 x1\n");
    EXPECT_FALSE(mListener->end);
}

TEST_F(KWinMonitorTest, TakesTheLastOfManySizes)
{
    open();
    ASSERT_TRUE(appears());
    for (int width = 300; width <= 700; width += 100) {
        mScreen->resize(width, 400);
        runLoopFor(std::chrono::milliseconds(20));
    }
    EXPECT_TRUE(waitUntil([&] { return geometry().width == 700; }));
    EXPECT_TRUE(shows(700, 0x204060));
    EXPECT_EQ(std::ranges::count(mDesktop.outputs(), '\n'), 2) << mDesktop.outputs();
}

TEST_F(KWinMonitorTest, KeepsItsSizeWhereKWinCannotMakeAnother)
{
    open();
    ASSERT_TRUE(appears());
    mDesktop.refuses = true;
    mScreen->resize(500, 800);
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(geometry().width, 800);
    EXPECT_FALSE(mListener->end);
    mDesktop.refuses = false;
    mScreen->resize(600, 400);
    EXPECT_TRUE(waitUntil([&] { return geometry().width == 600; }));
}

TEST_F(KWinMonitorTest, EndsWhenTheUserSwitchesItOff)
{
    open();
    ASSERT_TRUE(appears());
    mDesktop.closeStream("Virtual-Tablet");
    EXPECT_TRUE(waitUntil([&] { return mListener->end == ScreenObstacle::takenAway; }));
    EXPECT_TRUE(becomes("User-0 0,0 1000x600 x1\n"));
}

TEST_F(KWinMonitorTest, EndsWithTheDesktop)
{
    open();
    ASSERT_TRUE(appears());
    mDesktop.end();
    EXPECT_TRUE(waitUntil([&] { return mListener->end == ScreenObstacle::gone; }));
}

TEST_F(KWinMonitorTest, EndsWithPipeWire)
{
    open();
    ASSERT_TRUE(appears());
    ASSERT_TRUE(shows(800, 0x204060));
    mPipeWire.process().kill();
    EXPECT_TRUE(waitUntil([&] { return mListener->end == ScreenObstacle::failed; }));
}

TEST_F(KWinMonitorTest, EndsWhereKWinMakesNone)
{
    mDesktop.refuses = true;
    open();
    EXPECT_FALSE(appears());
    EXPECT_EQ(mListener->end, ScreenObstacle::failed);
}

TEST_F(KWinMonitorTest, SizesThatNothingHasAreRefused)
{
    open(0, 500);
    EXPECT_FALSE(appears());
    EXPECT_EQ(mListener->end, ScreenObstacle::tooLarge);
}

TEST_F(KWinMonitorTest, TwoStandBesideEachOther)
{
    open();
    ASSERT_TRUE(appears());
    const auto listener = std::make_shared<ScreenListener>();
    const auto other = mScreens.open({.name = "Tablet", .width = 300, .height = 200}, listener);
    ASSERT_TRUE(waitUntil([&] { return listener->geometry.has_value(); }));
    EXPECT_EQ(listener->geometry->area, pixelRect(1800, 0, 300, 200));
    EXPECT_EQ(listener->geometry->others,
              (std::vector{pixelRect(0, 0, 1000, 600), pixelRect(1000, 0, 800, 500)}));
    EXPECT_TRUE(waitUntil([&] { return geometry().others.size() == 2; }));
}

class KWinMonitorAboveTest : public KWinMonitorTest
{
protected:
    KWinMonitorAboveTest() : KWinMonitorTest({pixelPoint(0, 600), pixelPoint(0, 0)}) {}
};

TEST_F(KWinMonitorAboveTest, TheUsersScreensStayWhereTheyAre)
{
    mDesktop.arrangesInARow = true;
    open();
    ASSERT_TRUE(appears());
    EXPECT_TRUE(becomes("User-0 0,600 1000x600 x1\nUser-1 0,0 1000x600 x1\n"
                        "Virtual-Tablet 1000,600 800x500 x1\n"))
        << mDesktop.outputs();
    EXPECT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(1000, 600); }));
    EXPECT_EQ(mListener->geometries.size(), 1U);
}

} // namespace
} // namespace farview
