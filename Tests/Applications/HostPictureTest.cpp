#include "Applications/Device/HostPicture.h"

#include "Platform/Fake/FakeRunLoop.h"
#include "Screen/Cursor.h"
#include "Screen/PictureSender.h"
#include "Tests/Applications/FakeGlass.h"
#include "Tests/Screen/Scenes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Verdict = HostPicture::Verdict;

constexpr int width = 320;
constexpr int height = 200;

class HostPictureTest : public testing::Test
{
protected:
    void begin() { picture.emplace(agreement, glass, send(), loop); }
    HostPicture::Send send()
    {
        return [this](const LinkFrame& frame) { sent.push_back(frame); };
    }
    void beginWithASize()
    {
        begin();
        ASSERT_EQ(picture->take(LinkPictureSize{width, height}), Verdict::good);
    }
    Verdict takeAll(const PictureSender::Packets& packets)
    {
        auto verdict = Verdict::good;
        for (const auto& packet : packets) {
            if (verdict == Verdict::good)
                verdict = picture->take(packet);
        }
        return verdict;
    }
    Verdict end(std::uint32_t number) { return picture->take(LinkFrameEnd{number}); }
    std::vector<LinkShown> shown() const
    {
        std::vector<LinkShown> found;
        for (const auto& frame : sent) {
            if (const auto* each = std::get_if<LinkShown>(&frame))
                found.push_back(*each);
        }
        return found;
    }
    /// Black everywhere: small for its size.
    LinkScreenRectangle blackPart(const PixelRect& part)
    {
        const Picture black(part.width, part.height);
        return {part, QLScreenEncodingLibz, zlib.encode(black.view(), wholeOf(black), 0)};
    }

    LinkAgreement agreement{1, {kLinkScreenFeature, kLinkZstdFeature}};
    FakeGlass glass;
    FakeRunLoop loop;
    std::vector<LinkFrame> sent;
    std::optional<HostPicture> picture;
    std::uint32_t frames = 0;
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
};

TEST_F(HostPictureTest, TellsTheScreenAtOnceAndWheneverItChanges)
{
    begin();
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkDeviceScreen{1280, 800, 100, 60})));
    glass.screenChanged();
    EXPECT_EQ(sent.size(), 1u) << "it did not change";
    glass.deviceScreen = {800, 1280, 100, 60};
    glass.screenChanged();
    EXPECT_EQ(sent.back(), LinkFrame(glass.deviceScreen)) << "it was turned";
}

TEST_F(HostPictureTest, TellsWhatTheUserDoesAsSoonAsTheHostWantsItAndLiftsItWithThePicture)
{
    agreement.features.emplace_back(kLinkInputFeature);
    beginWithASize();
    const LinkPointer pressed{{1, 1, width, height}, 1};
    ASSERT_NE(glass.input, nullptr);
    glass.input->pointer(pressed);
    EXPECT_THAT(sent, SizeIs(1)) << "its screen, and nothing else";
    EXPECT_EQ(picture->take(LinkOptions{.touch = true}), Verdict::good);
    glass.input->pointer(pressed);
    EXPECT_EQ(sent.back(), LinkFrame(pressed));
    EXPECT_EQ(picture->take(LinkPictureSize{height, width}), Verdict::good);
    EXPECT_EQ(sent.back(), LinkFrame(LinkPointer{pressed.place, 0}));
    picture.reset();
    EXPECT_EQ(glass.input, nullptr);
}

TEST_F(HostPictureTest, TellsNothingToAHostThatDidNotAgreeOnInput)
{
    beginWithASize();
    EXPECT_EQ(picture->take(LinkOptions{.touch = true, .typing = true}), Verdict::good);
    glass.input->pointer({{1, 1, width, height}, 1});
    glass.input->key({30, true});
    EXPECT_THAT(sent, SizeIs(1)) << "its screen, and nothing else";
}

TEST_F(HostPictureTest, IsBitForBitWhatTheHostSent)
{
    beginWithASize();
    Picture frame(width, height);
    Scenes scenes;
    scenes.writeText(frame, wholeOf(frame));
    PictureSender sender(width, height, zstd, jpeg);
    EXPECT_EQ(takeAll(sender.packetsFor(frame.view(), 85, 0ms)), Verdict::good);
    EXPECT_EQ(end(1), Verdict::good);
    ASSERT_NE(glass.picture, nullptr);
    EXPECT_TRUE(isSame(glass.picture->picture().view(), frame.view(), wholeOf(frame)));
    EXPECT_FALSE(glass.changed.empty());
    EXPECT_GT(glass.bytes, 1000u);
}

TEST_F(HostPictureTest, IsToldAsShownWhenItIsOnTheGlassAndNotBefore)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    EXPECT_THAT(shown(), IsEmpty());
    loop.advance(1500us);
    glass.draw();
    EXPECT_THAT(shown(), ElementsAre(LinkShown{1, 1500}));
}

TEST_F(HostPictureTest, AFrameThatALaterOneReplacedIsAnsweredByThatOne)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    loop.advance(10ms);
    EXPECT_EQ(end(2), Verdict::good);
    loop.advance(2ms);
    glass.draw();
    EXPECT_THAT(shown(), ElementsAre(LinkShown{2, 2000}));
    EXPECT_EQ(end(3), Verdict::good);
}

TEST_F(HostPictureTest, AGlassThatWasHiddenForHoursIsAnsweredForAllTheSame)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    loop.advance(72h);
    glass.draw();
    EXPECT_THAT(shown(), ElementsAre(LinkShown{1, 0xffffffff}));
}

TEST_F(HostPictureTest, AFrameBeforeAnotherSizeIsAnsweredOnceTheNewPictureIsOnTheGlass)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    EXPECT_EQ(picture->take(LinkPictureSize{64, 64}), Verdict::good);
    EXPECT_TRUE(glass.isWaiting());
    glass.draw();
    EXPECT_THAT(shown(), ElementsAre(LinkShown{1, 0}));
    EXPECT_EQ(end(2), Verdict::good) << "frames are counted on";
}

TEST_F(HostPictureTest, ThePointerDoesNotWaitForAFrame)
{
    beginWithASize();
    Cursor cursor{{1, 2}, Picture(16, 16)};
    EXPECT_EQ(picture->take(cursorPacket(cursor, zlib)), Verdict::good);
    EXPECT_EQ(picture->take(cursorPlacePacket({30, 40})), Verdict::good);
    EXPECT_EQ(glass.pointerMoves, 2);
    EXPECT_EQ(glass.picture->cursorPlace(), (PixelPoint{30, 40}));
}

TEST_F(HostPictureTest, ThePointerMayMoveForHoursWithoutAFrame)
{
    beginWithASize();
    const auto move = cursorPlacePacket({30, 40});
    for (int count = 0; count < 600'000; ++count)
        ASSERT_EQ(picture->take(move), Verdict::good) << count;
}

TEST_F(HostPictureTest, EndsOnTheGlassWithItself)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    picture.reset();
    EXPECT_EQ(glass.picture, nullptr);
    glass.screenChanged();
    glass.draw();
    EXPECT_EQ(sent.size(), 1u) << "nothing is said behind its end";
}

// --- hosts that keep no rules ----------------------------------------------------------------

TEST_F(HostPictureTest, ARectangleOrAFrameBeforeItsSizeBreaksTheRules)
{
    begin();
    EXPECT_EQ(picture->take(blackPart({0, 0, 8, 8})), Verdict::brokenRule);
    EXPECT_EQ(picture->take(cursorPlacePacket({0, 0})), Verdict::brokenRule);
    EXPECT_EQ(end(1), Verdict::brokenRule);
}

TEST_F(HostPictureTest, RectanglesOutsideAndOfNoSizeBreakTheRules)
{
    beginWithASize();
    for (const PixelRect& part :
         {PixelRect{width - 7, 0, 8, 8}, PixelRect{0, height - 7, 8, 8}, PixelRect{-1, 0, 8, 8},
          PixelRect{0, 0, 0, 8}, PixelRect{8, 8, -8, 8}, PixelRect{0, 0, -32768, -32768}}) {
        auto packet = blackPart({0, 0, 8, 8});
        packet.rectangle = part;
        EXPECT_EQ(picture->take(packet), Verdict::brokenRule) << part.x << " " << part.width;
    }
}

TEST_F(HostPictureTest, RectanglesThatOverlapAreDrawnInTheirOrder)
{
    beginWithASize();
    Picture white(8, 8);
    std::fill_n(white.row(0), 64, 0xffffffu);
    EXPECT_EQ(picture->take(LinkScreenRectangle{
                  {0, 0, 8, 8}, QLScreenEncodingLibz, zlib.encode(white.view(), {0, 0, 8, 8}, 0)}),
              Verdict::good);
    EXPECT_EQ(picture->take(blackPart({4, 0, 8, 8})), Verdict::good);
    EXPECT_EQ(glass.picture->picture().view().row(0)[3], 0xffffffu);
    EXPECT_EQ(glass.picture->picture().view().row(0)[4], 0u);
}

TEST_F(HostPictureTest, DataThatAreNotWhatTheySayBreakTheRules)
{
    beginWithASize();
    const Picture large(4096, 4096);
    const auto bomb = zlib.encode(large.view(), wholeOf(large), 0);
    Bytes copyFromOutside;
    appendNumber(copyFromOutside, width, 2);
    appendNumber(copyFromOutside, 0, 2);
    for (const LinkScreenRectangle& packet :
         {LinkScreenRectangle{{0, 0, 8, 8}, QLScreenEncodingLibz, bomb},
          LinkScreenRectangle{{0, 0, 8, 8}, QLScreenEncodingJPG, Bytes(500, 0xd8)},
          LinkScreenRectangle{{0, 0, 8, 8}, QLScreenEncodingCopyRect, copyFromOutside},
          LinkScreenRectangle{{0, 0, 8, 8}, 77, {}}})
        EXPECT_EQ(picture->take(packet), Verdict::brokenRule) << int(packet.encoding);
}

TEST_F(HostPictureTest, WithoutItsFeatureZstdBreaksTheRules)
{
    agreement.features = {kLinkScreenFeature};
    beginWithASize();
    const Picture black(8, 8);
    EXPECT_EQ(picture->take(LinkScreenRectangle{
                  {0, 0, 8, 8}, kScreenEncodingZstd, zstd.encode(black.view(), wholeOf(black), 0)}),
              Verdict::brokenRule);
}

TEST_F(HostPictureTest, FramesOutOfOrderBreakTheRules)
{
    beginWithASize();
    EXPECT_EQ(end(2), Verdict::brokenRule);
    EXPECT_EQ(end(1), Verdict::good);
    EXPECT_EQ(end(1), Verdict::brokenRule);
}

TEST_F(HostPictureTest, AThirdFrameThatNobodyWaitedForBreaksTheRules)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    EXPECT_EQ(end(2), Verdict::good);
    EXPECT_EQ(end(3), Verdict::brokenRule);
}

TEST_F(HostPictureTest, GoesFromTheGlassWhenThereIsNoneForNowAndComesBack)
{
    beginWithASize();
    EXPECT_EQ(end(1), Verdict::good);
    EXPECT_EQ(end(2), Verdict::good);
    EXPECT_EQ(picture->take(LinkPictureSize{}), Verdict::good);
    EXPECT_EQ(glass.picture, nullptr);
    EXPECT_EQ(end(3), Verdict::brokenRule) << "a frame of nothing";
    EXPECT_EQ(picture->take(LinkPictureSize{width, height}), Verdict::good);
    EXPECT_EQ(end(3), Verdict::good) << "nobody waits for the frames of the picture before";
    glass.draw();
    EXPECT_EQ(shown().back().number, 3u);
}

TEST_F(HostPictureTest, APictureOfOnePixelIsOne)
{
    begin();
    EXPECT_EQ(picture->take(LinkPictureSize{1, 1}), Verdict::good);
    EXPECT_EQ(picture->take(blackPart({0, 0, 1, 1})), Verdict::good);
    EXPECT_EQ(end(1), Verdict::good);
}

TEST_F(HostPictureTest, APictureOfAGigabyteIsTooLarge)
{
    beginWithASize();
    EXPECT_EQ(picture->take(LinkPictureSize{16384, 16384}), Verdict::tooLarge);
    EXPECT_EQ(picture->take(LinkPictureSize{7680, 4320}), Verdict::good) << "8K is not";
}

TEST_F(HostPictureTest, FiftySizesASecondAreFollowed)
{
    begin();
    for (std::uint32_t count = 1; count <= 50; ++count) {
        const auto side = static_cast<std::uint16_t>(200 + count);
        ASSERT_EQ(picture->take(LinkPictureSize{side, side}), Verdict::good);
        ASSERT_EQ(picture->take(blackPart(pixelRect(0, 0, side, side))), Verdict::good);
        ASSERT_EQ(end(count), Verdict::good);
        glass.draw();
    }
    EXPECT_EQ(glass.pictures, 50);
    EXPECT_EQ(glass.picture->picture().width(), 250);
}

TEST_F(HostPictureTest, ManyLargeSizesWithoutAFrameBreakTheRules)
{
    begin();
    auto verdict = Verdict::good;
    int count = 0;
    for (; verdict == Verdict::good && count < 100; ++count)
        verdict = picture->take(LinkPictureSize{7680, 4320});
    EXPECT_EQ(verdict, Verdict::brokenRule);
    EXPECT_LT(count, 10);
}

TEST_F(HostPictureTest, PicturesThatComeAndGoWithoutATurnBreakTheRules)
{
    begin();
    int count = 0;
    while (count < 1000 && picture->take(LinkPictureSize{1, 1}) == Verdict::good &&
           end(++frames) == Verdict::good && picture->take(LinkPictureSize{}) == Verdict::good)
        ++count;
    EXPECT_LT(count, 1000);
}

TEST_F(HostPictureTest, FramesThatNobodyWaitsForCannotAddUp)
{
    begin();
    const LinkScreenRectangle copy{{0, 0, 7680, 4320}, QLScreenEncodingCopyRect, Bytes(4, 0)};
    int count = 0;
    while (count < 20 && picture->take(LinkPictureSize{7680, 4320}) == Verdict::good &&
           picture->take(copy) == Verdict::good && end(++frames) == Verdict::good)
        ++count;
    EXPECT_LT(count, 20);
}

TEST_F(HostPictureTest, WorkIsCountedForEachTurnAlone)
{
    beginWithASize();
    const LinkScreenRectangle copy{{0, 0, width, height}, QLScreenEncodingCopyRect, Bytes(4, 0)};
    for (int turn = 0; turn < 3; ++turn) {
        for (int count = 0; count < 3000; ++count)
            ASSERT_EQ(picture->take(copy), Verdict::good) << turn << " " << count;
        picture->beginTurn();
    }
}

TEST_F(HostPictureTest, AFrameThatCopiesWithoutAnEndBreaksTheRules)
{
    beginWithASize();
    const LinkScreenRectangle copy{{0, 0, width, height}, QLScreenEncodingCopyRect, Bytes(4, 0)};
    const LinkScreenRectangle small{{0, 0, 1, 1}, QLScreenEncodingCopyRect, Bytes(4, 0)};
    for (const auto& packet : {copy, small}) {
        auto verdict = Verdict::good;
        for (int count = 0; verdict == Verdict::good && count < 1'000'000; ++count)
            verdict = picture->take(packet);
        EXPECT_EQ(verdict, Verdict::brokenRule) << packet.rectangle.width;
    }
}

} // namespace
} // namespace farview
