#include "Platform/Fake/FakeDistributedNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::FakeDistributedNotificationCenter;
using farview::Notification;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class FakeDistributedNotificationCenterTest : public testing::Test
{
protected:
    void observe(const std::string& name)
    {
        center.addObserver(
            observer,
            [this](const Notification& heard) {
                const auto* text = heard.text("key");
                said.push_back(heard.name() + (text ? "=" + *text : ""));
            },
            name, "");
    }

    farview::FakeRunLoop loop;
    FakeDistributedNotificationCenter center{loop};
    std::shared_ptr<int> observer = std::make_shared<int>();
    std::vector<std::string> said;
};

TEST_F(FakeDistributedNotificationCenterTest, DeliversAPostToItsOwnProcessOnALaterTurn)
{
    observe("Name");
    center.postNotificationName("Name", "", {{"key", "value"}}, 3);
    EXPECT_THAT(said, IsEmpty());
    loop.runUntilIdle();
    EXPECT_THAT(said, ElementsAre("Name=value"));
}

TEST_F(FakeDistributedNotificationCenterTest, RecordsEveryPostWithItsOptions)
{
    center.postNotificationName("One", "", {{"key", "value"}}, 3);
    center.postNotificationName("Two", "", {}, 2);
    center.postFromAnotherProcess("Three");
    using Post = FakeDistributedNotificationCenter::Post;
    EXPECT_THAT(center.posts(),
                ElementsAre(Post{"One", "", {{"key", "value"}}, 3}, Post{"Two", "", {}, 2}));
    EXPECT_EQ(center.countOf("Two"), 1);
}

TEST_F(FakeDistributedNotificationCenterTest, KeepsTheOrderOfPosts)
{
    observe("One");
    observe("Two");
    center.postFromAnotherProcess("Two");
    center.postNotificationName("One", "", {}, 3);
    center.postFromAnotherProcess("Two");
    loop.runUntilIdle();
    EXPECT_THAT(said, ElementsAre("Two", "One", "Two"));
}

TEST_F(FakeDistributedNotificationCenterTest, AnObserverRemovedAfterThePostHearsNothing)
{
    observe("Name");
    center.postNotificationName("Name", "", {}, 3);
    center.removeObserver(observer, "Name", "");
    loop.runUntilIdle();
    EXPECT_THAT(said, IsEmpty());
}

TEST_F(FakeDistributedNotificationCenterTest, ADeadObserverHearsNothing)
{
    observe("Name");
    center.postNotificationName("Name", "", {}, 3);
    observer.reset();
    loop.runUntilIdle();
    EXPECT_THAT(said, IsEmpty());
    EXPECT_EQ(center.registrationCount(), 0U);
}

TEST_F(FakeDistributedNotificationCenterTest, ASuspendedOneKeepsTheLatestOfEachName)
{
    observe("Name");
    observe("Other");
    center.setSuspended(true);
    center.postFromAnotherProcess("Name", {{"key", "old"}}, 2);
    center.postFromAnotherProcess("Other", {}, 2);
    center.postFromAnotherProcess("Name", {{"key", "new"}}, 2);
    loop.runUntilIdle();
    EXPECT_THAT(said, IsEmpty());
    center.setSuspended(false);
    loop.runUntilIdle();
    EXPECT_THAT(said, ElementsAre("Other", "Name=new"));
}

TEST_F(FakeDistributedNotificationCenterTest, ASuspendedOneDeliversWhatIsMarkedImmediate)
{
    observe("Name");
    center.setSuspended(true);
    center.postFromAnotherProcess("Name", {}, 3);
    loop.runUntilIdle();
    EXPECT_THAT(said, ElementsAre("Name"));
}

TEST_F(FakeDistributedNotificationCenterTest, PostsAreLostWhileDisconnectedAndTheReturnIsTold)
{
    observe("Name");
    int reconnections = 0;
    auto subscription = center.observeReconnection([&] { ++reconnections; });
    center.disconnect();
    center.postFromAnotherProcess("Name");
    center.reconnect();
    EXPECT_EQ(reconnections, 0);
    loop.runUntilIdle();
    EXPECT_EQ(reconnections, 1);
    EXPECT_THAT(said, IsEmpty());
    subscription.end();
    center.reconnect();
    loop.runUntilIdle();
    EXPECT_EQ(reconnections, 1);
}

TEST(FakeDistributedNotificationCenterLife, NothingIsDeliveredAfterItsEnd)
{
    farview::FakeRunLoop loop;
    auto center = std::make_unique<FakeDistributedNotificationCenter>(loop);
    auto subscription = center->observeReconnection([] {});
    center->postFromAnotherProcess("Name");
    center.reset();
    loop.runUntilIdle();
    subscription.end();
    EXPECT_EQ(loop.pendingCount(), 0U);
}

} // namespace
