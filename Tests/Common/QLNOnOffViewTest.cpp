#include "Tests/Common/SwitchFixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace farview::test
{
namespace
{

class QLNOnOffViewTest : public SwitchFixture
{
};

TEST_F(QLNOnOffViewTest, IsAsLargeAsTheOverlayWhereverItsFrameBegins)
{
    EXPECT_EQ(view->frame(), (Rect{{7, 9}, {100, 30}}));
    EXPECT_EQ(slider->frame(), (Rect{{0, 0}, {100, 30}}));
    EXPECT_EQ(slider->bounds(), (Rect{{0, 0}, {100, 30}}));
}

TEST_F(QLNOnOffViewTest, SetsItsSliderUpOffAndEnablesItAlong)
{
    EXPECT_EQ(view->state(), 0);
    EXPECT_EQ(slider->doubleValue(), 0.0);
    EXPECT_EQ(slider->minValue(), 0.0);
    EXPECT_EQ(slider->maxValue(), 1.0);
    EXPECT_FALSE(slider->isContinuous());
    EXPECT_TRUE(view->wantsLayer());
    EXPECT_NE(cell, nullptr);
    EXPECT_TRUE(view->isEnabled());
    view->setEnabled(false);
    EXPECT_FALSE(slider->isEnabled());
}

TEST_F(QLNOnOffViewTest, WithoutItsPicturesItHasNoSize)
{
    QLNOnOffView bare;
    bare.initWithFrame({{1, 2}, {50, 50}});
    EXPECT_EQ(bare.frame(), (Rect{{1, 2}, {0, 0}}));
    images->files.clear();
    bare.setImageSource({&bundle, images});
    bare.initWithFrame({{1, 2}, {50, 50}});
    EXPECT_EQ(bare.frame(), (Rect{{1, 2}, {0, 0}}));
}

TEST_F(QLNOnOffViewTest, SettingTheStateItHasMovesNothingAndTellsNobody)
{
    view->setState(0);
    view->setState(0, true);
    EXPECT_EQ(animator->movements, 0);
    view->setState(1);
    EXPECT_EQ(animator->movements, 1);
    int told = 0;
    const auto subscription = slider->observe([&](Change) { ++told; });
    view->setState(1);
    view->setState(1, false);
    EXPECT_EQ(animator->movements, 1);
    EXPECT_TRUE(animator->isPlaying()) << "not even when it is still on its way";
    EXPECT_EQ(told, 0);
    EXPECT_THAT(target->senders, IsEmpty()) << "no state that is set sends the action";
}

TEST_F(QLNOnOffViewTest, WhatItDoesNotKnowGoesToItsSlider)
{
    for (const Selector each : {Selector{"moveRight:"}, Selector{"moveLeft:"}})
        EXPECT_TRUE(view->respondsTo(each));
    EXPECT_TRUE(view->perform({"moveRight:"}, nullptr));
    EXPECT_EQ(view->state(), 1);
    EXPECT_TRUE(view->perform({"moveLeft:"}, nullptr));
    EXPECT_EQ(view->state(), 0);
    EXPECT_TRUE(view->perform({"performClick:"}, nullptr));
    EXPECT_EQ(view->state(), 1);
    EXPECT_THAT(target->senders, ElementsAre(slider.get(), slider.get(), slider.get()));
}

TEST_F(QLNOnOffViewTest, WhatItsSliderDoesNotKnowEitherIsRefused)
{
    EXPECT_FALSE(view->respondsTo({"onOffSliderPressed:"}));
    EXPECT_FALSE(view->perform({"onOffSliderPressed:"}, nullptr));
    EXPECT_FALSE(view->respondsTo({""}));
}

TEST_F(QLNOnOffViewTest, OneIsOnAndEveryOtherStateIsOff)
{
    for (const int off : {0, 2, -1, 7}) {
        view->setState(1, false);
        EXPECT_EQ(view->state(), 1);
        view->setState(off);
        EXPECT_EQ(view->state(), 0) << off;
        EXPECT_TRUE(animator->isPlaying()) << off;
    }
}

TEST_F(QLNOnOffViewTest, IsMixedWhileTheValueIsNeitherEnd)
{
    slider->setDoubleValue(0.5, false);
    EXPECT_EQ(view->state(), -1);
    view->setState(0, false);
    EXPECT_EQ(view->state(), 0);
}

TEST_F(QLNOnOffViewTest, HandsTargetAndActionToItsSlider)
{
    EXPECT_EQ(slider->target().lock(), target);
    EXPECT_EQ(view->target().lock(), target);
    EXPECT_EQ(slider->action(), SwitchTarget::pressed);
    EXPECT_EQ(view->action(), SwitchTarget::pressed);
}

} // namespace
} // namespace farview::test
