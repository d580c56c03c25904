#include "Common/Rules/DesktopAbilities.h"

#include <gmock/gmock.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> namesOfLimits(ScreenWay way)
{
    std::vector<std::string> names;
    for (const auto& limit : limitsOf(way))
        names.emplace_back(limit.name);
    return names;
}

TEST(DesktopAbilities, StandInTheOrderOfTheWays)
{
    int index = 0;
    for (const auto& desktop : desktopAbilities())
        EXPECT_EQ(static_cast<int>(desktop.way), index++) << desktop.desktop;
}

TEST(DesktopAbilities, WhatNobodyHasSeenIsNoLimit)
{
    EXPECT_THAT(namesOfLimits(ScreenWay::gnome), IsEmpty());
    EXPECT_THAT(namesOfLimits(ScreenWay::plasma), IsEmpty());
}

TEST(DesktopAbilities, LimitsAreWhatADevicesUserWouldMiss)
{
    EXPECT_THAT(namesOfLimits(ScreenWay::spareOutput), ElementsAre("no-enlarging"));
    EXPECT_THAT(namesOfLimits(ScreenWay::hyprland), ElementsAre("one-finger", "windows-stay"));
}

TEST(DesktopAbilities, WhereNoScreenIsAddedNothingIsSaidOfTheOneThatWouldBe)
{
    EXPECT_THAT(namesOfLimits(ScreenWay::existingScreen), ElementsAre("no-new-screen"));
}

} // namespace
} // namespace farview
