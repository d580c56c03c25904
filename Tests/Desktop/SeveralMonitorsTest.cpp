#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/X11/MonitorJournal.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace farview
{
namespace
{

using Area = ScreenArranger::Area;

/// An X server on which one process has several monitors.
class SeveralMonitorsTest : public testing::Test
{
protected:
    struct Monitor {
        std::shared_ptr<ScreenListener> told = std::make_shared<ScreenListener>();
        std::unique_ptr<VirtualScreen> screen;

        const ScreenGeometry& geometry() const { return *told->geometry; }
        PixelRect area() const { return told->geometry ? geometry().area : PixelRect{}; }
    };

    SeveralMonitorsTest()
    {
        for (std::size_t output = 1; output <= mostMonitors; ++output)
            mOthers.showOnce(output);
        mOthers.makePrimary(0);
    }
    std::string described() { return describedScreens(mServer.display()); }
    Monitor begin(int width, int height)
    {
        Monitor monitor;
        monitor.screen =
            mScreens.open({.name = "Tablet", .width = width, .height = height}, monitor.told);
        return monitor;
    }
    Monitor open(int width, int height)
    {
        auto monitor = begin(width, height);
        EXPECT_TRUE(waitUntil([&] { return monitor.told->geometry || monitor.told->end; }));
        return monitor;
    }
    void showOnEveryOtherOutput(std::size_t first)
    {
        for (std::size_t index = first; index < mOthers.outputs().size(); ++index)
            mOthers.show(index, 0, 0);
    }
    /// What is drawn there is in the monitor's next frames.
    bool showsWhatIsDrawn(const Monitor& monitor, std::uint32_t colour)
    {
        const auto area = monitor.area();
        mOthers.fill({area.x + area.width - 2, area.y + area.height - 2, 2, 2}, colour);
        return waitUntil([&] {
            const auto frame = monitor.screen->frames().takeFrame();
            return frame && frame->view.width == area.width &&
                   frame->view.row(area.height - 1)[area.width - 1] == colour;
        });
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
    QtRunLoop mLoop;
    X11VirtualScreens mScreens{mLoop, FARVIEW_MONITOR_WATCHER};
};

TEST_F(SeveralMonitorsTest, EachGoesToTheRightOfEverythingAndKnowsTheOthers)
{
    const auto left = open(1024, 600);
    const auto right = open(800, 1280);
    EXPECT_EQ(left.area(), pixelRect(1920, 0, 1024, 600));
    EXPECT_EQ(right.area(), pixelRect(2944, 0, 800, 1280));
    const auto users = pixelRect(0, 0, 1920, 1080);
    EXPECT_EQ(right.geometry().others, (std::vector{users, left.area()}));
    EXPECT_TRUE(waitUntil([&] {
        return left.geometry().others == std::vector{users, right.area()};
    }));
    EXPECT_TRUE(showsWhatIsDrawn(left, 0x112233));
    EXPECT_TRUE(showsWhatIsDrawn(right, 0x445566));
}

TEST_F(SeveralMonitorsTest, TheUsersScreensAreToldBeforeOurs)
{
    const auto left = open(800, 600);
    mOthers.setScreenSize(3840, 2160);
    mOthers.show(2, 0, 1080);
    const auto right = open(640, 480);
    EXPECT_EQ(right.geometry().others, (std::vector{pixelRect(0, 0, 1920, 1080),
                                                    pixelRect(0, 1080, 1920, 1080), left.area()}));
}

TEST_F(SeveralMonitorsTest, EachOrderOfEndingLeavesEverythingAsItWas)
{
    const auto before = described();
    std::array<int, 3> order{0, 1, 2};
    do {
        std::array<Monitor, 3> monitors{open(1024, 600), open(800, 1280), open(640, 480)};
        for (const int index : order) {
            monitors.at(index).screen.reset();
            for (const auto& each : monitors) {
                if (!each.screen)
                    continue;
                EXPECT_TRUE(showsWhatIsDrawn(each, 0x123456));
                EXPECT_EQ(each.told->end, std::nullopt);
                const bool hasMoved =
                    std::any_of(each.told->geometries.begin(), each.told->geometries.end(),
                                [&](const auto& told) { return told.area != each.area(); });
                EXPECT_FALSE(hasMoved);
            }
        }
        EXPECT_EQ(described(), before);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(SeveralMonitorsTest, OpenedAtOnceTheyStandApart)
{
    const auto before = described();
    {
        std::array<Monitor, 3> monitors{begin(800, 600), begin(800, 600), begin(800, 600)};
        for (const auto& each : monitors)
            ASSERT_TRUE(waitUntil([&] { return each.told->geometry.has_value(); }));
        std::vector<int> places;
        for (const auto& each : monitors)
            places.push_back(each.area().x);
        std::sort(places.begin(), places.end());
        EXPECT_EQ(places, (std::vector{1920, 2720, 3520}));
    }
    EXPECT_EQ(described(), before);
}

TEST_F(SeveralMonitorsTest, OneThatChangesLeavesTheOthersAsTheyAre)
{
    const auto left = open(1024, 600);
    const auto right = open(800, 600);
    left.screen->resize(600, 1024);
    ASSERT_TRUE(waitUntil([&] { return left.geometry().width == 600; }));
    EXPECT_EQ(left.area(), pixelRect(1920, 0, 600, 1024));
    EXPECT_EQ(right.area(), pixelRect(2944, 0, 800, 600));
    left.screen->place(pixelPoint(0, 1080));
    ASSERT_TRUE(waitUntil([&] { return left.geometry().corner() == pixelPoint(0, 1080); }));
    EXPECT_EQ(right.area(), pixelRect(2944, 0, 800, 600));
    EXPECT_TRUE(showsWhatIsDrawn(right, 0x654321));
}

TEST_F(SeveralMonitorsTest, OneThatFindsNoRoomGoesToTheRightOfEverything)
{
    const auto left = open(600, 1024);
    const auto right = open(800, 600);
    left.screen->resize(1024, 600);
    ASSERT_TRUE(waitUntil([&] { return left.geometry().width == 1024; }));
    EXPECT_EQ(left.area(), pixelRect(3320, 0, 1024, 600));
    EXPECT_EQ(right.area(), pixelRect(2520, 0, 800, 600));
    right.screen->place(pixelPoint(3320, 0));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(right.area(), pixelRect(2520, 0, 800, 600));
}

TEST_F(SeveralMonitorsTest, ThePrimaryOutputIsTheUsersAgainWhicheverOfOursWasIt)
{
    const auto before = described();
    auto left = open(1024, 600);
    mOthers.makePrimary(1);
    auto right = open(800, 600);
    mOthers.makePrimary(2);
    left.screen.reset();
    right.screen.reset();
    EXPECT_EQ(described(), before);
}

TEST_F(SeveralMonitorsTest, EightAtOnceAndNoMore)
{
    const auto before = described();
    std::vector<Monitor> monitors;
    for (std::uint32_t count = 0; count < mostMonitors; ++count)
        monitors.push_back(open(320, 240));
    EXPECT_EQ(monitors.back().area(), pixelRect(1920 + 7 * 320, 0, 320, 240));
    EXPECT_EQ(open(320, 240).told->end, ScreenObstacle::noSpareOutput);
    monitors.erase(monitors.begin() + 3);
    EXPECT_EQ(open(320, 240).told->end, std::nullopt);
    monitors.clear();
    EXPECT_EQ(described(), before);
}

TEST_F(SeveralMonitorsTest, WithoutAnOutputEachIsOnlyNamed)
{
    mOthers.beWindowManager("Openbox");
    showOnEveryOtherOutput(1);
    mOthers.setScreenSize(1920, 1080);
    const auto before = described();
    for (const bool isLeftFirst : {true, false}) {
        auto left = open(1024, 600);
        auto right = open(800, 1280);
        EXPECT_EQ(left.area(), pixelRect(1920, 0, 1024, 600));
        EXPECT_EQ(right.area(), pixelRect(2944, 0, 800, 1280));
        EXPECT_EQ(right.geometry().others, (std::vector{pixelRect(0, 0, 1920, 1080), left.area()}));
        auto& first = isLeftFirst ? left : right;
        const auto& second = isLeftFirst ? right : left;
        first.screen.reset();
        EXPECT_TRUE(showsWhatIsDrawn(second, 0x123456));
        const auto area = second.area();
        mOthers.movePointer(area.x + area.width - 5, area.y + area.height - 5);
        EXPECT_TRUE(waitUntil([&] {
            return second.screen->cursor().position() ==
                   pixelPoint(area.width - 5, area.height - 5);
        }));
        left.screen.reset();
        right.screen.reset();
        EXPECT_EQ(described(), before);
    }
}

TEST_F(SeveralMonitorsTest, OneWithAnOutputStandsBesideOneWithoutIt)
{
    mOthers.beWindowManager("Openbox");
    showOnEveryOtherOutput(2);
    mOthers.setScreenSize(1920, 1080);
    const auto before = described();
    for (const bool isShownFirst : {true, false}) {
        auto shown = open(1024, 600);
        auto named = open(800, 600);
        EXPECT_EQ(mOthers.area(1), (Area{1920, 0, 1024, 600}));
        EXPECT_EQ(named.area(), pixelRect(2944, 0, 800, 600));
        (isShownFirst ? shown : named).screen.reset();
        EXPECT_TRUE(showsWhatIsDrawn(isShownFirst ? named : shown, 0x123456));
        shown.screen.reset();
        named.screen.reset();
        EXPECT_EQ(described(), before);
    }
}

} // namespace
} // namespace farview
