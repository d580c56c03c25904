#pragma once

#include "Platform/Fake/FakeDevice.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/NetService.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// One sighting of a device by one browser. Answers as the device's script says, on a later turn.
/// Also of use alone: `std::make_shared<FakeNetService>(loop, std::make_shared<FakeDevice>(…))`.
class FakeNetService final : public NetService, public std::enable_shared_from_this<FakeNetService>
{
public:
    FakeNetService(FakeRunLoop& loop, std::shared_ptr<const FakeDevice> device)
        : mLoop(loop), mDevice(std::move(device)), mName(mDevice->name), mType(mDevice->type),
          mDomain(mDevice->domain)
    {
    }

    const std::string& name() const override { return mName; }
    const std::string& type() const override { return mType; }
    const std::string& domain() const override { return mDomain; }
    std::optional<std::string> hostName() const override { return mHostName; }
    Data TXTRecordData() const override { return mTXTRecord; }
    std::vector<Endpoint> endpoints() const override { return mEndpoints; }
    void setDelegate(std::weak_ptr<NetServiceDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }

    void resolveWithTimeout(Duration timeout) override
    {
        using enum FakeResolve::Outcome;
        ++mResolveCount;
        ++mResolveNumber;
        mLastTimeout = timeout;
        mResolving = true;
        const FakeResolve& script = mDevice->resolve;
        const bool tooLate = script.outcome == never || script.delay > timeout;
        if (script.heedsTimeout && tooLate)
            endResolveAfter(timeout, false);
        else if (script.outcome != never)
            endResolveAfter(script.delay, script.outcome == succeeds);
    }

    void startMonitoring() override
    {
        ++mStartMonitoringCount;
        mMonitoring = true;
    }

    void stopMonitoring() override
    {
        ++mStopMonitoringCount;
        mMonitoring = false;
    }

    /// The device's record changed: who monitors hears of it on the next turn.
    void TXTRecordChanged()
    {
        mLoop.performAfterDelay(Duration::zero(), weak_from_this(), [this] {
            if (!mMonitoring)
                return;
            mTXTRecord = mDevice->TXTRecordData();
            if (const auto delegate = mDelegate.lock())
                delegate->didUpdateTXTRecordData(shared_from_this(), mTXTRecord);
        });
    }

    /// As if it had been resolved before: fills in host, record and endpoints, tells nobody.
    void makeResolved()
    {
        const auto& host = mDevice->hostName;
        mHostName = host.empty() ? std::nullopt : std::optional(host);
        mTXTRecord = mDevice->TXTRecordData();
        mEndpoints = mDevice->endpoints;
    }

    /// The resolve that is under way ends now with this result; for outcomes that never end.
    void endResolve(bool success)
    {
        if (!std::exchange(mResolving, false))
            return;
        ++mResolveNumber;
        const auto self = shared_from_this();
        if (success)
            makeResolved();
        const auto delegate = mDelegate.lock();
        if (!delegate)
            return;
        if (success)
            delegate->netServiceDidResolveAddress(self);
        else
            delegate->didNotResolve(self, "no answer");
    }

    const std::shared_ptr<const FakeDevice>& device() const { return mDevice; }
    std::weak_ptr<NetServiceDelegate> delegate() const { return mDelegate; }
    int resolveCount() const { return mResolveCount; }
    Duration lastTimeout() const { return mLastTimeout; }
    bool isResolving() const { return mResolving; }
    bool isMonitoring() const { return mMonitoring; }
    int startMonitoringCount() const { return mStartMonitoringCount; }
    int stopMonitoringCount() const { return mStopMonitoringCount; }

private:
    void endResolveAfter(Duration delay, bool success)
    {
        const auto number = mResolveNumber;
        mLoop.performAfterDelay(delay, weak_from_this(), [this, number, success] {
            if (number == mResolveNumber)
                endResolve(success);
        });
    }

    FakeRunLoop& mLoop;
    std::shared_ptr<const FakeDevice> mDevice;
    std::string mName;
    std::string mType;
    std::string mDomain;
    std::optional<std::string> mHostName;
    Data mTXTRecord;
    std::vector<Endpoint> mEndpoints;
    std::weak_ptr<NetServiceDelegate> mDelegate;
    unsigned mResolveNumber = 0;
    int mResolveCount = 0;
    int mStartMonitoringCount = 0;
    int mStopMonitoringCount = 0;
    Duration mLastTimeout{0};
    bool mResolving = false;
    bool mMonitoring = false;
};

} // namespace farview
