// Sender and receiver together: what the device shows is what the computer has.
#include "Screen/PictureReceiver.h"
#include "Screen/PictureSender.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Tests/Screen/Scenes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int width = 800;
constexpr int height = 600;

class APicture : public testing::Test
{
protected:
    APicture() { scenes.writeText(frame, wholeOf(frame)); }

    /// Everything may have changed; returns the bytes that travelled.
    std::size_t show(PictureTime now = 0ms)
    {
        const PixelRect whole = wholeOf(frame);
        sender.noteDamage({&whole, 1});
        return deliver(sender.packetsFor(frame.view(), kBestPictureQuality, now));
    }
    std::size_t deliver(const PictureSender::Packets& packets)
    {
        std::size_t bytes = 0;
        for (const auto& packet : packets) {
            EXPECT_TRUE(receiver.apply(packet));
            bytes += kScreenPacketHeaderSize + packet.data.size();
        }
        return bytes;
    }
    bool isExactOnTheDevice() const
    {
        return isSame(receiver.picture().view(), frame.view(), wholeOf(frame));
    }

    Scenes scenes;
    Picture frame{width, height};
    ZstdCodec zstd;
    ZlibCodec zlib;
    JpegCodec jpeg;
    PictureSender sender{width, height, zstd, jpeg};
    PictureReceiver receiver{width, height, zlib, {&zstd, &jpeg}};
};

TEST_F(APicture, OfTextIsExactAtOnce)
{
    show();
    EXPECT_TRUE(isExactOnTheDevice());
    EXPECT_TRUE(sender.isExact());
}

TEST_F(APicture, ThatDidNotChangeCostsNothing)
{
    show();
    EXPECT_EQ(show(), 0u);
    EXPECT_THAT(sender.refinement(100, 10s), IsEmpty());
}

TEST_F(APicture, IsLookedAtOnlyWhereItMayHaveChanged)
{
    show();
    scenes.writeText(frame, {0, 0, 64, 64});
    EXPECT_THAT(sender.packetsFor(frame.view(), 85, 0ms), IsEmpty());
    const PixelRect damage{10, 10, 1, 1};
    sender.noteDamage({&damage, 1});
    EXPECT_EQ(sender.damagedTiles(), 1);
    deliver(sender.packetsFor(frame.view(), 85, 0ms));
    EXPECT_EQ(sender.damagedTiles(), 0);
    EXPECT_TRUE(isExactOnTheDevice());
}

TEST_F(APicture, OfATypedLetterTakesAPacketOfItsSize)
{
    show();
    scenes.writeText(frame, {100, 100, 8, 10});
    const PixelRect damage{96, 96, 16, 16};
    sender.noteDamage({&damage, 1});
    const auto packets = sender.packetsFor(frame.view(), 85, 0ms);
    ASSERT_THAT(packets, SizeIs(1));
    EXPECT_LE(packets.front().rectangle.width, 8);
    EXPECT_LE(packets.front().rectangle.height, 10);
    deliver(packets);
    EXPECT_TRUE(isExactOnTheDevice());
}

TEST_F(APicture, ThatScrollsIsCopiedOnTheDevice)
{
    const auto whole = show();
    scroll(frame, -48, scenes);
    EXPECT_LT(show(), whole / 5);
    EXPECT_TRUE(isExactOnTheDevice());
    scroll(frame, 16, scenes);
    EXPECT_LT(show(), whole / 5);
    EXPECT_TRUE(isExactOnTheDevice());
}

TEST_F(APicture, OfAPhotographIsBlurredFirstAndExactWhenItStoodStill)
{
    scenes.takePhotograph(frame, {0, 0, 300, 300});
    const auto blurred = show(0ms);
    EXPECT_FALSE(sender.isExact());
    EXPECT_FALSE(isExactOnTheDevice());
    EXPECT_LT(blurred, 300u * 300u);
    EXPECT_THAT(sender.refinement(100, 99ms), IsEmpty()) << "it may be a film";
    while (deliver(sender.refinement(4, 100ms)) > 0) {
    }
    EXPECT_TRUE(sender.isExact());
    EXPECT_TRUE(isExactOnTheDevice());
}

TEST_F(APicture, WithAFilmInItIsExactEverywhereElse)
{
    PictureTime now = 0ms;
    scenes.takePhotograph(frame, {512, 0, 128, 128});
    show(now);
    for (int i = 0; i < 10; ++i, now += 50ms) {
        scenes.takePhotograph(frame, {0, 0, 128, 128});
        show(now);
        deliver(sender.refinement(100, now));
    }
    EXPECT_FALSE(sender.isExact());
    const auto shown = receiver.picture().view();
    EXPECT_TRUE(isSame(shown, frame.view(), {512, 0, 128, 128}));
    EXPECT_FALSE(isSame(shown, frame.view(), {0, 0, 128, 128}));
}

TEST_F(APicture, ScrolledWhileItWasBlurredBecomesExactWhereItWent)
{
    scenes.takePhotograph(frame, {0, 200, width, 100});
    show(0ms);
    scroll(frame, -48, scenes);
    show(10ms);
    deliver(sender.refinement(1000, 200ms));
    EXPECT_TRUE(sender.isExact());
    EXPECT_TRUE(isExactOnTheDevice());
}

TEST_F(APicture, ReachesADeviceThatKnowsOnlyZlib)
{
    PictureSender plain(width, height, zlib, zlib);
    deliver(plain.packetsFor(frame.view(), 85, 0ms));
    EXPECT_TRUE(isExactOnTheDevice());
}

// Whatever happens on the screen in whatever order, the device ends with the same pixels.
class AnyScreen : public APicture, public testing::WithParamInterface<unsigned>
{
protected:
    void changeSomething()
    {
        const int x = scenes.number(width - 1);
        const int y = scenes.number(height - 1);
        const auto part =
            pixelRect(x, y, 1 + scenes.number(width - 1 - x), 1 + scenes.number(height - 1 - y));
        switch (scenes.number(3)) {
        case 0:
            return scenes.writeText(frame, part);
        case 1:
            return scenes.takePhotograph(frame, part);
        case 2:
            return scroll(frame, 1 + scenes.number(200), scenes);
        default:
            return scroll(frame, -1 - scenes.number(200), scenes);
        }
    }
};

TEST_P(AnyScreen, IsExactWhenItStandsStill)
{
    scenes = Scenes(GetParam());
    PictureTime now = 0ms;
    for (int i = 0; i < 12; ++i, now += 30ms) {
        changeSomething();
        if (scenes.number(2) > 0) // else two changes add up
            show(now);
        if (scenes.number(1) == 0)
            deliver(sender.refinement(scenes.number(20), now));
    }
    show(now);
    deliver(sender.refinement(width * height, now + 1s));
    EXPECT_TRUE(sender.isExact());
    EXPECT_TRUE(isExactOnTheDevice());
}

INSTANTIATE_TEST_SUITE_P(Picture, AnyScreen, testing::Range(1u, 21u));

struct HostilePacket {
    const char* what;
    LinkScreenRectangle packet;
};

class AHostilePacket : public testing::TestWithParam<HostilePacket>
{
};

TEST_P(AHostilePacket, IsRefusedAndChangesNothing)
{
    ZlibCodec zlib;
    JpegCodec jpeg;
    PictureReceiver receiver(64, 64, zlib, {&jpeg});
    EXPECT_FALSE(receiver.apply(GetParam().packet)) << GetParam().what;
    EXPECT_THAT(receiver.takeChanged(), IsEmpty());
    EXPECT_TRUE(isSame(receiver.picture().view(), Picture(64, 64).view(), {0, 0, 64, 64}));
}

Bytes place(int x, int y)
{
    Bytes bytes;
    appendNumber(bytes, static_cast<std::uint16_t>(x), 2);
    appendNumber(bytes, static_cast<std::uint16_t>(y), 2);
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Picture, AHostilePacket,
    testing::Values(
        HostilePacket{"outside to the right",
                      {{1, 0, 64, 64}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"outside below", {{0, 1, 64, 64}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"outside to the left",
                      {{-1, 0, 8, 8}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"beyond all numbers",
                      {{32767, 32767, 32767, 32767}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"no width", {{0, 0, 0, 8}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"a negative height", {{0, 8, 8, -8}, QLScreenEncodingCopyRect, place(0, 0)}},
        HostilePacket{"a copy from outside",
                      {{0, 0, 8, 8}, QLScreenEncodingCopyRect, place(57, 0)}},
        HostilePacket{"a copy from before", {{0, 0, 8, 8}, QLScreenEncodingCopyRect, place(-1, 0)}},
        HostilePacket{"a copy without a place", {{0, 0, 8, 8}, QLScreenEncodingCopyRect, {}}},
        HostilePacket{"a copy with too much",
                      {{0, 0, 8, 8}, QLScreenEncodingCopyRect, Bytes(5, 0)}},
        HostilePacket{"a JPEG that is none", {{0, 0, 8, 8}, QLScreenEncodingJPG, Bytes(100, 7)}},
        HostilePacket{"an encoding that was not agreed",
                      {{0, 0, 8, 8}, kScreenEncodingZstd, Bytes(100, 7)}},
        HostilePacket{"an encoding that is none", {{0, 0, 8, 8}, 200, Bytes(100, 7)}}));

} // namespace
} // namespace farview
