#include "Platform/Fake/FakeDiscovery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Data;
using farview::DiscoveryCondition;
using farview::Duration;
using farview::FakeDevice;
using farview::FakeDiscovery;
using farview::FakeResolve;
using farview::NetService;
using farview::NetServiceBrowser;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using ServicePointer = std::shared_ptr<NetService>;

class Listener : public farview::NetServiceBrowserDelegate, public farview::NetServiceDelegate
{
public:
    void didFindService(NetServiceBrowser&, const ServicePointer& service, bool more) override
    {
        said.push_back("found " + service->name() + (more ? ", more" : ""));
        found.push_back(service);
    }
    void didRemoveService(NetServiceBrowser&, const ServicePointer& service, bool more) override
    {
        said.push_back("removed " + service->name() + (more ? ", more" : ""));
        removed.push_back(service);
    }
    void netServiceDidResolveAddress(const ServicePointer& service) override
    {
        said.push_back("resolved " + service->name() + " at " + service->hostName().value_or("-"));
    }
    void didNotResolve(const ServicePointer& service, const std::string&) override
    {
        said.push_back("not resolved " + service->name());
    }
    void didUpdateTXTRecordData(const ServicePointer& service, const Data& data) override
    {
        said.push_back("record of " + service->name() + ": " +
                       NetService::dictionaryFromTXTRecordData(data)["ConnState"].text());
    }

    std::vector<std::string> said;
    std::vector<ServicePointer> found;
    std::vector<ServicePointer> removed;
};

class FakeDiscoveryTest : public testing::Test
{
protected:
    std::shared_ptr<NetServiceBrowser> search()
    {
        auto browser = discovery.makeBrowser();
        browser->setDelegate(listener);
        browser->searchForServicesOfType("_qlexvscreen._udp", "local.");
        return browser;
    }
    void resolve(const std::string& name)
    {
        const auto service = discovery.service(name);
        service->setDelegate(listener);
        service->resolveWithTimeout(Duration(5));
    }
    void forget() { listener->said.clear(); }

    farview::FakeRunLoop loop;
    FakeDiscovery discovery{loop};
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(FakeDiscoveryTest, ReportsDevicesThatAreThereWhenTheSearchBegins)
{
    discovery.announce(
        {{.name = "Desk", .hostName = "desk.local"}, {.name = "Sofa", .hostName = ""}});
    const auto browser = search();
    EXPECT_THAT(listener->said, IsEmpty()) << "never inside the call";
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, ElementsAre("found Desk, more", "found Sofa"));
}

TEST_F(FakeDiscoveryTest, ReportsAnnouncementsAndGoodbyesInBatches)
{
    const auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = ""}, {.name = "Sofa", .hostName = ""}});
    discovery.announce({{.name = "Wall", .hostName = ""}});
    discovery.remove({"Sofa", "Desk"});
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, ElementsAre("found Desk, more", "found Sofa", "found Wall",
                                            "removed Sofa, more", "removed Desk"));
}

TEST_F(FakeDiscoveryTest, RemovesTheVeryObjectThatWasFound)
{
    const auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = ""}});
    discovery.remove({"Desk"});
    loop.runUntilIdle();
    EXPECT_EQ(listener->found, listener->removed);
}

TEST_F(FakeDiscoveryTest, PassesOverDevicesOfAnotherType)
{
    const auto browser = search();
    discovery.announce({{.name = "Printer", .hostName = "", .type = "_ipp._tcp"}});
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, IsEmpty());
}

TEST_F(FakeDiscoveryTest, EachBrowserHandsOutItsOwnServices)
{
    const auto one = search();
    const auto two = search();
    discovery.announce({{.name = "Desk", .hostName = ""}});
    loop.runUntilIdle();
    ASSERT_EQ(listener->found.size(), 2U);
    EXPECT_NE(listener->found[0], listener->found[1]);
    EXPECT_TRUE(listener->found[0]->isEqual(*listener->found[1]));
}

TEST_F(FakeDiscoveryTest, AStoppedSearchReportsNothing)
{
    const auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = ""}});
    browser->stop();
    discovery.announce({{.name = "Sofa", .hostName = ""}});
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, IsEmpty());
}

TEST_F(FakeDiscoveryTest, ADroppedBrowserReportsNothing)
{
    auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = ""}});
    browser.reset();
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, IsEmpty());
    EXPECT_THAT(discovery.browsers(), IsEmpty());
    EXPECT_EQ(discovery.browserCount(), 1);
}

TEST_F(FakeDiscoveryTest, AResolveTellsHostAndRecord)
{
    const auto browser = search();
    discovery.announce(
        {{.name = "Desk", .hostName = "desk.local", .TXTRecord = {{"k", Data::fromText("v")}}}});
    loop.runUntilIdle();
    const auto service = discovery.service("Desk");
    EXPECT_EQ(service->hostName(), std::nullopt);
    EXPECT_TRUE(service->TXTRecordData().isEmpty());
    EXPECT_THAT(service->endpoints(), IsEmpty());
    resolve("Desk");
    loop.runUntilIdle();
    EXPECT_EQ(listener->said.back(), "resolved Desk at desk.local");
    EXPECT_EQ(service->TXTRecordData(), Data::fromText("\x03k=v"));
    EXPECT_EQ(service->endpoints().size(), 1U);
    EXPECT_EQ(service->resolveCount(), 1);
}

TEST_F(FakeDiscoveryTest, AResolveEndsAsTheDeviceAnswers)
{
    using enum FakeResolve::Outcome;
    const auto browser = search();
    discovery.announce({{.name = "Fails", .hostName = "", .resolve = {fails}},
                        {.name = "Slow", .hostName = "slow", .resolve = {succeeds, Duration(2)}},
                        {.name = "TooSlow", .hostName = "", .resolve = {succeeds, Duration(6)}},
                        {.name = "Never", .hostName = "", .resolve = {never}}});
    loop.runUntilIdle();
    forget();
    for (const char* name : {"Fails", "Slow", "TooSlow", "Never"})
        resolve(name);
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, ElementsAre("not resolved Fails"));
    loop.advance(Duration(2));
    EXPECT_THAT(listener->said, ElementsAre("not resolved Fails", "resolved Slow at slow"));
    loop.advance(Duration(3));
    EXPECT_THAT(listener->said, ElementsAre("not resolved Fails", "resolved Slow at slow",
                                            "not resolved TooSlow", "not resolved Never"));
    loop.advance(Duration(10));
    EXPECT_EQ(listener->said.size(), 4U);
}

TEST_F(FakeDiscoveryTest, AFaultyBodyMayIgnoreTheTimeOut)
{
    using enum FakeResolve::Outcome;
    const auto browser = search();
    discovery.announce(
        {{.name = "Late", .hostName = "late", .resolve = {succeeds, Duration(7), false}},
         {.name = "Mute", .hostName = "", .resolve = {never, Duration(0), false}}});
    loop.runUntilIdle();
    forget();
    resolve("Late");
    resolve("Mute");
    loop.advance(Duration(6));
    EXPECT_THAT(listener->said, IsEmpty());
    loop.advance(Duration(60));
    EXPECT_THAT(listener->said, ElementsAre("resolved Late at late"));
    EXPECT_TRUE(discovery.service("Mute")->isResolving());
}

TEST_F(FakeDiscoveryTest, ANewResolveReplacesTheOneUnderWay)
{
    const auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = "desk"}});
    loop.runUntilIdle();
    forget();
    resolve("Desk");
    resolve("Desk");
    loop.advance(Duration(10));
    EXPECT_THAT(listener->said, ElementsAre("resolved Desk at desk"));
}

TEST_F(FakeDiscoveryTest, OnlyWhoMonitorsHearsOfANewRecord)
{
    const auto browser = search();
    discovery.announce({{.name = "Desk", .hostName = ""}});
    loop.runUntilIdle();
    const auto service = discovery.service("Desk");
    service->setDelegate(listener);
    discovery.setTXTRecord("Desk", {{"ConnState", Data::fromText("None")}});
    loop.runUntilIdle();
    forget();
    service->startMonitoring();
    discovery.setTXTRecord("Desk", {{"ConnState", Data::fromText("Connected")}});
    EXPECT_THAT(listener->said, IsEmpty());
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, ElementsAre("record of Desk: Connected"));
    service->stopMonitoring();
    discovery.setTXTRecord("Desk", {});
    loop.runUntilIdle();
    EXPECT_EQ(listener->said.size(), 1U);
}

TEST_F(FakeDiscoveryTest, ADeadDeviceLeavesWhenItIsCheckedAgain)
{
    const auto browser = search();
    discovery.announce({{.name = "Dead", .hostName = ""}, {.name = "Alive", .hostName = ""}});
    loop.runUntilIdle();
    forget();
    discovery.kill("Dead");
    loop.advance(Duration(3600));
    EXPECT_THAT(listener->said, IsEmpty());
    discovery.checkAgain();
    loop.runUntilIdle();
    EXPECT_THAT(listener->said, ElementsAre("removed Dead"));
    EXPECT_EQ(discovery.checkAgainCount(), 1);
}

TEST_F(FakeDiscoveryTest, TellsAChangeOfItsConditionOnce)
{
    int changes = 0;
    const auto subscription = discovery.observeCondition([&] { ++changes; });
    discovery.setCondition(DiscoveryCondition::unavailable);
    discovery.setCondition(DiscoveryCondition::unavailable);
    EXPECT_EQ(changes, 0);
    loop.runUntilIdle();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(discovery.condition(), DiscoveryCondition::unavailable);
}

TEST(FakeDiscoveryLife, ABrowserMayOutliveIt)
{
    farview::FakeRunLoop loop;
    auto discovery = std::make_unique<FakeDiscovery>(loop);
    const auto browser = discovery->makeBrowser();
    discovery.reset();
    browser->searchForServicesOfType("_qlexvscreen._udp", "local.");
    loop.runUntilIdle();
    EXPECT_EQ(loop.pendingCount(), 0U);
}

} // namespace
