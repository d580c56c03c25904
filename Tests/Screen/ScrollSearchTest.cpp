#include "Screen/ScrollSearch.h"

#include "Tests/Screen/Scenes.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class Scrolling : public testing::Test
{
protected:
    void SetUp() override
    {
        scenes.writeText(before, wholeOf(before));
        after = before;
    }

    std::optional<Scroll> found() const
    {
        return findScroll(before.view(), after.view(), wholeOf(after));
    }

    Scenes scenes;
    Picture before{640, 480};
    Picture after{640, 480};
};

TEST_F(Scrolling, OfTextDownwardsIsFound)
{
    scroll(after, 48, scenes);
    EXPECT_EQ(found(), (Scroll{{0, 0}, {0, 48, 640, 432}}));
}

TEST_F(Scrolling, OfTextUpwardsIsFound)
{
    scroll(after, -17, scenes);
    EXPECT_EQ(found(), (Scroll{{0, 17}, {0, 0, 640, 463}}));
}

TEST_F(Scrolling, BesideAPanelThatStandsStillIsFound)
{
    scroll(after, -32, scenes);
    after.take(before.view(), {0, 0, 100, 480});
    const auto scroll = found();
    ASSERT_TRUE(scroll);
    EXPECT_EQ(scroll->from.y - scroll->to.y, 32);
}

TEST_F(Scrolling, IsNotSeenWhereNothingMoved) { EXPECT_EQ(found(), std::nullopt); }

TEST_F(Scrolling, IsNotSeenInAnotherText)
{
    scenes.writeText(after, wholeOf(after));
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Scrolling, IsNotSeenOnAnEmptyPage)
{
    before = Picture(640, 480);
    after = before;
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Scrolling, OfTooSmallAnAreaIsNotLookedFor)
{
    scroll(after, 4, scenes);
    EXPECT_EQ(findScroll(before.view(), after.view(), {0, 0, 100, 480}), std::nullopt);
    EXPECT_EQ(findScroll(before.view(), after.view(), {0, 0, 640, 40}), std::nullopt);
}

} // namespace
} // namespace farview
