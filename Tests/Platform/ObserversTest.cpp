#include "Platform/Types/Observers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

using farview::Observers;
using farview::Subscription;
using testing::ElementsAre;

namespace
{

TEST(Observers, AreToldInTheOrderInWhichTheyWereAdded)
{
    Observers<int> observers;
    std::vector<int> told;
    const auto first = observers.add([&](int value) { told.push_back(value); });
    const auto second = observers.add([&](int value) { told.push_back(-value); });
    observers.tell(1);
    observers.tell(2);
    EXPECT_THAT(told, ElementsAre(1, -1, 2, -2));
}

TEST(Observers, AnEndedSubscriptionHearsNothing)
{
    Observers<> observers;
    int told = 0;
    auto subscription = observers.add([&] { ++told; });
    observers.tell();
    subscription.end();
    observers.tell();
    EXPECT_EQ(told, 1);
}

TEST(Observers, OneMayEndAnothersSubscriptionAndItsOwn)
{
    Observers<> observers;
    int told = 0;
    Subscription first;
    Subscription second;
    first = observers.add([&] {
        ++told;
        second.end();
        first.end();
    });
    second = observers.add([&] { ++told; });
    observers.tell();
    observers.tell();
    EXPECT_EQ(told, 1);
}

TEST(Observers, OneThatIsAddedMeanwhileIsToldNextTime)
{
    Observers<> observers;
    int told = 0;
    std::optional<Subscription> second;
    const auto first = observers.add([&] {
        if (!second)
            second = observers.add([&] { ++told; });
    });
    observers.tell();
    EXPECT_EQ(told, 0);
    observers.tell();
    EXPECT_EQ(told, 1);
}

TEST(Observers, OneMayEndTheirLifeAndTheNextIsStillTold)
{
    std::optional<Observers<>> observers(std::in_place);
    int told = 0;
    const auto first = observers->add([&] { observers.reset(); });
    const auto second = observers->add([&] { ++told; });
    observers->tell();
    EXPECT_FALSE(observers.has_value());
    EXPECT_EQ(told, 1);
}

TEST(Observers, ASubscriptionMayOutliveThem)
{
    std::optional<Observers<>> observers(std::in_place);
    auto subscription = observers->add([] {});
    observers.reset();
    EXPECT_NO_THROW(subscription.end());
}

} // namespace
