#include "Platform/Fake/FakeDiscovery.h"
#include "Tests/Discovery/DiscoveringFixture.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string connected = "ConnState=Connected";

/// The scripted network on a hand-driven clock.
struct FakeNetwork {
    FakeRunLoop loop;
    FakeDiscovery fake{loop};

    Discovery& discovery() { return fake; }
    void announce(const std::vector<std::string>& names)
    {
        std::vector<FakeDevice> devices;
        for (const auto& name : names)
            devices.push_back({name, "hostB.local", {{"ConnState", Data::fromText("None")}}});
        fake.announce(devices);
    }
    void withdraw(const std::string& name) { fake.remove({name}); }
    void setConnected(const std::string& name)
    {
        fake.setTXTRecord(name, {{"ConnState", Data::fromText("Connected")}});
    }
    bool wait(const std::function<bool()>& condition)
    {
        for (int turn = 0; turn < 1000 && !condition(); ++turn)
            loop.advance(Duration(0.01));
        return condition();
    }
    void pass() { loop.advance(Duration(1.0)); }
};

/// Two hosts, with and without a daemon on the one that looks.
template <Way way> struct RealNetwork {
    FakeLog log;
    TestDaemon there{{"B"}};
    TestPublisher publisher{there.busAddress()};
    std::optional<TestDaemon> here;
    std::optional<ScopedEnvironment> bus;
    std::optional<DesktopDiscovery> real;

    RealNetwork()
    {
        if (way == Way::daemon)
            bus.emplace("DBUS_SYSTEM_BUS_ADDRESS",
                        here.emplace(TestDaemon::Options{"A"}).busAddress().c_str());
        real.emplace(log);
    }
    Discovery& discovery() { return *real; }
    void announce(const std::vector<std::string>& names)
    {
        for (const auto& name : names)
            EXPECT_TRUE(publisher.publish({name, {"ConnState=None"}}));
    }
    void withdraw(const std::string& name) { publisher.withdraw(name); }
    void setConnected(const std::string& name) { publisher.update(name, {connected}); }
    bool wait(const std::function<bool()>& condition) { return waitUntil(condition); }
    void pass() { runLoopFor(1s); }
};

template <typename Network> class DiscoveryContract : public testing::Test
{
protected:
    std::shared_ptr<NetServiceBrowser> search()
    {
        auto browser = mNetwork.discovery().makeBrowser();
        browser->setDelegate(mRecorder);
        browser->searchForServicesOfType(deviceType, localDomain);
        return browser;
    }
    bool waitFor(std::size_t count)
    {
        return mNetwork.wait([&] { return mRecorder->present.size() == count; });
    }
    bool waitForResolve()
    {
        return mNetwork.wait([&] { return !mRecorder->resolved.empty(); });
    }

    Network mNetwork;
    std::shared_ptr<DiscoveryRecorder> mRecorder = std::make_shared<DiscoveryRecorder>();
};

using Networks = testing::Types<FakeNetwork, RealNetwork<Way::daemon>, RealNetwork<Way::embedded>>;
TYPED_TEST_SUITE(DiscoveryContract, Networks);

TYPED_TEST(DiscoveryContract, NothingIsReportedInsideTheSearchOrTheStop)
{
    this->mNetwork.announce({"one"});
    const auto browser = this->search();
    EXPECT_THAT(this->mRecorder->present, IsEmpty());
    ASSERT_TRUE(this->waitFor(1));
    browser->stop();
    this->mNetwork.withdraw("one");
    this->mNetwork.pass();
    EXPECT_THAT(this->mRecorder->batches, ElementsAre("+1"));
}

TYPED_TEST(DiscoveryContract, WhatIsThereComesInOneBatch)
{
    this->mNetwork.announce({"one", "two", "three"});
    this->mNetwork.pass();
    this->mNetwork.pass();
    const auto elder = this->search();
    ASSERT_TRUE(this->waitFor(3));
    this->mRecorder->present.clear();
    this->mRecorder->batches.clear();
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(3));
    EXPECT_THAT(this->mRecorder->batches, ElementsAre("+3"));
    EXPECT_THAT(this->mRecorder->names(), ElementsAre("one", "three", "two"));
}

TYPED_TEST(DiscoveryContract, AServiceHasItsNameTypeAndDomainAtOnceAndItsHostOnceResolved)
{
    this->mNetwork.announce({"one"});
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(1));
    const auto service = this->mRecorder->present.front();
    EXPECT_EQ(service->name(), "one");
    EXPECT_EQ(service->type(), deviceType);
    EXPECT_EQ(service->domain(), localDomain);
    EXPECT_EQ(service->hostName(), std::nullopt);
    EXPECT_THAT(service->endpoints(), IsEmpty());
    service->resolveWithTimeout(Duration(5));
    EXPECT_THAT(this->mRecorder->resolved, IsEmpty());
    ASSERT_TRUE(this->waitForResolve());
    EXPECT_EQ(service->hostName(), "hostB.local");
    ASSERT_EQ(service->endpoints().size(), 1u);
    EXPECT_EQ(service->endpoints().front().port, 6001);
    EXPECT_EQ(service->TXTRecordData(), Data::fromText("\x0e"
                                                       "ConnState=None"));
    this->mNetwork.pass();
    EXPECT_EQ(this->mRecorder->resolved.size(), 1u);
}

TYPED_TEST(DiscoveryContract, ARemovalHandsOverTheObjectThatWasFound)
{
    this->mNetwork.announce({"one", "two"});
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(2));
    this->mNetwork.withdraw("one");
    ASSERT_TRUE(this->waitFor(1));
    EXPECT_TRUE(this->mRecorder->removedSameObject);
    EXPECT_THAT(this->mRecorder->names(), ElementsAre("two"));
    EXPECT_EQ(this->mRecorder->batches.back(), "-1");
}

TYPED_TEST(DiscoveryContract, EachBrowserHandsOutObjectsOfItsOwnThatAreEqual)
{
    this->mNetwork.announce({"one"});
    const auto elder = this->search();
    ASSERT_TRUE(this->waitFor(1));
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(2));
    const auto& present = this->mRecorder->present;
    EXPECT_NE(present.at(0), present.at(1));
    EXPECT_TRUE(present.at(0)->isEqual(*present.at(1)));
}

TYPED_TEST(DiscoveryContract, AChangedRecordIsReportedOnlyWhileMonitored)
{
    this->mNetwork.announce({"one", "two"});
    this->mRecorder->resolvesWhatIsFound = true;
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(2));
    ASSERT_TRUE(this->mNetwork.wait([&] { return this->mRecorder->resolved.size() == 2; }));
    this->mRecorder->find("one")->startMonitoring();
    this->mRecorder->find("one")->startMonitoring();
    this->mNetwork.pass();
    this->mNetwork.setConnected("one");
    this->mNetwork.setConnected("two");
    ASSERT_TRUE(this->mNetwork.wait([&] { return !this->mRecorder->records.empty(); }));
    this->mNetwork.pass();
    const auto record = Data::fromText("\x13" + connected);
    EXPECT_THAT(this->mRecorder->records, ElementsAre(std::pair(std::string("one"), record)));
    EXPECT_EQ(this->mRecorder->find("one")->TXTRecordData(), record);
}

TYPED_TEST(DiscoveryContract, ABrowserThatIsGoneReportsNothing)
{
    this->mNetwork.announce({"one"});
    this->search().reset();
    this->mNetwork.pass();
    EXPECT_THAT(this->mRecorder->batches, IsEmpty());
}

TYPED_TEST(DiscoveryContract, AnotherTypeIsNotFound)
{
    this->mNetwork.announce({"one"});
    const auto browser = this->mNetwork.discovery().makeBrowser();
    browser->setDelegate(this->mRecorder);
    browser->searchForServicesOfType("_farview-other._udp", localDomain);
    this->mNetwork.pass();
    EXPECT_THAT(this->mRecorder->present, IsEmpty());
    browser->searchForServicesOfType(deviceType, localDomain);
    EXPECT_TRUE(this->waitFor(1));
}

TYPED_TEST(DiscoveryContract, AServiceThatIsAliveSurvivesTheCheck)
{
    this->mNetwork.announce({"one"});
    const auto browser = this->search();
    ASSERT_TRUE(this->waitFor(1));
    this->mNetwork.discovery().checkAgain();
    for (int second = 0; second < 6; ++second)
        this->mNetwork.pass();
    EXPECT_THAT(this->mRecorder->batches, ElementsAre("+1"));
    EXPECT_EQ(this->mNetwork.discovery().condition(), DiscoveryCondition::working);
}

} // namespace
} // namespace farview
