#include "Platform/Desktop/Screens/Wlroots/WlrootsVirtualScreens.h"

#include "Platform/Desktop/Screens/Wlroots/WlrootsMonitor.h"
#include "Tests/Desktop/SwayScene.h"
#include "Tests/Support/ScreenPainter.h"

#include <gmock/gmock.h>

#include <csignal>
#include <utility>

namespace farview
{
namespace
{

TEST(AreAllPlaced, NotWhereACompositorMayHaveArrangedOneOfThem)
{
    EXPECT_FALSE(areAllPlaced({pixelRect(0, 0, 1920, 1080)}));
    EXPECT_FALSE(areAllPlaced({pixelRect(0, 0, 1920, 1080), pixelRect(1920, 0, 800, 600)}));
    EXPECT_FALSE(areAllPlaced({pixelRect(100, 50, 1920, 1080), pixelRect(2020, 50, 800, 600)}));
    EXPECT_FALSE(areAllPlaced({pixelRect(0, 1080, 1920, 1080), pixelRect(0, 0, 1920, 1080)}));
    EXPECT_TRUE(areAllPlaced({pixelRect(100, 50, 1920, 1080)}));
    EXPECT_TRUE(areAllPlaced({pixelRect(0, 1080, 1920, 1080), pixelRect(1920, 0, 800, 600)}));
}

/// The user has let sway arrange two monitors.
class WlrootsVirtualScreensTest : public SwayScene
{
protected:
    WlrootsVirtualScreensTest() : SwayScene({"1280x720", "1920x1200"}) {}

    const std::string mUsers = "HEADLESS-1 0,0 1280x720 x1\nHEADLESS-2 1280,0 1920x1200 x1\n";
    /// What remains of ours when it goes.
    const std::string mKept = PrivateSway::canRemoveOutputs() ? "" : "HEADLESS-3 3200,0 1x1 x1\n";
};

TEST_F(WlrootsVirtualScreensTest, TheUsersMonitorsStayWhereTheyWere)
{
    open();
    EXPECT_EQ(mOthers.layout(), mUsers + "HEADLESS-3 3200,0 1024x600 x1\n");
    EXPECT_EQ(geometry().area, pixelRect(3200, 0, 1024, 600));
    // Newer versions have them in another order.
    EXPECT_THAT(geometry().others, testing::UnorderedElementsAre(pixelRect(0, 0, 1280, 720),
                                                                 pixelRect(1280, 0, 1920, 1200)));
    mScreen->resize(1600, 1200);
    ASSERT_TRUE(becomes(1600, 1200));
    mScreen->setScale(1.5);
    ASSERT_TRUE(waitUntil([&] { return geometry().scale == 1.5; }));
    EXPECT_EQ(mOthers.layout(), mUsers + "HEADLESS-3 3200,0 1066x800 x1.5\n");
    mScreen.reset();
    EXPECT_TRUE(isLayout(mUsers + mKept));
}

TEST_F(WlrootsVirtualScreensTest, APlaceThatWouldMoveTheUsersMonitorsChangesNothing)
{
    open();
    for (const auto corner : {pixelPoint(-1024, 0), pixelPoint(0, 1200), pixelPoint(5000, 0)})
        mScreen->place(corner);
    mScreen->resize(800, 600);
    ASSERT_TRUE(becomes(800, 600));
    EXPECT_EQ(mOthers.layout(), mUsers + "HEADLESS-3 3200,0 800x600 x1\n");
}

TEST_F(WlrootsVirtualScreensTest, TurningShowsNothingBetweenOneSizeAndTheOther)
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
    ASSERT_TRUE(waitUntil([&] { return !frames.empty(); }));
    const auto before = geometry();
    mScreen->resize(768, 1024);
    ASSERT_TRUE(waitUntil([&] { return frames.size() > 1; }));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(frames, (std::vector{std::pair(1024, 768), std::pair(768, 1024)}));
    auto after = before;
    after.area = pixelRect(3200, 0, 768, 1024);
    after.width = 768;
    after.height = 1024;
    EXPECT_EQ(mListener->geometries, (std::vector{before, after}));
}

TEST_F(WlrootsVirtualScreensTest, FiftySizesASecondEndInTheLast)
{
    open();
    for (int width = 801; width <= 850; ++width)
        mScreen->resize(width, 600);
    EXPECT_TRUE(becomes(850, 600));
    EXPECT_TRUE(waitUntil([&] {
        const auto frame = mScreen->frames().takeFrame();
        return frame && frame->view.width == 850;
    }));
}

TEST_F(WlrootsVirtualScreensTest, ASinglePixelIsAMonitor)
{
    open(1, 1);
    EXPECT_EQ(geometry().area, pixelRect(3200, 0, 1, 1));
    EXPECT_TRUE(waitUntil([&] { return mScreen->frames().takeFrame().has_value(); }));
}

TEST_F(WlrootsVirtualScreensTest, SizesThatNoScreenHasAreRefused)
{
    for (const auto& [width, height] : {std::pair(0, 600), {600, -1}, {16385, 600}}) {
        mListener = std::make_shared<ScreenListener>();
        mScreen = mScreens.open({.name = "Tablet", .width = width, .height = height}, mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
        EXPECT_EQ(mListener->end, ScreenObstacle::tooLarge);
    }
    EXPECT_EQ(mOthers.layout(), mUsers);
}

TEST_F(WlrootsVirtualScreensTest, OutputsOfTheUserAreNeverTakenForOurs)
{
    ASSERT_TRUE(mOthers.run("create_output"));
    open();
    EXPECT_EQ(geometry().corner(), pixelPoint(3200 + 1920, 0));
    mScreen.reset();
    open();
    EXPECT_EQ(geometry().corner(), pixelPoint(3200 + 1920, 0));
}

TEST_F(WlrootsVirtualScreensTest, AnOutputThatSwayKeepsIsUsedAgain)
{
    for (int time = 0; time < 3; ++time) {
        open();
        EXPECT_EQ(mOthers.outputs().size(), 3);
        mScreen.reset();
        EXPECT_TRUE(waitUntil([&] { return !mOthers.layout().ends_with("1024x600 x1\n"); }));
    }
}

TEST_F(WlrootsVirtualScreensTest, AMonitorThatComesRightAfterAnotherAppearsAsItStays)
{
    for (int time = 0; time < 10; ++time) {
        open();
        ASSERT_TRUE(waitUntil([&] { return mScreen->frames().takeFrame().has_value(); }));
        EXPECT_EQ(mListener->geometries.size(), 1U);
        mScreen.reset();
        runLoopFor(std::chrono::milliseconds(3 * time));
    }
}

TEST_F(WlrootsVirtualScreensTest, SeveralMonitorsAtOnceGetOutputsOfTheirOwn)
{
    const auto other = std::make_shared<ScreenListener>();
    const auto second = mScreens.open({.name = "Phone", .width = 400, .height = 800}, other);
    open();
    ASSERT_TRUE(waitUntil([&] { return other->geometry.has_value(); }));
    EXPECT_EQ(other->geometry->width, 400);
    EXPECT_EQ(geometry().width, 1024);
    EXPECT_EQ(mOthers.outputs().size(), 4);
}

TEST_F(WlrootsVirtualScreensTest, AKilledProgramsMonitorGoesOrIsUsedAgainAtTheNextStart)
{
    ChildProcess holder({FARVIEW_MONITOR_HOLDER});
    ASSERT_TRUE(isLayout(mUsers + "HEADLESS-3 3200,0 1024x600 x1\n"));
    holder.kill();
    std::optional<ScreenAvailability> answer;
    const auto target = std::make_shared<int>();
    mScreens.availability(target, [&](const auto& found) { answer = found; });
    ASSERT_TRUE(isLayout(mUsers + mKept));
    EXPECT_TRUE(answer);
    open();
    EXPECT_EQ(mOthers.outputs().size(), 3);
}

TEST_F(WlrootsVirtualScreensTest, AMonitorOfAnotherFarviewIsLeftAlone)
{
    const ChildProcess holder({FARVIEW_MONITOR_HOLDER});
    const auto withTheirs = mUsers + "HEADLESS-3 3200,0 1024x600 x1\n";
    ASSERT_TRUE(isLayout(withTheirs));
    open(800, 600);
    EXPECT_EQ(mOthers.layout(), withTheirs + "HEADLESS-4 4224,0 800x600 x1\n");
}

TEST_F(WlrootsVirtualScreensTest, EndsWhenOthersRemoveTheOutput)
{
    if (!PrivateSway::canRemoveOutputs())
        GTEST_SKIP() << "this sway can remove no output";
    open();
    mOthers.run("output HEADLESS-3 unplug");
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::takenAway);
}

TEST_F(WlrootsVirtualScreensTest, ASwayThatStandsStillIsNotLost)
{
    open();
    ASSERT_TRUE(waitUntil([&] { return mScreen->input().abilities().pointer; }));
    mDesktop.process().sendSignal(SIGSTOP);
    for (int time = 0; time < 20'000; ++time)
        mScreen->input().movePointer({.x = double(time % 1000), .y = 5});
    runLoopFor(std::chrono::milliseconds(50));
    mDesktop.process().sendSignal(SIGCONT);
    mScreen->resize(800, 600);
    EXPECT_TRUE(becomes(800, 600));
    EXPECT_FALSE(mListener->end);
}

TEST_F(WlrootsVirtualScreensTest, ItsEndDoesNotWaitForASwayThatStandsStill)
{
    open();
    mDesktop.process().sendSignal(SIGSTOP);
    mScreen.reset();
    mDesktop.process().sendSignal(SIGCONT);
    EXPECT_TRUE(isLayout(mUsers + mKept));
}

TEST_F(WlrootsVirtualScreensTest, TheMonitorIsGoneBeforeTheirMakerIs)
{
    std::optional<WlrootsVirtualScreens> screens(mLoop);
    mListener = std::make_shared<ScreenListener>();
    mScreen = screens->open({.name = "Tablet", .width = 800, .height = 600}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry.has_value(); }));
    mScreen.reset();
    screens.reset();
    EXPECT_EQ(mOthers.layout(), mUsers + mKept);
}

TEST_F(WlrootsVirtualScreensTest, AWrongSocketIsAnObstacle)
{
    const ScopedEnvironment socket("SWAYSOCK", "/nowhere");
    mListener = std::make_shared<ScreenListener>();
    mScreen = mScreens.open({.name = "Tablet", .width = 800, .height = 600}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::protocolMissing);
}

TEST_F(WlrootsVirtualScreensTest, TheNextSwayIsAskedWhenOneHasEnded)
{
    open();
    mDesktop.process().kill();
    ASSERT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::gone);
    const PrivateSway next({"800x600"});
    open();
    EXPECT_EQ(geometry().corner(), pixelPoint(800, 0));
}

TEST_F(WlrootsVirtualScreensTest, ThePictureIsWhatAProgramPaintsAndHoldsThePointer)
{
    ScreenPainter painter;
    open(640, 480);
    painter.fill(3200, 0, 640, 480, 0x336699);
    painter.fill(3200 + 100, 50, 3, 3, 0xFF8040);
    const auto isPainted = [&](std::uint32_t atPointer) {
        const auto frame = mScreen->frames().takeFrame();
        return frame && frame->view.row(479)[639] == 0x336699U &&
               frame->view.row(51)[101] == 0xFF8040U && frame->view.row(300)[300] == atPointer;
    };
    EXPECT_TRUE(waitUntil([&] { return isPainted(0x336699); }));
    EXPECT_TRUE(mScreen->cursor().isInFrames());
    painter.setCursor(9, 0xFFFF0000, 4);
    mScreen->input().movePointer({.x = 300, .y = 300});
    EXPECT_TRUE(waitUntil([&] { return isPainted(0xFF0000); }));
}

/// The user has given each monitor its place.
class PlacedWlrootsVirtualScreensTest : public SwayScene
{
protected:
    PlacedWlrootsVirtualScreensTest()
        : SwayScene({"1280x720", "1920x1200"}, "output HEADLESS-1 position 1920 480\n"
                                               "output HEADLESS-2 position 0 10\n")
    {
    }

    const std::string mUsers = "HEADLESS-1 1920,480 1280x720 x1\nHEADLESS-2 0,10 1920x1200 x1\n";
};

TEST_F(PlacedWlrootsVirtualScreensTest, MovesToAPlaceOfItsOwnAndKeepsIt)
{
    open();
    mScreen->place(pixelPoint(-1024, 20));
    ASSERT_TRUE(waitUntil([&] { return geometry().corner() == pixelPoint(-1024, 20); }));
    mScreen->resize(800, 600);
    ASSERT_TRUE(becomes(800, 600));
    EXPECT_EQ(mOthers.layout(), mUsers + "HEADLESS-3 -1024,20 800x600 x1\n");
}

} // namespace
} // namespace farview
