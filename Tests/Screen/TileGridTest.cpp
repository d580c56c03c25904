#include "Screen/TileGrid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TileGrid, HasSmallerTilesAtTheEdges)
{
    const TileGrid grid(130, 65);
    EXPECT_EQ(grid.columns(), 3);
    EXPECT_EQ(grid.rows(), 2);
    EXPECT_EQ(grid.rectOf(0), (PixelRect{0, 0, 64, 64}));
    EXPECT_EQ(grid.rectOf(5), (PixelRect{128, 64, 2, 1}));
}

TEST(TileGrid, FindsTheTilesUnderARectangle)
{
    const TileGrid grid(192, 128);
    EXPECT_THAT(grid.tilesUnder({63, 0, 2, 1}), ElementsAre(0, 1));
    EXPECT_THAT(grid.tilesUnder({64, 63, 64, 2}), ElementsAre(1, 4));
    EXPECT_THAT(grid.tilesUnder({0, 0, 192, 128}), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(TileGrid, LeavesOutWhatLiesOutside)
{
    const TileGrid grid(64, 64);
    EXPECT_THAT(grid.tilesUnder({-10, -10, 11, 11}), ElementsAre(0));
    EXPECT_THAT(grid.tilesUnder({32767, 0, 32767, 1}), IsEmpty());
    EXPECT_THAT(grid.tilesUnder({0, 0, 0, 64}), IsEmpty());
    EXPECT_THAT(grid.tilesUnder({10, 10, -5, -5}), IsEmpty());
}

} // namespace
} // namespace farview
