#include "Screen/Cursor.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/PictureReceiver.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class ACursor : public testing::Test
{
protected:
    ACursor()
    {
        arrow.image.row(1)[2] = 0x80400000;
        arrow.image.row(0)[0] = 0xff0000ff;
    }

    ZlibCodec zlib;
    Cursor arrow{{1, 2}, Picture(3, 4)};
    PictureReceiver receiver{64, 64, zlib, {}};
};

TEST_F(ACursor, IsNotThereAtFirst) { EXPECT_FALSE(receiver.cursor()); }

TEST_F(ACursor, ArrivesWithItsOpacityAndTheSpotThatPoints)
{
    ASSERT_TRUE(receiver.apply(cursorPacket(arrow, zlib)));
    ASSERT_TRUE(receiver.cursor());
    EXPECT_EQ(receiver.cursor()->hotspot, (PixelPoint{1, 2}));
    EXPECT_TRUE(isSame(receiver.cursor()->image.view(), arrow.image.view(), {0, 0, 3, 4}));
}

TEST_F(ACursor, MovesWithoutAPixel)
{
    receiver.apply(cursorPacket(arrow, zlib));
    const auto packet = cursorPlacePacket({-5, 60});
    EXPECT_TRUE(packet.data.empty());
    ASSERT_TRUE(receiver.apply(packet));
    EXPECT_EQ(receiver.cursorPlace(), (PixelPoint{-5, 60}));
    EXPECT_TRUE(receiver.takeChanged().empty()) << "the picture below stays as it is";
}

TEST_F(ACursor, CanBeTakenAway)
{
    receiver.apply(cursorPacket(arrow, zlib));
    ASSERT_TRUE(receiver.apply(noCursorPacket()));
    EXPECT_FALSE(receiver.cursor());
}

TEST_F(ACursor, ThatBreaksARuleIsRefusedAndTheOneBeforeStays)
{
    receiver.apply(cursorPacket(arrow, zlib));
    const auto good = cursorPacket(arrow, zlib);
    for (const PixelRect wrong :
         {PixelRect{3, 0, 3, 4}, PixelRect{0, 4, 3, 4}, PixelRect{-1, 0, 3, 4},
          PixelRect{0, 0, 0, 4}, PixelRect{0, 0, 257, 4}, PixelRect{0, 0, 4, 4}}) {
        EXPECT_FALSE(receiver.apply({wrong, QLScreenEncodingMouseCursor, good.data}));
    }
    EXPECT_FALSE(receiver.apply({{}, QLScreenEncodingMouseCursor, good.data}));
    EXPECT_FALSE(receiver.apply({{0, 0, 1, 1}, QLScreenEncodingMousePos, {}}));
    EXPECT_FALSE(receiver.apply({{0, 0, 0, 0}, QLScreenEncodingMousePos, {1}}));
    EXPECT_TRUE(receiver.cursor());
}

} // namespace
} // namespace farview
