#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

/// The user's screen of 1920x1080, and outputs that are off and could be fed by crtc 12.
RandrLayout layoutWith(const std::vector<std::string>& spareNames)
{
    RandrLayout layout;
    layout.size = {1920, 1080};
    layout.largestSize = {8192, 8192};
    layout.crtcs = {{.id = 11, .width = 1920, .height = 1080, .mode = 5, .outputs = {1}},
                    {.id = 12}};
    layout.outputs = {{1, 11, {11, 12}, {5}, "eDP-1"}};
    for (const auto& name : spareNames) {
        const auto id = static_cast<RandrNumber>(layout.outputs.size() + 1);
        layout.outputs.push_back({id, 0, {11, 12}, {}, name});
    }
    return layout;
}

struct Named {
    const char* name;
    bool hasNoPlug;
};

TEST(SpareOutput, OnlyNamesOfMadeUpOutputsHaveNoPlug)
{
    for (const auto& [name, expected] :
         {Named{"VIRTUAL1", true}, Named{"VIRTUAL-1", true}, Named{"Virtual-2", true},
          Named{"DUMMY15", true}, Named{"HDMI-1", false}, Named{"eDP-1", false},
          Named{"DP-2", false}, Named{"VGA-1", false}, Named{"default", false}, Named{"", false},
          Named{"XDUMMY1", false}})
        EXPECT_EQ(hasNoPlug(name), expected) << name;
}

TEST(SpareOutput, TheFirstOneThatIsOffIsTaken)
{
    EXPECT_EQ(spareOutput(layoutWith({"HDMI-1", "VIRTUAL1", "VIRTUAL2"})), (SpareOutput{3, 12}));
}

TEST(SpareOutput, OutputsWithAPlugAreNeverTaken)
{
    EXPECT_EQ(spareOutput(layoutWith({"HDMI-1", "DP-1"})), std::nullopt);
}

TEST(SpareOutput, AnOutputThatNothingCanFeedIsNone)
{
    auto layout = layoutWith({"VIRTUAL1"});
    layout.crtcs[1].mode = 5;
    layout.crtcs[1].outputs = {9};
    EXPECT_EQ(spareOutput(layout), std::nullopt);
}

TEST(SpareOutput, AMonitorMayBeWhereNothingOfOthersIs)
{
    const auto isFreeAt = [](int x, int y, int width = 800, int height = 600) {
        return isFree({8192, 8192}, {pixelRect(0, 0, 1920, 1080), pixelRect(2720, 0, 800, 600)},
                      {.x = x, .y = y, .width = width, .height = height});
    };
    EXPECT_TRUE(isFreeAt(1920, 0));
    EXPECT_TRUE(isFreeAt(3520, 0));
    EXPECT_TRUE(isFreeAt(0, 1080));
    EXPECT_FALSE(isFreeAt(1919, 0));
    EXPECT_FALSE(isFreeAt(1921, 0));
    EXPECT_FALSE(isFreeAt(-1, 1080));
    EXPECT_FALSE(isFreeAt(7800, 0));
    EXPECT_FALSE(isFreeAt(1920, 0, 0, 600));
    EXPECT_FALSE(isFreeAt(1920, 0, 2147483647, 2147483647));
}

TEST(SpareOutput, TheRightEdgeIsThatOfWhateverIsFurthest)
{
    EXPECT_EQ(rightEdgeOf({}), 0);
    EXPECT_EQ(rightEdgeOf({pixelRect(1920, 0, 800, 600), pixelRect(0, 0, 1920, 1080)}), 2720);
}

} // namespace
} // namespace farview
