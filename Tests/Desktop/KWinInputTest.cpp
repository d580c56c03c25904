#include "Platform/Desktop/Screens/KWin/KWinInput.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/ScreenPainter.h"
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

/// At the second of two monitors of a KDE session, as if we had made it, with a window that tells.
class KWinInputTest : public testing::Test
{
protected:
    KWinInputTest()
    {
        EXPECT_TRUE(waitUntil([this] { return mIsReady; }));
        mInput.setMonitor({pixelRect(1280, 0, 1280, 720), 1280, 720});
        mPainter.cover("Virtual-0", 1280, 720, 1, 0x203040);
        mPainter.cover("Virtual-1", 1280, 720, 1, 0x203040);
        EXPECT_TRUE(getsTouches());
    }
    /// Taps until the window hears of it: it may be on its way to the screen.
    bool getsTouches()
    {
        return waitUntil([this] {
            tap(1, 1);
            const auto lines = next(2, std::chrono::milliseconds(300));
            return !lines.empty() && lines.back() == "Virtual-1 finger up";
        });
    }
    void touch(int finger, TouchPhase phase, double x = 0, double y = 0)
    {
        mInput.touch({.finger = finger, .phase = phase, .place = {.x = x, .y = y}});
    }
    void tap(double x, double y)
    {
        touch(0, TouchPhase::down, x, y);
        touch(0, TouchPhase::up);
    }
    /// What windows get next, as soon as it is so many lines.
    Lines next(std::size_t count, std::chrono::milliseconds limit = std::chrono::seconds(10))
    {
        Lines lines;
        waitUntil(
            [&] {
                for (auto& line : mPainter.takeInput()) {
                    if (!line.ends_with(" focus"))
                        lines.push_back(std::move(line));
                }
                return lines.size() >= count;
            },
            limit);
        return lines;
    }
    /// Whether the pointer gets there, perhaps over the edge of the other monitor.
    bool getsTo(double x, double y, const std::string& line)
    {
        mInput.movePointer({.x = x, .y = y});
        return waitUntil([&] {
            const auto lines = mPainter.takeInput();
            return std::find(lines.begin(), lines.end(), line) != lines.end();
        });
    }
    /// Nothing that was given before is missing when this comes, and nothing is too much.
    Lines restAndATap()
    {
        tap(50, 50);
        auto lines = next(2);
        return lines;
    }

    PrivatePlasma mDesktop;
    FakeLog mLog;
    TestBus mBus{mLog};
    bool mIsReady = false;
    WaylandConnection mConnection{{.ready =
                                       [this] {
                                           mInput.makeDevices(mConnection, mBus);
                                           mConnection.afterAll([this] { mIsReady = true; });
                                       },
                                   .lost = [] {}}};
    KWinInput mInput{16};
    ScreenPainter mPainter;
    const Lines mTap{"Virtual-1 finger down 50,50", "Virtual-1 finger up"};
};

TEST_F(KWinInputTest, TwoFingersLandWhereTheyAre)
{
    touch(0, TouchPhase::down, 0, 0);
    touch(1, TouchPhase::down, 700.25, 500.5);
    EXPECT_EQ(next(2), (Lines{"Virtual-1 finger down 0,0", "Virtual-1 finger down 700.25,500.5"}));
    touch(0, TouchPhase::motion, 10.5, 20);
    touch(1, TouchPhase::motion, 1279.75, 719.75);
    EXPECT_EQ(next(2),
              (Lines{"Virtual-1 finger motion 10.5,20", "Virtual-1 finger motion 1279.75,719.75"}));
    touch(0, TouchPhase::up);
    touch(1, TouchPhase::cancel);
    EXPECT_EQ(next(2), (Lines{"Virtual-1 finger up", "Virtual-1 finger up"}));
}

TEST_F(KWinInputTest, ThePointerClicksAndScrolls)
{
    ASSERT_TRUE(getsTo(30, 40, "Virtual-1 pointer 30,40"));
    for (const auto button : {PointerButton::left, PointerButton::right, PointerButton::middle,
                              PointerButton::back, PointerButton::forward}) {
        mInput.button(button, true);
        mInput.button(button, false);
    }
    const std::string at = " 30,40";
    Lines clicks;
    for (const char* number : {"1", "2", "4", "8", "16"}) {
        clicks.push_back("Virtual-1 button " + std::string(number) + " down" + at);
        clicks.push_back("Virtual-1 button " + std::string(number) + " up" + at);
    }
    EXPECT_EQ(next(10), clicks);
    mInput.wheel(-1, 2);
    EXPECT_EQ(next(2), (Lines{"Virtual-1 wheel 120 0" + at, "Virtual-1 wheel 0 -240" + at}));
    mInput.wheel(0, 0.25);
    EXPECT_EQ(next(1), (Lines{"Virtual-1 wheel 0 -30" + at}));
}

TEST_F(KWinInputTest, ThePointerGetsAcrossTheBorderOfTheScreenBeside)
{
    for (const int x : {0, 1, 99, 100, 101, 640}) {
        mInput.setMonitor({pixelRect(0, 0, 1280, 720), 1280, 720});
        // A window tells only of what is new to it.
        ASSERT_TRUE(getsTo(500 + x, 300, "Virtual-0 pointer " + std::to_string(500 + x) + ",300"));
        mInput.setMonitor({pixelRect(1280, 0, 1280, 720), 1280, 720});
        EXPECT_TRUE(getsTo(x, 40, "Virtual-1 pointer " + std::to_string(x) + ",40")) << x;
    }
}

TEST_F(KWinInputTest, TypesKeysAndWhatTheLayoutHas)
{
    mInput.key(30, true);
    mInput.key(30, false);
    EXPECT_EQ(next(2), (Lines{"Virtual-1 key 30 down a", "Virtual-1 key 30 up a"}));
    mInput.text("aλB");
    EXPECT_EQ(next(6),
              (Lines{"Virtual-1 key 30 down a", "Virtual-1 key 30 up a", "Virtual-1 key 42 down ",
                     "Virtual-1 key 48 down B", "Virtual-1 key 48 up B", "Virtual-1 key 42 up "}));
}

TEST_F(KWinInputTest, TypesInTheLayoutThatTheUserHasChosen)
{
    mInput.text("a");
    ASSERT_EQ(next(2), (Lines{"Virtual-1 key 30 down a", "Virtual-1 key 30 up a"}));
    bool isSet = false;
    auto choose = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.keyboard"), QStringLiteral("/Layouts"),
        QStringLiteral("org.kde.KeyboardLayouts"), QStringLiteral("setLayout"));
    mBus.ask(choose << 1U, &mBus, [&](const auto&) { isSet = true; });
    ASSERT_TRUE(waitUntil([&] { return isSet; }));
    Lines lines;
    EXPECT_TRUE(waitUntil([&] {
        mInput.text("ф");
        lines = next(2, std::chrono::milliseconds(200));
        return !lines.empty();
    }));
    EXPECT_EQ(lines, (Lines{"Virtual-1 key 30 down ф", "Virtual-1 key 30 up ф"}));
}

TEST_F(KWinInputTest, PlacesOutsideAreNobodys)
{
    const double nowhere = std::nan("");
    for (const auto& [x, y] : {std::pair(-1.0, 10.0),
                               {1280.0, 10.0},
                               {10.0, -0.1},
                               {10.0, 720.0},
                               {1e12, 1e12},
                               {nowhere, 10.0},
                               {10.0, nowhere}}) {
        mInput.movePointer({.x = x, .y = y});
        tap(x, y);
    }
    touch(0, TouchPhase::motion, 30, 30);
    touch(-1, TouchPhase::down, 40, 40);
    touch(16, TouchPhase::down, 40, 40);
    EXPECT_EQ(restAndATap(), mTap);
}

TEST_F(KWinInputTest, PlacesAreTheMonitorsPixelsWhateverItsScale)
{
    mInput.setMonitor({pixelRect(1280, 0, 1280, 720), 2560, 1440, 2});
    touch(0, TouchPhase::down, 2559.5, 1);
    EXPECT_EQ(next(1), (Lines{"Virtual-1 finger down 1279.75,0.5"}));
}

TEST_F(KWinInputTest, WhatIsDownIsReleasedAtTheEnd)
{
    ASSERT_TRUE(getsTo(30, 40, "Virtual-1 pointer 30,40"));
    mInput.button(PointerButton::left, true);
    mInput.key(30, true);
    touch(5, TouchPhase::down, 20, 20);
    ASSERT_EQ(next(3).size(), 3U);
    mInput.end();
    EXPECT_EQ(mInput.abilities(), InputAbilities{});
    EXPECT_EQ(next(3), (Lines{"Virtual-1 finger up", "Virtual-1 button 1 up 30,40",
                              "Virtual-1 key 30 up a"}));
}

/// Not more: KWin breaks with programs that do not read as fast.
TEST_F(KWinInputTest, AThousandMotionsEndInTheLastPlace)
{
    touch(0, TouchPhase::down, 10, 10);
    for (int index = 0; index < 1000; ++index)
        touch(0, TouchPhase::motion, index, 20);
    touch(0, TouchPhase::motion, 77, 88);
    touch(0, TouchPhase::up);
    std::string last;
    EXPECT_TRUE(waitUntil([&] {
        for (auto& line : mPainter.takeInput())
            last = line;
        return last == "Virtual-1 finger up";
    })) << last;
}

} // namespace
} // namespace farview
