#include "Platform/Desktop/Screens/Mutter/MutterLayout.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace farview
{
namespace
{

/// A user with two monitors, one below the other, arranged by hand, and several of ours.
class MutterLayoutTest : public testing::Test
{
protected:
    struct Monitor {
        std::shared_ptr<ScreenListener> told = std::make_shared<ScreenListener>();
        std::unique_ptr<VirtualScreen> screen;

        const ScreenGeometry& geometry() const { return *told->geometry; }
        bool isAt(const PixelRect& area) const
        {
            return waitUntil([&] { return geometry().area == area; });
        }
    };

    MutterLayoutTest()
    {
        auto layout = mOthers.state().layout;
        std::sort(layout.begin(), layout.end(), [](const auto& left, const auto& right) {
            return left.monitors[0].connector < right.monitors[0].connector;
        });
        layout[0].x = 0;
        layout[0].isPrimary = false;
        layout[1] = {0, 720, 1, 0, true, layout[1].monitors};
        EXPECT_TRUE(mOthers.apply(layout));
        mUsers = mOthers.layout();
    }
    Monitor begin(int width, int height)
    {
        Monitor monitor;
        monitor.screen =
            mScreens.open({.name = "Tablet", .width = width, .height = height}, monitor.told);
        return monitor;
    }
    static bool isThere(const Monitor& monitor)
    {
        return waitUntil([&] { return monitor.told->geometry || monitor.told->end; },
                         std::chrono::seconds(20)) &&
               monitor.told->geometry;
    }
    Monitor open(int width, int height)
    {
        auto monitor = begin(width, height);
        EXPECT_TRUE(isThere(monitor));
        return monitor;
    }
    bool usersMonitorsStay()
    {
        return waitUntil([&] { return mOthers.layout().starts_with(mUsers); });
    }
    bool everythingIsAsItWas()
    {
        return waitUntil([&] { return mOthers.layout() == mUsers; });
    }
    bool showsWhatIsPainted(const Monitor& monitor, std::uint32_t colour)
    {
        const auto corner = monitor.geometry().corner();
        mOthers.fill(corner.x, corner.y, 4, 4, colour);
        return waitUntil([&] {
            const auto frame = monitor.screen->frames().takeFrame();
            return frame && frame->view.row(0)[0] == colour;
        });
    }

    PrivateGnome mDesktop{{"1280x720", "1920x1200"}};
    GnomeArranger mOthers{mDesktop};
    std::string mUsers;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    MutterVirtualScreens mScreens{mLoop, mBus};
};

TEST_F(MutterLayoutTest, TwoThatAreOpenedAtOnceInOneSizeAreNotTakenForEachOther)
{
    const auto one = begin(800, 600);
    const auto other = begin(800, 600);
    ASSERT_TRUE(isThere(one) && isThere(other));
    EXPECT_TRUE(one.isAt(pixelRect(1920, 720, 800, 600)));
    EXPECT_TRUE(other.isAt(pixelRect(2720, 720, 800, 600)));
    EXPECT_TRUE(usersMonitorsStay());
    EXPECT_TRUE(showsWhatIsPainted(one, 0x102030));
    EXPECT_TRUE(showsWhatIsPainted(other, 0x405060));
}

TEST_F(MutterLayoutTest, EachIsToldOfTheOthersTheUsersFirst)
{
    const auto one = open(1024, 600);
    const auto other = open(800, 480);
    std::vector others{pixelRect(0, 720, 1920, 1200), pixelRect(0, 0, 1280, 720),
                       pixelRect(1920, 720, 1024, 600)};
    EXPECT_EQ(other.geometry().others, others);
    others[2] = pixelRect(2944, 720, 800, 480);
    EXPECT_TRUE(waitUntil([&] { return one.geometry().others == others; }));
}

TEST_F(MutterLayoutTest, EachOrderOfEndingGivesTheUsersMonitorsTheirPlacesBack)
{
    for (const bool isFirstFirst : {true, false}) {
        auto one = open(1024, 600);
        auto other = open(800, 480);
        (isFirstFirst ? one : other).screen.reset();
        EXPECT_TRUE(usersMonitorsStay());
        (isFirstFirst ? other : one).screen.reset();
        // Mutter may arrange them once more after that.
        EXPECT_TRUE(everythingIsAsItWas());
        runLoopFor(std::chrono::milliseconds(300));
        EXPECT_TRUE(everythingIsAsItWas());
    }
}

TEST_F(MutterLayoutTest, BothMayEndAtOnce)
{
    auto one = open(1024, 600);
    auto other = open(800, 480);
    one.screen.reset();
    other.screen.reset();
    EXPECT_TRUE(everythingIsAsItWas());
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_TRUE(everythingIsAsItWas());
}

TEST_F(MutterLayoutTest, OneStaysWhereItIsWhenAnotherGoes)
{
    auto one = open(600, 720);
    const auto other = open(800, 480);
    one.screen->place(pixelPoint(1280, 0));
    ASSERT_TRUE(one.isAt(pixelRect(1280, 0, 600, 720)));
    other.screen->place(pixelPoint(1920, 900));
    ASSERT_TRUE(other.isAt(pixelRect(1920, 900, 800, 480)));
    other.told->geometries.clear();
    one.screen.reset();
    ASSERT_TRUE(waitUntil([&] { return other.geometry().others.size() == 2; }));
    runLoopFor(std::chrono::milliseconds(300));
    for (const auto& told : other.told->geometries)
        EXPECT_EQ(told.area, pixelRect(1920, 900, 800, 480));
    EXPECT_TRUE(usersMonitorsStay());
    EXPECT_TRUE(showsWhatIsPainted(other, 0x708090));
}

TEST_F(MutterLayoutTest, OneThatWouldStandApartGoesBesideEverything)
{
    auto one = open(1024, 600);
    const auto other = open(800, 480);
    ASSERT_TRUE(other.isAt(pixelRect(2944, 720, 800, 480)));
    one.screen.reset();
    EXPECT_TRUE(other.isAt(pixelRect(1920, 720, 800, 480)));
    EXPECT_TRUE(usersMonitorsStay());
}

TEST_F(MutterLayoutTest, OneThatChangesLeavesTheOthersAsTheyAre)
{
    const auto one = open(1600, 1200);
    const auto other = open(800, 480);
    other.screen->place(pixelPoint(1280, 240));
    ASSERT_TRUE(other.isAt(pixelRect(1280, 240, 800, 480)));
    other.told->geometries.clear();
    one.screen->resize(1200, 1600);
    EXPECT_TRUE(one.isAt(pixelRect(1920, 720, 1200, 1600)));
    one.screen->resize(2048, 1536);
    EXPECT_TRUE(one.isAt(pixelRect(1920, 720, 2048, 1536)));
    one.screen->setScale(2);
    EXPECT_TRUE(waitUntil([&] { return one.geometry().scale == 2; }));
    runLoopFor(std::chrono::milliseconds(300));
    for (const auto& told : other.told->geometries)
        EXPECT_EQ(told.area, pixelRect(1280, 240, 800, 480));
    EXPECT_TRUE(usersMonitorsStay());
}

TEST_F(MutterLayoutTest, OneThatEndsBeforeItIsThereKeepsNobodyWaiting)
{
    auto one = begin(800, 600);
    const auto other = begin(800, 600);
    runLoopFor(std::chrono::milliseconds(20));
    one.screen.reset();
    ASSERT_TRUE(isThere(other));
    EXPECT_TRUE(other.isAt(pixelRect(1920, 720, 800, 600)));
    EXPECT_TRUE(usersMonitorsStay());
    EXPECT_TRUE(showsWhatIsPainted(other, 0x304050));
}

TEST_F(MutterLayoutTest, WhatTheUserArrangesMeanwhileStays)
{
    auto one = open(1024, 600);
    const auto other = open(800, 480);
    auto layout = mOthers.state().layout;
    for (auto& part : layout) {
        if (part.monitors[0].connector == u"Meta-0")
            part.x = 640;
        if (part.monitors[0].connector == u"Meta-3")
            part.y = 800;
    }
    ASSERT_TRUE(mOthers.apply(layout));
    ASSERT_TRUE(other.isAt(pixelRect(2944, 800, 800, 480)));
    one.screen->resize(1024, 768);
    EXPECT_TRUE(one.isAt(pixelRect(1920, 720, 1024, 768)));
    EXPECT_TRUE(waitUntil([&] { return mOthers.layout().starts_with("640,0 x1 Meta-0\n"); }));
    EXPECT_TRUE(other.isAt(pixelRect(2944, 800, 800, 480)));
}

} // namespace
} // namespace farview
