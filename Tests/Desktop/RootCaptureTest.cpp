#include "Platform/Desktop/Screens/X11/RootCapture.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Parts = std::vector<PixelRect>;
using Bands = std::vector<RowBand>;

TEST(RootCapture, ReadsEveryDamagedRowOnce)
{
    EXPECT_EQ(bandsOf(Parts{}), Bands{});
    EXPECT_EQ(bandsOf(Parts{pixelRect(5, 10, 20, 4)}), (Bands{{10, 4}}));
    EXPECT_EQ(bandsOf(Parts{pixelRect(0, 50, 1, 1), pixelRect(9, 10, 1, 4)}),
              (Bands{{10, 4}, {50, 1}}));
    EXPECT_EQ(bandsOf(Parts{pixelRect(0, 10, 1, 4), pixelRect(50, 12, 1, 10)}), (Bands{{10, 12}}));
    EXPECT_EQ(bandsOf(Parts{pixelRect(0, 10, 1, 40), pixelRect(50, 12, 1, 2)}), (Bands{{10, 40}}));
    EXPECT_EQ(bandsOf(Parts{pixelRect(0, 10, 1, 4), pixelRect(0, 14, 1, 4)}), (Bands{{10, 8}}));
}

} // namespace
} // namespace farview
