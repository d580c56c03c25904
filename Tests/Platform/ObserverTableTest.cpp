#include "Platform/ObserverTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Notification;
using farview::ObserverTable;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ObserverTableTest : public testing::Test
{
protected:
    farview::NotificationHandler note(const std::string& word)
    {
        return [this, word](const Notification&) { said.push_back(word); };
    }
    void deliver(const std::string& name, const std::string& object = {})
    {
        table.deliver(Notification(name, nullptr, {}), object);
    }

    ObserverTable<std::string> table;
    std::shared_ptr<int> one = std::make_shared<int>();
    std::shared_ptr<int> two = std::make_shared<int>();
    std::vector<std::string> said;
};

TEST_F(ObserverTableTest, CallsInOrderOfRegistration)
{
    table.add(one, note("one"), "Name", "");
    table.add(two, note("two"), "Name", "");
    table.add(one, note("other"), "Other", "");
    deliver("Name");
    EXPECT_THAT(said, ElementsAre("one", "two"));
}

TEST_F(ObserverTableTest, CallsADoubleRegistrationTwice)
{
    table.add(one, note("one"), "Name", "");
    table.add(one, note("one"), "Name", "");
    deliver("Name");
    EXPECT_THAT(said, ElementsAre("one", "one"));
}

TEST_F(ObserverTableTest, ARegistrationForAnObjectHearsThatObjectOnly)
{
    table.add(one, note("only"), "Name", "poster");
    table.add(one, note("any"), "Name", "");
    deliver("Name", "somebody");
    EXPECT_THAT(said, ElementsAre("any"));
    deliver("Name", "poster");
    EXPECT_THAT(said, ElementsAre("any", "only", "any"));
}

TEST_F(ObserverTableTest, RemovingAnObserverEndsAllItsRegistrations)
{
    table.add(one, note("one"), "Name", "");
    table.add(one, note("one"), "Other", "poster");
    table.add(two, note("two"), "Name", "");
    table.remove(one);
    deliver("Name");
    deliver("Other", "poster");
    EXPECT_THAT(said, ElementsAre("two"));
    EXPECT_EQ(table.size(), 1U);
}

TEST_F(ObserverTableTest, RemovingByNameLeavesTheOthers)
{
    table.add(one, note("name"), "Name", "");
    table.add(one, note("other"), "Other", "");
    table.remove(one, "Name", "");
    deliver("Name");
    deliver("Other");
    EXPECT_THAT(said, ElementsAre("other"));
}

TEST_F(ObserverTableTest, RemovingForAnObjectLeavesTheRegistrationForAnyObject)
{
    table.add(one, note("only"), "Name", "poster");
    table.add(one, note("any"), "Name", "");
    table.remove(one, "Name", "poster");
    deliver("Name", "poster");
    EXPECT_THAT(said, ElementsAre("any"));
}

TEST_F(ObserverTableTest, AnObserverRemovedDuringTheDeliveryHearsNothingMore)
{
    table.add(
        one, [this](const Notification&) { table.remove(two); }, "Name", "");
    table.add(two, note("two"), "Name", "");
    deliver("Name");
    EXPECT_THAT(said, IsEmpty());
}

TEST_F(ObserverTableTest, AnObserverThatDiesDuringTheDeliveryHearsNothingMore)
{
    table.add(
        one, [this](const Notification&) { two.reset(); }, "Name", "");
    table.add(two, note("two"), "Name", "");
    deliver("Name");
    EXPECT_THAT(said, IsEmpty());
    EXPECT_EQ(table.size(), 1U) << "the dead one's registration is swept away";
}

TEST_F(ObserverTableTest, AnObserverAddedDuringTheDeliveryHearsTheNextOne)
{
    table.add(
        one, [this](const Notification&) { table.add(two, note("two"), "Name", ""); }, "Name", "");
    deliver("Name");
    EXPECT_THAT(said, IsEmpty());
    deliver("Name");
    EXPECT_THAT(said, ElementsAre("two"));
}

TEST_F(ObserverTableTest, KeepsAnObserverAliveWhileItIsTold)
{
    const std::weak_ptr<int> watched = one;
    bool alive = false;
    table.add(
        one,
        [&](const Notification&) {
            one.reset();
            alive = !watched.expired();
        },
        "Name", "");
    deliver("Name");
    EXPECT_TRUE(alive);
}

TEST_F(ObserverTableTest, KnowsWhetherAnyoneAliveObservesAName)
{
    table.add(one, note("one"), "Name", "");
    EXPECT_TRUE(table.observes("Name"));
    EXPECT_FALSE(table.observes("Other"));
    one.reset();
    EXPECT_FALSE(table.observes("Name"));
}

} // namespace
