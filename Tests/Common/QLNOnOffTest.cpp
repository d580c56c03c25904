#include "Tests/Common/SwitchFixture.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::ElementsAre;
using testing::IsEmpty;

namespace farview::test
{
namespace
{

class QLNOnOffTest : public SwitchFixture
{
};

TEST_F(QLNOnOffTest, AMoveOverTheWholeWayTakesAFifthOfASecondAndHalfTheWayHalfOfIt)
{
    slider->setDoubleValue(1.0, true);
    ASSERT_TRUE(animator->movement);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.2);
    EXPECT_EQ(animator->movement->from, 0.0);
    EXPECT_EQ(animator->movement->to, 1.0);
    put(0.5);
    slider->setDoubleValue(0.0, true);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.1);
}

TEST_F(QLNOnOffTest, TurningRoundOnTheWayTakesTheTimeOfTheWayBack)
{
    slider->setDoubleValue(1.0, true);
    animator->advanceTo(0.25);
    slider->setDoubleValue(0.0, true);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.05);
    EXPECT_EQ(animator->movement->from, 0.25);
    EXPECT_EQ(animator->movements, 2);
}

TEST_F(QLNOnOffTest, TheDestinationIsKnownAtOnceAndTheKnobFollows)
{
    slider->setDoubleValue(1.0, true);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_EQ(slider->doubleValue(), 0.0);
    animator->advanceTo(0.5);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_EQ(slider->doubleValue(), 0.5);
    animator->finish();
    EXPECT_EQ(slider->doubleValue(), 1.0);
}

TEST_F(QLNOnOffTest, WithoutAnAnimationOrAPlayerTheKnobIsThereAtOnce)
{
    slider->setDoubleValue(1.0, false);
    EXPECT_EQ(slider->doubleValue(), 1.0);
    EXPECT_EQ(animator->movements, 0);
    slider->setAnimator(nullptr);
    slider->setDoubleValue(0.0, true);
    EXPECT_EQ(slider->doubleValue(), 0.0);
}

TEST_F(QLNOnOffTest, AMoveWithoutAnAnimationEndsTheOneThatPlays)
{
    slider->setDoubleValue(1.0, true);
    animator->advanceTo(0.5);
    slider->setDoubleValue(0.0, false);
    EXPECT_FALSE(animator->isPlaying());
    EXPECT_FALSE(slider->animating());
}

TEST_F(QLNOnOffTest, IsAnimatingWhileTheKnobIsNotWhereItBelongs)
{
    EXPECT_FALSE(slider->animating());
    slider->setDoubleValue(1.0, true);
    EXPECT_TRUE(slider->animating());
    animator->advanceTo(0.999);
    EXPECT_TRUE(slider->animating());
    animator->finish();
    EXPECT_FALSE(slider->animating());
}

TEST_F(QLNOnOffTest, IsAnimatingWhenAValueIsNoNumber)
{
    slider->setDoubleValue(std::nan(""), false);
    EXPECT_TRUE(slider->animating());
    put(0.0);
    EXPECT_FALSE(slider->animating());
    slider->setDoubleValue(std::nan(""));
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_TRUE(slider->animating());
}

TEST_F(QLNOnOffTest, AMoveFromOrToWhatIsNoNumberTakesNoTime)
{
    slider->setDoubleValue(std::nan(""), true);
    EXPECT_EQ(animator->movements, 0);
    slider->setDoubleValue(1.0, true);
    EXPECT_EQ(animator->movements, 0);
    EXPECT_EQ(slider->doubleValue(), 1.0);
    slider->setDoubleValue(std::numeric_limits<double>::infinity(), true);
    EXPECT_EQ(animator->movements, 0);
    EXPECT_EQ(slider->doubleValue(), 1.0);
}

TEST_F(QLNOnOffTest, AnimatingDependsOnTheTwoValuesAndOnNothingElse)
{
    EXPECT_THAT(QLNOnOff::keyPathsForValuesAffectingAnimating(),
                ElementsAre("doubleValue", "onOffValue"));
}

TEST_F(QLNOnOffTest, ObserversAreToldWhenEitherValueChanges)
{
    std::vector<bool> told;
    const auto subscription = slider->observe([&](Change) { told.push_back(slider->animating()); });
    slider->setDoubleValue(1.0, true);
    EXPECT_THAT(told, ElementsAre(true));
    animator->advanceTo(0.5);
    EXPECT_THAT(told, ElementsAre(true, true));
    animator->finish();
    EXPECT_THAT(told, ElementsAre(true, true, false));
    slider->setDoubleValue(1.0, false);
    EXPECT_EQ(told.size(), 3u);
}

TEST_F(QLNOnOffTest, MovesAsViewsDo)
{
    EXPECT_EQ(QLNOnOff::defaultAnimationForKey("doubleValue"),
              QLNOnOff::defaultAnimationForKey("frameOrigin"));
    EXPECT_EQ(QLNOnOff::defaultAnimationForKey("frameOrigin"), Animation{});
    EXPECT_EQ(QLNOnOff::defaultAnimationForKey("frameSize"),
              Control::defaultAnimationForKey("frameSize"));
    EXPECT_EQ(QLNOnOff::defaultAnimationForKey("onOffValue"), std::nullopt);
    slider->setDoubleValue(1.0, true);
    EXPECT_EQ(animator->movement->animation, Animation{});
}

TEST_F(QLNOnOffTest, TheKnobStaysBetweenTheEnds)
{
    slider->setDoubleValue(7.0, false);
    EXPECT_EQ(slider->onOffValue(), 7.0);
    EXPECT_EQ(slider->doubleValue(), 1.0);
    slider->setDoubleValue(-3.0);
    EXPECT_EQ(slider->doubleValue(), 0.0);
}

TEST_F(QLNOnOffTest, ArrowKeysMoveToTheirEndWithAnAnimation)
{
    slider->moveRight(nullptr);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_TRUE(animator->isPlaying());
    slider->moveLeft(nullptr);
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_THAT(target->values, ElementsAre(1.0, 0.0));
}

TEST_F(QLNOnOffTest, AnArrowKeyAtItsEndStillSendsTheAction)
{
    put(1.0);
    slider->moveRight(nullptr);
    EXPECT_EQ(animator->movements, 0);
    EXPECT_THAT(target->values, ElementsAre(1.0));
}

TEST_F(QLNOnOffTest, DisabledItIgnoresArrowKeysAndClicks)
{
    slider->setEnabled(false);
    slider->moveRight(nullptr);
    slider->performClick(nullptr);
    EXPECT_FALSE(slider->mouseDown({10, 10}));
    slider->mouseUp({10, 10});
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_THAT(target->senders, IsEmpty());
}

TEST_F(QLNOnOffTest, AClickByOtherMeansSwitchesAndIsRefusedDuringAMovement)
{
    slider->performClick(nullptr);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    slider->performClick(nullptr);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    animator->finish();
    slider->performClick(nullptr);
    EXPECT_THAT(target->values, ElementsAre(1.0, 0.0));
}

TEST_F(QLNOnOffTest, AMovementThatOutlivesItsSliderShowsNothing)
{
    auto another = std::make_shared<QLNOnOff>();
    another->setAnimator(animator);
    another->setDoubleValue(1.0, true);
    another.reset();
    animator->finish();
    EXPECT_EQ(slider->doubleValue(), 0.0);
}

TEST_F(QLNOnOffTest, WithoutACellAPressIsRefused)
{
    slider->setCell(nullptr);
    EXPECT_FALSE(slider->mouseDown({10, 10}));
}

} // namespace
} // namespace farview::test
