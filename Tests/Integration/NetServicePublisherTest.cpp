#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"
#include "Tests/Discovery/DiscoveringFixture.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

struct PublisherRecorder : NetServicePublisherDelegate {
    std::vector<std::string> published;
    std::vector<std::string> renamed;
    std::vector<std::string> failed;

    void didPublish(const std::string& name) override { published.push_back(name); }
    void willRename(const std::string& name) override { renamed.push_back(name); }
    void didNotPublish(const std::string& reason) override { failed.push_back(reason); }
};

/// Host A announces, with or without a daemon; the test listens through the daemon of host B.
class Publishing : public TwoHosts, public testing::WithParamInterface<Way>
{
protected:
    void SetUp() override
    {
        useBus(mThere.busAddress());
        mDiscovery.emplace(mLog);
        mRecorder->resolvesWhatIsFound = true;
        mBrowser = search(mRecorder);
        mHere.emplace(TestDaemon::Options{"A"});
        useBus(GetParam() == Way::daemon ? mHere->busAddress() : "unix:path=/nonexistent/bus");
        mOurs.emplace(mLog);
        mOurs->setDelegate(mEvents);
    }

    bool waitForPublished(std::size_t count)
    {
        return waitUntil([&] { return mEvents->published.size() == count; });
    }

    const ServiceAnnouncement mAnnouncement{
        "Desk", deviceType, 6002, {{"ConnState", Data::fromText("NotConnected")}}, "farview-desk"};
    std::shared_ptr<NetServiceBrowser> mBrowser;
    std::optional<DesktopNetServicePublisher> mOurs;
    std::shared_ptr<PublisherRecorder> mEvents = std::make_shared<PublisherRecorder>();
};

INSTANTIATE_TEST_SUITE_P(Ways, Publishing, testing::Values(Way::daemon, Way::embedded), nameOfWay);

TEST_P(Publishing, TheServiceIsFoundWithAHostNameOfItsOwnAndSaysGoodbye)
{
    mOurs->publish(mAnnouncement);
    EXPECT_THAT(mEvents->published, IsEmpty());
    ASSERT_TRUE(waitForPublished(1));
    EXPECT_EQ(mEvents->published.front(), "Desk");
    ASSERT_TRUE(waitForResolves(1));
    const auto service = mRecorder->find("Desk");
    ASSERT_TRUE(service);
    EXPECT_EQ(service->hostName(), "farview-desk.local");
    EXPECT_EQ(service->endpoints().front().address, "10.77.0.1");
    EXPECT_EQ(service->endpoints().front().port, 6002);
    EXPECT_EQ(NetService::dictionaryFromTXTRecordData(service->TXTRecordData()),
              mAnnouncement.TXTRecord);
    mOurs->stop();
    EXPECT_TRUE(waitFor(0));
}

TEST_P(Publishing, DestructionSaysGoodbyeToo)
{
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitFor(1));
    mOurs.reset();
    EXPECT_TRUE(waitFor(0));
}

TEST_P(Publishing, AChangedRecordReachesThoseWhoMonitor)
{
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitForResolves(1));
    mRecorder->present.front()->startMonitoring();
    runLoopFor(300ms);
    mOurs->updateTXTRecord({{"ConnState", Data::fromText("Connected")}});
    ASSERT_TRUE(waitUntil([&] { return !mRecorder->records.empty(); }));
    EXPECT_EQ(mRecorder->records.front().second, Data::fromText("\x13"
                                                                "ConnState=Connected"));
}

TEST_P(Publishing, ANameThatSomebodyElseHasIsChanged)
{
    ASSERT_TRUE(mPublisher.publish({"Desk"}));
    ASSERT_TRUE(waitFor(1));
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitForPublished(1));
    EXPECT_THAT(mEvents->renamed, ElementsAre("Desk #2"));
    EXPECT_THAT(mEvents->published, ElementsAre("Desk #2"));
    ASSERT_TRUE(waitFor(2));
    EXPECT_THAT(mRecorder->names(), ElementsAre("Desk", "Desk #2"));
}

TEST_P(Publishing, AHostNameThatSomebodyElseHasIsChanged)
{
    auto announcement = mAnnouncement;
    announcement.hostName = "hostB";
    mOurs->publish(announcement);
    ASSERT_TRUE(waitForResolves(1));
    EXPECT_EQ(mRecorder->present.front()->hostName(), "hostB-2.local");
    EXPECT_THAT(mEvents->published, ElementsAre("Desk"));
}

TEST_P(Publishing, WhatCannotBeANameFailsForGood)
{
    auto announcement = mAnnouncement;
    for (const auto& name : {std::string(), std::string(64, 'x'), std::string("\xff\xfe")}) {
        announcement.name = name;
        mEvents->failed.clear();
        mOurs->publish(announcement);
        EXPECT_THAT(mEvents->failed, IsEmpty());
        ASSERT_TRUE(waitUntil([&] { return mEvents->failed.size() == 1; }));
    }
    EXPECT_THAT(mEvents->published, IsEmpty());
}

TEST_P(Publishing, TheFirstAnnouncementEndsWithTheSecond)
{
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitFor(1));
    auto other = mAnnouncement;
    other.name = "Another";
    mOurs->publish(other);
    ASSERT_TRUE(
        waitUntil([&] { return mRecorder->names() == std::vector<std::string>{"Another"}; }));
}

class PublishingThroughADaemon : public Publishing
{
};

INSTANTIATE_TEST_SUITE_P(Ways, PublishingThroughADaemon, testing::Values(Way::daemon), nameOfWay);

TEST_P(PublishingThroughADaemon, TheServiceIsAnnouncedAgainWhenTheDaemonReturns)
{
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitFor(1));
    mHere->stop();
    ASSERT_TRUE(waitFor(0));
    mHere->start();
    ASSERT_TRUE(waitFor(1));
    ASSERT_TRUE(waitForPublished(2));
}

TEST_P(PublishingThroughADaemon, WhenItDoesNotReturnTheServiceIsAnnouncedWithoutIt)
{
    mOurs->publish(mAnnouncement);
    ASSERT_TRUE(waitFor(1));
    mHere->stop();
    ASSERT_TRUE(waitFor(0));
    ASSERT_TRUE(waitFor(1));
    EXPECT_TRUE(mRecorder->find("Desk"));
}

} // namespace
} // namespace farview
