#include "Platform/Desktop/Screens/Wlroots/ScreenCopy.h"

#include <gtest/gtest.h>
#include <wayland-client.h>

namespace farview
{
namespace
{

TEST(CopiedFrame, IsUsableInTheFormatsThatWeUnderstand)
{
    for (const auto format : {WL_SHM_FORMAT_XRGB8888, WL_SHM_FORMAT_ARGB8888,
                              WL_SHM_FORMAT_XBGR8888, WL_SHM_FORMAT_ABGR8888})
        EXPECT_TRUE(isUsable({format, 1024, 600, 4096}));
    for (const auto format :
         {WL_SHM_FORMAT_RGB565, WL_SHM_FORMAT_XRGB2101010, WL_SHM_FORMAT_BGR888})
        EXPECT_FALSE(isUsable({format, 1024, 600, 4096}));
}

TEST(CopiedFrame, IsUsableInSizesThatAMonitorHas)
{
    const auto usable = [](std::uint32_t width, std::uint32_t height, std::uint32_t stride) {
        return isUsable({WL_SHM_FORMAT_XRGB8888, width, height, stride});
    };
    EXPECT_TRUE(usable(1, 1, 4));
    EXPECT_TRUE(usable(16384, 16384, 65536));
    EXPECT_TRUE(usable(100, 10, 512));
    EXPECT_FALSE(usable(0, 1, 4));
    EXPECT_FALSE(usable(1, 0, 4));
    EXPECT_FALSE(usable(100, 10, 399));
    EXPECT_FALSE(usable(100, 10, 402));
    EXPECT_FALSE(usable(16385, 10, 65540));
    EXPECT_FALSE(usable(10, 0xFFFFFFFF, 40));
    EXPECT_FALSE(usable(0xFFFFFFFF, 1, 0xFFFFFFFC));
    EXPECT_FALSE(usable(0x40000001, 1, 4));
    EXPECT_FALSE(usable(10, 10, 0x80000000));
}

TEST(CopiedFrame, KnowsWhereRedIs)
{
    EXPECT_FALSE(isRedLowest({WL_SHM_FORMAT_XRGB8888, 1, 1, 4}));
    EXPECT_TRUE(isRedLowest({WL_SHM_FORMAT_XBGR8888, 1, 1, 4}));
}

} // namespace
} // namespace farview
