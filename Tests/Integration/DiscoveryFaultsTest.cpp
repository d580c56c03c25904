#include "Tests/Discovery/DiscoveringFixture.h"
#include "Tests/Discovery/RawAnnouncer.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// A host that is lost without a goodbye and comes back, seen in both ways.
class LosingAHost : public Discovering
{
};

INSTANTIATE_TEST_SUITE_P(Ways, LosingAHost, testing::Values(Way::daemon, Way::embedded), nameOfWay);

TEST_P(LosingAHost, TheCheckRemovesItsServicesAndTheirReturnIsSeen)
{
    TestDaemon third({"C"});
    TestPublisher announcer(third.busAddress());
    ASSERT_TRUE(mPublisher.publish({"alive"}));
    ASSERT_TRUE(announcer.publish({"mortal"}));
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(2));
    const auto lost = mRecorder->find("mortal");
    third.kill();
    runLoopFor(1s);
    EXPECT_EQ(mRecorder->present.size(), 2u);

    const auto milliseconds = [begin = std::chrono::steady_clock::now()] {
        return static_cast<int>((std::chrono::steady_clock::now() - begin) / 1ms);
    };
    mDiscovery->checkAgain();
    ASSERT_TRUE(waitFor(1));
    RecordProperty("removed_ms", milliseconds());
    EXPECT_THAT(mRecorder->names(), ElementsAre("alive"));
    mDiscovery->checkAgain();
    runLoopFor(5s);
    EXPECT_THAT(mRecorder->names(), ElementsAre("alive"));

    third.start();
    const int restarted = milliseconds();
    ASSERT_TRUE(announcer.publish({"mortal"}));
    ASSERT_TRUE(waitFor(2));
    RecordProperty("returned_ms", milliseconds() - restarted);
    EXPECT_NE(mRecorder->find("mortal"), lost);
    mRecorder->find("mortal")->resolveWithTimeout(Duration(5));
    EXPECT_TRUE(waitForResolves(1));
    announcer.withdraw("mortal");
    EXPECT_TRUE(waitFor(1));
}

TEST_P(LosingAHost, ACheckJustBeforeASearchHoldsForTheSearch)
{
    ASSERT_TRUE(mPublisher.publish({"alive"}));
    const auto elder = std::make_shared<DiscoveryRecorder>();
    const auto elderBrowser = search(elder);
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("ghost")}));
    ASSERT_TRUE(waitUntil([&] { return elder->present.size() == 2; }));
    mDiscovery->checkAgain();
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(2));
    ASSERT_TRUE(waitFor(1));
    EXPECT_THAT(mRecorder->names(), ElementsAre("alive"));
}

class LosingTheDaemon : public TwoHosts
{
protected:
    void SetUp() override { begin(Way::daemon); }
};

TEST_F(LosingTheDaemon, ItsServicesAreRemovedAndFoundAgainWhenItIsBack)
{
    ASSERT_TRUE(mPublisher.publish({"one"}));
    ASSERT_TRUE(mPublisher.publish({"two"}));
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(2));
    for (const bool inOrder : {true, false}) {
        if (inOrder)
            mHere->stop();
        else
            mHere->kill();
        ASSERT_TRUE(waitFor(0));
        EXPECT_EQ(mRecorder->batches.back(), "-2");
        EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::unavailable);
        mHere->start();
        ASSERT_TRUE(waitFor(2));
        EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
    }
}

TEST_F(LosingTheDaemon, ItsBusMayGoAndReturnToo)
{
    ASSERT_TRUE(mPublisher.publish({"one"}));
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(1));
    mHere->bus().stop();
    ASSERT_TRUE(waitFor(0));
    mHere->kill();
    mHere->bus().start();
    mHere->start();
    ASSERT_TRUE(waitFor(1));
}

TEST_F(LosingTheDaemon, TheNextBrowserLooksByItself)
{
    ASSERT_TRUE(mPublisher.publish({"one"}));
    const auto elder = std::make_shared<DiscoveryRecorder>();
    const auto elderBrowser = search(elder);
    ASSERT_TRUE(waitUntil([&] { return elder->present.size() == 1; }));
    mHere->stop();
    ASSERT_TRUE(waitUntil([&] { return elder->present.empty(); }));
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(1));
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
    EXPECT_THAT(elder->present, IsEmpty());
}

TEST_F(LosingTheDaemon, AStoppedDaemonDoesNotHoldUpTheNextProgram)
{
    ASSERT_TRUE(mPublisher.publish({"one"}));
    mHere->process().sendSignal(SIGSTOP);
    const auto browser = search(mRecorder);
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::starting) << "nobody was waited for";
    ASSERT_TRUE(waitFor(1));
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
    mHere->process().sendSignal(SIGCONT);
}

TEST_F(LosingTheDaemon, AStoppedBusDoesNotHoldUpTheNextProgram)
{
    ASSERT_TRUE(mPublisher.publish({"one"}));
    mHere->bus().process().sendSignal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    const auto browser = search(mRecorder);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s) << "a library's call waits 25 s";
    // By itself; and with the daemon for the next program, once the bus goes on.
    EXPECT_TRUE(waitFor(1));
    mHere->bus().process().sendSignal(SIGCONT);
    DesktopDiscovery later(mLog);
    const auto finder = std::make_shared<DiscoveryRecorder>();
    const auto laterBrowser = later.makeBrowser();
    laterBrowser->setDelegate(finder);
    laterBrowser->searchForServicesOfType(deviceType, localDomain);
    EXPECT_TRUE(waitUntil([&] { return finder->present.size() == 1; }));
}

class WithoutADaemon : public TwoHosts
{
protected:
    void SetUp() override { begin(Way::embedded); }
};

TEST_F(WithoutADaemon, ADaemonThatAppearsLaterServesTheNextBrowser)
{
    TestDaemon late({"A", {}, false, false});
    useBus(late.busAddress());
    mDiscovery.emplace(mLog);
    ASSERT_TRUE(mPublisher.publish({"one"}));
    const auto elder = std::make_shared<DiscoveryRecorder>();
    const auto elderBrowser = search(elder);
    ASSERT_TRUE(waitUntil([&] { return elder->present.size() == 1; }));
    late.start();
    runLoopFor(500ms);
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(1));
    late.stop();
    // Who used it hears of its end, who did not does not.
    ASSERT_TRUE(waitFor(0));
    EXPECT_EQ(elder->present.size(), 1u);
}

TEST_F(WithoutADaemon, ADaemonThatToleratesNoOtherIsToldApart)
{
    TestDaemon jealous({"A", {"disallow-other-stacks=yes"}});
    int changes = 0;
    const auto observing = mDiscovery->observeCondition([&] { ++changes; });
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::starting);
    const auto browser = search(mRecorder);
    EXPECT_EQ(changes, 0);
    ASSERT_TRUE(waitUntil([&] { return changes == 1; }));
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::refused);
    ASSERT_TRUE(mPublisher.publish({"one"}));
    jealous.stop();
    // Tried again after a pause.
    ASSERT_TRUE(waitFor(1));
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
}

TEST_F(WithoutADaemon, TheNetworkMayComeLater)
{
    ASSERT_EQ(::system("ip link set vA down && ip link set lo down && ip address flush dev vA"), 0);
    const auto browser = search(mRecorder);
    ASSERT_TRUE(
        waitUntil([&] { return mDiscovery->condition() == DiscoveryCondition::unavailable; }));
    ASSERT_TRUE(mPublisher.publish({"one"}));
    runLoopFor(500ms);
    EXPECT_THAT(mRecorder->present, IsEmpty());
    const int cable = ::system("ip link set lo up; ip address add 10.77.0.1/24 dev vA; "
                               "ip link set vA up");
    ASSERT_EQ(cable, 0);
    ASSERT_TRUE(waitFor(1));
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
}

class TooManyObjects : public TwoHosts
{
};

TEST_F(TooManyObjects, AreSurvived)
{
    begin(Way::daemon, {"A", {"objects-per-client-max=20"}});
    for (int index = 0; index < 60; ++index)
        ASSERT_TRUE(mPublisher.publish({"Dev " + std::to_string(index)}));
    mRecorder->resolvesWhatIsFound = true;
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(60));
    ASSERT_TRUE(waitForResolves(60));
    for (const auto& service : mRecorder->present)
        service->startMonitoring();
    runLoopFor(300ms);
    for (const auto& service : mRecorder->present)
        service->stopMonitoring();
    runLoopFor(100ms);
    mRecorder->present.front()->resolveWithTimeout(Duration(5));
    EXPECT_TRUE(waitForResolves(61));
}

} // namespace
} // namespace farview
