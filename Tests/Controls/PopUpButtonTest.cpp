#include "Controls/Menu.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Change;
using farview::Menu;
using farview::MenuItem;
using farview::PopUpButton;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class PopUpButtonTest : public testing::Test
{
protected:
    PopUpButtonTest() { popUp->setMenu(menu({"None", "Desk", "Sofa"})); }

    std::shared_ptr<Menu> menu(const std::vector<std::string>& titles)
    {
        auto made = std::make_shared<Menu>();
        for (const auto& title : titles) {
            auto item = std::make_shared<MenuItem>();
            item->title = title;
            item->representedObject = title;
            item->tag = made->numberOfItems() + 10;
            item->target = recorder;
            item->action = Recorder::act;
            made->insertItem(item, made->numberOfItems());
        }
        return made;
    }

    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    std::shared_ptr<PopUpButton> popUp = std::make_shared<PopUpButton>();
};

TEST_F(PopUpButtonTest, ANewMenuSelectsItsFirstEntryAndShowsItsTitle)
{
    popUp->selectItemAtIndex(2);
    popUp->setMenu(menu({"Wall", "Desk"}));
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
    EXPECT_EQ(popUp->title(), "Wall");
}

TEST_F(PopUpButtonTest, AnEmptyMenuSelectsNothing)
{
    popUp->setMenu(std::make_shared<Menu>());
    EXPECT_EQ(popUp->indexOfSelectedItem(), -1);
    EXPECT_EQ(popUp->selectedItem(), nullptr);
    EXPECT_EQ(popUp->title(), "");
    popUp->setMenu(nullptr);
    EXPECT_EQ(popUp->menu()->numberOfItems(), 0);
}

TEST_F(PopUpButtonTest, SelectingShowsTheEntrysTitle)
{
    popUp->selectItemAtIndex(1);
    EXPECT_EQ(popUp->selectedItem()->title, "Desk");
    EXPECT_EQ(popUp->title(), "Desk");
}

TEST_F(PopUpButtonTest, SelectingOutsideTheMenuChangesNothing)
{
    popUp->selectItemAtIndex(1);
    const ChangeCounter told(*popUp);
    popUp->selectItemAtIndex(3);
    popUp->selectItemAtIndex(-1);
    EXPECT_EQ(popUp->indexOfSelectedItem(), 1);
    EXPECT_EQ(told.count(), 0U);
}

TEST_F(PopUpButtonTest, ATitleOfItsOwnLeavesSelectionAndMenuAlone)
{
    popUp->selectItemAtIndex(1);
    popUp->setTitle("Desk (in background)");
    EXPECT_EQ(popUp->title(), "Desk (in background)");
    EXPECT_EQ(popUp->indexOfSelectedItem(), 1);
    EXPECT_EQ(popUp->selectedItem()->title, "Desk");
    popUp->selectItemAtIndex(1);
    EXPECT_EQ(popUp->title(), "Desk");
}

TEST_F(PopUpButtonTest, FindsEntriesByWhatTheyStandForAndByTag)
{
    EXPECT_EQ(popUp->indexOfItemWithRepresentedObject("Sofa"), 2);
    EXPECT_EQ(popUp->indexOfItemWithRepresentedObject("Wall"), -1);
    EXPECT_EQ(popUp->indexOfItemWithTag(11), 1);
    EXPECT_EQ(popUp->indexOfItemWithTag(99), -1);
}

TEST_F(PopUpButtonTest, ChoosingSelectsThenSendsTheEntrysAction)
{
    std::vector<std::string> titles;
    recorder->whenCalled = [&] { titles.push_back(popUp->title()); };
    const auto item = popUp->itemAtIndex(2);
    popUp->choose(item);
    EXPECT_THAT(recorder->senders, ElementsAre(item.get()));
    EXPECT_THAT(titles, ElementsAre("Sofa"));
}

TEST_F(PopUpButtonTest, ChoosesNothingThatCannotBeChosen)
{
    const auto item = popUp->itemAtIndex(2);
    popUp->setEnabled(false);
    popUp->choose(item);
    popUp->setEnabled(true);
    recorder->answers = false;
    popUp->choose(item);
    popUp->choose(nullptr);
    EXPECT_THAT(recorder->senders, IsEmpty());
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
}

TEST_F(PopUpButtonTest, AnEntryOfTheMenuBeforeSendsItsActionAndLeavesTheSelectionAlone)
{
    const auto stale = popUp->itemAtIndex(2);
    popUp->setMenu(menu({"None", "Wall"}));
    popUp->choose(stale);
    EXPECT_THAT(recorder->senders, ElementsAre(stale.get()));
    EXPECT_EQ(popUp->indexOfSelectedItem(), 0);
}

TEST_F(PopUpButtonTest, ATargetMayReplaceTheMenuWhileItIsCalled)
{
    recorder->whenCalled = [&] { popUp->setMenu(menu({"Wall"})); };
    popUp->choose(popUp->itemAtIndex(1));
    EXPECT_EQ(popUp->title(), "Wall");
    EXPECT_EQ(recorder->senders.size(), 1U);
}

TEST_F(PopUpButtonTest, TellsChangesOfItsMenu)
{
    const ChangeCounter told(*popUp);
    popUp->setMenu(menu({"Wall"}));
    popUp->selectItemAtIndex(0);
    popUp->itemChanged();
    EXPECT_THAT(told.changes, Each(Change::menu));
    EXPECT_EQ(told.count(), 3U);
}

} // namespace
