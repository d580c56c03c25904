#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <QDBusArgument>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace farview
{
namespace
{

using Notes = std::vector<std::string>;
using namespace std::chrono_literals;

/// A centre with a connection of its own, as each process has one.
struct Program {
    FakeLog log;
    QtRunLoop loop;
    TestBus bus{log};
    DBusNotificationCenter center{bus, loop, log};
    std::shared_ptr<int> observer = std::make_shared<int>(0);
    Notes notes;
    int reconnections = 0;
    Subscription reconnection = center.observeReconnection([this] { ++reconnections; });

    void observe(const std::string& name)
    {
        center.addObserver(
            observer,
            [this](const Notification& notification) {
                const auto* value = notification.text("v");
                notes.push_back(notification.name() + (value ? "=" + *value : ""));
            },
            name, "");
        waitForSubscription();
    }
    /// The bus knows of every subscription before it answers a question that comes after it.
    void waitForSubscription() { bus.hasOwner("org.freedesktop.DBus"); }
    bool waitForNotes(std::size_t count)
    {
        return waitUntil([&] { return notes.size() >= count; });
    }
};

class DBusNotificationCenterTest : public testing::Test
{
protected:
    /// Everything posted on the bus before has been delivered afterwards.
    void settle()
    {
        const auto before = mProgram.notes.size();
        mProgram.observe("Sentinel");
        mProgram.center.postNotificationName("Sentinel", "", {}, 3);
        ASSERT_TRUE(mProgram.waitForNotes(before + 1));
        std::erase(mProgram.notes, "Sentinel");
        mProgram.center.removeObserver(mProgram.observer, "Sentinel", "");
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    Program mProgram;
};

QVariant dictionary(const QMap<QString, QString>& texts)
{
    QDBusArgument map;
    map.beginMap(QMetaType(QMetaType::QString), QMetaType(QMetaType::QString));
    for (auto each = texts.begin(); each != texts.end(); ++each) {
        map.beginMapEntry();
        map << each.key() << each.value();
        map.endMapEntry();
    }
    map.endMap();
    return QVariant::fromValue(map);
}

QDBusMessage posted(const QVariantList& arguments)
{
    auto message =
        QDBusMessage::createSignal("/com/quillon/DistributedNotificationCenter",
                                   "com.quillon.DistributedNotificationCenter", "Posted");
    message.setArguments(arguments);
    return message;
}

TEST_F(DBusNotificationCenterTest, APostReachesAnotherProgramOnceAndInOrder)
{
    Program other;
    mProgram.observe("Name");
    Notes expected;
    for (int index = 0; index < 200; ++index) {
        other.center.postNotificationName("Name", "", {{"v", std::to_string(index)}}, 3);
        expected.push_back("Name=" + std::to_string(index));
    }
    ASSERT_TRUE(mProgram.waitForNotes(200));
    settle();
    EXPECT_EQ(mProgram.notes, expected);
}

TEST_F(DBusNotificationCenterTest, WhatIsPostedBeforeTheBusHasAnsweredArrives)
{
    mProgram.observe("Name");
    SessionBus bus(mProgram.log);
    DBusNotificationCenter center(bus, mProgram.loop, mProgram.log);
    center.postNotificationName("Name", "", {{"v", "early"}}, 3);
    EXPECT_FALSE(bus.isConnected());
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"Name=early"});
}

TEST_F(DBusNotificationCenterTest, AStoppedSubscriberGetsEverythingWhenItGoesOn)
{
    mProgram.observe("Ready");
    mProgram.observe("Answer");
    ChildProcess peer({FARVIEW_TEST_PEER, "answer"});
    ASSERT_TRUE(mProgram.waitForNotes(1));
    peer.sendSignal(SIGSTOP);
    Notes expected{"Ready"};
    for (int index = 0; index < 2000; ++index) {
        mProgram.center.postNotificationName("Ask", "", {{"v", std::to_string(index)}}, 3);
        expected.push_back("Answer=" + std::to_string(index));
    }
    settle(); // the bus serves everybody else meanwhile
    EXPECT_EQ(mProgram.notes, Notes{"Ready"});
    peer.sendSignal(SIGCONT);
    ASSERT_TRUE(mProgram.waitForNotes(expected.size()));
    EXPECT_EQ(mProgram.notes, expected);
}

TEST_F(DBusNotificationCenterTest, MalformedPostsAreDroppedWithOneLineOfLog)
{
    mProgram.observe("Name");
    auto stranger = QDBusConnection::connectToBus(QString::fromStdString(mPrivateBus.address()),
                                                  "stranger-malformed");
    stranger.send(posted({"Name"}));
    stranger.send(posted({"Name", "", dictionary({}), 3u}));
    stranger.send(posted({"Name", "", dictionary({}), "3", ""}));
    stranger.send(posted({"Name", "", QVariantMap{{"v", 1}}, 3u, ""}));
    stranger.send(posted({"Name", "", dictionary({}), 3u, "", "more"}));
    stranger.send(posted({"Name", "", dictionary({{"v", "good"}}), 3u, ""}));
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"Name=good"});
    ASSERT_EQ(mProgram.log.lines().size(), 1u);
    EXPECT_TRUE(mProgram.log.contains("Dropped a notification"));
    QDBusConnection::disconnectFromBus("stranger-malformed");
}

TEST_F(DBusNotificationCenterTest, MegabytesAreDropped)
{
    mProgram.observe("Name");
    auto stranger = QDBusConnection::connectToBus(QString::fromStdString(mPrivateBus.address()),
                                                  "stranger-large");
    const QString megabyte(1024 * 1024, 'x');
    QMap<QString, QString> many;
    for (int index = 0; index < 50'000; ++index)
        many.insert(QString::number(index), "x");
    stranger.send(posted({"Name", "", dictionary({{"v", megabyte}}), 3u, ""}));
    stranger.send(posted({"Name", megabyte, dictionary({}), 3u, ""}));
    stranger.send(posted({"Name", "", dictionary({}), 3u, megabyte}));
    stranger.send(posted({"Name", "", dictionary(many), 3u, ""}));
    stranger.send(posted({"Name", "", dictionary({{"v", "good"}}), 3u, ""}));
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"Name=good"});
    EXPECT_TRUE(mProgram.log.contains("too large"));
    QDBusConnection::disconnectFromBus("stranger-large");
}

TEST_F(DBusNotificationCenterTest, WhatIsTooLargeIsNotPosted)
{
    mProgram.observe("Name");
    mProgram.center.postNotificationName("Name", "", {{"v", std::string(100'000, 'x')}}, 3);
    mProgram.center.postNotificationName("Name", "", {{"v", "good"}}, 3);
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"Name=good"});
    EXPECT_TRUE(mProgram.log.contains("Not posting Name"));
}

TEST_F(DBusNotificationCenterTest, AnotherSessionsPostIsForUsOnlyWhenItIsForAll)
{
    const ScopedEnvironment ours("XDG_SESSION_ID", "1");
    Program here;
    here.observe("Name");
    const ScopedEnvironment theirs("XDG_SESSION_ID", "2");
    Program there;
    const ScopedEnvironment nobodys("XDG_SESSION_ID", nullptr);
    Program anywhere;
    there.center.postNotificationName("Name", "", {{"v", "theirs"}}, 1);
    there.center.postNotificationName("Name", "", {{"v", "for all"}}, 3);
    ASSERT_TRUE(here.waitForNotes(1));
    anywhere.center.postNotificationName("Name", "", {{"v", "unknown"}}, 1);
    here.center.postNotificationName("Name", "", {{"v", "ours"}}, 1);
    ASSERT_TRUE(here.waitForNotes(3));
    std::sort(here.notes.begin(), here.notes.end());
    EXPECT_EQ(here.notes, (Notes{"Name=for all", "Name=ours", "Name=unknown"}));
}

TEST_F(DBusNotificationCenterTest, AfterARestartOfTheBusEverybodyIsSubscribedAgain)
{
    Program other;
    mProgram.observe("Name");
    mPrivateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return !mProgram.bus.isConnected() && !other.bus.isConnected(); }));
    other.center.postNotificationName("Name", "", {{"v", "lost"}}, 3);
    mPrivateBus.start();
    ASSERT_TRUE(waitUntil([&] { return mProgram.reconnections == 1 && other.reconnections == 1; }));
    mProgram.waitForSubscription();
    other.center.postNotificationName("Name", "", {{"v", "again"}}, 3);
    ASSERT_TRUE(mProgram.waitForNotes(1));
    settle();
    EXPECT_EQ(mProgram.notes, Notes{"Name=again"});
    EXPECT_EQ(mProgram.reconnections, 1);
}

TEST_F(DBusNotificationCenterTest, ObserversAddedAndRemovedWithoutABusAreServedRightLater)
{
    mProgram.observe("Old");
    mPrivateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return !mProgram.bus.isConnected(); }));
    mProgram.center.removeObserver(mProgram.observer, "Old", "");
    mProgram.observe("New");
    mPrivateBus.start();
    ASSERT_TRUE(waitUntil([&] { return mProgram.reconnections == 1; }));
    mProgram.center.postNotificationName("Old", "", {}, 3);
    mProgram.center.postNotificationName("New", "", {}, 3);
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"New"});
}

TEST_F(DBusNotificationCenterTest, AnEndedSubscriptionHearsOfNoReconnection)
{
    mProgram.reconnection.end();
    mPrivateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return !mProgram.bus.isConnected(); }));
    mPrivateBus.start();
    ASSERT_TRUE(waitUntil([&] { return mProgram.bus.isConnected(); }));
    EXPECT_EQ(mProgram.reconnections, 0);
}

TEST_F(DBusNotificationCenterTest, ADeadObserverIsForgottenByTheBusToo)
{
    mProgram.observe("Name");
    mProgram.observer = std::make_shared<int>(0);
    mProgram.center.postNotificationName("Name", "", {}, 3);
    settle();
    EXPECT_EQ(mProgram.notes, Notes{});
    mProgram.observe("Name");
    mProgram.center.postNotificationName("Name", "", {}, 3);
    ASSERT_TRUE(mProgram.waitForNotes(1));
    EXPECT_EQ(mProgram.notes, Notes{"Name"});
}

TEST(DBusNotificationCenter, WithoutARuntimeFolderNothingIsLostButThePosts)
{
    Program program;
    program.observe("Name");
    program.center.postNotificationName("Name", "", {}, 3);
    program.center.setSuspended(true);
    program.center.setSuspended(false);
    runLoopFor(50ms);
    program.center.removeObserver(program.observer);
    EXPECT_EQ(program.notes, Notes{});
    EXPECT_TRUE(program.log.contains("No session bus"));
    EXPECT_EQ(program.log.lines().size(), 1u);
}

TEST(DBusNotificationCenter, ABusThatComesLaterIsUsed)
{
    PrivateBus privateBus;
    privateBus.stop();
    const ScopedEnvironment folder("XDG_RUNTIME_DIR", privateBus.folder().path().c_str());
    Program program;
    program.observe("Name");
    program.center.postNotificationName("Name", "", {{"v", "lost"}}, 3);
    privateBus.start();
    ASSERT_TRUE(waitUntil([&] { return program.reconnections == 1; }));
    program.center.postNotificationName("Name", "", {{"v", "found"}}, 3);
    ASSERT_TRUE(program.waitForNotes(1));
    EXPECT_EQ(program.notes, Notes{"Name=found"});
}

TEST(DBusNotificationCenter, AnotherUsersPostIsDropped)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can run a process as another user";
    PrivateBus privateBus(PrivateBus::Guests::everyone);
    const SessionBusScope scope(privateBus.address());
    const std::string program = privateBus.folder().path("peer");
    std::filesystem::copy_file(FARVIEW_TEST_PEER, program);
    std::filesystem::permissions(program, std::filesystem::perms{0755});
    Program ours;
    ours.observe("Name");
    ChildProcess stranger({"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", program,
                           "post", privateBus.address()});
    ASSERT_TRUE(waitUntil([&] { return ours.log.contains("another user"); }));
    runLoopFor(100ms);
    EXPECT_TRUE(stranger.isRunning());
    EXPECT_EQ(ours.notes, Notes{});
    ours.center.postNotificationName("Name", "", {{"v", "ours"}}, 3);
    ASSERT_TRUE(ours.waitForNotes(1));
    EXPECT_EQ(ours.notes, Notes{"Name=ours"});
}

TEST(DBusNotificationCenter, ASenderThatHasGoneAlreadyIsAccepted)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    Program ours;
    ours.observe("Name");
    {
        Program shortLived;
        shortLived.center.postNotificationName("Name", "", {}, 3);
    }
    ASSERT_TRUE(ours.waitForNotes(1));
    EXPECT_EQ(ours.notes, Notes{"Name"});
}

} // namespace
} // namespace farview
