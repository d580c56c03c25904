#include "Screen/Pacing.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

struct QualityRow {
    int before;
    PictureTime took;
    int after;
};

class QualityAfter : public testing::TestWithParam<QualityRow>
{
};

TEST_P(QualityAfter, FollowsTheTimeThatAFrameTook)
{
    EXPECT_EQ(qualityAfter(GetParam().before, GetParam().took), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Pacing, QualityAfter,
                         testing::Values(QualityRow{60, 10ms, 61}, QualityRow{60, 35ms, 60},
                                         QualityRow{60, 60ms, 55}, QualityRow{60, 200ms, 45},
                                         QualityRow{85, 1ms, 85}, QualityRow{30, 200ms, 25},
                                         QualityRow{25, 60ms, 25}));

TEST(MayBeginFrame, WhileLittleIsOnItsWay)
{
    EXPECT_TRUE(mayBeginFrame(0, true));
    EXPECT_TRUE(mayBeginFrame(1, true));
    EXPECT_FALSE(mayBeginFrame(2, true));
    EXPECT_FALSE(mayBeginFrame(0, false));
}

constexpr int typing = 1;
constexpr int film = 500;

class APacedPicture : public testing::Test
{
protected:
    Pacing pacing;
};

TEST_F(APacedPicture, SendsSmallChangesAtOnceAndLargeOnesAtTheBeat)
{
    pacing.beat(0ms);
    EXPECT_TRUE(pacing.mayBegin(1ms, typing, true));
    EXPECT_FALSE(pacing.mayBegin(1ms, film, true));
    EXPECT_TRUE(pacing.mayBegin(17ms, film, true));
}

TEST_F(APacedPicture, KeepsTheBeatHoweverLongAFrameIsMade)
{
    pacing.beat(0ms);
    pacing.begin(12ms, 100'000);
    EXPECT_TRUE(pacing.mayBegin(17ms, film, true));
}

TEST_F(APacedPicture, WaitsForADeviceThatShowsNothing)
{
    pacing.begin(0ms, 100);
    pacing.begin(20ms, 100);
    EXPECT_FALSE(pacing.mayBegin(10s, typing, true));
    EXPECT_TRUE(pacing.shown(1, 10s));
    EXPECT_TRUE(pacing.mayBegin(10s, typing, true));
}

TEST_F(APacedPicture, TakesALaterFrameAsTheWordForThoseBefore)
{
    pacing.begin(0ms, 100);
    pacing.begin(20ms, 100);
    EXPECT_TRUE(pacing.shown(2, 30ms));
    EXPECT_EQ(pacing.unshown(), 0u);
}

TEST_F(APacedPicture, RefusesTheWordForWhatWasNeverSent)
{
    EXPECT_FALSE(pacing.shown(1, 0ms));
    const auto first = pacing.begin(0ms, 100);
    EXPECT_FALSE(pacing.shown(first + 1, 1ms));
    EXPECT_FALSE(pacing.shown(0, 1ms));
    EXPECT_TRUE(pacing.shown(first, 1ms));
    EXPECT_FALSE(pacing.shown(first, 2ms)) << "twice";
}

TEST_F(APacedPicture, LosesQualityOverASlowLinkAndNotByTyping)
{
    pacing.shown(pacing.begin(0ms, 100), 300ms);
    EXPECT_EQ(pacing.quality(), kBestPictureQuality);
    pacing.shown(pacing.begin(1s, 100'000), 1300ms);
    EXPECT_LT(pacing.quality(), kBestPictureQuality);
}

TEST_F(APacedPicture, RefinesLittleAtATimeOverASlowLink)
{
    EXPECT_GT(refinedAtOnce(kBestPictureQuality), refinedAtOnce(kLeastPictureQuality));
    EXPECT_GT(refinedAtOnce(kLeastPictureQuality), 0);
}

} // namespace
} // namespace farview
