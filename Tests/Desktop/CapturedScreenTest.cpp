#include "Platform/Desktop/Screens/CapturedScreen.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

class CapturedScreenTest : public testing::Test
{
protected:
    CapturedScreenTest() { mScreen->setBuffer({mPixels.data(), 4, 4, 4}, mMemory); }
    bool capture(const PixelRect& damage)
    {
        return mScreen->beginFrame() && mScreen->endFrame({damage});
    }

    std::vector<std::uint32_t> mPixels = std::vector<std::uint32_t>(16);
    std::shared_ptr<int> mMemory = std::make_shared<int>();
    int mReleases = 0;
    std::shared_ptr<CapturedScreen> mScreen =
        std::make_shared<CapturedScreen>([this] { ++mReleases; });
};

TEST_F(CapturedScreenTest, AFrameIsAnnouncedOnceUntilItIsTaken)
{
    EXPECT_TRUE(capture(pixelRect(0, 0, 1, 1)));
    EXPECT_FALSE(capture(pixelRect(1, 0, 1, 1)));
    const auto frame = mScreen->takeFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->damage, (std::vector{pixelRect(0, 0, 1, 1), pixelRect(1, 0, 1, 1)}));
    EXPECT_FALSE(mScreen->takeFrame());
}

TEST_F(CapturedScreenTest, NothingIsWrittenWhileAFrameIsOut)
{
    capture(pixelRect(0, 0, 1, 1));
    auto frame = mScreen->takeFrame();
    EXPECT_FALSE(mScreen->beginFrame());
    auto copy = frame;
    frame.reset();
    EXPECT_FALSE(mScreen->beginFrame());
    EXPECT_EQ(mReleases, 0);
    copy.reset();
    EXPECT_EQ(mReleases, 1);
    EXPECT_TRUE(capture(pixelRect(2, 2, 1, 1)));
}

TEST_F(CapturedScreenTest, WhoComesWhileAFrameIsWrittenIsToldAgain)
{
    EXPECT_TRUE(capture(pixelRect(0, 0, 1, 1)));
    ASSERT_TRUE(mScreen->beginFrame());
    EXPECT_FALSE(mScreen->takeFrame());
    EXPECT_TRUE(mScreen->endFrame({}));
    EXPECT_TRUE(mScreen->takeFrame());
}

TEST_F(CapturedScreenTest, DamageThatNobodyTakesDoesNotGrow)
{
    for (int round = 0; round < 100000; ++round)
        capture(pixelRect(round % 4, 0, 1, 1));
    const auto frame = mScreen->takeFrame();
    ASSERT_TRUE(frame);
    EXPECT_LE(frame->damage.size(), 256U);
    EXPECT_EQ(frame->damage.front(), pixelRect(0, 0, 4, 4));
}

TEST_F(CapturedScreenTest, AFrameKeepsItsMemory)
{
    capture(pixelRect(0, 0, 4, 4));
    auto frame = mScreen->takeFrame();
    mScreen->setBuffer({}, nullptr);
    mScreen.reset();
    EXPECT_EQ(mMemory.use_count(), 2);
    frame.reset();
    EXPECT_EQ(mMemory.use_count(), 1);
}

TEST(CopyChangedRows, OnlyRowsThatDifferAreDamage)
{
    std::vector<std::uint32_t> copy(40 * 6);
    std::vector<std::uint32_t> source(40 * 6, 0xFF000000);
    const FrameView view{source.data(), 40, 6, 40};
    EXPECT_TRUE(copyChangedRows(view, copy.data()).empty());
    source[0] = 0xFF000001;
    source[40 + 39] = 0x12345678;
    source[4 * 40 + 16] = 7;
    EXPECT_EQ(copyChangedRows(view, copy.data()),
              (std::vector{pixelRect(0, 0, 40, 2), pixelRect(0, 4, 40, 1)}));
    EXPECT_EQ(copy[40 + 39], 0x00345678U);
    EXPECT_TRUE(copyChangedRows(view, copy.data()).empty());
}

TEST_F(CapturedScreenTest, FramesMayHoldThePointer)
{
    EXPECT_FALSE(mScreen->isInFrames());
    EXPECT_TRUE(CapturedScreen([] {}, true).isInFrames());
}

} // namespace
} // namespace farview
