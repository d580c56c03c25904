#include "Platform/Desktop/Discovery/DesktopDiscovery.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Discovery/DiscoveryRecorder.h"
#include "Tests/Discovery/TestDaemon.h"
#include "Tests/Discovery/TestPublisher.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* type = "_qlexvscreen._udp";
constexpr const char* domain = "local.";

/// How the discovering host looks at the network.
enum class Way { daemon, embedded };

class Discovering : public testing::TestWithParam<Way>
{
protected:
    void SetUp() override
    {
        if (GetParam() == Way::daemon) {
            mHere.emplace(TestDaemon::Options{"A"});
            mBusAddress.emplace("DBUS_SYSTEM_BUS_ADDRESS", mHere->busAddress().c_str());
        }
        mDiscovery.emplace(mLog);
    }

    std::shared_ptr<NetServiceBrowser> search(const std::shared_ptr<DiscoveryRecorder>& recorder)
    {
        auto browser = mDiscovery->makeBrowser();
        browser->setDelegate(recorder);
        browser->searchForServicesOfType(type, domain);
        return browser;
    }

    bool waitFor(std::size_t count)
    {
        return waitUntil([&] { return mRecorder->present.size() == count; });
    }

    FakeLog mLog;
    std::optional<TestDaemon> mHere;
    TestDaemon mThere{{"B"}};
    TestPublisher mPublisher{mThere.busAddress()};
    std::optional<ScopedEnvironment> mBusAddress;
    std::optional<DesktopDiscovery> mDiscovery;
    std::shared_ptr<DiscoveryRecorder> mRecorder = std::make_shared<DiscoveryRecorder>();
};

INSTANTIATE_TEST_SUITE_P(Ways, Discovering, testing::Values(Way::daemon, Way::embedded),
                         [](const auto& info) {
                             return info.param == Way::daemon ? "WithADaemon" : "ByItself";
                         });

TEST_P(Discovering, AServiceIsFoundResolvedAndRemoved)
{
    ASSERT_TRUE(mPublisher.publish({"Dev 1"}));
    const auto browser = search(mRecorder);
    EXPECT_THAT(mRecorder->present, IsEmpty());
    ASSERT_TRUE(waitFor(1));
    const auto service = mRecorder->present.front();
    EXPECT_EQ(service->name(), "Dev 1");
    EXPECT_EQ(service->type(), type);
    EXPECT_EQ(service->domain(), domain);
    EXPECT_EQ(service->hostName(), std::nullopt);

    service->resolveWithTimeout(Duration(5));
    EXPECT_THAT(mRecorder->resolved, IsEmpty());
    ASSERT_TRUE(waitUntil([&] { return mRecorder->resolved.size() == 1; }));
    EXPECT_EQ(service->hostName(), "hostB.local");
    ASSERT_EQ(service->endpoints().size(), 1u);
    EXPECT_EQ(service->endpoints().front().address, "10.77.0.2");
    EXPECT_EQ(service->endpoints().front().port, 6001);
    EXPECT_GT(service->endpoints().front().interfaceIndex, 1u);
    EXPECT_EQ(service->TXTRecordData(), Data::fromText("\x16"
                                                       "ConnState=NotConnected"));

    mPublisher.withdraw("Dev 1");
    ASSERT_TRUE(waitFor(0));
    EXPECT_TRUE(mRecorder->removedSameObject);
    EXPECT_EQ(mDiscovery->condition(), DiscoveryCondition::working);
}

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

} // namespace
} // namespace farview
