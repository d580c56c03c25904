#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/Notifications/LoopbackNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeDistributedNotificationCenter.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace farview
{
namespace
{

/// Posts a last notification and waits for it: everything before it has been delivered then.
void settleInRealTime(DistributedNotificationCenter& center)
{
    bool arrived = false;
    const auto observer = std::make_shared<int>(0);
    center.addObserver(
        observer, [&](const Notification&) { arrived = true; }, "Sentinel", "");
    center.postNotificationName("Sentinel", "", {}, 3);
    EXPECT_TRUE(waitUntil([&] { return arrived; }));
    center.removeObserver(observer);
}

struct FakeBench {
    FakeRunLoop loop;
    FakeDistributedNotificationCenter center{loop};

    void settle() { loop.runUntilIdle(); }
};

struct DBusBench {
    PrivateBus privateBus;
    SessionBusScope scope{privateBus.address()};
    FakeLog log;
    QtRunLoop loop;
    TestBus bus{log};
    DBusNotificationCenter center{bus, loop, log};

    void settle() { settleInRealTime(center); }
};

struct LoopbackBench {
    QtRunLoop loop;
    LoopbackNotificationCenter center{loop};

    void settle() { settleInRealTime(center); }
};

template <typename Bench> class DistributedNotificationCenterContract : public testing::Test
{
protected:
    DistributedNotificationCenter& center() { return mBench.center; }
    void settle() { mBench.settle(); }
    void observe(const std::string& name, const std::string& object = "")
    {
        center().addObserver(mObserver, note(), name, object);
    }
    /// Notes "name" or "name=value of the key v".
    NotificationHandler note()
    {
        return [this](const Notification& notification) {
            const auto* value = notification.text("v");
            mNotes.push_back(notification.name() + (value ? "=" + *value : ""));
        };
    }

    Bench mBench;
    std::vector<std::string> mNotes;
    std::shared_ptr<int> mObserver = std::make_shared<int>(0);
};

using Benches = testing::Types<FakeBench, DBusBench, LoopbackBench>;
TYPED_TEST_SUITE(DistributedNotificationCenterContract, Benches);
using Notes = std::vector<std::string>;

TYPED_TEST(DistributedNotificationCenterContract, OnesOwnPostComesBackOnALaterTurnAndOnce)
{
    this->observe("Name");
    this->center().postNotificationName("Name", "", {{"v", "1"}}, 3);
    EXPECT_EQ(this->mNotes, Notes{});
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Name=1"});
}

TYPED_TEST(DistributedNotificationCenterContract, PostsArriveInTheirOrderAcrossNames)
{
    this->observe("One");
    this->observe("Two");
    Notes expected;
    for (int index = 0; index < 50; ++index) {
        const std::string name = index % 3 == 0 ? "One" : "Two";
        this->center().postNotificationName(name, "", {{"v", std::to_string(index)}}, 3);
        expected.push_back(name + "=" + std::to_string(index));
    }
    this->settle();
    EXPECT_EQ(this->mNotes, expected);
}

TYPED_TEST(DistributedNotificationCenterContract, TheSameRegistrationMadeTwiceIsCalledTwice)
{
    this->observe("Name");
    this->observe("Name");
    this->center().postNotificationName("Name", "", {}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, (Notes{"Name", "Name"}));
}

TYPED_TEST(DistributedNotificationCenterContract, AnObserverOfAnObjectHearsOnlyItsPosts)
{
    this->observe("Name", "mine");
    this->center().postNotificationName("Name", "other", {{"v", "1"}}, 3);
    this->center().postNotificationName("Name", "", {{"v", "2"}}, 3);
    this->center().postNotificationName("Name", "mine", {{"v", "3"}}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Name=3"});
}

TYPED_TEST(DistributedNotificationCenterContract, AnObserverOfAnyObjectHearsAll)
{
    this->observe("Name");
    this->center().postNotificationName("Name", "other", {}, 3);
    this->center().postNotificationName("Name", "", {}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, (Notes{"Name", "Name"}));
}

TYPED_TEST(DistributedNotificationCenterContract, NothingReachesAnObserverRemovedAfterThePost)
{
    this->observe("Name");
    this->center().postNotificationName("Name", "", {}, 3);
    this->center().removeObserver(this->mObserver);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(DistributedNotificationCenterContract, NothingReachesAnObserverThatDiedAfterThePost)
{
    this->observe("Name");
    this->center().postNotificationName("Name", "", {}, 3);
    this->mObserver.reset();
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(DistributedNotificationCenterContract, ARemovalByNameKeepsTheOtherNames)
{
    this->observe("One");
    this->observe("Two");
    this->center().removeObserver(this->mObserver, "One", "");
    this->center().postNotificationName("One", "", {}, 3);
    this->center().postNotificationName("Two", "", {}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Two"});
}

TYPED_TEST(DistributedNotificationCenterContract, ARegistrationMadeAgainIsServedAgain)
{
    this->observe("Name");
    this->center().removeObserver(this->mObserver, "Name", "");
    this->observe("Name");
    this->center().postNotificationName("Name", "", {}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Name"});
}

TYPED_TEST(DistributedNotificationCenterContract, ASuspensionKeepsTheLatestOfEachName)
{
    this->observe("One");
    this->observe("Two");
    this->center().setSuspended(true);
    for (const char* value : {"1", "2", "3"}) {
        this->center().postNotificationName("One", "", {{"v", value}}, 2);
        this->center().postNotificationName("Two", "", {{"v", value}}, 2);
    }
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{});
    this->center().setSuspended(false);
    EXPECT_EQ(this->mNotes, Notes{});
    this->settle();
    EXPECT_EQ(this->mNotes, (Notes{"One=3", "Two=3"}));
}

TYPED_TEST(DistributedNotificationCenterContract, ImmediateDeliveryPassesASuspension)
{
    this->observe("Name");
    this->center().setSuspended(true);
    this->center().postNotificationName("Name", "", {{"v", "now"}}, 3);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Name=now"});
    this->center().setSuspended(false);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{"Name=now"});
}

TYPED_TEST(DistributedNotificationCenterContract, NothingKeptReachesAnObserverRemovedMeanwhile)
{
    this->observe("Name");
    this->center().setSuspended(true);
    this->center().postNotificationName("Name", "", {}, 2);
    this->settle();
    this->center().removeObserver(this->mObserver);
    this->center().setSuspended(false);
    this->settle();
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(DistributedNotificationCenterContract, AHandlerMayPostAndRemoveItself)
{
    this->center().addObserver(
        this->mObserver,
        [this](const Notification&) {
            this->mNotes.push_back("handled");
            this->center().removeObserver(this->mObserver, "Name", "");
            this->center().postNotificationName("Name", "", {}, 3);
            this->center().postNotificationName("Next", "", {}, 3);
        },
        "Name", "");
    this->observe("Next");
    this->center().postNotificationName("Name", "", {}, 3);
    EXPECT_TRUE(this->mNotes.empty());
    this->settle();
    this->settle();
    EXPECT_EQ(this->mNotes, (Notes{"handled", "Next"}));
}

TYPED_TEST(DistributedNotificationCenterContract, TextsOfEveryKindArriveAsTheyWere)
{
    const DistributedNotificationCenter::TextUserInfo sent = {{"empty", ""},
                                                              {"", "empty key"},
                                                              {"markup", "<b>&amp;'\""},
                                                              {"umlaut", "Gerät 屏幕 🖥"}};
    UserInfo received;
    this->center().addObserver(
        this->mObserver,
        [&](const Notification& notification) { received = notification.userInfo(); }, "Name", "");
    this->center().postNotificationName("Name", "", sent, 3);
    this->settle();
    EXPECT_EQ(received, UserInfo(sent.begin(), sent.end()));
}

} // namespace
} // namespace farview
