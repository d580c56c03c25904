#include "Common/Rules/ScreenReport.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

ScreenReport shown()
{
    return {.state = ScreenReport::State::shown,
            .width = 1920,
            .height = 1200,
            .scale = 1.5,
            .rate = 59.95,
            .windows = WindowKeeping::byFarview,
            .fingers = ScreenReport::Fingers::oneWithoutARight,
            .isTyping = true,
            .isMirror = true,
            .monitor = pixelRect(1280, -20, 1280, 800),
            .screens = {pixelRect(0, 0, 1280, 800), pixelRect(-800, 0, 800, 600)}};
}

ScreenReport read(const std::string& text) { return screenReport(&text); }

TEST(ScreenReport, ComesBackAsItWasTold)
{
    EXPECT_EQ(read(textOfScreenReport(shown())), shown());
    EXPECT_EQ(read(textOfScreenReport({})), ScreenReport{});
    for (const auto state : {ScreenReport::State::coming, ScreenReport::State::asking}) {
        const ScreenReport awaited{.state = state};
        EXPECT_EQ(read(textOfScreenReport(awaited)), awaited);
    }
    for (int obstacle = 0; obstacle <= static_cast<int>(ScreenObstacle::failed); ++obstacle) {
        ScreenReport missing{.state = ScreenReport::State::missing,
                             .obstacle = static_cast<ScreenObstacle>(obstacle)};
        EXPECT_EQ(read(textOfScreenReport(missing)), missing);
        missing.state = ScreenReport::State::impossible;
        EXPECT_EQ(read(textOfScreenReport(missing)), missing);
    }
    const ScreenReport possible{.state = ScreenReport::State::possible, .way = ScreenWay::portal};
    EXPECT_EQ(read(textOfScreenReport(possible)), possible);
}

TEST(ScreenReport, TellsOfNoMoreScreensThanFitIn)
{
    ScreenReport report = shown();
    report.screens.resize(100, pixelRect(0, 0, 32767, 32767));
    EXPECT_EQ(read(textOfScreenReport(report)).screens.size(), ScreenReport::mostScreens);
    EXPECT_EQ(read(textOfScreenReport(shown()) + " 5 5 10").screens, shown().screens);
}

TEST(ScreenReport, WhatCannotBeReadIsNothing)
{
    EXPECT_EQ(screenReport(nullptr), ScreenReport{});
    EXPECT_NE(read("shown 5 5 100 0 0 0 0 0 0 0 1 1"), ScreenReport{})
        << "those below differ by one";
    for (const char* text : {"",
                             "shows",
                             "shown",
                             "shown 1 2 3",
                             "shown 0 5 100 0 0 0 0 0 0 0 1 1",
                             "shown 5 5 0 0 0 0 0 0 0 0 1 1",
                             "shown 5 5 100 -1 0 0 0 0 0 0 1 1",
                             "shown 5 5 100 0 0 0 0 0 0 0 0 1",
                             "shown 99999 5 100 0 0 0 0 0 0 0 1 1",
                             "shown 5 5 100 0 3 0 0 0 0 0 1 1",
                             "shown 5 5 100 0 -1 0 0 0 0 0 1 1",
                             "shown 5 5 100 0 0 3 0 0 0 0 1 1",
                             "shown 5 5 100 0 0 0 2 0 0 0 1 1",
                             "shown 5 5 100 0 0 0 0 2 0 0 1 1",
                             "shown 5 5 100 0 0 0 0 99999 0 1",
                             "missing",
                             "missing -1",
                             "missing 11",
                             "missing x",
                             "impossible 11",
                             "possible",
                             "possible -1",
                             "possible 9"})
        EXPECT_EQ(read(text), ScreenReport{}) << text;
    EXPECT_EQ(read("coming" + std::string(2000, ' ')), ScreenReport{});
}

} // namespace
} // namespace farview
