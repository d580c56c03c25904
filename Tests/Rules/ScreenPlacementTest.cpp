#include "Common/Rules/ScreenPlacement.h"

#include <gtest/gtest.h>

#include <vector>

namespace farview
{
namespace
{

constexpr PixelRect mainScreen = pixelRect(100, 50, 1920, 1080);

PixelPoint corner(ScreenSide side, std::vector<PixelRect> screens = {mainScreen})
{
    return cornerBeside(side, 800, 600, screens);
}

TEST(ScreenPlacement, AMonitorStandsAgainstTheChosenSide)
{
    EXPECT_EQ(corner(ScreenSide::right), pixelPoint(2020, 50));
    EXPECT_EQ(corner(ScreenSide::left), pixelPoint(-700, 50));
    EXPECT_EQ(corner(ScreenSide::above), pixelPoint(100, -550));
    EXPECT_EQ(corner(ScreenSide::below), pixelPoint(100, 1130));
}

TEST(ScreenPlacement, ItGoesPastScreensThatAreInTheWay)
{
    const std::vector screens{mainScreen, pixelRect(3220, 0, 1000, 1000),
                              pixelRect(2020, 200, 1200, 800)};
    EXPECT_EQ(corner(ScreenSide::right, screens), pixelPoint(4220, 50));
    EXPECT_EQ(corner(ScreenSide::left, screens), pixelPoint(-700, 50));
}

TEST(ScreenPlacement, AScreenThatOnlyTouchesIsNotInTheWay)
{
    EXPECT_EQ(corner(ScreenSide::right, {mainScreen, pixelRect(2020, 650, 800, 600)}),
              pixelPoint(2020, 50));
}

TEST(ScreenPlacement, WhereverItWasPutItHasASide)
{
    EXPECT_EQ(sideOf(pixelRect(2020, 500, 800, 600), mainScreen), ScreenSide::right);
    EXPECT_EQ(sideOf(pixelRect(-700, 50, 800, 600), mainScreen), ScreenSide::left);
    EXPECT_EQ(sideOf(pixelRect(500, -550, 800, 600), mainScreen), ScreenSide::above);
    EXPECT_EQ(sideOf(pixelRect(100, 1130, 800, 600), mainScreen), ScreenSide::below);
    EXPECT_EQ(sideOf(pixelRect(100, 1130, 1920, 1080), mainScreen), ScreenSide::below);
    EXPECT_EQ(sideOf(mainScreen, mainScreen), ScreenSide::right);
}

TEST(ScreenPlacement, TheFarthestPlacesThatCanBeToldHaveASide)
{
    constexpr PixelRect farLeft = pixelRect(-32768, -32768, 32767, 32767);
    constexpr PixelRect farRight = pixelRect(32767, -32768, 32767, 32767);
    EXPECT_EQ(sideOf(farRight, farLeft), ScreenSide::right);
    EXPECT_EQ(sideOf(farLeft, farRight), ScreenSide::left);
    EXPECT_EQ(sideOf(pixelRect(-32768, 32767, 32767, 32767), farLeft), ScreenSide::below);
}

TEST(ScreenPlacement, AMonitorIsOnTheSideWhereItWasPut)
{
    for (const auto side :
         {ScreenSide::right, ScreenSide::left, ScreenSide::above, ScreenSide::below}) {
        const PixelPoint at = corner(side);
        EXPECT_EQ(sideOf(pixelRect(at.x, at.y, 800, 600), mainScreen), side);
    }
}

} // namespace
} // namespace farview
