#pragma once

#include "Platform/NetService.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// Looks for devices of others for a while. Made with `std::make_shared`.
class OtherDevices final : public NetServiceBrowserDelegate,
                           public std::enable_shared_from_this<OtherDevices>
{
public:
    OtherDevices(Discovery& discovery, RunLoop& runLoop);

    /// Calls one of the two once, on a later turn: `seen` with a device's name as soon as one is
    /// there, `noneSeen` when `limit` is over. Called once.
    void look(Duration limit, std::function<void(const std::string& name)> seen,
              std::function<void()> noneSeen);

    void didFindService(NetServiceBrowser& browser, const std::shared_ptr<NetService>& service,
                        bool moreComing) override;
    void didRemoveService(NetServiceBrowser& browser, const std::shared_ptr<NetService>& service,
                          bool moreComing) override;

private:
    Discovery& mDiscovery;
    RunLoop& mRunLoop;
    std::shared_ptr<NetServiceBrowser> mBrowser;
    std::function<void(const std::string&)> mSeen;
    std::function<void()> mNoneSeen;
    bool mIsDecided = false;
};

} // namespace farview
