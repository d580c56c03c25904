#include "Controls/TabView.h"

#include "Tests/Controls/Recorder.h"

#include <gtest/gtest.h>

using farview::TabView;

namespace
{

TEST(TabView, ShowsItsFirstPageUntilAnotherIsSelected)
{
    const auto tabs = std::make_shared<TabView>();
    EXPECT_EQ(tabs->selectedIdentifier(), "");
    tabs->setIdentifiers({"status", "settings"});
    EXPECT_EQ(tabs->selectedIdentifier(), "status");
    tabs->selectTabViewItemWithIdentifier("settings");
    EXPECT_EQ(tabs->selectedIdentifier(), "settings");
    tabs->selectFirstTabViewItem(nullptr);
    EXPECT_EQ(tabs->selectedIdentifier(), "status");
}

TEST(TabView, AnUnknownPageChangesNothing)
{
    const auto tabs = std::make_shared<TabView>();
    tabs->setIdentifiers({"status", "settings"});
    const ChangeCounter told(*tabs);
    tabs->selectTabViewItemWithIdentifier("unknown");
    tabs->selectTabViewItemWithIdentifier("status");
    EXPECT_EQ(tabs->selectedIdentifier(), "status");
    EXPECT_EQ(told.count(), 0U);
}

TEST(TabView, SelectingTheFirstOfNoPagesIsSafe)
{
    const auto tabs = std::make_shared<TabView>();
    tabs->selectFirstTabViewItem(nullptr);
    EXPECT_EQ(tabs->selectedIdentifier(), "");
}

} // namespace
