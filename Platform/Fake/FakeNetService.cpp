#include "Platform/Fake/FakeNetService.h"

#include <utility>

namespace farview
{

FakeNetService::FakeNetService(FakeRunLoop& loop, std::shared_ptr<const FakeDevice> device)
    : mLoop(loop), mDevice(std::move(device)), mName(mDevice->name), mType(mDevice->type),
      mDomain(mDevice->domain)
{
}

void FakeNetService::setDelegate(std::weak_ptr<NetServiceDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void FakeNetService::resolveWithTimeout(Duration timeout)
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

void FakeNetService::endResolveAfter(Duration delay, bool success)
{
    const auto number = mResolveNumber;
    mLoop.performAfterDelay(delay, weak_from_this(), [this, number, success] {
        if (number == mResolveNumber)
            endResolve(success);
    });
}

void FakeNetService::endResolve(bool success)
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

void FakeNetService::makeResolved()
{
    mHostName.reset();
    if (!mDevice->hostName.empty())
        mHostName = mDevice->hostName;
    mTXTRecord = mDevice->TXTRecordData();
    mEndpoints = mDevice->endpoints;
}

void FakeNetService::startMonitoring()
{
    ++mStartMonitoringCount;
    mMonitoring = true;
}

void FakeNetService::stopMonitoring()
{
    ++mStopMonitoringCount;
    mMonitoring = false;
}

void FakeNetService::TXTRecordChanged()
{
    mLoop.performAfterDelay(Duration::zero(), weak_from_this(), [this] {
        if (!mMonitoring)
            return;
        mTXTRecord = mDevice->TXTRecordData();
        if (const auto delegate = mDelegate.lock())
            delegate->didUpdateTXTRecordData(shared_from_this(), mTXTRecord);
    });
}

} // namespace farview
