#include "Controls/Menu.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Menu;
using farview::MenuItem;
using farview::Object;
using farview::Represented;
using farview::representsSame;
using testing::ElementsAre;

namespace
{

class Number : public Object
{
public:
    explicit Number(int number) : mNumber(number) {}
    bool isEqual(const Object& other) const override
    {
        const auto* number = dynamic_cast<const Number*>(&other);
        return number && number->mNumber == mNumber;
    }

private:
    int mNumber;
};

std::shared_ptr<Object> number(int value) { return std::make_shared<Number>(value); }

TEST(Represented, ComparesTextsByValueAndObjectsByTheirOwnWord)
{
    EXPECT_TRUE(representsSame("Desk", "Desk"));
    EXPECT_FALSE(representsSame("Desk", "Sofa"));
    EXPECT_TRUE(representsSame(number(1), number(1)));
    EXPECT_FALSE(representsSame(number(1), number(2)));
}

TEST(Represented, ATextIsNoObjectAndNothingIsOnlyNothing)
{
    EXPECT_FALSE(representsSame("1", number(1)));
    EXPECT_TRUE(representsSame({}, {}));
    EXPECT_FALSE(representsSame({}, ""));
    EXPECT_FALSE(representsSame(number(1), {}));
    EXPECT_FALSE(representsSame(std::shared_ptr<Object>(), number(1)));
}

TEST(MenuItem, CanBeChosenOnlyWithATargetThatAnswers)
{
    MenuItem item;
    EXPECT_FALSE(item.canBeChosen());
    auto recorder = std::make_shared<Recorder>();
    item.target = recorder;
    EXPECT_FALSE(item.canBeChosen());
    item.action = Recorder::act;
    EXPECT_TRUE(item.canBeChosen());
    item.enabled = false;
    EXPECT_TRUE(item.canBeChosen()) << "the target decides, not what the builder set";
    recorder->answers = false;
    EXPECT_FALSE(item.canBeChosen());
    recorder->answers = true;
    recorder.reset();
    EXPECT_FALSE(item.canBeChosen());
}

TEST(Menu, InsertsAtAPlaceAndKeepsWithinItsBounds)
{
    Menu menu;
    const auto insert = [&](const char* title, int index) {
        auto item = std::make_shared<MenuItem>();
        item->title = title;
        menu.insertItem(item, index);
    };
    insert("middle", 0);
    insert("first", -5);
    insert("last", 100);
    insert("second", 1);
    std::vector<std::string> titles;
    for (const auto& item : menu.items())
        titles.push_back(item->title);
    EXPECT_THAT(titles, ElementsAre("first", "second", "middle", "last"));
    EXPECT_EQ(menu.itemAtIndex(3)->title, "last");
    EXPECT_EQ(menu.itemAtIndex(4), nullptr);
    EXPECT_EQ(menu.itemAtIndex(-1), nullptr);
}

} // namespace
