#include "Applications/Doctor/ScreenTrial.h"

#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/Fake/FakeVirtualScreens.h"
#include "Tests/Applications/DoctorNames.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace farview
{
namespace
{

using testing::ElementsAre;

class ScreenTrialTest : public testing::Test
{
protected:
    void start()
    {
        mTrial->start([this] { mHasEnded = true; });
        mLoop.runUntilIdle();
    }
    FakeMonitor& monitor() { return *mScreens.monitors().front(); }
    std::vector<std::string> found() { return names(findingsAboutTrial(mTrial->facts())); }

    FakeRunLoop mLoop;
    FakeVirtualScreens mScreens{mLoop};
    bool mHasEnded = false;
    std::shared_ptr<ScreenTrial> mTrial = std::make_shared<ScreenTrial>(mLoop, mScreens);
};

TEST_F(ScreenTrialTest, NotesWhatArrivesInFiveSecondsAndTakesTheScreenAway)
{
    start();
    ASSERT_EQ(mScreens.monitors().size(), 1U);
    monitor().paint(pixelRect(0, 0, 10, 10), 0x123456);
    monitor().setCursor({2, 2, {}, std::vector<std::uint32_t>(4, 0xFFFFFFFF)});
    monitor().moveCursor(pixelPoint(5, 5));
    mLoop.advance(Duration(2));
    const auto& facts = mTrial->facts();
    EXPECT_EQ(facts.geometry->width, 1024);
    EXPECT_GT(facts.frames, 1);
    EXPECT_GT(facts.differentFrames, 0);
    EXPECT_FALSE(facts.isOneColour);
    EXPECT_TRUE(facts.hasPointerImage);
    EXPECT_TRUE(facts.hasPointerPlace);
    EXPECT_FALSE(mHasEnded);
    mLoop.advance(Duration(3));
    EXPECT_TRUE(mScreens.monitors().empty());
    mLoop.advance(Duration(1));
    EXPECT_TRUE(mHasEnded);
    EXPECT_FALSE(facts.end);
}

TEST_F(ScreenTrialTest, SaysWhatIsInTheWay)
{
    mScreens.setObstacle(ScreenObstacle::notPermitted);
    start();
    mLoop.advance(Duration(1));
    EXPECT_TRUE(mHasEnded);
    EXPECT_THAT(found(), ElementsAre("not-permitted"));
}

TEST_F(ScreenTrialTest, SaysThatTheScreenEndedEarly)
{
    start();
    monitor().end(ScreenObstacle::takenAway);
    mLoop.advance(Duration(1));
    EXPECT_TRUE(mHasEnded);
    EXPECT_EQ(found().back(), "taken-away");
}

TEST_F(ScreenTrialTest, TakesTheScreenAwayWhenItIsBrokenOff)
{
    start();
    mTrial->breakOff();
    mTrial->breakOff();
    EXPECT_TRUE(mScreens.monitors().empty());
    mLoop.advance(Duration(1));
    EXPECT_TRUE(mHasEnded);
    EXPECT_THAT(found(), ElementsAre("desktop"));
}

TEST(ScreenTrialFindings, TellOfEverythingThatWasNoted)
{
    const ScreenAvailability plasma{ScreenWay::plasma};
    const ScreenGeometry geometry{pixelRect(0, 0, 512, 384), 1024, 768, 2};
    EXPECT_THAT(names(findingsAboutTrial({})), ElementsAre("unanswered"));
    EXPECT_THAT(names(findingsAboutTrial({.availability = plasma})),
                ElementsAre("desktop", "trial-none"));
    EXPECT_THAT(names(findingsAboutTrial({.availability = plasma, .end = ScreenObstacle::failed})),
                ElementsAre("desktop", "failed"));
    EXPECT_THAT(names(findingsAboutTrial({.availability = plasma, .geometry = geometry})),
                ElementsAre("desktop", "trial-appeared", "trial-no-picture", "trial-no-pointer",
                            "trial-no-input"));
    EXPECT_THAT(
        names(findingsAboutTrial({.availability = plasma,
                                  .geometry = geometry,
                                  .frames = 3,
                                  .hasPointerPlace = true,
                                  .input = {.pointer = true}})),
        ElementsAre("desktop", "trial-appeared", "trial-pictures", "trial-pointer", "trial-input"));
    EXPECT_THAT(names(findingsAboutTrial({.availability = plasma,
                                          .geometry = geometry,
                                          .frames = 3,
                                          .isPointerInFrames = true})),
                testing::Contains("trial-pointer-in-pictures"));
}

} // namespace
} // namespace farview
