#include "Common/Rules/DeviceScreen.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

constexpr DeviceScreen plain{1920, 1200, 1};
constexpr DeviceScreen sharp{2560, 1600, 2};

ScreenMeasure measure(const DeviceScreen& device, bool fullResolution = true, bool hiDPI = false,
                      const RememberedScreen& remembered = {})
{
    return measureFor(device, fullResolution, hiDPI, remembered);
}

TEST(DeviceScreen, TheMonitorHasTheDevicesSize)
{
    EXPECT_EQ(measure(plain), (ScreenMeasure{1920, 1200, 1}));
    EXPECT_EQ(measure(sharp), (ScreenMeasure{2560, 1600, 1}));
}

TEST(DeviceScreen, WithoutFullResolutionASharpDeviceGetsHalfOfIt)
{
    EXPECT_EQ(measure(sharp, false), (ScreenMeasure{1280, 800, 1}));
    EXPECT_EQ(measure(plain, false), (ScreenMeasure{1920, 1200, 1}));
    EXPECT_EQ(measure({1920, 1200, 1.5}, false), (ScreenMeasure{1920, 1200, 1}));
}

TEST(DeviceScreen, HiDPIIsTwoPixelsToAPoint)
{
    EXPECT_EQ(measure(sharp, true, true), (ScreenMeasure{2560, 1600, 2}));
}

TEST(DeviceScreen, ItsSidesStayWithinWhatCanBeUsed)
{
    EXPECT_EQ(measure({1, 1, 1}), (ScreenMeasure{320, 200, 1}));
    EXPECT_EQ(measure({16384, 8000, 1}), (ScreenMeasure{8192, 4000, 1}));
    EXPECT_EQ(measure({16384, 16384, 2}, false), (ScreenMeasure{8192, 8192, 1}));
}

TEST(DeviceScreen, WhatTheUserGaveTheMonitorHoldsForTheSameScreen)
{
    const RememberedScreen remembered{.width = 1280, .height = 720, .scale = 1.25, .device = plain};
    EXPECT_EQ(measure(plain, true, false, remembered), (ScreenMeasure{1280, 720, 1.25}));
    EXPECT_EQ(measure(sharp, true, false, remembered), (ScreenMeasure{2560, 1600, 1}));
}

TEST(DeviceScreen, IsStoredAndReadBack)
{
    const RememberedScreen remembered{ScreenSide::below, 1280, 720, 1.25, plain};
    EXPECT_EQ(rememberedScreen(storedScreen(remembered)), remembered);
    const RememberedScreen side{.side = ScreenSide::left};
    EXPECT_EQ(rememberedScreen(storedScreen(side)), side);
    EXPECT_EQ(rememberedScreen(storedScreen({})), RememberedScreen{});
}

TEST(DeviceScreen, WhatIsStoredWronglyWasNotChosen)
{
    EXPECT_EQ(rememberedScreen("right"), RememberedScreen{});
    const PropertyList::Dictionary wrong{{"Side", "behind"}, {"Width", -5},      {"Height", 99999},
                                         {"Scale", 0.0},     {"DeviceScale", 1}, {"More", true}};
    EXPECT_EQ(rememberedScreen(wrong), RememberedScreen{});
}

} // namespace
} // namespace farview
