#include "Controls/Panel.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Change;
using farview::Panel;
using farview::View;
using testing::ElementsAre;

namespace
{

TEST(Panel, HangsOnTheWindowOfAViewUntilItsSheetEnds)
{
    const auto view = std::make_shared<View>();
    const auto panel = std::make_shared<Panel>();
    EXPECT_FALSE(panel->isVisible());
    panel->beginSheet(view);
    EXPECT_TRUE(panel->isSheet());
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->sheetParent(), view);
    panel->endSheet(1);
    EXPECT_FALSE(panel->isSheet());
    EXPECT_EQ(panel->sheetParent(), nullptr);
    EXPECT_EQ(panel->returnCode(), 1);
    EXPECT_TRUE(panel->isVisible()) << "until it is ordered out";
    panel->orderOut();
    EXPECT_FALSE(panel->isVisible());
}

TEST(Panel, TellsEachStepOnceAndNothingWhenNothingChanges)
{
    const auto view = std::make_shared<View>();
    const auto panel = std::make_shared<Panel>();
    const ChangeCounter told(*panel);
    panel->endSheet(1);
    panel->orderOut();
    panel->beginSheet(view);
    panel->beginSheet(view);
    panel->endSheet(0);
    panel->orderOut();
    EXPECT_THAT(told.changes, ElementsAre(Change::sheet, Change::sheet, Change::sheet));
    EXPECT_EQ(panel->returnCode(), 0);
}

TEST(Panel, DoesNotKeepTheWindowItHangsOnAlive)
{
    auto view = std::make_shared<View>();
    const auto panel = std::make_shared<Panel>();
    panel->beginSheet(view);
    view.reset();
    EXPECT_EQ(panel->sheetParent(), nullptr);
    EXPECT_TRUE(panel->isSheet());
}

} // namespace
