#include "Platform/Desktop/Discovery/EventBatch.h"
#include "Platform/Fake/FakeNetService.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class EventBatches : public testing::Test
{
protected:
    std::shared_ptr<NetService> service(const std::string& name)
    {
        return std::make_shared<FakeNetService>(
            mLoop, std::make_shared<FakeDevice>(FakeDevice{name, "host"}));
    }
    void deliver(bool found, const EventBatch::Services& services)
    {
        std::string text = found ? "+" : "-";
        for (const auto& each : services)
            text += each->name();
        mDelivered.push_back(text);
        if (mClearsInside)
            mBatch.clear();
    }

    FakeRunLoop mLoop;
    bool mClearsInside = false;
    std::vector<std::string> mDelivered;
    EventBatch mBatch{[this](bool found, const auto& services) { deliver(found, services); }};
};

TEST_F(EventBatches, WhatComesTogetherIsDeliveredTogetherAndLater)
{
    mBatch.addFound(service("a"));
    mBatch.addFound(service("b"));
    EXPECT_THAT(mDelivered, IsEmpty());
    ASSERT_TRUE(waitUntil([&] { return !mDelivered.empty(); }));
    runLoopFor(300ms);
    EXPECT_THAT(mDelivered, ElementsAre("+ab"));
}

TEST_F(EventBatches, FindsAndRemovalsAreNeverMixedAndKeepTheirOrder)
{
    const auto old = service("o");
    mBatch.addRemoved(old);
    mBatch.addFound(service("a"));
    mBatch.addFound(service("b"));
    mBatch.addRemoved(service("p"));
    ASSERT_TRUE(waitUntil([&] { return mDelivered.size() == 3; }));
    EXPECT_THAT(mDelivered, ElementsAre("-o", "+ab", "-p"));
}

TEST_F(EventBatches, AFindThatWasNotDeliveredYetIsTakenBackByItsRemoval)
{
    const auto brief = service("a");
    mBatch.addFound(brief);
    mBatch.addFound(service("b"));
    mBatch.addRemoved(brief);
    ASSERT_TRUE(waitUntil([&] { return !mDelivered.empty(); }));
    EXPECT_THAT(mDelivered, ElementsAre("+b"));
}

TEST_F(EventBatches, AFindThatWasTheOnlyOneLeavesNoEmptyBatch)
{
    const auto brief = service("a");
    mBatch.addFound(brief);
    mBatch.addRemoved(brief);
    runLoopFor(100ms);
    EXPECT_THAT(mDelivered, IsEmpty());
}

TEST_F(EventBatches, AnEndlessBurstIsDeliveredThoughItDoesNotPause)
{
    EXPECT_TRUE(waitUntil([&] {
        mBatch.addFound(service("a"));
        return !mDelivered.empty();
    }));
}

TEST_F(EventBatches, ClearingForgetsEverythingAlsoInTheMiddle)
{
    mBatch.addFound(service("a"));
    mBatch.clear();
    runLoopFor(100ms);
    EXPECT_THAT(mDelivered, IsEmpty());
    mClearsInside = true;
    mBatch.addFound(service("b"));
    mBatch.addRemoved(service("c"));
    runLoopFor(300ms);
    EXPECT_THAT(mDelivered, ElementsAre("+b"));
}

} // namespace
} // namespace farview
