#include "Screen/CursorSender.h"

#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/PictureReceiver.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class ACursorSender : public testing::Test
{
protected:
    ACursorSender() { arrow.image.row(1)[2] = 0x80400000; }

    std::size_t send()
    {
        const auto packets = sender.takePackets();
        for (const auto& packet : packets)
            EXPECT_TRUE(receiver.apply(packet));
        return packets.size();
    }

    ZlibCodec zlib;
    Cursor arrow{{1, 2}, Picture(3, 4)};
    CursorSender sender{zlib};
    PictureReceiver receiver{64, 64, zlib, {}};
};

TEST_F(ACursorSender, HasNothingToSayAtFirst) { EXPECT_EQ(send(), 0U); }

TEST_F(ACursorSender, SendsShapeAndPlaceOnce)
{
    sender.setCursor(arrow);
    EXPECT_EQ(send(), 0U) << "it is on another screen";
    sender.setPlace(pixelPoint(5, 6));
    EXPECT_EQ(send(), 2U);
    ASSERT_TRUE(receiver.cursor());
    EXPECT_EQ(receiver.cursorPlace(), pixelPoint(5, 6));
    EXPECT_EQ(send(), 0U);
}

TEST_F(ACursorSender, MovesWithoutItsShape)
{
    sender.setCursor(arrow);
    sender.setPlace(pixelPoint(5, 6));
    send();
    sender.setPlace(pixelPoint(7, 6));
    EXPECT_EQ(send(), 1U);
    EXPECT_EQ(receiver.cursorPlace(), pixelPoint(7, 6));
}

TEST_F(ACursorSender, IsTakenAwayWhereItIsNotAndComesBack)
{
    sender.setCursor(arrow);
    sender.setPlace(pixelPoint(5, 6));
    send();
    sender.setPlace(std::nullopt);
    EXPECT_EQ(send(), 1U);
    EXPECT_FALSE(receiver.cursor());
    EXPECT_EQ(send(), 0U);
    sender.setPlace(pixelPoint(5, 6));
    send();
    EXPECT_TRUE(receiver.cursor());
}

TEST_F(ACursorSender, AnotherShapeReplacesTheOneBefore)
{
    sender.setCursor(arrow);
    sender.setPlace(pixelPoint(5, 6));
    send();
    sender.setCursor(Cursor{{0, 0}, Picture(8, 8)});
    EXPECT_EQ(send(), 1U);
    ASSERT_TRUE(receiver.cursor());
    EXPECT_EQ(receiver.cursor()->image.width(), 8);
    sender.setCursor(std::nullopt);
    send();
    EXPECT_FALSE(receiver.cursor()) << "a program hid it";
}

TEST_F(ACursorSender, TellsADeviceThatForgotAgain)
{
    sender.setCursor(arrow);
    sender.setPlace(pixelPoint(5, 6));
    send();
    sender.deviceForgot();
    EXPECT_EQ(send(), 2U);
}

} // namespace
} // namespace farview
