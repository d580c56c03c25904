#include "Platform/Types/Subscription.h"

#include <gtest/gtest.h>

#include <optional>

using farview::Subscription;

namespace
{

TEST(Subscription, EndsOnceWithItsLife)
{
    int ends = 0;
    {
        const Subscription subscription([&] { ++ends; });
        EXPECT_EQ(ends, 0);
    }
    EXPECT_EQ(ends, 1);
}

TEST(Subscription, EndsOnceWhenAsked)
{
    int ends = 0;
    {
        Subscription subscription([&] { ++ends; });
        subscription.end();
        subscription.end();
    }
    EXPECT_EQ(ends, 1);
}

TEST(Subscription, MovesItsDutyAlong)
{
    int ends = 0;
    std::optional<Subscription> first(Subscription([&] { ++ends; }));
    Subscription second = std::move(*first);
    first.reset();
    EXPECT_EQ(ends, 0);
    second = Subscription();
    EXPECT_EQ(ends, 1);
}

} // namespace
