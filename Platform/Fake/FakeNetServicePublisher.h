#pragma once

#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/NetServicePublisher.h"

#include <optional>
#include <set>
#include <string>
#include <utility>

namespace farview
{

/// Announces to nobody but the test. Names that are taken get a number; an empty name fails.
class FakeNetServicePublisher final : public NetServicePublisher
{
public:
    explicit FakeNetServicePublisher(FakeRunLoop& loop) : mLoop(loop) {}

    void setDelegate(std::weak_ptr<NetServicePublisherDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    void publish(const ServiceAnnouncement& announcement) override
    {
        mAnnouncement = announcement;
        later([this] { announce(); });
    }
    void updateTXTRecord(const std::map<std::string, Data>& record) override
    {
        if (mAnnouncement)
            mAnnouncement->TXTRecord = record;
    }
    void stop() override
    {
        mAnnouncement.reset();
        ++mTurn;
    }

    /// A name that somebody else on the network has.
    void takeName(std::string name) { mTakenNames.insert(std::move(name)); }
    /// What is announced, under its final name; nothing when nothing is.
    const std::optional<ServiceAnnouncement>& announcement() const { return mAnnouncement; }

private:
    void later(RunLoop::Action action)
    {
        mLoop.performAfterDelay(Duration::zero(), mLife,
                                [this, turn = ++mTurn, action = std::move(action)] {
                                    if (turn == mTurn)
                                        action();
                                });
    }
    void announce()
    {
        const auto delegate = mDelegate.lock();
        if (mAnnouncement->name.empty()) {
            mAnnouncement.reset();
            if (delegate)
                delegate->didNotPublish("the name is empty");
            return;
        }
        if (mTakenNames.contains(mAnnouncement->name))
            rename();
        if (delegate)
            delegate->didPublish(mAnnouncement->name);
    }
    void rename()
    {
        const std::string wanted = mAnnouncement->name;
        for (int number = 2; mTakenNames.contains(mAnnouncement->name); ++number)
            mAnnouncement->name = wanted + " #" + std::to_string(number);
        if (const auto delegate = mDelegate.lock())
            delegate->willRename(mAnnouncement->name);
    }

    FakeRunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    std::weak_ptr<NetServicePublisherDelegate> mDelegate;
    std::optional<ServiceAnnouncement> mAnnouncement;
    std::set<std::string> mTakenNames;
    unsigned mTurn = 0;
};

} // namespace farview
