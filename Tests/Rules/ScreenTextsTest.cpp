#include "Common/Rules/ScreenTexts.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace farview
{
namespace
{

using Is = ScreenReport::State;

constexpr PixelRect display = pixelRect(0, 0, 1920, 1080);

std::string asItIs(const std::string& text) { return text; }

ScreenReport monitorOn(ScreenSide side = ScreenSide::right)
{
    ScreenReport report{.state = Is::shown, .width = 1920, .height = 1200, .rate = 60};
    report.screens = {display};
    const auto corner = cornerBeside(side, 1920, 1200, report.screens);
    report.monitor = pixelRect(corner.x, corner.y, 1920, 1200);
    return report;
}

std::string sentence(const ScreenReport& report) { return screenSentence(report, asItIs); }

TEST(ScreenTexts, AMonitorIsToldBySizeRateAndPlace)
{
    EXPECT_EQ(sentence(monitorOn()), "1920 × 1200 at 60 Hz, to the right of your main display");
    EXPECT_EQ(sentence(monitorOn(ScreenSide::left)),
              "1920 × 1200 at 60 Hz, to the left of your main display");
    EXPECT_EQ(sentence(monitorOn(ScreenSide::above)),
              "1920 × 1200 at 60 Hz, above your main display");
    EXPECT_EQ(sentence(monitorOn(ScreenSide::below)),
              "1920 × 1200 at 60 Hz, below your main display");
}

TEST(ScreenTexts, WhatIsNotKnownIsNotSaid)
{
    auto report = monitorOn();
    report.rate = 0;
    EXPECT_EQ(sentence(report), "1920 × 1200, to the right of your main display");
    report.screens.clear();
    EXPECT_EQ(sentence(report), "1920 × 1200");
}

TEST(ScreenTexts, RatesAreRounded)
{
    auto report = monitorOn();
    report.rate = 59.94;
    EXPECT_EQ(sentence(report), "1920 × 1200 at 60 Hz, to the right of your main display");
}

TEST(ScreenTexts, AnEnlargementIsNamed)
{
    auto report = monitorOn();
    report.scale = 1.25;
    EXPECT_EQ(sentence(report),
              "1920 × 1200 at 60 Hz, to the right of your main display, enlarged 125 %");
}

TEST(ScreenTexts, ATranslationMayHaveAnotherOrder)
{
    const auto reversed = [](const std::string& text) {
        return text == "%1$@, %2$@" ? std::string("%2$@: %1$@") : text;
    };
    EXPECT_EQ(screenSentence(monitorOn(), reversed),
              "to the right of your main display: 1920 × 1200 at 60 Hz");
}

TEST(ScreenTexts, AMonitorThatIsComingAndADeviceWithoutAPictureHaveTheirSentences)
{
    EXPECT_EQ(sentence({.state = Is::coming}),
              "The device's screen is being added to your desktop…");
    EXPECT_EQ(sentence({}), "This device shows no picture.");
}

TEST(ScreenTexts, EachObstacleSaysWhyAndWhatToDo)
{
    std::set<std::string> names;
    for (int number = 0; number <= static_cast<int>(ScreenObstacle::failed); ++number) {
        const auto obstacle = static_cast<ScreenObstacle>(number);
        const auto& texts = obstacleTexts(obstacle);
        EXPECT_TRUE(std::string(texts.trouble).ends_with('.')) << texts.name;
        EXPECT_TRUE(std::string(texts.remedy).ends_with('.')) << texts.name;
        EXPECT_TRUE(names.insert(texts.name).second) << texts.name;
        const ScreenReport report{.state = Is::missing, .obstacle = obstacle};
        EXPECT_EQ(sentence(report), texts.trouble);
        EXPECT_EQ(screenAdvice(report, true, asItIs), texts.remedy);
    }
    EXPECT_STREQ(obstacleTexts(ScreenObstacle::noDesktop).name, "no-desktop");
    EXPECT_STREQ(obstacleTexts(ScreenObstacle::locked).remedy,
                 "It comes back by itself after unlocking.");
    EXPECT_FALSE(obstacleTexts(ScreenObstacle::locked).diagnosisHelps);
    EXPECT_TRUE(obstacleTexts(ScreenObstacle::failed).diagnosisHelps);
}

TEST(ScreenTexts, HiDPIThatTheDesktopCannotGiveIsSaid)
{
    auto report = monitorOn();
    EXPECT_EQ(screenAdvice(report, true, asItIs),
              "HiDPI is on, but this desktop cannot enlarge the device's screen.");
    EXPECT_EQ(screenAdvice(report, false, asItIs), "");
    report.scale = 2;
    EXPECT_EQ(screenAdvice(report, true, asItIs), "");
    EXPECT_EQ(screenAdvice({.state = Is::coming}, true, asItIs), "");
    EXPECT_EQ(screenAdvice({}, true, asItIs), "");
}

TEST(ScreenTexts, ThatOnlyOneFingerGetsThroughIsSaidWhileItIsShown)
{
    auto report = monitorOn();
    report.fingers = ScreenReport::Fingers::oneWithoutARight;
    const std::string advice = "Only one finger at a time gets through: for several, this computer "
                               "must allow Farview more. Diagnose says how.";
    EXPECT_EQ(screenAdvice(report, false, asItIs), advice);
    EXPECT_EQ(screenAdvice(report, true, asItIs),
              "HiDPI is on, but this desktop cannot enlarge the device's screen.\n" + advice);
    report.fingers = ScreenReport::Fingers::one;
    EXPECT_EQ(screenAdvice(report, false, asItIs),
              "Only one finger at a time gets through to this desktop, as its pointer.")
        << "nobody can allow more";
    report.state = Is::coming;
    EXPECT_EQ(screenAdvice(report, false, asItIs), "");
}

TEST(ScreenTexts, WindowsThatTheUserHasNoSayInAreExplained)
{
    EXPECT_EQ(windowsHint(WindowKeeping::desktop), "Your desktop does this by itself.");
    EXPECT_EQ(windowsHint(WindowKeeping::nobody), "Your desktop lets no program move windows.");
    EXPECT_EQ(windowsHint(WindowKeeping::byFarview), "");
}

} // namespace
} // namespace farview
