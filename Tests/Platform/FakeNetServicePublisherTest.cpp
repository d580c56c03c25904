#include "Platform/Fake/FakeNetServicePublisher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

struct Heard : NetServicePublisherDelegate {
    std::vector<std::string> lines;

    void didPublish(const std::string& name) override { lines.push_back("published " + name); }
    void willRename(const std::string& name) override { lines.push_back("renamed " + name); }
    void didNotPublish(const std::string& reason) override { lines.push_back(reason); }
};

class FakePublishers : public testing::Test
{
protected:
    void SetUp() override { mPublisher.setDelegate(mHeard); }

    FakeRunLoop mLoop;
    FakeNetServicePublisher mPublisher{mLoop};
    std::shared_ptr<Heard> mHeard = std::make_shared<Heard>();
    const ServiceAnnouncement mAnnouncement{"Desk", "_qlexvscreen._udp", 6001, {}, "desk"};
};

TEST_F(FakePublishers, AnAnnouncementIsReportedOnALaterTurn)
{
    mPublisher.publish(mAnnouncement);
    EXPECT_THAT(mHeard->lines, IsEmpty());
    mLoop.advance(Duration(0.1));
    EXPECT_THAT(mHeard->lines, ElementsAre("published Desk"));
    mPublisher.updateTXTRecord({{"ConnState", Data::fromText("Connected")}});
    EXPECT_EQ(mPublisher.announcement()->TXTRecord.size(), 1u);
    mPublisher.stop();
    EXPECT_FALSE(mPublisher.announcement());
}

TEST_F(FakePublishers, ATakenNameIsChangedAndAnEmptyOneRefused)
{
    mPublisher.takeName("Desk");
    mPublisher.publish(mAnnouncement);
    mLoop.advance(Duration(0.1));
    EXPECT_THAT(mHeard->lines, ElementsAre("renamed Desk #2", "published Desk #2"));
    mPublisher.publish({"", "_qlexvscreen._udp", 6001, {}, "desk"});
    mLoop.advance(Duration(0.1));
    EXPECT_EQ(mHeard->lines.back(), "the name is empty");
    EXPECT_FALSE(mPublisher.announcement());
}

TEST_F(FakePublishers, WhatWasStoppedIsNotReported)
{
    mPublisher.publish(mAnnouncement);
    mPublisher.stop();
    mLoop.advance(Duration(0.1));
    EXPECT_THAT(mHeard->lines, IsEmpty());
}

} // namespace
} // namespace farview
