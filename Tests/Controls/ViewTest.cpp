#include "Controls/View.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Change;
using farview::Rect;
using farview::View;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

TEST(View, TellsEachRealChangeAndNoOther)
{
    const auto view = std::make_shared<View>();
    const ChangeCounter told(*view);
    view->setHidden(false);
    view->setToolTip("");
    view->setFrame({}, true);
    EXPECT_THAT(told.changes, IsEmpty());
    view->setHidden(true);
    view->setToolTip("Help");
    view->setFrame({{1, 2}, {3, 4}}, false);
    EXPECT_THAT(told.changes, ElementsAre(Change::properties, Change::properties, Change::frame));
}

TEST(View, RemembersWhatWasSetWithNobodyLooking)
{
    const auto view = std::make_shared<View>();
    view->setHidden(true);
    view->setFrame({{1, 2}, {3, 4}}, true);
    EXPECT_TRUE(view->isHidden());
    EXPECT_EQ(view->frame(), (Rect{{1, 2}, {3, 4}}));
    EXPECT_TRUE(view->frameChangeIsAnimated());
    view->setFrame({}, false);
    EXPECT_FALSE(view->frameChangeIsAnimated());
}

TEST(View, AnEndedSubscriptionHearsNothing)
{
    const auto view = std::make_shared<View>();
    int told = 0;
    auto subscription = view->observe([&](Change) { ++told; });
    view->setHidden(true);
    subscription.end();
    view->setHidden(false);
    EXPECT_EQ(told, 1);
}

TEST(View, AnObserverMayEndTheViewsLife)
{
    auto view = std::make_shared<View>();
    const std::weak_ptr<View> watched = view;
    const auto subscription = view->observe([&](Change) { view.reset(); });
    view->setHidden(true);
    EXPECT_TRUE(watched.expired());
}

} // namespace
