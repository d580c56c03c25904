#pragma once

#include "Applications/Doctor/DeviceProbe.h"
#include "Applications/Doctor/Finding.h"
#include "Platform/NetService.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

struct Platform;

/// A device that is announced on the network.
struct DeviceFact {
    std::string name;
    std::optional<std::string> hostName; ///< nothing when it could not be resolved
    std::vector<Endpoint> endpoints{};
    bool isInUse = false;                 ///< as it says itself
    std::optional<DeviceAnswer> answer{}; ///< nothing when it was not asked in time
};

struct DeviceFacts {
    std::vector<DeviceFact> seen;
    std::size_t more = 0;                ///< that were seen and not asked
    std::vector<std::string> remembered; ///< names that the settings know, seen or not
};

/// The names in the list of seen devices and among those to connect to by themselves, each once.
/// Changes nothing.
std::vector<std::string> rememberedDevices(Platform& platform, const std::string& seenDevicesFile);
Findings findingsAboutDevices(const DeviceFacts& facts);

/// Looks for devices for a while, and asks each that turns up. Main thread only; its end breaks
/// everything off.
class DevicesProbe final : public NetServiceBrowserDelegate,
                           public NetServiceDelegate,
                           public std::enable_shared_from_this<DevicesProbe>
{
public:
    struct Times {
        Duration search{3.0};  ///< how long to look
        Duration resolve{2.0}; ///< how long a device's address may take
        DeviceProbeTimes question{};
    };
    using Ended = std::function<void(std::vector<DeviceFact> devices, std::size_t more)>;

    /// More devices are counted, not asked.
    static constexpr std::size_t mostDevices = 32;

    DevicesProbe(Discovery& discovery, RunLoop& runLoop, Times times)
        : mDiscovery(discovery), mRunLoop(runLoop), mTimes(times)
    {
    }

    /// Begins, once. `ended` is called once, on a later turn, when the search is over and each
    /// device has answered or failed to.
    void start(Ended ended);
    /// What is known by now.
    std::vector<DeviceFact> devices() const;

    void didFindService(NetServiceBrowser& browser, const std::shared_ptr<NetService>& service,
                        bool moreComing) override;
    void didRemoveService(NetServiceBrowser& browser, const std::shared_ptr<NetService>& service,
                          bool moreComing) override;
    void netServiceDidResolveAddress(const std::shared_ptr<NetService>& service) override;
    void didNotResolve(const std::shared_ptr<NetService>& service,
                       const std::string& error) override;
    void didUpdateTXTRecordData(const std::shared_ptr<NetService>& service,
                                const Data& data) override;

private:
    struct Device {
        std::shared_ptr<NetService> service;
        std::shared_ptr<DeviceProbe> question{};
        DeviceFact fact{};
        bool isDone = false;
    };

    Device* device(const NetService& service);
    void conclude(Device& device);
    void endWhenDone();

    Discovery& mDiscovery;
    RunLoop& mRunLoop;
    Times mTimes;
    Ended mEnded;
    std::shared_ptr<NetServiceBrowser> mBrowser;
    std::vector<std::unique_ptr<Device>> mDevices;
    std::size_t mMore = 0;
    bool mIsSearchOver = false;
};

} // namespace farview
