#include "Platform/Desktop/Screens/X11/WindowPlacing.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const PixelRect mainScreen = pixelRect(0, 0, 1920, 1080);
const PixelRect second = pixelRect(-1280, 0, 1280, 1024);
const PixelRect monitor = pixelRect(1920, 0, 1600, 1000);
const WindowMargins frame{5, 5, 20, 5};
const WindowStretch maximised{true, true, false};

TEST(WindowPlacing, BringsWindowsWhollyIntoSightWithTheirFrames)
{
    struct Case {
        PixelRect area;
        PixelRect expected;
    };
    for (const auto& [area, expected] :
         {Case{pixelRect(100, 100, 400, 300), pixelRect(100, 100, 400, 300)},
          Case{pixelRect(1851, 100, 400, 300), pixelRect(1515, 100, 400, 300)},
          Case{pixelRect(-300, -50, 400, 300), pixelRect(5, 20, 400, 300)},
          Case{pixelRect(100, 1079, 400, 300), pixelRect(100, 775, 400, 300)},
          Case{pixelRect(2000, 100, 2500, 1200), pixelRect(5, 20, 1910, 1055)},
          Case{pixelRect(32000, 32000, 700, 700), pixelRect(1215, 375, 700, 700)}})
        EXPECT_EQ(broughtIntoSight(area, frame, mainScreen), expected) << area.x;
}

TEST(WindowPlacing, AWindowIsWhereItsMiddleIs)
{
    EXPECT_TRUE(isOn(pixelRect(1700, 0, 400, 300), mainScreen));
    EXPECT_FALSE(isOn(pixelRect(1721, 0, 400, 300), mainScreen));
    EXPECT_TRUE(isOn(pixelRect(1721, 0, 400, 300), monitor));
    EXPECT_TRUE(overlap(pixelRect(1521, 0, 400, 300), monitor));
    EXPECT_FALSE(overlap(pixelRect(1520, 0, 400, 300), monitor));
    EXPECT_FALSE(isWhollyOn(pixelRect(1521, 0, 400, 300), mainScreen));
    EXPECT_TRUE(isWhollyOn(pixelRect(1520, 0, 400, 300), mainScreen));
}

TEST(WindowPlacing, TakesWindowsHome)
{
    struct Case {
        const char* what;
        std::optional<WindowStand> home;
        PixelRect expected;
    };
    const auto now = pixelRect(2000, 100, 700, 500);
    const auto old = pixelRect(200, 150, 640, 400);
    for (const auto& [what, home, expected] :
         {Case{"as it was", WindowStand{old, old, {}}, old},
          Case{"partly out of sight, as the user had it",
               WindowStand{pixelRect(-100, 850, 640, 400), {}, {}}, pixelRect(-100, 850, 640, 400)},
          Case{"none", std::nullopt, pixelRect(1215, 100, 700, 500)},
          Case{"on a screen that has gone", WindowStand{pixelRect(0, 2000, 640, 400), {}, {}},
               pixelRect(5, 675, 640, 400)},
          Case{"maximised, known without that", WindowStand{mainScreen, old, maximised}, old},
          Case{"maximised, not known without that", WindowStand{mainScreen, {}, maximised},
               pixelRect(1215, 100, 700, 500)},
          Case{"maximised on another screen", WindowStand{second, {}, maximised},
               pixelRect(-705, 100, 700, 500)},
          Case{"high only", WindowStand{pixelRect(300, 0, 640, 1080), {}, {false, true, false}},
               pixelRect(300, 100, 640, 500)}})
        EXPECT_EQ(placeBack(now, frame, home, {mainScreen, second}), expected) << what;
}

TEST(WindowPlacing, TakesWindowsToTheSamePlaceOnTheirMonitor)
{
    struct Case {
        const char* what;
        WindowStand there;
        PixelRect monitor;
        PixelRect expected;
    };
    const auto now = pixelRect(200, 150, 640, 400);
    const auto there = pixelRect(2700, 100, 700, 500);
    for (const auto& [what, stand, newMonitor, expected] :
         {Case{"as it was", {there, there, {}}, monitor, there},
          Case{"elsewhere",
               {there, there, {}},
               pixelRect(0, 1080, 1600, 1000),
               pixelRect(780, 1180, 700, 500)},
          Case{"turned",
               {there, there, {}},
               pixelRect(1920, 0, 1000, 1600),
               pixelRect(2215, 100, 700, 500)},
          Case{"small",
               {there, there, {}},
               pixelRect(1920, 0, 640, 480),
               pixelRect(1925, 20, 630, 455)},
          Case{"partly beyond its edge",
               {pixelRect(3100, 700, 700, 500), {}, {}},
               monitor,
               pixelRect(3100, 700, 700, 500)},
          Case{"maximised", {monitor, there, maximised}, monitor, there},
          Case{"maximised, not known without that",
               {monitor, {}, maximised},
               monitor,
               pixelRect(1925, 150, 640, 400)}})
        EXPECT_EQ(placeOnMonitor(now, frame, {1, true, true, monitor, stand}, newMonitor), expected)
            << what;
}

TEST(WindowPlacing, NotesSurviveTheirWayOverAProperty)
{
    WindowNote note{7, true, false, monitor, {pixelRect(-3, -4, 5, 6), {}, {true, false, true}}};
    EXPECT_EQ(noteOf(noteNumbers(note)), note);
    note.home = WindowStand{pixelRect(-1280, 3, 300, 200), pixelRect(1, 2, 3, 4), maximised};
    note.isKept = true;
    EXPECT_EQ(noteOf(noteNumbers(note)), note);
}

TEST(WindowPlacing, WhatIsNoNoteIsNothing)
{
    const WindowNote note{
        7, true, true, monitor, {mainScreen, {}, {}}, WindowStand{monitor, {}, {}}};
    const auto numbers = noteNumbers(note);
    EXPECT_EQ(noteOf({}), std::nullopt);
    for (std::size_t size = 0; size < numbers.size(); ++size)
        EXPECT_EQ(noteOf(std::span(numbers).first(size)), std::nullopt) << size;
    auto longer = numbers;
    longer.push_back(0);
    EXPECT_EQ(noteOf(longer), std::nullopt);
    constexpr std::size_t monitorWidth = 4;
    constexpr std::size_t areaHeight = 9;
    constexpr std::size_t homeWidth = 17;
    for (const auto place : {monitorWidth, areaHeight, homeWidth}) {
        auto broken = numbers;
        broken[place] = 0;
        EXPECT_EQ(noteOf(broken), std::nullopt) << place;
        broken[place] = 0xFFFF;
        EXPECT_EQ(noteOf(broken), std::nullopt) << place;
    }
}

} // namespace
} // namespace farview
