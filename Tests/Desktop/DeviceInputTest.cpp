#include "Platform/Desktop/Screens/X11/DeviceInput.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(DevicePlace, ComesOutAtThePixelThatWasMeant)
{
    for (const auto& desktop :
         {RandrSize{2944, 1080}, RandrSize{7680, 4320}, RandrSize{640, 480}}) {
        for (int x = 0; x < desktop.width; ++x) {
            const auto place = devicePlace(x, 0, desktop);
            // What the X server makes of it.
            EXPECT_EQ(place.x * desktop.width / DevicePlace::parts, x) << desktop.width;
        }
    }
}

TEST(DevicePlace, NeverLeavesTheDesktop)
{
    const RandrSize desktop{2944, 1080};
    EXPECT_EQ(devicePlace(-5, -0.1, desktop), (DevicePlace{0, 0}));
    EXPECT_EQ(devicePlace(2943.99, 1079.99, desktop), (DevicePlace{65535, 65535}));
    EXPECT_EQ(devicePlace(1e9, 1e9, desktop), (DevicePlace{65535, 65535}));
    EXPECT_EQ(devicePlace(1, 1, {0, 0}), (DevicePlace{65535, 65535}));
}

} // namespace
} // namespace farview
