#include "Platform/LocalNotificationCenter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace farview
{
namespace
{

// The in-process centre has one body on every platform, so there is one to try here.
class NotificationCenterContract : public testing::Test
{
protected:
    NotificationHandler note(std::string text)
    {
        return [this, text](const Notification& notification) {
            mNotes.push_back(text + ":" + notification.name());
        };
    }

    LocalNotificationCenter mCenter;
    std::vector<std::string> mNotes;
    std::shared_ptr<int> mObserver = std::make_shared<int>(0);
    Object mSender;
};

using Notes = std::vector<std::string>;

TEST_F(NotificationCenterContract, DeliversInsideThePostInTheOrderOfRegistration)
{
    mCenter.addObserver(mObserver, note("a"), "Name", nullptr);
    mCenter.addObserver(mObserver, note("b"), "Name", nullptr);
    mCenter.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(mNotes, (Notes{"a:Name", "b:Name"}));
}

TEST_F(NotificationCenterContract, TheSameRegistrationMadeTwiceIsCalledTwice)
{
    mCenter.addObserver(mObserver, note("a"), "Name", &mSender);
    mCenter.addObserver(mObserver, note("a"), "Name", &mSender);
    mCenter.postNotificationName("Name", &mSender, {});
    EXPECT_EQ(mNotes, (Notes{"a:Name", "a:Name"}));
}

TEST_F(NotificationCenterContract, AnObserverOfOneSenderHearsNoOther)
{
    const Object other;
    mCenter.addObserver(mObserver, note("a"), "Name", &mSender);
    mCenter.postNotificationName("Name", &other, {});
    mCenter.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(mNotes, Notes{});
}

TEST_F(NotificationCenterContract, ARemovalByNameKeepsTheOtherNames)
{
    mCenter.addObserver(mObserver, note("a"), "One", nullptr);
    mCenter.addObserver(mObserver, note("a"), "Two", nullptr);
    mCenter.removeObserver(mObserver, "One", nullptr);
    mCenter.postNotificationName("One", nullptr, {});
    mCenter.postNotificationName("Two", nullptr, {});
    EXPECT_EQ(mNotes, Notes{"a:Two"});
}

TEST_F(NotificationCenterContract, NothingReachesAnObserverRemovedInTheMiddleOfAPost)
{
    auto second = std::make_shared<int>(0);
    mCenter.addObserver(
        mObserver, [&](const Notification&) { mCenter.removeObserver(second); }, "Name", nullptr);
    mCenter.addObserver(second, note("removed"), "Name", nullptr);
    mCenter.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(mNotes, Notes{});
}

TEST_F(NotificationCenterContract, NothingReachesAnObserverThatDiedInTheMiddleOfAPost)
{
    auto second = std::make_shared<int>(0);
    mCenter.addObserver(
        mObserver, [&](const Notification&) { second.reset(); }, "Name", nullptr);
    mCenter.addObserver(second, note("dead"), "Name", nullptr);
    mCenter.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(mNotes, Notes{});
    EXPECT_EQ(mCenter.registrationCount(), 1u);
}

} // namespace
} // namespace farview
