#include "Tests/Discovery/DiscoveringFixture.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::IsEmpty;

INSTANTIATE_TEST_SUITE_P(Ways, Discovering, testing::Values(Way::daemon, Way::embedded), nameOfWay);

TEST_P(Discovering, AChangedRecordIsReportedToThoseWhoMonitor)
{
    ASSERT_TRUE(mPublisher.publish({"Dev 1"}));
    mRecorder->resolvesWhatIsFound = true;
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitUntil([&] { return mRecorder->resolved.size() == 1; }));
    const auto service = mRecorder->present.front();
    service->startMonitoring();
    service->startMonitoring();
    runLoopFor(300ms);
    EXPECT_THAT(mRecorder->records, IsEmpty());
    mPublisher.update("Dev 1", {"ConnState=Connected"});
    ASSERT_TRUE(waitUntil([&] { return !mRecorder->records.empty(); }));
    const auto expected = Data::fromText("\x13"
                                         "ConnState=Connected");
    EXPECT_EQ(mRecorder->records.front().second, expected);
    // The old record is still remembered for a second; a resolve must not bring it back.
    service->resolveWithTimeout(Duration(5));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->resolved.size() == 2; }));
    EXPECT_EQ(service->TXTRecordData(), expected);
    runLoopFor(1500ms);
    EXPECT_EQ(mRecorder->records.size(), 1u);

    service->stopMonitoring();
    mPublisher.update("Dev 1", {"ConnState=None"});
    runLoopFor(1s);
    EXPECT_EQ(mRecorder->records.size(), 1u);
}

TEST_P(Discovering, FiveHundredServicesAreFoundAndResolved)
{
    constexpr std::size_t count = 500;
    for (std::size_t index = 0; index < count; ++index)
        ASSERT_TRUE(mPublisher.publish({"Dev " + std::to_string(index)}));
    runLoopFor(2s);
    mRecorder->resolvesWhatIsFound = true;
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(count));
    ASSERT_TRUE(waitForResolves(count));
    for (const auto& service : mRecorder->present)
        EXPECT_EQ(service->endpoints().size(), 1u) << service->name();
    for (const auto& service : mRecorder->present)
        service->startMonitoring();
    runLoopFor(500ms);
    mPublisher.update("Dev 250", {"ConnState=Connected"});
    EXPECT_TRUE(waitUntil([&] { return mRecorder->records.size() == 1; }));
}

TEST_P(Discovering, BrowsersOfOneTypeShareWhatIsKnownButNotTheirObjects)
{
    ASSERT_TRUE(mPublisher.publish({"Dev 1"}));
    const auto elder = std::make_shared<DiscoveryRecorder>();
    const auto elderBrowser = search(elder);
    ASSERT_TRUE(waitUntil([&] { return elder->present.size() == 1; }));
    const auto browser = search(mRecorder);
    EXPECT_THAT(mRecorder->present, IsEmpty());
    ASSERT_TRUE(waitFor(1));
    const auto first = elder->present.front();
    const auto second = mRecorder->present.front();
    EXPECT_NE(first, second);
    EXPECT_TRUE(first->isEqual(*second));
    first->resolveWithTimeout(Duration(5));
    ASSERT_TRUE(waitUntil([&] { return elder->resolved.size() == 1; }));
    EXPECT_THAT(mRecorder->resolved, IsEmpty());
    EXPECT_EQ(second->hostName(), std::nullopt);
    elderBrowser->stop();
    mPublisher.withdraw("Dev 1");
    ASSERT_TRUE(waitFor(0));
    EXPECT_EQ(elder->present.size(), 1u);
}

TEST_P(Discovering, EverythingMayEndInTheMiddle)
{
    for (int index = 0; index < 20; ++index)
        ASSERT_TRUE(mPublisher.publish({"Dev " + std::to_string(index)}));
    mRecorder->resolvesWhatIsFound = true;
    for (int pause : {0, 5, 20, 40, 100, 300}) {
        auto browser = search(mRecorder);
        runLoopFor(std::chrono::milliseconds(pause));
        browser.reset();
    }
    auto browser = search(mRecorder);
    mRecorder->present.clear();
    ASSERT_TRUE(waitUntil([&] { return mRecorder->present.size() >= 20; }));
    auto services = mRecorder->present;
    for (const auto& service : services) {
        service->startMonitoring();
        service->resolveWithTimeout(Duration(5));
    }
    mDiscovery->checkAgain();
    mDiscovery.reset();
    browser.reset();
    runLoopFor(100ms);
    mRecorder->present.clear();
    services.clear();
    mRecorder->resolved.clear();
    runLoopFor(1s);
}

class BothProtocols : public testing::TestWithParam<Way>
{
};

INSTANTIATE_TEST_SUITE_P(Ways, BothProtocols, testing::Values(Way::daemon, Way::embedded),
                         nameOfWay);

TEST_P(BothProtocols, AServiceOnBothIsSeenOnceWithBothAddresses)
{
    std::optional<TestDaemon> here;
    if (GetParam() == Way::daemon)
        here.emplace(TestDaemon::Options{"A", {}, true});
    TestDaemon there({"B", {}, true});
    TestPublisher publisher(there.busAddress());
    ASSERT_TRUE(publisher.publish({"Dev 1"}));
    const ScopedEnvironment bus("DBUS_SYSTEM_BUS_ADDRESS",
                                here ? here->busAddress().c_str() : "unix:path=/nonexistent/bus");
    FakeLog log;
    DesktopDiscovery discovery(log);
    const auto recorder = std::make_shared<DiscoveryRecorder>();
    recorder->resolvesWhatIsFound = true;
    const auto browser = discovery.makeBrowser();
    browser->setDelegate(recorder);
    browser->searchForServicesOfType(deviceType, localDomain);
    ASSERT_TRUE(waitUntil([&] { return recorder->resolved.size() == 1; }));
    const auto service = recorder->resolved.front();
    ASSERT_TRUE(waitUntil([&] { return service->endpoints().size() == 2; }));
    EXPECT_EQ(service->endpoints().at(0).address, "10.77.0.2");
    EXPECT_THAT(service->endpoints().at(1).address, testing::StartsWith("fe80:"));
    EXPECT_GT(service->endpoints().at(1).interfaceIndex, 1u);
    runLoopFor(1s);
    EXPECT_THAT(recorder->batches, testing::ElementsAre("+1"));
    publisher.withdraw("Dev 1");
    ASSERT_TRUE(waitUntil([&] { return recorder->present.empty(); }));
    EXPECT_THAT(recorder->batches, testing::ElementsAre("+1", "-1"));
}

} // namespace
} // namespace farview
