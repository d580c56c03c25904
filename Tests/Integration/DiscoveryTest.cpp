#include "Tests/Discovery/DiscoveringFixture.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::IsEmpty;

INSTANTIATE_TEST_SUITE_P(Ways, Discovering, testing::Values(Way::daemon, Way::embedded), nameOfWay);

TEST_P(Discovering, AServiceIsFoundResolvedAndRemoved)
{
    ASSERT_TRUE(mPublisher.publish({"Dev 1"}));
    const auto browser = search(mRecorder);
    EXPECT_THAT(mRecorder->present, IsEmpty());
    ASSERT_TRUE(waitFor(1));
    const auto service = mRecorder->present.front();
    EXPECT_EQ(service->name(), "Dev 1");
    EXPECT_EQ(service->type(), deviceType);
    EXPECT_EQ(service->domain(), localDomain);
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
