// One suite for every codec.
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"

#include "Tests/Screen/Scenes.h"

#include <gtest/gtest.h>
#include <turbojpeg.h>

namespace farview
{
namespace
{

constexpr int quality = 85;
constexpr PixelRect part{10, 20, 70, 50};

template <typename Codec> class APixelCodec : public testing::Test
{
protected:
    APixelCodec() { scenes.writeText(source, wholeOf(source)); }

    Bytes encoded() { return codec.encode(source.view(), part, quality); }
    bool isUntouchedOutside() const
    {
        const Picture black(source.width(), source.height());
        return isSame(target.view(), black.view(), {0, 0, 128, 20}) &&
               isSame(target.view(), black.view(), {0, 70, 128, 58}) &&
               isSame(target.view(), black.view(), {0, 0, 10, 128}) &&
               isSame(target.view(), black.view(), {80, 0, 48, 128});
    }

    Codec codec;
    Scenes scenes;
    Picture source{128, 128};
    Picture target{128, 128};
};

using Codecs = testing::Types<ZlibCodec, ZstdCodec, JpegCodec>;
TYPED_TEST_SUITE(APixelCodec, Codecs);

TYPED_TEST(APixelCodec, PutsARectangleWhereItBelongsAndNothingElsewhere)
{
    ASSERT_TRUE(this->codec.decode(this->encoded(), this->target, part));
    EXPECT_FALSE(isSame(this->target.view(), Picture(128, 128).view(), part));
    EXPECT_TRUE(this->isUntouchedOutside());
}

TYPED_TEST(APixelCodec, RefusesDataOfAnotherSize)
{
    const auto bytes = this->encoded();
    for (const PixelRect other :
         {PixelRect{0, 0, 71, 50}, PixelRect{0, 0, 70, 49}, PixelRect{0, 0, 1, 1}}) {
        EXPECT_FALSE(this->codec.decode(bytes, this->target, other))
            << other.width << " x " << other.height;
    }
}

TYPED_TEST(APixelCodec, RefusesWhatIsCutOrNoneOfItsKind)
{
    const auto bytes = this->encoded();
    for (const std::size_t length : {std::size_t{0}, std::size_t{1}, bytes.size() / 2})
        EXPECT_FALSE(this->codec.decode(ByteView(bytes).first(length), this->target, part));
    EXPECT_FALSE(this->codec.decode(Bytes(1000, 0xff), this->target, part));
    EXPECT_TRUE(this->isUntouchedOutside());
}

template <typename Codec> class ALosslessCodec : public APixelCodec<Codec>
{
};

using LosslessCodecs = testing::Types<ZlibCodec, ZstdCodec>;
TYPED_TEST_SUITE(ALosslessCodec, LosslessCodecs);

TYPED_TEST(ALosslessCodec, GivesEveryBitBack)
{
    this->scenes.takePhotograph(this->source, {0, 0, 60, 128});
    ASSERT_TRUE(this->codec.decode(this->encoded(), this->target, part));
    EXPECT_TRUE(isSame(this->source.view(), this->target.view(), part));
}

TYPED_TEST(ALosslessCodec, RefusesAFewBytesThatStandForMany)
{
    const Picture large(4096, 4096);
    const auto bomb = this->codec.encode(large.view(), wholeOf(large), quality);
    ASSERT_LT(bomb.size(), 500'000u);
    EXPECT_FALSE(this->codec.decode(bomb, this->target, part));
}

// A few bytes of such a JPEG can make a reader go over the whole picture thousands of times.
TEST(JpegCodec, RefusesOneThatIsRefinedInManyPasses)
{
    Picture picture(64, 64);
    const std::unique_ptr<void, int (*)(void*)> packer(tjInitCompress(), tjDestroy);
    for (const int flags : {0, TJFLAG_PROGRESSIVE}) {
        Bytes packed(tjBufSize(64, 64, TJSAMP_420));
        auto* to = packed.data();
        unsigned long size = packed.size();
        ASSERT_EQ(tjCompress2(packer.get(),
                              reinterpret_cast<const unsigned char*>(picture.view().pixels), 64, 0,
                              64, TJPF_BGRX, &to, &size, TJSAMP_420, quality,
                              flags | TJFLAG_NOREALLOC),
                  0);
        packed.resize(size);
        EXPECT_EQ(JpegCodec().decode(packed, picture, wholeOf(picture)), flags == 0) << flags;
        // What a reader skips must not hide the frame's header.
        for (const std::uint8_t skipped : {0xff, 0xd0, 0x01}) {
            Bytes longer = packed;
            longer.insert(longer.begin() + 2, {0xff, skipped});
            EXPECT_FALSE(JpegCodec().decode(longer, picture, wholeOf(picture))) << +skipped;
        }
    }
}

TEST(JpegCodec, KeepsAPhotographRecognisable)
{
    Scenes scenes;
    Picture source(64, 64);
    Picture target(64, 64);
    scenes.takePhotograph(source, wholeOf(source));
    JpegCodec codec;
    ASSERT_TRUE(codec.decode(codec.encode(source.view(), wholeOf(source), quality), target,
                             wholeOf(source)));
    int farthest = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            for (const int shift : {0, 8, 16}) {
                const auto sent = static_cast<int>(source.row(y)[x] >> shift & 0xff);
                const auto shown = static_cast<int>(target.row(y)[x] >> shift & 0xff);
                farthest = std::max(farthest, std::abs(sent - shown));
            }
        }
    }
    EXPECT_GT(farthest, 0);
    EXPECT_LT(farthest, 48);
}

} // namespace
} // namespace farview
