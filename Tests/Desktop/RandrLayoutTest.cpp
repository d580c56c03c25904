#include "Platform/Desktop/Screens/X11/RandrLayout.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Outputs = std::vector<RandrNumber>;

/// Modes 1 (100x50), 2 (the same size) and 3 (80x40); outputs 10, 11, … each with a crtc 20, 21, …
/// of its own that shows mode 1 at the given x.
RandrLayout layoutWith(const std::vector<int>& positions)
{
    RandrLayout layout;
    layout.modes = {{1, 100, 50}, {2, 100, 50}, {3, 80, 40}};
    RandrNumber index = 0;
    for (const int x : positions) {
        layout.crtcs.push_back({20 + index, x, 0, 100, 50, 1, 1, {10 + index}});
        layout.outputs.push_back({10 + index, 20 + index, {20 + index}, {1, 2, 3}});
        ++index;
    }
    return layout;
}

/// The same with both outputs on the first crtc; the second one is off.
RandrLayout sharedCrtc()
{
    auto layout = layoutWith({0, 0});
    layout.crtcs[0].outputs = {10, 11};
    layout.crtcs[1] = {21, 0, 0, 0, 0, 0, 1, {}};
    layout.outputs[1].crtc = 20;
    return layout;
}

TEST(RandrLayout, ThePrimaryOutputIsTheFirst)
{
    auto layout = layoutWith({0, 100, 200});
    EXPECT_EQ(onlineOutputs(layout), (Outputs{10, 11, 12}));
    layout.primary = 12;
    EXPECT_EQ(onlineOutputs(layout), (Outputs{12, 10, 11}));
    layout.primary = 99;
    EXPECT_EQ(onlineOutputs(layout), (Outputs{10, 11, 12}));
}

TEST(RandrLayout, AnOutputWithoutACrtcOrAModeIsNotOnline)
{
    auto layout = layoutWith({0, 100, 200});
    layout.outputs[0].crtc = 0;
    layout.outputs[1].crtc = 99;
    layout.crtcs[2].mode = 0;
    EXPECT_TRUE(onlineOutputs(layout).empty());
    EXPECT_TRUE(outputsShowingTheSame(layout, 10).empty());
    EXPECT_EQ(neededSize(layoutWith({})), RandrSize{});
}

TEST(RandrLayout, OutputsShowTheSameWhereTheirPartsOverlap)
{
    const auto layout = layoutWith({0, 99, 199});
    EXPECT_EQ(outputsShowingTheSame(layout, 11), (Outputs{11, 10}));
    EXPECT_EQ(outputsShowingTheSame(layout, 12), Outputs{12});
    EXPECT_EQ(outputsShowingTheSame(sharedCrtc(), 11), (Outputs{11, 10}));
}

TEST(RandrLayout, WithoutAMirrorTheOthersGoToTheRightOfEverything)
{
    auto layout = layoutWith({0, 0, 300, 20});
    layout.crtcs[0].y = 7;
    const auto apart = withoutMirror(layout, 10);
    ASSERT_TRUE(apart);
    EXPECT_EQ(apart->crtcs[0], layout.crtcs[0]);
    EXPECT_EQ(apart->crtcs[2], layout.crtcs[2]);
    EXPECT_EQ(apart->crtcs[1].x, 400);
    EXPECT_EQ(apart->crtcs[3].x, 500);
    EXPECT_EQ(apart->crtcs[1].y, 7);
    EXPECT_EQ(neededSize(*apart), (RandrSize{600, 57}));
}

TEST(RandrLayout, WithoutAMirrorThereIsNothingToDo)
{
    const auto layout = layoutWith({0, 100});
    EXPECT_EQ(withoutMirror(layout, 11)->crtcs, layout.crtcs);
}

TEST(RandrLayout, AnOutputThatSharesACrtcGetsOneOfItsOwn)
{
    const auto apart = withoutMirror(sharedCrtc(), 10);
    ASSERT_TRUE(apart);
    EXPECT_EQ(apart->crtcs[0].outputs, Outputs{10});
    EXPECT_EQ(apart->crtcs[1], (RandrCrtc{21, 100, 0, 100, 50, 1, 1, {11}}));
    EXPECT_EQ(apart->outputs[1].crtc, 21U);
}

TEST(RandrLayout, WithoutACrtcToSpareTheMirrorStays)
{
    auto layout = sharedCrtc();
    layout.outputs[1].crtcs = {20};
    EXPECT_EQ(withoutMirror(layout, 10), std::nullopt);
    layout.outputs[1].crtcs = {99};
    EXPECT_EQ(withoutMirror(layout, 10), std::nullopt);
}

TEST(RandrLayout, AMirrorTakesPlaceAndSizeOfItsMaster)
{
    auto layout = layoutWith({0, 100});
    layout.crtcs[1] = {21, 100, 0, 80, 40, 3, 1, {11}};
    layout.outputs[1].modes = {3, 2};
    const auto mirrored = withMirror(layout, 11, 10);
    ASSERT_TRUE(mirrored);
    EXPECT_EQ(mirrored->crtcs[1], (RandrCrtc{21, 0, 0, 100, 50, 2, 1, {11}}))
        << "its own mode of that size";
    EXPECT_EQ(mirrored->crtcs[0], layout.crtcs[0]);
}

TEST(RandrLayout, AMirrorPrefersTheVeryModeOfItsMaster)
{
    auto layout = layoutWith({0, 100});
    layout.outputs[1].modes = {2, 1};
    EXPECT_EQ(withMirror(layout, 11, 10)->crtcs[1].mode, 1U);
}

TEST(RandrLayout, AnOutputWithoutSuchAModeIsNoMirror)
{
    auto layout = layoutWith({0, 100});
    layout.outputs[1].modes = {3};
    EXPECT_EQ(withMirror(layout, 11, 10), std::nullopt);
    layout.outputs[1].modes = {98};
    EXPECT_EQ(withMirror(layout, 11, 10), std::nullopt);
}

TEST(RandrLayout, AMirrorOfItselfOrOnTheSameCrtcIsOneAlready)
{
    EXPECT_EQ(withMirror(sharedCrtc(), 11, 10)->crtcs, sharedCrtc().crtcs);
    EXPECT_EQ(withMirror(layoutWith({0}), 10, 10)->crtcs, layoutWith({0}).crtcs);
}

TEST(RandrLayout, WhatIsNotOnlineCannotBeMirrored)
{
    auto layout = layoutWith({0, 100});
    layout.crtcs[1].mode = 0;
    EXPECT_EQ(withMirror(layout, 11, 10), std::nullopt);
    EXPECT_EQ(withMirror(layout, 10, 11), std::nullopt);
    EXPECT_EQ(withMirror(layout, 10, 99), std::nullopt);
    EXPECT_EQ(withoutMirror(layout, 11), std::nullopt);
}

TEST(RandrLayout, OutputsThatAreListedTwiceAreHarmless)
{
    auto layout = layoutWith({0, 0, 0});
    layout.crtcs[0].outputs = {11, 11};
    layout.crtcs[1] = {21, 0, 0, 0, 0, 0, 1, {}};
    layout.outputs[1].crtc = 20;
    layout.outputs[2].crtc = 20;
    EXPECT_EQ(withoutMirror(layout, 10), std::nullopt);
    EXPECT_EQ(withoutMirror(layout, 12), std::nullopt);
}

TEST(RandrLayout, NumbersThatLeadNowhereAreHarmless)
{
    auto layout = layoutWith({0, 0});
    layout.crtcs[0].outputs = {10, 98, 99};
    layout.crtcs[1].mode = 97;
    layout.outputs[0].crtcs = {96};
    EXPECT_EQ(withoutMirror(layout, 11), std::nullopt);
    EXPECT_EQ(withMirror(layout, 10, 11), std::nullopt);
}

} // namespace
} // namespace farview
