#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Bus/BusNameWatcher.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string>
#include <unistd.h>
#include <vector>

namespace farview
{
namespace
{

constexpr const char* name = "com.quillon.Test";

TEST(SessionBus, TheStatedAddressComesBeforeTheRuntimeFolder)
{
    const ScopedEnvironment folder("XDG_RUNTIME_DIR", "/run/user/1");
    EXPECT_EQ(SessionBus::address(), "unix:path=/run/user/1/bus");
    const SessionBusScope scope("unix:path=/somewhere");
    EXPECT_EQ(SessionBus::address(), "unix:path=/somewhere");
}

TEST(SessionBus, AnEmptyVariableIsNoAddress)
{
    const SessionBusScope scope("");
    EXPECT_EQ(SessionBus::address(), "");
    const ScopedEnvironment folder("XDG_RUNTIME_DIR", "");
    EXPECT_EQ(SessionBus::address(), "");
}

TEST(SessionBus, AnAddressThatIsNoneIsSurvived)
{
    for (const char* address :
         {"nonsense", "unix:path=/nowhere/at/all", "disabled:", ";;", "unix:"}) {
        const SessionBusScope scope(address);
        FakeLog log;
        TestBus bus(log);
        EXPECT_FALSE(bus.isConnected()) << address;
        EXPECT_FALSE(bus.takeName(name));
        EXPECT_FALSE(bus.hasOwner(name));
        EXPECT_EQ(bus.uniqueName(), "");
        bus.releaseName(name);
    }
}

TEST(SessionBus, OwnsAndReleasesNames)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    TestBus first(log);
    TestBus second(log);
    EXPECT_TRUE(first.takeName(name));
    EXPECT_FALSE(second.takeName(name));
    EXPECT_TRUE(second.hasOwner(name));
    first.releaseName(name);
    EXPECT_TRUE(waitUntil([&] { return second.takeName(name); }));
}

TEST(SessionBus, ABusOfAnotherUserIsNotUsed)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can run a bus as another user";
    PrivateBus privateBus(PrivateBus::Guests::everyone, PrivateBus::Owner::nobody);
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    TestBus bus(log);
    EXPECT_FALSE(bus.isConnected());
    EXPECT_TRUE(log.contains("does not run as this user"));
}

TEST(SessionBus, ComesBackAfterEveryLossAndSaysSo)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    TestBus bus(log);
    std::vector<std::string> events;
    QObject::connect(&bus, &SessionBus::disconnected, &bus, [&] { events.push_back("lost"); });
    QObject::connect(&bus, &SessionBus::connected, &bus,
                     [&](bool again) { events.push_back(again ? "again" : "first"); });
    for (int round = 0; round < 3; ++round) {
        privateBus.stop();
        ASSERT_TRUE(waitUntil([&] { return !bus.isConnected(); }));
        privateBus.start();
        ASSERT_TRUE(waitUntil([&] { return bus.isConnected(); }));
        EXPECT_TRUE(bus.takeName(name));
    }
    const std::vector<std::string> expected = {"lost", "again", "lost", "again", "lost", "again"};
    EXPECT_EQ(events, expected);
}

TEST(SessionBus, AConnectionThatEndsLeavesNoNameBehind)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    TestBus other(log);
    {
        TestBus bus(log);
        ASSERT_TRUE(bus.takeName(name));
    }
    EXPECT_TRUE(waitUntil([&] { return !other.hasOwner(name); }));
}

TEST(SessionBus, ABusThatStandsStillHoldsNobodyUp)
{
    PrivateBus privateBus;
    privateBus.process().sendSignal(SIGSTOP);
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    SessionBus bus(log);
    int answers = 0;
    bus.requestName(name, &bus, [&](bool isOurs) { answers += isOurs ? 1 : 0; });
    bus.askForOwner(name, &bus,
                    [&](const QString& owner) { answers += owner == bus.uniqueName(); });
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_FALSE(bus.isConnected());
    EXPECT_EQ(answers, 0);
    privateBus.process().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return bus.isConnected() && answers == 2; }))
        << "what was asked meanwhile is answered then";
}

TEST(BusNameWatcher, TellsWhatHoldsAndWhatChangesAcrossALossOfTheBus)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    FakeLog log;
    TestBus ours(log);
    TestBus theirs(log);
    std::vector<bool> told;
    BusNameWatcher watcher(ours, name, [&](bool isOwned) { told.push_back(isOwned); });
    EXPECT_TRUE(told.empty());
    ASSERT_TRUE(waitUntil([&] { return told.size() == 1; }));
    theirs.takeName(name);
    ASSERT_TRUE(waitUntil([&] { return told.size() == 2; }));
    privateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return told.size() == 3; }));
    privateBus.start();
    ASSERT_TRUE(waitUntil([&] { return theirs.takeName(name); }));
    ASSERT_TRUE(waitUntil([&] { return told.size() == 4; }));
    EXPECT_EQ(told, (std::vector<bool>{false, true, false, true}));
}

TEST(BusNameWatcher, WithoutABusNobodyOwnsAnything)
{
    FakeLog log;
    TestBus bus(log);
    std::vector<bool> told;
    BusNameWatcher watcher(bus, name, [&](bool isOwned) { told.push_back(isOwned); });
    EXPECT_TRUE(told.empty());
    ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, std::vector<bool>{false});
}

} // namespace
} // namespace farview
