#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

using Lines = std::vector<std::string>;

/// A user with one monitor and, unless a test gives one, without any mouse, keyboard or touch
/// screen. The other one is ours.
class MutterInputTest : public testing::Test
{
protected:
    explicit MutterInputTest(const std::string& settings = {}) : mDesktop({"1280x720"}, settings) {}

    void open(int width = 1024, int height = 600, double scale = 1)
    {
        mScreen = mScreens.open(
            {.name = "Tablet", .width = width, .height = height, .scale = scale, .input = true},
            mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry || mListener->end; },
                              std::chrono::seconds(20)));
        ASSERT_TRUE(mListener->geometry) << static_cast<int>(*mListener->end);
    }
    /// Has a window cover our monitor, and waits until it has its full size and the keyboard. Where
    /// Mutter gives it another size at first, it may stay too small: then another one is shown.
    bool showWindow()
    {
        bool isDone = false;
        for (int time = 0; time < 5 && !isDone; ++time)
            isDone = showWindowOnce();
        return isDone && hasKeyboard();
    }
    bool showWindowOnce()
    {
        const auto area = geometry().area;
        mSeen.clear();
        mOthers.cover("Meta-1", area.width, area.height, geometry().scale, colour - 1);
        if (!getsAmongOthers("Meta-1 size " + std::to_string(geometry().width) + " " +
                             std::to_string(geometry().height)))
            return false;
        mOthers.fill(area.x, area.y, area.width, area.height, colour);
        return isCovered();
    }
    void coverUsers()
    {
        mOthers.cover("Meta-0", 1280, 720, 1, colour);
        ASSERT_TRUE(getsAmongOthers("Meta-0 focus"));
    }
    bool hasKeyboard() { return getsAmongOthers("Meta-1 focus"); }
    bool getsAmongOthers(const std::string& line)
    {
        const auto isThere = [&] {
            for (auto& next : mOthers.takeInput())
                mSeen.push_back(std::move(next));
            return std::find(mSeen.begin(), mSeen.end(), line) != mSeen.end();
        };
        return waitUntil(isThere, std::chrono::seconds(10));
    }
    bool isCovered()
    {
        const auto isSo = [&] {
            const auto frame = mScreen->frames().takeFrame();
            if (!frame || frame->view.width != geometry().width)
                return false;
            const auto* last = frame->view.row(frame->view.height - 1);
            return frame->view.row(0)[0] == colour && last[frame->view.width - 1] == colour;
        };
        return waitUntil(isSo);
    }
    void openWithWindow()
    {
        open();
        ASSERT_TRUE(showWindow());
    }
    const ScreenGeometry& geometry() { return *mListener->geometry; }
    InputSink& input() { return mScreen->input(); }
    void touch(int finger, TouchPhase phase, double x = 0, double y = 0)
    {
        input().touch({.finger = finger, .phase = phase, .place = {.x = x, .y = y}});
    }
    /// What windows get of it.
    Lines tap(double x, double y)
    {
        touch(0, TouchPhase::down, x, y);
        auto lines = next(1);
        touch(0, TouchPhase::up);
        for (auto& line : next(1))
            lines.push_back(std::move(line));
        return lines;
    }
    static Lines tapAt(const std::string& place)
    {
        return {"Meta-1 finger down " + place, "Meta-1 finger up"};
    }
    /// What windows get next besides sizes and the keyboard, as soon as it is so many lines.
    Lines next(std::size_t count)
    {
        Lines lines;
        waitUntil([&] {
            for (auto& line : mOthers.takeInput()) {
                if (!line.ends_with(" focus") && line.find(" size ") == line.npos)
                    lines.push_back(std::move(line));
            }
            return lines.size() >= count;
        });
        return lines;
    }

    static constexpr std::uint32_t colour = 0x4080c0;

    PrivateGnome mDesktop;
    GnomeArranger mOthers{mDesktop, false};
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    MutterVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
    Lines mSeen;
};

TEST_F(MutterInputTest, TheFirstOfEachKindReachesProgramsThatRanBefore)
{
    coverUsers();
    open();
    ASSERT_TRUE(showWindow());
    input().key(30, true);
    input().key(30, false);
    EXPECT_EQ(next(2), (Lines{"Meta-1 key 30 down a", "Meta-1 key 30 up a"}));
    input().movePointer({.x = 300, .y = 301});
    EXPECT_EQ(next(1), (Lines{"Meta-1 pointer 300,301"}));
    EXPECT_EQ(tap(100, 200), tapAt("100,200"));
}

TEST_F(MutterInputTest, TwoFingersLandWhereTheyAre)
{
    openWithWindow();
    touch(0, TouchPhase::down, 0, 0);
    touch(1, TouchPhase::down, 700.25, 500.5);
    EXPECT_EQ(next(2), (Lines{"Meta-1 finger down 0,0", "Meta-1 finger down 700.25,500.5"}));
    touch(0, TouchPhase::motion, 10.5, 20);
    touch(1, TouchPhase::motion, 1023.75, 599.75);
    EXPECT_EQ(next(2),
              (Lines{"Meta-1 finger motion 10.5,20", "Meta-1 finger motion 1023.75,599.75"}));
    touch(0, TouchPhase::up);
    touch(1, TouchPhase::cancel);
    EXPECT_EQ(next(2), (Lines{"Meta-1 finger up", "Meta-1 finger up"}));
}

TEST_F(MutterInputTest, ThePointerClicksAndScrolls)
{
    openWithWindow();
    input().movePointer({.x = 30.5, .y = 40});
    EXPECT_EQ(next(1), (Lines{"Meta-1 pointer 30.5,40"}));
    for (const auto button : {PointerButton::left, PointerButton::right, PointerButton::middle,
                              PointerButton::back, PointerButton::forward}) {
        input().button(button, true);
        input().button(button, false);
    }
    const std::string at = " 30.5,40";
    Lines clicks;
    for (const char* number : {"1", "2", "4", "8", "16"}) {
        clicks.push_back("Meta-1 button " + std::string(number) + " down" + at);
        clicks.push_back("Meta-1 button " + std::string(number) + " up" + at);
    }
    EXPECT_EQ(next(10), clicks);
    input().wheel(-1, 2);
    EXPECT_EQ(next(3), (Lines{"Meta-1 wheel 120 0" + at, "Meta-1 wheel 0 -120" + at,
                              "Meta-1 wheel 0 -120" + at}));
    input().wheel(0, 0.25);
    input().wheel(0.5, -0.25);
    auto parts = next(2);
    EXPECT_EQ(parts, (Lines{"Meta-1 wheel 0 -30" + at, "Meta-1 wheel -60 30" + at}));
}

TEST_F(MutterInputTest, TypesKeysAndWhatTheLayoutHas)
{
    openWithWindow();
    input().text("aλ€B");
    EXPECT_EQ(next(8), (Lines{"Meta-1 key 30 down a", "Meta-1 key 30 up a", "Meta-1 key 435 down €",
                              "Meta-1 key 435 up €", "Meta-1 key 42 down ", "Meta-1 key 48 down B",
                              "Meta-1 key 48 up B", "Meta-1 key 42 up "}));
}

TEST_F(MutterInputTest, PlacesOutsideAreNobodys)
{
    coverUsers();
    openWithWindow();
    const double nowhere = std::nan("");
    for (const auto& [x, y] : {std::pair(-1.0, 10.0),
                               {1024.0, 10.0},
                               {10.0, -0.1},
                               {10.0, 600.0},
                               {1e12, 1e12},
                               {nowhere, 10.0},
                               {10.0, nowhere}}) {
        input().movePointer({.x = x, .y = y});
        touch(0, TouchPhase::down, x, y);
        touch(0, TouchPhase::up);
    }
    touch(0, TouchPhase::motion, 30, 30);
    touch(-1, TouchPhase::down, 40, 40);
    touch(16, TouchPhase::down, 40, 40);
    EXPECT_EQ(tap(50, 50), tapAt("50,50"));
}

TEST_F(MutterInputTest, NothingLandsOnTheScreenBeside)
{
    open();
    auto layout = mOthers.state().layout;
    for (auto& part : layout) {
        const bool isOurs = part.monitors[0].connector == u"Meta-1";
        part.x = isOurs ? 0 : 1024;
        part.y = isOurs ? 0 : 100;
    }
    ASSERT_TRUE(mOthers.apply(layout));
    ASSERT_TRUE(waitUntil([&] { return geometry().corner() == PixelPoint{}; }));
    coverUsers();
    ASSERT_TRUE(showWindow());
    EXPECT_EQ(tap(1023.75, 300), tapAt("1023.75,300"));
    EXPECT_EQ(tap(0, 599.75), tapAt("0,599.75"));
}

TEST_F(MutterInputTest, PlacesAreExactAfterAnotherSize)
{
    open();
    mScreen->resize(800, 500);
    // Mutter arranges monitors once for a new one and twice for another size. A window that comes
    // in between may go to another one.
    ASSERT_TRUE(waitUntil([&] { return geometry().width == 800 && mOthers.arrangements() >= 3; }));
    ASSERT_TRUE(showWindow());
    EXPECT_EQ(tap(799.5, 499.5), tapAt("799.5,499.5"));
}

TEST_F(MutterInputTest, PlacesAreTheMonitorsPixelsWhateverItsScale)
{
    open(1600, 1200, 2);
    ASSERT_EQ(geometry().scale, 2);
    ASSERT_EQ(geometry().area.width, 1600);
    ASSERT_TRUE(showWindow());
    EXPECT_EQ(tap(1599.5, 1199.5), tapAt("1599.5,1199.5"));
}

TEST_F(MutterInputTest, WhatIsDownIsReleasedWhenTheMonitorGoes)
{
    open();
    ASSERT_TRUE(showWindow());
    input().key(30, true);
    touch(0, TouchPhase::down, 10, 10);
    touch(5, TouchPhase::down, 20, 20);
    ASSERT_EQ(next(3).size(), 3U);
    mScreen.reset();
    EXPECT_EQ(next(3), (Lines{"Meta-1 finger up", "Meta-1 finger up", "Meta-1 key 30 up a"}));
}

TEST_F(MutterInputTest, AButtonIsReleasedWhenTheMonitorGoes)
{
    openWithWindow();
    input().movePointer({.x = 30, .y = 40});
    input().button(PointerButton::left, true);
    ASSERT_EQ(next(2).size(), 2U);
    mScreen.reset();
    EXPECT_EQ(next(1), (Lines{"Meta-1 button 1 up 30,40"}));
}

TEST_F(MutterInputTest, AKilledProgramsKeyIsReleased)
{
    ChildProcess holder({FARVIEW_MONITOR_HOLDER});
    mOthers.cover("Meta-1", 1024, 600, 1, colour);
    ASSERT_TRUE(hasKeyboard());
    holder.sendSignal(SIGUSR1);
    ASSERT_TRUE(getsAmongOthers("Meta-1 key 30 down a"));
    holder.kill();
    EXPECT_TRUE(getsAmongOthers("Meta-1 key 30 up a"));
}

TEST_F(MutterInputTest, AFloodEndsInTheLastPlace)
{
    openWithWindow();
    touch(0, TouchPhase::down, 10, 10);
    for (int index = 0; index < 10'000; ++index)
        touch(0, TouchPhase::motion, index % 1000, 20);
    touch(0, TouchPhase::motion, 77, 88);
    touch(0, TouchPhase::up);
    std::string last;
    EXPECT_TRUE(waitUntil(
        [&] {
            for (auto& line : mOthers.takeInput())
                last = line;
            return last == "Meta-1 finger up";
        },
        std::chrono::seconds(60)))
        << last;
}

TEST_F(MutterInputTest, NoTouchIsLostWhileANewFrameIsAskedFor)
{
    open();
    const auto area = geometry().area;
    // Unlike others this window does not paint by itself: so frames are asked for.
    mOthers.fill(area.x, area.y, area.width, area.height, colour);
    ASSERT_TRUE(isCovered() && hasKeyboard());
    const auto end = mLoop.now() + Duration(4);
    for (int x = 0; mLoop.now() < end; x = (x + 1) % 1000)
        ASSERT_EQ(tap(x, 10), tapAt(std::to_string(x) + ",10"));
}

TEST_F(MutterInputTest, WithoutTheWishNothingIsPassedOn)
{
    mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 600}, mListener);
    ASSERT_TRUE(
        waitUntil([&] { return mListener->geometry.has_value(); }, std::chrono::seconds(20)));
    EXPECT_EQ(input().abilities(), InputAbilities{});
    mOthers.cover("Meta-1", 1024, 600, 1, colour);
    ASSERT_TRUE(hasKeyboard());
    input().key(30, true);
    touch(0, TouchPhase::down, 10, 10);
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(mOthers.takeInput(), Lines{});
}

class ScaledMutterInputTest : public MutterInputTest
{
protected:
    ScaledMutterInputTest()
        : MutterInputTest("[org/gnome/mutter]\n"
                          "experimental-features=['scale-monitor-framebuffer']\n")
    {
    }
};

TEST_F(ScaledMutterInputTest, PlacesAreTheMonitorsPixelsWhereScaledMonitorsTakeLessRoom)
{
    coverUsers();
    open(1600, 1200, 2);
    ASSERT_EQ(geometry().area.width, 800);
    ASSERT_TRUE(showWindow());
    EXPECT_EQ(tap(1599.5, 1199.5), tapAt("1599.5,1199.5"));
    input().movePointer({.x = 801, .y = 0.5});
    EXPECT_EQ(next(1), (Lines{"Meta-1 pointer 801,0.5"}));
}

} // namespace
} // namespace farview
