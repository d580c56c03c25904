#pragma once

#include "Platform/Fake/FakeDevice.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/NetService.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// One sighting of a device by one browser. Answers as the device's script says, on a later turn.
/// Also of use alone: `std::make_shared<FakeNetService>(loop, std::make_shared<FakeDevice>(…))`.
class FakeNetService final : public NetService, public std::enable_shared_from_this<FakeNetService>
{
public:
    FakeNetService(FakeRunLoop& loop, std::shared_ptr<const FakeDevice> device);

    const std::string& name() const override { return mName; }
    const std::string& type() const override { return mType; }
    const std::string& domain() const override { return mDomain; }
    std::optional<std::string> hostName() const override { return mHostName; }
    Data TXTRecordData() const override { return mTXTRecord; }
    std::vector<Endpoint> endpoints() const override { return mEndpoints; }
    void setDelegate(std::weak_ptr<NetServiceDelegate> delegate) override;
    void resolveWithTimeout(Duration timeout) override;
    void startMonitoring() override;
    void stopMonitoring() override;

    /// The device's record changed: who monitors hears of it on the next turn.
    void TXTRecordChanged();
    /// As if it had been resolved before: fills in host, record and endpoints, tells nobody.
    void makeResolved();
    /// The resolve that is under way ends now with this result; for outcomes that never end.
    void endResolve(bool success);

    const std::shared_ptr<const FakeDevice>& device() const { return mDevice; }
    std::weak_ptr<NetServiceDelegate> delegate() const { return mDelegate; }
    int resolveCount() const { return mResolveCount; }
    Duration lastTimeout() const { return mLastTimeout; }
    bool isResolving() const { return mResolving; }
    bool isMonitoring() const { return mMonitoring; }
    int startMonitoringCount() const { return mStartMonitoringCount; }
    int stopMonitoringCount() const { return mStopMonitoringCount; }

private:
    void endResolveAfter(Duration delay, bool success);

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
