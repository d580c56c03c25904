#include "Common/QLNOnOffView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class Target : public farview::Responder
{
public:
    static constexpr farview::Selector pressed{"onOffSliderPressed:"};

    bool respondsTo(farview::Selector selector) const override { return selector == pressed; }
    bool perform(farview::Selector selector, farview::Object* sender) override
    {
        if (!respondsTo(selector))
            return false;
        senders.push_back(sender);
        return true;
    }

    std::vector<farview::Object*> senders;
};

class QLNOnOffViewTest : public testing::Test
{
protected:
    QLNOnOffViewTest()
    {
        view->setTarget(target);
        view->setAction(Target::pressed);
    }

    std::shared_ptr<Target> target = std::make_shared<Target>();
    std::shared_ptr<QLNOnOffView> view = std::make_shared<QLNOnOffView>();
};

TEST_F(QLNOnOffViewTest, BeginsOffAndEnabled)
{
    EXPECT_EQ(view->state(), 0);
    EXPECT_EQ(view->slider()->onOffValue(), 0.0);
    EXPECT_TRUE(view->isEnabled());
}

TEST_F(QLNOnOffViewTest, OneIsOnAndEveryOtherStateIsOff)
{
    for (const int off : {0, 2, -1, 7}) {
        view->setState(1, false);
        EXPECT_EQ(view->state(), 1);
        view->setState(off);
        EXPECT_EQ(view->state(), 0) << off;
    }
}

TEST_F(QLNOnOffViewTest, IsMixedWhileTheValueIsNeitherEnd)
{
    view->slider()->setDoubleValue(0.5, false);
    EXPECT_EQ(view->state(), -1);
    view->setState(0, false);
    EXPECT_EQ(view->state(), 0);
}

TEST_F(QLNOnOffViewTest, SettingTheStateItHasDoesNothing)
{
    int told = 0;
    view->setState(1);
    const auto subscription = view->slider()->observe([&](farview::Change) { ++told; });
    view->setState(1);
    view->setState(1, false);
    EXPECT_EQ(told, 0);
    view->setState(0);
    EXPECT_EQ(told, 1);
}

TEST_F(QLNOnOffViewTest, TheDestinationIsKnownAtOnce)
{
    view->setState(1, true);
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
}

TEST_F(QLNOnOffViewTest, SettingTheStateSendsNoAction)
{
    view->setState(1);
    EXPECT_THAT(target->senders, IsEmpty());
}

TEST_F(QLNOnOffViewTest, AnArrowKeyMovesToItsEndAndSendsTheActionWithTheSliderAsSender)
{
    view->slider()->moveRight(nullptr);
    EXPECT_EQ(view->state(), 1);
    view->slider()->moveLeft(nullptr);
    EXPECT_EQ(view->state(), 0);
    EXPECT_THAT(target->senders, ElementsAre(view->slider().get(), view->slider().get()));
}

TEST_F(QLNOnOffViewTest, AnArrowKeySendsTheActionEvenWhenItWasThereAlready)
{
    view->setState(1);
    view->slider()->moveRight(nullptr);
    EXPECT_EQ(target->senders.size(), 1U);
}

TEST_F(QLNOnOffViewTest, ADisabledSwitchIgnoresTheArrowKeys)
{
    view->setEnabled(false);
    EXPECT_FALSE(view->slider()->isEnabled());
    view->slider()->moveRight(nullptr);
    EXPECT_EQ(view->state(), 0);
    EXPECT_THAT(target->senders, IsEmpty());
}

TEST_F(QLNOnOffViewTest, HandsTargetAndActionToItsSlider)
{
    EXPECT_EQ(view->slider()->target().lock(), target);
    EXPECT_EQ(view->target().lock(), target);
    EXPECT_EQ(view->slider()->action(), Target::pressed);
    EXPECT_EQ(view->action(), Target::pressed);
}

} // namespace
