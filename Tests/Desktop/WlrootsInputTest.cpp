#include "Platform/Desktop/Screens/Wlroots/WlrootsInput.h"

#include "Tests/Desktop/SwayScene.h"
#include "Tests/Support/ScreenPainter.h"

#include <algorithm>
#include <cmath>
#include <csignal>

namespace farview
{
namespace
{

using Lines = std::vector<std::string>;

/// A user with one monitor, and without any mouse or keyboard. The other one is ours.
class WlrootsInputTest : public SwayScene
{
protected:
    void openWithWindow(int width = 1024, int height = 600, double scale = 1)
    {
        open(width, height, scale);
        cover();
    }
    /// Has a window cover our monitor, and waits until it has the keyboard.
    void cover()
    {
        const auto area = geometry().area;
        ASSERT_TRUE(waitUntil([&] { return input().abilities().keys; }));
        mPainter.cover("HEADLESS-2", area.width, area.height, geometry().scale, 0x4080c0);
        ASSERT_TRUE(waitUntil([&] {
            const auto frame = mScreen->frames().takeFrame();
            return frame && frame->view.row(0)[0] == 0x4080c0;
        }));
        ASSERT_TRUE(mOthers.run("focus output HEADLESS-2"));
        ASSERT_TRUE(waitUntil([&] { return gets("HEADLESS-2 focus"); }));
        ASSERT_TRUE(waitUntil([&] {
            input().movePointer({.x = 1, .y = 1});
            return gets("HEADLESS-2 pointer 1,1");
        }));
    }
    bool gets(const std::string& line)
    {
        const auto lines = mPainter.takeInput();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    /// What the window gets next, as soon as it is so many lines.
    Lines next(std::size_t count)
    {
        Lines lines;
        waitUntil([&] {
            for (auto& line : mPainter.takeInput())
                lines.push_back(line.substr(line.find(' ') + 1));
            return lines.size() >= count;
        });
        return lines;
    }
    InputSink& input() { return mScreen->input(); }

    ScreenPainter mPainter;
};

TEST_F(WlrootsInputTest, PassesOnThePointerAndTheKeysButNoTouches)
{
    open();
    EXPECT_TRUE(waitUntil(
        [&] { return input().abilities() == InputAbilities{.pointer = true, .keys = true}; }));
}

TEST_F(WlrootsInputTest, ThePointerClicksAndScrolls)
{
    openWithWindow();
    input().movePointer({.x = 30.5, .y = 40});
    EXPECT_EQ(next(1), (Lines{"pointer 30.5,40"}));
    Lines clicks;
    for (const auto& [button, number] :
         {std::pair(PointerButton::left, "1"), std::pair(PointerButton::right, "2"),
          std::pair(PointerButton::middle, "4"), std::pair(PointerButton::back, "8"),
          std::pair(PointerButton::forward, "16")}) {
        input().button(button, true);
        input().button(button, false);
        clicks.push_back("button " + std::string(number) + " down 30.5,40");
        clicks.push_back("button " + std::string(number) + " up 30.5,40");
    }
    EXPECT_EQ(next(10), clicks);
    input().wheel(-1, 2);
    EXPECT_EQ(next(2), (Lines{"wheel 120 0 30.5,40", "wheel 0 -240 30.5,40"}));
    input().wheel(0, 0.25);
    input().wheel(0.5, 0);
    EXPECT_EQ(next(2), (Lines{"wheel 0 -30 30.5,40", "wheel -60 0 30.5,40"}));
}

TEST_F(WlrootsInputTest, TypesKeysAndAnyText)
{
    openWithWindow();
    input().key(42, true);
    input().key(30, true);
    input().key(30, false);
    input().key(42, false);
    EXPECT_EQ(next(4), (Lines{"key 42 down ", "key 30 down A", "key 30 up A", "key 42 up "}));
    input().text("aλ€\n");
    Lines typed;
    for (auto& line : next(8))
        typed.push_back(line.substr(line.find(' ', 4) + 1));
    EXPECT_EQ(typed,
              (Lines{"down a", "up a", "down λ", "up λ", "down €", "up €", "down \r", "up \r"}));
    input().key(30, true);
    input().key(30, false);
    EXPECT_EQ(next(2), (Lines{"key 30 down a", "key 30 up a"}));
}

TEST_F(WlrootsInputTest, TypesMoreCharactersThanAKeyboardHasKeys)
{
    openWithWindow();
    std::u32string text;
    for (char32_t character = 0x4E00; character < 0x4E00 + 500; ++character)
        text += character;
    input().text(QString::fromStdU32String(text).toStdString());
    std::string typed;
    for (const auto& line : next(1000)) {
        if (const auto place = line.find(" down "); place != std::string::npos)
            typed += line.substr(place + 6);
    }
    EXPECT_EQ(QString::fromStdString(typed).toStdU32String(), text);
}

TEST_F(WlrootsInputTest, PlacesOutsideAreNobodys)
{
    mPainter.cover("HEADLESS-1", 1280, 720, 1, 0x4080c0);
    openWithWindow();
    mPainter.takeInput();
    const double nowhere = std::nan("");
    for (const auto& [x, y] : {std::pair(-1.0, 10.0), std::pair(1024.0, 10.0),
                               std::pair(10.0, -0.1), std::pair(10.0, 600.0), std::pair(1e12, 1e12),
                               std::pair(nowhere, 10.0), std::pair(10.0, nowhere)})
        input().movePointer({.x = x, .y = y});
    input().movePointer({.x = 50, .y = 50});
    EXPECT_EQ(next(1), (Lines{"pointer 50,50"}));
}

TEST_F(WlrootsInputTest, PlacesAreTheMonitorsPixelsWhateverItsScaleAndSize)
{
    openWithWindow(1600, 1200, 2);
    EXPECT_EQ(geometry().area, pixelRect(1280, 0, 800, 600));
    input().movePointer({.x = 1599, .y = 1199});
    EXPECT_EQ(next(1), (Lines{"pointer 1599,1199"}));
    mScreen->resize(1200, 1600);
    ASSERT_TRUE(becomes(1200, 1600));
    cover();
    input().movePointer({.x = 1199, .y = 1599});
    EXPECT_EQ(next(1), (Lines{"pointer 1199,1599"}));
}

TEST_F(WlrootsInputTest, WhatIsDownIsReleasedWhenTheMonitorGoes)
{
    mPainter.cover("HEADLESS-1", 1280, 720, 1, 0x4080c0);
    openWithWindow();
    input().key(30, true);
    input().button(PointerButton::left, true);
    ASSERT_EQ(next(2).size(), 2U);
    mScreen.reset();
    EXPECT_TRUE(waitUntil([&] { return gets("HEADLESS-2 button 1 up 1,1"); }));
}

TEST_F(WlrootsInputTest, AFloodEndsInTheLastPlace)
{
    openWithWindow();
    for (int index = 0; index < 10'000; ++index)
        input().movePointer({.x = double(index % 1000), .y = 20});
    input().movePointer({.x = 77, .y = 88});
    EXPECT_TRUE(waitUntil([&] { return gets("HEADLESS-2 pointer 77,88"); }));
}

TEST_F(WlrootsInputTest, ASwayThatStoodStillGetsTheLastPlaceAndAllOfATextAndNothingStaysDown)
{
    openWithWindow();
    mDesktop.process().sendSignal(SIGSTOP);
    input().button(PointerButton::left, true);
    for (int index = 0; index < 10'000; ++index)
        input().movePointer({.x = double(index % 1000), .y = 20});
    input().movePointer({.x = 77, .y = 88});
    input().button(PointerButton::left, false);
    input().text(std::string(1000, 'a'));
    mDesktop.process().sendSignal(SIGCONT);
    Lines lines;
    const auto count = [&](const char* part) {
        return std::count_if(lines.begin(), lines.end(), [part](const auto& line) {
            return line.find(part) != std::string::npos;
        });
    };
    EXPECT_TRUE(waitUntil([&] {
        for (auto& line : mPainter.takeInput())
            lines.push_back(line);
        return count(" up a") == 1000 && count("pointer 77,88") == 1 && count("button 1 up") == 1;
    })) << count(" up a");
}

TEST_F(WlrootsInputTest, WithoutTheWishNothingIsPassedOn)
{
    mListener = std::make_shared<ScreenListener>();
    mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 600}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry.has_value(); }));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(input().abilities(), InputAbilities{});
    input().key(30, true);
    input().movePointer({.x = 3, .y = 3});
}

} // namespace
} // namespace farview
