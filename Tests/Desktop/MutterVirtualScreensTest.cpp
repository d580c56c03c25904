#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace farview
{
namespace
{

/// A user with two monitors, one below the other, arranged by hand.
class MutterVirtualScreensTest : public testing::Test
{
protected:
    MutterVirtualScreensTest()
    {
        auto layout = mOthers.state().layout;
        std::sort(layout.begin(), layout.end(), [](const auto& left, const auto& right) {
            return left.monitors[0].connector < right.monitors[0].connector;
        });
        layout[0].x = 0;
        layout[0].isPrimary = false;
        layout[1] = {0, 720, 2, 0, true, layout[1].monitors};
        EXPECT_TRUE(mOthers.apply(layout));
    }
    void open(int width = 1024, int height = 600, double scale = 1)
    {
        mScreen = mScreens.open(
            {.name = "Tablet", .width = width, .height = height, .scale = scale}, mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry || mListener->end; },
                              std::chrono::seconds(20)));
        ASSERT_TRUE(mListener->geometry) << static_cast<int>(*mListener->end);
    }
    const ScreenGeometry& geometry() { return *mListener->geometry; }
    bool becomes(int width, int height)
    {
        return waitUntil([&] { return geometry().width == width && geometry().height == height; });
    }
    /// Where the user's monitors are, in words, without ours.
    std::string usersMonitors()
    {
        std::string text;
        for (const auto& line : QString::fromStdString(mOthers.layout()).split('\n')) {
            if (!line.contains(QStringLiteral("Meta-2")))
                text += line.toStdString() + "\n";
        }
        return text;
    }
    bool isLayout(const std::string& layout)
    {
        return waitUntil([&] { return mOthers.layout() == layout; });
    }

    PrivateGnome mDesktop{{"1280x720", "1920x1200"}};
    GnomeArranger mOthers{mDesktop};
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    MutterVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(MutterVirtualScreensTest, TheUsersMonitorsStayWhereTheyWere)
{
    const auto before = usersMonitors();
    open();
    EXPECT_TRUE(waitUntil([&] { return usersMonitors() == before; }));
    EXPECT_EQ(geometry().corner(), pixelPoint(1920, 720));
    EXPECT_EQ(geometry().others,
              (std::vector{pixelRect(0, 720, 1920, 1200), pixelRect(0, 0, 1280, 720)}));
    mScreen->resize(1600, 1200);
    ASSERT_TRUE(becomes(1600, 1200));
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_TRUE(waitUntil([&] { return usersMonitors() == before; }));
    EXPECT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(1920, 720); }));
}

TEST_F(MutterVirtualScreensTest, TurningShowsNothingBetweenOneSizeAndTheOther)
{
    open(1024, 768);
    std::vector<std::pair<int, int>> frames;
    mListener->frame = [&] {
        const auto frame = mScreen->frames().takeFrame();
        if (!frame)
            return;
        const std::pair size(frame->view.width, frame->view.height);
        if (frames.empty() || frames.back() != size)
            frames.push_back(size);
        EXPECT_EQ(size, std::pair(geometry().width, geometry().height)) << "not told of it before";
    };
    ASSERT_TRUE(waitUntil([&] {
        mListener->frame();
        return !frames.empty();
    }));
    const auto before = geometry();
    mScreen->resize(768, 1024);
    ASSERT_TRUE(waitUntil([&] { return frames.size() > 1; }));
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(frames, (std::vector{std::pair(1024, 768), std::pair(768, 1024)}));
    auto after = before;
    after.area = pixelRect(1920, 720, 768, 1024);
    after.width = 768;
    after.height = 1024;
    EXPECT_EQ(mListener->geometries, (std::vector{before, after}));
}

TEST_F(MutterVirtualScreensTest, ScaleAndPlaceWaitForTheSizeThatIsToComeWithThem)
{
    open(1600, 1200);
    const auto before = mOthers.layout();
    mDesktop.pipeWire().sendSignal(SIGSTOP);
    mScreen->resize(2048, 1536);
    mScreen->setScale(2);
    mScreen->place(pixelPoint(1920, 900));
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(mOthers.layout(), before);
    mDesktop.pipeWire().sendSignal(SIGCONT);
    ASSERT_TRUE(becomes(2048, 1536));
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(geometry().scale, 2);
    EXPECT_EQ(geometry().corner(), pixelPoint(1920, 900));
    EXPECT_EQ(mListener->geometries.size(), 2U);
}

TEST_F(MutterVirtualScreensTest, ATurnRightAfterItAppearedIsNotLost)
{
    open(1600, 1200);
    mScreen->resize(1200, 1600);
    EXPECT_TRUE(becomes(1200, 1600));
    mScreen->resize(1600, 1200);
    EXPECT_TRUE(becomes(1600, 1200));
}

TEST_F(MutterVirtualScreensTest, EachOfManyTurnsShowsAPicture)
{
    open(1600, 1200);
    int seen = 0;
    mListener->frame = [&] {
        if (const auto frame = mScreen->frames().takeFrame())
            seen = frame->view.width;
    };
    for (int turn = 0; turn < 12; ++turn) {
        const int width = turn % 2 == 0 ? 1200 : 1600;
        mScreen->resize(width, 2800 - width);
        ASSERT_TRUE(waitUntil([&] { return seen == width; }, std::chrono::seconds(20))) << turn;
    }
}

TEST_F(MutterVirtualScreensTest, WishesInQuickSuccessionAreAllGranted)
{
    open(2048, 1536);
    for (const double scale : {2.0, 1.0, 2.0})
        mScreen->setScale(scale);
    mScreen->place(pixelPoint(1920, 900));
    const auto isGranted = [&] {
        return geometry().scale == 2 && geometry().corner() == pixelPoint(1920, 900);
    };
    EXPECT_TRUE(waitUntil(isGranted));
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_TRUE(isGranted());
}

TEST_F(MutterVirtualScreensTest, RemovalLeavesEverythingAsItWas)
{
    const auto before = mOthers.layout();
    open();
    mScreen->resize(800, 600);
    ASSERT_TRUE(becomes(800, 600));
    mScreen->place(pixelPoint(1280, 0));
    ASSERT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(1280, 0); }));
    mScreen.reset();
    // Mutter may arrange them once more after that.
    EXPECT_TRUE(isLayout(before));
    runLoopFor(std::chrono::milliseconds(500));
    EXPECT_TRUE(isLayout(before));
}

TEST_F(MutterVirtualScreensTest, APlaceThatCannotBeChangesNothing)
{
    open();
    const auto before = mOthers.layout();
    for (const auto corner : {pixelPoint(100, 100), pixelPoint(-1024, 0), pixelPoint(9000, 0)})
        mScreen->place(corner);
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(mOthers.layout(), before);
    mScreen->resize(800, 600);
    ASSERT_TRUE(becomes(800, 600));
    EXPECT_EQ(geometry().corner(), pixelPoint(1920, 720));
}

TEST_F(MutterVirtualScreensTest, WhatTheUserArrangesMeanwhileStays)
{
    open();
    auto layout = mOthers.state().layout;
    for (auto& part : layout) {
        if (part.monitors[0].connector == u"Meta-0")
            part.x = 640;
        if (part.monitors[0].connector == u"Meta-2")
            part = {1920, 840, 1, 0, false, part.monitors};
    }
    ASSERT_TRUE(mOthers.apply(layout));
    ASSERT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(1920, 840); }));
    const auto users = usersMonitors();
    mScreen->resize(800, 600);
    ASSERT_TRUE(becomes(800, 600));
    EXPECT_TRUE(waitUntil(
        [&] { return usersMonitors() == users && geometry().corner() == pixelPoint(1920, 840); }));
    mScreen.reset();
    EXPECT_TRUE(isLayout(users.substr(0, users.size() - 1)));
}

TEST_F(MutterVirtualScreensTest, AScaleIsTakenWhereTheSizeAllowsIt)
{
    open(2048, 1536, 2);
    EXPECT_EQ(geometry().scale, 2);
    EXPECT_EQ(geometry().width, 2048);
    mScreen->setScale(1);
    EXPECT_TRUE(waitUntil([&] { return geometry().scale == 1; }));
    mScreen->setScale(7);
    mScreen->setScale(2);
    EXPECT_TRUE(waitUntil([&] { return geometry().scale == 2; }));
    mScreen->resize(1024, 600);
    ASSERT_TRUE(becomes(1024, 600));
    EXPECT_EQ(geometry().scale, 1);
    mScreen->resize(2048, 1536);
    ASSERT_TRUE(becomes(2048, 1536));
    EXPECT_EQ(geometry().scale, 2);
}

TEST_F(MutterVirtualScreensTest, ASinglePixelIsAMonitor)
{
    open(1, 1);
    EXPECT_EQ(geometry().width, 1);
    EXPECT_TRUE(waitUntil([&] { return mScreen->frames().takeFrame().has_value(); }));
}

TEST_F(MutterVirtualScreensTest, FiftySizesASecondEndInTheLast)
{
    const auto before = mOthers.layout();
    open();
    for (int width = 801; width <= 850; ++width)
        mScreen->resize(width, 600);
    EXPECT_TRUE(becomes(850, 600));
    mScreen.reset();
    EXPECT_TRUE(isLayout(before));
}

TEST_F(MutterVirtualScreensTest, ThePictureIsWhatAProgramPaints)
{
    open(640, 480);
    const auto at = geometry().corner();
    constexpr int side = 80;
    const auto colour = [](int x, int y) {
        return 0x102030U * static_cast<unsigned>(1 + x / side) + static_cast<unsigned>(y / side);
    };
    for (int y = 0; y < 480; y += side) {
        for (int x = 0; x < 640; x += side)
            mOthers.fill(at.x + x, at.y + y, side, side, colour(x, y));
    }
    const auto isPainted = [&](const FrameView& view) {
        for (int y = 0; y < view.height; ++y) {
            for (int x = 0; x < view.width; ++x) {
                if (view.row(y)[x] != colour(x, y))
                    return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(waitUntil([&] {
        const auto frame = mScreen->frames().takeFrame();
        return frame && isPainted(frame->view);
    }));
}

TEST_F(MutterVirtualScreensTest, AKilledProgramLeavesNoMonitor)
{
    const auto count = [&] { return mOthers.state().monitors.size(); };
    ChildProcess holder({FARVIEW_MONITOR_HOLDER});
    ASSERT_TRUE(waitUntil([&] { return count() == 3; }));
    holder.kill();
    EXPECT_TRUE(waitUntil([&] { return count() == 2; }));
}

TEST_F(MutterVirtualScreensTest, EndsWithPipeWire)
{
    open();
    mDesktop.pipeWire().kill();
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::failed);
    EXPECT_TRUE(waitUntil([&] { return mOthers.state().monitors.size() == 2; }));
}

TEST_F(MutterVirtualScreensTest, WithoutPipeWireThereIsNoMonitor)
{
    mDesktop.pipeWire().kill();
    mScreen = mScreens.open({.name = "Tablet", .width = 800, .height = 600}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }, std::chrono::seconds(20)));
    EXPECT_EQ(mListener->end, ScreenObstacle::failed);
    EXPECT_EQ(mListener->geometry, std::nullopt);
}

TEST_F(MutterVirtualScreensTest, EndsWithTheBus)
{
    open();
    mDesktop.bus().stop();
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::gone);
}

TEST_F(MutterVirtualScreensTest, ItsEndDoesNotWaitForAPipeWireThatStandsStill)
{
    open();
    mDesktop.pipeWire().sendSignal(SIGSTOP);
    mScreen.reset();
    mDesktop.pipeWire().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return mOthers.state().monitors.size() == 2; }));
}

} // namespace
} // namespace farview
