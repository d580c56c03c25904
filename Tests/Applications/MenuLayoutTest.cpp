#include "Applications/FarviewStatusItem/MenuLayout.h"
#include "Tests/Support/MenuTarget.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

class MenuLayoutTest : public testing::Test
{
protected:
    std::shared_ptr<MenuItem> item(const std::string& title, Represented represented = {})
    {
        auto made = target->entry(title);
        made->representedObject = std::move(represented);
        return made;
    }
    bool set(std::vector<std::shared_ptr<MenuItem>> items)
    {
        Menu menu;
        for (auto& each : items)
            menu.insertItem(each, menu.numberOfItems());
        return layout.setMenu(menu);
    }
    int idOf(const std::string& title) const
    {
        for (const auto& row : layout.rows()) {
            if (row.item->title == title)
                return row.id;
        }
        return -1;
    }

    std::shared_ptr<MenuTarget> target = std::make_shared<MenuTarget>();
    MenuLayout layout;
};

TEST_F(MenuLayoutTest, AMenuThatShowsTheSameIsNoChange)
{
    EXPECT_TRUE(set({item("a"), item("b")}));
    const unsigned revision = layout.revision();
    EXPECT_FALSE(set({item("a"), item("b")}));
    EXPECT_EQ(layout.revision(), revision);
    auto marked = item("b");
    marked->state = 1;
    EXPECT_TRUE(set({item("a"), marked}));
    EXPECT_GT(layout.revision(), revision);
}

TEST_F(MenuLayoutTest, AChangeInASubmenuIsOne)
{
    const auto withSubmenuOf = [&](const std::string& title) {
        auto parent = item("more");
        auto submenu = std::make_shared<Menu>();
        submenu->insertItem(item(title), 0);
        parent->submenu = submenu;
        return parent;
    };
    EXPECT_TRUE(set({item("a"), withSubmenuOf("b")}));
    EXPECT_FALSE(set({item("a"), withSubmenuOf("b")}));
    EXPECT_EQ(layout.row(idOf("b"))->parent, idOf("more"));
    EXPECT_TRUE(set({item("a"), withSubmenuOf("c")}));
    EXPECT_TRUE(set({item("a"), item("more"), item("c")})) << "it has moved out of it";
}

TEST_F(MenuLayoutTest, AnEntryKeepsItsNumberWhenOthersComeAndGo)
{
    set({item("a", "host-a"), item("b", "host-b")});
    const int b = idOf("b");
    set({item("b renamed", "host-b"), item("c", "host-c")});
    EXPECT_EQ(idOf("b renamed"), b);
    EXPECT_NE(idOf("c"), b);
}

TEST_F(MenuLayoutTest, ANumberNeverMeansAnotherEntry)
{
    set({item("a", "host-a")});
    const int a = idOf("a");
    set({item("b", "host-b")});
    EXPECT_NE(idOf("b"), a);
    EXPECT_FALSE(layout.choose(a));
    EXPECT_TRUE(target->chosen.empty());
}

TEST_F(MenuLayoutTest, TwoEntriesOfOneNameHaveTheirOwnNumbers)
{
    set({item("a", "same"), item("a", "same")});
    ASSERT_EQ(layout.rows().size(), 2u);
    EXPECT_NE(layout.rows()[0].id, layout.rows()[1].id);
}

TEST_F(MenuLayoutTest, AChosenEntryIsAskedOnceMore)
{
    set({item("a")});
    EXPECT_TRUE(layout.choose(idOf("a")));
    EXPECT_EQ(target->chosen, std::vector<std::string>{"a"});
    target->chosen.clear();
    target->answers = false;
    EXPECT_FALSE(layout.choose(idOf("a")));
    target.reset();
    EXPECT_FALSE(layout.choose(idOf("a")));
    EXPECT_FALSE(layout.choose(0));
    EXPECT_FALSE(layout.choose(-7));
}

} // namespace
