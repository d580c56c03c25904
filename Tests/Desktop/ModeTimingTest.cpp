#include "Platform/Desktop/Screens/X11/ModeTiming.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(ModeTiming, ShowsSixtyFramesASecondInAnySize)
{
    for (const auto& size : {RandrSize{1, 1}, RandrSize{640, 480}, RandrSize{1920, 1080},
                             RandrSize{1200, 1920}, RandrSize{3840, 2160}, RandrSize{7680, 4320}}) {
        const auto mode = modeTiming(size, 5);
        EXPECT_EQ(mode.width, size.width);
        EXPECT_EQ(mode.height, size.height);
        EXPECT_LT(mode.width, mode.hsync_start);
        EXPECT_LT(mode.hsync_start, mode.hsync_end);
        EXPECT_LT(mode.hsync_end, mode.htotal);
        EXPECT_LT(mode.height, mode.vsync_start);
        EXPECT_LT(mode.vsync_start, mode.vsync_end);
        EXPECT_LT(mode.vsync_end, mode.vtotal);
        EXPECT_NEAR(double(mode.dot_clock) / mode.htotal / mode.vtotal, 60, 0.01) << size.height;
        EXPECT_EQ(mode.name_len, 5);
    }
}

TEST(ModeTiming, TheLargestScreenHasTheFastestClock)
{
    EXPECT_EQ(modeTiming({32767, 32767}, 0).dot_clock, 0xFFFFFFFFU);
}

} // namespace
} // namespace farview
