#include "Applications/Device/OtherDevices.h"

#include "Common/FVEConstants.h"

#include <utility>

namespace farview
{

OtherDevices::OtherDevices(Discovery& discovery, RunLoop& runLoop)
    : mDiscovery(discovery), mRunLoop(runLoop)
{
}

void OtherDevices::look(Duration limit, std::function<void(const std::string& name)> seen,
                        std::function<void()> noneSeen)
{
    mSeen = std::move(seen);
    mNoneSeen = std::move(noneSeen);
    mBrowser = mDiscovery.makeBrowser();
    mBrowser->setDelegate(weak_from_this());
    mBrowser->searchForServicesOfType(kVirtualScreenServiceName, "local.");
    mRunLoop.performAfterDelay(limit, weak_from_this(), [this] {
        if (std::exchange(mIsDecided, true))
            return;
        mBrowser->stop();
        mNoneSeen();
    });
}

void OtherDevices::didFindService(NetServiceBrowser& /*browser*/,
                                  const std::shared_ptr<NetService>& service, bool /*moreComing*/)
{
    if (!std::exchange(mIsDecided, true))
        mSeen(service->name());
}

void OtherDevices::didRemoveService(NetServiceBrowser& /*browser*/,
                                    const std::shared_ptr<NetService>& /*service*/,
                                    bool /*moreComing*/)
{
}

} // namespace farview
