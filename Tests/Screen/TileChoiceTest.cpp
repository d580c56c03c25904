#include "Screen/TileChoice.h"

#include "Tests/Screen/Scenes.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class ALook : public testing::Test
{
protected:
    TileLook look() const { return lookOf(picture.view(), wholeOf(picture)); }

    Scenes scenes;
    Picture picture{64, 64};
};

TEST_F(ALook, OfOneColourIsText) { EXPECT_EQ(look(), TileLook::text); }

TEST_F(ALook, OfWritingIsText)
{
    scenes.writeText(picture, wholeOf(picture));
    EXPECT_EQ(look(), TileLook::text);
}

TEST_F(ALook, OfAPhotographIsOne)
{
    scenes.takePhotograph(picture, wholeOf(picture));
    EXPECT_EQ(look(), TileLook::photograph);
}

TEST_F(ALook, OfMostlyWritingIsText)
{
    scenes.writeText(picture, wholeOf(picture));
    scenes.takePhotograph(picture, {0, 0, 64, 24});
    EXPECT_EQ(look(), TileLook::text);
}

TEST_F(ALook, OfPartsTooSmallToTellIsText)
{
    scenes.takePhotograph(picture, wholeOf(picture));
    EXPECT_EQ(lookOf(picture.view(), {0, 0, 64, 1}), TileLook::text);
    EXPECT_EQ(lookOf(picture.view(), {0, 0, 1, 64}), TileLook::text);
}

TEST_F(ALook, CountsOnlyThePartAskedAbout)
{
    scenes.takePhotograph(picture, {0, 0, 32, 64});
    EXPECT_EQ(lookOf(picture.view(), {32, 0, 32, 64}), TileLook::text);
    EXPECT_EQ(sameness(picture.view(), {32, 0, 32, 64}), 256);
}

} // namespace
} // namespace farview
