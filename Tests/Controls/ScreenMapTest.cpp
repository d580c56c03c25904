#include "Controls/ScreenMap.h"

#include "Tests/Controls/Recorder.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

constexpr PixelRect mainScreen = pixelRect(0, 0, 1920, 1080);
constexpr PixelRect onTheRight = pixelRect(1920, 0, 800, 600);
constexpr PixelRect below = pixelRect(0, 1080, 800, 600);

struct AScreenMap : testing::Test {
    AScreenMap()
    {
        map->setTarget(target);
        map->setAction(Recorder::act);
        map->setScreens(onTheRight, {mainScreen});
    }

    std::shared_ptr<Recorder> target = std::make_shared<Recorder>();
    std::shared_ptr<ScreenMap> map = std::make_shared<ScreenMap>();
};

TEST_F(AScreenMap, TellsOfNewPlacesOnly)
{
    const ChangeCounter told(*map);
    map->setScreens(onTheRight, {mainScreen});
    EXPECT_TRUE(told.changes.empty());
    map->setScreens(below, {mainScreen});
    EXPECT_FALSE(told.changes.empty());
    EXPECT_EQ(map->monitor(), below);
}

TEST_F(AScreenMap, AsksForTheChosenSideAndMovesNothingItself)
{
    map->userChose(ScreenSide::below);
    EXPECT_EQ(target->senders.size(), 1u);
    EXPECT_EQ(map->chosenSide(), ScreenSide::below);
    EXPECT_EQ(map->monitor(), onTheRight);
}

TEST_F(AScreenMap, TakesBackOneChoiceAfterTheOther)
{
    map->userChose(ScreenSide::below);
    map->setScreens(below, {mainScreen});
    map->userChose(ScreenSide::left);
    map->userTookBack();
    EXPECT_EQ(map->chosenSide(), ScreenSide::below);
    map->userTookBack();
    EXPECT_EQ(map->chosenSide(), ScreenSide::right);
    EXPECT_EQ(target->senders.size(), 4u);
    map->userTookBack();
    EXPECT_EQ(target->senders.size(), 4u) << "nothing is left to take back";
}

TEST_F(AScreenMap, ChoosingTheSideWhereItIsLeavesNothingToTakeBack)
{
    map->userChose(ScreenSide::right);
    EXPECT_EQ(target->senders.size(), 1u) << "another side may have been asked for meanwhile";
    map->userTookBack();
    EXPECT_EQ(target->senders.size(), 1u);
}

TEST_F(AScreenMap, IgnoresTheUserWhileItIsDisabledOrEmpty)
{
    map->setEnabled(false);
    map->userChose(ScreenSide::below);
    map->setEnabled(true);
    map->setScreens({}, {});
    map->userChose(ScreenSide::below);
    EXPECT_TRUE(target->senders.empty());
}

} // namespace
} // namespace farview
