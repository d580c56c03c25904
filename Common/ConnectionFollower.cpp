#include "Common/ConnectionFollower.h"

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
    const bool serverBegins = report.text(kAwaitsRequestKey);
    if (serverBegins)
        forgetPairing();
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
