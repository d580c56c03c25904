#include "Controls/Control.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Button;
using testing::IsEmpty;

namespace
{

class ButtonTest : public testing::Test
{
protected:
    ButtonTest()
    {
        button->setTarget(recorder);
        button->setAction(Recorder::act);
    }

    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    std::shared_ptr<Button> button = std::make_shared<Button>();
};

TEST_F(ButtonTest, ADisabledOneIgnoresAClick)
{
    button->setKind(Button::Kind::checkBox);
    button->setEnabled(false);
    button->performClick(nullptr);
    EXPECT_THAT(recorder->senders, IsEmpty());
    EXPECT_EQ(button->state(), 0);
}

TEST_F(ButtonTest, SendsNothingWithoutATargetThatAnswers)
{
    recorder->answers = false;
    EXPECT_FALSE(button->sendAction());
    recorder->answers = true;
    EXPECT_TRUE(button->sendAction());
    button->setAction({});
    EXPECT_FALSE(button->sendAction());
    button->setAction(Recorder::act);
    recorder.reset();
    EXPECT_FALSE(button->sendAction());
}

TEST_F(ButtonTest, MayBeLetGoOfByItsTarget)
{
    const std::weak_ptr<Button> watched = button;
    recorder->whenCalled = [&] { button.reset(); };
    button->performClick(nullptr);
    EXPECT_TRUE(watched.expired());
}

TEST_F(ButtonTest, TellsEachRealChange)
{
    const ChangeCounter told(*button);
    button->setTitle("Title");
    button->setTitle("Title");
    button->setState(1);
    button->setState(1);
    button->setEnabled(false);
    EXPECT_EQ(told.count(), 3U);
}

TEST(ProgressIndicator, TellsWhenItStartsAndStops)
{
    const auto spinner = std::make_shared<farview::ProgressIndicator>();
    const ChangeCounter told(*spinner);
    spinner->stopAnimation();
    spinner->startAnimation();
    spinner->startAnimation();
    EXPECT_TRUE(spinner->isAnimating());
    spinner->stopAnimation();
    EXPECT_FALSE(spinner->isAnimating());
    EXPECT_EQ(told.count(), 2U);
}

} // namespace
