#include "Common/ConnectionFollower.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/Connection.h"
#include "Platform/Platform.h"

#include <algorithm>

namespace farview
{

void ConnectionFollower::connectToHost(const std::string& hostName)
{
    request(kConnectServerToHost, {{kConnectToHostNameKey, hostName}});
}

void ConnectionFollower::connectToAddress(const std::string& address)
{
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, address}});
}

void ConnectionFollower::chooseNone() { request(kDisconnectCurrentServerFromHost, {}); }

void ConnectionFollower::quitServer()
{
    forgetRequest();
    forgetPairing();
    command(kTerminateScreenServer);
}

void ConnectionFollower::request(const char* name,
                                 DistributedNotificationCenter::TextUserInfo userInfo)
{
    forgetPairing();
    mRequest = Request{name, userInfo};
    command(name, std::move(userInfo));
}

void ConnectionFollower::heardRequest(const Notification& request)
{
    const auto isInRequest = [&](const auto& entry) {
        const auto* text = request.text(entry.first);
        return text && *text == entry.second;
    };
    if (mRequest &&
        (mRequest->name != request.name() ||
         !std::all_of(mRequest->userInfo.begin(), mRequest->userInfo.end(), isInRequest)))
        forgetRequest();
}

void ConnectionFollower::query()
{
    mPlatform.distributedNotificationCenter->postNotificationName(
        kQueryRequestForConnectedHost, "", {}, DistributedNotificationCenter::postToAllSessions);
}

void ConnectionFollower::command(const char* name,
                                 DistributedNotificationCenter::TextUserInfo userInfo)
{
    mPlatform.distributedNotificationCenter->postNotificationName(
        name, "", std::move(userInfo),
        DistributedNotificationCenter::deliverImmediately |
            DistributedNotificationCenter::postToAllSessions);
}

bool ConnectionFollower::isAcceptable(const Notification& report)
{
    return isAcceptableReportedText(report.text(kDeviceNameKey)) &&
           isAcceptableReportedText(report.text(kDeviceAddressKey));
}

std::shared_ptr<NetService>
ConnectionFollower::serviceOfHost(const std::vector<std::shared_ptr<NetService>>& services,
                                  const std::string* hostName)
{
    std::vector<std::optional<std::string>> hostNames;
    hostNames.reserve(services.size());
    for (const auto& service : services)
        hostNames.push_back(service->hostName());
    const auto index = deviceForReportedName(hostNames, hostName);
    return index ? services[*index] : nullptr;
}

void ConnectionFollower::followAddress(const Notification& report, FVEPreferences& preferences)
{
    mIsByAddress = true;
    const std::string stored = preferences.currentVirtualScreenDevice();
    const auto* reported = report.text(kDeviceAddressKey);
    const auto connection = connectionByAddress(stored, isValidIPAddress(stored), mAddress,
                                                reported ? std::optional(*reported) : std::nullopt);
    if (connection.address)
        mAddress = connection.address;
    if (connection.lastOther)
        preferences.setLastOtherDevice(*connection.lastOther);
    if (connection.currentDevice)
        preferences.setCurrentVirtualScreenDevice(*connection.currentDevice);
}

bool ConnectionFollower::followEnd(const Notification& report)
{
    mIsByAddress = false;
    mScreen.reset();
    mDeviceKey.clear();
    const bool serverBegins = report.text(kAwaitsRequestKey);
    if (serverBegins) {
        forgetPairing();
        mFurtherDevices.clear();
    }
    // The end of a connection answers the request for no device, and no other.
    if (!mRequest || (!serverBegins && !mRequest->userInfo.empty()))
        return false;
    const auto request = *std::exchange(mRequest, std::nullopt);
    if (serverBegins)
        command(request.name, request.userInfo);
    return request.userInfo.contains(kConnectToHostNameKey);
}

void ConnectionFollower::followScreen(const Notification& report)
{
    mScreen = screenReport(report.text(kScreenReportKey));
}

void ConnectionFollower::alsoConnectToHost(const std::string& hostName)
{
    forgetPairing();
    command(kAlsoConnectToHost, {{kConnectToHostNameKey, hostName}});
}

void ConnectionFollower::leaveFurtherDevice(const std::string& hostName)
{
    command(kDisconnectFurtherDevice, {{kConnectToHostNameKey, hostName}});
}

void ConnectionFollower::followFurtherDevices(const Notification& report)
{
    mFurtherDevices = farview::furtherDevices(report.text(kFurtherDevicesKey));
}

std::vector<FurtherDeviceRow>
ConnectionFollower::furtherDeviceRows(const std::vector<std::shared_ptr<NetService>>& services,
                                      const std::optional<std::string>& firstHostName,
                                      const Localize& localized) const
{
    FurtherDeviceInputs inputs{.firstHostName = firstHostName, .used = mFurtherDevices};
    for (const auto& service : services) {
        if (const auto hostName = service->hostName())
            inputs.inSight.push_back({*hostName, service->name(), isDeviceInUse(*service)});
    }
    return farview::furtherDeviceRows(inputs, localized);
}

const FurtherDevice* ConnectionFollower::furtherDevice(const std::string& hostName) const
{
    const auto found =
        std::find_if(mFurtherDevices.begin(), mFurtherDevices.end(),
                     [&](const FurtherDevice& device) { return device.hostName == hostName; });
    return found == mFurtherDevices.end() ? nullptr : &*found;
}

void ConnectionFollower::followKey(const Notification& report)
{
    const std::string* key = report.text(kDeviceKeyKey);
    mDeviceKey = key ? *key : std::string();
}

bool ConnectionFollower::mayType(const std::string& nameOrKey) const
{
    const auto peers = PairedPeers(*mPlatform.preferences, PairedPeers::devices).all();
    return std::any_of(peers.begin(), peers.end(), [&](const PairedPeer& peer) {
        return peer.mayType && peer.isMeantBy(nameOrKey);
    });
}

void ConnectionFollower::letType(const std::string& nameOrKey, bool mayType)
{
    PairedPeers(*mPlatform.preferences, PairedPeers::devices).letType(nameOrKey, mayType);
    command(kPairedDevicesDidChange);
}

void ConnectionFollower::followPairing(const Notification& report)
{
    mPairing = pairingReport(report.text(kPairingReportKey));
}

void ConnectionFollower::forgetDevice(const std::string& name)
{
    PairedPeers(*mPlatform.preferences, PairedPeers::devices).forget(name);
    command(kPairedDevicesDidChange);
}

void ConnectionFollower::answer(const char* name)
{
    if (!mPairing.digits.empty())
        command(name, {{kDigitsKey, mPairing.digits}});
}

} // namespace farview
